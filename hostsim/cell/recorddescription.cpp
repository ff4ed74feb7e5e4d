// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/recorddescription.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <functional>
#include <map>

#include "host/operations.h"
#include "hostsim/cell/descriptionline.h"

namespace cell
{

namespace
{

using Words = std::vector<std::string>;

struct Line {
    const Words &words;
    const ChannelDescription &channel;
    TABLE_RECORD *record;
    std::string *error;
    POLY_RANGE_RECORD &range() const { return record->poly[record->poly_range_index]; }
};

bool fail(std::string *error, const std::string &text)
{
    *error = text;
    return false;
}

template <std::size_t Size>
bool set_text(const Line &line, const std::string &text, char (&field)[Size])
{
    if (text.size() >= Size)
        return fail(line.error,
                    "\"" + text + "\" is longer than " + std::to_string(Size - 1) + " bytes");
    std::memset(field, 0, Size);
    std::memcpy(field, text.data(), text.size());
    return true;
}

bool add_point(const Line &line, double x, double y)
{
    POLY_RANGE_RECORD &range = line.range();
    if (range.num_points >= TABLE_POINTS)
        return fail(line.error, "more than 64 points");
    const auto i = static_cast<std::size_t>(range.num_points);
    range.x[i] = x;
    range.y[i] = y;
    line.record->point_state[i] = 2;
    ++range.num_points;
    return true;
}

bool on_points(const Line &line)
{
    for (std::size_t i = 1; i < line.words.size(); ++i) {
        const std::string &word = line.words[i];
        const std::size_t colon = word.find(':');
        double x = 0.0;
        double y = 0.0;
        if (colon == std::string::npos || !parse_number(word.substr(0, colon), &x) ||
            !parse_number(word.substr(colon + 1), &y))
            return fail(line.error, "not a point (millivolts:value): " + word);
        if (!add_point(line, x, y))
            return false;
    }
    return true;
}

// "sample N [FROM TO]": points of the faultless sensor in equal steps.
bool on_sample(const Line &line)
{
    long count = 0;
    double from = line.channel.transducer.from;
    double to = line.channel.transducer.to;
    if (line.channel.transducer.response.kind == Response::Kind::None)
        return fail(line.error, "sample needs a response before it");
    if (!parse_integer(line.words[1], 2, TABLE_POINTS, &count))
        return fail(line.error, "not a number of points from 2 to 64: " + line.words[1]);
    if (line.words.size() == 3 || (line.words.size() == 4 && (!parse_number(line.words[2], &from) ||
                                                              !parse_number(line.words[3], &to))))
        return fail(line.error, "sample takes a number and, perhaps, two limits");
    for (long i = 0; i < count; ++i) {
        const double part = static_cast<double>(i) / static_cast<double>(count - 1);
        const double y = i == count - 1 ? to : from + part * (to - from);
        if (!add_point(line, response_mv(line.channel.transducer.response, y), y))
            return false;
    }
    return true;
}

bool on_coeffs(const Line &line)
{
    POLY_RANGE_RECORD &range = line.range();
    if (line.words.size() - 1 > POLY_COEFFS)
        return fail(line.error, "more than 18 coefficients");
    for (std::size_t i = 1; i < line.words.size(); ++i)
        if (!parse_number(line.words[i], &range.coeffs[i - 1]))
            return fail(line.error, "not a number: " + line.words[i]);
    range.num_coeffs = static_cast<std::int16_t>(line.words.size() - 1);
    return true;
}

bool on_fit(const Line &line)
{
    long degree = 0;
    POLY_RANGE_RECORD &range = line.range();
    if (!parse_integer(line.words[1], 1, 7, &degree))
        return fail(line.error, "not a degree from 1 to 7: " + line.words[1]);
    if (range.num_points <= degree)
        return fail(line.error, "a fit of that degree needs more points before it");
    range.num_coeffs = static_cast<std::int16_t>(degree + 1);
    polynomialfit(range.num_points, range.num_coeffs, range.x, range.y, range.coeffs);
    return true;
}

bool on_range(const Line &line)
{
    long index = 0;
    if (line.record->table_type != TABLE_POLY_RANGE)
        return fail(line.error, "range belongs to a POLY_RANGE record");
    if (!parse_integer(line.words[1], 0, POLY_RANGES - 1, &index))
        return fail(line.error, "not a range from 0 to 7: " + line.words[1]);
    line.record->poly_range_index = static_cast<std::int16_t>(index);
    return true;
}

bool on_factor(const Line &line)
{
    if (line.record->table_type != TABLE_SCALED)
        return fail(line.error, "factor belongs to a SCALED record");
    if (!parse_number(line.words[1], &line.record->poly[0].x[0]))
        return fail(line.error, "not a number: " + line.words[1]);
    return true;
}

bool on_sensor(const Line &line)
{
    TABLE_RECORD &record = *line.record;
    if (!parse_number(line.words[2], &record.sensor_range_min) ||
        !parse_number(line.words[3], &record.sensor_range_max))
        return fail(line.error, "sensor takes units, two limits, model and serial number");
    const auto word = [&line](std::size_t i) {
        return i < line.words.size() ? line.words[i] : std::string();
    };
    return set_text(line, word(1), record.sensor_units) &&
           set_text(line, word(4), record.sensor_model) &&
           set_text(line, word(5), record.sensor_serial_no);
}

// "calibrated 2024-03-05": noon of that day, UTC.
bool on_calibrated(const Line &line)
{
    std::tm day = {};
    const char *end = strptime(line.words[1].c_str(), "%Y-%m-%d", &day);
    if (end == nullptr || *end != '\0')
        return fail(line.error, "not a day as 2024-03-05: " + line.words[1]);
    day.tm_hour = 12;
    line.record->last_cal_time = timegm(&day);
    return true;
}

struct Keyword {
    std::size_t least; // arguments
    std::size_t most;
    std::function<bool(const Line &)> add;
};

const std::map<std::string, Keyword> &keywords()
{
    constexpr std::size_t ANY = 1000;
    static const std::map<std::string, Keyword> table = {
        {"points", {1, ANY, on_points}},
        {"sample", {1, 3, on_sample}},
        {"coeffs", {1, ANY, on_coeffs}},
        {"fit", {1, 1, on_fit}},
        {"range", {1, 1, on_range}},
        {"factor", {1, 1, on_factor}},
        {"sensor", {3, 5, on_sensor}},
        {"calibrated", {1, 1, on_calibrated}},
        {"description",
         {1, 1, [](const Line &l) { return set_text(l, l.words[1], l.record->description); }}},
        {"mua",
         {1, 1,
          [](const Line &l) { return set_text(l, l.words[1], l.record->mua_instance_name); }}},
        {"verified_by",
         {1, 1, [](const Line &l) { return set_text(l, l.words[1], l.record->verified_by); }}},
        {"standard", {1, 1, [](const Line &l) { return set_text(l, l.words[1], l.record->qie); }}},
        {"comment",
         {1, 1, [](const Line &l) { return set_text(l, l.words[1], l.record->cal_comment); }}},
    };
    return table;
}

bool table_type(const std::string &name, std::uint16_t *type)
{
    static const std::map<std::string, int> types = {{"INTERP", TABLE_INTERP},
                                                     {"POLY", TABLE_POLY},
                                                     {"SCALED", TABLE_SCALED},
                                                     {"POLY_RANGE", TABLE_POLY_RANGE}};
    const auto found = types.find(name);
    if (found == types.end())
        return false;
    *type = static_cast<std::uint16_t>(found->second);
    return true;
}

} // namespace

bool is_record_keyword(const std::string &keyword)
{
    return keywords().count(keyword) != 0;
}

bool begin_record(const std::vector<std::string> &words, ChannelDescription *channel,
                  std::string *error)
{
    const bool archive = words[0] == "archive";
    std::shared_ptr<TABLE_RECORD> &place = archive ? channel->archive : channel->table;
    if (place)
        return fail(error, "a second " + words[0] + " for one channel");
    if (archive && !channel->table)
        return fail(error, "archive needs a record before it");
    auto record = std::make_shared<TABLE_RECORD>();
    if (archive) {
        *record = *channel->table;
        std::fill(std::begin(record->poly), std::end(record->poly), POLY_RANGE_RECORD{});
        std::fill(std::begin(record->point_state), std::end(record->point_state), 0);
        record->poly_range_index = 0;
    }
    if (!table_type(words[1], &record->table_type))
        return fail(error, "not a type of table: " + words[1]);
    if (archive && record->table_type == TABLE_SCALED)
        return fail(error, "an archive holds no SCALED record");
    record->last_save_type = SAVE_ADJUSTED;
    place = std::move(record);
    return true;
}

bool add_to_record(const std::vector<std::string> &words, const ChannelDescription &channel,
                   TABLE_RECORD *record, std::string *error)
{
    const Keyword &keyword = keywords().at(words[0]);
    if (words.size() - 1 < keyword.least || words.size() - 1 > keyword.most)
        return fail(error, words[0] + " has " + std::to_string(words.size() - 1) + " values");
    return keyword.add(Line{words, channel, record, error});
}

void finish_record(const ChannelDescription &channel, TABLE_RECORD *record)
{
    const auto put = [](const std::string &text, char *field, std::size_t size) {
        copyn(__FILE__, __LINE__, field, text.c_str(), size);
    };
    put(channel.table_name, record->table_name, sizeof record->table_name);
    put(channel.units, record->eng_units, sizeof record->eng_units);
    record->poly_range_index = 0;
    bool first = true;
    for (int r = POLY_RANGES; r-- > 0;) {
        const POLY_RANGE_RECORD &range = record->poly[r];
        if (record->table_type == TABLE_POLY_RANGE && range.num_coeffs > 0)
            record->poly_range_index = static_cast<std::int16_t>(r);
        for (int i = 0; i < range.num_points; ++i) {
            record->y_min = first ? range.y[i] : std::min(record->y_min, range.y[i]);
            record->y_max = first ? range.y[i] : std::max(record->y_max, range.y[i]);
            first = false;
        }
    }
}

} // namespace cell
