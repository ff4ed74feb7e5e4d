// SPDX-License-Identifier: GPL-3.0-or-later
//
// Point count and averaging time.
#include "frame/mainwindow.h"

#include <algorithm>

#include <QSignalBlocker>

#include "acquisition/monitorthread.h"
#include "acquisition/pointinfo.h"
#include "calibration/questions.h"
#include "calibration/zerl_util.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "ui_mainwindow.h"
#include "window/styles.h"
#include "window/termination.h"

namespace
{
constexpr int MIN_POINTS = 2;
constexpr long MIN_AVERAGING_S = 5;
constexpr long MAX_AVERAGING_S = 30;
} // namespace

bool MainWindow::check_num_points() const
{
    bool whole = false;
    const int count = ui->txtNumPoints->text().toInt(&whole);
    return whole && count >= MIN_POINTS && count <= MAX_POINTS;
}

void MainWindow::on_txtNumPoints_returnPressed()
{
    if (end_decided())
        return;
    if (!check_num_points()) {
        ask_question(this, QuestionMark::InvalidPoints);
        if (end_decided())
            return;
        ui->txtNumPoints->clear();
        return;
    }
    TableLock lock(m_table_mutex);
    const int old_count = g_cfg->long_current.num_points;
    const int new_count = ui->txtNumPoints->text().toInt();
    if (old_count != new_count)
        g_cfg->table_dirty = 1;
    if (old_count > new_count)
        shrink_point_count(g_cfg, new_count);
    else
        grow_point_count(g_cfg, old_count, new_count);
    g_num_points = static_cast<int16_t>(new_count);
    g_captured_points = 0;
    reset_process_view(this, false);
    sync_type_controls(g_cfg);
}

// The values of the rows dropped stay in the arrays.
void MainWindow::shrink_point_count(ZERL_CFG *cfg, int new_count)
{
    for (int i = new_count; i < MAX_POINTS; ++i) {
        cfg->table.point_state[i] = POINT_NEW;
        row(i)->state = POINT_NEW;
    }
    cfg->long_current.num_points = static_cast<int16_t>(new_count);
    cfg->table.poly[range_index(cfg->table)].num_points = static_cast<int16_t>(new_count);
    cfg->redraw_all = 1;
}

// New rows are offered as copies of the last point, or of zero when there is
// none. The count is not raised: it grows by one with each row captured.
void MainWindow::grow_point_count(ZERL_CFG *cfg, int old_count, int new_count)
{
    LONG_TABLE &current = cfg->long_current;
    POLY_RANGE_RECORD &range = cfg->table.poly[range_index(cfg->table)];
    const int first = std::max(old_count, 0);
    const double last_x = first > 0 ? current.x[first - 1] : 0.0;
    const double last_y = first > 0 ? current.y[first - 1] : 0.0;
    for (int i = first; i < new_count; ++i) {
        current.x[i] = last_x;
        current.y[i] = last_y;
        range.x[i] = last_x;
        range.y[i] = last_y;
        cfg->table.point_state[i] = POINT_NEW;
        row(i)->state = POINT_NEW;
        row(i)->set_caption(QStringLiteral("Capture New"));
        row(i)->set_caption_style(QLatin1String(STYLE_WHITE));
        row(first)->set_children_visible(true);
        row(first)->status = 0;
        write_row_values(row(i)->value_field(), row(i)->mv_label(), i);
        cfg->redraw_all = 1;
    }
}

void MainWindow::on_txtAveragingTime_editingFinished()
{
    m_time_left = false;
    if (end_decided())
        return;
    const long seconds = ui->txtAveragingTime->text().toLong();
    if (seconds < MIN_AVERAGING_S || seconds > MAX_AVERAGING_S) {
        const QSignalBlocker blocker(ui->txtAveragingTime);
        ask_question(this, QuestionMark::AveragingTime);
        if (end_decided())
            return;
        ui->txtAveragingTime->setText(QStringLiteral("10"));
    }
    // The length first: a pass that finds the flag down reads it at once.
    relaxed_store(g_fifo_size, static_cast<uint32_t>(ui->txtAveragingTime->text().toLong() *
                                                     SAMPLES_PER_SECOND));
    release_store(g_monitor_enabled, static_cast<uint8_t>(0));
}

// A field filled from the on-screen pad gets no return key.
void MainWindow::on_txtNumPoints_textChanged(const QString &)
{
    if (g_touch_input)
        on_txtNumPoints_returnPressed();
}

void MainWindow::on_txtAveragingTime_textChanged(const QString &)
{
    if (g_touch_input)
        on_txtAveragingTime_editingFinished();
}
