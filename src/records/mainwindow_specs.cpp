// SPDX-License-Identifier: GPL-3.0-or-later
//
// The specs file as the window reads it.
#include "frame/mainwindow.h"

#include "records/specsfile.h"
#include "window/messagebox.h"

void MainWindow::read_specs_file()
{
    if (read_specs(g_specs))
        return;
    const QString text =
        QStringLiteral("Cannot read file - %1 - to obtain\n\n- Environment variable names for:\n"
                       "     Temperature\n     Barometer\n     Humidity\n\n"
                       "- Report email addresses\n     to receive 1065 Linearity Report\n\n");
    QMessageBox box(QMessageBox::Information, QStringLiteral("Unable to open ini file"),
                    text.arg(QLatin1String(SPECS_PATH)), QMessageBox::NoButton, box_owner(this));
    box.setWindowFlags(TITLE_BAR_ONLY); // the constructor would add a close button
    box.setTextFormat(Qt::PlainText);
    box.addButton(QStringLiteral("Proceed"), QMessageBox::AcceptRole);
    box.exec();
}
