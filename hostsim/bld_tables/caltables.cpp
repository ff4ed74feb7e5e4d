// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/bld_tables/caltables.h"

#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <unistd.h>

#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"

namespace caltables
{

namespace
{

constexpr double SCALED_END_MV = 100.0;

// A SCALED table holds its factor in the first x; as points it is a straight
// line through 0.
void scaled_to_points(TABLE_RECORD *record)
{
    const double factor = record->poly[0].x[0];
    record->table_type = TABLE_INTERP;
    record->poly[0].num_points = 2;
    record->poly[0].x[0] = 0.0;
    record->poly[0].y[0] = 0.0;
    record->poly[0].x[1] = SCALED_END_MV;
    record->poly[0].y[1] = factor * SCALED_END_MV;
}

// False when the file is there and cannot be read.
bool add_table(int channel, const std::string &name, CalTables *tables)
{
    const std::string path = "/cell/tables/" + name + ".tbl";
    if (access(path.c_str(), F_OK) != 0) {
        log_error(__FILE__, __LINE__, 1, 0, "channel %d has no table file %s", channel,
                  path.c_str());
        return true;
    }
    const auto record = std::make_unique<TABLE_RECORD>();
    if ((read_table(path.c_str(), record.get()) & 0xffff) == 0xffff) {
        log_error(__FILE__, __LINE__, 1, 1, "table of channel %d cannot be read: %s", channel,
                  path.c_str());
        return false;
    }
    CalTableEntry entry = {};
    entry.channel = channel;
    entry.table_type = record->table_type;
    copyn(__FILE__, __LINE__, entry.table_name, name.c_str(), sizeof entry.table_name);
    std::memcpy(entry.eng_units, record->eng_units, sizeof entry.eng_units - 1);
    if (record->table_type == TABLE_SCALED)
        scaled_to_points(record.get());
    compute_long_table(record.get(), &entry.table);
    tables->entries.push_back(entry);
    return true;
}

void fill(void *payload, void *context)
{
    const auto &tables = *static_cast<const CalTables *>(context);
    CalTablesHeader header = {};
    header.magic = CAL_TABLES_MAGIC;
    header.count = static_cast<std::int32_t>(tables.entries.size());
    header.failed = tables.failed;
    header.built = std::time(nullptr);
    std::memcpy(payload, &header, sizeof header);
    if (!tables.entries.empty())
        std::memcpy(static_cast<char *>(payload) + sizeof header, tables.entries.data(),
                    tables.entries.size() * sizeof(CalTableEntry));
}

} // namespace

CalTables build_cal_tables(const AI_REAL_RECORD *channels, const AI_TRANSFER_RECORD *transfer,
                           int channel_count)
{
    CalTables tables;
    for (int n = 0; n < channel_count; ++n) {
        const char *field = transfer[n].table_name;
        const std::string name(field, strnlen(field, sizeof transfer[n].table_name));
        if (channels[n].active != 1 || string_blank(name.c_str()) != 0 || name == "INACTIVE")
            continue;
        if (!add_table(n, name, &tables))
            ++tables.failed;
    }
    return tables;
}

bool publish_cal_tables(const CalTables &tables)
{
    const std::size_t size =
        sizeof(CalTablesHeader) + tables.entries.size() * sizeof(CalTableEntry);
    CalTables copy = tables;
    // They belong to the cell: this process ends, and they stay.
    return hostsim::publish_memory(MEMORY_CAL_TABLES, size, fill, &copy, MEMORY_AI_REAL) != nullptr;
}

} // namespace caltables
