// SPDX-License-Identifier: GPL-3.0-or-later
//
// The monitor's pass and the table mutex: what runs under it, who waits for
// whom, and that a pass in normal running allocates nothing.
#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include "acquisition/monitorthread.h"
#include "frame/relaxed.h"
#include "host/exports.h"
#include "host/operations.h"
#include "support/testmain.h"

namespace
{

// Allocations of the thread that counts.
thread_local bool counting = false;
std::atomic<int> allocations{0};

void note_allocation()
{
    if (counting)
        ++allocations;
}

std::function<void()> on_sample;     // at each sample that goes into a FIFO
std::function<void()> on_statistics; // when the statistics are computed and asked for

} // namespace

extern "C" {

#if defined(__SANITIZE_ADDRESS__)
int __sanitizer_install_malloc_and_free_hooks(void (*on_malloc)(const volatile void *, size_t),
                                              void (*on_free)(const volatile void *));
#else
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);

void *malloc(size_t size)
{
    note_allocation();
    return __libc_malloc(size);
}

void *calloc(size_t count, size_t size)
{
    note_allocation();
    return __libc_calloc(count, size);
}

void *realloc(void *block, size_t size)
{
    note_allocation();
    return __libc_realloc(block, size);
}
#endif

// Stand before the runtime's own.
void to_fifo(FIFO_RECORD *fifo, double value)
{
    static const auto real = reinterpret_cast<decltype(&to_fifo)>(dlsym(RTLD_NEXT, "to_fifo"));
    if (on_sample)
        on_sample();
    real(fifo, value);
}

void xy_statistics_compute(STAT_RECORD *statistics)
{
    static const auto real = reinterpret_cast<decltype(&xy_statistics_compute)>(
        dlsym(RTLD_NEXT, "xy_statistics_compute"));
    if (on_statistics)
        on_statistics();
    real(statistics);
}

double get_stat_member(const STAT_RECORD *statistics, int32_t member)
{
    static const auto real =
        reinterpret_cast<decltype(&get_stat_member)>(dlsym(RTLD_NEXT, "get_stat_member"));
    if (on_statistics)
        on_statistics();
    return real(statistics, member);
}

} // extern "C"

namespace
{

MV_RECORD reading[1];
SYS_ATTR_RECORD attributes;

void begin_counting()
{
#if defined(__SANITIZE_ADDRESS__)
    static const int installed = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void *, size_t) { note_allocation(); }, [](const volatile void *) {});
    QVERIFY(installed > 0);
#endif
    allocations = 0;
    counting = true;
}

// Whether another thread could take the mutex now.
bool free_for_others(QMutex &mutex)
{
    bool taken = false;
    std::thread other([&] {
        taken = mutex.tryLock();
        if (taken)
            mutex.unlock();
    });
    other.join();
    return taken;
}

// 'S' when the thread of this process sleeps.
char thread_state(long thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    const QByteArray stat = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const int name_end = stat.lastIndexOf(')');
    return name_end < 0 ? '?' : stat.at(name_end + 2);
}

} // namespace

class MonitorLock : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void allocation_counter_counts();
    void normal_pass_allocates_nothing_data();
    void normal_pass_allocates_nothing();
    void statistics_run_under_the_mutex();
    void first_filling_runs_under_the_mutex();
    void signal_comes_after_the_mutex_is_free();
    void pass_waits_while_the_window_holds_the_mutex();
    void holder_of_the_mutex_may_call_a_pass();
    void thread_passes_again_and_again();

private:
    ZERL_CFG *m_cfg = nullptr;
    QMutex *m_mutex = nullptr;
    monitorThread *m_monitor = nullptr;
};

// The running thread ends with the process only: what it uses is never freed.
void MonitorLock::initTestCase()
{
    allocate_session();
    m_cfg = g_cfg;
    m_mutex = new QMutex(QMutex::Recursive);
    m_monitor = new monitorThread(m_mutex);
    attributes.channel_count = 1;
    Mv = reading;
    Sys_attr = &attributes;
}

void MonitorLock::init()
{
    reading[0].mv = 12.5;
    g_fifo_size = 300;
    g_monitor_enabled = 0;
    g_monitor_run = 1;
}

void MonitorLock::cleanup()
{
    counting = false;
    on_sample = nullptr;
    on_statistics = nullptr;
}

void MonitorLock::allocation_counter_counts()
{
    begin_counting();
    double *volatile number = new double(1.0); // volatile: kept by the compiler
    delete number;
    void *volatile block = std::calloc(3, 8);
    std::free(block);
    counting = false;
    QCOMPARE(allocations.load(), 2);
}

void MonitorLock::normal_pass_allocates_nothing_data()
{
    const auto row = test_columns<int, int>("type", "samples");
    row("INTERP, longest window", 0, 300);
    row("POLY, shortest window", 1, 50);
    row("POLY_RANGE", 7, 100);
}

void MonitorLock::normal_pass_allocates_nothing()
{
    QFETCH(int, type);
    QFETCH(int, samples);
    m_cfg->table.table_type = static_cast<uint16_t>(type);
    g_fifo_size = static_cast<uint32_t>(samples);
    m_monitor->sample_pass();
    begin_counting();
    for (int i = 0; i < 1000; ++i) {
        reading[0].mv = 0.01 * i;
        m_monitor->sample_pass();
    }
    counting = false;
    QCOMPARE(allocations.load(), 0);
}

void MonitorLock::statistics_run_under_the_mutex()
{
    int calls = 0;
    int free = 0;
    on_statistics = [&] {
        ++calls;
        free += free_for_others(*m_mutex) ? 1 : 0;
    };
    m_monitor->sample_pass();
    QCOMPARE(calls, 1 + 6); // computed once, six members asked for up to the last
    QCOMPARE(free, 0);
    QVERIFY(free_for_others(*m_mutex));
}

void MonitorLock::first_filling_runs_under_the_mutex()
{
    int samples = 0;
    int free = 0;
    on_sample = [&] {
        ++samples;
        free += free_for_others(*m_mutex) ? 1 : 0;
    };
    g_fifo_size = 50;
    m_monitor->sample_pass();
    QCOMPARE(samples, 2 * 50); // readings and their times
    QCOMPARE(free, 0);
}

void MonitorLock::signal_comes_after_the_mutex_is_free()
{
    int told = 0;
    int free = 0;
    const auto connection =
        connect(m_monitor, &monitorThread::plotInfo, m_monitor, [&](ZERL_CFG *) {
            ++told;
            free += free_for_others(*m_mutex) ? 1 : 0;
        });
    m_monitor->sample_pass();
    disconnect(connection);
    QCOMPARE(told, 1);
    QCOMPARE(free, 1);
}

void MonitorLock::pass_waits_while_the_window_holds_the_mutex()
{
    m_monitor->sample_pass();
    m_cfg->live_mv = 0.0;
    std::atomic<long> thread{0};
    std::atomic<bool> done{false};
    QVERIFY(m_mutex->tryLock());
    std::thread other([&] {
        thread = syscall(SYS_gettid);
        m_monitor->sample_pass();
        done = true;
    });
    const bool asleep = QTest::qWaitFor([&] { return thread_state(thread) == 'S'; }, 30000);
    const bool passed_meanwhile = done;
    const double live_meanwhile = m_cfg->live_mv;
    m_mutex->unlock();
    other.join();
    QVERIFY(asleep);
    QVERIFY(!passed_meanwhile);
    QCOMPARE(live_meanwhile, 0.0);
    QVERIFY(done);
    QCOMPARE(m_cfg->live_mv, 12.5);
}

void MonitorLock::holder_of_the_mutex_may_call_a_pass()
{
    m_mutex->lock();
    m_cfg->live_mv = 0.0;
    m_monitor->sample_pass();
    QCOMPARE(m_cfg->live_mv, 12.5);
    QVERIFY(!free_for_others(*m_mutex));
    m_mutex->unlock();
    QVERIFY(free_for_others(*m_mutex));
}

// The last test: the thread has no exit condition, so it is left waiting for the
// mutex when the process ends.
void MonitorLock::thread_passes_again_and_again()
{
    QVERIFY(!m_monitor->isRunning());
    QSignalSpy told(m_monitor, &monitorThread::plotInfo);
    m_monitor->set_sleep_ms(1);
    m_monitor->start();
    const bool passes = QTest::qWaitFor([&] { return told.count() >= 5; }, 60000);
    const bool running = m_monitor->isRunning();
    m_mutex->lock();
    QVERIFY(passes);
    QVERIFY(running);
    QCOMPARE(told.last().first().value<ZERL_CFG *>(), m_cfg);
    QCOMPARE(m_cfg->live_mv, 12.5);
    QCOMPARE(m_cfg->monitor_pass_done, uint16_t{1});
}

LOOP_TEST(MonitorLock);
#include "test_monitorlock.moc"
