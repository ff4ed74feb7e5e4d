// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog in which a unit is picked, for the table's values or for a
// sensor's range. The caller sets both mode flags, builds the dialog on its
// stack, runs it with exec, and when it is accepted finds the keyword in
// value_units: empty when none was picked. GUI thread; takes no lock.
#ifndef SENSOR_TABLEVALUEUNITSDIALOG_H
#define SENSOR_TABLEVALUEUNITSDIALOG_H

#include <cstdint>
#include <memory>

#include <QDialog>

class QListWidgetItem;

namespace Ui
{
class TableValueUnitsDialog;
}

// The mode of the next dialog, set right before it is built.
extern uint8_t units_for_table;  // 1: table values, 0: sensor range
extern uint8_t units_for_sensor; // the opposite; written and never read

class TableValueUnitsDialog : public QDialog
{
    Q_OBJECT

public:
    // Builds the catalogue when it is the first, and selects the present unit.
    explicit TableValueUnitsDialog(QWidget *parent);
    ~TableValueUnitsDialog() override;

private slots:
    void on_lstUnitCategory_currentRowChanged(int row);
    void on_lstUnitType_currentTextChanged(const QString &text);
    void on_btnOK_clicked();

private:
    void load();
    void list_units(int category);
    void pick_selected();
    static void pick(const QListWidgetItem *item);

    std::unique_ptr<Ui::TableValueUnitsDialog> ui;
};

#endif
