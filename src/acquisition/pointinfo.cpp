// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/pointinfo.h"

#include <QEvent>

#include "acquisition/rowlook.h"
#include "acquisition/rowwindow.h"
#include "acquisition/undodialog.h"
#include "calibration/classification.h"
#include "calibration/tableload.h"
#include "frame/functions.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "frame/zerl_cfg.h"
#include "sensor/configdialog2.h"
#include "ui_pointinfo.h"
#include "window/numbervalidator.h"
#include "window/styles.h"
#include "window/termination.h"
#include "window/touchfield.h"

namespace
{

// The monitor thread may be reading it.
void change_count(int16_t &count, int by)
{
    relaxed_store(count, static_cast<int16_t>(qMax(0, count + by)));
}

} // namespace

PointInfo::PointInfo(RowWindow *main_window, int32_t row_index, QWidget *parent)
    : QWidget(parent), previous_mv(0.0), previous_status(0), status(0), state(POINT_AS_IN_TABLE),
      previous_state(POINT_AS_IN_TABLE), main(main_window), index(row_index),
      counted_current(false), counted_range(false), ui(std::make_unique<Ui::PointInfo>())
{
    ui->setupUi(this);
    if (g_touch_input) {
        ui->txtCurrentValue->setValidator(new NumberValidator(ui->txtCurrentValue));
        mark_touch_field(ui->txtCurrentValue, this);
    }
    set_value_style(QLatin1String(STYLE_WHITE));
    set_caption(QStringLiteral("Capture"));
    ui->lblIndexNum->setText(QString::number(index + 1));
}

PointInfo::~PointInfo() = default;

QLineEdit *PointInfo::value_field() const
{
    return ui->txtCurrentValue;
}

QLabel *PointInfo::mv_label() const
{
    return ui->lblMillivolts;
}

QString PointInfo::value_style() const
{
    return ui->txtCurrentValue->styleSheet();
}

void PointInfo::set_value_style(const QString &style)
{
    ui->txtCurrentValue->setStyleSheet(style);
}

QString PointInfo::caption() const
{
    return ui->btnCapture->text();
}

QString PointInfo::caption_style() const
{
    return ui->btnCapture->styleSheet();
}

void PointInfo::set_caption_style(const QString &style)
{
    ui->btnCapture->setStyleSheet(style);
}

bool PointInfo::children_visible() const
{
    return !ui->btnCapture->isHidden();
}

void PointInfo::set_children_visible(bool visible)
{
    ui->lblIndexNum->setVisible(visible);
    ui->txtCurrentValue->setVisible(visible);
    ui->lblMillivolts->setVisible(visible);
    ui->btnCapture->setVisible(visible);
    // A row without children takes no room in the column.
    const int margin = visible ? 2 : 0;
    ui->horizontalLayout->setContentsMargins(2, margin, 2, margin);
}

QWidget *PointInfo::put_in_tab_order(QWidget *before)
{
    setTabOrder(before, ui->txtCurrentValue);
    setTabOrder(ui->txtCurrentValue, ui->btnCapture);
    return last_stop();
}

QWidget *PointInfo::last_stop() const
{
    return ui->btnCapture;
}

void PointInfo::set_caption(const QString &text)
{
    ui->btnCapture->setText(text);
    set_caption_style(
        QLatin1String(text.contains(QLatin1String("Undo")) ? STYLE_IDLE : STYLE_READY));
}

void PointInfo::set_caption_checked(const QString &text)
{
    ui->btnCapture->setText(text);
    set_caption_style(
        QLatin1String(text.contains(QLatin1String("Capture")) ? STYLE_READY : STYLE_IDLE));
}

bool PointInfo::captures() const
{
    return caption().contains(QLatin1String("Capture"));
}

// A double tap opens the field's pad and goes on to the field as well.
bool PointInfo::eventFilter(QObject *object, QEvent *event)
{
    hand_double_tap_over(object, event);
    return false;
}

void PointInfo::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        const QString kept = caption();
        const QString number = ui->lblIndexNum->text();
        ui->retranslateUi(this);
        ui->btnCapture->setText(kept); // the caption tells the button's action
        ui->lblIndexNum->setText(number);
    }
}

void PointInfo::value_written()
{
    written = ui->txtCurrentValue->text();
    ui->txtCurrentValue->setModified(false);
}

// By keys or by the pad, which sends the text without the blanks around it.
bool PointInfo::value_edited() const
{
    return ui->txtCurrentValue->isModified() ||
           ui->txtCurrentValue->text().trimmed() != written.trimmed();
}

// No mutex, no check and no unsaved work: the value is set up before a capture,
// which is what then marks the work as unsaved. Builds of Qt differ in when they
// call an edit finished, so a field that was only visited is told apart here: its
// text has fewer digits than the table.
void PointInfo::on_txtCurrentValue_editingFinished()
{
    if (end_decided() || !value_edited())
        return;
    value_written(); // once for each edit
    const double value = ui->txtCurrentValue->text().toDouble();
    relaxed_store(g_cfg->table.poly[range_index(g_cfg->table)].y[index], value);
    relaxed_store(g_cfg->long_current.y[index], value);
    g_cfg->redraw_all = 1;
    g_cfg->table_dirty = 0;
    main->update_plot(g_cfg);
}

void PointInfo::on_btnCapture_clicked()
{
    if (captures())
        capture();
    else
        undo();
}

// True when the sensor range is in order. Otherwise the table information is
// opened for repair; the capture has then not happened and is pressed again.
bool PointInfo::sensor_range_repaired()
{
    uint32_t reason = 0;
    if (main->check_sensor_range(&reason) != 0)
        return true;
    TableLock lock(main->table_mutex());
    ConfigDialog2 dialog(window(), true, reason);
    if (dialog.exec() == QDialog::Accepted)
        main->show_serial_number();
    return false;
}

// Each count has a bound of its own: a refused capture of a late row runs the
// long table's count ahead of the range's.
void PointInfo::count_new_point()
{
    int16_t &current = g_cfg->long_current.num_points;
    int16_t &range = g_cfg->table.poly[range_index(g_cfg->table)].num_points;
    counted_current = current < MAX_POINTS;
    counted_range = range < MAX_POINTS;
    if (counted_current)
        change_count(current, 1);
    if (counted_range)
        change_count(range, 1);
}

// A count that was already full did not grow, so it does not shrink.
void PointInfo::take_back_new_point()
{
    int16_t &current = g_cfg->long_current.num_points;
    int16_t &range = g_cfg->table.poly[range_index(g_cfg->table)].num_points;
    if (counted_current)
        change_count(current, -1);
    if (counted_range)
        change_count(range, -1);
}

void PointInfo::capture()
{
    if (!sensor_range_repaired())
        return;
    LONG_TABLE &current = g_cfg->long_current;
    const bool grown = state == POINT_NEW;
    // A retry after a refusal is no new point: it was counted the first time.
    if (grown)
        count_new_point();
    const double former_mv = current.x[index];
    const QString former_style = value_style();
    previous_state = state;
    g_cfg->table.point_state[index] = POINT_CAPTURED;
    state = POINT_CAPTURED;
    g_cfg->redraw_all = 1;
    // A refusal leaves the row in state 2 with its caption: pressing again
    // retries the capture.
    if (main->store_point(g_cfg, index, ui->txtCurrentValue->text().toDouble()) == 0)
        return;
    if (grown)
        refresh_long_table(g_cfg);
    main->empty_next_step();
    previous_mv = former_mv;
    saved_style = former_style;
    previous_status = status;
    ++g_captured_points;
    main->show_record_ready();
    set_caption(QStringLiteral("Undo"));
    set_row_status(this, point_status(*g_cfg, index));
    main->sync_type_controls(g_cfg);
    finish();
}

void PointInfo::undo()
{
    undoDialog dialog(window());
    if (dialog.exec() != QDialog::Accepted) {
        finish();
        return;
    }
    POLY_RANGE_RECORD &range = g_cfg->table.poly[range_index(g_cfg->table)];
    LONG_TABLE &current = g_cfg->long_current;
    g_cfg->redraw_all = 1;
    // Only the millivolts go back; the reference value stays, so that a later
    // capture does not need it again.
    ui->lblMillivolts->setText(value_text(previous_mv));
    relaxed_store(current.x[index], previous_mv);
    relaxed_store(range.x[index], previous_mv);
    const bool was_new = previous_state == POINT_NEW;
    if (was_new)
        take_back_new_point();
    refresh_long_table(g_cfg);
    g_cfg->table.point_state[index] = previous_state;
    state = previous_state;
    set_value_style(saved_style);
    g_cfg->table.worst_status = previous_status;
    --g_captured_points;
    main->update_plot(g_cfg);
    main->show_record_ready();
    set_caption(was_new ? QStringLiteral("Capture New") : QStringLiteral("Capture"));
    finish();
}

// Runs after a capture, a revert and a cancelled undo alike, so a cancelled undo
// too overwrites the point's statistics with the present reading.
void PointInfo::finish()
{
    main->suggest_no_decision();
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[range_index(g_cfg->table)];
    POINT_STATISTICS &point = g_cfg->point_stats[index];
    point.eu_mean = relaxed_load(g_sample.eu_mean);
    point.eu_max = relaxed_load(g_sample.eu_max);
    point.eu_min = relaxed_load(g_sample.eu_min);
    point.eu_std = relaxed_load(g_sample.eu_std);
    point.eu_reference = range.y[index];
    point.mv_at_capture = range.x[index];
    point.mv_mean = relaxed_load(g_sample.mv_mean);
    point.mv_max = relaxed_load(g_sample.mv_max);
    point.mv_min = relaxed_load(g_sample.mv_min);
    point.mv_std = relaxed_load(g_sample.mv_std);
    main->show_coefficients(g_cfg);
}
