// SPDX-License-Identifier: GPL-3.0-or-later
//
// The blocks of a file from its last to its first, read in pieces from the end,
// so that finding the newest costs the same in a long file as in a short one.
#ifndef HOSTSIM_RUNTIME_ARCHIVESEARCH_H
#define HOSTSIM_RUNTIME_ARCHIVESEARCH_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace hostsim
{

// From one block's opening line to the next one's, or to the end of the file.
struct Region {
    std::uint64_t offset = 0; // in the file
    std::string_view text;    // good until the next region is asked for
    bool opened = false;      // begins with an opening line
    bool continued = false;   // belongs to the region that is delivered next
};

class ArchiveSearch
{
public:
    // The file must be open for reading as long as the search goes on.
    ArchiveSearch(int fd, std::uint64_t size) : m_fd(fd), m_end(size), m_base(size) {}

    // The next region towards the file's beginning; false when there is none
    // left or the file cannot be read.
    bool previous(Region *region);
    bool failed() const { return m_failed; }

private:
    bool load();

    int m_fd;
    std::uint64_t m_end;  // where the delivered regions begin
    std::uint64_t m_base; // place in the file of the buffer's first byte
    std::string m_buffer;
    std::vector<std::size_t> m_openings; // in the buffer, before m_end
    std::size_t m_window = 0;
    bool m_failed = false;
};

} // namespace hostsim

#endif
