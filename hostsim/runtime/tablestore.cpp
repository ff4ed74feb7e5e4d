// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading and writing table files, and adding to archives. What was recorded
// before a write is whole whatever happens during it.
#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/exports.h"
#include "host/operations.h"
#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/tablefields.h"
#include "hostsim/runtime/tablefile.h"
#include "hostsim/runtime/tablelog.h"
#include "hostsim/runtime/tabletext.h"

namespace hostsim
{

namespace
{

constexpr const char *SOURCE = "tablestore.cpp";
constexpr int32_t FAILURE = 65535;

void report(const std::string &path, std::size_t line, const std::string &what)
{
    log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TableUnreadable), "%s:%zu: %s",
              path.c_str(), line, what.c_str());
}

bool unwritten(const std::string &path, const std::string &why)
{
    log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TableUnwritten), "%s: %s", path.c_str(),
              why.c_str());
    return false;
}

// False, with an entry in the log that ends with the system's reason.
bool failed(const std::string &path, const char *what)
{
    return unwritten(path, std::string(what) + ": " + error_text());
}

// The one block of a table file, or what is wrong.
BlockFault parse_table(std::string_view data, TABLE_RECORD *table)
{
    std::size_t size = 0;
    if (data.empty())
        return {1, "the file is empty"};
    if (first_stretch(data, &size) != Stretch::Block)
        return {1, find_block(data, 0) == 0 ? "the block is cut short" : "not a table file"};
    BlockFault fault;
    BlockInfo info;
    const std::string_view block = data.substr(0, size);
    if (!parse_block(block, table, &info, &fault))
        return fault;
    if (data.find_first_not_of(" \t\r\n", size) != std::string_view::npos)
        return {line_of(block, "END") + 1, "more than one record"};
    const RecordFault wrong = record_fault(*table, false);
    if (!wrong.what.empty())
        return {line_of(block, wrong.field), wrong.what};
    return {};
}

std::string text_of(const char *text, std::size_t size)
{
    return std::string(text, strnlen(text, size));
}

// The block that is stored for a record: it must read back, so counts and texts
// that are out of their limits are brought within them, and the log tells.
std::string block_of(const char *path, TABLE_RECORD record, int save_type)
{
    const std::string changes = mend_record(&record);
    if (!changes.empty())
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::RecordMended),
                  "%s: stored within limits: %s", path, changes.c_str());
    BlockInfo info;
    info.who = text_of(record.verified_by, sizeof record.verified_by);
    info.when = time_text(time(nullptr));
    // A program that has no version does not define the name.
    const bool has_version = &VORNAX_VER != nullptr && VORNAX_VER != nullptr;
    info.program = has_version ? VORNAX_VER : "unknown";
    info.save_type = save_type;
    return write_block(record, info);
}

// ---- Archive ----------------------------------------------------------------

// Takes back what a failed write has left. Nothing was acknowledged, and what
// stood there before is as it was.
void take_back(const char *path, int fd, std::int64_t former_size)
{
    if (retry_interrupted([=] { return ftruncate(fd, former_size); }) != 0)
        failed(path, "the remains of a failed write stay");
    else
        sync_file(fd);
}

bool append(const char *path, int fd, const std::string &block)
{
    const std::int64_t former_size = file_size(fd);
    std::string last;
    if (former_size < 0 ||
        (former_size > 0 && !read_at(fd, static_cast<std::uint64_t>(former_size) - 1, 1, &last)))
        return failed(path, "the archive cannot be read");
    // A tail that an earlier crash has cut short stays apart from the record.
    const std::string text = last.empty() || last == "\n" ? block : "\n" + block;
    const ssize_t written = retry_interrupted([&] { return write(fd, text.data(), text.size()); });
    if (written >= 0 && static_cast<std::size_t>(written) != text.size())
        errno = ENOSPC;
    const bool whole = written >= 0 && static_cast<std::size_t>(written) == text.size();
    if (!whole || !sync_file(fd)) {
        failed(path, "the record cannot be added");
        take_back(path, fd, former_size);
        return false;
    }
    // An empty file may be one whose name a crash has kept from the disc.
    if (former_size == 0 && !sync_folder(folder_of(path))) {
        failed(path, "the folder cannot be made safe");
        take_back(path, fd, former_size);
        return false;
    }
    return true;
}

bool add_record(const char *path, const std::string &block)
{
    const Descriptor file = open_regular(path, O_RDWR | O_APPEND | O_CREAT, 0666);
    if (!file.valid())
        return failed(path, "the archive cannot be opened");
    if (!lock_within(file.get(), LOCK_EX))
        return unwritten(path, "nothing added, " + lock_fault("archive"));
    return append(path, file.get(), block);
}

// ---- Table in force ---------------------------------------------------------

std::string with_extension(const std::string &path, const char *extension)
{
    const std::size_t dot = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    const bool has_one = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (has_one ? path.substr(0, dot) : path) + extension;
}

// Hidden, and without a table file's extension: no reader takes it for one. The
// same name each time, so that a crash leaves one behind at most.
std::string temporary_name(const std::string &path)
{
    const std::size_t name = path.rfind('/') + 1;
    return path.substr(0, name) + "." + path.substr(name) + ".tmp";
}

// The caller has just put the former table at the end of the history.
bool sync_history(const std::string &path)
{
    const std::string history = with_extension(path, ".old");
    const Descriptor file = open_regular(history.c_str(), O_RDONLY);
    if (!file.valid() && errno == ENOENT)
        return true;
    return file.valid() && sync_file(file.get());
}

bool write_temporary(const std::string &name, const std::string &path, const std::string &block)
{
    unlink(name.c_str());
    const Descriptor file =
        open_regular(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
    if (!file.valid())
        return false;
    struct stat former = {};
    if (stat(path.c_str(), &former) == 0 && S_ISREG(former.st_mode) &&
        retry_interrupted([&] { return fchmod(file.get(), former.st_mode & 07777); }) != 0)
        return false;
    return write_all(file.get(), block) && sync_file(file.get());
}

bool replace_table(const std::string &path, const std::string &block)
{
    const std::string folder = folder_of(path);
    const Descriptor lock = open_folder(folder);
    if (!lock.valid())
        return failed(path, "the folder cannot be opened");
    if (!lock_within(lock.get(), LOCK_EX) && errno == EWOULDBLOCK)
        return unwritten(path, "not written, " + lock_fault("folder"));
    // A history that was just made has its name on disc before the table goes.
    if (!sync_history(path) || !sync_file(lock.get()))
        return failed(path, "the former table cannot be made safe");
    const std::string temporary = temporary_name(path);
    if (!write_temporary(temporary, path, block) || rename(temporary.c_str(), path.c_str()) != 0) {
        failed(path, "the table cannot be written");
        unlink(temporary.c_str());
        return false;
    }
    return sync_file(lock.get()) || failed(path, "the folder cannot be made safe");
}

} // namespace

} // namespace hostsim

int32_t read_table(const char *path, TABLE_RECORD *table)
{
    using namespace hostsim;
    if (table == nullptr)
        return FAILURE;
    std::memset(table, 0, sizeof *table);
    if (path == nullptr)
        return FAILURE;
    const Descriptor file = open_regular(path, O_RDONLY);
    std::string data;
    if (!file.valid() || !read_at(file.get(), 0, MAX_BLOCK + 1, &data)) {
        report(path, 1, "cannot be read: " + error_text());
        return FAILURE;
    }
    const BlockFault fault = parse_table(data, table);
    if (fault.what.empty())
        return 0;
    std::memset(table, 0, sizeof *table);
    report(path, fault.line, fault.what);
    return FAILURE;
}

int32_t save_table_files_poly(const char *path, const TABLE_RECORD *table, int32_t save_type)
{
    using namespace hostsim;
    if (path == nullptr || table == nullptr)
        return -1;
    if (table->table_type != TABLE_INTERP && table->table_type != TABLE_POLY &&
        table->table_type != TABLE_POLY_RANGE) {
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TypeRefused),
                  "%s: nothing added, table_type is %d, which cannot be archived", path,
                  table->table_type);
        return -1;
    }
    TABLE_RECORD record = *table;
    record.last_save_type = static_cast<std::uint16_t>(save_type);
    return add_record(path, block_of(path, record, record.last_save_type)) ? 0 : -1;
}

int32_t create_table(const char *path, const TABLE_RECORD *table)
{
    using namespace hostsim;
    if (path == nullptr || table == nullptr)
        return -1;
    if (table->table_type != TABLE_INTERP && table->table_type != TABLE_POLY &&
        table->table_type != TABLE_SCALED && table->table_type != TABLE_POLY_RANGE) {
        log_error(SOURCE, __LINE__, 1, log_number(TableLogCode::TypeRefused),
                  "%s: not written, table_type is %d, which is not known", path, table->table_type);
        return -1;
    }
    return replace_table(path, block_of(path, *table, NO_SAVE_TYPE)) ? 0 : -1;
}
