// SPDX-License-Identifier: GPL-3.0-or-later
//
// CAL_TABLES, memory 35: the run-time tables of all channels, built from the
// .tbl files; all zero before the first build. A header, then one entry for
// each active channel whose table could be read, ascending by channel.
#ifndef HOSTSIM_BLD_TABLES_CALTABLES_H
#define HOSTSIM_BLD_TABLES_CALTABLES_H

#include <cstdint>
#include <vector>

#include "host/memories.h"
#include "host/tablerecord.h"

namespace caltables
{

constexpr std::uint64_t CAL_TABLES_MAGIC = 0x31544c4143524f56; // "VORCALT1"

struct CalTablesHeader {
    std::uint64_t magic;
    std::int32_t count;  // entries behind the header
    std::int32_t failed; // active channels whose table file could not be read
    std::int64_t built;  // seconds since the epoch
    std::uint8_t reserved[40];
};
HOST_SIZE(CalTablesHeader, 64);

struct CalTableEntry {
    std::int32_t channel;
    std::uint16_t table_type; // as in the file
    std::uint8_t reserved[2];
    char table_name[80];
    char eng_units[16];
    LONG_TABLE table;
};
HOST_SIZE(CalTableEntry, 7576);
HOST_OFFSET(CalTableEntry, table, 104);

struct CalTables {
    std::vector<CalTableEntry> entries;
    int failed = 0; // channels with a file that cannot be read
};

// Reads the table of every active channel through the runtime. A channel with
// no table name, or named INACTIVE, has no table; one whose file is missing or
// cannot be read is logged and, in the latter case, counted as failed.
CalTables build_cal_tables(const AI_REAL_RECORD *channels, const AI_TRANSFER_RECORD *transfer,
                           int channel_count);

// Publishes them as memory 35 in the former one's place; false when it cannot.
bool publish_cal_tables(const CalTables &tables);

} // namespace caltables

#endif
