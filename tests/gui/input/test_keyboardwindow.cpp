// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keyboard as a window: its form, what can be seen of its state, whose window
// stays the active one, and texts that are long or strange.
#include <QClipboard>
#include <QDialog>
#include <QtTest>

#include "gui/input/bothpads.h"
#include "support/testmain.h"

using namespace touchscreen;

class TypingWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void window_of_the_keyboard();
    void form_of_the_keyboard();
    void nothing_in_it_takes_the_focus();
    void held_shift_and_caps_lock_can_be_seen();
    void pressed_key_can_be_seen();
    void cursor_can_be_seen();
    void echo_mode_of_the_field();
    void fields_window_stays_the_active_one();
    void field_that_went_is_not_activated();
    void keyboard_makes_way_for_a_dialog();
    void dialog_that_goes_at_once_leaves_the_keyboard();
    void long_text_is_bounded();
    void strange_texts_data();
    void strange_texts();

private:
    void open(const QString &text, int max_length = 32767, bool lines = false)
    {
        m_pad->setData(text, max_length, lines);
    }
    int cursor() const { return display(m_pad.get())->cursorPosition(); }

    std::unique_ptr<Keyboard> m_pad;
    QStringList m_sent;
};

void TypingWindow::init()
{
    m_pad = std::make_unique<Keyboard>();
    m_sent.clear();
    note_sent(m_pad.get(), &m_sent);
}

void TypingWindow::window_of_the_keyboard()
{
    check_window_of_pad(*m_pad, QStringLiteral("Keyboard"), QSize(879, 426));
}

void TypingWindow::form_of_the_keyboard()
{
    check_form_of_pad(*m_pad, QRect(QPoint(10, 10), QPoint(870, 50)),
                      QRect(QPoint(10, 60), QPoint(870, 420)));
}

void TypingWindow::nothing_in_it_takes_the_focus()
{
    check_nothing_takes_the_focus(*m_pad);
    open(QStringLiteral("abc"));
    tap(display(m_pad.get()));
    tap_key(m_pad.get(), "a");
    QVERIFY(!display(m_pad.get())->hasFocus());
}

void TypingWindow::held_shift_and_caps_lock_can_be_seen()
{
    open(QString());
    QVERIFY(QTest::qWaitForWindowActive(m_pad.get()));
    // The finger is not on it.
    const auto looks = [this](const char *name) {
        QPushButton *const button = key(m_pad.get(), name);
        button->setAttribute(Qt::WA_UnderMouse, false);
        return button->grab().toImage();
    };
    const QImage free_left = looks("lshift");
    const QImage free_right = looks("rshift");
    const QImage free_caps = looks("cabs");
    tap_key(m_pad.get(), "lshift");
    QVERIFY(looks("lshift") != free_left);
    QVERIFY(looks("rshift") != free_right);
    tap_key(m_pad.get(), "a");
    QCOMPARE(looks("lshift"), free_left);
    QCOMPARE(looks("rshift"), free_right);
    tap_key(m_pad.get(), "cabs");
    QVERIFY(looks("cabs") != free_caps);
    QCOMPARE(looks("lshift"), free_left);
    tap_keys(m_pad.get(), "rshift cabs");
    QCOMPARE(looks("cabs"), free_caps);
    QCOMPARE(looks("rshift"), free_right);
}

void TypingWindow::pressed_key_can_be_seen()
{
    open(QString());
    QPushButton *const letter = key(m_pad.get(), "a");
    const QImage before = letter->grab().toImage();
    letter->setDown(true);
    QVERIFY(letter->grab().toImage() != before);
}

// It moves with the keys left and right, so it has to show.
void TypingWindow::cursor_can_be_seen()
{
    QApplication::setCursorFlashTime(0); // shows without a break
    open(QStringLiteral("iii"));
    QCoreApplication::processEvents();
    QLineEdit *const value = display(m_pad.get());
    const QImage at_end = value->grab().toImage();
    tap_key(m_pad.get(), "left");
    QVERIFY(value->grab().toImage() != at_end);
    tap_key(m_pad.get(), "right");
    QCOMPARE(value->grab().toImage(), at_end);
    QVERIFY(!value->hasFocus());
}

void TypingWindow::echo_mode_of_the_field()
{
    m_pad->setEchoMode(QLineEdit::Password);
    open(QStringLiteral("a"));
    QVERIFY(display(m_pad.get())->displayText() != QStringLiteral("a"));
    m_pad->setEchoMode(QLineEdit::Normal);
    QCOMPARE(display(m_pad.get())->displayText(), QStringLiteral("a"));
}

void TypingWindow::fields_window_stays_the_active_one()
{
    QWidget window;
    QLineEdit field(&window);
    window.show();
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    open(QStringLiteral("abc"));
    QTRY_VERIFY(m_pad->windowHandle()->isVisible());
    QTRY_COMPARE(QApplication::activeWindow(), &window);
    QTRY_VERIFY(field.hasFocus());
    m_pad->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
    // A focus in the keyboard itself is none to go back to.
    QMetaObject::invokeMethod(m_pad.get(), "saveFocusWidget", Q_ARG(QWidget *, nullptr),
                              Q_ARG(QWidget *, display(m_pad.get())));
    m_pad->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
    tap_key(m_pad.get(), "d");
    QVERIFY(field.hasFocus());
    hardware_keys("hard");
    QCOMPARE(field.text(), QStringLiteral("hard"));
    QCOMPARE(shown(m_pad.get()), QStringLiteral("abcd"));
}

void TypingWindow::field_that_went_is_not_activated()
{
    {
        QWidget window;
        QLineEdit field(&window);
        window.show();
        field.setFocus();
        QTRY_VERIFY(field.hasFocus());
    }
    open(QStringLiteral("abc"));
    m_pad->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), m_pad.get());
    tap_key(m_pad.get(), "d");
    QCOMPARE(shown(m_pad.get()), QStringLiteral("abcd"));
}

// Under the keyboard the dialog could not be reached, nor the keyboard be closed.
void TypingWindow::keyboard_makes_way_for_a_dialog()
{
    open(QStringLiteral("abc"));
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    QTRY_VERIFY(!m_pad->isVisible());
    QVERIFY(m_sent.isEmpty());
    open(QStringLiteral("def"));
    QCoreApplication::processEvents();
    QVERIFY(m_pad->isVisible());
    tap_keys(m_pad.get(), "g enter");
    QCOMPARE(m_sent, QStringList("defg"));
}

void TypingWindow::dialog_that_goes_at_once_leaves_the_keyboard()
{
    open(QStringLiteral("abc"));
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    dialog.hide();
    QCoreApplication::processEvents();
    QVERIFY(m_pad->isVisible());
    tap_keys(m_pad.get(), "d enter");
    QCOMPARE(m_sent, QStringList("abcd"));
}

void TypingWindow::long_text_is_bounded()
{
    const QString text(100000, 'x');
    open(text);
    QCOMPARE(shown(m_pad.get()).size(), 32767);
    QGuiApplication::clipboard()->setText(text);
    display(m_pad.get())->paste();
    QCOMPARE(shown(m_pad.get()).size(), 32767);
    tap_keys(m_pad.get(), "left left a backspace backspace lshift b enter");
    QCOMPARE(m_sent.value(0).size(), 32767 - 1);
    open(text, 80);
    display(m_pad.get())->paste();
    QCOMPARE(shown(m_pad.get()).size(), 80);
}

void TypingWindow::strange_texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("line feeds") << "first\nsecond\r\nthird";
    QTest::newRow("from right to left") << QString::fromUtf8("مرحبا بالعالم");
    QTest::newRow("both ways") << QString::fromUtf8("Pump שלום 12");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("Pump 😀");
    QTest::newRow("a null character") << QString("a") + QChar(0) + "b";
}

void TypingWindow::strange_texts()
{
    QFETCH(QString, text);
    open(text);
    QCOMPARE(shown(m_pad.get()), text);
    tap_keys(m_pad.get(), "a backspace rshift_2");
    QCOMPARE(m_sent, QStringList(text));
    open(text);
    for (int i = 0; i < text.size(); ++i)
        tap_key(m_pad.get(), "left");
    QCOMPARE(cursor(), 0);
    tap_key(m_pad.get(), "x");
    QCOMPARE(shown(m_pad.get()), "x" + text);
    tap_keys(m_pad.get(), "clear enter");
    QCOMPARE(m_sent.last(), QString());
}

WINDOW_TEST(TypingWindow);
#include "test_keyboardwindow.moc"
