// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the pads of the on-screen input send.
#ifndef INPUT_SENTVALUE_H
#define INPUT_SENTVALUE_H

#include <QString>
#include <QVariant>

// The text on the heap. Nobody frees it: a receiver may keep the pointer. A
// function of its own, so that the search for leaks can leave out this one value
// and nothing that its receivers allocate.
Q_NEVER_INLINE QVariant *sent_value(const QString &text);

#endif
