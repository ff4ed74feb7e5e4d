// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/mainwindow.h"

// The table keeps its units: their change is not part of this release.
void MainWindow::on_btnUnits_clicked() {}
