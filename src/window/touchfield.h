// SPDX-License-Identifier: GPL-3.0-or-later
//
// Text fields of a touch screen cell: each is marked for its on-screen pad, and
// the window it stands in, as its event filter, hands a double tap over.
#ifndef WINDOW_TOUCHFIELD_H
#define WINDOW_TOUCHFIELD_H

class QEvent;
class QLineEdit;
class QObject;

// Marks the field and makes `window` its event filter; only for touch screens.
void mark_touch_field(QLineEdit *field, QObject *window);

// Opens the pad of a marked field at a double tap on a touch screen cell, and at
// nothing else. For eventFilter(), which then lets the event go on to the field.
void hand_double_tap_over(QObject *object, const QEvent *event);

#endif
