// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading of keyword text files.
#include <cstdio>
#include <cstring>
#include <sys/types.h>

#include "host/operations.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/utf8.h"

namespace hostsim
{
namespace
{

// The beginning of a line, and its length as it stands in the file without
// line feed and the carriage return before it. Zero bytes are bytes like others.
struct Line {
    char bytes[LINE_BUFFER];
    std::size_t length;
};

// False at the end of the file.
bool read_line(FILE *file, Line *line)
{
    std::size_t length = 0;
    int last = EOF;
    int byte = EOF;
    flockfile(file);
    while ((byte = getc_unlocked(file)) != EOF && byte != '\n') {
        if (length < sizeof line->bytes)
            line->bytes[length] = static_cast<char>(byte);
        ++length;
        last = byte;
    }
    funlockfile(file);
    if (byte == EOF && length == 0)
        return false;
    if (byte == '\n' && last == '\r')
        --length;
    line->length = length;
    return true;
}

bool is_line(const Line &line, const char *text)
{
    const std::size_t length = strlen(text);
    return line.length == length && length <= sizeof line.bytes &&
           memcmp(line.bytes, text, length) == 0;
}

void deliver(const Line &line, char *buffer)
{
    const bool cut = line.length >= LINE_BUFFER;
    const std::size_t kept = cut ? utf8_cut(line.bytes, LINE_BUFFER - 1) : line.length;
    memcpy(buffer, line.bytes, kept);
    buffer[kept] = '\0';
    if (cut)
        log_error(__FILE__, __LINE__, 1, log_number(LogCode::LineCut),
                  "line of %zu bytes cut to %zu: <%.40s>", line.length, kept, buffer);
}

// Leaves the file behind the first line that is the keyword and begins before
// the position end (-1: anywhere).
bool find_line(FILE *file, const char *keyword, off_t end)
{
    Line line;
    while (end < 0 || ftello(file) < end) {
        if (!read_line(file, &line))
            return false;
        if (is_line(line, keyword))
            return true;
    }
    return false;
}

} // namespace
} // namespace hostsim

extern "C" {

int32_t get_1st_line(FILE *file, char *line, const char *keyword)
{
    using namespace hostsim;
    if (file == nullptr || line == nullptr || keyword == nullptr)
        return KEYWORD_NOT_FOUND;
    const off_t start = ftello(file);
    bool found = find_line(file, keyword, -1);
    if (!found && start > 0 && fseeko(file, 0, SEEK_SET) == 0)
        found = find_line(file, keyword, start);
    if (!found) {
        if (start >= 0)
            fseeko(file, start, SEEK_SET);
        return KEYWORD_NOT_FOUND;
    }
    if (get_next_line(file, line) == 0)
        return 0;
    copyn(__FILE__, __LINE__, line, keyword, LINE_BUFFER);
    return LINE_END_OF_FILE;
}

int32_t get_next_line(FILE *file, char *line)
{
    using namespace hostsim;
    Line next;
    if (file == nullptr || line == nullptr || !read_line(file, &next))
        return LINE_END_OF_FILE;
    deliver(next, line);
    return 0;
}

} // extern "C"
