// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/functions.h"

#include <cmath>
#include <cstring>

#include "host/operations.h"

bool nearly_equal(double a, double b)
{
    return 1e-6 >= std::fabs(a - b);
}

void trim_text(char *text)
{
    std::size_t length = std::strlen(text);
    while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == '\n'))
        --length;
    text[length] = '\0';
    const std::size_t leading = std::strspn(text, " ");
    std::memmove(text, text + leading, length - leading + 1);
}

QString value_text(double value)
{
    return QString::asprintf("%8.4f", value);
}

QLocale number_locale()
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    return locale;
}

QString record_text(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(strnlen(text, size)));
}

bool plain_for_shell(const char *path)
{
    return path[std::strspn(
               path, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/")] == '\0';
}

QByteArray for_shell(const char *path)
{
    if (plain_for_shell(path))
        return path;
    return "'" + QByteArray(path).replace("'", "'\\''") + "'";
}

QByteArray shown_bytes(const QString &shown, const QByteArray &own)
{
    return shown == QString::fromUtf8(own) ? own : shown.toUtf8();
}

void copy_text(char *field, std::size_t size, const QString &text, const char *file, int line)
{
    copyn(file, line, field, text.toUtf8().constData(), size);
}
