// SPDX-License-Identifier: GPL-3.0-or-later
//
// A monitor pass at the longest window, 300 samples, against the bare mean,
// minimum, maximum and deviation of 300 doubles. The pass is timed with its
// lock, its conversions and its signal.
#include <algorithm>
#include <array>
#include <cmath>

#include <QMutex>

#include "acquisition/monitorthread.h"
#include "bench/ratios.h"
#include "frame/functions.h"
#include "frame/zerl_cfg.h"
#include "host/exports.h"

// Nothing here tells the user anything.
void show_information(const char *) {}
void show_warning(const char *, const char *) {}

namespace
{

constexpr int SAMPLES = 300;

MV_RECORD reading = {};
SYS_ATTR_RECORD attributes = {};

void publish_reading()
{
    reading.mv = 1.25;
    attributes.channel_count = 1;
    Mv = &reading;
    Sys_attr = &attributes;
}

void BM_monitor_pass(benchmark::State &state)
{
    publish_reading();
    if (g_cfg == nullptr)
        allocate_session();
    LONG_TABLE &table = g_cfg->long_current;
    table.num_points = 11;
    for (int i = 0; i < 11; ++i) {
        table.x[i] = i;
        table.y[i] = 10.0 * i;
    }
    QMutex mutex(QMutex::Recursive);
    monitorThread monitor(&mutex);
    g_fifo_size = SAMPLES;
    g_monitor_enabled = 0;
    double drift = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        reading.mv = 1.25 + (drift += 1e-6);
        monitor.sample_pass();
    }
}
BENCHMARK(BM_monitor_pass);

void BM_four_statistics(benchmark::State &state)
{
    std::array<double, SAMPLES> samples{};
    for (int i = 0; i < SAMPLES; ++i)
        samples[static_cast<std::size_t>(i)] = 1.25 + 1e-6 * i;
    for (auto run : state) {
        static_cast<void>(run);
        double sum = 0.0;
        double least = samples[0];
        double most = samples[0];
        for (const double sample : samples) {
            sum += sample;
            least = std::min(least, sample);
            most = std::max(most, sample);
        }
        const double mean = sum / SAMPLES;
        double squares = 0.0;
        for (const double sample : samples)
            squares += (sample - mean) * (sample - mean);
        const double deviation = std::sqrt(squares / (SAMPLES - 1));
        benchmark::DoNotOptimize(mean);
        benchmark::DoNotOptimize(least);
        benchmark::DoNotOptimize(most);
        benchmark::DoNotOptimize(deviation);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_four_statistics);

} // namespace

int main(int argc, char **argv)
{
    return bench::run(argc, argv, {{"BM_monitor_pass", "BM_four_statistics", 3.0}});
}
