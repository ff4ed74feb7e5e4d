// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a cell publishes a memory: one POSIX shared memory object for each, a
// header first and the host's records behind it. A cell makes the object under
// a temporary name, fills it, and gives it its real name last, so that a reader
// finds a whole memory or none.
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
    std::uint8_t reserved[40];
};
HOST_SIZE(MemoryHeader, 64);
HOST_OFFSET(MemoryHeader, payload_size, 16);

// Memories that only the stand-in knows.
enum {
    MEMORY_VARIABLES = 901, // the variable table
    MEMORY_CONTROL = 902,   // what the cell tells the runtime
    MEMORY_UNIT_TEXT = 903  // the units catalogue's text, see unitcatalogue.h
};

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
// stays for the process's life; a memory published anew gets a new mapping.
void *map_memory(std::int32_t id, bool writable, std::size_t *size);

// Publishes a zero-filled memory of that size and returns the payload, or null
// with errno. A former memory of that number is replaced; who had it mapped
// keeps the former one. fill runs before the memory can be seen.
void *publish_memory(std::int32_t id, std::size_t size, void (*fill)(void *payload, void *context),
                     void *context);

// Takes the memory's name away. Mappings stay good.
void withdraw_memory(std::int32_t id);

} // namespace hostsim

#endif
