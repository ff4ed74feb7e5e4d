// SPDX-License-Identifier: GPL-3.0-or-later
//
// The units catalogue: what a cell publishes and the runtime converts by.
//
// As a text it has one unit a line, its columns apart by blanks:
//
//   keyword code dimension expression
//
// keyword: at most 15 bytes, no two alike without case. code: up to 99 is a
// temperature, 100 to 199 a pressure, 700 to 799 a time, any other from 200 on
// something else. dimension: a word; units convert into each other when they
// have the same one. expression: the rest of the line, in the notation of
// UDUNITS-2. Lines that are blank or begin with # say nothing.
#ifndef HOSTSIM_RUNTIME_UNITCATALOGUE_H
#define HOSTSIM_RUNTIME_UNITCATALOGUE_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/memories.h"

namespace hostsim
{

struct CatalogueUnit {
    std::string keyword;
    std::int32_t code;
    std::string dimension;
    std::string expression;
};
using UnitCatalogue = std::vector<CatalogueUnit>;

// The units of a catalogue text in their order, UNIT_RECORDS of them at most.
// A line that is no entry is left out; each adds "line N: what is wrong" to
// faults, when that is given.
UnitCatalogue parse_unit_catalogue(const std::string &text, std::vector<std::string> *faults);

// Reads a catalogue file whole; false, and errno, when it cannot be read.
bool read_unit_catalogue_text(const char *path, std::string *text);

// The catalogue that serves where a cell has none of its own.
const char *default_unit_catalogue_text();

// Fills records[UNIT_RECORDS] from the catalogue, in its order; what is left
// over is blank.
void fill_unit_records(const UnitCatalogue &catalogue, UNIT_RECORD *records);

// Publishes the units memory, and the text behind it, by which every task of
// the cell then converts. False, and errno, when that fails.
bool publish_unit_catalogue(const std::string &text);

void withdraw_unit_catalogue();

// The text that the running cell published, otherwise the default.
std::string published_unit_catalogue_text();

// Keywords compare without case, in ASCII whatever the locale.
bool same_keyword(const std::string &a, const std::string &b);

} // namespace hostsim

#endif
