// SPDX-License-Identifier: GPL-3.0-or-later
//
// Texts for property tests, as bytes: std::string, since that is what a failure
// prints.
#ifndef SUPPORT_ANYTEXT_H
#define SUPPORT_ANYTEXT_H

#include <string>
#include <vector>

#include <rapidcheck.h>

// A line: UTF-8 of at most that many bytes, all of Unicode but line feed,
// carriage return and zero. May be empty.
rc::Gen<std::string> any_line(std::size_t max_bytes);

// The same of Latin-1's characters, still as UTF-8.
rc::Gen<std::string> any_latin1_line(std::size_t max_characters);

// A list of that many texts, both ends included.
rc::Gen<std::vector<std::string>> any_list(int from, int to, const rc::Gen<std::string> &text);

#endif
