// SPDX-License-Identifier: GPL-3.0-or-later
//
// What becomes of a pad's result: the field that it goes to, its focus and its
// signals, fields that have gone, pads left open, keys of a real keyboard.
#include <QDialog>
#include <QDoubleValidator>
#include <QIntValidator>
#include <QRegularExpressionValidator>
#include <QSignalSpy>
#include <QTextEdit>
#include <QtTest>

#include "gui/input/nest.h"
#include "support/testmain.h"

using namespace touchscreen;

namespace
{

// Loses the focus without a word.
class SilentField : public QLineEdit
{
protected:
    void focusOutEvent(QFocusEvent *event) override { QWidget::focusOutEvent(event); }
};

} // namespace

class Results : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_device = std::make_unique<InputDevice>(QStringLiteral("Owner")); }
    void ok_sets_the_text_and_takes_the_focus();
    void field_that_is_silent_about_its_text_is_finished_too();
    void field_without_the_focus_is_finished_too();
    void escape_keeps_text_and_focus();
    void text_that_the_field_refuses_is_not_finished();
    void field_that_has_gone_meanwhile();
    void target_that_is_no_line_edit();
    void pad_of_another_field_is_closed_first();
    void pad_of_a_field_in_a_dialog_can_be_used();
    void box_that_refuses_the_text_is_not_under_the_pad();
    void hardware_keys_and_the_pad_on_one_field();
    void hardware_keys_and_the_keyboard_on_one_field();
    void long_text_of_a_field_is_bounded();
    void value_is_not_deleted();

private:
    bool ask(QObject *object)
    {
        QEvent event(QEvent::RequestSoftwareInputPanel);
        m_device->show_input_panel(object, &event);
        return open();
    }
    bool open() const { return m_device->keyboard->isVisible() || m_device->numpad->isVisible(); }

    std::unique_ptr<InputDevice> m_device;
};

void Results::ok_sets_the_text_and_takes_the_focus()
{
    Nest nest(3);
    nest.field->setFocus();
    QSignalSpy changed(nest.field, &QLineEdit::textChanged);
    QSignalSpy finished(nest.field, &QLineEdit::editingFinished);
    QVERIFY(ask(nest.field));
    QTRY_VERIFY(nest.field->hasFocus());
    finished.clear(); // what the passing activation has finished
    tap_keys(m_device->keyboard, "lshift p space 7 rshift_2");
    QCOMPARE(nest.field->text(), QStringLiteral("P 7"));
    QVERIFY(!nest.field->hasFocus());
    QVERIFY(nest.window.focusWidget() != nest.field);
    QVERIFY(!open());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(m_device->target.data(), nest.field);
}

// As in builds of Qt that are silent about a text that nobody typed.
void Results::field_that_is_silent_about_its_text_is_finished_too()
{
    SilentField field;
    field.show();
    field.activateWindow();
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    QSignalSpy finished(&field, &QLineEdit::editingFinished);
    m_device->target = &field;
    m_device->set_target_text(QStringLiteral("P 7"));
    QCOMPARE(field.text(), QStringLiteral("P 7"));
    QVERIFY(!field.hasFocus());
    QCOMPARE(finished.size(), 1);
}

// The number pad takes the activation, so the field has no focus to lose.
void Results::field_without_the_focus_is_finished_too()
{
    QIntValidator whole;
    Nest nest(3);
    nest.field->setValidator(&whole);
    QVERIFY(ask(nest.field));
    m_device->numpad->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), m_device->numpad);
    QVERIFY(!nest.field->hasFocus());
    QSignalSpy finished(nest.field, &QLineEdit::editingFinished);
    tap_keys(m_device->numpad, "4 2 enter");
    QCOMPARE(nest.field->text(), QStringLiteral("42"));
    QCoreApplication::processEvents();
    QCOMPARE(finished.size(), 1);
}

void Results::escape_keeps_text_and_focus()
{
    QDoubleValidator doubles;
    for (const bool numbers : {false, true}) {
        Nest nest(3);
        nest.field->setText(QStringLiteral("12"));
        nest.field->setValidator(numbers ? &doubles : nullptr);
        nest.field->setFocus();
        QTRY_VERIFY(nest.field->hasFocus());
        QSignalSpy changed(nest.field, &QLineEdit::textChanged);
        QVERIFY(ask(nest.field));
        const QWidget *const pad =
            numbers ? static_cast<QWidget *>(m_device->numpad) : m_device->keyboard;
        tap_keys(pad, "7 7 escape");
        QCOMPARE(nest.field->text(), QStringLiteral("12"));
        QVERIFY(changed.isEmpty());
        QCOMPARE(nest.window.focusWidget(), nest.field);
        nest.window.activateWindow(); // as a window manager does
        QTRY_VERIFY(nest.field->hasFocus());
    }
}

void Results::text_that_the_field_refuses_is_not_finished()
{
    const QRegularExpressionValidator letters(QRegularExpression("[a-z]*"));
    Nest nest(3);
    nest.field->setValidator(&letters);
    QSignalSpy finished(nest.field, &QLineEdit::editingFinished);
    QVERIFY(ask(nest.field));
    tap_keys(m_device->keyboard, "1 rshift_2");
    QCOMPARE(nest.field->text(), QStringLiteral("1"));
    QVERIFY(finished.isEmpty());
}

void Results::field_that_has_gone_meanwhile()
{
    auto *const device = m_device.get();
    for (const bool numbers : {false, true}) {
        auto nest = std::make_unique<Nest>(3);
        if (numbers)
            nest->field->setValidator(new QDoubleValidator(&nest->window));
        nest->field->setText(QStringLiteral("8"));
        QVERIFY(ask(nest->field));
        nest.reset(); // and the validator with it
        const QWidget *const pad =
            numbers ? static_cast<QWidget *>(device->numpad) : device->keyboard;
        QVERIFY(pad->isVisible());
        QCOMPARE(device->target_text(), QString());
        tap_keys(pad, numbers ? "7 period 10 backspace enter" : "7 left tab enter");
        QVERIFY(!open());
        QVERIFY(device->target.isNull());
    }
}

void Results::target_that_is_no_line_edit()
{
    QTextEdit text;
    text.setPlainText(QStringLiteral("as it was"));
    m_device->target = &text;
    QCOMPARE(m_device->target_text(), QString());
    m_device->set_target_text(QStringLiteral("new"));
    QCOMPARE(text.toPlainText(), QStringLiteral("as it was"));
}

// Its Ok would give this field a value that was meant for the other.
void Results::pad_of_another_field_is_closed_first()
{
    QDoubleValidator doubles;
    Nest number(3);
    number.field->setValidator(&doubles);
    number.field->setText(QStringLiteral("1"));
    Nest text(3);
    QVERIFY(ask(number.field));
    QVERIFY(m_device->numpad->isVisible());
    QVERIFY(ask(text.field));
    QVERIFY(!m_device->numpad->isVisible());
    QVERIFY(m_device->keyboard->isVisible());
    tap_keys(m_device->keyboard, "a enter");
    QCOMPARE(text.field->text(), QStringLiteral("a"));
    QCOMPARE(number.field->text(), QStringLiteral("1"));
}

void Results::pad_of_a_field_in_a_dialog_can_be_used()
{
    Nest behind(3);
    QVERIFY(ask(behind.field));
    QDialog dialog;
    dialog.setModal(true);
    QLineEdit field(&dialog);
    field.setProperty("keyboard", true);
    dialog.show();
    QVERIFY(ask(&field)); // before the pad for the other one has made way
    QCoreApplication::processEvents();
    QVERIFY(open());
    tap_keys(m_device->keyboard, "o k rshift_2");
    QCOMPARE(field.text(), QStringLiteral("ok"));
    QCOMPARE(behind.field->text(), QString());
}

void Results::box_that_refuses_the_text_is_not_under_the_pad()
{
    Nest nest(3);
    bool was_open = true;
    connect(nest.field, &QLineEdit::textChanged, this, [&] { was_open = open(); });
    QVERIFY(ask(nest.field));
    tap_keys(m_device->keyboard, "7 enter");
    QVERIFY(!was_open);
}

// The pad has the last word: what it shows replaces what was typed meanwhile.
void Results::hardware_keys_and_the_pad_on_one_field()
{
    QDoubleValidator doubles;
    Nest nest(3);
    nest.field->setValidator(&doubles);
    nest.field->setText(QStringLiteral("12.5"));
    nest.field->setFocus();
    QVERIFY(ask(nest.field));
    tap_keys(m_device->numpad, "4");
    // The pad's window has the activation, and nothing in it the focus: keys go
    // nowhere until the field's window is tapped.
    QTRY_COMPARE(QApplication::activeWindow(), m_device->numpad);
    hardware_keys("9");
    QCOMPARE(nest.field->text(), QStringLiteral("12.5"));
    QCOMPARE(shown(m_device->numpad), QStringLiteral("4"));
    nest.window.activateWindow();
    QTRY_VERIFY(nest.field->hasFocus());
    nest.field->end(false);
    hardware_keys("7");
    QCOMPARE(nest.field->text(), QStringLiteral("12.57"));
    QCOMPARE(shown(m_device->numpad), QStringLiteral("4"));
    tap_keys(m_device->numpad, "2 enter");
    QCOMPARE(nest.field->text(), QStringLiteral("42"));
}

void Results::hardware_keys_and_the_keyboard_on_one_field()
{
    Nest nest(3);
    nest.field->setText(QStringLiteral("pump"));
    nest.field->setFocus();
    QTRY_VERIFY(nest.field->hasFocus());
    QVERIFY(ask(nest.field));
    QTRY_VERIFY(nest.field->hasFocus());
    tap_keys(m_device->keyboard, "space 2");
    hardware_keys("ed");
    QVERIFY(nest.field->text().endsWith(QStringLiteral("ed")));
    QCOMPARE(shown(m_device->keyboard), QStringLiteral("pump 2"));
    tap_keys(m_device->keyboard, "escape");
    QVERIFY(nest.field->text().endsWith(QStringLiteral("ed")));
    QVERIFY(ask(nest.field));
    QCOMPARE(shown(m_device->keyboard), nest.field->text());
    tap_keys(m_device->keyboard, "1 rshift_2");
    QVERIFY(nest.field->text().endsWith(QStringLiteral("ed1")));
}

void Results::long_text_of_a_field_is_bounded()
{
    QDoubleValidator doubles;
    Nest nest(3);
    nest.field->setText(QString(100000, '7'));
    QVERIFY(ask(nest.field));
    QCOMPARE(shown(m_device->keyboard).size(), 32767);
    tap_keys(m_device->keyboard, "8 enter");
    QCOMPARE(nest.field->text(), QString(32767, '7'));
    nest.field->setValidator(&doubles);
    QVERIFY(ask(nest.field));
    QCOMPARE(shown(m_device->numpad).size(), 32767);
    tap_keys(m_device->numpad, "escape");
    m_device->set_target_text(QString(100000, '6'));
    QCOMPARE(nest.field->text(), QString(32767, '6'));
}

void Results::value_is_not_deleted()
{
    Nest nest(3);
    QVERIFY(ask(nest.field));
    QVariant value(QStringLiteral("kept"));
    m_device->dataSet(&value);
    QCOMPARE(nest.field->text(), QStringLiteral("kept"));
    QCOMPARE(value, QVariant("kept"));
}

WINDOW_TEST(Results);
#include "test_results.moc"
