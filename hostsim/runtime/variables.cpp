// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's variables, by name.
#include <cstring>

#include "host/operations.h"
#include "hostsim/runtime/mapping.h"
#include "hostsim/runtime/memoryheader.h"

namespace hostsim
{
namespace
{

constexpr int32_t NO_VARIABLE = 1;
constexpr int32_t NO_VARIABLE_TABLE = 2;

// What a VARIABLE_ID holds. It names the mapping that the entry was found in,
// so the address stays good when the table is published anew in between.
struct Place {
    std::uint32_t mapping;
    std::uint32_t index;
};
static_assert(sizeof(Place) <= sizeof(VARIABLE_ID), "a place must fit an id");

bool is_name(const VariableEntry &entry, const char *name, std::size_t length)
{
    return strnlen(entry.name, sizeof entry.name) == length &&
           memcmp(entry.name, name, length) == 0;
}

// A name field without a terminator is as long as the field.
bool is_blank(const VariableEntry &entry)
{
    char name[sizeof entry.name + 1] = "";
    memcpy(name, entry.name, sizeof entry.name);
    return string_blank(name) != 0;
}

} // namespace
} // namespace hostsim

extern "C" {

int32_t find_variable(const char *name, VARIABLE_ID *id)
{
    using namespace hostsim;
    const Mapping table = find_mapping(MEMORY_VARIABLES, false);
    if (table.payload == nullptr)
        return NO_VARIABLE_TABLE;
    if (id == nullptr || string_blank(name) != 0)
        return NO_VARIABLE;
    const auto *entries = static_cast<const VariableEntry *>(table.payload);
    const std::size_t count = table.size / sizeof(VariableEntry);
    const std::size_t length = strlen(name);
    for (std::size_t i = 0; i < count && !is_blank(entries[i]); ++i) {
        if (!is_name(entries[i], name, length))
            continue;
        const Place place{table.number, static_cast<std::uint32_t>(i)};
        memset(id, 0, sizeof *id);
        memcpy(id->bytes, &place, sizeof place);
        return 0;
    }
    return NO_VARIABLE;
}

void *get_vrbl_adr(VARIABLE_ID id)
{
    using namespace hostsim;
    Place place;
    memcpy(&place, id.bytes, sizeof place);
    const Mapping table = mapping_by_number(place.mapping);
    if (table.payload == nullptr || place.index >= table.size / sizeof(VariableEntry))
        return nullptr;
    return static_cast<VariableEntry *>(table.payload)[place.index].record;
}

} // extern "C"
