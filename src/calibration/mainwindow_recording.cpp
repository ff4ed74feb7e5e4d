// SPDX-License-Identifier: GPL-3.0-or-later
//
// Record Data and the four kinds of recording.
#include "frame/mainwindow.h"

#include <QLocale>

#include "acquisition/pointinfo.h"
#include "calibration/classification.h"
#include "calibration/questions.h"
#include "calibration/savetypedialog.h"
#include "calibration/tablestore.h"
#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "ui_mainwindow.h"
#include "window/styles.h"

namespace
{

// An empty process box, white again, with its copy.
void empty_box(QLineEdit *box, char (&copy)[80])
{
    box->clear();
    copy_text(copy, box->text());
    box->setStyleSheet(QLatin1String(STYLE_WHITE));
}

} // namespace

void MainWindow::stamp(QLineEdit *box, char (&copy)[80])
{
    m_correlation_time = QDateTime::currentDateTime();
    // Read back by the report and by people elsewhere: never in the desktop's digits.
    box->setText(QLocale::c().toString(m_correlation_time, QStringLiteral("MM/dd/yyyy hh:mm:ss")));
    copy_text(copy, box->text());
}

void MainWindow::on_btnRecordData_clicked()
{
    clear_next_step();
    if (ui->txtTechnicianName->text().isEmpty() || ui->txtCalibrationQIE->text().isEmpty()) {
        ask_question(this, QuestionMark::R1);
        return;
    }
    g_captured_points = 0;
    for (int i = 0; i < MAX_POINTS; ++i) {
        if (row(i)->caption().contains(QLatin1String("Undo")))
            ++g_captured_points;
    }
    if (g_captured_points != g_num_points && !ask_question(this, QuestionMark::R2))
        return;
    const uint16_t as_found_done = ui->txtAsFound->text().isEmpty() ? 0 : 1;
    compute_worst_status(this);
    SaveTypeDialog dialog(this, as_found_done);
    dialog.exec();
    auto_scale_plot();
}

MainWindow::DecisionFlags MainWindow::enable_decisions()
{
    const DecisionFlags flags = {ui->btnAdjustCalibration->isEnabled(),
                                 ui->btnReuseCalibration->isEnabled()};
    ui->btnAdjustCalibration->setEnabled(true);
    ui->btnReuseCalibration->setEnabled(true);
    return flags;
}

void MainWindow::restore_decisions(DecisionFlags flags)
{
    ui->btnAdjustCalibration->setEnabled(flags.adjust);
    ui->btnReuseCalibration->setEnabled(flags.reuse);
}

// The tail of all four recordings.
void MainWindow::finish_recording(int32_t save_type)
{
    ::clear_row_captions(this);
    copy_text(g_cfg->table.qie, ui->txtCalibrationQIE->text());
    copy_text(g_cfg->table.verified_by, ui->txtTechnicianName->text());
    save_calibration(g_cfg, save_type);
}

// Record Data has emptied lblNextStep: without advice it stays empty.
void MainWindow::show_recorded_status(QLineEdit *box, int32_t save_type)
{
    const uint16_t worst = g_cfg->table.worst_status;
    box->setStyleSheet(QLatin1String(status_style(worst)));
    const RecordingAdvice *advice = recording_advice(save_type, worst);
    if (advice == nullptr)
        return;
    ui->btnReuseCalibration->setStyleSheet(QLatin1String(advice->reuse_style));
    ui->btnAdjustCalibration->setStyleSheet(QLatin1String(advice->adjust_style));
    if (advice->next_step != nullptr)
        ui->lblNextStep->setText(QString::fromUtf8(advice->next_step));
}

void MainWindow::record_as_found()
{
    const DecisionFlags flags = enable_decisions();
    // Both boxes, although the question says "or".
    if (!ui->txtAfterService->text().isEmpty() && !ui->txtAdjustCalibration->text().isEmpty()) {
        if (!ask_question(this, QuestionMark::D1)) {
            restore_decisions(flags);
            return;
        }
        empty_box(ui->txtAfterService, g_ws_block->after_service_time);
        empty_box(ui->txtAdjustCalibration, g_ws_block->adjust_calibration_time);
        empty_box(ui->txtVerificationData, g_ws_block->verification_time);
    }
    stamp(ui->txtAsFound, g_ws_block->as_found_time);
    finish_recording(SAVE_AS_FOUND);
    show_recorded_status(ui->txtAsFound, SAVE_AS_FOUND);
}

void MainWindow::record_after_service()
{
    const DecisionFlags flags = enable_decisions();
    if (ui->txtAsFound->text().isEmpty()) {
        ui->txtAsFound->setStyleSheet(QLatin1String(status_style(STATUS_SIGNIFICANTLY_OUT)));
        ui->txtAsFound->setText(QStringLiteral("N/A"));
        copy_text(g_ws_block->as_found_time, ui->txtAsFound->text());
    } else if (!ui->txtAdjustCalibration->text().isEmpty()) {
        if (!ask_question(this, QuestionMark::D2)) {
            restore_decisions(flags);
            return;
        }
        empty_box(ui->txtAdjustCalibration, g_ws_block->adjust_calibration_time);
        empty_box(ui->txtVerificationData, g_ws_block->verification_time);
    }
    stamp(ui->txtAfterService, g_ws_block->after_service_time);
    finish_recording(SAVE_AFTER_SERVICE);
    show_recorded_status(ui->txtAfterService, SAVE_AFTER_SERVICE);
}

void MainWindow::record_verification()
{
    const DecisionFlags flags = enable_decisions();
    if (ui->txtAdjustCalibration->text().isEmpty() && !ask_question(this, QuestionMark::D3)) {
        restore_decisions(flags);
        return;
    }
    stamp(ui->txtVerificationData, g_ws_block->verification_time);
    finish_recording(SAVE_VERIFICATION);
    show_recorded_status(ui->txtVerificationData, SAVE_VERIFICATION);
}

// No question, no colours, no advice, and no rebuild although the table is
// rewritten.
void MainWindow::record_new_correlation()
{
    stamp(ui->txtNewCorrelation, g_ws_block->new_correlation_time);
    finish_recording(SAVE_NEW_CORRELATION);
}
