// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's log.
#include "hostsim/runtime/log.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "host/operations.h"
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

// Writes the escaped form of one byte, at most 4 bytes, and returns its length.
std::size_t escape(char byte, bool space_too, char *out)
{
    const auto value = static_cast<unsigned char>(byte);
    const char *shorts = "\\\\\nn\rr\tt";
    for (const char *pair = shorts; *pair != '\0'; pair += 2) {
        if (byte == pair[0]) {
            out[0] = '\\';
            out[1] = pair[1];
            return 2;
        }
    }
    if (value >= 0x20 && value != 0x7F && !(space_too && byte == ' ')) {
        out[0] = byte;
        return 1;
    }
    constexpr char digits[] = "0123456789abcdef";
    out[0] = '\\';
    out[1] = 'x';
    out[2] = digits[value >> 4];
    out[3] = digits[value & 15];
    return 4;
}

// Appends the text, escaped, as far as there is room, whole characters only;
// true when all of it found room.
bool append_escaped(char *line, std::size_t *length, std::size_t room, const char *text,
                    std::size_t size, bool space_too)
{
    std::size_t at = 0;
    while (at < size) {
        std::size_t bytes = utf8_length(text[at]);
        for (std::size_t i = 1; i < bytes; ++i) {
            if (at + i >= size || !utf8_continuation(text[at + i]))
                bytes = 1;
        }
        char form[4];
        std::size_t form_bytes = bytes;
        if (bytes == 1)
            form_bytes = escape(text[at], space_too, form);
        else
            memcpy(form, text + at, bytes);
        if (*length + form_bytes > room)
            return false;
        memcpy(line + *length, form, form_bytes);
        *length += form_bytes;
        at += bytes;
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
    append_escaped(entry, &length, length + SOURCE_BYTES, base, strlen(base), true);
    length += static_cast<std::size_t>(
        snprintf(entry + length, room - length, ":%d ", static_cast<int>(line)));
    if (!append_escaped(entry, &length, room, text, text_size, false) || !whole) {
        memcpy(entry + length, CUT_MARK, sizeof CUT_MARK - 1);
        length += sizeof CUT_MARK - 1;
    }
    entry[length++] = '\n';
    return length;
}

bool unescape(const std::string &text, std::string *plain, bool *cut)
{
    plain->clear();
    *cut = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain->push_back(text[i]);
            continue;
        }
        const char kind = ++i < text.size() ? text[i] : '\0';
        unsigned value = 0;
        if (kind == '+' && i + 1 == text.size())
            *cut = true;
        else if (kind == '\\')
            plain->push_back('\\');
        else if (kind == 'n' || kind == 'r' || kind == 't')
            plain->push_back(kind == 'n' ? '\n' : kind == 'r' ? '\r' : '\t');
        else if (kind == 'x' && sscanf(text.substr(i + 1, 2).c_str(), "%2x", &value) == 1) {
            plain->push_back(static_cast<char>(value));
            i += 2;
        } else {
            return false;
        }
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
