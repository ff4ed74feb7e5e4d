// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table information dialog: shows and edits the sensor data of the bound
// table, and is the one place where a sensor range is repaired. GUI thread; the
// caller holds the table mutex while it runs, since it changes the record under
// the monitor thread.
#ifndef SENSOR_CONFIGDIALOG2_H
#define SENSOR_CONFIGDIALOG2_H

#include <cstdint>
#include <memory>

#include <QDialog>

#include "sensor/configdialog2_form.h"
#include "sensor/sensorrange.h"

namespace Ui
{
class ConfigDialog2;
}

class ConfigDialog2 : public QDialog
{
    Q_OBJECT

public:
    // Clears table_dirty and fills the form. With show_reason and a reason of
    // sensor_range_reason, says first, in a box, why the dialog opens.
    ConfigDialog2(QWidget *parent, bool show_reason, uint32_t reason);
    ~ConfigDialog2() override;

    // Shows the record, and sets g_num_points from its long table.
    void fill_form();

    // True when the sensor range on the form is acceptable; reason_code tells.
    bool validate_form();

    // The record's tolerance and bias as read from the labels: engineering units,
    // and a fraction or sensor units. sensor/tolerances.h has the differences
    // from the load operations.
    double get_tolerance_value(int tolerance_class);
    double get_bias_value(int tolerance_class);

    uint32_t reason_code = RANGE_VALID; // of the last validation

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private slots:
    void on_btnOk_clicked();
    void on_btnCancel_clicked();
    void on_btnSensorUnits_clicked();

private:
    void set_up_touch_input();
    void fill_sensor_information();
    void fill_calibration_information();
    void show_limits();
    SensorForm sensor_form() const;
    void show_units(const QByteArray &keyword);
    QByteArray units_on_form() const;
    void refuse_form();
    void take_picked_units();
    void load_tolerances_and_biases();
    void tell(const QString &title, const QString &text);

    std::unique_ptr<Ui::ConfigDialog2> ui;
    QByteArray m_units; // the keyword behind the units button
};

#endif
