// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adjust and Re-Use: what becomes of the calibration.
#include "frame/mainwindow.h"

#include "calibration/classification.h"
#include "calibration/questions.h"
#include "calibration/tablestore.h"
#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "ui_mainwindow.h"
#include "window/queuedinput.h"
#include "window/styles.h"

namespace
{

void paint_box(QLineEdit *box, BoxColour colour)
{
    if (colour != BoxColour::Keeps)
        box->setStyleSheet(QLatin1String(status_style(static_cast<uint16_t>(colour))));
}

} // namespace

void MainWindow::on_btnAdjustCalibration_clicked()
{
    decide(true);
}

void MainWindow::on_btnReuseCalibration_clicked()
{
    decide(false);
}

void MainWindow::decide(bool adjust)
{
    compute_worst_status(this);
    const TABLE_RECORD &table = g_cfg->table;
    const ProcessDecision &decision =
        adjust ? adjust_decision(table.last_save_type, table.worst_status)
               : reuse_decision(table.last_save_type, table.worst_status);
    if (!ask_question(this, decision.asked))
        return;
    paint_box(ui->txtAdjustCalibration, decision.table_updated);
    paint_box(ui->txtAfterService, decision.after_service);
    if (decision.after_service != BoxColour::Keeps) {
        ui->txtAfterService->setText(QStringLiteral("N/A"));
        copy_text(g_ws_block->after_service_time, ui->txtAfterService->text());
    }
    finish_decision(adjust);
}

void MainWindow::finish_decision(bool adjust)
{
    ::clear_row_captions(this);
    stamp(ui->txtAdjustCalibration, g_ws_block->adjust_calibration_time);
    ui->btnAdjustCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    ui->btnReuseCalibration->setStyleSheet(QLatin1String(STYLE_IDLE));
    TABLE_RECORD &table = g_cfg->table;
    copy_text(table.qie, ui->txtCalibrationQIE->text());
    copy_text(table.verified_by, ui->txtTechnicianName->text());
    if (adjust)
        save_calibration(g_cfg, SAVE_ADJUSTED);
    else
        save_reused_calibration(g_cfg, SAVE_REUSED);
    rebuild_tables(g_cfg);
    auto_scale_plot();
    reclassify_rows(this);
    // The window stood still for the rebuild: what was pressed meanwhile was meant
    // for the calibration before it.
    drop_queued_input();
}
