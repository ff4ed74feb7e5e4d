// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keyboard by itself, key by key, and what each key does.
#include <QRegularExpressionValidator>
#include <QtTest>

#include "gui/input/touchscreen.h"
#include "support/testmain.h"

using namespace touchscreen;

class TypingPad : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void keys_data();
    void keys();
    void no_other_keys();
    void escape_has_a_status_tip_that_nothing_reads();
    void shifted_seven_shows_one_ampersand();
    void key_sequences_data();
    void key_sequences();
    void labels_data();
    void labels();
    void function_keys_keep_their_labels();
    void cut_at_the_greatest_length();
    void ok_and_enter_send_and_close_data();
    void ok_and_enter_send_and_close();
    void what_is_sent_belongs_to_the_receiver();
    void escape_sends_nothing();
    void enter_in_several_lines();
    void caps_left_on_at_closing();
    void shift_left_on_at_closing();
    void validator_of_the_field_judges_nothing();
    void validator_that_goes_away_while_the_keyboard_is_open();

private:
    void open(const QString &text, int max_length = 32767, bool lines = false)
    {
        m_pad->setData(text, max_length, lines);
    }
    int cursor() const { return display(m_pad.get())->cursorPosition(); }

    std::unique_ptr<Keyboard> m_pad;
    QStringList m_sent;
};

void TypingPad::init()
{
    m_pad = std::make_unique<Keyboard>();
    m_sent.clear();
    note_sent(m_pad.get(), &m_sent);
}

// The effect is told for the text "ab" with the cursor before the b; a function
// key's shifted effect is the same.
void TypingPad::keys_data()
{
    test_columns<QString, int, QString, QString, QRect, QString, QString, int, bool>(
        "label", "mode", "normal", "shift", "place", "left", "left_shifted", "cursor", "open");
    const auto character = [](const QString &name, int mode, const QString &normal,
                              const QString &shift, int x, int y, int width = 60) {
        const QString typed = shift == "&&" ? QString("&") : shift;
        QTest::newRow(qPrintable(name))
            << normal << mode << normal << shift << QRect(x, y, width, 60) << "a" + normal + "b"
            << "a" + typed + "b" << 2 << true;
    };
    const auto letters = [&](const QString &all, int x, int y) {
        for (int i = 0; i < all.size(); ++i)
            character(all[i], 0, all[i], all[i].toUpper(), x + 60 * i, y);
    };
    const auto function = [](const char *name, const char *label, const char *normal, int x, int y,
                             int width, const char *left = "ab", int cursor = 1, bool open = true) {
        QTest::newRow(name) << label << 2 << normal << "" << QRect(x, y, width, 60) << left << left
                            << cursor << open;
    };
    function("escape", "Esc", "escape", 0, 0, 60, "ab", 1, false);
    function("clear", "Clear", "clear", 780, 0, 81, "", 0);
    const struct {
        const char *name;
        const char *normal;
        const char *shift;
    } upper_row[] = {{"backquote", "`", "~"}, {"1", "1", "!"}, {"2", "2", "@"}, {"3", "3", "#"},
                     {"4", "4", "$"},         {"5", "5", "%"}, {"6", "6", "^"}, {"7", "7", "&&"},
                     {"8", "8", "*"},         {"9", "9", "("}, {"0", "0", ")"}, {"dash", "-", "_"},
                     {"equal", "=", "+"}};
    int x = 0;
    for (const auto &one : upper_row) {
        character(one.name, 1, one.normal, one.shift, x, 60);
        x += 60;
    }
    function("backspace", "<--", "backspace", 780, 60, 81, "b", 0);
    function("tab", "Tab", "tab", 0, 120, 71, "a\tb", 2);
    letters("qwertyuiop", 70, 120);
    character("startbracket", 1, "[", "{", 670, 120);
    character("endbracket", 1, "]", "}", 730, 120);
    character("backslash", 1, "\\", "|", 790, 120, 71);
    function("cabs", "Caps", "caps", 0, 180, 81);
    letters("asdfghjkl", 80, 180);
    character("semicolon", 1, ";", ":", 620, 180);
    character("apostrophe", 1, "'", "\"", 680, 180);
    function("enter", "Enter", "enter", 740, 180, 121, "ab", 1, false);
    function("lshift", "Shift", "shift", 0, 240, 91);
    letters("zxcvbnm", 90, 240);
    character("comma", 1, ",", "<", 510, 240);
    character("period", 1, ".", ">", 570, 240);
    character("slash", 1, "/", "?", 630, 240);
    function("rshift", "Shift", "shift", 690, 240, 171);
    function("left", "<-", "left", 0, 300, 60, "ab", 0);
    function("right", "->", "right", 60, 300, 60, "ab", 2);
    function("space", "Space", "space", 170, 300, 431, "a b", 2);
    function("rshift_2", "Ok", "ok", 690, 300, 171, "ab", 1, false);
}

void TypingPad::keys()
{
    QFETCH(int, mode);
    QFETCH(QString, normal);
    QFETCH(QString, shift);
    QFETCH(bool, open);
    QPushButton *const button = key(m_pad.get(), QString::fromLatin1(QTest::currentDataTag()));
    QTEST(button->text(), "label");
    QCOMPARE(button->property("btnMode"), QVariant(mode));
    QCOMPARE(button->property("btnNormal"), QVariant(normal));
    QCOMPARE(button->property("btnShift"), QVariant(shift));
    QTEST(button->geometry(), "place");
    QCOMPARE(button->parent()->objectName(), QStringLiteral("keyholder"));
    for (const bool shifted : {false, true}) {
        this->open(QStringLiteral("ab"));
        display(m_pad.get())->setCursorPosition(1);
        if (shifted)
            tap_key(m_pad.get(), "rshift");
        tap(button);
        QTEST(shown(m_pad.get()), shifted ? "left_shifted" : "left");
        QTEST(cursor(), "cursor");
        QCOMPARE(m_pad->isVisible(), open);
    }
}

// 26 letters, 21 digits and symbols, 12 functions.
void TypingPad::no_other_keys()
{
    QCOMPARE(m_pad->findChildren<QPushButton *>().size(), 26 + 21 + 12);
}

void TypingPad::escape_has_a_status_tip_that_nothing_reads()
{
    QCOMPARE(key(m_pad.get(), "escape")->statusTip(), QString::fromUtf8("1¿escape¿¿"));
}

// The label "&&" is what a button shows as one.
void TypingPad::shifted_seven_shows_one_ampersand()
{
    open(QString());
    tap_key(m_pad.get(), "lshift");
    QPushButton *const seven = key(m_pad.get(), "7");
    QCOMPARE(seven->text(), QStringLiteral("&&"));
    const QImage two = seven->grab().toImage();
    seven->setText(QStringLiteral("&&&&"));
    QVERIFY(seven->grab().toImage() != two);
}

void TypingPad::key_sequences_data()
{
    const auto row =
        test_columns<QString, QString, QString, int>("text", "names", "left", "cursor");
    row("opened with abc, typing d", "abc", "d", "abcd", 4);
    row("left, left, x", "abcd", "left left x", "abxcd", 3);
    row("right at the end stays", "abc", "right d", "abcd", 4);
    row("left at the start stays", "a", "left left left b", "ba", 1);
    row("right within", "abc", "left left right x", "abxc", 3);
    row("shift, a, b", "", "lshift a b", "Ab", 2);
    row("the right shift as well", "", "rshift a b", "Ab", 2);
    row("caps, then 1 and a", "", "cabs 1 a", "1A", 2);
    row("shift with caps on, then 1; then the shift ends", "", "cabs lshift 1 1 a", "!1A", 3);
    row("shift with caps on does not invert caps", "", "cabs lshift a b", "AB", 2);
    row("shift, then shift: nothing typed", "x", "lshift lshift", "x", 1);
    row("shift taken back", "", "lshift rshift a", "a", 1);
    row("caps ends a shift", "", "lshift cabs 1 a", "1A", 2);
    row("caps taken back", "", "cabs cabs a", "a", 1);
    row("shift, space, a: space does not consume the shift", "", "lshift space a b", " Ab", 3);
    row("tab does not consume the shift", "", "lshift tab a b", "\tAb", 3);
    row("clear does not consume the shift", "x", "lshift clear a b", "Ab", 2);
    row("backspace does not consume the shift", "x", "lshift backspace a b", "Ab", 2);
    row("shift, 7: one ampersand goes in", "", "lshift 7", "&", 1);
    row("a symbol consumes the shift", "", "lshift comma comma", "<,", 2);
    row("backspace at the start does nothing", "abc", "left left left backspace", "abc", 0);
    row("backspace at position 1", "abc", "left left backspace", "bc", 0);
    row("backspace within", "abcd", "left left backspace", "acd", 1);
    row("backspace at the end", "abc", "backspace", "ab", 2);
    row("backspace on nothing", "", "backspace", "", 0);
    row("clear", "abc", "clear", "", 0);
    row("insertion at the cursor", "ac", "left b", "abc", 2);
    row("space at the cursor", "ab", "left space", "a b", 2);
}

void TypingPad::key_sequences()
{
    QFETCH(QString, text);
    QFETCH(QString, names);
    open(text);
    QCOMPARE(cursor(), text.size());
    tap_keys(m_pad.get(), names);
    QTEST(shown(m_pad.get()), "left");
    QTEST(cursor(), "cursor");
}

void TypingPad::labels_data()
{
    const auto row =
        test_columns<QString, bool, bool>("names", "letters_shifted", "symbols_shifted");
    row("at first", "", false, false);
    row("shift", "lshift", true, true);
    row("shift twice", "lshift lshift", false, false);
    row("shift and a letter", "lshift a", false, false);
    row("shift and a symbol", "lshift slash", false, false);
    row("shift and space", "lshift space", true, true);
    row("caps", "cabs", true, false);
    row("caps and a letter", "cabs a", true, false);
    row("caps twice", "cabs cabs", false, false);
    row("caps and shift", "cabs lshift", true, true);
    row("caps and shift twice", "cabs lshift lshift", true, false);
    row("caps, shift and a letter", "cabs lshift a", true, false);
    row("shift and caps", "lshift cabs", true, false);
}

void TypingPad::labels()
{
    QFETCH(QString, names);
    QFETCH(bool, letters_shifted);
    QFETCH(bool, symbols_shifted);
    open(QString());
    tap_keys(m_pad.get(), names);
    for (const QPushButton *button : m_pad->findChildren<QPushButton *>()) {
        const int mode = button->property("btnMode").toInt();
        if (mode == 2)
            continue;
        const bool shifted = mode == 0 ? letters_shifted : symbols_shifted;
        QCOMPARE(button->text(), button->property(shifted ? "btnShift" : "btnNormal").toString());
    }
}

void TypingPad::function_keys_keep_their_labels()
{
    open(QString());
    QStringList before;
    QStringList after;
    for (const QPushButton *button : m_pad->findChildren<QPushButton *>()) {
        if (button->property("btnMode").toInt() == 2)
            before += button->text();
    }
    tap_keys(m_pad.get(), "cabs lshift");
    for (const QPushButton *button : m_pad->findChildren<QPushButton *>()) {
        if (button->property("btnMode").toInt() == 2)
            after += button->text();
    }
    QCOMPARE(before.size(), 12);
    QCOMPARE(after, before);
}

void TypingPad::cut_at_the_greatest_length()
{
    open(QStringLiteral("abcde"), 5);
    tap_keys(m_pad.get(), "left left x");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("abcxd"));
    QCOMPARE(cursor(), 4);
    tap_keys(m_pad.get(), "right y");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("abcxd"));
    QCOMPARE(cursor(), 5);
    open(QStringLiteral("abcdefgh"), 3);
    QCOMPARE(shown(m_pad.get()), QStringLiteral("abc"));
}

void TypingPad::ok_and_enter_send_and_close_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Ok") << "rshift_2";
    QTest::newRow("Enter, as Ok does") << "enter";
}

void TypingPad::ok_and_enter_send_and_close()
{
    QFETCH(QString, name);
    open(QStringLiteral("a."));
    tap_keys(m_pad.get(), "space " + name);
    QCOMPARE(m_sent, QStringList("a. "));
    QVERIFY(!m_pad->isVisible());
}

void TypingPad::what_is_sent_belongs_to_the_receiver()
{
    QVariant *kept = nullptr;
    Keyboard pad;
    connect(&pad, &Keyboard::dataSet, this, [&](QVariant *value) { kept = value; });
    pad.setData(QStringLiteral("one"), 100, false);
    tap_key(&pad, "enter");
    pad.setData(QStringLiteral("two"), 100, false);
    QVERIFY(kept != nullptr);
    QCOMPARE(*kept, QVariant("one"));
    delete kept;
}

void TypingPad::escape_sends_nothing()
{
    open(QStringLiteral("abc"));
    tap_keys(m_pad.get(), "d escape");
    QVERIFY(!m_pad->isVisible());
    QVERIFY(m_sent.isEmpty());
}

void TypingPad::enter_in_several_lines()
{
    open(QStringLiteral("ab"), 100, true);
    tap_keys(m_pad.get(), "left enter");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("a\nb"));
    QCOMPARE(cursor(), 2);
    QVERIFY(m_pad->isVisible());
    tap_key(m_pad.get(), "rshift_2");
    QCOMPARE(m_sent, QStringList("a\nb"));
}

void TypingPad::caps_left_on_at_closing()
{
    open(QString());
    tap_keys(m_pad.get(), "cabs escape");
    open(QString());
    QCOMPARE(key(m_pad.get(), "a")->text(), QStringLiteral("A"));
    tap_key(m_pad.get(), "a");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("A"));
}

void TypingPad::shift_left_on_at_closing()
{
    open(QString());
    tap_keys(m_pad.get(), "lshift enter");
    open(QString());
    QCOMPARE(key(m_pad.get(), "1")->text(), QStringLiteral("!"));
    tap_keys(m_pad.get(), "1 1");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("!1"));
}

void TypingPad::validator_of_the_field_judges_nothing()
{
    const QRegularExpressionValidator letters(QRegularExpression("[a-z]*"));
    open(QStringLiteral("a"));
    m_pad->setValidator(&letters);
    QCOMPARE(display(m_pad.get())->validator(), &letters);
    tap_keys(m_pad.get(), "1 enter");
    QCOMPARE(m_sent, QStringList("a1"));
    m_pad->setValidator(nullptr);
    QCOMPARE(display(m_pad.get())->validator(), nullptr);
}

void TypingPad::validator_that_goes_away_while_the_keyboard_is_open()
{
    auto letters = std::make_unique<QRegularExpressionValidator>(QRegularExpression("[a-z]*"));
    open(QStringLiteral("a"));
    m_pad->setValidator(letters.get());
    letters.reset();
    tap_keys(m_pad.get(), "1 b enter");
    QCOMPARE(m_sent, QStringList("a1b"));
}

WINDOW_TEST(TypingPad);
#include "test_keyboard.moc"
