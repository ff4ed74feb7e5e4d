// SPDX-License-Identifier: GPL-3.0-or-later
//
// The statistics menu. Its three views are not part of this release.
#include "frame/mainwindow.h"

void MainWindow::on_actionStatistics_Chart_triggered() {}

void MainWindow::on_actionCal_Statistics_Chart_triggered() {}

void MainWindow::on_actionPoint_Statistics_triggered() {}
