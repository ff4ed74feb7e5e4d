// SPDX-License-Identifier: GPL-3.0-or-later
//
// The modal boxes of the program: a title bar without a close button.
#ifndef FRAME_MESSAGEBOX_H
#define FRAME_MESSAGEBOX_H

#include <QMessageBox>

// Flags of every box and of the dialogs that must be answered.
constexpr Qt::WindowFlags TITLE_BAR_ONLY =
    Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint;

// Shows the box and returns the standard button that answered it. A box that the
// program's end closes answers with the button that changes nothing.
QMessageBox::StandardButton ask(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton default_button);

#endif
