// SPDX-License-Identifier: GPL-3.0-or-later
#include "input/keyboard.h"

#include <QApplication>
#include <QFocusEvent>
#include <QPushButton>

#include "input/padkeys.h"
#include "input/sentvalue.h"
#include "ui_keyboard.h"

Keyboard::Keyboard()
    : QWidget(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint), ui(std::make_unique<Ui::Keyboard>())
{
    ui->setupUi(this);
    connect(qApp, &QApplication::focusChanged, this, &Keyboard::saveFocusWidget);
    setFixedSize(size());
    buttons = ui->keyholder->children();
    connect_keys();
}

Keyboard::~Keyboard() = default;

void Keyboard::connect_keys()
{
    static const PadFunction<Keyboard> functions[] = {
        {QLatin1String("shift"), &Keyboard::shiftClicked},
        {QLatin1String("caps"), &Keyboard::capsClicked},
        {QLatin1String("enter"), &Keyboard::enterClicked},
        {QLatin1String("ok"), &Keyboard::okClicked},
        {QLatin1String("escape"), &Keyboard::escapeClicked},
        {QLatin1String("space"), &Keyboard::spaceClicked},
        {QLatin1String("clear"), &Keyboard::clearClicked},
        {QLatin1String("tab"), &Keyboard::tabClicked},
        {QLatin1String("backspace"), &Keyboard::backspaceClicked},
        {QLatin1String("left"), &Keyboard::leftClicked},
        {QLatin1String("right"), &Keyboard::rightClicked},
    };
    connect_pad_keys(this, buttons, &Keyboard::buttonClicked, functions);
}

void Keyboard::setData(const QVariant &value, int max_length, bool lines)
{
    multi_line = lines;
    ui->edValue->setMaxLength(max_length);
    ui->edValue->setText(value.toString());
    show();
}

void Keyboard::setEchoMode(QLineEdit::EchoMode mode)
{
    ui->edValue->setEchoMode(mode);
}

void Keyboard::setValidator(const QValidator *validator)
{
    ui->edValue->setValidator(validator);
}

bool Keyboard::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::WindowActivate:
        // The field's window stays the active one while the keyboard is used.
        if (last_focus != nullptr)
            last_focus->activateWindow();
        break;
    case QEvent::WindowBlocked:
        blocked = true;
        QMetaObject::invokeMethod(this, &Keyboard::make_way, Qt::QueuedConnection);
        break;
    case QEvent::WindowUnblocked:
        blocked = false;
        break;
    case QEvent::Show:
    case QEvent::Hide:
        show_cursor(event->type() == QEvent::Show);
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

// A dialog that has opened would lie under the keyboard, which it keeps from
// being used: the keyboard closes, without a result. It stays when it was opened
// anew meanwhile, for a field of that dialog.
void Keyboard::make_way()
{
    if (blocked)
        close();
}

// A line edit draws its cursor when it is told that it has the focus, which the
// display never takes.
void Keyboard::show_cursor(bool visible)
{
    QFocusEvent focus(visible ? QEvent::FocusIn : QEvent::FocusOut, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(ui->edValue, &focus);
}

void Keyboard::update_labels()
{
    for (QObject *child : qAsConst(buttons)) {
        auto *const key = qobject_cast<QPushButton *>(child);
        if (key == nullptr)
            continue;
        const int mode = key->property("btnMode").toInt();
        const bool shifted = shift || (mode == 0 && caps);
        if (mode == 0 || mode == 1)
            key->setText(key->property(shifted ? "btnShift" : "btnNormal").toString());
    }
    // The keys that hold stay down for as long.
    ui->btn_lshift->setChecked(shift);
    ui->btn_rshift->setChecked(shift);
    ui->btn_cabs->setChecked(caps);
}

void Keyboard::shiftClicked()
{
    shift = !shift;
    update_labels();
}

void Keyboard::capsClicked()
{
    shift = false;
    caps = !caps;
    update_labels();
}

// What goes beyond the greatest length is cut off at the end of the text.
void Keyboard::insert_text(const QString &text)
{
    const int position = ui->edValue->cursorPosition();
    ui->edValue->setText(ui->edValue->text().insert(position, text));
    ui->edValue->setCursorPosition(position + 1);
}

void Keyboard::buttonClicked()
{
    const auto *const key = qobject_cast<QPushButton *>(sender());
    if (key == nullptr)
        return;
    const QString label = key->text();
    // A button shows two ampersands as one.
    insert_text(label == QLatin1String("&&") ? QStringLiteral("&") : label);
    if (!shift)
        return;
    shift = false;
    update_labels();
}

void Keyboard::spaceClicked()
{
    insert_text(QStringLiteral(" "));
}

void Keyboard::tabClicked()
{
    insert_text(QStringLiteral("\t"));
}

void Keyboard::backspaceClicked()
{
    const int position = ui->edValue->cursorPosition();
    if (position == 0)
        return;
    ui->edValue->setText(ui->edValue->text().remove(position - 1, 1));
    ui->edValue->setCursorPosition(position - 1);
}

void Keyboard::clearClicked()
{
    ui->edValue->clear();
}

void Keyboard::leftClicked()
{
    ui->edValue->cursorBackward(false, 1);
}

void Keyboard::rightClicked()
{
    ui->edValue->cursorForward(false, 1);
}

void Keyboard::escapeClicked()
{
    close();
}

void Keyboard::okClicked()
{
    emit dataSet(sent_value(ui->edValue->text()));
    close();
}

void Keyboard::enterClicked()
{
    if (multi_line)
        insert_text(QStringLiteral("\n"));
    else
        okClicked();
}

void Keyboard::saveFocusWidget(QWidget *, QWidget *newFocus)
{
    if (newFocus != nullptr && !isAncestorOf(newFocus))
        last_focus = newFocus;
}
