// SPDX-License-Identifier: GPL-3.0-or-later
//
// Writing a block, and where blocks begin and end.
#include "hostsim/runtime/tablefile.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <zlib.h>

#include "hostsim/runtime/tablelines.h"
#include "hostsim/runtime/tabletext.h"

namespace hostsim
{

namespace
{

// Longest opening line: the mark, nine digits, the line feed.
constexpr std::size_t MAX_VERSION_DIGITS = 9;
constexpr std::size_t BYTES_PER_LINE = 32;

bool zero_bits(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits == 0;
}

bool blank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Writes lines and keeps account of what a reader will know from them.
class BlockWriter
{
public:
    explicit BlockWriter(const TABLE_RECORD &record)
        : m_record(reinterpret_cast<const unsigned char *>(&record)), m_known(sizeof record),
          m_named(sizeof record)
    {
        m_text.reserve(8 * 1024);
    }

    void line(const std::string &text) { (m_text += text) += '\n'; }
    // The bytes at the offset have a line of their own.
    void name(std::size_t offset, std::size_t size)
    {
        std::memcpy(&m_known[offset], m_record + offset, size);
        std::fill_n(&m_named[offset], size, static_cast<unsigned char>(1));
    }
    void remaining_bytes();
    std::string take() { return std::move(m_text); }

private:
    std::string m_text;
    const unsigned char *m_record;
    std::vector<unsigned char> m_known; // the record as the named lines give it
    std::vector<unsigned char> m_named; // 1: told by a named line
};

void BlockWriter::remaining_bytes()
{
    std::size_t at = 0;
    while (at < m_known.size()) {
        if (m_known[at] == m_record[at]) {
            ++at;
            continue;
        }
        const std::size_t row_end =
            std::min((at / BYTES_PER_LINE + 1) * BYTES_PER_LINE, m_known.size());
        std::size_t end = at;
        for (std::size_t i = at; i < row_end && m_named[i] == 0; ++i)
            end = m_known[i] == m_record[i] ? end : i + 1;
        line("bytes " + std::to_string(at) + " " + hex_text(m_record + at, end - at));
        at = end;
    }
}

void write_field(BlockWriter &out, const TABLE_RECORD &record, const Field &field)
{
    const char *const bytes = reinterpret_cast<const char *>(&record) + field.offset;
    const std::string name = std::string(field.name) + " ";
    if (field.kind == FieldKind::Text) {
        const std::size_t length = strnlen(bytes, field.size);
        out.line(name + quoted({bytes, length}));
        out.name(field.offset, length);
        return;
    }
    if (field.kind == FieldKind::Double) {
        double value = 0;
        std::memcpy(&value, bytes, sizeof value);
        out.line(name + double_text(value));
    } else {
        out.line(name + integer_text(record, field));
    }
    out.name(field.offset, field.size);
}

void write_coefficients(BlockWriter &out, const POLY_RANGE_RECORD &range, const std::string &name,
                        std::size_t base)
{
    int count = std::clamp<int>(range.num_coeffs, 0, POLY_COEFFS);
    for (int i = count; i < POLY_COEFFS; ++i)
        count = zero_bits(range.coeffs[i]) ? count : i + 1;
    if (count == 0)
        return;
    std::string line = name + "coeffs";
    for (int i = 0; i < count; ++i)
        line += " " + double_text(range.coeffs[i]);
    out.line(line);
    out.name(base + offsetof(POLY_RANGE_RECORD, coeffs),
             static_cast<std::size_t>(count) * sizeof(double));
}

void write_points(BlockWriter &out, const POLY_RANGE_RECORD &range, const std::string &name,
                  std::size_t base)
{
    int count = std::clamp<int>(range.num_points, 0, TABLE_POINTS);
    for (int i = count; i < TABLE_POINTS; ++i)
        count = zero_bits(range.x[i]) && zero_bits(range.y[i]) ? count : i + 1;
    for (int i = 0; i < count; ++i)
        out.line(name + "point " + std::to_string(i) + " " + double_text(range.x[i]) + " " +
                 double_text(range.y[i]));
    const std::size_t size = static_cast<std::size_t>(count) * sizeof(double);
    out.name(base + offsetof(POLY_RANGE_RECORD, x), size);
    out.name(base + offsetof(POLY_RANGE_RECORD, y), size);
}

void write_range(BlockWriter &out, const TABLE_RECORD &record, int r)
{
    const POLY_RANGE_RECORD &range = record.poly[r];
    const auto *const bytes = reinterpret_cast<const unsigned char *>(&range);
    if (std::all_of(bytes, bytes + sizeof range, [](unsigned char b) { return b == 0; }))
        return;
    const std::string name = "poly " + std::to_string(r) + " ";
    const std::size_t base = static_cast<std::size_t>(r) * sizeof range;
    out.line(name + "num_coeffs " + std::to_string(range.num_coeffs));
    out.name(base + offsetof(POLY_RANGE_RECORD, num_coeffs), sizeof range.num_coeffs);
    write_coefficients(out, range, name, base);
    out.line(name + "num_points " + std::to_string(range.num_points));
    out.name(base + offsetof(POLY_RANGE_RECORD, num_points), sizeof range.num_points);
    write_points(out, range, name, base);
}

void write_point_state(BlockWriter &out, const TABLE_RECORD &record)
{
    std::string line = POINT_STATE_NAME;
    std::size_t written = 0;
    for (std::size_t i = 0; i < TABLE_POINTS; ++i) {
        if (record.point_state[i] == 0)
            continue;
        for (; written <= i; ++written)
            line += " " + std::to_string(record.point_state[written]);
    }
    if (written == 0)
        return;
    out.line(line);
    out.name(offsetof(TABLE_RECORD, point_state), written * sizeof record.point_state[0]);
}

} // namespace

const char *save_type_name(int save_type)
{
    switch (save_type) {
    case SAVE_AS_FOUND:
        return "As-Found";
    case SAVE_AFTER_SERVICE:
        return "After-Service";
    case SAVE_VERIFICATION:
        return "Verification";
    case SAVE_ADJUSTED:
        return "Table Updated by adjustment";
    case SAVE_REUSED:
        return "Table Updated by re-use";
    case SAVE_NEW_CORRELATION:
        return "New Correlation";
    default:
        return "unknown";
    }
}

const char *table_type_name(int table_type)
{
    switch (table_type) {
    case TABLE_INTERP:
        return "INTERP";
    case TABLE_POLY:
        return "POLY";
    case TABLE_SCALED:
        return "SCALED";
    case TABLE_POLY_RANGE:
        return "POLY_RANGE";
    default:
        return "unknown";
    }
}

std::string integer_text(const TABLE_RECORD &record, const Field &field)
{
    const std::int64_t value = integer_field(record, field);
    std::string note;
    if (field.offset == offsetof(TABLE_RECORD, table_type))
        note = table_type_name(static_cast<int>(value));
    else if (field.offset == offsetof(TABLE_RECORD, last_save_type) && value != 0)
        note = save_type_name(static_cast<int>(value));
    else if (field.offset == offsetof(TABLE_RECORD, last_cal_time) && value != 0)
        note = time_text(value);
    return std::to_string(value) + (note.empty() ? "" : " (" + note + ")");
}

std::string write_block(const TABLE_RECORD &record, const BlockInfo &info)
{
    BlockWriter out(record);
    out.line(std::string(OPENING_MARK) + VERSION);
    out.line(std::string(WHO_NAME) + " " + quoted(info.who));
    out.line(std::string(WHEN_NAME) + " " + info.when);
    out.line(std::string(PROGRAM_NAME) + " " + quoted(info.program));
    if (info.save_type != NO_SAVE_TYPE)
        out.line(std::string(SAVE_TYPE_NAME) + " " + std::to_string(info.save_type) + " (" +
                 save_type_name(info.save_type) + ")");
    for (const Field &field : TABLE_FIELDS)
        write_field(out, record, field);
    for (int r = 0; r < POLY_RANGES; ++r)
        write_range(out, record, r);
    write_point_state(out, record);
    out.remaining_bytes();
    std::string text = out.take();
    text += closing_line(text);
    return text + "\n";
}

std::string closing_line(std::string_view above)
{
    const uLong sum = crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef *>(above.data()),
                            static_cast<uInt>(above.size()));
    std::string digits;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<unsigned char>(sum >> shift);
        digits += hex_text(&byte, 1);
    }
    return CLOSING_MARK + digits;
}

std::size_t find_block(std::string_view data, std::size_t from)
{
    for (;;) {
        const std::size_t at = data.find(OPENING_MARK, from);
        if (at == std::string_view::npos)
            return at;
        const std::size_t digits = at + OPENING_MARK.size();
        const std::size_t end = data.find_first_not_of("0123456789", digits);
        if (end != std::string_view::npos && data[end] == '\n' && end > digits &&
            end - digits <= MAX_VERSION_DIGITS)
            return at;
        from = digits;
    }
}

Stretch first_stretch(std::string_view data, std::size_t *size)
{
    const bool opened = find_block(data.substr(0, 64), 0) == 0;
    *size = std::min(find_block(data, opened ? 1 : 0), data.size());
    const std::string_view region = data.substr(0, *size);
    if (!opened)
        return blank(region) ? Stretch::Blank : Stretch::Damaged;
    const std::size_t closing = region.find("\nEND ");
    if (closing == std::string_view::npos)
        return Stretch::Damaged;
    *size = std::min(region.find('\n', closing + 1), region.size() - 1) + 1;
    return Stretch::Block;
}

} // namespace hostsim
