// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/tabletext.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ctime>

#include "hostsim/runtime/escapes.h"
#include "hostsim/runtime/utf8.h"

namespace hostsim
{

namespace
{

constexpr std::string_view NAN_MARK = "nan:";

// Controls, surrogates, line separators, invisible and direction marks would
// hide in a terminal what the file says.
bool printable(std::uint32_t c)
{
    const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
    const bool mark = (c >= 0x200b && c <= 0x200f) || (c >= 0x2028 && c <= 0x202e) ||
                      (c >= 0x2060 && c <= 0x206f) || c == 0xfeff || c == 0xad;
    const bool none = (c >= 0xd800 && c <= 0xdfff) || (c & 0xfffe) == 0xfffe ||
                      (c >= 0xfdd0 && c <= 0xfdef) || c > 0x10ffff;
    return !control && !mark && !none;
}

} // namespace

std::string double_text(double value)
{
    if (std::isnan(value)) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        std::string out(NAN_MARK);
        for (int shift = 60; shift >= 0; shift -= 4)
            out += HEX_DIGITS[(bits >> shift) & 0xf];
        return out;
    }
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return std::string(text.data(), end);
}

bool parse_double(std::string_view text, double *value)
{
    if (text.substr(0, NAN_MARK.size()) == NAN_MARK) {
        const std::string_view digits = text.substr(NAN_MARK.size());
        std::uint64_t bits = 0;
        if (digits.size() != 16)
            return false;
        for (const char digit : digits) {
            if (hex_value(digit) < 0)
                return false;
            bits = (bits << 4) | static_cast<std::uint64_t>(hex_value(digit));
        }
        std::memcpy(value, &bits, sizeof bits);
        return std::isnan(*value);
    }
    if (text == "inf" || text == "-inf") {
        *value = text[0] == '-' ? -INFINITY : INFINITY;
        return true;
    }
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, *value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(*value);
}

bool parse_integer(std::string_view text, std::int64_t *value)
{
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, *value);
    return result.ec == std::errc() && result.ptr == end;
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    while (!text.empty()) {
        std::uint32_t character = 0;
        const std::size_t size = utf8_decode(text, &character);
        if (size == 0 || !printable(character) || text[0] == '"' || text[0] == '\\') {
            char escape[ESCAPE_BYTES];
            out.append(escape, escape_byte(text[0], escape));
            text.remove_prefix(1);
        } else {
            out += text.substr(0, size);
            text.remove_prefix(size);
        }
    }
    out += '"';
    return out;
}

bool unquote(std::string_view text, std::string *value)
{
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        return false;
    text = text.substr(1, text.size() - 2);
    value->clear();
    while (!text.empty()) {
        char c = text[0];
        text.remove_prefix(1);
        if (c == '"')
            return false;
        if (c == '\\') {
            const std::size_t taken = unescape_byte(text, &c);
            if (taken == 0)
                return false;
            text.remove_prefix(taken);
        }
        *value += c;
    }
    return true;
}

std::string hex_text(const unsigned char *bytes, std::size_t size)
{
    std::string out;
    out.reserve(2 * size);
    for (std::size_t i = 0; i < size; ++i) {
        out += HEX_DIGITS[bytes[i] >> 4];
        out += HEX_DIGITS[bytes[i] & 0xf];
    }
    return out;
}

bool parse_hex(std::string_view text, std::string *bytes)
{
    if (text.empty() || text.size() % 2 != 0)
        return false;
    bytes->clear();
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hex_value(text[i]);
        const int low = hex_value(text[i + 1]);
        if (high < 0 || low < 0)
            return false;
        *bytes += static_cast<char>(high * 16 + low);
    }
    return true;
}

std::string time_text(std::int64_t seconds_since_epoch)
{
    constexpr std::int64_t year_10000 = 253402300800;
    if (seconds_since_epoch < 0 || seconds_since_epoch >= year_10000)
        return {};
    const time_t seconds = seconds_since_epoch;
    struct tm utc = {};
    gmtime_r(&seconds, &utc);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
    return std::string(text.data(), size);
}

} // namespace hostsim
