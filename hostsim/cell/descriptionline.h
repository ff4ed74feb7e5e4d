// SPDX-License-Identifier: GPL-3.0-or-later
//
// One line of a cell's description: words between blanks, texts with blanks in
// double quotes (\" and \\ inside them), a comment from # at a word's start.
#ifndef HOSTSIM_CELL_DESCRIPTIONLINE_H
#define HOSTSIM_CELL_DESCRIPTIONLINE_H

#include <string>
#include <vector>

namespace cell
{

// Splits the line; false, and what is wrong in *error, for an open quote or a
// quoted text that runs into the next word.
bool split_line(const std::string &line, std::vector<std::string> *words, std::string *error);

// The whole text as a number; "nan" and "inf" are numbers. With a decimal point
// whatever the program's locale is, here and in exact.
bool parse_number(const std::string &text, double *number);
bool parse_integer(const std::string &text, long low, long high, long *number);

// With as many digits as give the same number back.
std::string exact(double value);

} // namespace cell

#endif
