// SPDX-License-Identifier: GPL-3.0-or-later
//
// The modal boxes of the program: a title bar without a close button.
#ifndef WINDOW_MESSAGEBOX_H
#define WINDOW_MESSAGEBOX_H

#include <QMessageBox>

// Flags of every box and of the dialogs that must be answered.
constexpr Qt::WindowFlags TITLE_BAR_ONLY =
    Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint;

// The window above which the boxes of the computation stand; null: none.
void set_box_parent(QWidget *window);

// The dialog or box that waits for its answer, the last one opened; null: none.
QDialog *open_dialog();

// Parent of a box: the dialog that is open, which a window manager could otherwise
// raise over the box, or else the widget given.
QWidget *box_owner(QWidget *otherwise);

// Shows the box, over box_owner(parent), and returns the standard button that
// answered it. A box that the program's end closes answers with the button that
// changes nothing.
QMessageBox::StandardButton ask(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton default_button);

// The same with OK alone, where nothing is decided.
void tell(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text);

#endif
