// SPDX-License-Identifier: GPL-3.0-or-later
//
// The training cell's panel as a program.
#include <cstdio>

#include <QApplication>
#include <QCommandLineParser>
#include <QLocale>
#include <QPixmap>

#include "hostsim/cell/cellpanel.h"

namespace
{

bool has_display()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

} // namespace

int main(int argc, char **argv)
{
    if (!has_display()) {
        std::fputs("cellpanel: there is no display; use cellctl instead\n", stderr);
        return 1;
    }
    // As in the cell's own texts, and in the tool beside it.
    QLocale::setDefault(QLocale::c());
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The training cell's panel."));
    parser.addHelpOption();
    const QCommandLineOption socket(QStringLiteral("socket"), QStringLiteral("Socket of the cell."),
                                    QStringLiteral("PATH"), QString::fromLatin1(cell::CELL_SOCKET));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save a picture of the window and end."),
                                        QStringLiteral("FILE"));
    parser.addOptions({socket, screenshot});
    parser.process(application);

    CellPanel panel(parser.value(socket));
    panel.show();
    if (parser.isSet(screenshot)) {
        const bool there = panel.refresh();
        QApplication::processEvents();
        return panel.grab().save(parser.value(screenshot)) && there ? 0 : 1;
    }
    return QApplication::exec();
}
