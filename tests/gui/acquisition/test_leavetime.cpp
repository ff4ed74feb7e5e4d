// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every leave of the averaging time starts the statistics afresh, once, also one
// that changed nothing, whatever the build of Qt says of such a leave.
#include <QMenu>
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{

// Says that an edit is finished at every loss of the focus, as some builds of Qt
// do, when it stands behind the filter of the window.
class TalkativeField : public QObject
{
protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::FocusOut)
            emit qobject_cast<QLineEdit *>(object)->editingFinished();
        return false;
    }
};

} // namespace

class LeaveTime : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void cleanup() { m_hold.reset(); }
    void every_leave_starts_afresh_data();
    void every_leave_starts_afresh();
    void one_leave_counts_once_data() { every_leave_starts_afresh_data(); }
    void one_leave_counts_once();
    void leave_that_qt_tells_of_counts_once();
    void refused_leave_asks_once();
    void refused_return_asks_once();
    void menu_of_the_field_is_no_leave();

private:
    QLineEdit *field() const { return m_it->form->txtAveragingTime; }
    void leave(const QByteArray &way);
    bool afresh() const { return relaxed_load(g_monitor_enabled) == 0; }

    std::unique_ptr<TestWindow> m_it;
    std::unique_ptr<TableLock> m_hold; // no pass works off a fresh start
};

void LeaveTime::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    QApplication::setActiveWindow(m_it->window);
    QVERIFY(QTest::qWaitForWindowActive(m_it->window, DEADLINE_MS));
    m_it->bind_afresh(0);
}

void LeaveTime::init()
{
    QApplication::setActiveWindow(m_it->window);
    field()->setText(QStringLiteral("10"));
    m_hold = std::make_unique<TableLock>(m_it->window->table_mutex());
    field()->setFocus();
    QVERIFY(field()->hasFocus());
    relaxed_store(g_monitor_enabled, uint8_t(1));
}

void LeaveTime::leave(const QByteArray &way)
{
    if (way == "Tab")
        QTest::keyClick(field(), Qt::Key_Tab);
    else if (way == "Shift and Tab")
        QTest::keyClick(field(), Qt::Key_Tab, Qt::ShiftModifier);
    else if (way == "click")
        QTest::mouseClick(m_it->form->txtTechnicianName, Qt::LeftButton);
    else
        QTest::keyClick(field(), Qt::Key_Return);
}

void LeaveTime::every_leave_starts_afresh_data()
{
    QTest::addColumn<int>("times");
    for (const char *way : {"Tab", "Shift and Tab", "click", "Return"})
        QTest::newRow(way) << 3;
}

void LeaveTime::every_leave_starts_afresh()
{
    QFETCH(int, times);
    const BoxAnswerer answerer;
    for (int i = 0; i < times; ++i) {
        field()->setFocus();
        relaxed_store(g_monitor_enabled, uint8_t(1));
        leave(QTest::currentDataTag());
        QVERIFY2(afresh(), qPrintable(QString::number(i)));
        QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
    }
}

// Whoever hears that the edit is finished comes behind the window: from there on
// nothing starts afresh again.
void LeaveTime::one_leave_counts_once()
{
    field()->selectAll();
    QTest::keyClicks(field(), QStringLiteral("12"));
    QCOMPARE(field()->text(), QStringLiteral("12"));
    int told = 0;
    QObject ear;
    connect(field(), &QLineEdit::editingFinished, &ear, [&] {
        told += afresh() ? 1 : 0;
        relaxed_store(g_monitor_enabled, uint8_t(1));
    });
    leave(QTest::currentDataTag());
    QCOMPARE(told, 1);
    QVERIFY(!afresh());
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(120));
}

void LeaveTime::leave_that_qt_tells_of_counts_once()
{
    leave("Tab"); // Qt itself has no more to tell of this text
    field()->setFocus();
    relaxed_store(g_monitor_enabled, uint8_t(1));
    TalkativeField talkative;
    field()->installEventFilter(&talkative);
    field()->installEventFilter(m_it->window); // asked before the other one
    int told = 0;
    QObject ear;
    connect(field(), &QLineEdit::editingFinished, &ear, [&] {
        told += afresh() ? 1 : 0;
        relaxed_store(g_monitor_enabled, uint8_t(1));
    });
    leave("Tab");
    QCOMPARE(told, 1);
    QVERIFY(!afresh());
}

void LeaveTime::refused_leave_asks_once()
{
    for (const char *text : {"99", "4"}) {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QLatin1String(text));
        BoxAnswerer answerer;
        answerer.expect_title(QStringLiteral("Wrong Value Entered"));
        leave("Tab");
        QCOMPARE(answerer.met().size(), 1);
        QCOMPARE(field()->text(), QStringLiteral("10"));
        QVERIFY(afresh());
        QApplication::setActiveWindow(m_it->window);
    }
}

// The box takes the focus from the field, which is no further leave.
void LeaveTime::refused_return_asks_once()
{
    field()->selectAll();
    QTest::keyClicks(field(), QStringLiteral("31"));
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Wrong Value Entered"));
    leave("Return");
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(field()->text(), QStringLiteral("10"));
    QVERIFY(afresh());
}

void LeaveTime::menu_of_the_field_is_no_leave()
{
    const std::unique_ptr<QMenu> menu(field()->createStandardContextMenu());
    menu->popup(field()->mapToGlobal(QPoint(2, 2)));
    QVERIFY(!afresh());
    menu->close();
    QVERIFY(field()->hasFocus());
    QVERIFY(!afresh());
}

WINDOW_TEST(LeaveTime);
#include "test_leavetime.moc"
