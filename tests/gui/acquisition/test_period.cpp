// SPDX-License-Identifier: GPL-3.0-or-later
//
// The time between two passes of the monitor thread.
#include <atomic>
#include <ctime>

#include <QSemaphore>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{
std::atomic<bool> stopping{false}; // the next sleep waits for the test
std::atomic<unsigned long> slept_ms{0};
QSemaphore asleep;
QSemaphore awake;
} // namespace

// Stands before the toolkit's own.
void QThread::msleep(unsigned long ms)
{
    slept_ms = ms;
    if (stopping.exchange(false)) {
        asleep.release();
        awake.acquire();
        return;
    }
    const timespec time = {static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000};
    nanosleep(&time, nullptr);
}

class Period : public QObject
{
    Q_OBJECT

private slots:
    void ten_passes_a_second_and_no_mutex_while_asleep();
};

void Period::ten_passes_a_second_and_no_mutex_while_asleep()
{
    TestWindow it;
    it.pick(0);
    QVERIFY(it.ticks(2));
    stopping = true;
    QVERIFY(asleep.tryAcquire(1, DEADLINE_MS));
    const bool free = it.mutex_is_free();
    awake.release();
    QCOMPARE(slept_ms.load(), 100UL);
    QVERIFY(free);
}

WINDOW_TEST(Period);
#include "test_period.moc"
