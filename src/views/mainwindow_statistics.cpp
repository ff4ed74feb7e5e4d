// SPDX-License-Identifier: GPL-3.0-or-later
//
// The statistics menu: each entry shows a modal view over the record as it
// stands, without the table mutex.
#include "frame/mainwindow.h"
#include "views/currentcalibrationstatsdialog.h"
#include "views/pointstatsdialog.h"
#include "views/polyregressiondialog.h"

void MainWindow::on_actionStatistics_Chart_triggered()
{
    CurrentCalibrationStatsDialog dialog(this);
    dialog.exec();
}

void MainWindow::on_actionCal_Statistics_Chart_triggered()
{
    PolyRegressionDialog dialog(this);
    dialog.exec();
}

void MainWindow::on_actionPoint_Statistics_triggered()
{
    PointStatsDialog dialog(this);
    dialog.exec();
}
