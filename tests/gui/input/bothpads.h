// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the number pad and the keyboard have in common, looked at on either.
#ifndef GUI_INPUT_BOTHPADS_H
#define GUI_INPUT_BOTHPADS_H

#include <QFrame>

#include "gui/input/touchscreen.h"

namespace touchscreen
{

inline void check_window_of_pad(const QWidget &pad, const QString &title, const QSize &size)
{
    QVERIFY(pad.isWindow());
    QCOMPARE(pad.parentWidget(), nullptr);
    QCOMPARE(pad.windowType(), Qt::Tool);
    QVERIFY(pad.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QCOMPARE(pad.windowModality(), Qt::WindowModal);
    QCOMPARE(pad.windowTitle(), title);
    QCOMPARE(pad.minimumSize(), size);
    QCOMPARE(pad.maximumSize(), size);
    QVERIFY(!pad.isVisible());
    // Left open it keeps the program no longer than its window.
    QVERIFY(!pad.testAttribute(Qt::WA_QuitOnClose));
}

inline void check_form_of_pad(const QWidget &pad, const QRect &value, const QRect &keys)
{
    QCOMPARE(display(&pad)->geometry(), value);
    QCOMPARE(display(&pad)->font().pointSize(), 10);
    QCOMPARE(display(&pad)->font().weight(), 75);
    const auto *holder = pad.findChild<QFrame *>(QStringLiteral("keyholder"));
    QCOMPARE(holder->geometry(), keys);
    QCOMPARE(holder->frameShape(), QFrame::StyledPanel);
    QCOMPARE(holder->frameShadow(), QFrame::Raised);
}

inline void check_nothing_takes_the_focus(const QWidget &pad)
{
    QCOMPARE(pad.focusPolicy(), Qt::NoFocus);
    for (const QWidget *widget : pad.findChildren<QWidget *>())
        QVERIFY2(widget->focusPolicy() == Qt::NoFocus, qPrintable(widget->objectName()));
}

} // namespace touchscreen

#endif
