// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an undo leaves alone, taken or cancelled.
#include <atomic>
#include <thread>

#include <QSemaphore>
#include <QtTest>

#include "frame/styles.h"
#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"

class Undo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void statistics_are_copied_without_the_mutex();
    void undo_leaves_the_rows_own_status();

private:
    PointInfo *row(int i) const { return m_it->window->row(i); }
    static void answer_undo(BoxAnswerer *answerer, const char *button);

    std::unique_ptr<TestWindow> m_it;
};

void Undo::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void Undo::cleanupTestCase()
{
    m_it.reset();
}

void Undo::init()
{
    m_it->bind_afresh(0);
    row(1)->state = row(1)->previous_state = POINT_AS_IN_TABLE;
}

void Undo::answer_undo(BoxAnswerer *answerer, const char *button)
{
    answerer->expect_dialog(QStringLiteral("Undo Action"), [button](QDialog *dialog) {
        dialog->findChild<QPushButton *>(QLatin1String(button))->click();
    });
}

// Another thread holds it, as a pass would, while the click works itself off.
void Undo::statistics_are_copied_without_the_mutex()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    const monitorThread *monitor = m_it->window->monitor();
    // No tick is drawn meanwhile: that would wait for the mutex.
    QVERIFY(disconnect(monitor, &monitorThread::plotInfo, m_it->window, nullptr));
    QCoreApplication::removePostedEvents(m_it->window, QEvent::MetaCall);
    QSemaphore held;
    QSemaphore done;
    std::atomic<bool> in_time{false};
    std::thread holder([&] {
        const TableLock hold(m_it->window->table_mutex());
        g_sample.mv_mean = 1234.5;
        held.release();
        in_time = done.tryAcquire(1, DEADLINE_MS);
    });
    held.acquire();
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnCancelUndo");
    m_it->button(1)->click();
    done.release();
    holder.join();
    connect(monitor, SIGNAL(plotInfo(ZERL_CFG *)), m_it->window, SLOT(draw_plots_info(ZERL_CFG *)));
    QVERIFY(in_time);
    QCOMPARE(g_cfg->point_stats[1].mv_mean, 1234.5);
}

// As the capture judged it, though point, colour and worst status go back.
void Undo::undo_leaves_the_rows_own_status()
{
    QVERIFY(m_it->capture(1, 1250.0, 27.5)); // 2.5 off
    QCOMPARE(row(1)->status, uint16_t(3));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(1)->click();
    QCOMPARE(row(1)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(row(1)->status, uint16_t(3));
}

QTEST_MAIN(Undo)
#include "test_undo.moc"
