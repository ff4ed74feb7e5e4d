// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/questions.h"

#include "window/messagebox.h"

namespace
{

struct Buttons {
    QMessageBox::StandardButtons offered;
    QMessageBox::StandardButton default_button;
    QMessageBox::Icon icon;
};

Buttons buttons_of(QuestionButtons kind)
{
    switch (kind) {
    case QuestionButtons::YesNo:
        return {QMessageBox::Yes | QMessageBox::No, QMessageBox::No, QMessageBox::Question};
    case QuestionButtons::OkCancel:
        return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel, QMessageBox::Question};
    case QuestionButtons::Ok:
        break;
    }
    return {QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Information};
}

} // namespace

bool ask_question(QWidget *parent, QuestionMark mark)
{
    if (mark == QuestionMark::None)
        return true;
    const ProcessQuestion &asked = question(mark);
    const Buttons buttons = buttons_of(asked.buttons);
    const QMessageBox::StandardButton answer =
        ask(parent, buttons.icon, QString::fromUtf8(asked.title), QString::fromUtf8(asked.text),
            buttons.offered, buttons.default_button);
    return answer == QMessageBox::Ok || answer == QMessageBox::Yes;
}
