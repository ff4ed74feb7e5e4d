// SPDX-License-Identifier: GPL-3.0-or-later
//
// The named fields of the table record, in the order in which table files hold
// them, and what values a sound record may have.
#ifndef HOSTSIM_RUNTIME_TABLEFIELDS_H
#define HOSTSIM_RUNTIME_TABLEFIELDS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/tablerecord.h"

namespace hostsim
{

enum class FieldKind { Double, Int16, Uint16, Int64, Text };

struct Field {
    const char *name;
    FieldKind kind;
    std::size_t offset;
    std::size_t size; // bytes
};

constexpr std::size_t FIELD_COUNT = 25;
extern const Field TABLE_FIELDS[FIELD_COUNT];

// Value of an integer field.
std::int64_t integer_field(const TABLE_RECORD &record, const Field &field);
// False when the value does not fit the field.
bool set_integer_field(TABLE_RECORD *record, const Field &field, std::int64_t value);

struct RecordFault {
    std::string field; // as its line in a table file begins
    std::string what;  // empty: the record is sound
};

// Whether counts, range index, texts and type are within their limits. A record
// of an archive or history may be of unknown type.
RecordFault record_fault(const TABLE_RECORD &record, bool archived);

// Brings counts and range index within their limits and ends every text within
// its array, never inside a character, so that what is written reads back.
// Tells what was changed, empty when nothing was.
std::string mend_record(TABLE_RECORD *record);

} // namespace hostsim

#endif
