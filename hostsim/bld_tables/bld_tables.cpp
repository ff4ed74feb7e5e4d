// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's rebuild program: reads the table of every channel and publishes
// the run-time tables anew. Status: 0, or 1 when the host does not run, a table
// cannot be read, or the tables cannot be published.
#include <cstdio>

#include "host/operations.h"
#include "hostsim/bld_tables/caltables.h"
#include "hostsim/runtime/memoryheader.h"

namespace
{

int fail(const char *why)
{
    log_error(__FILE__, __LINE__, 1, 1, "tables not rebuilt: %s", why);
    std::fprintf(stderr, "bld_tables: %s\n", why);
    return 1;
}

} // namespace

int main()
{
    const auto *channels = static_cast<const AI_REAL_RECORD *>(get_shrd_mem(MEMORY_AI_REAL, 0));
    const auto *transfer =
        static_cast<const AI_TRANSFER_RECORD *>(get_shrd_mem(MEMORY_AI_TRANSFER, 0));
    const auto *attributes = static_cast<const SYS_ATTR_RECORD *>(get_shrd_mem(MEMORY_SYS_ATTR, 0));
    if (channels == nullptr || transfer == nullptr || attributes == nullptr)
        return fail("the host does not run");
    const caltables::CalTables tables =
        caltables::build_cal_tables(channels, transfer, attributes->channel_count);
    if (!caltables::publish_cal_tables(tables))
        return fail("the run-time tables cannot be published");
    // A cell that ended meanwhile has withdrawn its memories, this one before it
    // was made anew: nobody else would take it away.
    if (get_shrd_mem(MEMORY_AI_REAL, 0) == nullptr) {
        hostsim::withdraw_memory(MEMORY_CAL_TABLES);
        return fail("the host has ended");
    }
    log_error(__FILE__, __LINE__, 0, 0, "%zu tables rebuilt, %d files cannot be read",
              tables.entries.size(), tables.failed);
    return tables.failed == 0 ? 0 : 1;
}
