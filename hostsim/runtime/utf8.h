// SPDX-License-Identifier: GPL-3.0-or-later
//
// UTF-8 byte by byte: what is a character, and where a text may be cut.
#ifndef HOSTSIM_RUNTIME_UTF8_H
#define HOSTSIM_RUNTIME_UTF8_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

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

// Bytes of the character at the front of a text; 0 when they are none, or not
// the whole of it. Forms longer than needed count as characters.
inline std::size_t utf8_whole(std::string_view text)
{
    const std::size_t size = utf8_length(text[0]);
    if (size == 1)
        return static_cast<unsigned char>(text[0]) < 0x80 ? 1 : 0;
    if (text.size() < size)
        return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if (!utf8_continuation(text[i]))
            return 0;
    }
    return size;
}

// The same, and the character; 0 for forms longer than needed as well.
inline std::size_t utf8_decode(std::string_view text, std::uint32_t *character)
{
    const std::size_t size = utf8_whole(text);
    if (size == 0)
        return 0;
    *character = static_cast<unsigned char>(text[0]);
    if (size == 1)
        return 1;
    *character &= 0x7FU >> size;
    for (std::size_t i = 1; i < size; ++i)
        *character = (*character << 6) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    constexpr std::array<std::uint32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    return *character < smallest[size] ? 0 : size;
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
