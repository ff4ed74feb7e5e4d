// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's small text services. All of them know ASCII letters and blanks
// only, whatever the process's locale.
#include <cstring>

#include "host/operations.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/utf8.h"

extern "C" {

void copyn(const char *source, int32_t line, char *destination, const char *text, size_t size)
{
    if (destination == nullptr || size == 0)
        return;
    if (text == nullptr)
        text = "";
    // text may be an array of just that size, without a terminator.
    const size_t length = strnlen(text, size);
    const bool overflow = length == size;
    const size_t kept = overflow ? hostsim::utf8_cut(text, size - 1) : length;
    memmove(destination, text, kept);
    destination[kept] = '\0';
    if (overflow)
        log_error(source, line, 1, hostsim::log_number(hostsim::LogCode::TextCut),
                  "text longer than %zu bytes cut to <%s>", size - 1, destination);
}

int32_t string_blank(const char *text)
{
    return text == nullptr || text[strspn(text, " \t\n\v\f\r")] == '\0' ? 1 : 0;
}

void _splitpath(const char *path, char *drive, char *directory, char *name, char *extension)
{
    const std::size_t length = path != nullptr ? strlen(path) : 0;
    std::size_t base = length;
    while (base > 0 && path[base - 1] != '/')
        --base;
    std::size_t dot = length;
    while (dot > base && path[dot - 1] != '.')
        --dot;
    // "." and ".." are names; otherwise the extension begins at the last dot.
    const bool dots_only =
        length - base <= 2 && strspn(path != nullptr ? path + base : "", ".") == length - base;
    const std::size_t name_end = dot > base && !dots_only ? dot - 1 : length;

    const auto put = [path](char *buffer, std::size_t from, std::size_t to) {
        if (buffer == nullptr)
            return;
        if (to > from)
            memcpy(buffer, path + from, to - from);
        buffer[to - from] = '\0';
    };
    put(drive, 0, 0);
    put(directory, 0, base);
    put(name, base, name_end);
    put(extension, name_end, length);
}

char *strupr(char *text)
{
    for (char *at = text; at != nullptr && *at != '\0'; ++at) {
        if (*at >= 'a' && *at <= 'z')
            *at = static_cast<char>(*at - 'a' + 'A');
    }
    return text;
}

} // extern "C"
