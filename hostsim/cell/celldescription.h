// SPDX-License-Identifier: GPL-3.0-or-later
//
// The description of a cell: what it is called, its variables, its channels,
// their transducers, and the table files that they start with. The text form
// stands in hostsim/cells/README.md.
#ifndef HOSTSIM_CELL_CELLDESCRIPTION_H
#define HOSTSIM_CELL_CELLDESCRIPTION_H

#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/memories.h"
#include "host/tablerecord.h"
#include "hostsim/cell/transducer.h"

namespace cell
{

constexpr int MAX_CHANNELS = 32767;

struct VariableDescription {
    std::string name;
    double value;
    std::string units;
};

struct ChannelDescription {
    std::string label;
    std::string units;
    std::uint16_t active = 1;
    std::string table_name;
    std::int32_t sample_rate = 100;
    double filter_coefficient = 0.0;
    bool has_transducer = false;
    TransducerSpec transducer;
    double applied = 0.0;
    bool has_applied = false;
    Condition condition = Condition::Good;
    std::shared_ptr<TABLE_RECORD> table;   // the .tbl to be made; null: none
    std::shared_ptr<TABLE_RECORD> archive; // the .save's first record; null: none
};

struct CellDescription {
    std::string cell_name = "Training Cell";
    std::string host_name = "training";
    std::string catalogue; // path of a unit catalogue; empty: the built-in one
    std::int32_t join_answer = 0;
    unsigned seed = 1;
    int channel_count = 0;
    std::vector<VariableDescription> variables;
    std::map<int, ChannelDescription> channels;
};

// Reads a description. False, and a line "NAME:LINE: what is wrong" for each
// fault, when it cannot be used.
bool parse_description(std::istream &text, const std::string &name, CellDescription *description,
                       std::vector<std::string> *errors);

// The same from a file.
bool load_description(const std::string &path, CellDescription *description,
                      std::vector<std::string> *errors);

} // namespace cell

#endif
