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

Buttons buttons_of(QUESTION_BUTTONS kind)
{
    switch (kind) {
    case BUTTONS_YES_NO:
        return {QMessageBox::Yes | QMessageBox::No, QMessageBox::No, QMessageBox::Question};
    case BUTTONS_OK_CANCEL:
        return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel, QMessageBox::Question};
    case BUTTONS_OK:
        break;
    }
    return {QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Information};
}

} // namespace

bool ask_question(QWidget *parent, QUESTION_MARK mark)
{
    if (mark == QUESTION_NONE)
        return true;
    const QUESTION &asked = question(mark);
    const Buttons buttons = buttons_of(asked.buttons);
    const QMessageBox::StandardButton answer =
        ask(parent, buttons.icon, QString::fromUtf8(asked.title), QString::fromUtf8(asked.text),
            buttons.offered, buttons.default_button);
    return answer == QMessageBox::Ok || answer == QMessageBox::Yes;
}
