// SPDX-License-Identifier: GPL-3.0-or-later
//
// The least that opens a window: what the program's start is held against.
#include <QApplication>
#include <QWidget>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1216, 788);
    window.show();
    return QApplication::exec();
}
