// SPDX-License-Identifier: GPL-3.0-or-later
//
// A whole calibration by keyboard alone: every key goes to the widget that has
// the focus, and the mouse is not touched.
#include <QLabel>
#include <QRadioButton>
#include <QtTest>

#include "calibration/classification.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"
#include "window/styles.h"

namespace
{

// Counts what comes from a mouse.
class MouseWatch : public QObject
{
public:
    MouseWatch() { qApp->installEventFilter(this); }
    int presses = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress)
            ++presses;
        return false;
    }
};

// A window manager gives the focus back to the window behind a dialog that has
// gone; here is none.
bool focus_is_somewhere()
{
    return QTest::qWaitFor(
        [] {
            QWidget *modal = QApplication::activeModalWidget();
            if (QApplication::activeWindow() == nullptr)
                QApplication::setActiveWindow(modal != nullptr ? modal : g_main_window);
            return QApplication::focusWidget() != nullptr;
        },
        DEADLINE_MS);
}

void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    if (focus_is_somewhere())
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
}

void type(const QString &text)
{
    if (focus_is_somewhere())
        QTest::keyClicks(QApplication::focusWidget(), text);
}

// Goes on to the widget with Tab; false when a whole round does not meet it.
bool tab_to(const QWidget *wanted, Qt::Key key = Qt::Key_Tab)
{
    if (!focus_is_somewhere())
        return false;
    for (int i = 0; i < 300 && QApplication::focusWidget() != wanted; ++i)
        press(key);
    return QApplication::focusWidget() == wanted;
}

// The button of a box that is not its default.
void answer(QDialog *box, const QString &text)
{
    QTRY_VERIFY_WITH_TIMEOUT(box->isActiveWindow(), DEADLINE_MS);
    for (QAbstractButton *button : box->findChildren<QAbstractButton *>()) {
        if (button->text().remove(QLatin1Char('&')) == text)
            QVERIFY(tab_to(button));
    }
    press(Qt::Key_Space);
}

} // namespace

class WithoutTheMouse : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void names_and_channel();
    void number_of_points_and_averaging_time();
    void another_channel();
    void order_of_the_tab_key();
    void captured_points();
    void capture_taken_back_and_made_again();
    void recorded_as_found();
    void adjusted();
    void verified();
    void table_information_and_back();
    void no_mouse();
    void left_by_its_key();

private:
    Ui::MainWindow *form() const { return m_it->form; }
    QLineEdit *field(int i) const { return m_it->window->row(i)->value_field(); }
    void capture(int i, double mv, double value);
    void record(BoxAnswerer *answerer, int down, const QString &comment, const char *chosen);

    std::unique_ptr<TestWindow> m_it;
    std::unique_ptr<MouseWatch> m_mouse;
};

void WithoutTheMouse::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    m_mouse = std::make_unique<MouseWatch>();
    QApplication::setActiveWindow(m_it->window);
    QVERIFY(QTest::qWaitForWindowActive(m_it->window, DEADLINE_MS));
}

void WithoutTheMouse::cleanupTestCase()
{
    m_mouse.reset();
    m_it.reset();
}

void WithoutTheMouse::names_and_channel()
{
    QCOMPARE(QApplication::focusWidget(), form()->txtCalibrationQIE); // the first focus
    type(QStringLiteral("DWT-12"));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), form()->txtTechnicianName);
    type(QStringLiteral("J. Doe"));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), form()->cboCurrentChannel);
    press(Qt::Key_Down);
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(form()->txtNumPoints->text(), QStringLiteral("5"));
}

void WithoutTheMouse::number_of_points_and_averaging_time()
{
    QVERIFY(tab_to(form()->txtNumPoints));
    type(QStringLiteral("7")); // over what Tab has selected
    press(Qt::Key_Return);
    QCOMPARE(m_it->rows_shown(), 7);
    QCOMPARE(m_it->button(6)->text(), QStringLiteral("Capture New"));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), form()->txtAveragingTime);
    type(QStringLiteral("5"));
    press(Qt::Key_Enter);
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Invalid Calibration Points"),
                           [](QDialog *) { press(Qt::Key_Enter); });
    QVERIFY(tab_to(form()->txtNumPoints, Qt::Key_Backtab));
    type(QStringLiteral("65"));
    press(Qt::Key_Return);
    QCOMPARE(form()->txtNumPoints->text(), QString());
}

// The count was changed, which is asked about, also behind a way through the rows:
// a reference that is only visited takes nothing back.
void WithoutTheMouse::another_channel()
{
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Table Information Modified"),
                           [](QDialog *box) { answer(box, QStringLiteral("OK")); });
    QVERIFY(tab_to(form()->cboCurrentChannel));
    press(Qt::Key_Down);
    QCOMPARE(form()->cboCurrentChannel->currentIndex(), m_it->item_of(1));
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(form()->txtNumPoints->text(), QStringLiteral("3"));
}

// As the window is read: rows before the buttons of the process.
void WithoutTheMouse::order_of_the_tab_key()
{
    QVector<QWidget *> expected{form()->btnUnits, form()->scrollArea};
    for (int i = 0; i < 3; ++i)
        expected << field(i) << m_it->button(i);
    expected << form()->btnRecordData;
    QVERIFY(tab_to(form()->txtAveragingTime));
    for (QWidget *next : expected) {
        press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
    press(Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), m_it->button(2));
}

// Types over the field, which Tab selects, and presses the button behind it.
void WithoutTheMouse::capture(int i, double mv, double value)
{
    QVERIFY(m_it->reading(mv));
    QVERIFY(tab_to(field(i)));
    type(QString::number(value));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), m_it->button(i));
    press(Qt::Key_Space);
    QCOMPARE(m_it->button(i)->text(), QStringLiteral("Undo"));
    QCOMPARE(g_cfg->long_current.x[i], mv);
    QCOMPARE(g_cfg->long_current.y[i], value);
}

// 0.5 kPa off, which is out of adjustment.
void WithoutTheMouse::captured_points()
{
    const BoxAnswerer answerer;
    const double mv[] = {0.0, 2400.0, 4800.0};
    for (int i = 0; i < 3; ++i) {
        capture(i, mv[i], mv[i] * 0.02 + 0.5);
        QCOMPARE(field(i)->styleSheet(), QLatin1String(status_style(1)));
    }
    QCOMPARE(form()->btnRecordData->styleSheet(), QLatin1String(STYLE_READY));
}

void WithoutTheMouse::capture_taken_back_and_made_again()
{
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Undo Action"), [](QDialog *dialog) {
        QTRY_VERIFY_WITH_TIMEOUT(dialog->isActiveWindow(), DEADLINE_MS);
        QVERIFY(tab_to(dialog->findChild<QPushButton *>(QStringLiteral("btnRevert"))));
        press(Qt::Key_Space);
    });
    QVERIFY(tab_to(m_it->button(2)));
    press(Qt::Key_Space);
    QCOMPARE(m_it->button(2)->text(), QStringLiteral("Capture"));
    capture(2, 4810.0, 96.7);
}

// Record Data, the choice so far below the first, the description, Enter.
void WithoutTheMouse::record(BoxAnswerer *answerer, int down, const QString &comment,
                             const char *chosen)
{
    answerer->expect_dialog(QStringLiteral("Record Calibration Data"), [&](QDialog *dialog) {
        QTRY_VERIFY_WITH_TIMEOUT(dialog->isActiveWindow(), DEADLINE_MS);
        QVERIFY(tab_to(dialog->findChild<QRadioButton *>(QStringLiteral("rbAsFound"))));
        press(Qt::Key_Space);
        for (int i = 0; i < down; ++i)
            press(Qt::Key_Down);
        QVERIFY(dialog->findChild<QRadioButton *>(QLatin1String(chosen))->isChecked());
        QVERIFY(tab_to(dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"))));
        type(comment);
        QVERIFY(tab_to(dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))));
        press(Qt::Key_Enter);
    });
    QVERIFY(tab_to(form()->btnRecordData));
    press(Qt::Key_Space);
}

void WithoutTheMouse::recorded_as_found()
{
    BoxAnswerer answerer;
    record(&answerer, 0, QStringLiteral("as it came"), "rbAsFound");
    QVERIFY(!form()->txtAsFound->text().isEmpty());
    QCOMPARE(form()->txtAsFound->styleSheet(), QLatin1String(status_style(1)));
    QCOMPARE(QByteArray(g_cfg->table.cal_comment), QByteArray("as it came"));
    QCOMPARE(QByteArray(g_cfg->table.verified_by), QByteArray("J. Doe"));
    QCOMPARE(QByteArray(g_cfg->table.qie), QByteArray("DWT-12"));
    QCOMPARE(form()->btnAdjustCalibration->styleSheet(), QLatin1String(STYLE_READY));
}

void WithoutTheMouse::adjusted()
{
    const BoxAnswerer answerer;
    QVERIFY(tab_to(form()->btnAdjustCalibration));
    press(Qt::Key_Space);
    QVERIFY(!form()->txtAdjustCalibration->text().isEmpty());
    QCOMPARE(form()->txtAfterService->text(), QStringLiteral("N/A"));
    QCOMPARE(TestWindow::records_in(TestWindow::table_path("one", ".old")), 1);
    QCOMPARE(g_cfg->long_previous.num_points, int16_t(3));
    QCOMPARE(g_cfg->long_previous.x[2], 4810.0);
}

// One of the points only: that is asked about, and answered with Yes.
void WithoutTheMouse::verified()
{
    capture(1, 2410.0, 48.7);
    QCOMPARE(field(1)->styleSheet(), QLatin1String(status_style(0)));
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Warning"),
                           [](QDialog *box) { answer(box, QStringLiteral("Yes")); });
    record(&answerer, 2, QStringLiteral("as it goes"), "rbVerification");
    QVERIFY(!form()->txtVerificationData->text().isEmpty());
    QCOMPARE(form()->txtVerificationData->styleSheet(), QLatin1String(status_style(0)));
    QVector<int> kinds;
    for (const StoredRecord &stored :
         stored_records(read_file(TestWindow::table_path("one", ".save"))))
        kinds += stored.info.save_type;
    QCOMPARE(kinds, (QVector<int>{SAVE_AS_FOUND, SAVE_ADJUSTED, SAVE_VERIFICATION}));
}

void WithoutTheMouse::table_information_and_back()
{
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [](QDialog *dialog) {
                               QTRY_VERIFY_WITH_TIMEOUT(dialog->isActiveWindow(), DEADLINE_MS);
                               press(Qt::Key_Escape);
                           });
    press(Qt::Key_E, Qt::AltModifier);
    QCOMPARE(answerer.met().size(), 1);
}

void WithoutTheMouse::no_mouse()
{
    QCOMPARE(m_mouse->presses, 0);
}

// Nothing is left to ask about.
void WithoutTheMouse::left_by_its_key()
{
    const BoxAnswerer answerer;
    QVERIFY(m_it->window->isVisible());
    press(Qt::Key_F10);
    QVERIFY(!m_it->window->isVisible());
}

WINDOW_TEST(WithoutTheMouse);
#include "test_keyboard.moc"
