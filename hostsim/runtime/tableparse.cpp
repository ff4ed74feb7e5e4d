// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading a block. Nothing in a file is trusted: every number is checked against
// the array that it indexes.
#include <algorithm>
#include <array>
#include <cstring>

#include "hostsim/runtime/tablefields.h"
#include "hostsim/runtime/tablefile.h"
#include "hostsim/runtime/tablelines.h"
#include "hostsim/runtime/tabletext.h"

namespace hostsim
{

namespace
{

// Takes the next word, up to a blank, off the front of the line.
std::string_view take_word(std::string_view &line)
{
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

std::string_view take_line(std::string_view &text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

bool take_index(std::string_view &line, std::int64_t limit, std::size_t *index)
{
    std::int64_t value = 0;
    if (!parse_integer(take_word(line), &value) || value < 0 || value >= limit)
        return false;
    *index = static_cast<std::size_t>(value);
    return true;
}

// A number and, in parentheses behind it, what it means.
bool parse_noted_integer(std::string_view text, std::int64_t *value)
{
    const std::string_view number = take_word(text);
    const bool noted = text.size() >= 2 && text.front() == '(' && text.back() == ')';
    return (text.empty() || noted) && parse_integer(number, value);
}

class BlockParser
{
public:
    BlockParser(TABLE_RECORD *record, BlockInfo *info) : m_record(record), m_info(info) {}

    // Empty, or what is wrong with the line.
    std::string take(std::string_view line);
    std::string missing() const;

private:
    bool header(std::string_view name, std::string_view rest, std::string *wrong);
    bool field(const Field &field, std::string_view rest);
    bool poly(std::string_view rest);
    bool coefficients(POLY_RANGE_RECORD &range, std::string_view rest);
    bool point(POLY_RANGE_RECORD &range, std::string_view rest);
    bool point_state(std::string_view rest);
    bool bytes(std::string_view rest);

    TABLE_RECORD *m_record;
    BlockInfo *m_info;
    std::array<bool, FIELD_COUNT> m_seen{};
};

bool set_int16(std::string_view text, std::int16_t *target)
{
    std::int64_t value = 0;
    if (!parse_integer(text, &value) || value < INT16_MIN || value > INT16_MAX)
        return false;
    *target = static_cast<std::int16_t>(value);
    return true;
}

bool BlockParser::header(std::string_view name, std::string_view rest, std::string *wrong)
{
    bool sound = true;
    std::int64_t type = 0;
    if (name == WHO_NAME) {
        sound = unquote(rest, &m_info->who);
    } else if (name == PROGRAM_NAME) {
        sound = unquote(rest, &m_info->program);
    } else if (name == WHEN_NAME) {
        m_info->when = std::string(rest);
    } else if (name == SAVE_TYPE_NAME) {
        sound = parse_noted_integer(rest, &type) && type >= INT16_MIN && type <= UINT16_MAX;
        m_info->save_type = static_cast<int>(type);
    } else {
        return false;
    }
    if (!sound)
        *wrong = std::string(name) + " cannot be read";
    return true;
}

bool BlockParser::field(const Field &field, std::string_view rest)
{
    char *const target = reinterpret_cast<char *>(m_record) + field.offset;
    if (field.kind == FieldKind::Text) {
        std::string text;
        if (!unquote(rest, &text) || text.size() > field.size)
            return false;
        std::memcpy(target, text.data(), text.size());
        return true;
    }
    if (field.kind == FieldKind::Double) {
        double value = 0;
        if (!parse_double(rest, &value))
            return false;
        std::memcpy(target, &value, sizeof value);
        return true;
    }
    std::int64_t value = 0;
    return parse_noted_integer(rest, &value) && set_integer_field(m_record, field, value);
}

bool BlockParser::coefficients(POLY_RANGE_RECORD &range, std::string_view rest)
{
    for (double &coefficient : range.coeffs) {
        if (!parse_double(take_word(rest), &coefficient))
            return false;
        if (rest.empty())
            return true;
    }
    return false;
}

bool BlockParser::point(POLY_RANGE_RECORD &range, std::string_view rest)
{
    std::size_t index = 0;
    return take_index(rest, TABLE_POINTS, &index) &&
           parse_double(take_word(rest), &range.x[index]) && parse_double(rest, &range.y[index]);
}

bool BlockParser::poly(std::string_view rest)
{
    std::size_t index = 0;
    if (!take_index(rest, POLY_RANGES, &index))
        return false;
    POLY_RANGE_RECORD &range = m_record->poly[index];
    const std::string_view name = take_word(rest);
    if (name == "point")
        return point(range, rest);
    if (name == "coeffs")
        return coefficients(range, rest);
    if (name == "num_coeffs")
        return set_int16(rest, &range.num_coeffs);
    return name == "num_points" && set_int16(rest, &range.num_points);
}

bool BlockParser::point_state(std::string_view rest)
{
    for (std::int32_t &state : m_record->point_state) {
        std::int64_t value = 0;
        if (!parse_integer(take_word(rest), &value) || value < INT32_MIN || value > INT32_MAX)
            return false;
        state = static_cast<std::int32_t>(value);
        if (rest.empty())
            return true;
    }
    return false;
}

bool BlockParser::bytes(std::string_view rest)
{
    std::size_t offset = 0;
    std::string value;
    if (!take_index(rest, sizeof *m_record, &offset) || !parse_hex(rest, &value) ||
        value.size() > sizeof *m_record - offset)
        return false;
    std::memcpy(reinterpret_cast<char *>(m_record) + offset, value.data(), value.size());
    return true;
}

std::string BlockParser::take(std::string_view line)
{
    std::string_view rest = line;
    const std::string_view name = take_word(rest);
    std::string wrong;
    if (header(name, rest, &wrong))
        return wrong;
    const std::string unreadable = std::string(name) + " cannot be read";
    for (std::size_t i = 0; i < FIELD_COUNT; ++i) {
        if (name != TABLE_FIELDS[i].name)
            continue;
        if (m_seen[i])
            return std::string(name) + " stands twice";
        m_seen[i] = true;
        return field(TABLE_FIELDS[i], rest) ? std::string() : unreadable;
    }
    if (name == POLY_NAME)
        return poly(rest) ? std::string() : unreadable;
    if (name == POINT_STATE_NAME)
        return point_state(rest) ? std::string() : unreadable;
    if (name == BYTES_NAME)
        return bytes(rest) ? std::string() : unreadable;
    return "no field " + quoted(name.substr(0, 40)) + " is known";
}

std::string BlockParser::missing() const
{
    for (std::size_t i = 0; i < FIELD_COUNT; ++i) {
        if (!m_seen[i])
            return std::string(TABLE_FIELDS[i].name) + " is missing";
    }
    return {};
}

bool opening_is_sound(std::string_view line, std::string *what)
{
    if (line.substr(0, OPENING_MARK.size()) != OPENING_MARK) {
        *what = "not a table file";
        return false;
    }
    line.remove_prefix(OPENING_MARK.size());
    if (line != VERSION) {
        *what = "form " + quoted(line.substr(0, 20)) + " is not known";
        return false;
    }
    return true;
}

std::size_t line_count(std::string_view text)
{
    std::size_t count = text.empty() || text.back() == '\n' ? 0 : 1;
    for (const char c : text)
        count += c == '\n' ? 1 : 0;
    return count;
}

// Every line between the opening and the closing one.
bool parse_lines(std::string_view text, BlockParser &parser, BlockFault *fault)
{
    take_line(text);
    for (std::size_t number = 2; !text.empty(); ++number) {
        const std::string_view line = take_line(text);
        const bool closing = text.empty();
        const std::string wrong = closing ? parser.missing() : parser.take(line);
        if (!wrong.empty()) {
            *fault = {number, wrong};
            return false;
        }
    }
    return true;
}

// Whether only the lines between can be wrong.
bool has_both_ends(std::string_view text)
{
    std::string what;
    const std::size_t closing = text.rfind("\nEND ");
    return text.size() <= MAX_BLOCK && closing != std::string_view::npos &&
           opening_is_sound(take_line(text), &what);
}

} // namespace

bool check_block(std::string_view text, BlockFault *fault)
{
    std::string_view rest = text;
    std::string what;
    if (!opening_is_sound(take_line(rest), &what)) {
        *fault = {1, what};
        return false;
    }
    if (text.size() > MAX_BLOCK) {
        *fault = {1, "the block is too long"};
        return false;
    }
    const std::size_t lines = line_count(text);
    const std::size_t closing = text.rfind("\nEND ");
    if (closing == std::string_view::npos) {
        *fault = {lines, "the block is cut short"};
        return false;
    }
    std::string_view line = text.substr(closing + 1);
    if (line.back() == '\n')
        line.remove_suffix(1);
    if (line != closing_line(text.substr(0, closing + 1))) {
        *fault = {lines, "the check sum does not agree"};
        return false;
    }
    return true;
}

bool parse_block(std::string_view text, TABLE_RECORD *record, BlockInfo *info, BlockFault *fault)
{
    std::memset(record, 0, sizeof *record);
    *info = {};
    const bool whole = check_block(text, fault);
    if (!whole && !has_both_ends(text))
        return false;
    // Of a damaged block, the first line that makes no sense says more than the
    // check sum does.
    BlockParser parser(record, info);
    if (parse_lines(text, parser, fault) && whole)
        return true;
    std::memset(record, 0, sizeof *record);
    *info = {};
    return false;
}

std::size_t line_of(std::string_view text, std::string_view beginning)
{
    for (std::size_t number = 1; !text.empty(); ++number) {
        if (take_line(text).substr(0, beginning.size()) == beginning)
            return number;
    }
    return 1;
}

int header_save_type(std::string_view text)
{
    take_line(text);
    while (!text.empty()) {
        std::string_view line = take_line(text);
        const std::string_view name = take_word(line);
        std::int64_t value = 0;
        if (name == SAVE_TYPE_NAME)
            return parse_noted_integer(line, &value) && value >= 0 && value <= UINT16_MAX
                       ? static_cast<int>(value)
                       : NO_SAVE_TYPE;
        if (name != WHO_NAME && name != WHEN_NAME && name != PROGRAM_NAME)
            break;
    }
    return NO_SAVE_TYPE;
}

} // namespace hostsim
