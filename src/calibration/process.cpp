// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/process.h"

#include "calibration/questions.h"
#include "frame/mainwindow.h"
#include "frame/styles.h"
#include "host/operations.h"
#include "ui_mainwindow.h"

namespace
{

void reset_row(PointInfo *row)
{
    row->set_value_style(QLatin1String(STYLE_WHITE));
    row->set_caption(QStringLiteral("Capture"));
    row->status = 0;
}

void follow_point_state(PointInfo *row, int32_t point_state)
{
    switch (point_state) {
    case POINT_AS_IN_TABLE:
        row->set_caption(QStringLiteral("Capture"));
        row->status = 0;
        break;
    case POINT_NEW:
        row->set_value_style(QLatin1String(STYLE_WHITE));
        row->set_caption(QStringLiteral("Capture New"));
        row->status = 0;
        break;
    case POINT_CAPTURED:
        row->set_caption(QStringLiteral("Undo"));
        row->status = row->previous_status;
        break;
    default:
        break;
    }
}

void copy_time(char (&copy)[80], const QLineEdit *box)
{
    copyn(__FILE__, __LINE__, copy, box->text().toUtf8().constData(), sizeof copy);
}

// txtNewCorrelation is emptied like the others but its copy keeps the last time,
// and it never gets a colour.
void empty_boxes(Ui::MainWindow *form)
{
    for (QLineEdit *box : {form->txtAsFound, form->txtAfterService, form->txtAdjustCalibration,
                           form->txtVerificationData, form->txtNewCorrelation})
        box->clear();
    copy_time(g_ws_block->after_service_time, form->txtAfterService);
    copy_time(g_ws_block->adjust_calibration_time, form->txtAdjustCalibration);
    copy_time(g_ws_block->verification_time, form->txtVerificationData);
    copy_time(g_ws_block->as_found_time, form->txtAsFound);
    for (QLineEdit *box : {form->txtAdjustCalibration, form->txtAfterService, form->txtAsFound,
                           form->txtVerificationData})
        box->setStyleSheet(QLatin1String(STYLE_WHITE));
}

} // namespace

void reset_process_view(MainWindow *main, bool clear_rows)
{
    Ui::MainWindow *form = main->form();
    for (int i = 0; i < MAX_POINTS; ++i) {
        if (clear_rows)
            reset_row(main->row(i));
        else
            follow_point_state(main->row(i), g_cfg->table.point_state[i]);
    }
    empty_boxes(form);
    form->btnAdjustCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    form->btnAdjustCalibration->setEnabled(false);
    form->btnReuseCalibration->setEnabled(false);
    form->btnReuseCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    form->btnRecordData->setStyleSheet(QLatin1String(STYLE_IDLE));
    main->hide_rows();
    main->show_rows();
    g_cfg->table.worst_status = 0;
}

void update_record_ready(MainWindow *main)
{
    Ui::MainWindow *form = main->form();
    const bool all_captured = g_num_points <= g_captured_points;
    form->btnRecordData->setStyleSheet(QLatin1String(all_captured ? STYLE_READY : STYLE_IDLE));
    form->btnGenerateLineRpt->setEnabled(all_captured);
    form->menuStatistics->setEnabled(all_captured);
    if (!all_captured) {
        form->actionCal_Statistics_Chart->setEnabled(false);
        return;
    }
    if (g_cfg->table.table_type == TABLE_POLY)
        form->actionCal_Statistics_Chart->setEnabled(true);
    form->actionPoint_Statistics->setEnabled(true);
}

void clear_row_captions(MainWindow *main)
{
    main->clear_row_captions();
}

UNFINISHED first_unfinished(MainWindow *main, ZERL_CFG *cfg)
{
    const Ui::MainWindow *form = main->form();
    if (g_captured_points > 0 && table_dirty_noticed(cfg) != 0)
        return UNFINISHED_POINTS;
    if (!form->txtAdjustCalibration->text().isEmpty())
        return UNFINISHED_NOTHING;
    if (!form->txtAsFound->text().isEmpty() || !form->txtAfterService->text().isEmpty())
        return UNFINISHED_CALIBRATION;
    return table_dirty_noticed(cfg) != 0 ? UNFINISHED_TABLE : UNFINISHED_NOTHING;
}

bool MainWindow::may_exit()
{
    switch (first_unfinished(this, g_cfg != nullptr ? g_cfg : get_cfg_pointer())) {
    case UNFINISHED_POINTS:
        return ask_question(this, QUESTION_G1);
    case UNFINISHED_CALIBRATION:
        return ask_question(this, QUESTION_G2);
    case UNFINISHED_TABLE:
        return ask_question(this, QUESTION_G3);
    case UNFINISHED_NOTHING:
        break;
    }
    return true;
}

void MainWindow::on_actionExit_triggered()
{
    if (may_exit())
        close();
}
