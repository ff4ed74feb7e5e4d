// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/livecell.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/operations.h"
#include "hostsim/cell/descriptionline.h"

namespace cell
{

namespace
{

constexpr double SECONDS_PER_HOUR = 3600.0;

bool fail(std::string *error, const std::string &text)
{
    *error = text;
    return false;
}

// The text of a record's field on one line, whatever bytes it holds.
template <std::size_t Size> std::string field_text(const char (&field)[Size])
{
    std::string text(field, strnlen(field, Size));
    for (char &c : text)
        if (static_cast<unsigned char>(c) < ' ')
            c = '?';
    return text;
}

template <std::size_t Size>
bool set_field(const std::string &text, char (&field)[Size], std::string *error)
{
    if (text.size() >= Size)
        return fail(error, "longer than " + std::to_string(Size - 1) + " bytes");
    char whole[Size] = {};
    std::memcpy(whole, text.data(), text.size());
    std::memcpy(field, whole, Size);
    return true;
}

} // namespace

LiveCell::LiveCell(const CellDescription &description, CellMemories *memories)
    : m_memories(*memories), m_channels(static_cast<std::size_t>(description.channel_count))
{
    for (const auto &[n, described] : description.channels) {
        if (!described.has_transducer)
            continue;
        Channel &channel = m_channels[static_cast<std::size_t>(n)];
        channel.has_transducer = true;
        channel.transducer =
            Transducer(described.transducer, description.seed + static_cast<unsigned>(n));
        channel.transducer.apply(described.applied);
        channel.transducer.set_condition(described.condition);
        m_moving.push_back(n);
    }
    tick(0.0);
}

void LiveCell::tick(double seconds)
{
    m_hours += seconds / SECONDS_PER_HOUR;
    for (const int n : m_moving)
        step(n, seconds);
}

void LiveCell::step(int n, double seconds)
{
    Channel &channel = m_channels[static_cast<std::size_t>(n)];
    const double mv = channel.transducer.step(seconds, m_hours);
    if (!channel.held)
        m_memories.set_millivolts(n, mv);
}

std::vector<std::string> LiveCell::command(const std::string &line)
{
    Words answer;
    Words words;
    std::string error;
    if (split_line(line, &words, &error) && obey(words, &answer, &error))
        answer.emplace_back("ok");
    else
        answer.push_back("error " + error);
    return answer;
}

bool LiveCell::obey(const Words &words, Words *answer, std::string *error)
{
    if (words.empty())
        return fail(error, "no command");
    if (words[0] == "quit" && words.size() == 1) {
        m_quit = true;
        return true;
    }
    if (words[0] == "list" && words.size() == 1) {
        for (int n = 0; n < m_memories.channel_count(); ++n)
            answer->push_back(channel_line(n));
        return true;
    }
    long channel = 0;
    if (words.size() < 2)
        return fail(error, "not a command: " + words[0]);
    if (!parse_integer(words[1], 0, m_memories.channel_count() - 1, &channel))
        return fail(error, "no such channel: " + words[1]);
    const int n = static_cast<int>(channel);
    if (words[0] == "show" && words.size() == 2) {
        answer->push_back(channel_line(n));
        return true;
    }
    if (words[0] == "apply" && (words.size() == 3 || words.size() == 4))
        return on_apply(words, n, error);
    if (words[0] == "mv" && words.size() == 3)
        return on_mv(words, n, error);
    if (words[0] == "condition" && words.size() == 3)
        return on_condition(words, n, error);
    if (words[0] == "set" && words.size() == 4)
        return on_set(words, n, error);
    return fail(error, "not a command: " + words[0] + " with " + std::to_string(words.size() - 1) +
                           " values");
}

// "apply CH VALUE [now]"; releases a reading that was held.
bool LiveCell::on_apply(const Words &words, int n, std::string *error)
{
    Channel &channel = m_channels[static_cast<std::size_t>(n)];
    double value = 0.0;
    if (!channel.has_transducer)
        return fail(error, "channel " + words[1] + " has no transducer");
    if (!parse_number(words[2], &value) || !std::isfinite(value))
        return fail(error, "not a number: " + words[2]);
    if (words.size() == 4 && words[3] != "now")
        return fail(error, "not a way to apply: " + words[3]);
    channel.held = false;
    channel.transducer.apply(value);
    if (words.size() == 4)
        channel.transducer.jump();
    step(n, 0.0);
    return true;
}

// "mv CH VALUE" holds the reading at exactly that; "mv CH auto" lets it go.
bool LiveCell::on_mv(const Words &words, int n, std::string *error)
{
    Channel &channel = m_channels[static_cast<std::size_t>(n)];
    double mv = 0.0;
    if (words[2] == "auto") {
        channel.held = false;
        if (channel.has_transducer)
            step(n, 0.0);
        return true;
    }
    if (!parse_number(words[2], &mv))
        return fail(error, "not a number: " + words[2]);
    channel.held = true;
    m_memories.set_millivolts(n, mv);
    return true;
}

bool LiveCell::on_condition(const Words &words, int n, std::string *error)
{
    Channel &channel = m_channels[static_cast<std::size_t>(n)];
    Condition condition = Condition::Good;
    if (!channel.has_transducer)
        return fail(error, "channel " + words[1] + " has no transducer");
    if (!condition_from_name(words[2], &condition))
        return fail(error, "not a condition of a sensor: " + words[2]);
    channel.held = false;
    channel.transducer.set_condition(condition);
    step(n, 0.0);
    return true;
}

// "set CH label|units|active|table TEXT"
bool LiveCell::on_set(const Words &words, int n, std::string *error)
{
    AI_REAL_RECORD &record = m_memories.channel(n);
    const std::string &text = words[3];
    if (words[2] == "label")
        return set_field(text, record.label, error);
    if (words[2] == "units")
        return set_field(text, record.units, error);
    if (words[2] == "table")
        return set_field(text, m_memories.transfer(n).table_name, error);
    if (words[2] != "active")
        return fail(error, "not a field of a channel: " + words[2]);
    long state = 0;
    if (!parse_integer(text, 0, 65535, &state))
        return fail(error, "not a number from 0 to 65535: " + text);
    record.active = static_cast<std::uint16_t>(state);
    return true;
}

// Fields with a tab between them, as cellclient.cpp takes them apart.
std::string LiveCell::channel_line(int n)
{
    const Channel &channel = m_channels[static_cast<std::size_t>(n)];
    const TransducerSpec &spec = channel.transducer.spec();
    const AI_REAL_RECORD &record = m_memories.channel(n);
    const bool settled = channel.held || !channel.has_transducer || channel.transducer.settled();
    std::string line = std::to_string(n) + '\t' + std::to_string(record.active) + '\t' +
                       field_text(record.label) + '\t' + field_text(record.units) + '\t' +
                       field_text(m_memories.transfer(n).table_name) + '\t' +
                       exact(m_memories.millivolts(n)) + '\t' + (channel.held ? "1" : "0") + '\t' +
                       (settled ? "1" : "0") + '\t';
    if (channel.has_transducer)
        line += std::string(condition_name(channel.transducer.condition())) + '\t' +
                exact(channel.transducer.applied()) + '\t' + spec.units + '\t' + exact(spec.from) +
                '\t' + exact(spec.to);
    else
        line += "-\t0\t\t0\t0";
    return line;
}

} // namespace cell
