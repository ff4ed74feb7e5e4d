// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operator's commands from a shell. Status: 0 done, 1 refused or no cell,
// 2 a command line that is not understood.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "hostsim/cell/cellclient.h"
#include "hostsim/cell/descriptionline.h"

namespace
{

using Words = std::vector<std::string>;

constexpr int DONE = 0;
constexpr int REFUSED = 1;
constexpr int MISUSED = 2;

int usage(FILE *to)
{
    std::fputs(
        "usage: cellctl [--socket PATH] COMMAND\n"
        "  list                        all channels\n"
        "  show CH                     one channel\n"
        "  apply [--now] CH VALUE      apply a value, in the sensor's units; --now: without\n"
        "                              the sensor's lag\n"
        "  mv CH VALUE|auto            hold the reading at that many millivolts, or let it go\n"
        "  condition CH NAME           good, drifted1, drifted2, drifted3, noisy or dead;\n"
        "                              drifted is drifted1\n"
        "  wait-settled [--timeout S] CH\n"
        "                              return when the sensor's lag has run out\n"
        "  set CH FIELD TEXT           change label, units, active or table of a channel\n"
        "  quit                        end the cell\n",
        to);
    return to == stdout ? DONE : MISUSED;
}

int refused(const cell::CellClient &client)
{
    std::fprintf(stderr, "cellctl: %s\n", client.error().c_str());
    return REFUSED;
}

const char *state_name(const cell::ChannelState &channel)
{
    if (channel.held)
        return "held";
    return channel.settled ? "settled" : "moving";
}

void print_header()
{
    std::printf("%5s  %-8s  %-28s  %-8s  %12s  %-8s  %14s  %-9s  %-8s  %s\n", "CH", "STATE",
                "LABEL", "UNITS", "APPLIED", "UNITS", "MV", "CONDITION", "SIGNAL", "TABLE");
}

void print_channel(const cell::ChannelState &channel)
{
    char applied[32] = "-";
    if (channel.has_transducer)
        std::snprintf(applied, sizeof applied, "%.6g", channel.applied);
    std::string state = channel.active == 1 ? "active" : "inactive";
    if (channel.active > 1)
        state = std::to_string(channel.active);
    std::printf("%5d  %-8s  %-28s  %-8s  %12s  %-8s  %14.6f  %-9s  %-8s  %s\n", channel.number,
                state.c_str(), channel.label.c_str(), channel.units.c_str(), applied,
                channel.applied_units.c_str(), channel.mv, channel.condition.c_str(),
                state_name(channel), channel.table_name.c_str());
}

int show(cell::CellClient &client, const Words &words, int channel)
{
    std::vector<cell::ChannelState> channels(1);
    if (!(words[0] == "list" ? client.list(&channels) : client.show(channel, &channels[0])))
        return refused(client);
    print_header();
    for (const cell::ChannelState &one : channels)
        print_channel(one);
    return DONE;
}

// Takes an option away from the words; its value, or itself for a bare one.
bool take_option(Words *words, const std::string &name, bool has_value, std::string *value)
{
    for (std::size_t i = 1; i < words->size(); ++i) {
        if ((*words)[i] != name || (has_value && i + 1 >= words->size()))
            continue;
        *value = (*words)[i + (has_value ? 1 : 0)];
        const auto at = words->begin() + static_cast<std::ptrdiff_t>(i);
        words->erase(at, at + (has_value ? 2 : 1));
        return true;
    }
    return false;
}

int run(cell::CellClient &client, Words words)
{
    std::string timeout = "60";
    std::string ignored;
    double seconds = 0.0;
    double value = 0.0;
    long channel = 0;
    const bool now = words[0] == "apply" && take_option(&words, "--now", false, &ignored);
    if (words[0] == "wait-settled")
        take_option(&words, "--timeout", true, &timeout);
    const std::string &name = words[0];
    const std::size_t values = words.size() - 1;
    const auto done = [&client](bool ok) { return ok ? DONE : refused(client); };

    if (name == "quit" && values == 0)
        return done(client.quit());
    if (name == "list" && values == 0)
        return show(client, words, 0);
    if (values < 1 || !cell::parse_integer(words[1], 0, 32767, &channel))
        return usage(stderr);
    const int ch = static_cast<int>(channel);
    if (name == "show" && values == 1)
        return show(client, words, ch);
    if (name == "wait-settled" && values == 1 && cell::parse_number(timeout, &seconds))
        return done(client.wait_settled(ch, seconds));
    if (name == "condition" && values == 2)
        return done(client.set_condition(ch, words[2]));
    if (name == "set" && values == 3)
        return done(client.set(ch, words[2], words[3]));
    if (name == "mv" && values == 2 && words[2] == "auto")
        return done(client.release_mv(ch));
    if (values != 2 || !cell::parse_number(words[2], &value))
        return usage(stderr);
    if (name == "mv")
        return done(client.hold_mv(ch, value));
    if (name == "apply")
        return done(client.apply(ch, value, now));
    return usage(stderr);
}

} // namespace

int main(int argc, char **argv)
{
    Words words(argv + 1, argv + argc);
    std::string socket = cell::CELL_SOCKET;
    if (words.size() >= 2 && words[0] == "--socket") {
        socket = words[1];
        words.erase(words.begin(), words.begin() + 2);
    }
    if (words.size() == 1 && (words[0] == "--help" || words[0] == "-h"))
        return usage(stdout);
    if (words.empty())
        return usage(stderr);
    cell::CellClient client(socket);
    return run(client, words);
}
