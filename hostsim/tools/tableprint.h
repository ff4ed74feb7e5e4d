// SPDX-License-Identifier: GPL-3.0-or-later
//
// Records for the eye and for a spreadsheet.
#ifndef HOSTSIM_TOOLS_TABLEPRINT_H
#define HOSTSIM_TOOLS_TABLEPRINT_H

#include <string>

#include "hostsim/tools/blockreader.h"

namespace hostsim
{

// One line a record: number, step, when, who, type, points, description.
std::string list_heading();
std::string list_line(const BlockEntry &entry);

// The whole record, over many lines.
std::string show_text(const BlockEntry &entry);

// One line for each coefficient and each point in use; one line with neither
// for a record that has none.
std::string csv_heading();
std::string csv_lines(const BlockEntry &entry);

} // namespace hostsim

#endif
