// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one text form of table, archive and history files. A record is a block:
//
//     VORNAX-TABLE 1
//     who "J. Doe"                         who verified, when, with what program,
//     when 2026-03-01T09:30:00Z            and in an archive the step it was
//     program "1.0.0"                      saved for
//     save_type 7 (Table Updated by adjustment)
//     table_type 0 (INTERP)                the known fields by name
//     ...
//     poly 0 num_points 2                  each range that is not all zero
//     poly 0 point 0 0 0                   point number, mV, engineering units
//     poly 0 point 1 10.5 100
//     point_state 2 2                      up to the last that is not zero
//     bytes 9472 00ff                      offset and bytes that no field names
//     END crc32 1a2b3c4d                   zlib's, over all that is above
//
// Blocks stand one behind the other in any number. All 21,992 bytes of a record
// read back as they were. Everything here works on memory alone.
#ifndef HOSTSIM_RUNTIME_TABLEFILE_H
#define HOSTSIM_RUNTIME_TABLEFILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/tablerecord.h"
#include "hostsim/runtime/tablefields.h"

namespace hostsim
{

// No block is longer; the longest that a record can give is about half of it.
constexpr std::size_t MAX_BLOCK = 128 * 1024;

constexpr int NO_SAVE_TYPE = -1;

// What a block says about itself, for the audit; no part of the record.
struct BlockInfo {
    std::string who;
    std::string when; // as time_text gives it
    std::string program;
    int save_type = NO_SAVE_TYPE; // archive blocks only
};

struct BlockFault {
    std::size_t line = 0; // the block's first line is 1
    std::string what;
};

// "As-Found" for 3 and so on; "unknown" for others.
const char *save_type_name(int save_type);
// "INTERP" for 0 and so on; "unknown" for others.
const char *table_type_name(int table_type);

// An integer field's value with, in parentheses, what it means.
std::string integer_text(const TABLE_RECORD &record, const Field &field);

std::string write_block(const TABLE_RECORD &record, const BlockInfo &info);

// Whether the text is one whole block: its opening line, its closing line and
// the check sum. On false the fault tells why.
bool check_block(std::string_view text, BlockFault *fault);

// Reads one whole block. On false the record is zeroed and the fault tells why.
// Which values the record holds is not judged here.
bool parse_block(std::string_view text, TABLE_RECORD *record, BlockInfo *info, BlockFault *fault);

// The step that a block was saved for, from its first lines alone;
// NO_SAVE_TYPE when it does not say.
int header_save_type(std::string_view text);

// Number of the first line of the block that begins with that; 1 if none does.
std::size_t line_of(std::string_view text, std::string_view beginning);

// Where the next opening line begins, from a position on; npos when there is
// none. It may stand behind other text in its line: a file that was cut short
// has had a whole block put behind it.
std::size_t find_block(std::string_view data, std::size_t from);

enum class Stretch { Blank, Block, Damaged };

// What the data, which is not empty, begins with, and how many bytes of it.
// A Block has an opening and a closing line and is not checked further.
Stretch first_stretch(std::string_view data, std::size_t *size);

} // namespace hostsim

#endif
