// SPDX-License-Identifier: GPL-3.0-or-later
#include "input/inputdevice.h"

#include <QApplication>
#include <QDoubleValidator>
#include <QEvent>
#include <QIntValidator>
#include <QLineEdit>
#include <QScreen>

#include "input/keyboard.h"
#include "input/numpad.h"

namespace
{

bool has_mark(const QObject *object, const char *mark)
{
    return object->property(mark).toBool();
}

// Asked for every event of the application. A mark is a dynamic property, and
// all but a few objects have none at all, which costs far less to see than a
// look-up by name.
bool is_marked(const QObject *object)
{
    return !object->dynamicPropertyNames().isEmpty() &&
           (has_mark(object, "keyboard") || has_mark(object, "numpad"));
}

// The field that a pad may open for, or null.
QLineEdit *servable(QObject *object)
{
    if (!object->property("enabled").toBool() || !has_mark(object, "keyboard"))
        return nullptr;
    return qobject_cast<QLineEdit *>(object);
}

// Null where the ancestors end sooner.
const QObject *third_ancestor(const QObject *object)
{
    for (int level = 0; level < 3 && object != nullptr; ++level)
        object = object->parent();
    return object;
}

bool is_numeric(const QValidator *validator)
{
    return qobject_cast<const QDoubleValidator *>(validator) != nullptr ||
           qobject_cast<const QIntValidator *>(validator) != nullptr;
}

} // namespace

InputDevice::InputDevice(const QString &owner)
    : keyboard(new Keyboard), numpad(new Numpad), owner_name(owner)
{
    keyboard->setObjectName(QStringLiteral("keyboard"));
    numpad->setObjectName(QStringLiteral("numpad"));
    connect(keyboard, &Keyboard::dataSet, this, &InputDevice::dataSet);
    connect(numpad, &Numpad::dataSet, this, &InputDevice::dataSet);
    qApp->installEventFilter(this);
}

InputDevice::~InputDevice()
{
    delete keyboard;
    delete numpad;
}

bool InputDevice::eventFilter(QObject *object, QEvent *event)
{
    if (!is_marked(object))
        return false;
    if (event->type() == QEvent::CloseSoftwareInputPanel) {
        close_pads();
        return true;
    }
    if (event->type() != QEvent::RequestSoftwareInputPanel)
        return false;
    QLineEdit *const field = servable(object);
    if (field == nullptr)
        return true;
    const QObject *const window = third_ancestor(field);
    if (window == nullptr || window->objectName() != owner_name)
        return false;
    open_pad(field);
    return true;
}

void InputDevice::show_input_panel(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::RequestSoftwareInputPanel || object == nullptr)
        return;
    if (QLineEdit *const field = servable(object))
        open_pad(field);
}

void InputDevice::open_pad(QLineEdit *field)
{
    // A pad left open for another field would answer for this one; and it may be
    // older than the dialog that this field is in, which would block it.
    if (target != field)
        close_pads();
    target = field;
    center_pads();
    const QValidator *const validator = field->validator();
    if (is_numeric(validator)) {
        numpad->setData(QVariant(target_text()), validator);
        numpad->setEchoMode(field->echoMode());
        return;
    }
    keyboard->setData(QVariant(target_text()), field->property("maxLength").toInt(), false);
    keyboard->setEchoMode(field->echoMode());
    keyboard->setValidator(validator);
}

void InputDevice::close_pads()
{
    numpad->close();
    keyboard->close();
}

void InputDevice::center_pads()
{
    // Its place too: in a cell with several screens the primary one may stand right
    // of another, and half its size alone would be a place on that one.
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    for (QWidget *pad : {static_cast<QWidget *>(keyboard), static_cast<QWidget *>(numpad)})
        pad->move(screen.x() + screen.width() / 2 - pad->width() / 2,
                  screen.y() + screen.height() / 2 - pad->height() / 2);
}

QString InputDevice::target_text() const
{
    const auto *const field = qobject_cast<const QLineEdit *>(target.data());
    return field != nullptr ? field->text().trimmed() : QString();
}

void InputDevice::set_target_text(const QString &text)
{
    auto *const field = qobject_cast<QLineEdit *>(target.data());
    if (field == nullptr)
        return;
    field->setText(text);
    // Losing the focus tells the owner that the edit is finished. Where the pad's
    // window has taken the activation the field has none to lose, and some builds
    // of Qt are silent about text that was not typed.
    bool told = false;
    const QPointer<QLineEdit> alive(field);
    const auto ear = connect(field, &QLineEdit::editingFinished, this, [&told] { told = true; });
    field->clearFocus();
    disconnect(ear);
    if (!told && !alive.isNull() && field->hasAcceptableInput())
        emit field->editingFinished();
}

// The pad goes first: a box with which the owner refuses the text would open
// under it and keep it from being closed.
void InputDevice::dataSet(QVariant *v)
{
    close_pads();
    set_target_text(v->toString());
}
