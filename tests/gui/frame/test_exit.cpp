// SPDX-License-Identifier: GPL-3.0-or-later
//
// Ways out of the window: the Exit action asks first, the close button does not.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/processquestions.h"
#include "support/testmain.h"

class Exit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void key_f10_runs_the_guards();
    void works_on_the_second_pointer_before_a_record_is_bound();
    void close_button_asks_nothing();
    void closing_while_the_monitor_thread_runs_does_not_hang();

private:
    static void expect_cancelled(BoxAnswerer *answerer);

    std::unique_ptr<TestWindow> m_it;
};

void Exit::init()
{
    m_it->forget_work();
    m_it->window->show();
}

// That the table was modified.
void Exit::expect_cancelled(BoxAnswerer *answerer)
{
    const AskedQuestion &asked = asked_question("G3");
    answerer->expect(asked.title, asked.text, QStringLiteral("Cancel"));
}

void Exit::key_f10_runs_the_guards()
{
    m_it->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->window));
    g_cfg->table_dirty = 1;
    BoxAnswerer answerer;
    expect_cancelled(&answerer);
    QTest::keyClick(m_it->window, Qt::Key_F10);
    QVERIFY(m_it->window->isVisible());
    QCOMPARE(answerer.met().size(), 1);
}

void Exit::works_on_the_second_pointer_before_a_record_is_bound()
{
    ZERL_CFG *const record = g_cfg;
    record->table_dirty = 1;
    g_cfg = nullptr;
    BoxAnswerer answerer;
    expect_cancelled(&answerer);
    m_it->form->actionExit->trigger();
    g_cfg = record;
    QVERIFY(m_it->window->isVisible());
    QCOMPARE(record->unsaved_flag, uint16_t(1)); // it was that record that was asked
    record->unsaved_flag = 0;
}

// Points that were not recorded are dropped without a word.
void Exit::close_button_asks_nothing()
{
    const BoxAnswerer answerer;
    g_captured_points = 5;
    g_cfg->table_dirty = 1;
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    QVERIFY(m_it->window->close());
    QVERIFY(!m_it->window->isVisible());
    QVERIFY(answerer.met().isEmpty());
}

// Nobody joins the thread: the window goes and the thread samples on.
void Exit::closing_while_the_monitor_thread_runs_does_not_hang()
{
    m_it->pick(0);
    monitorThread *const monitor = m_it->window->monitor();
    QVERIFY(m_it->ticks(1));
    QVERIFY(m_it->window->close());
    delete m_it->window;
    m_it->window = nullptr;
    set_main_window(nullptr);
    QVERIFY(monitor->isRunning());
    relaxed_store(g_cfg->monitor_pass_done, uint16_t(0));
    QTRY_COMPARE_WITH_TIMEOUT(relaxed_load(g_cfg->monitor_pass_done), uint16_t(1), DEADLINE_MS);
}

WINDOW_TEST(Exit);
#include "test_exit.moc"
