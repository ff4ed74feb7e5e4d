// SPDX-License-Identifier: GPL-3.0-or-later
//
// One pass of the monitor thread, called directly: what it samples, computes and
// tells.
#include <cmath>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <memory>

#include <QSignalSpy>
#include <QtTest>

#include "acquisition/monitorthread.h"
#include "host/exports.h"
#include "host/operations.h"
#include "support/testmain.h"

namespace
{

constexpr int CHANNELS = 3;
MV_RECORD readings[CHANNELS];
SYS_ATTR_RECORD attributes;
QVector<int> members;    // asked of the host's statistics
std::time_t clock_s = 0; // of the pass; 0 for the system's

} // namespace

// Stands before the runtime's own and notes what is asked for.
extern "C" double get_stat_member(const STAT_RECORD *statistics, int32_t member)
{
    static const auto real =
        reinterpret_cast<decltype(&get_stat_member)>(dlsym(RTLD_NEXT, "get_stat_member"));
    members.append(member);
    return real(statistics, member);
}

// Each look at the clock of a test's own is a second later.
extern "C" std::time_t time(std::time_t *seconds) noexcept
{
    static const auto real = reinterpret_cast<decltype(&time)>(dlsym(RTLD_NEXT, "time"));
    if (clock_s == 0)
        return real(seconds);
    ++clock_s;
    if (seconds != nullptr)
        *seconds = clock_s;
    return clock_s;
}

class SamplePass : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void monitor_at_birth();
    void averaging_time_is_the_length_of_the_window_data();
    void averaging_time_is_the_length_of_the_window();
    void each_pass_adds_one_sample();
    void times_are_those_since_the_pass_began();
    void channel_change_begins_afresh();
    void window_is_made_anew_and_both_records_cleared();
    void results_by_the_tables_type_data();
    void results_by_the_tables_type();
    void polynomial_without_coefficients();
    void members_asked_of_the_host();
    void present_reading_goes_into_the_statistics();
    void pass_that_may_not_sample();
    void fresh_start_lets_the_pass_sample();
    void every_pass_tells_the_record();
    void readings_are_taken_from_where_the_host_is_now();
    void channel_that_is_not_published_data();
    void channel_that_is_not_published();

private:
    void pass(int times = 1);
    // A window of that many samples, full of the reading.
    void start_window(uint32_t size, double mv);

    std::unique_ptr<QMutex> m_mutex;
    std::unique_ptr<monitorThread> m_monitor;
    std::unique_ptr<ZERL_CFG> m_cfg;
};

void SamplePass::init()
{
    std::memset(readings, 0, sizeof readings);
    attributes.channel_count = CHANNELS;
    Mv = readings;
    Sys_attr = &attributes;
    m_cfg = std::make_unique<ZERL_CFG>();
    g_cfg = m_cfg.get();
    g_sample = {};
    g_stat_xy = {};
    g_stat_spare = {};
    g_monitor_enabled = 0;
    g_monitor_run = 1;
    m_mutex = std::make_unique<QMutex>(QMutex::Recursive);
    m_monitor = std::make_unique<monitorThread>(m_mutex.get());
    members.clear();
}

void SamplePass::cleanup()
{
    m_monitor.reset();
    g_cfg = nullptr;
}

void SamplePass::pass(int times)
{
    for (int i = 0; i < times; ++i)
        m_monitor->sample_pass();
}

void SamplePass::start_window(uint32_t size, double mv)
{
    g_fifo_size = size;
    g_monitor_enabled = 0;
    readings[m_cfg->channel].mv = mv;
    pass();
}

void SamplePass::monitor_at_birth()
{
    g_fifo_size = 7;
    const monitorThread monitor(m_mutex.get());
    QVERIFY(!monitor.isRunning());
    QCOMPARE(g_fifo_size, uint32_t{100});
    for (const FIFO_RECORD &fifo : {g_fifo_y, g_fifo_x}) {
        QVERIFY(fifo.buffer != nullptr);
        QCOMPARE(fifo.next, fifo.buffer);
        QCOMPARE(fifo.size, uint32_t{100});
        QCOMPARE(fifo.count, uint32_t{0});
        for (uint32_t i = 0; i < fifo.size; ++i)
            QCOMPARE(fifo.buffer[i], 0.0);
    }
    QVERIFY(g_fifo_y.buffer != g_fifo_x.buffer);
    QCOMPARE(int{MONITOR_PERIOD_MS}, 100);
}

void SamplePass::averaging_time_is_the_length_of_the_window_data()
{
    const auto row = test_columns<int, int>("seconds", "samples");
    row("5 seconds are 50 samples", 5, 50);
    row("10 seconds are 100 samples", 10, 100);
    row("30 seconds are 300 samples", 30, 300);
}

// An old reading counts for as many passes as the window is long, and no more.
void SamplePass::averaging_time_is_the_length_of_the_window()
{
    QFETCH(int, seconds);
    QFETCH(int, samples);
    start_window(static_cast<uint32_t>(seconds * SAMPLES_PER_SECOND), 1.0);
    QCOMPARE(static_cast<int>(g_fifo_y.size), samples);
    QCOMPARE(static_cast<int>(g_fifo_y.count), samples);
    QCOMPARE(static_cast<int>(g_fifo_x.count), samples);
    readings[0].mv = 2.0;
    pass(samples - 1);
    QCOMPARE(g_sample.mv_min, 1.0);
    pass();
    QCOMPARE(g_sample.mv_min, 2.0);
    QCOMPARE(static_cast<int>(g_fifo_y.count), samples);
}

void SamplePass::each_pass_adds_one_sample()
{
    start_window(50, 0.0);
    for (int i = 1; i <= 50; ++i) {
        readings[0].mv = 50.0;
        pass();
        QCOMPARE(m_cfg->live_mv, static_cast<double>(i));
    }
}

// Not the time of day, and not the reading.
void SamplePass::times_are_those_since_the_pass_began()
{
    clock_s = 1000;
    start_window(5, 50.0);
    for (uint32_t i = 0; i < 5; ++i) {
        QCOMPARE(g_fifo_x.buffer[i], i + 1.0);
        QCOMPARE(g_fifo_y.buffer[i], 50.0);
    }
    pass(); // one further sample
    clock_s = 0;
    QCOMPARE(g_fifo_x.buffer[0], 1.0);
    QCOMPARE(g_fifo_x.buffer[1], 2.0);
}

void SamplePass::channel_change_begins_afresh()
{
    start_window(100, 1.0);
    for (int i = 0; i < 150; ++i) {
        readings[0].mv = 1.0 + 0.37 * i;
        pass();
    }
    QVERIFY(g_sample.mv_std > 0.0);
    const double present = 1234.56789012345;
    readings[1].mv = present;
    m_cfg->channel = 1;
    g_monitor_enabled = 0;
    pass();
    QVERIFY2(m_cfg->live_mv == present, "the present reading exactly");
    QVERIFY(g_sample.mv_mean == present);
    QVERIFY(g_sample.mv_min == present);
    QVERIFY(g_sample.mv_max == present);
    QVERIFY(g_sample.mv_std == 0.0);
    QVERIFY(g_sample.eu_std == 0.0);
}

void SamplePass::window_is_made_anew_and_both_records_cleared()
{
    start_window(100, 1.0);
    std::memset(&g_stat_spare, 0x55, sizeof g_stat_spare);
    g_fifo_size = 50;
    pass();
    QVERIFY2(g_fifo_y.size == 100, "a new length waits for the fresh start");
    QVERIFY(g_stat_spare.reserved_0[0] == 0x55);
    g_monitor_enabled = 0;
    pass();
    QCOMPARE(g_fifo_y.size, uint32_t{50});
    QCOMPARE(g_fifo_x.size, uint32_t{50});
    QCOMPARE(g_monitor_enabled, uint8_t{1});
    const STAT_RECORD cleared = {};
    QVERIFY(std::memcmp(&g_stat_spare, &cleared, sizeof cleared) == 0);
}

void SamplePass::results_by_the_tables_type_data()
{
    const auto row = test_columns<int, double>("type", "eu_mean");
    row("INTERP: the mean is interpolated too", 0, 30.0);
    row("POLY: the mean goes through the polynomial", 1, 226.0);
    row("POLY_RANGE: through the range in work", 7, -41.0);
    row("unknown type: the mean is 0", 5, 0.0);
}

// Two samples, 10 and 20 mV; the long table is y = 2x. Minimum and maximum are
// interpolated whatever the type, and the deviation is not converted at all.
void SamplePass::results_by_the_tables_type()
{
    QFETCH(int, type);
    m_cfg->table.table_type = static_cast<uint16_t>(type);
    m_cfg->long_current.num_points = 2;
    m_cfg->long_current.x[1] = 100.0;
    m_cfg->long_current.y[1] = 200.0;
    m_cfg->table.poly[0].num_coeffs = 3;
    m_cfg->table.poly[0].coeffs[0] = 1.0;
    m_cfg->table.poly[0].coeffs[2] = 1.0;
    m_cfg->table.poly_range_index = 2;
    m_cfg->table.poly[2].num_coeffs = 2;
    m_cfg->table.poly[2].coeffs[0] = 4.0;
    m_cfg->table.poly[2].coeffs[1] = -3.0;
    g_sample.reserved_0 = 11.0;
    g_sample.reserved_5 = 12.0;
    start_window(2, 10.0);
    readings[0].mv = 20.0;
    pass();
    QCOMPARE(m_cfg->live_mv, 15.0);
    QTEST(m_cfg->live_eu, "eu_mean");
    QTEST(g_sample.eu_mean, "eu_mean");
    QCOMPARE(g_sample.mv_mean, 15.0);
    QCOMPARE(g_sample.mv_min, 10.0);
    QCOMPARE(g_sample.mv_max, 20.0);
    QCOMPARE(g_sample.mv_std, std::sqrt(50.0)); // N - 1 below the line
    QVERIFY2(g_sample.eu_std == g_sample.mv_std, "deliberately not converted");
    QCOMPARE(g_sample.eu_min, 20.0);
    QCOMPARE(g_sample.eu_max, 40.0);
    QCOMPARE(g_sample.reserved_0, 11.0);
    QCOMPARE(g_sample.reserved_5, 12.0);
}

void SamplePass::polynomial_without_coefficients()
{
    m_cfg->table.table_type = TABLE_POLY;
    m_cfg->live_eu = 5.0;
    start_window(50, 3.0);
    QCOMPARE(m_cfg->live_mv, 3.0);
    QVERIFY(m_cfg->live_eu == 0.0);
}

void SamplePass::members_asked_of_the_host()
{
    start_window(50, 3.0);
    QCOMPARE(members, QVector<int>({0, 0, 2, 1, 4, 21}));
}

void SamplePass::present_reading_goes_into_the_statistics()
{
    start_window(50, 3.0);
    readings[0].mv = 8.5;
    pass();
    QCOMPARE(g_stat_xy.present_200, 8.5);
    QCOMPARE(g_stat_xy.present_240, 8.5);
}

void SamplePass::pass_that_may_not_sample()
{
    start_window(50, 3.0);
    g_monitor_run = 0;
    const SAMPLE_RECORD before = g_sample;
    const FIFO_RECORD fifo = g_fifo_y;
    readings[0].mv = 99.0;
    m_cfg->monitor_pass_done = 0;
    QSignalSpy told(m_monitor.get(), &monitorThread::plotInfo);
    pass();
    QCOMPARE(m_cfg->live_mv, 3.0);
    QVERIFY(std::memcmp(&g_sample, &before, sizeof before) == 0);
    QCOMPARE(g_fifo_y.next, fifo.next);
    QCOMPARE(g_monitor_run, uint16_t{0});
    QCOMPARE(m_cfg->monitor_pass_done, uint16_t{1});
    QCOMPARE(told.count(), 1);
}

void SamplePass::fresh_start_lets_the_pass_sample()
{
    g_monitor_run = 0;
    start_window(50, 3.0);
    QCOMPARE(g_monitor_run, uint16_t{1});
    QCOMPARE(g_monitor_enabled, uint8_t{1});
    QCOMPARE(m_cfg->live_mv, 3.0);
}

void SamplePass::every_pass_tells_the_record()
{
    QSignalSpy told(m_monitor.get(), &monitorThread::plotInfo);
    pass(3);
    QCOMPARE(told.count(), 3);
    for (const QList<QVariant> &arguments : told)
        QCOMPARE(arguments.first().value<ZERL_CFG *>(), m_cfg.get());
    QCOMPARE(m_cfg->monitor_pass_done, uint16_t{1});
}

void SamplePass::readings_are_taken_from_where_the_host_is_now()
{
    start_window(2, 3.0);
    MV_RECORD elsewhere[CHANNELS] = {};
    elsewhere[0].mv = 7.0;
    Mv = elsewhere;
    pass(2);
    Mv = readings;
    QCOMPARE(m_cfg->live_mv, 7.0);
}

void SamplePass::channel_that_is_not_published_data()
{
    QTest::addColumn<int>("channel");
    QTest::newRow("one past the last") << CHANNELS;
    QTest::newRow("largest") << 32767;
    QTest::newRow("negative") << -1;
}

// A host that came back smaller: nothing is read outside its memory, and the
// last reading of the channel stays.
void SamplePass::channel_that_is_not_published()
{
    QFETCH(int, channel);
    start_window(2, 3.0);
    const int16_t bound = m_cfg->channel;
    m_cfg->channel = static_cast<int16_t>(channel);
    readings[bound].mv = 9.0;
    pass(2);
    QCOMPARE(m_cfg->live_mv, 3.0);
}

LOOP_TEST(SamplePass);
#include "test_samplepass.moc"
