// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where a UTF-8 text may be cut.
#ifndef HOSTSIM_RUNTIME_UTF8_H
#define HOSTSIM_RUNTIME_UTF8_H

#include <cstddef>

namespace hostsim
{

inline bool utf8_continuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Bytes of the character that begins with this byte; 1 for a byte that begins
// none.
inline std::size_t utf8_length(char byte)
{
    const auto lead = static_cast<unsigned char>(byte);
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

// Number of bytes, at most limit, that can be kept of a longer text without
// keeping half a character. text[limit] is read. Bytes that are not UTF-8 are
// characters of their own.
inline std::size_t utf8_cut(const char *text, std::size_t limit)
{
    if (!utf8_continuation(text[limit]))
        return limit;
    for (std::size_t back = 1; back <= 3 && back <= limit; ++back) {
        const char byte = text[limit - back];
        if (!utf8_continuation(byte))
            return utf8_length(byte) > back ? limit - back : limit;
    }
    return limit;
}

} // namespace hostsim

#endif
