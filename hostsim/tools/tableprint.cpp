// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/tools/tableprint.h"

#include <algorithm>
#include <cstring>

#include "hostsim/runtime/tablefields.h"
#include "hostsim/runtime/tabletext.h"

namespace hostsim
{

namespace
{

// Characters on the screen, as far as each takes one place.
std::size_t width_of(const std::string &text)
{
    std::size_t width = 0;
    for (const char c : text)
        width += (static_cast<unsigned char>(c) & 0xc0) != 0x80 ? 1 : 0;
    return width;
}

std::string padded(std::string text, std::size_t width)
{
    const std::size_t present = width_of(text);
    if (present < width)
        text.append(width - present, ' ');
    return text;
}

std::string right(const std::string &text, std::size_t width)
{
    const std::size_t present = width_of(text);
    return present < width ? std::string(width - present, ' ') + text : text;
}

// Without the quotes; nothing in it can act on a terminal.
std::string plain(const std::string &text)
{
    const std::string with_quotes = quoted(text);
    return with_quotes.substr(1, with_quotes.size() - 2);
}

template <std::size_t N> std::string text_of(const char (&text)[N])
{
    return std::string(text, strnlen(text, N));
}

std::string step_name(const BlockEntry &entry)
{
    const int type = entry.record.last_save_type;
    return type == 0 ? "-" : save_type_name(type);
}

const POLY_RANGE_RECORD &range_in_work(const TABLE_RECORD &record)
{
    return record.poly[record.table_type == TABLE_POLY_RANGE ? record.poly_range_index : 0];
}

std::string range_text(const POLY_RANGE_RECORD &range, int number)
{
    std::string out;
    const std::string name = "range " + std::to_string(number);
    if (range.num_coeffs > 0) {
        out += "\n" + name + ": coefficient, value\n";
        for (int i = 0; i < std::min<int>(range.num_coeffs, POLY_COEFFS); ++i)
            out += right(std::to_string(i), 6) + right(double_text(range.coeffs[i]), 26) + "\n";
    }
    if (range.num_points > 0) {
        out += "\n" + name + ": point, millivolts, value\n";
        for (int i = 0; i < range.num_points; ++i)
            out += right(std::to_string(i), 6) + right(double_text(range.x[i]), 26) +
                   right(double_text(range.y[i]), 26) + "\n";
    }
    return out;
}

std::string field_text(const TABLE_RECORD &record, const Field &field)
{
    const char *const bytes = reinterpret_cast<const char *>(&record) + field.offset;
    if (field.kind == FieldKind::Text)
        return plain(std::string(bytes, strnlen(bytes, field.size)));
    if (field.kind == FieldKind::Double) {
        double value = 0;
        std::memcpy(&value, bytes, sizeof value);
        return double_text(value);
    }
    return integer_text(record, field);
}

std::string csv_cell(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string out = "\"";
    for (const char c : text) {
        out += c;
        if (c == '"')
            out += c;
    }
    return out + "\"";
}

std::string csv_start(const BlockEntry &entry)
{
    const TABLE_RECORD &record = entry.record;
    std::string out = std::to_string(entry.number);
    for (const std::string &cell :
         {std::to_string(record.last_save_type), entry.info.when, entry.info.who,
          entry.info.program, text_of(record.table_name), text_of(record.description),
          std::string(table_type_name(record.table_type)), text_of(record.eng_units)})
        out += "," + csv_cell(cell);
    return out;
}

} // namespace

std::string list_heading()
{
    return right("#", 6) + "  " + padded("step", 27) + "  " + padded("when", 20) + "  " +
           padded("who", 20) + "  " + padded("type", 10) + "  " + right("points", 6) +
           "  description\n";
}

std::string list_line(const BlockEntry &entry)
{
    const std::string number = right(std::to_string(entry.number), 6) + "  ";
    if (!entry.fault.what.empty())
        return number + "damaged, line " + std::to_string(entry.fault.line) + ": " +
               entry.fault.what + "\n";
    const TABLE_RECORD &record = entry.record;
    return number + padded(step_name(entry), 27) + "  " + padded(plain(entry.info.when), 20) +
           "  " + padded(plain(entry.info.who), 20) + "  " +
           padded(table_type_name(record.table_type), 10) + "  " +
           right(std::to_string(range_in_work(record).num_points), 6) + "  " +
           plain(text_of(record.description)) + "\n";
}

std::string show_text(const BlockEntry &entry)
{
    constexpr std::size_t names = 20;
    std::string out = "record " + std::to_string(entry.number) + "\n";
    const auto line = [&out](const std::string &name, const std::string &value) {
        out += "  " + (value.empty() ? name : padded(name, names) + value) + "\n";
    };
    line("step", step_name(entry));
    line("when", plain(entry.info.when));
    line("who", plain(entry.info.who));
    line("program", plain(entry.info.program));
    out += "\n";
    for (const Field &field : TABLE_FIELDS)
        line(field.name, field_text(entry.record, field));
    for (int r = 0; r < POLY_RANGES; ++r)
        out += range_text(entry.record.poly[r], r);
    return out;
}

std::string csv_heading()
{
    return "record,save_type,when,who,program,table_name,description,table_type,eng_units,"
           "item,range,index,millivolts,value\n";
}

std::string csv_lines(const BlockEntry &entry)
{
    const std::string start = csv_start(entry);
    std::string out;
    for (int r = 0; r < POLY_RANGES; ++r) {
        const POLY_RANGE_RECORD &range = entry.record.poly[r];
        const std::string number = std::to_string(r);
        for (int i = 0; i < std::min<int>(range.num_coeffs, POLY_COEFFS); ++i)
            out += start + ",coefficient," + number + "," + std::to_string(i) + ",," +
                   double_text(range.coeffs[i]) + "\n";
        for (int i = 0; i < range.num_points; ++i)
            out += start + ",point," + number + "," + std::to_string(i) + "," +
                   double_text(range.x[i]) + "," + double_text(range.y[i]) + "\n";
    }
    return out.empty() ? start + ",,,,,\n" : out;
}

} // namespace hostsim
