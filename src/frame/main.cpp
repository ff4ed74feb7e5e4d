// SPDX-License-Identifier: GPL-3.0-or-later
#include <clocale>

#include <sys/mman.h>

#include <QApplication>
#include <QFile>
#include <QLocale>

#include "frame/mainwindow.h"
#include "host/operations.h"
#include "host/vornaxqt.h"
#include "window/termination.h"

int main(int argc, char *argv[])
{
    if (is_display_env_var_empty(QString::fromLocal8Bit(argv[0])))
        return 1;
    // Numbers have a decimal point whatever the desktop's locale: in the window, in the
    // host's texts and in files. The application takes up the user's locale.
    QLocale::setDefault(QLocale::c());
    QApplication application(argc, argv);
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
