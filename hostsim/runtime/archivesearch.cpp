// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/archivesearch.h"

#include <algorithm>

#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/tablefile.h"

namespace hostsim
{

namespace
{

constexpr std::size_t FIRST_WINDOW = 8 * 1024;
constexpr std::size_t LARGEST_WINDOW = 4 * MAX_BLOCK;

} // namespace

// Reads the piece before m_end again, a larger one each time: an opening line
// may have stood across the former piece's edge.
bool ArchiveSearch::load()
{
    m_window = m_window == 0 ? FIRST_WINDOW : std::min(4 * m_window, LARGEST_WINDOW);
    m_base = m_end - std::min<std::uint64_t>(m_window, m_end);
    const std::size_t wanted = static_cast<std::size_t>(m_end - m_base);
    if (!read_at(m_fd, m_base, wanted, &m_buffer)) {
        m_failed = true;
        return false;
    }
    // The file has become shorter in the meantime: what is left still counts.
    m_end = m_base + m_buffer.size();
    m_openings.clear();
    for (std::size_t at = find_block(m_buffer, 0); at != std::string_view::npos;
         at = find_block(m_buffer, at + 1))
        m_openings.push_back(at);
    return true;
}

bool ArchiveSearch::previous(Region *region)
{
    while (m_end > 0) {
        const std::size_t pending = static_cast<std::size_t>(m_end - m_base);
        std::size_t begin = 0;
        if (!m_openings.empty()) {
            begin = m_openings.back();
            m_openings.pop_back();
            *region = {m_base + begin, {}, true, false};
        } else if (m_base == 0) {
            *region = {0, {}, false, false};
        } else if (pending >= 2 * MAX_BLOCK) {
            // Nothing but damage; a block that begins before the piece ends
            // within its first MAX_BLOCK bytes.
            begin = MAX_BLOCK;
            *region = {m_base + begin, {}, false, true};
        } else {
            if (!load())
                return false;
            continue;
        }
        region->text = std::string_view(m_buffer).substr(begin, pending - begin);
        m_end = region->offset;
        return true;
    }
    return false;
}

} // namespace hostsim
