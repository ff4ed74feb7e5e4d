// SPDX-License-Identifier: GPL-3.0-or-later
//
// Sampling statistics. Called ten times a second under the program's lock:
// nothing here allocates, and a window of samples is gone through twice.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"

namespace hostsim
{
namespace
{

// Figures of a data set, and those of the last computation. Taking a data set
// reduces it at once, so the record points at no FIFO afterwards.
struct Figures {
    double samples;
    double mean;
    double minimum;
    double maximum;
    double deviation; // in the data set: sum of squared differences to the mean
};

// Where they stand in a STAT_RECORD: clear of the fields that the program
// writes.
constexpr std::size_t DATA_SET = offsetof(STAT_RECORD, reserved_248);
constexpr std::size_t RESULT = DATA_SET + sizeof(Figures);
static_assert(RESULT + sizeof(Figures) <= sizeof(STAT_RECORD), "the figures must fit the record");

Figures load(const STAT_RECORD *record, std::size_t offset)
{
    Figures figures;
    memcpy(&figures, reinterpret_cast<const char *>(record) + offset, sizeof figures);
    return figures;
}

void store(STAT_RECORD *record, std::size_t offset, const Figures &figures)
{
    memcpy(reinterpret_cast<char *>(record) + offset, &figures, sizeof figures);
}

// Several sums side by side: one chain of additions would cost the latency of
// each.
constexpr std::size_t LANES = 4;

struct Sweep {
    double sum[LANES] = {};
    double minimum[LANES];
    double maximum[LANES];
};

void add(Sweep *sweep, std::size_t lane, double sample, double origin)
{
    sweep->sum[lane] += sample - origin;
    sweep->minimum[lane] = sample < sweep->minimum[lane] ? sample : sweep->minimum[lane];
    sweep->maximum[lane] = sample > sweep->maximum[lane] ? sample : sweep->maximum[lane];
}

double squares(const double *samples, std::size_t count, double mean)
{
    double sum[LANES] = {};
    std::size_t i = 0;
    for (; i + LANES <= count; i += LANES) {
        for (std::size_t lane = 0; lane < LANES; ++lane) {
            const double difference = samples[i + lane] - mean;
            sum[lane] += difference * difference;
        }
    }
    for (; i < count; ++i)
        sum[0] += (samples[i] - mean) * (samples[i] - mean);
    return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

bool any_nan(const double *samples, std::size_t count)
{
    return std::any_of(samples, samples + count, [](double sample) { return std::isnan(sample); });
}

// Sums run over differences to the first sample, which keeps their digits when
// a small noise rides on a large reading. A sample that is not a number makes
// mean and deviation the same; minimum and maximum are those of the others.
Figures reduce(const double *samples, std::size_t count)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double origin = samples[0];
    Sweep sweep;
    std::fill_n(sweep.minimum, LANES, infinity);
    std::fill_n(sweep.maximum, LANES, -infinity);
    std::size_t i = 0;
    for (; i + LANES <= count; i += LANES) {
        for (std::size_t lane = 0; lane < LANES; ++lane)
            add(&sweep, lane, samples[i + lane], origin);
    }
    for (; i < count; ++i)
        add(&sweep, 0, samples[i], origin);

    Figures figures{};
    figures.samples = static_cast<double>(count);
    figures.minimum = *std::min_element(sweep.minimum, sweep.minimum + LANES);
    figures.maximum = *std::max_element(sweep.maximum, sweep.maximum + LANES);
    if (figures.minimum > figures.maximum) // none is a number
        figures.minimum = figures.maximum = origin;
    if (figures.minimum == figures.maximum && !any_nan(samples, count)) {
        figures.mean = figures.minimum;
        return figures;
    }
    const double sum = (sweep.sum[0] + sweep.sum[1]) + (sweep.sum[2] + sweep.sum[3]);
    figures.mean = origin + sum / figures.samples;
    if (!std::isnan(figures.mean))
        figures.mean = std::clamp(figures.mean, figures.minimum, figures.maximum);
    figures.deviation = squares(samples, count, figures.mean);
    return figures;
}

bool usable(const FIFO_RECORD *fifo)
{
    return fifo != nullptr && fifo->buffer != nullptr && fifo->size > 0;
}

} // namespace
} // namespace hostsim

extern "C" {

void to_fifo(FIFO_RECORD *fifo, double value)
{
    if (!hostsim::usable(fifo))
        return;
    if (fifo->next == nullptr || fifo->next >= fifo->buffer + fifo->size)
        fifo->next = fifo->buffer;
    *fifo->next++ = value;
    if (fifo->next == fifo->buffer + fifo->size)
        fifo->next = fifo->buffer;
    fifo->count = fifo->count < fifo->size ? fifo->count + 1 : fifo->size;
}

void clear_stat_values(STAT_RECORD *statistics)
{
    if (statistics != nullptr)
        memset(statistics, 0, sizeof *statistics);
}

// The figures asked for are all of y; x only says when each sample was taken.
void xy_acquire_from_fifo(STAT_RECORD *statistics, const FIFO_RECORD *y, const FIFO_RECORD *)
{
    using namespace hostsim;
    if (statistics == nullptr)
        return;
    watch_host(); // once a pass
    // The samples held are always the first of the buffer: it fills from its
    // beginning, and no figure depends on which of them is the oldest.
    const std::size_t count = usable(y) ? std::min(y->count, y->size) : 0;
    store(statistics, DATA_SET, count > 0 ? reduce(y->buffer, count) : Figures{});
}

void xy_statistics_compute(STAT_RECORD *statistics)
{
    using namespace hostsim;
    if (statistics == nullptr)
        return;
    Figures figures = load(statistics, DATA_SET);
    figures.deviation =
        figures.samples > 1.0 ? std::sqrt(figures.deviation / (figures.samples - 1.0)) : 0.0;
    store(statistics, RESULT, figures);
}

double get_stat_member(const STAT_RECORD *statistics, int32_t member)
{
    using namespace hostsim;
    if (statistics == nullptr)
        return 0.0;
    const Figures figures = load(statistics, RESULT);
    switch (member) {
    case STAT_MEAN:
        return figures.mean;
    case STAT_MINIMUM:
        return figures.minimum;
    case STAT_MAXIMUM:
        return figures.maximum;
    case STAT_DEVIATION:
        return figures.deviation;
    case STAT_MEMBER_21:
        return figures.samples;
    default:
        return 0.0;
    }
}

} // extern "C"
