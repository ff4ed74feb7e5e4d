// SPDX-License-Identifier: GPL-3.0-or-later
//
// The runtime's own view of the memories that this process has mapped.
#ifndef HOSTSIM_RUNTIME_MAPPING_H
#define HOSTSIM_RUNTIME_MAPPING_H

#include <cstddef>
#include <cstdint>

namespace hostsim
{

struct Mapping {
    void *payload = nullptr;  // null: no such memory
    std::size_t size = 0;     // bytes of payload
    std::uint32_t number = 0; // of this mapping within the process, from 1 on
};

// The memory as it is published now.
Mapping find_mapping(std::int32_t id, bool writable);

// A mapping of this process by its number; it stays, whatever became of the
// memory since.
Mapping mapping_by_number(std::uint32_t number);

} // namespace hostsim

#endif
