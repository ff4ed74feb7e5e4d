// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/monitorthread.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "calibration/tableload.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "host/exports.h"
#include "host/operations.h"

FIFO_RECORD g_fifo_y = {};
FIFO_RECORD g_fifo_x = {};
STAT_RECORD g_stat_xy = {};
STAT_RECORD g_stat_spare = {};
monitorThread *g_monitor_thread = nullptr;

namespace
{

// Allocated with the other two and never fed: the host's statistics come in
// pairs.
FIFO_RECORD spare_fifo_y = {};
FIFO_RECORD spare_fifo_x = {};

void alloc_fifo(FIFO_RECORD &fifo, uint32_t size)
{
    fifo.buffer = static_cast<double *>(std::calloc(std::max<uint32_t>(size, 1), sizeof(double)));
    fifo.next = fifo.buffer;
    fifo.size = size;
    fifo.count = 0;
}

// One whole reading, mV. A channel that the host no longer publishes keeps its
// last one.
double present_mv(int16_t channel)
{
    static double last = 0.0; // under the table mutex
    const MV_RECORD *readings = relaxed_load(Mv);
    const SYS_ATTR_RECORD *attributes = relaxed_load(Sys_attr);
    if (attributes != nullptr && channel >= 0 && channel < relaxed_load(attributes->channel_count))
        last = relaxed_load(readings[channel].mv);
    return last;
}

double seconds_now()
{
    return static_cast<double>(std::time(nullptr));
}

// Horner's rule over a local copy, so that a write to the range meanwhile
// cannot change the number of coefficients in the middle of the sum.
double evaluate_range(const POLY_RANGE_RECORD &range, double mv)
{
    POLY_RANGE_RECORD local;
    relaxed_copy(local, range);
    double coeffs[MAX_POINTS];
    const int count = load_coefficients(local, coeffs);
    double sum = 0.0;
    for (int i = count - 1; i >= 0; --i)
        sum = sum * mv + coeffs[i];
    return sum;
}

// One reading (mV) through the table, of which `current` is a copy of the long
// one: the host does not read that field by field, and the window writes fields of
// it at any moment.
double convert_through(const LONG_TABLE &current, const TABLE_RECORD &table, uint16_t table_type,
                       uint16_t *hint, double mv)
{
    switch (table_type) {
    case TABLE_INTERP:
        return linear_interp_long(hint, &current, 0, mv);
    case TABLE_POLY:
        return evaluate_range(table.poly[0], mv);
    case TABLE_SCALED:
        return mv * current.x[0];
    case TABLE_POLY_RANGE:
        return evaluate_range(table.poly[range_index(table)], mv);
    default:
        return 0.0;
    }
}

// Adds readings until the window is full: one turn in normal running, the whole
// window at once after a fresh start.
void fill_window(int16_t channel)
{
    const double start = seconds_now();
    do {
        const double elapsed = seconds_now() - start;
        to_fifo(&g_fifo_y, present_mv(channel));
        to_fifo(&g_fifo_x, elapsed);
    } while (g_fifo_y.count != g_fifo_y.size);
}

// The statistics of the window into the record and g_sample. Minimum and
// maximum are interpolated whatever the table's type; only the mean follows it.
void take_statistics(ZERL_CFG *cfg, uint16_t *hint)
{
    const double mean = get_stat_member(&g_stat_xy, STAT_MEAN);
    relaxed_store(cfg->live_mv, mean);
    LONG_TABLE current;
    relaxed_copy(current, cfg->long_current);
    const double live_eu =
        convert_through(current, cfg->table, relaxed_load(cfg->table.table_type), hint, mean);
    relaxed_store(cfg->live_eu, live_eu);
    relaxed_store(g_sample.eu_mean, live_eu);
    relaxed_store(g_sample.mv_mean, get_stat_member(&g_stat_xy, STAT_MEAN));

    const double maximum = get_stat_member(&g_stat_xy, STAT_MAXIMUM);
    relaxed_store(g_sample.mv_max, maximum);
    relaxed_store(g_sample.eu_max, linear_interp(hint, &current, 0, maximum));
    const double minimum = get_stat_member(&g_stat_xy, STAT_MINIMUM);
    relaxed_store(g_sample.mv_min, minimum);
    relaxed_store(g_sample.eu_min, linear_interp(hint, &current, 0, minimum));

    const double deviation = get_stat_member(&g_stat_xy, STAT_DEVIATION);
    relaxed_store(g_sample.mv_std, deviation);
    relaxed_store(g_sample.eu_std, deviation);
    (void)get_stat_member(&g_stat_xy, STAT_MEMBER_21); // fetched and dropped
}

} // namespace

void alloc_fifos()
{
    FIFO_RECORD *const fifos[] = {&g_fifo_y, &g_fifo_x, &spare_fifo_y, &spare_fifo_x};
    if (g_fifo_y.buffer != nullptr) {
        for (FIFO_RECORD *fifo : fifos)
            std::free(fifo->buffer);
    }
    const uint32_t size = relaxed_load(g_fifo_size);
    for (FIFO_RECORD *fifo : fifos)
        alloc_fifo(*fifo, size);
}

double convert_reading(uint16_t table_type, uint16_t *hint, const ZERL_CFG *cfg, double mv)
{
    LONG_TABLE current;
    relaxed_copy(current, cfg->long_current);
    return convert_through(current, cfg->table, table_type, hint, mv);
}

monitorThread::monitorThread(QMutex *table_mutex) : m_table_mutex(table_mutex), m_sleep_ms(0)
{
    relaxed_store(g_fifo_size, static_cast<uint32_t>(DEFAULT_FIFO_SIZE));
    alloc_fifos();
}

monitorThread::~monitorThread() = default;

void monitorThread::set_sleep_ms(int16_t ms)
{
    m_sleep_ms = ms;
}

void monitorThread::run()
{
    for (;;) {
        sample_pass();
        QThread::msleep(static_cast<unsigned long>(m_sleep_ms));
    }
}

void monitorThread::sample_pass()
{
    ZERL_CFG *cfg = g_cfg;
    uint16_t hint = 0;
    TableLock lock(m_table_mutex);
    if (acquire_exchange(g_monitor_enabled, static_cast<uint8_t>(1)) == 0) {
        relaxed_store(g_monitor_run, static_cast<uint16_t>(1));
        alloc_fifos();
        clear_stat_values(&g_stat_xy);
        clear_stat_values(&g_stat_spare);
    }
    if (relaxed_load(g_monitor_run) == 1) {
        fill_window(cfg->channel);
        const double present = present_mv(cfg->channel);
        g_stat_xy.present_200 = present;
        g_stat_xy.present_240 = present;
        xy_acquire_from_fifo(&g_stat_xy, &g_fifo_y, &g_fifo_x);
        xy_statistics_compute(&g_stat_xy);
        take_statistics(cfg, &hint);
        relaxed_store(g_monitor_run, static_cast<uint16_t>(1));
    }
    relaxed_store(cfg->monitor_pass_done, static_cast<uint16_t>(1));
    lock.unlock();
    emit plotInfo(cfg);
}
