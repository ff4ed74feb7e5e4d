// SPDX-License-Identifier: GPL-3.0-or-later
//
// The part of a description that says what a table file is to hold.
#ifndef HOSTSIM_CELL_RECORDDESCRIPTION_H
#define HOSTSIM_CELL_RECORDDESCRIPTION_H

#include <memory>
#include <string>
#include <vector>

#include "hostsim/cell/celldescription.h"

namespace cell
{

// Whether the word is a keyword of a table's record.
bool is_record_keyword(const std::string &keyword);

// Begins the channel's record ("record TYPE") or its archive's ("archive
// TYPE"), which takes the sensor's data over from the record before it.
bool begin_record(const std::vector<std::string> &words, ChannelDescription *channel,
                  std::string *error);

// Adds one line to the record begun last.
bool add_to_record(const std::vector<std::string> &words, const ChannelDescription &channel,
                   TABLE_RECORD *record, std::string *error);

// Fills what follows from the rest: name, units, smallest and largest y.
void finish_record(const ChannelDescription &channel, TABLE_RECORD *record);

} // namespace cell

#endif
