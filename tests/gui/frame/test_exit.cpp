// SPDX-License-Identifier: GPL-3.0-or-later
//
// Ways out of the window: the Exit action asks first, the close button does not.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{
const QString NOT_RECORDED = QStringLiteral("Captured Points Not Recorded");
const QString NOT_RECORDED_TEXT = QStringLiteral(
    "Captured points have not been recorded.\n\nClick OK to exit anyway or Cancel to "
    "return and record data.");
const QString INCOMPLETE = QStringLiteral("Incomplete Calibration");
const QString INCOMPLETE_TEXT =
    QStringLiteral("The calibration is incomplete.\n\nClick OK to exit anyway or Cancel to return "
                   "and complete the calibration.");
const QString MODIFIED = QStringLiteral("Table Information Modified");
const QString MODIFIED_TEXT = QStringLiteral(
    "The table information has been modified and will not be saved without updating the "
    "calibration table.\n\nClick OK to exit anyway or Cancel to return and update the "
    "calibration.");
} // namespace

class Exit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void guards_data();
    void guards();
    void key_f10_runs_the_guards();
    void works_on_the_second_pointer_before_a_record_is_bound();
    void close_button_asks_nothing();
    void closing_while_the_monitor_thread_runs_does_not_hang();

private:
    std::unique_ptr<TestWindow> m_it;
};

void Exit::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void Exit::cleanupTestCase()
{
    m_it.reset();
}

void Exit::init()
{
    m_it->forget_work();
    m_it->window->show();
}

void Exit::guards_data()
{
    QTest::addColumn<int>("captured");
    QTest::addColumn<bool>("dirty");
    QTest::addColumn<QString>("as_found");
    QTest::addColumn<QString>("after_service");
    QTest::addColumn<QString>("updated");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    const QString time = QStringLiteral("01/02/2024 03:04:05");
    QTest::newRow("nothing done: closes") << 0 << false << ""
                                          << ""
                                          << ""
                                          << ""
                                          << "";
    QTest::newRow("captured and unsaved") << 1 << true << ""
                                          << ""
                                          << "" << NOT_RECORDED << NOT_RECORDED_TEXT;
    QTest::newRow("captured points come before an incomplete calibration")
        << 2 << true << time << ""
        << "" << NOT_RECORDED << NOT_RECORDED_TEXT;
    QTest::newRow("as found recorded and nothing decided, even with nothing unsaved")
        << 0 << false << time << ""
        << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("after service recorded and nothing decided")
        << 0 << false << "" << time << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("an incomplete calibration comes before a modified table")
        << 0 << true << time << ""
        << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("captured but not dirty counts as incomplete alone")
        << 1 << false << time << ""
        << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("a modified table and no process step done") << 0 << true << ""
                                                               << ""
                                                               << "" << MODIFIED << MODIFIED_TEXT;
    QTest::newRow("finished process with captured points and a clean table")
        << 3 << false << time << "N/A" << time << ""
        << "";
    QTest::newRow("finished process with a modified table")
        << 0 << true << time << "N/A" << time << ""
        << "";
}

void Exit::guards()
{
    QFETCH(int, captured);
    QFETCH(bool, dirty);
    QFETCH(QString, as_found);
    QFETCH(QString, after_service);
    QFETCH(QString, updated);
    QFETCH(QString, title);
    QFETCH(QString, text);
    const auto set_up = [&] {
        g_captured_points = captured;
        g_cfg->table_dirty = dirty ? 1 : 0;
        m_it->form->txtAsFound->setText(as_found);
        m_it->form->txtAfterService->setText(after_service);
        m_it->form->txtAdjustCalibration->setText(updated);
    };
    set_up();
    BoxAnswerer answerer;
    if (!title.isEmpty()) {
        answerer.expect(title, text, QStringLiteral("Cancel"));
        m_it->form->actionExit->trigger();
        QVERIFY(m_it->window->isVisible());
        QCOMPARE(answerer.met().first().default_button, QStringLiteral("Cancel"));
        set_up();
        answerer.expect(title, text, QStringLiteral("OK"));
    }
    m_it->form->actionExit->trigger();
    QVERIFY(!m_it->window->isVisible());
    QCOMPARE(answerer.met().size(), title.isEmpty() ? 0 : 2);
}

void Exit::key_f10_runs_the_guards()
{
    m_it->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->window));
    g_cfg->table_dirty = 1;
    BoxAnswerer answerer;
    answerer.expect(MODIFIED, MODIFIED_TEXT, QStringLiteral("Cancel"));
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
    answerer.expect(MODIFIED, MODIFIED_TEXT, QStringLiteral("Cancel"));
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
