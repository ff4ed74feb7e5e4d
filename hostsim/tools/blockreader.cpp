// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/tools/blockreader.h"

#include <algorithm>

#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/tablefields.h"

namespace hostsim
{

namespace
{

constexpr std::size_t PIECE = 1024 * 1024;
// The longest block and the opening line behind it.
constexpr std::size_t NEEDED = MAX_BLOCK + 64;

} // namespace

// Has the longest block and what follows it in the buffer.
bool BlockReader::fill()
{
    if (m_at_end || m_buffer.size() - m_used >= NEEDED)
        return true;
    m_buffer.erase(0, m_used);
    m_used = 0;
    std::string piece;
    if (!read_at(m_fd, m_read, PIECE, &piece)) {
        m_failed = true;
        return false;
    }
    m_at_end = piece.size() < PIECE;
    m_read += piece.size();
    m_buffer += piece;
    return true;
}

void BlockReader::judge(std::string_view text, BlockEntry *entry) const
{
    if (!parse_block(text, &entry->record, &entry->info, &entry->fault)) {
        entry->fault.line += entry->line - 1;
        return;
    }
    const RecordFault wrong = record_fault(entry->record, !m_strict);
    if (!wrong.what.empty())
        entry->fault = {entry->line + line_of(text, wrong.field) - 1, wrong.what};
    else if (m_strict && entry->number > 1)
        entry->fault = {entry->line, "more than one record in a table file"};
}

bool BlockReader::next(BlockEntry *entry)
{
    while (fill() && m_used < m_buffer.size()) {
        const std::string_view rest = std::string_view(m_buffer).substr(m_used);
        std::size_t size = 0;
        const Stretch kind = first_stretch(rest, &size);
        const std::size_t line = m_line;
        const std::string_view text = rest.substr(0, size);
        const bool opened = find_block(text, 0) == 0;
        // Where damage reaches to the buffer's end, an opening line may stand
        // across it.
        if (kind != Stretch::Block && size == rest.size() && !m_at_end)
            size -= std::min<std::size_t>(size - 1, 64);
        m_line += static_cast<std::size_t>(
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size), '\n'));
        m_used += size;
        if (kind == Stretch::Blank)
            continue;
        const bool same_damage = !opened && m_in_damage;
        m_in_damage = kind == Stretch::Damaged;
        if (same_damage)
            continue;
        *entry = {};
        entry->number = ++m_number;
        entry->line = line;
        if (kind == Stretch::Block)
            judge(text, entry);
        else
            entry->fault = {line, opened ? "the block is cut short" : "no part of a record"};
        return true;
    }
    return false;
}

} // namespace hostsim
