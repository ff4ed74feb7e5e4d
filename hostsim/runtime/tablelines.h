// SPDX-License-Identifier: GPL-3.0-or-later
//
// The words of the table files' lines that do not name a field of the record.
#ifndef HOSTSIM_RUNTIME_TABLELINES_H
#define HOSTSIM_RUNTIME_TABLELINES_H

#include <string>
#include <string_view>

namespace hostsim
{

constexpr std::string_view OPENING_MARK = "VORNAX-TABLE ";
constexpr const char *VERSION = "1";
constexpr const char *CLOSING_MARK = "END crc32 ";
constexpr const char *WHO_NAME = "who";
constexpr const char *WHEN_NAME = "when";
constexpr const char *PROGRAM_NAME = "program";
constexpr const char *SAVE_TYPE_NAME = "save_type";
constexpr const char *POLY_NAME = "poly";
constexpr const char *POINT_STATE_NAME = "point_state";
constexpr const char *BYTES_NAME = "bytes";

// The closing line of a block, without its line feed.
std::string closing_line(std::string_view above);

} // namespace hostsim

#endif
