// SPDX-License-Identifier: GPL-3.0-or-later
//
// Values of the table files as text, exactly: what is written reads back bit for
// bit, whatever locale the process runs in.
#ifndef HOSTSIM_RUNTIME_TABLETEXT_H
#define HOSTSIM_RUNTIME_TABLETEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hostsim
{

// The shortest decimal form that reads back as the same double; "inf", "-inf",
// and for what is not a number "nan:" with the sixteen hex digits of its bits.
std::string double_text(double value);

// The reverse; false when the text is anything else.
bool parse_double(std::string_view text, double *value);

// A whole decimal number; false when the text is anything else.
bool parse_integer(std::string_view text, std::int64_t *value);

// The text in double quotes on one line. Printable UTF-8 stands as it is;
// quotes, backslashes and every other byte are escaped.
std::string quoted(std::string_view text);

// The reverse; false when the text is not one whole quoted text.
bool unquote(std::string_view text, std::string *value);

std::string hex_text(const unsigned char *bytes, std::size_t size);

// Two hex digits a byte; false when the text is anything else or is empty.
bool parse_hex(std::string_view text, std::string *bytes);

// UTC in ISO 8601, "2026-03-01T09:30:00Z"; empty outside the years 1970 to 9999.
std::string time_text(std::int64_t seconds_since_epoch);

} // namespace hostsim

#endif
