// SPDX-License-Identifier: GPL-3.0-or-later
//
// Single bytes behind a backslash, as the log and the table files have them: a
// letter for the common ones, \xHH for any. Which bytes are escaped is for each
// of the two to say. Nothing here allocates: the log is written in any state.
#ifndef HOSTSIM_RUNTIME_ESCAPES_H
#define HOSTSIM_RUNTIME_ESCAPES_H

#include <cstddef>
#include <string_view>

namespace hostsim
{

constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
constexpr std::string_view ESCAPE_LETTERS = "\"\\ntr";
constexpr std::string_view ESCAPED_BYTES = "\"\\\n\t\r";
constexpr std::size_t ESCAPE_BYTES = 4; // the longest escape

// The value of a digit as HEX_DIGITS has it; -1 for anything else.
inline int hex_value(char digit)
{
    const std::size_t value = HEX_DIGITS.find(digit);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

// Writes the escape of a byte, and returns its length.
inline std::size_t escape_byte(char byte, char *out)
{
    out[0] = '\\';
    const std::size_t letter = ESCAPED_BYTES.find(byte);
    if (letter != std::string_view::npos) {
        out[1] = ESCAPE_LETTERS[letter];
        return 2;
    }
    const auto value = static_cast<unsigned char>(byte);
    out[1] = 'x';
    out[2] = HEX_DIGITS[value >> 4];
    out[3] = HEX_DIGITS[value & 0xF];
    return ESCAPE_BYTES;
}

// The byte that stands behind a backslash at the front of a text; how many
// characters it took, 0 when that is no escape.
inline std::size_t unescape_byte(std::string_view text, char *byte)
{
    if (text.empty())
        return 0;
    const std::size_t letter = ESCAPE_LETTERS.find(text[0]);
    if (letter != std::string_view::npos) {
        *byte = ESCAPED_BYTES[letter];
        return 1;
    }
    if (text[0] != 'x' || text.size() < 3)
        return 0;
    const int high = hex_value(text[1]);
    const int low = hex_value(text[2]);
    if (high < 0 || low < 0)
        return 0;
    *byte = static_cast<char>(high * 16 + low);
    return 3;
}

} // namespace hostsim

#endif
