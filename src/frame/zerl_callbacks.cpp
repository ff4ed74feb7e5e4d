// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/zerl_callbacks.h"

#include <QEvent>

ZERL_CALLBACKS g_callbacks = {nullptr, nullptr};

void request_input_panel(QObject *field)
{
    if (g_callbacks.show_input_panel == nullptr)
        return;
    QEvent event(QEvent::RequestSoftwareInputPanel);
    g_callbacks.show_input_panel(field, &event);
}
