// SPDX-License-Identifier: GPL-3.0-or-later
//
// Finding the table in force in an archive.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <mutex>
#include <set>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "host/operations.h"
#include "hostsim/runtime/archivesearch.h"
#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/tablefields.h"
#include "hostsim/runtime/tablefile.h"
#include "hostsim/runtime/tablelog.h"

namespace hostsim
{

namespace
{

constexpr const char *SOURCE = "tablearchive.cpp";
constexpr int32_t NEWEST_IN_FORCE = 1;
constexpr std::size_t MAX_REMEMBERED = 10000;

// The records of As-Found, After-Service and Verification are evidence, not
// tables.
bool puts_in_force(int save_type)
{
    return save_type == 0 || save_type == SAVE_ADJUSTED || save_type == SAVE_REUSED ||
           save_type == SAVE_NEW_CORRELATION;
}

// Damage already logged, so that an archive read at every binding does not
// fill the log. What is remembered is the place and the bytes there: a file
// system may hand a freed inode number out again at once.
bool first_report(const std::string &place)
{
    static std::mutex mutex;
    static std::set<std::string> reported;
    const std::lock_guard<std::mutex> lock(mutex);
    if (reported.size() >= MAX_REMEMBERED)
        reported.clear();
    return reported.insert(place).second;
}

std::size_t digest(std::string_view bytes)
{
    return std::hash<std::string_view>{}(bytes);
}

// Device, inode and, where the file system knows it, time of birth.
std::string file_identity(int fd)
{
    struct statx status = {};
    if (statx(fd, "", AT_EMPTY_PATH, STATX_INO | STATX_BTIME, &status) != 0)
        return {};
    const struct statx_timestamp &born = status.stx_btime;
    return std::to_string(status.stx_dev_major) + "." + std::to_string(status.stx_dev_minor) + ":" +
           std::to_string(status.stx_ino) + ":" + std::to_string(born.tv_sec) + "." +
           std::to_string(born.tv_nsec);
}

class ArchiveReader
{
public:
    ArchiveReader(const char *path, int fd) : m_path(path), m_fd(fd) {}

    // True when the region's block is the table in force.
    bool take(const Region &region, TABLE_RECORD *record);

private:
    bool take_block(std::uint64_t offset, std::string_view text, TABLE_RECORD *record);
    void report(std::uint64_t offset, std::string_view damaged, std::size_t line,
                const std::string &what) const;
    std::size_t lines_before(std::uint64_t offset) const;

    const char *m_path;
    int m_fd;
    // Behind the region that comes next: whether there is damage, and its digest.
    bool m_damage_follows = false;
    std::size_t m_following = 0;
};

std::size_t ArchiveReader::lines_before(std::uint64_t offset) const
{
    constexpr std::uint64_t piece = 64 * 1024;
    std::size_t lines = 0;
    std::string data;
    for (std::uint64_t at = 0; at < offset; at += piece) {
        const std::uint64_t size = std::min(piece, offset - at);
        if (!read_at(m_fd, at, static_cast<std::size_t>(size), &data) || data.empty())
            break;
        lines += static_cast<std::size_t>(std::count(data.begin(), data.end(), '\n'));
    }
    return lines;
}

void ArchiveReader::report(std::uint64_t offset, std::string_view damaged, std::size_t line,
                           const std::string &what) const
{
    const std::string damage = file_identity(m_fd) + ":" + std::to_string(offset) + ":" +
                               std::to_string(damaged.size()) + ":" +
                               std::to_string(digest(damaged) ^ m_following) + ":" + m_path;
    if (first_report(damage))
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::RecordDamaged),
                  "%s:%zu: damaged record passed over: %s", m_path, lines_before(offset) + line,
                  what.c_str());
}

bool ArchiveReader::take_block(std::uint64_t offset, std::string_view text, TABLE_RECORD *record)
{
    BlockFault fault;
    BlockInfo info;
    const int save_type = header_save_type(text);
    if (save_type != NO_SAVE_TYPE && !puts_in_force(save_type) && check_block(text, &fault))
        return false;
    if (!parse_block(text, record, &info, &fault)) {
        report(offset, text, fault.line, fault.what);
        return false;
    }
    const RecordFault record_wrong = record_fault(*record, true);
    if (!record_wrong.what.empty()) {
        report(offset, text, line_of(text, record_wrong.field), record_wrong.what);
        return false;
    }
    return puts_in_force(record->last_save_type);
}

bool ArchiveReader::take(const Region &region, TABLE_RECORD *record)
{
    std::size_t size = 0;
    const Stretch kind = region.opened ? first_stretch(region.text, &size) : Stretch::Blank;
    const std::size_t block = kind == Stretch::Block ? size : 0;
    if (kind == Stretch::Damaged) {
        report(region.offset, region.text, 1, "the block is cut short");
    } else {
        const std::string_view behind = region.text.substr(block);
        const bool damage = behind.find_first_not_of(" \t\r\n") != std::string_view::npos;
        if (region.continued) {
            m_damage_follows = m_damage_follows || damage;
            m_following = 31 * m_following + digest(behind);
            return false;
        }
        if (damage || m_damage_follows)
            report(region.offset + block, behind, 1, "no part of a record");
    }
    m_damage_follows = false;
    m_following = 0;
    return block > 0 && take_block(region.offset, region.text.substr(0, block), record);
}

} // namespace

} // namespace hostsim

int16_t read_archive_file_poly(int32_t selector, const char *path, TABLE_RECORD **records,
                               void ** /*aux*/)
{
    using namespace hostsim;
    static TABLE_RECORD delivered;
    if (path == nullptr || records == nullptr || selector != NEWEST_IN_FORCE) {
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::SelectorRefused),
                  "%s: selector %d is not known", path == nullptr ? "" : path, selector);
        return 0;
    }
    const Descriptor file = open_regular(path, O_RDONLY);
    if (!file.valid()) {
        if (errno != ENOENT)
            log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TableUnreadable),
                      "%s: cannot be read: %s", path, error_text().c_str());
        return 0;
    }
    // Not while a record is being added. A lock that is never given back must
    // not keep a channel from being read.
    if (!lock_within(file.get(), LOCK_SH))
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::ArchiveLocked),
                  "%s: read without a lock: %s", path, lock_fault("archive").c_str());
    ArchiveReader reader(path, file.get());
    ArchiveSearch search(
        file.get(), static_cast<std::uint64_t>(std::max<std::int64_t>(file_size(file.get()), 0)));
    Region region;
    while (search.previous(&region)) {
        if (reader.take(region, &delivered)) {
            records[0] = &delivered;
            return 1;
        }
    }
    if (search.failed())
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TableUnreadable),
                  "%s: cannot be read: %s", path, error_text().c_str());
    return 0;
}
