// SPDX-License-Identifier: GPL-3.0-or-later
//
// A channel bound anew, as after a rebuild, while passes go on: each reading is
// converted by the former table or by the new one and never by a table half read.
#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <thread>

#include <QtTest>

#include "acquisition/channelbinding.h"
#include "acquisition/monitorthread.h"
#include "frame/hostlink.h"
#include "frame/relaxed.h"
#include "sensor/tolerances.h"
#include "support/cellfiles.h"
#include "support/recorder.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr int REBINDS = 200;
constexpr double READING_MV = 30.0;
AI_REAL_RECORD ai_real[1];
AI_TRANSFER_RECORD ai_transfer[1];
MV_RECORD reading[1];
SYS_ATTR_RECORD attributes;
std::function<void()> on_read; // before the table file is read

} // namespace

// Stands before the runtime's own.
extern "C" int32_t read_table(const char *path, TABLE_RECORD *table)
{
    static const auto real =
        reinterpret_cast<decltype(&read_table)>(dlsym(RTLD_NEXT, "read_table"));
    if (on_read)
        on_read();
    return real(path, table);
}

class RebindWhileSampling : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { on_read = nullptr; }
    void pass_during_the_read_goes_by_the_former_table();
    void former_table_stays_until_the_new_one_is_published();
    void fields_of_the_monitor_thread_are_not_put_back();
    void no_reading_is_wrong_in_two_hundred_rebinds();

private:
    // Square of the reading by the polynomial; its points lie elsewhere.
    static double expected() { return READING_MV * READING_MV; }

    ZERL_CFG *m_cfg = nullptr;
};

void RebindWhileSampling::initTestCase()
{
    require_private_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
    set_none_instance_tokens();
    Ai_real = ai_real;
    Sys_attr = &attributes;
    Mv = reading;
    g_ai_transfer = ai_transfer;
    attributes.channel_count = 1;
    reading[0].mv = READING_MV;
    ai_real[0].active = 1;
    qstrncpy(ai_transfer[0].table_name, "square", sizeof ai_transfer[0].table_name);
    allocate_session();
    m_cfg = g_cfg;
    // As in the program neither is ever deleted.
    g_monitor_thread = new monitorThread(new QMutex(QMutex::Recursive));
}

void RebindWhileSampling::init()
{
    clear_cell();
    clear_recorded();
    const auto table = make_table(TABLE_POLY, {{0.0, 5.0}, {50.0, 70.0}, {100.0, 80.0}});
    table->poly[0].num_coeffs = 3;
    table->poly[0].coeffs[2] = 1.0;
    table->sensor_range_max = 100.0;
    qstrncpy(table->sensor_units, "kPa", sizeof table->sensor_units);
    QCOMPARE(create_table("/cell/tables/square.tbl", table.get()), 0);
    QCOMPARE(rebind_channel(m_cfg), 0);
    g_monitor_enabled = 0;
    g_monitor_thread->sample_pass();
    QCOMPARE(m_cfg->live_eu, expected());
}

void RebindWhileSampling::pass_during_the_read_goes_by_the_former_table()
{
    int passes = 0;
    double live_eu = 0.0;
    on_read = [&] {
        g_monitor_thread->sample_pass();
        live_eu = m_cfg->live_eu;
        ++passes;
    };
    QCOMPARE(rebind_channel(m_cfg), 0);
    QCOMPARE(passes, 1);
    QCOMPARE(live_eu, expected());
}

void RebindWhileSampling::former_table_stays_until_the_new_one_is_published()
{
    const auto before = std::make_unique<ZERL_CFG>(*m_cfg);
    bool untouched = false;
    on_read = [&] { untouched = std::memcmp(m_cfg, before.get(), sizeof *before) == 0; };
    QCOMPARE(rebind_channel(m_cfg), 0);
    QVERIFY(untouched);
}

void RebindWhileSampling::fields_of_the_monitor_thread_are_not_put_back()
{
    on_read = [this] {
        m_cfg->live_mv = 1.5;
        m_cfg->live_eu = 2.5;
        m_cfg->monitor_pass_done = 7;
    };
    QCOMPARE(rebind_channel(m_cfg), 0);
    QCOMPARE(m_cfg->live_mv, 1.5);
    QCOMPARE(m_cfg->live_eu, 2.5);
    QCOMPARE(m_cfg->monitor_pass_done, uint16_t(7));
}

void RebindWhileSampling::no_reading_is_wrong_in_two_hundred_rebinds()
{
    std::atomic<bool> over{false};
    std::atomic<int> passes{0};
    std::atomic<int> wrong{0};
    std::thread sampling([&] {
        while (!over) {
            g_monitor_thread->sample_pass();
            wrong += relaxed_load(m_cfg->live_eu) == expected() ? 0 : 1;
            ++passes;
        }
    });
    int refused = 0;
    for (int i = 0; i < REBINDS; ++i) {
        const int before = passes;
        refused += rebind_channel(m_cfg) == 0 ? 0 : 1;
        while (passes == before)
            std::this_thread::yield();
    }
    over = true;
    sampling.join();
    QCOMPARE(refused, 0);
    QVERIFY(passes >= REBINDS);
    QCOMPARE(wrong.load(), 0);
}

LOOP_TEST(RebindWhileSampling);
#include "test_rebindwhilesampling.moc"
