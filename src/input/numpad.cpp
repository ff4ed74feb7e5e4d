// SPDX-License-Identifier: GPL-3.0-or-later
#include "input/numpad.h"

#include <QApplication>
#include <QEvent>
#include <QPushButton>

#include "input/padkeys.h"
#include "input/sentvalue.h"
#include "ui_numpad.h"

Numpad::Numpad(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint), ui(std::make_unique<Ui::Numpad>())
{
    ui->setupUi(this);
    connect(qApp, &QApplication::focusChanged, this, &Numpad::saveFocusWidget);
    setFixedSize(size());
    buttons = ui->keyholder->children();
    normal_palette = ui->edValue->palette();
    connect_keys();
    // What comes into the display past the keys, by a paste, is judged as well.
    connect(ui->edValue, &QLineEdit::textEdited, this, &Numpad::check_value);
}

Numpad::~Numpad() = default;

void Numpad::connect_keys()
{
    static const PadFunction<Numpad> functions[] = {
        {QLatin1String("ok"), &Numpad::enterClicked},
        {QLatin1String("escape"), &Numpad::escapeClicked},
        {QLatin1String("clear"), &Numpad::clearClicked},
        {QLatin1String("backspace"), &Numpad::backspaceClicked},
        {QLatin1String("period"), &Numpad::periodClicked},
        {QLatin1String("pm"), &Numpad::pmClicked},
    };
    connect_pad_keys(this, buttons, &Numpad::buttonClicked, functions);
}

void Numpad::setData(const QVariant &value, const QValidator *text_validator)
{
    validator = text_validator;
    show_text(value.toString());
    clear_on_key = true;
    show();
    check_value();
}

void Numpad::setEchoMode(QLineEdit::EchoMode mode)
{
    ui->edValue->setEchoMode(mode);
}

bool Numpad::event(QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked) {
        blocked = true;
        QMetaObject::invokeMethod(this, &Numpad::make_way, Qt::QueuedConnection);
    } else if (event->type() == QEvent::WindowUnblocked)
        blocked = false;
    return QWidget::event(event);
}

// A dialog that has opened would lie under the pad, which it keeps from being
// used: the pad closes, without a result. It stays when it was opened anew
// meanwhile, for a field of that dialog.
void Numpad::make_way()
{
    if (blocked)
        close();
}

void Numpad::clear_if_first()
{
    if (clear_on_key)
        ui->edValue->clear();
    clear_on_key = false;
}

// The pad has no cursor: text comes and goes at the end, wherever a touch of the
// display has put one.
void Numpad::show_text(const QString &text)
{
    ui->edValue->setText(text);
}

// Text that the field would not take shows in red and cannot be confirmed.
void Numpad::check_value()
{
    if (validator == nullptr)
        return;
    QString text = ui->edValue->text();
    int pos = 0;
    const bool acceptable = validator->validate(text, pos) == QValidator::Acceptable;
    QPalette palette = normal_palette;
    if (!acceptable)
        palette.setColor(QPalette::Text, QColor(255, 0, 0));
    ui->edValue->setPalette(palette);
    ui->btn_enter->setEnabled(acceptable);
}

void Numpad::buttonClicked()
{
    const auto *const key = qobject_cast<QPushButton *>(sender());
    if (key == nullptr)
        return;
    clear_if_first();
    const QString text = ui->edValue->text();
    // A leading zero does not stay.
    show_text((text == QLatin1String("0") ? QString() : text) + key->text());
    check_value();
}

void Numpad::periodClicked()
{
    clear_if_first();
    const QString text = ui->edValue->text();
    const QString period = ui->btn_period->text();
    if (text.contains(period))
        return;
    show_text((text.isEmpty() ? QStringLiteral("0") : text) + period);
    check_value();
}

void Numpad::pmClicked()
{
    clear_if_first();
    const QString text = ui->edValue->text();
    if (text.isEmpty())
        return;
    const QLatin1Char minus('-');
    show_text(text.startsWith(minus) ? text.mid(1) : minus + text);
    check_value();
}

void Numpad::clearClicked()
{
    ui->edValue->clear();
    check_value();
}

void Numpad::backspaceClicked()
{
    QString text = ui->edValue->text();
    text.chop(1);
    show_text(text);
    check_value();
}

void Numpad::escapeClicked()
{
    close();
}

void Numpad::enterClicked()
{
    QString text = ui->edValue->text();
    const QString period = ui->btn_period->text();
    // No check follows: without its period the number is the same.
    if (text.endsWith(period)) {
        text.chop(period.size());
        show_text(text);
    }
    emit dataSet(sent_value(text));
    close();
}

void Numpad::saveFocusWidget(QWidget *, QWidget *newFocus)
{
    if (newFocus != nullptr && !isAncestorOf(newFocus))
        last_focus = newFocus;
}
