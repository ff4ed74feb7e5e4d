// SPDX-License-Identifier: GPL-3.0-or-later
//
// One row of the point column: the reference value that the technician applies,
// the millivolts measured, and the button that captures or takes back.
#ifndef ACQUISITION_POINTINFO_H
#define ACQUISITION_POINTINFO_H

#include <memory>

#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class RowWindow;

namespace Ui
{
class PointInfo;
}

// States of a point, in the row and in table.point_state.
enum { POINT_AS_IN_TABLE = 0, POINT_NEW = 1, POINT_CAPTURED = 2 };

class PointInfo : public QWidget
{
    Q_OBJECT

public:
    PointInfo(RowWindow *main_window, int32_t row_index, QWidget *parent);
    ~PointInfo() override;

    QLineEdit *value_field() const;
    QLabel *mv_label() const;
    QString value_style() const;
    void set_value_style(const QString &style);
    QString caption() const;
    QString caption_style() const;
    void set_caption_style(const QString &style);
    // The program's own text in the value field, which is no edit of it.
    void value_written();
    bool children_visible() const;
    void set_children_visible(bool visible);
    // Value field, then button, behind the widget given; returns the button.
    QWidget *put_in_tab_order(QWidget *before);
    QWidget *last_stop() const; // of the Tab key

    // The caption tells the button's action: one that contains "Capture"
    // captures, any other undoes.
    void set_caption(const QString &text);
    void set_caption_checked(const QString &text);
    bool captures() const;

    double previous_mv;       // long_current.x before the last capture, mV
    QString saved_style;      // the value field's style before the last capture
    uint16_t previous_status; // status before the last capture
    uint16_t status;          // judgement of the point, 0 to 3
    int32_t state;
    int32_t previous_state;

private slots:
    void on_btnCapture_clicked();
    void on_txtCurrentValue_editingFinished();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    bool value_edited() const;
    bool sensor_range_repaired();
    void count_new_point();
    void take_back_new_point();
    void capture();
    void undo();
    void finish();

    RowWindow *main;
    int32_t index;
    QString written; // value field, as the program wrote or took it last
    // Which counts the last capture as a new point has grown.
    bool counted_current; // long_current's
    bool counted_range;   // that of the range in work
    std::unique_ptr<Ui::PointInfo> ui;
};

#endif
