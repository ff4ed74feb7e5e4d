// SPDX-License-Identifier: GPL-3.0-or-later
//
// The report viewer is not part of this release; its action is never shown.
#include "frame/mainwindow.h"

void MainWindow::on_actionView_Previous_Calibration_Report_triggered() {}
