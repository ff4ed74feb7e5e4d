// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window's process panel, and the questions before the program's end.
#include "frame/mainwindow.h"

#include "calibration/processboxes.h"
#include "calibration/questions.h"
#include "calibration/zerl_util.h"
#include "ui_mainwindow.h"

ProcessBoxes MainWindow::process_boxes() const
{
    ProcessBoxes boxes;
    boxes.as_found = ui->txtAsFound;
    boxes.after_service = ui->txtAfterService;
    boxes.adjust_calibration = ui->txtAdjustCalibration;
    boxes.verification = ui->txtVerificationData;
    boxes.new_correlation = ui->txtNewCorrelation;
    boxes.record_data = ui->btnRecordData;
    boxes.reuse_calibration = ui->btnReuseCalibration;
    boxes.adjust_decision = ui->btnAdjustCalibration;
    boxes.line_report = ui->btnGenerateLineRpt;
    boxes.statistics = ui->menuStatistics;
    boxes.polynomial_regression = ui->actionCal_Statistics_Chart;
    boxes.point_statistics = ui->actionPoint_Statistics;
    return boxes;
}

bool MainWindow::may_exit()
{
    switch (first_unfinished(this, g_cfg != nullptr ? g_cfg : get_cfg_pointer())) {
    case Unfinished::Points:
        return ask_question(this, QuestionMark::G1);
    case Unfinished::Calibration:
        return ask_question(this, QuestionMark::G2);
    case Unfinished::Table:
        return ask_question(this, QuestionMark::G3);
    case Unfinished::Nothing:
        break;
    }
    return true;
}

void MainWindow::on_actionExit_triggered()
{
    if (may_exit())
        close();
}
