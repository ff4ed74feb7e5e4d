// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/celldescription.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>

#include "hostsim/cell/descriptionline.h"
#include "hostsim/cell/recorddescription.h"

namespace cell
{

namespace
{

using Words = std::vector<std::string>;

class Parser
{
public:
    Parser(CellDescription *description, std::string *error)
        : m_description(*description), m_error(*error)
    {
    }

    bool line(const Words &words);
    // What can only be checked and filled in when a channel is complete.
    bool end_channel();

private:
    using Handler = bool (Parser::*)(const Words &);
    struct Keyword {
        std::size_t least; // values
        std::size_t most;
        bool of_channel;
        Handler handler;
    };
    static const std::map<std::string, Keyword> &keywords();

    bool fail(const std::string &text)
    {
        m_error = text;
        return false;
    }
    bool number(const std::string &word, double *value)
    {
        return parse_number(word, value) || fail("not a number: " + word);
    }
    bool text(const std::string &word, std::size_t size, std::string *value)
    {
        *value = word;
        return word.size() < size ||
               fail("\"" + word + "\" is longer than " + std::to_string(size - 1) + " bytes");
    }
    bool whole(const std::string &word, long low, long high, long *value)
    {
        return parse_integer(word, low, high, value) ||
               fail("not a whole number from " + std::to_string(low) + " to " +
                    std::to_string(high) + ": " + word);
    }
    bool active_state(const std::string &word, std::uint16_t *state);

    bool on_cell(const Words &w) { return text(w[1], 64, &m_description.cell_name); }
    bool on_host(const Words &w) { return text(w[1], 64, &m_description.host_name); }
    bool on_catalogue(const Words &w) { return text(w[1], 4096, &m_description.catalogue); }
    bool on_join(const Words &w);
    bool on_seed(const Words &w);
    bool on_channels(const Words &w);
    bool on_variable(const Words &w);
    bool on_fill(const Words &w);
    bool on_channel(const Words &w);

    bool on_label(const Words &w) { return text(w[1], 96, &m_channel->label); }
    bool on_units(const Words &w) { return text(w[1], 16, &m_channel->units); }
    bool on_table(const Words &w) { return text(w[1], 80, &m_channel->table_name); }
    bool on_active(const Words &w) { return active_state(w[1], &m_channel->active); }
    bool on_sample_rate(const Words &w);
    bool on_filter(const Words &w) { return number(w[1], &m_channel->filter_coefficient); }
    bool on_input(const Words &w);
    bool on_response(const Words &w);
    bool on_response_points(const Words &w);
    bool on_offset(const Words &w) { return number(w[1], &transducer().offset_mv); }
    bool on_gain(const Words &w) { return number(w[1], &transducer().gain); }
    bool on_drift(const Words &w) { return number(w[1], &transducer().drift_mv_per_hour); }
    bool on_lag(const Words &w) { return not_negative(w[1], &transducer().lag_seconds); }
    bool on_noise(const Words &w) { return not_negative(w[1], &transducer().noise_mv); }
    bool on_saturate(const Words &w);
    bool on_applied(const Words &w);
    bool on_condition(const Words &w);
    bool on_record(const Words &w);

    TransducerSpec &transducer() { return m_channel->transducer; }
    bool not_negative(const std::string &word, double *value)
    {
        return number(word, value) && (*value >= 0.0 || fail("below 0: " + word));
    }

    CellDescription &m_description;
    std::string &m_error;
    ChannelDescription *m_channel = nullptr;
    TABLE_RECORD *m_record = nullptr;
};

const std::map<std::string, Parser::Keyword> &Parser::keywords()
{
    static const std::map<std::string, Keyword> table = {
        {"cell", {1, 1, false, &Parser::on_cell}},
        {"host", {1, 1, false, &Parser::on_host}},
        {"catalogue", {1, 1, false, &Parser::on_catalogue}},
        {"join", {1, 1, false, &Parser::on_join}},
        {"seed", {1, 1, false, &Parser::on_seed}},
        {"channels", {1, 1, false, &Parser::on_channels}},
        {"variable", {3, 3, false, &Parser::on_variable}},
        {"fill", {4, 4, false, &Parser::on_fill}},
        {"channel", {1, 1, false, &Parser::on_channel}},
        {"label", {1, 1, true, &Parser::on_label}},
        {"units", {1, 1, true, &Parser::on_units}},
        {"table", {1, 1, true, &Parser::on_table}},
        {"active", {1, 1, true, &Parser::on_active}},
        {"sample_rate", {1, 1, true, &Parser::on_sample_rate}},
        {"filter", {1, 1, true, &Parser::on_filter}},
        {"input", {3, 3, true, &Parser::on_input}},
        {"response", {2, 1000, true, &Parser::on_response}},
        {"offset", {1, 1, true, &Parser::on_offset}},
        {"gain", {1, 1, true, &Parser::on_gain}},
        {"drift", {1, 1, true, &Parser::on_drift}},
        {"lag", {1, 1, true, &Parser::on_lag}},
        {"noise", {1, 1, true, &Parser::on_noise}},
        {"saturate", {2, 2, true, &Parser::on_saturate}},
        {"applied", {1, 1, true, &Parser::on_applied}},
        {"condition", {1, 1, true, &Parser::on_condition}},
        {"record", {1, 1, true, &Parser::on_record}},
        {"archive", {1, 1, true, &Parser::on_record}},
    };
    return table;
}

bool Parser::line(const Words &words)
{
    if (is_record_keyword(words[0])) {
        if (m_record == nullptr)
            return fail(words[0] + " belongs behind record or archive");
        return add_to_record(words, *m_channel, m_record, &m_error);
    }
    const auto found = keywords().find(words[0]);
    if (found == keywords().end())
        return fail("unknown keyword: " + words[0]);
    const Keyword &keyword = found->second;
    if (words.size() - 1 < keyword.least || words.size() - 1 > keyword.most)
        return fail(words[0] + " has " + std::to_string(words.size() - 1) + " values");
    if (keyword.of_channel && m_channel == nullptr)
        return fail(words[0] + " belongs behind a channel");
    return (this->*keyword.handler)(words);
}

bool Parser::active_state(const std::string &word, std::uint16_t *state)
{
    long value = 0;
    if (word == "active")
        value = 1;
    else if (word != "inactive" && !whole(word, 0, 65535, &value))
        return false;
    *state = static_cast<std::uint16_t>(value);
    return true;
}

bool Parser::on_join(const Words &w)
{
    long answer = 0;
    if (!whole(w[1], -32768, 65535, &answer))
        return false;
    m_description.join_answer = static_cast<std::int32_t>(answer);
    return true;
}

bool Parser::on_seed(const Words &w)
{
    long seed = 0;
    if (!whole(w[1], 0, 1000000000, &seed))
        return false;
    m_description.seed = static_cast<unsigned>(seed);
    return true;
}

bool Parser::on_channels(const Words &w)
{
    long count = 0;
    if (!whole(w[1], 0, MAX_CHANNELS, &count))
        return false;
    m_description.channel_count = static_cast<int>(count);
    return true;
}

bool Parser::on_variable(const Words &w)
{
    VariableDescription variable;
    if (!text(w[1], 80, &variable.name) || !number(w[2], &variable.value) ||
        !text(w[3], 16, &variable.units))
        return false;
    m_description.variables.push_back(variable);
    return true;
}

// "fill FIRST LAST STATE LABEL": many channels alike; %d in the label stands
// for the number.
bool Parser::on_fill(const Words &w)
{
    long first = 0;
    long last = 0;
    std::uint16_t state = 0;
    if (!whole(w[1], 0, MAX_CHANNELS - 1, &first) || !whole(w[2], first, MAX_CHANNELS - 1, &last) ||
        !active_state(w[3], &state))
        return false;
    const std::size_t place = w[4].find("%d");
    for (long n = first; n <= last; ++n) {
        ChannelDescription channel;
        channel.active = state;
        std::string label = w[4];
        if (place != std::string::npos)
            label.replace(place, 2, std::to_string(n));
        if (!text(label, 96, &channel.label))
            return false;
        if (!m_description.channels.emplace(static_cast<int>(n), channel).second)
            return fail("channel " + std::to_string(n) + " is described twice");
    }
    return true;
}

bool Parser::on_channel(const Words &w)
{
    long n = 0;
    if (!whole(w[1], 0, MAX_CHANNELS - 1, &n))
        return false;
    const auto made = m_description.channels.emplace(static_cast<int>(n), ChannelDescription());
    if (!made.second)
        return fail("channel " + w[1] + " is described twice");
    m_channel = &made.first->second;
    m_record = nullptr;
    return true;
}

bool Parser::on_sample_rate(const Words &w)
{
    long rate = 0;
    if (!whole(w[1], 0, 1000000, &rate))
        return false;
    m_channel->sample_rate = static_cast<std::int32_t>(rate);
    return true;
}

bool Parser::on_input(const Words &w)
{
    TransducerSpec &spec = transducer();
    if (!text(w[1], 16, &spec.units) || !number(w[2], &spec.from) || !number(w[3], &spec.to))
        return false;
    m_channel->has_transducer = true;
    return spec.from < spec.to || fail("the input's limits are not in ascending order");
}

// "response linear MV_PER_UNIT [MV]", "response poly C0 C1 ..." or
// "response points VALUE:MV ..."; a second line of points goes on with them.
bool Parser::on_response(const Words &w)
{
    Response &response = transducer().response;
    if (w[1] == "points")
        return on_response_points(w);
    if (response.kind != Response::Kind::None)
        return fail("a second response for one channel");
    std::vector<double> values;
    for (std::size_t i = 2; i < w.size(); ++i) {
        double value = 0.0;
        if (!number(w[i], &value))
            return false;
        values.push_back(value);
    }
    if (w[1] == "linear" && (values.size() == 1 || values.size() == 2)) {
        response.kind = Response::Kind::Linear;
        response.coefficients = {values.size() == 2 ? values[1] : 0.0, values[0]};
        return true;
    }
    if (w[1] == "poly" && !values.empty()) {
        response.kind = Response::Kind::Polynomial;
        response.coefficients = values;
        return true;
    }
    return fail("not a response: linear, poly or points, and numbers");
}

bool Parser::on_response_points(const Words &w)
{
    Response &response = transducer().response;
    if (response.kind != Response::Kind::None && response.kind != Response::Kind::Points)
        return fail("a second response for one channel");
    response.kind = Response::Kind::Points;
    for (std::size_t i = 2; i < w.size(); ++i) {
        const std::size_t colon = w[i].find(':');
        double value = 0.0;
        double mv = 0.0;
        if (colon == std::string::npos || !parse_number(w[i].substr(0, colon), &value) ||
            !parse_number(w[i].substr(colon + 1), &mv))
            return fail("not a point (value:millivolts): " + w[i]);
        if (!response.units.empty() && !(value > response.units.back()))
            return fail("the points of a response must ascend: " + w[i]);
        response.units.push_back(value);
        response.mv.push_back(mv);
    }
    return true;
}

bool Parser::on_saturate(const Words &w)
{
    TransducerSpec &spec = transducer();
    return number(w[1], &spec.low_mv) && number(w[2], &spec.high_mv) &&
           (spec.low_mv < spec.high_mv || fail("the limits are not in ascending order"));
}

bool Parser::on_applied(const Words &w)
{
    m_channel->has_applied = true;
    return number(w[1], &m_channel->applied);
}

bool Parser::on_condition(const Words &w)
{
    return condition_from_name(w[1], &m_channel->condition) ||
           fail("not a condition of a sensor: " + w[1]);
}

bool Parser::on_record(const Words &w)
{
    m_record = nullptr;
    if (!begin_record(w, m_channel, &m_error))
        return false;
    m_record = (w[0] == "archive" ? m_channel->archive : m_channel->table).get();
    return true;
}

bool Parser::end_channel()
{
    if (m_channel == nullptr)
        return true;
    ChannelDescription &channel = *m_channel;
    m_channel = nullptr;
    m_record = nullptr;
    if (channel.has_transducer && channel.transducer.response.kind == Response::Kind::None)
        return fail("the channel above has an input and no response");
    if (!channel.has_transducer && channel.transducer.response.kind != Response::Kind::None)
        return fail("the channel above has a response and no input");
    if (!channel.has_applied)
        channel.applied = channel.transducer.from;
    if (channel.table && channel.table_name.empty())
        return fail("the channel above has a record and no table");
    if (channel.table_name.find('/') != std::string::npos && channel.table)
        return fail("the channel above has a record and a table in a folder of its own");
    if (channel.table)
        finish_record(channel, channel.table.get());
    if (channel.archive)
        finish_record(channel, channel.archive.get());
    return true;
}

} // namespace

bool parse_description(std::istream &text, const std::string &name, CellDescription *description,
                       std::vector<std::string> *errors)
{
    std::string error;
    Parser parser(description, &error);
    int number = 0;
    const auto report = [&] {
        errors->push_back(name + ":" + std::to_string(number) + ": " + error);
    };
    std::string line;
    std::vector<std::string> words;
    while (std::getline(text, line)) {
        ++number;
        if (!split_line(line, &words, &error)) {
            report();
            continue;
        }
        if (words.empty())
            continue;
        if (words[0] == "channel" && !parser.end_channel())
            report();
        if (!parser.line(words))
            report();
    }
    if (!parser.end_channel())
        report();
    const int last = description->channels.empty() ? -1 : description->channels.rbegin()->first;
    if (description->channel_count == 0)
        description->channel_count = last + 1;
    if (description->channel_count <= last) {
        error = "channel " + std::to_string(last) + " is beyond the number of channels";
        report();
    }
    return errors->empty();
}

bool load_description(const std::string &path, CellDescription *description,
                      std::vector<std::string> *errors)
{
    std::ifstream file(path);
    if (!file) {
        errors->push_back(path + ": " + std::strerror(errno));
        return false;
    }
    return parse_description(file, path, description, errors);
}

} // namespace cell
