// SPDX-License-Identifier: GPL-3.0-or-later
//
// The validator of the number fields of a touch screen cell.
#ifndef WINDOW_NUMBERVALIDATOR_H
#define WINDOW_NUMBERVALIDATOR_H

#include <QDoubleValidator>

// Judges the text without the blanks around it. The program writes its numbers
// padded to a width, and a field whose text is invalid from the start refuses no
// character any more. Numbers are in the locale of number_locale().
class NumberValidator : public QDoubleValidator
{
public:
    explicit NumberValidator(QObject *parent);

    // Changes neither text nor position.
    State validate(QString &text, int &position) const override;
};

#endif
