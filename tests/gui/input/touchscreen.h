// SPDX-License-Identifier: GPL-3.0-or-later
//
// A finger on the screen of a touch screen cell. A tap goes in at the window, so
// it meets what lies there and is kept back where a dialog blocks it.
#ifndef GUI_INPUT_TOUCHSCREEN_H
#define GUI_INPUT_TOUCHSCREEN_H

#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include "input/inputdevice.h"
#include "input/keyboard.h"
#include "input/numpad.h"

namespace touchscreen
{

inline QPoint place_in_window(const QWidget *widget)
{
    return widget->mapTo(widget->window(), widget->rect().center());
}

inline void tap(QWidget *widget)
{
    QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {},
                      place_in_window(widget));
}

inline void double_tap(QWidget *widget)
{
    QTest::mouseDClick(widget->window()->windowHandle(), Qt::LeftButton, {},
                       place_in_window(widget));
}

// What a platform tells of a text field that is tapped or left, where it does. The
// application keeps such events that are sent to it for the input method, so this
// one goes to the filter at once. True when the event was swallowed.
inline bool panel_event(InputDevice *device, QObject *field,
                        QEvent::Type type = QEvent::RequestSoftwareInputPanel)
{
    QEvent event(type);
    return device->eventFilter(field, &event);
}

inline QLineEdit *display(const QWidget *pad)
{
    return pad->findChild<QLineEdit *>(QStringLiteral("edValue"));
}

inline QPushButton *key(const QWidget *pad, const QString &name)
{
    auto *const found = pad->findChild<QPushButton *>(QStringLiteral("btn_") + name);
    if (found == nullptr)
        qFatal("the pad has no key %s", qPrintable(name));
    return found;
}

inline void tap_key(const QWidget *pad, const QString &name)
{
    tap(key(pad, name));
}

// Names of keys, with blanks between.
inline void tap_keys(const QWidget *pad, const QString &names)
{
    for (const QString &name : names.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        tap_key(pad, name);
}

// Types a text of the characters that a bare key has.
inline void tap_text(const QWidget *pad, const QString &text)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('.'))
            tap_key(pad, QStringLiteral("period"));
        else if (c == QLatin1Char('-'))
            tap_key(pad, QStringLiteral("dash"));
        else if (c == QLatin1Char(' '))
            tap_key(pad, QStringLiteral("space"));
        else if (c.isUpper()) {
            tap_key(pad, QStringLiteral("lshift"));
            tap_key(pad, c.toLower());
        } else
            tap_key(pad, c);
    }
}

// Keys of a real keyboard: they go to the window that has the activation.
inline void hardware_keys(const QByteArray &text)
{
    for (const char c : text)
        QTest::keyClick(QGuiApplication::focusWindow(), c);
}

inline QString shown(const QWidget *pad)
{
    return display(pad)->text();
}

} // namespace touchscreen

// Notes each text that the pad sends in `texts`, and takes the value over.
template <class Pad> void note_sent(Pad *pad, QStringList *texts)
{
    QObject::connect(pad, &Pad::dataSet, pad, [texts](QVariant *value) {
        texts->append(value->toString());
        delete value;
    });
}

#endif
