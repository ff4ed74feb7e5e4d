// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/cellmemories.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "hostsim/runtime/unitcatalogue.h"

namespace cell
{

namespace
{

constexpr std::size_t SCHEDULER_BYTES = 1024; // nobody here reads it
constexpr std::size_t TABLES_BYTES = 64;      // until the rebuild program has run

// Withdrawn from the front, so that no task finds the first one it attaches
// while the others go.
constexpr std::int32_t MEMORIES[] = {
    MEMORY_AI_REAL,         MEMORY_MILLIVOLTS,         MEMORY_SYS_ATTR,
    MEMORY_AI_TRANSFER,     MEMORY_SCHEDULER,          MEMORY_CAL_TABLES,
    MEMORY_DISPLAY_STRINGS, hostsim::MEMORY_VARIABLES, hostsim::MEMORY_CONTROL};

template <std::size_t Size> void put(const std::string &text, char (&field)[Size])
{
    copyn(__FILE__, __LINE__, field, text.c_str(), Size);
}

void fill_channels(void *payload, void *context)
{
    auto *records = static_cast<AI_REAL_RECORD *>(payload);
    for (const auto &[n, channel] : static_cast<const CellDescription *>(context)->channels) {
        records[n].active = channel.active;
        put(channel.label, records[n].label);
        put(channel.units, records[n].units);
    }
}

void fill_transfer(void *payload, void *context)
{
    auto *records = static_cast<AI_TRANSFER_RECORD *>(payload);
    for (const auto &[n, channel] : static_cast<const CellDescription *>(context)->channels) {
        records[n].filter_coeff = channel.filter_coefficient;
        records[n].sample_rate = channel.sample_rate;
        put(channel.table_name, records[n].table_name);
    }
}

void fill_attributes(void *payload, void *context)
{
    const auto &description = *static_cast<const CellDescription *>(context);
    auto *record = static_cast<SYS_ATTR_RECORD *>(payload);
    record->channel_count = static_cast<std::int16_t>(description.channel_count);
    put(description.cell_name, record->test_cell_name);
}

void fill_strings(void *payload, void *context)
{
    auto *record = static_cast<DISPLAY_STRINGS_RECORD *>(payload);
    put(static_cast<const CellDescription *>(context)->host_name, record->host_name);
}

void fill_variables(void *payload, void *context)
{
    auto *entries = static_cast<hostsim::VariableEntry *>(payload);
    for (const VariableDescription &variable :
         static_cast<const CellDescription *>(context)->variables) {
        VARIABLE_RECORD record = {};
        record.value = variable.value;
        put(variable.units, record.units);
        put(variable.name, entries->name);
        std::memcpy(entries->record, &record, sizeof record);
        ++entries;
    }
}

void fill_control(void *payload, void *context)
{
    auto *record = static_cast<hostsim::ControlRecord *>(payload);
    record->join_answer = static_cast<const CellDescription *>(context)->join_answer;
    record->cell_pid = getpid();
}

void *publish_one(std::int32_t id, std::size_t size, void (*fill)(void *, void *),
                  const CellDescription &description)
{
    return hostsim::publish_memory(id, size, fill, const_cast<CellDescription *>(&description));
}

} // namespace

bool CellMemories::publish(const CellDescription &description, std::string *error)
{
    // What a dead cell left goes first, so that no task meets both.
    m_published = true;
    withdraw();
    hostsim::remove_unfinished_memories();
    m_published = true;
    m_channel_count = description.channel_count;
    if (!publish_units(description, error))
        return false;
    if (publish_attributes(description) && publish_channels(description))
        return true;
    *error = std::string("the memories cannot be published: ") + std::strerror(errno);
    return false;
}

bool CellMemories::publish_units(const CellDescription &description, std::string *error)
{
    std::string text = hostsim::default_unit_catalogue_text();
    const std::string &path = description.catalogue;
    std::vector<std::string> faults;
    if (!path.empty() && !hostsim::read_unit_catalogue_text(path.c_str(), &text)) {
        *error = path + ": " + std::strerror(errno);
        return false;
    }
    hostsim::parse_unit_catalogue(text, &faults);
    if (!faults.empty()) {
        *error = path + ": " + faults.front();
        return false;
    }
    if (hostsim::publish_unit_catalogue(text))
        return true;
    *error = std::string("the units cannot be published: ") + std::strerror(errno);
    return false;
}

bool CellMemories::publish_attributes(const CellDescription &description)
{
    using namespace hostsim;
    return publish_one(MEMORY_CONTROL, sizeof(ControlRecord), fill_control, description) &&
           publish_one(MEMORY_VARIABLES, description.variables.size() * sizeof(VariableEntry),
                       fill_variables, description) &&
           publish_one(MEMORY_DISPLAY_STRINGS, sizeof(DISPLAY_STRINGS_RECORD), fill_strings,
                       description) &&
           publish_one(MEMORY_SCHEDULER, SCHEDULER_BYTES, nullptr, description) &&
           publish_one(MEMORY_SYS_ATTR, sizeof(SYS_ATTR_RECORD), fill_attributes, description);
}

bool CellMemories::publish_channels(const CellDescription &description)
{
    const auto count = static_cast<std::size_t>(m_channel_count);
    m_millivolts = static_cast<MV_RECORD *>(
        publish_one(MEMORY_MILLIVOLTS, count * sizeof(MV_RECORD), nullptr, description));
    m_transfer = static_cast<AI_TRANSFER_RECORD *>(publish_one(
        MEMORY_AI_TRANSFER, count * sizeof(AI_TRANSFER_RECORD), fill_transfer, description));
    if (m_millivolts == nullptr || m_transfer == nullptr)
        return false;
    if (publish_one(MEMORY_CAL_TABLES, TABLES_BYTES, nullptr, description) == nullptr)
        return false;
    // The one that tasks attach first comes last.
    m_channels = static_cast<AI_REAL_RECORD *>(
        publish_one(MEMORY_AI_REAL, count * sizeof(AI_REAL_RECORD), fill_channels, description));
    return m_channels != nullptr;
}

void CellMemories::withdraw()
{
    if (!m_published)
        return;
    m_published = false;
    for (const std::int32_t id : MEMORIES)
        hostsim::withdraw_memory(id);
    hostsim::withdraw_unit_catalogue();
}

double CellMemories::millivolts(int n) const
{
    double mv = 0.0;
    __atomic_load(&m_millivolts[n].mv, &mv, __ATOMIC_RELAXED);
    return mv;
}

void CellMemories::set_millivolts(int n, double mv)
{
    __atomic_store(&m_millivolts[n].mv, &mv, __ATOMIC_RELAXED);
}

bool make_table_files(const CellDescription &description, std::string *error)
{
    const std::string folder = "/cell/tables";
    if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) {
        *error = folder + ": " + std::strerror(errno);
        return false;
    }
    for (const auto &[n, channel] : description.channels) {
        const std::string stem = folder + '/' + channel.table_name;
        const std::string table = stem + ".tbl";
        const std::string archive = stem + ".save";
        if (!channel.table || access(table.c_str(), F_OK) == 0)
            continue;
        // The archive first: a cell that dies in between makes both again.
        if (channel.archive && access(archive.c_str(), F_OK) != 0 &&
            save_table_files_poly(archive.c_str(), channel.archive.get(), SAVE_ADJUSTED) != 0) {
            *error = archive + ": cannot be made";
            return false;
        }
        if (create_table(table.c_str(), channel.table.get()) != 0) {
            *error = table + ": cannot be made";
            return false;
        }
    }
    return true;
}

} // namespace cell
