// SPDX-License-Identifier: GPL-3.0-or-later
//
// The number pad by itself: its form, key by key, and what each key does.
#include <QClipboard>
#include <QDialog>
#include <QDoubleValidator>
#include <QIntValidator>
#include <QSignalSpy>
#include <QtTest>

#include "gui/input/bothpads.h"
#include "support/testmain.h"

using namespace touchscreen;

class NumberPad : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void window_of_the_pad();
    void form_of_the_pad();
    void nothing_in_the_pad_takes_the_focus();
    void keys_data();
    void keys();
    void no_other_keys();
    void escape_has_a_status_tip_that_nothing_reads();
    void key_sequences_data();
    void key_sequences();
    void backspace_edits_at_the_end_whatever_was_tapped();
    void ok_at_once_sends_the_value_carried_in();
    void trailing_period_is_removed_and_no_check_follows();
    void what_is_sent_belongs_to_the_receiver();
    void escape_sends_nothing();
    void closed_pad_keeps_its_text();
    void unacceptable_text_is_red_in_all_groups_and_cannot_be_confirmed();
    void validators_data();
    void validators();
    void without_a_validator_ok_keeps_the_state_it_had();
    void validator_that_goes_away_while_the_pad_is_open();
    void pasted_text_is_judged_too();
    void long_text_is_bounded();
    void strange_texts_data();
    void strange_texts();
    void echo_mode_of_the_field();
    void pad_makes_way_for_a_dialog();
    void dialog_that_goes_at_once_leaves_the_pad();
    void focus_outside_the_pad_is_kept();
    void pressed_key_can_be_seen();

private:
    std::unique_ptr<Numpad> m_pad;
    QStringList m_sent;
    QDoubleValidator m_doubles;
    QIntValidator m_whole;
};

void NumberPad::init()
{
    m_doubles.setLocale(QLocale::c());
    m_whole.setLocale(QLocale::c());
    m_pad = std::make_unique<Numpad>();
    m_sent.clear();
    note_sent(m_pad.get(), &m_sent);
}

void NumberPad::window_of_the_pad()
{
    check_window_of_pad(*m_pad, QStringLiteral("Numpad"), QSize(261, 380));
}

void NumberPad::form_of_the_pad()
{
    check_form_of_pad(*m_pad, QRect(QPoint(10, 10), QPoint(250, 40)),
                      QRect(QPoint(10, 70), QPoint(250, 370)));
}

void NumberPad::nothing_in_the_pad_takes_the_focus()
{
    check_nothing_takes_the_focus(*m_pad);
}

// The effect is told for the text 12.5, the first key being pressed.
void NumberPad::keys_data()
{
    // left: in the display
    test_columns<QString, int, QString, QString, QRect, QString, bool>(
        "label", "mode", "normal", "shift", "place", "left", "open");
    const auto row = [](const char *name, const char *label, int mode, const char *normal,
                        const char *shift, int x, int y, const char *left, int rows = 1,
                        bool open = true) {
        QTest::newRow(name) << label << mode << normal << shift << QRect(x, y, 60, 60 * rows)
                            << left << open;
    };
    row("escape", "Esc", 2, "escape", "", 0, 0, "12.5", 1, false);
    row("clear", "Clear", 2, "clear", "", 180, 0, "");
    row("7", "7", 1, "7", "7", 0, 60, "7");
    row("8", "8", 1, "8", "8", 60, 60, "8");
    row("9", "9", 1, "9", "9", 120, 60, "9");
    row("backspace", "<--", 2, "backspace", "", 180, 60, "12.", 2);
    row("4", "4", 1, "4", "4", 0, 120, "4");
    row("5", "5", 1, "5", "5", 60, 120, "5");
    row("6", "6", 1, "6", "6", 120, 120, "6");
    row("1", "1", 1, "1", "1", 0, 180, "1");
    row("2", "2", 1, "2", "2", 60, 180, "2");
    row("3", "3", 1, "3", "3", 120, 180, "3");
    row("enter", "Ok", 2, "ok", "", 180, 180, "12.5", 2, false);
    row("10", "+/-", 2, "pm", "0", 0, 240, "");
    row("0", "0", 1, "0", "0", 60, 240, "0");
    row("period", ".", 2, "period", "", 120, 240, "0.");
}

void NumberPad::keys()
{
    QFETCH(int, mode);
    QFETCH(QString, normal);
    QFETCH(QString, shift);
    QPushButton *const button = key(m_pad.get(), QString::fromLatin1(QTest::currentDataTag()));
    QTEST(button->text(), "label");
    QCOMPARE(button->property("btnMode"), QVariant(mode));
    QCOMPARE(button->property("btnNormal"), QVariant(normal));
    QCOMPARE(button->property("btnShift"), QVariant(shift));
    QTEST(button->geometry(), "place");
    QCOMPARE(button->parent()->objectName(), QStringLiteral("keyholder"));
    m_pad->setData(QStringLiteral("12.5"), &m_doubles);
    tap(button);
    QTEST(shown(m_pad.get()), "left");
    QTEST(m_pad->isVisible(), "open");
}

void NumberPad::no_other_keys()
{
    QCOMPARE(m_pad->findChildren<QPushButton *>().size(), 16);
}

void NumberPad::escape_has_a_status_tip_that_nothing_reads()
{
    QCOMPARE(key(m_pad.get(), "escape")->statusTip(), QString::fromUtf8("1¿escape¿¿"));
}

void NumberPad::key_sequences_data()
{
    const auto row = test_columns<QString, QString, QString>("value", "names", "left");
    row("the first key replaces the value", "12.5", "7", "7");
    row("the next one adds to it", "12.5", "7 3", "73");
    row("backspace first edits the value, its period is left", "12.5", "backspace", "12.");
    row("the sign key first clears the value and does nothing more", "12.5", "10", "");
    row("a value that stays behind a backspace goes with the next key", "12.5", "backspace 7", "7");
    row("a value that stays behind clear goes with the next key", "12.5", "clear 7", "7");
    row("text 0, key 5", "", "0 5", "5");
    row("text 0, key 0", "", "0 0", "0");
    row("text 0, period key", "", "0 period", "0.");
    row("empty text, period key", "", "period", "0.");
    row("1.2, period key: unchanged", "", "1 period 2 period", "1.2");
    row("digits behind the period", "", "1 period 2 5", "1.25");
    row("a zero within stays", "", "1 0 0", "100");
    row("the sign key on 5", "", "5 10", "-5");
    row("the sign key twice on 5", "", "5 10 10", "5");
    row("a digit behind the sign", "", "5 10 2", "-52");
    row("the sign key on empty text", "", "10", "");
    row("a lone minus sign", "", "5 10 backspace", "-");
    row("backspace on empty text", "", "backspace", "");
    row("backspace twice", "12.5", "backspace backspace", "12");
    row("clear behind digits", "", "1 2 clear", "");
}

void NumberPad::key_sequences()
{
    QFETCH(QString, value);
    QFETCH(QString, names);
    m_pad->setData(value, &m_doubles);
    tap_keys(m_pad.get(), names);
    QTEST(shown(m_pad.get()), "left");
    QVERIFY(m_sent.isEmpty());
}

void NumberPad::backspace_edits_at_the_end_whatever_was_tapped()
{
    m_pad->setData(QStringLiteral("123"), &m_doubles);
    display(m_pad.get())->setCursorPosition(1);
    tap_key(m_pad.get(), "backspace");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("12"));
    tap_key(m_pad.get(), "4");
    display(m_pad.get())->setCursorPosition(0);
    tap_key(m_pad.get(), "5");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("45"));
}

void NumberPad::ok_at_once_sends_the_value_carried_in()
{
    m_pad->setData(12.5, &m_doubles);
    tap_key(m_pad.get(), "enter");
    QCOMPARE(m_sent, QStringList("12.5"));
    QVERIFY(!m_pad->isVisible());
}

namespace
{

// Takes nothing but what ends in a period.
class PeriodAtTheEnd : public QDoubleValidator
{
public:
    State validate(QString &text, int &) const override
    {
        return text.endsWith('.') ? Acceptable : Intermediate;
    }
};

} // namespace

void NumberPad::trailing_period_is_removed_and_no_check_follows()
{
    m_pad->setData(QString(), &m_doubles);
    tap_keys(m_pad.get(), "1 2 period enter");
    QCOMPARE(m_sent, QStringList("12"));
    const PeriodAtTheEnd odd;
    m_pad->setData(QString(), &odd);
    tap_keys(m_pad.get(), "1 2 period enter");
    QCOMPARE(m_sent, QStringList({"12", "12"}));
    QVERIFY(key(m_pad.get(), "enter")->isEnabled());
}

// A receiver may keep the value for as long as it likes.
void NumberPad::what_is_sent_belongs_to_the_receiver()
{
    QVariant *kept = nullptr;
    Numpad pad;
    connect(&pad, &Numpad::dataSet, this, [&](QVariant *value) { kept = value; });
    pad.setData(QStringLiteral("3"), &m_doubles);
    tap_key(&pad, "enter");
    pad.setData(QStringLiteral("4"), &m_doubles);
    QVERIFY(kept != nullptr);
    QCOMPARE(*kept, QVariant("3"));
    delete kept;
}

void NumberPad::escape_sends_nothing()
{
    m_pad->setData(QStringLiteral("12.5"), &m_doubles);
    tap_keys(m_pad.get(), "7 escape");
    QVERIFY(!m_pad->isVisible());
    QVERIFY(m_sent.isEmpty());
}

void NumberPad::closed_pad_keeps_its_text()
{
    m_pad->setData(QStringLiteral("12.5"), &m_doubles);
    tap_keys(m_pad.get(), "7 8 escape");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("78"));
    m_pad->setData(QStringLiteral("9"), &m_doubles);
    QCOMPARE(shown(m_pad.get()), QStringLiteral("9"));
    tap_key(m_pad.get(), "1");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("1"));
}

void NumberPad::unacceptable_text_is_red_in_all_groups_and_cannot_be_confirmed()
{
    const QPalette designed = display(m_pad.get())->palette();
    m_pad->setData(QString(), &m_doubles);
    const QPalette red = display(m_pad.get())->palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(red.brush(group, QPalette::Text), QBrush(QColor(255, 0, 0), Qt::SolidPattern));
        QCOMPARE(red.brush(group, QPalette::Base), designed.brush(group, QPalette::Base));
    }
    QVERIFY(!key(m_pad.get(), "enter")->isEnabled());
    tap_key(m_pad.get(), "enter");
    QVERIFY(m_pad->isVisible());
    QVERIFY(m_sent.isEmpty());
    tap_key(m_pad.get(), "1");
    QCOMPARE(display(m_pad.get())->palette(), designed);
    QVERIFY(key(m_pad.get(), "enter")->isEnabled());
}

void NumberPad::validators_data()
{
    const auto row = test_columns<bool, QString, bool>("whole", "names", "acceptable");
    row("a number", false, "5", true);
    row("a negative one", false, "5 10", true);
    row("a lone minus sign", false, "5 10 backspace", false);
    row("nothing", false, "clear", false);
    row("a period at the end", false, "1 2 period", true);
    row("a whole number", true, "1 2", true);
    row("a period in a whole number", true, "1 2 period", false);
    row("taken back", true, "1 2 period backspace", true);
    row("more than a whole number holds", true, "9 9 9 9 9 9 9 9 9 9 9", false);
}

void NumberPad::validators()
{
    QFETCH(bool, whole);
    QFETCH(QString, names);
    QFETCH(bool, acceptable);
    m_pad->setData(QStringLiteral("8"), whole ? static_cast<QValidator *>(&m_whole) : &m_doubles);
    QVERIFY(key(m_pad.get(), "enter")->isEnabled());
    tap_keys(m_pad.get(), names);
    QCOMPARE(key(m_pad.get(), "enter")->isEnabled(), acceptable);
    const QColor colour = display(m_pad.get())->palette().color(QPalette::Text);
    QCOMPARE(colour == QColor(255, 0, 0), !acceptable);
}

void NumberPad::without_a_validator_ok_keeps_the_state_it_had()
{
    m_pad->setData(QString(), &m_doubles);
    QVERIFY(!key(m_pad.get(), "enter")->isEnabled());
    m_pad->setData(QStringLiteral("5"), nullptr);
    tap_key(m_pad.get(), "6");
    QVERIFY(!key(m_pad.get(), "enter")->isEnabled());
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    m_pad->setData(QString(), nullptr);
    tap_keys(m_pad.get(), "5 10 backspace");
    QVERIFY(key(m_pad.get(), "enter")->isEnabled());
    tap_key(m_pad.get(), "enter");
    QCOMPARE(m_sent, QStringList("-"));
}

void NumberPad::validator_that_goes_away_while_the_pad_is_open()
{
    auto validator = std::make_unique<QDoubleValidator>();
    m_pad->setData(QStringLiteral("5"), validator.get());
    validator.reset();
    tap_keys(m_pad.get(), "6 7 period 10 enter");
    QCOMPARE(m_sent, QStringList("-67"));
}

void NumberPad::pasted_text_is_judged_too()
{
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    QGuiApplication::clipboard()->setText(QStringLiteral("pasted"));
    display(m_pad.get())->paste();
    QCOMPARE(shown(m_pad.get()), QStringLiteral("5pasted"));
    QVERIFY(!key(m_pad.get(), "enter")->isEnabled());
}

void NumberPad::long_text_is_bounded()
{
    const QString digits(100000, '7');
    m_pad->setData(digits, &m_doubles);
    QCOMPARE(shown(m_pad.get()).size(), 32767);
    QGuiApplication::clipboard()->setText(digits);
    display(m_pad.get())->paste();
    QCOMPARE(shown(m_pad.get()).size(), 32767);
    tap_keys(m_pad.get(), "10 backspace 10 clear 8 enter");
    QCOMPARE(m_sent, QStringList("8"));
}

void NumberPad::strange_texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("line feeds") << "1\n2\n3";
    QTest::newRow("from right to left") << QString::fromUtf8("مرحبا 12");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("12😀");
    QTest::newRow("a null character") << QString(QChar(0)) + "5";
}

void NumberPad::strange_texts()
{
    QFETCH(QString, text);
    m_pad->setData(text, &m_doubles);
    QCOMPARE(shown(m_pad.get()), text);
    QVERIFY(!key(m_pad.get(), "enter")->isEnabled());
    for (int i = 0; i < text.size(); ++i)
        tap_key(m_pad.get(), "backspace");
    tap_keys(m_pad.get(), "4 enter");
    QCOMPARE(m_sent, QStringList("4"));
}

void NumberPad::echo_mode_of_the_field()
{
    m_pad->setEchoMode(QLineEdit::Password);
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    QVERIFY(display(m_pad.get())->displayText() != QStringLiteral("5"));
    m_pad->setEchoMode(QLineEdit::Normal);
    QCOMPARE(display(m_pad.get())->displayText(), QStringLiteral("5"));
}

// Under the pad the dialog could not be reached, nor the pad be closed.
void NumberPad::pad_makes_way_for_a_dialog()
{
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    QTRY_VERIFY(!m_pad->isVisible());
    QVERIFY(m_sent.isEmpty());
    m_pad->setData(QStringLiteral("6"), &m_doubles);
    QCoreApplication::processEvents();
    QVERIFY(m_pad->isVisible());
    tap_keys(m_pad.get(), "7 enter");
    QCOMPARE(m_sent, QStringList("7"));
}

void NumberPad::dialog_that_goes_at_once_leaves_the_pad()
{
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    dialog.hide();
    QCoreApplication::processEvents();
    QVERIFY(m_pad->isVisible());
    tap_keys(m_pad.get(), "6 enter");
    QCOMPARE(m_sent, QStringList("6"));
}

void NumberPad::focus_outside_the_pad_is_kept()
{
    QCOMPARE(m_pad->last_focused(), nullptr);
    {
        QWidget window;
        QLineEdit field(&window);
        window.show();
        field.setFocus();
        QTRY_COMPARE(m_pad->last_focused(), &field);
        const auto focus_goes_to = [this](QWidget *widget) {
            QMetaObject::invokeMethod(m_pad.get(), "saveFocusWidget", Q_ARG(QWidget *, nullptr),
                                      Q_ARG(QWidget *, widget));
        };
        focus_goes_to(display(m_pad.get()));
        QCOMPARE(m_pad->last_focused(), &field);
        focus_goes_to(nullptr);
        QCOMPARE(m_pad->last_focused(), &field);
    }
    QCOMPARE(m_pad->last_focused(), nullptr);
}

void NumberPad::pressed_key_can_be_seen()
{
    m_pad->setData(QStringLiteral("5"), &m_doubles);
    QPushButton *const seven = key(m_pad.get(), "7");
    const QImage before = seven->grab().toImage();
    seven->setDown(true);
    QVERIFY(seven->grab().toImage() != before);
    seven->setDown(false);
    QCOMPARE(seven->grab().toImage(), before);
}

WINDOW_TEST(NumberPad);
#include "test_numpad.moc"
