// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a cell publishes a memory: one POSIX shared memory object for each, a
// header first and the host's records behind it. A cell makes the object under
// a temporary name, fills it, and gives it its real name last, so that a reader
// finds a whole memory or none. It keeps the object locked (flock, exclusive) for
// as long as it lives: a memory that nobody has locked was left by a dead cell
// and counts as none.
#ifndef HOSTSIM_RUNTIME_MEMORYHEADER_H
#define HOSTSIM_RUNTIME_MEMORYHEADER_H

#include <cstddef>
#include <cstdint>

#include "host/layout.h"

namespace hostsim
{

constexpr std::uint64_t MEMORY_MAGIC = 0x314d454d58524f56; // "VORXMEM1"
constexpr std::uint32_t MEMORY_VERSION = 1;

struct MemoryHeader {
    std::uint64_t magic;
    std::uint32_t version;
    std::int32_t id;
    std::uint64_t payload_size; // bytes behind the header
    std::int32_t lives_with;    // memory whose publisher keeps this one alive; 0: its own
    std::uint8_t reserved[36];
};
HOST_SIZE(MemoryHeader, 64);
HOST_OFFSET(MemoryHeader, payload_size, 16);
HOST_OFFSET(MemoryHeader, lives_with, 24);

// Memories that only the stand-in knows.
constexpr std::int32_t MEMORY_VARIABLES = 901; // the variable table
constexpr std::int32_t MEMORY_CONTROL = 902;   // what the cell tells the runtime
constexpr std::int32_t MEMORY_UNIT_TEXT = 903; // the units catalogue's text, see unitcatalogue.h

struct ControlRecord {
    std::int32_t join_answer; // what join_layer returns; 0 admits
    std::int32_t cell_pid;
    std::uint8_t reserved[56];
};
HOST_SIZE(ControlRecord, 64);

struct VariableEntry {
    char name[80];
    std::uint8_t record[200]; // a VARIABLE_RECORD
};
HOST_SIZE(VariableEntry, 280);

// Name of the shared memory object: "/vornax.<id>".
void memory_object_name(std::int32_t id, char *name, std::size_t size);

// The whole payload of a published memory and its size, or null. The mapping
// stays for the process's life; a memory published anew gets a new mapping. Of
// the run-time tables, which each rebuild publishes anew, the last two stay.
// Behind the payload of a memory of channels or units there are zeros to read up
// to the most records that its count can name: channels that are not active.
void *map_memory(std::int32_t id, bool writable, std::size_t *size);

// Publishes a zero-filled memory of that size and returns the payload, or null
// with errno. A former memory of that number is replaced; who had it mapped
// keeps the former one. fill runs before the memory can be seen. The memory lives
// as long as this process, or as the one that has published lives_with.
void *publish_memory(std::int32_t id, std::size_t size, void (*fill)(void *payload, void *context),
                     void *context, std::int32_t lives_with = 0);

// Takes the memory's name away. Mappings stay good.
void withdraw_memory(std::int32_t id);

// Removes objects that a cell killed in the middle of publishing left behind.
void remove_unfinished_memories();

// To be called over and over where the memories are in use: looks twice a second
// whether the cell behind them still lives, whether none was cut short, and
// whether the counts agree with the sizes. The log has one entry for each fault.
void watch_host();

} // namespace hostsim

#endif
