// SPDX-License-Identifier: GPL-3.0-or-later
#include "input/sentvalue.h"

QVariant *sent_value(const QString &text)
{
    return new QVariant(text);
}
