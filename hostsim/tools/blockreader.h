// SPDX-License-Identifier: GPL-3.0-or-later
//
// The blocks of a file from its first to its last, whatever the file's size.
#ifndef HOSTSIM_TOOLS_BLOCKREADER_H
#define HOSTSIM_TOOLS_BLOCKREADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/tablerecord.h"
#include "hostsim/runtime/tablefile.h"

namespace hostsim
{

// One block, or a stretch of the file that should be one.
struct BlockEntry {
    std::size_t number = 0; // 1 for the file's first
    std::size_t line = 0;   // of the file, where it begins
    TABLE_RECORD record = {};
    BlockInfo info;
    BlockFault fault; // its line is the file's; what is empty: whole and sound
};

class BlockReader
{
public:
    // strict: of a table file, whose one record must be of a known type.
    BlockReader(int fd, bool strict) : m_fd(fd), m_strict(strict) {}

    // False at the end of the file, or when it cannot be read.
    bool next(BlockEntry *entry);
    bool failed() const { return m_failed; }

private:
    bool fill();
    void judge(std::string_view text, BlockEntry *entry) const;

    int m_fd;
    bool m_strict;
    bool m_failed = false;
    bool m_at_end = false;
    bool m_in_damage = false; // the stretch before was no block either
    std::uint64_t m_read = 0; // bytes of the file read
    std::string m_buffer;
    std::size_t m_used = 0; // bytes of the buffer delivered
    std::size_t m_line = 1;
    std::size_t m_number = 0;
};

} // namespace hostsim

#endif
