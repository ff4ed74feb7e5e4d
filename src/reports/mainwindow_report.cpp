// SPDX-License-Identifier: GPL-3.0-or-later
//
// The report viewer.
#include "frame/mainwindow.h"

#include <cstdlib>

#include <unistd.h>

#include "reports/previousreport.h"
#include "window/messagebox.h"

// A name of the host may hold bytes that are no text, so the path is looked up as
// it stands. The window waits for the browser. What the shell makes of the command is not
// looked at; only that it could be asked.
void MainWindow::on_actionView_Previous_Calibration_Report_triggered()
{
    const QByteArray path = previous_report_path(g_cfg->table);
    if (::access(path.constData(), F_OK) != 0) {
        tell(this, QMessageBox::Information, QStringLiteral("No Previous Report"),
             QStringLiteral("No Previous Calibration Report Exists"));
        return;
    }
    if (std::system(browser_command(path).constData()) == -1)
        tell(this, QMessageBox::Warning, QStringLiteral("Error"),
             QStringLiteral("Error displaying previous calibration report"));
}
