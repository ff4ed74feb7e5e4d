// SPDX-License-Identifier: GPL-3.0-or-later
//
// The widgets of the main window, for tests and benchmarks alone: the program
// hands out only what a subject works on.
#ifndef SUPPORT_WINDOWFORM_H
#define SUPPORT_WINDOWFORM_H

#include "frame/mainwindow.h"
#include "ui_mainwindow.h"

inline Ui::MainWindow *form_of(const MainWindow *window)
{
    struct Opened : MainWindow {
        static Ui::MainWindow *form_of(const MainWindow *window)
        {
            return (window->*&Opened::form)();
        }
    };
    return Opened::form_of(window);
}

#endif
