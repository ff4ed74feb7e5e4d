// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window's side of the point rows.
#include "frame/mainwindow.h"

#include <algorithm>
#include <optional>

#include "acquisition/pointinfo.h"
#include "calibration/zerl_util.h"

#include "frame/functions.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "sensor/sensorrange.h"
#include "ui_mainwindow.h"
#include "window/styles.h"

namespace
{

// The last other point at these millivolts: two points may share y, never x.
std::optional<int> point_at_same_mv(const LONG_TABLE &table, double mv, int32_t index)
{
    std::optional<int> hit;
    const int count = point_count(table);
    for (int j = 0; j < count; ++j) {
        if (j != index && nearly_equal(mv, table.x[j]))
            hit = j;
    }
    return hit;
}

void tell_duplicate(int32_t index, double mv, int other)
{
    const QString text =
        QString::asprintf("The new Mv value for position #%d of '%8.4f'\n"
                          "is the same as the current Mv value in position #%d.\n\n"
                          "Duplicate Mv values are not allowed.\n\n"
                          "Please try a different table value.",
                          index + 1, mv, other + 1);
    show_information(text.toUtf8().constData());
}

} // namespace

// The rows are tabbed through where they stand, before the buttons of the process;
// fresh ones behind the old ones.
void MainWindow::create_rows()
{
    QWidget *before = m_rows.isEmpty() ? ui->scrollArea : m_rows.last()->last_stop();
    for (int i = 0; i < MAX_POINTS; ++i) {
        auto *new_row = new PointInfo(this, i, ui->scrollAreaWidgetContents);
        m_rows.append(new_row);
        ui->verticalLayout_4->addWidget(new_row);
        before = new_row->put_in_tab_order(before);
    }
}

// Only the first 64 rows of the list are ever hidden or used, also after a
// channel was given up and fresh ones were appended.
void MainWindow::hide_rows()
{
    for (int i = 0; i < MAX_POINTS; ++i)
        row(i)->set_children_visible(false);
}

void MainWindow::show_rows()
{
    const int count = rows_in_use();
    for (int i = 0; i < count; ++i)
        row(i)->set_children_visible(true);
}

void MainWindow::clear_row_captions()
{
    for (int i = 0; i < MAX_POINTS; ++i)
        row(i)->set_caption_checked(QStringLiteral("Capture"));
    g_captured_points = 0;
    ui->btnRecordData->setStyleSheet(QLatin1String(STYLE_IDLE));
}

void MainWindow::write_row_values(QLineEdit *value_field, QLabel *mv_label, int i)
{
    value_field->setText(value_text(g_cfg->long_current.y[i]));
    if (value_field == row(i)->value_field())
        row(i)->value_written();
    mv_label->setText(value_text(g_cfg->long_current.x[i]));
}

void MainWindow::write_all_row_values()
{
    for (int i = 0; i < MAX_POINTS; ++i)
        write_row_values(row(i)->value_field(), row(i)->mv_label(), i);
}

void MainWindow::show_table_fields(ZERL_CFG *cfg)
{
    ui->lblSerialNumber->setText(record_text(cfg->table.sensor_serial_no));
    ui->btnUnits->setText(record_text(cfg->table.eng_units));
    ui->txtNumPoints->setText(QString::number(range_in_work(cfg->table).num_points));
    write_all_row_values();
}

int MainWindow::store_point(ZERL_CFG *cfg, int32_t index, double value)
{
    TableLock lock(m_table_mutex);
    LONG_TABLE &current = cfg->long_current;
    POLY_RANGE_RECORD &range = cfg->table.poly[range_index(cfg->table)];
    const double mv = relaxed_load(cfg->live_mv);
    if (nearly_equal(value, current.y[index]) && nearly_equal(mv, current.x[index]))
        return 1;
    const std::optional<int> other = point_at_same_mv(current, mv, index);
    if (other.has_value()) {
        lock.unlock();
        tell_duplicate(index, mv, *other);
        return 0;
    }
    current.y[index] = value;
    range.y[index] = value;
    current.x[index] = mv;
    range.x[index] = mv;
    current.num_points = static_cast<int16_t>(std::max<int>(index + 1, current.num_points));
    show_table_fields(cfg);
    update_plot(cfg);
    cfg->table_dirty = 1;
    return 1;
}

int MainWindow::check_sensor_range(uint32_t *reason)
{
    *reason = sensor_range_reason(g_cfg->table);
    return *reason == 0 ? 1 : 0;
}

void MainWindow::show_serial_number()
{
    ui->lblSerialNumber->setText(record_text(g_cfg->table.sensor_serial_no));
}

void MainWindow::show_record_ready()
{
    update_record_ready(this);
}

void MainWindow::empty_next_step()
{
    ui->lblNextStep->setText(QString());
}

void MainWindow::suggest_no_decision()
{
    ui->btnAdjustCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    ui->btnReuseCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
}
