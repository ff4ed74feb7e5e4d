// SPDX-License-Identifier: GPL-3.0-or-later
//
// Memories of a cell for the benchmarks, published in the private view that
// they run in.
#ifndef BENCH_BENCHCELL_H
#define BENCH_BENCHCELL_H

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "hostsim/runtime/unitcatalogue.h"

namespace bench
{

// Leaves with status 2: nothing can be measured.
[[noreturn]] inline void give_up(const char *why)
{
    std::fprintf(stderr, "%s\n", why);
    std::exit(2);
}

template <typename Record> Record *publish(int32_t id, std::size_t records)
{
    void *payload = hostsim::publish_memory(id, records * sizeof(Record), nullptr, nullptr);
    if (payload == nullptr)
        give_up("a memory cannot be published; run this through privatecell");
    return static_cast<Record *>(payload);
}

// `channels` active channels in kPa; channel 0 has the table files "bench".
inline void publish_cell(int channels)
{
    const auto count = static_cast<std::size_t>(channels);
    auto *inputs = publish<AI_REAL_RECORD>(MEMORY_AI_REAL, count);
    for (std::size_t n = 0; n < count; ++n) {
        inputs[n].active = 1;
        std::snprintf(inputs[n].label, sizeof inputs[n].label, "Channel %zu", n);
        std::strcpy(inputs[n].units, "kPa");
    }
    publish<MV_RECORD>(MEMORY_MILLIVOLTS, count)->mv = 1250.0;
    publish<SYS_ATTR_RECORD>(MEMORY_SYS_ATTR, 1)->channel_count = static_cast<int16_t>(channels);
    std::strcpy(publish<AI_TRANSFER_RECORD>(MEMORY_AI_TRANSFER, count)->table_name, "bench");
    publish<MV_RECORD>(MEMORY_SCHEDULER, 1);
    publish<DISPLAY_STRINGS_RECORD>(MEMORY_DISPLAY_STRINGS, 1);
    publish<MV_RECORD>(MEMORY_CAL_TABLES, 1);
    publish<UNIT_RECORD>(MEMORY_UNITS, UNIT_RECORDS);
}

// A straight table of `points` points over 0 to 10000 mV and 0 to 1000 kPa.
inline TABLE_RECORD straight_table(int points)
{
    TABLE_RECORD table = {};
    table.table_type = TABLE_INTERP;
    table.last_save_type = SAVE_ADJUSTED;
    POLY_RANGE_RECORD &range = table.poly[0];
    range.num_points = static_cast<int16_t>(points);
    for (int i = 0; i < points; ++i) {
        range.x[i] = 10000.0 * i / (points - 1);
        range.y[i] = 1000.0 * i / (points - 1);
    }
    std::strcpy(table.table_name, "bench");
    std::strcpy(table.eng_units, "kPa");
    std::strcpy(table.sensor_units, "kPa");
    table.sensor_range_max = 1000.0;
    return table;
}

} // namespace bench

#endif
