// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's Qt support.
#include "host/vornaxqt.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace
{

// QT_QPA_PLATFORM is a list "name:options;name:options" of what to try.
bool platform_needs_no_display()
{
    const QList<QByteArray> platforms = qgetenv("QT_QPA_PLATFORM").split(';');
    for (const QByteArray &platform : platforms) {
        const QByteArray name = platform.split(':').first().trimmed();
        for (const char *without : {"offscreen", "minimal", "vnc", "linuxfb", "eglfs"}) {
            if (name == without)
                return true;
        }
    }
    return false;
}

} // namespace

bool is_display_env_var_empty(QString)
{
    return qgetenv("DISPLAY").isEmpty() && qgetenv("WAYLAND_DISPLAY").isEmpty() &&
           !platform_needs_no_display();
}
