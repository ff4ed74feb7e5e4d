// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/numbervalidator.h"

#include "frame/functions.h"

NumberValidator::NumberValidator(QObject *parent) : QDoubleValidator(parent)
{
    setLocale(number_locale());
}

QValidator::State NumberValidator::validate(QString &text, int &) const
{
    QString number = text.trimmed();
    int position = 0;
    return QDoubleValidator::validate(number, position);
}
