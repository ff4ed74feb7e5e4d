// SPDX-License-Identifier: GPL-3.0-or-later
#include <clocale>

#include <sys/mman.h>

#include <QApplication>
#include <QFile>

#include "frame/mainwindow.h"
#include "host/operations.h"
#include "host/vornaxqt.h"
#include "window/termination.h"

int main(int argc, char *argv[])
{
    if (is_display_env_var_empty(QString::fromLocal8Bit(argv[0])))
        return 1;
    QApplication application(argc, argv);
    // The host's texts and files have a decimal point wherever the cell stands.
    setlocale(LC_NUMERIC, "C");
    install_termination_handler();
    // Only the marker's existence counts; it is never opened.
    g_touch_input = QFile::exists(QStringLiteral("/cell/vornax_ts.ini"));
    if ((join_layer(3) & 0xffff) == JOIN_REFUSED)
        exit_auth_failure();
    munlockall();
    MainWindow window;
    set_main_window(&window);
    window.show();
    const int result = QApplication::exec();
    set_main_window(nullptr);
    return result;
}
