// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's log.
#include "hostsim/runtime/log.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "host/operations.h"
#include "hostsim/runtime/escapes.h"
#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/utf8.h"

namespace hostsim
{
namespace
{

constexpr char CUT_MARK[] = "\\+";
constexpr std::size_t SOURCE_BYTES = 128;

// The caller may be about to look at errno.
class ErrnoKeeper
{
public:
    ErrnoKeeper() : m_errno(errno) {}
    ~ErrnoKeeper() { errno = m_errno; }
    ErrnoKeeper(const ErrnoKeeper &) = delete;
    ErrnoKeeper &operator=(const ErrnoKeeper &) = delete;

private:
    int m_errno;
};

// Controls; in a name, whose end a space is, the space too.
bool must_escape(char byte, bool space_too)
{
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x20 || value == 0x7F || byte == '\\' || (space_too && byte == ' ');
}

// Appends the text, escaped, as far as there is room, whole characters only;
// true when all of it found room. Bytes that are no UTF-8 stand as they are.
bool append_escaped(char *line, std::size_t *length, std::size_t room, std::string_view text,
                    bool space_too)
{
    while (!text.empty()) {
        const std::size_t bytes = std::max<std::size_t>(utf8_whole(text), 1);
        char escape[ESCAPE_BYTES];
        std::string_view form = text.substr(0, bytes);
        if (must_escape(text[0], space_too))
            form = {escape, escape_byte(text[0], escape)};
        if (*length + form.size() > room)
            return false;
        memcpy(line + *length, form.data(), form.size());
        *length += form.size();
        text.remove_prefix(bytes);
    }
    return true;
}

std::size_t time_text(char *out, std::size_t size)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    const std::size_t length = strftime(out, size, "%Y-%m-%dT%H:%M:%S", &utc);
    const int tail =
        snprintf(out + length, size - length, ".%03dZ", static_cast<int>(now.tv_nsec / 1000000));
    return length + static_cast<std::size_t>(tail);
}

// One write for an entry: entries of several processes never mix.
void write_entry(const char *entry, std::size_t size)
{
    const Descriptor file(retry_interrupted(
        [] { return open(LOG_FILE, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0664); }));
    const auto write_to = [=](int fd) {
        return retry_interrupted([=] { return write(fd, entry, size); });
    };
    if ((!file.valid() || write_to(file.get()) < 0) && write_to(STDERR_FILENO) < 0)
        return; // nowhere left to say it
}

std::size_t compose(char *entry, const char *source, int32_t line, int32_t severity, int32_t code,
                    const char *text, std::size_t text_size, bool whole)
{
    constexpr std::size_t room = LOG_ENTRY_BYTES - sizeof CUT_MARK;
    std::size_t length = time_text(entry, room);
    length +=
        static_cast<std::size_t>(snprintf(entry + length, room - length, " %d %d ",
                                          static_cast<int>(severity), static_cast<int>(code)));
    const char *slash = strrchr(source, '/');
    const char *base = slash != nullptr ? slash + 1 : source;
    append_escaped(entry, &length, length + SOURCE_BYTES, base, true);
    length += static_cast<std::size_t>(
        snprintf(entry + length, room - length, ":%d ", static_cast<int>(line)));
    if (!append_escaped(entry, &length, room, {text, text_size}, false) || !whole) {
        memcpy(entry + length, CUT_MARK, sizeof CUT_MARK - 1);
        length += sizeof CUT_MARK - 1;
    }
    entry[length++] = '\n';
    return length;
}

bool unescape(std::string_view text, std::string *plain, bool *cut)
{
    plain->clear();
    *cut = false;
    while (!text.empty()) {
        char byte = text[0];
        std::size_t taken = 1;
        if (text == CUT_MARK) {
            *cut = true;
            return true;
        }
        if (byte == '\\') {
            taken += unescape_byte(text.substr(1), &byte);
            if (taken == 1 || text[1] == '"') // a quote needs no escape here
                return false;
        }
        plain->push_back(byte);
        text.remove_prefix(taken);
    }
    return true;
}

} // namespace

bool parse_log_line(const std::string &line, LogEntry *entry)
{
    std::string rest = line;
    if (!rest.empty() && rest.back() == '\n')
        rest.pop_back();
    char time[32] = "";
    char place[4 * SOURCE_BYTES] = "";
    int severity = 0;
    int code = 0;
    int used = -1;
    if (sscanf(rest.c_str(), "%31[0-9TZ:.-] %d %d %511s%n", time, &severity, &code, place, &used) !=
            4 ||
        used < 0 || static_cast<std::size_t>(used) >= rest.size() ||
        rest[static_cast<std::size_t>(used)] != ' ')
        return false;
    const std::string where = place;
    const std::size_t colon = where.rfind(':');
    int source_line = 0;
    bool cut_place = false;
    if (colon == std::string::npos || sscanf(where.c_str() + colon, ":%d", &source_line) != 1 ||
        !unescape(where.substr(0, colon), &entry->source, &cut_place))
        return false;
    entry->time = time;
    entry->severity = severity;
    entry->code = code;
    entry->line = source_line;
    return unescape(rest.substr(static_cast<std::size_t>(used) + 1), &entry->text, &entry->cut);
}

} // namespace hostsim

extern "C" void log_error(const char *source, int32_t line, int32_t severity, int32_t code,
                          const char *format, ...)
{
    using namespace hostsim;
    const ErrnoKeeper keeper;
    char text[LOG_ENTRY_BYTES];
    const char *told = format != nullptr ? format : "";
    va_list arguments;
    va_start(arguments, format);
    const int wanted = vsnprintf(text, sizeof text, told, arguments);
    va_end(arguments);
    bool whole = true;
    std::size_t size = 0;
    if (wanted < 0) {
        // The arguments cannot be written; the format still tells what it was.
        size = strnlen(told, sizeof text - 1);
        memcpy(text, told, size);
        whole = told[size] == '\0';
    } else if (static_cast<std::size_t>(wanted) < sizeof text) {
        size = static_cast<std::size_t>(wanted);
    } else {
        size = sizeof text - 1;
        whole = false;
    }
    char entry[LOG_ENTRY_BYTES];
    const std::size_t length =
        compose(entry, source != nullptr ? source : "", line, severity, code, text, size, whole);
    write_entry(entry, length);
}
