// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/tablefields.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>

#include "hostsim/runtime/utf8.h"

namespace hostsim
{

namespace
{

template <typename T> T load(const TABLE_RECORD &record, std::size_t offset)
{
    T value;
    std::memcpy(&value, reinterpret_cast<const char *>(&record) + offset, sizeof value);
    return value;
}

template <typename T> bool store(TABLE_RECORD *record, std::size_t offset, std::int64_t value)
{
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max())
        return false;
    const T narrow = static_cast<T>(value);
    std::memcpy(reinterpret_cast<char *>(record) + offset, &narrow, sizeof narrow);
    return true;
}

std::string range_field(int range, const char *name)
{
    return "poly " + std::to_string(range) + " " + name;
}

std::string outside(const std::string &field, int value, int limit)
{
    return field + " is " + std::to_string(value) + ", outside 0 to " + std::to_string(limit);
}

bool known_type(std::uint16_t type, bool archived)
{
    return type == TABLE_INTERP || type == TABLE_POLY || type == TABLE_SCALED ||
           type == TABLE_POLY_RANGE || (archived && type == TABLE_TYPE_UNKNOWN);
}

void clamp_count(std::int16_t *count, int limit, const std::string &field, std::string *changes)
{
    const int kept = std::clamp<int>(*count, 0, limit);
    if (kept == *count)
        return;
    *changes += (changes->empty() ? "" : "; ") + outside(field, *count, limit);
    *count = static_cast<std::int16_t>(kept);
}

// Ends the text in the array's last byte or before the character that would
// be cut there.
void terminate(char *text, std::size_t size)
{
    const std::size_t end = utf8_cut(text, size - 1);
    std::memset(text + end, 0, size - end);
}

} // namespace

#define TABLE_FIELD(name, kind)                                                                    \
    {                                                                                              \
#name, FieldKind::kind, offsetof(TABLE_RECORD, name), sizeof(TABLE_RECORD::name)           \
    }

const Field TABLE_FIELDS[FIELD_COUNT] = {
    TABLE_FIELD(table_name, Text),
    TABLE_FIELD(description, Text),
    TABLE_FIELD(table_type, Uint16),
    TABLE_FIELD(poly_range_index, Int16),
    TABLE_FIELD(eng_units, Text),
    TABLE_FIELD(last_cal_time, Int64),
    TABLE_FIELD(last_save_type, Uint16),
    TABLE_FIELD(worst_status, Uint16),
    TABLE_FIELD(y_min, Double),
    TABLE_FIELD(y_max, Double),
    TABLE_FIELD(verified_by, Text),
    TABLE_FIELD(qie, Text),
    TABLE_FIELD(cal_comment, Text),
    TABLE_FIELD(sensor_model, Text),
    TABLE_FIELD(sensor_serial_no, Text),
    TABLE_FIELD(sensor_range_min, Double),
    TABLE_FIELD(sensor_range_max, Double),
    TABLE_FIELD(sensor_units, Text),
    TABLE_FIELD(mua_instance_name, Text),
    TABLE_FIELD(ooa_bias, Double),
    TABLE_FIELD(ooa_tol, Double),
    TABLE_FIELD(oot_bias, Double),
    TABLE_FIELD(oot_tol, Double),
    TABLE_FIELD(soot_bias, Double),
    TABLE_FIELD(soot_tol, Double),
};

#undef TABLE_FIELD

std::int64_t integer_field(const TABLE_RECORD &record, const Field &field)
{
    switch (field.kind) {
    case FieldKind::Int16:
        return load<std::int16_t>(record, field.offset);
    case FieldKind::Uint16:
        return load<std::uint16_t>(record, field.offset);
    case FieldKind::Int64:
        return load<std::int64_t>(record, field.offset);
    case FieldKind::Double:
    case FieldKind::Text:
        break;
    }
    return 0;
}

bool set_integer_field(TABLE_RECORD *record, const Field &field, std::int64_t value)
{
    switch (field.kind) {
    case FieldKind::Int16:
        return store<std::int16_t>(record, field.offset, value);
    case FieldKind::Uint16:
        return store<std::uint16_t>(record, field.offset, value);
    case FieldKind::Int64:
        return store<std::int64_t>(record, field.offset, value);
    case FieldKind::Double:
    case FieldKind::Text:
        break;
    }
    return false;
}

namespace
{

// A point table carries the number of its points here, which may be more than
// the coefficients that a range holds: its loader has always put it there.
int coeff_limit(const TABLE_RECORD &record, int r)
{
    const bool point_table =
        record.table_type == TABLE_INTERP || record.table_type == TABLE_TYPE_UNKNOWN;
    return point_table && r == 0 ? TABLE_POINTS : POLY_COEFFS;
}

} // namespace

RecordFault record_fault(const TABLE_RECORD &record, bool archived)
{
    for (int r = 0; r < POLY_RANGES; ++r) {
        const POLY_RANGE_RECORD &range = record.poly[r];
        if (range.num_coeffs < 0 || range.num_coeffs > coeff_limit(record, r)) {
            const std::string field = range_field(r, "num_coeffs");
            return {field, outside(field, range.num_coeffs, coeff_limit(record, r))};
        }
        if (range.num_points < 0 || range.num_points > TABLE_POINTS) {
            const std::string field = range_field(r, "num_points");
            return {field, outside(field, range.num_points, TABLE_POINTS)};
        }
    }
    if (record.poly_range_index < 0 || record.poly_range_index >= POLY_RANGES)
        return {"poly_range_index",
                outside("poly_range_index", record.poly_range_index, POLY_RANGES - 1)};
    if (!known_type(record.table_type, archived))
        return {"table_type",
                "table_type is " + std::to_string(record.table_type) + ", which is not known"};
    for (const Field &field : TABLE_FIELDS) {
        const char *const text = reinterpret_cast<const char *>(&record) + field.offset;
        if (field.kind == FieldKind::Text && std::memchr(text, 0, field.size) == nullptr)
            return {field.name, std::string(field.name) + " is not terminated"};
    }
    return {};
}

std::string mend_record(TABLE_RECORD *record)
{
    std::string changes;
    for (int r = 0; r < POLY_RANGES; ++r) {
        POLY_RANGE_RECORD &range = record->poly[r];
        clamp_count(&range.num_coeffs, coeff_limit(*record, r), range_field(r, "num_coeffs"),
                    &changes);
        clamp_count(&range.num_points, TABLE_POINTS, range_field(r, "num_points"), &changes);
    }
    clamp_count(&record->poly_range_index, POLY_RANGES - 1, "poly_range_index", &changes);
    for (const Field &field : TABLE_FIELDS) {
        char *const text = reinterpret_cast<char *>(record) + field.offset;
        if (field.kind != FieldKind::Text || std::memchr(text, 0, field.size) != nullptr)
            continue;
        terminate(text, field.size);
        changes += (changes.empty() ? "" : "; ") + std::string(field.name) + " is not terminated";
    }
    return changes;
}

} // namespace hostsim
