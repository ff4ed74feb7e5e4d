// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/zerl_util.h"

#include <algorithm>

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "acquisition/pointinfo.h"
#include "acquisition/rowlook.h"
#include "calibration/classification.h"
#include "calibration/processboxes.h"
#include "calibration/tableload.h"
#include "frame/functions.h"
#include "frame/mainwindow.h"
#include "frame/tablelock.h"
#include "window/styles.h"

namespace
{

// The box of a new correlation is emptied like the others but its copy keeps the
// last time, and it never gets a colour.
void empty_boxes(const ProcessBoxes &boxes)
{
    for (QLineEdit *box : {boxes.as_found, boxes.after_service, boxes.adjust_calibration,
                           boxes.verification, boxes.new_correlation})
        box->clear();
    copy_text(g_ws_block->after_service_time, boxes.after_service->text());
    copy_text(g_ws_block->adjust_calibration_time, boxes.adjust_calibration->text());
    copy_text(g_ws_block->verification_time, boxes.verification->text());
    copy_text(g_ws_block->as_found_time, boxes.as_found->text());
    for (QLineEdit *box :
         {boxes.adjust_calibration, boxes.after_service, boxes.as_found, boxes.verification})
        box->setStyleSheet(QLatin1String(STYLE_WHITE));
}

} // namespace

void classify_point(MainWindow *, int32_t index, QWidget *widget, uint16_t *status_out)
{
    *status_out = point_status(*g_cfg, index);
    widget->setStyleSheet(QLatin1String(status_style(*status_out)));
}

void reclassify_rows(MainWindow *main)
{
    const int count = rows_in_use();
    for (int i = 0; i < count; ++i)
        classify_point(main, i, main->row(i)->value_field(), &main->row(i)->status);
}

void compute_worst_status(MainWindow *main)
{
    const int count = rows_in_use();
    uint16_t worst = 0;
    for (int i = 0; i < count; ++i)
        worst = std::max(worst, main->row(i)->status);
    if (count > 0)
        g_cfg->table.worst_status = worst;
}

void reset_process_view(MainWindow *main, bool clear_rows)
{
    if (clear_rows)
        reset_rows(main->rows());
    else
        follow_point_states(main->rows(), g_cfg->table.point_state);
    const ProcessBoxes boxes = main->process_boxes();
    empty_boxes(boxes);
    boxes.adjust_decision->setStyleSheet(QLatin1String(STYLE_IDLE));
    boxes.adjust_decision->setEnabled(false);
    boxes.reuse_calibration->setEnabled(false);
    boxes.reuse_calibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    boxes.record_data->setStyleSheet(QLatin1String(STYLE_IDLE));
    main->hide_rows();
    main->show_rows();
    g_cfg->table.worst_status = 0;
}

void update_record_ready(MainWindow *main)
{
    const ProcessBoxes boxes = main->process_boxes();
    const bool all_captured = g_num_points <= g_captured_points;
    boxes.record_data->setStyleSheet(QLatin1String(all_captured ? STYLE_READY : STYLE_IDLE));
    boxes.line_report->setEnabled(all_captured);
    boxes.statistics->setEnabled(all_captured);
    if (!all_captured) {
        boxes.polynomial_regression->setEnabled(false);
        return;
    }
    if (g_cfg->table.table_type == TABLE_POLY)
        boxes.polynomial_regression->setEnabled(true);
    boxes.point_statistics->setEnabled(true);
}

void clear_row_captions(MainWindow *main)
{
    main->clear_row_captions();
}

Unfinished first_unfinished(MainWindow *main, ZERL_CFG *cfg)
{
    const ProcessBoxes boxes = main->process_boxes();
    if (g_captured_points > 0 && table_dirty_noticed(cfg) != 0)
        return Unfinished::Points;
    if (!boxes.adjust_calibration->text().isEmpty())
        return Unfinished::Nothing;
    if (!boxes.as_found->text().isEmpty() || !boxes.after_service->text().isEmpty())
        return Unfinished::Calibration;
    return table_dirty_noticed(cfg) != 0 ? Unfinished::Table : Unfinished::Nothing;
}

void recompute_table_view(MainWindow *main)
{
    refresh_long_table(g_cfg);
    {
        TableLock lock(main->table_mutex());
        take_table_into_work(g_cfg);
        g_captured_points = 0;
        g_cfg->x_axis_range.changed = 1;
        g_cfg->y_axis_range.changed = 1;
        reset_point_statistics(g_cfg);
    }
    main->request_rescale();
    main->sync_type_controls(g_cfg);
    main->note_degree_on_show();
    main->show_table_fields(g_cfg);
    main->update_plot(g_cfg);
    reset_process_view(main, false);
    main->write_all_row_values();
    main->clear_next_step();
}
