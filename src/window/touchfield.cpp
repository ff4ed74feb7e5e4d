// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/touchfield.h"

#include <QEvent>
#include <QLineEdit>

#include "frame/zerl_callbacks.h"

namespace
{
constexpr char MARK[] = "keyboard";
}

void mark_touch_field(QLineEdit *field, QObject *window)
{
    field->setProperty(MARK, true);
    field->installEventFilter(window);
}

void hand_double_tap_over(QObject *object, const QEvent *event)
{
    if (g_touch_input && event->type() == QEvent::MouseButtonDblClick &&
        object->property(MARK).toBool())
        request_input_panel(object);
}
