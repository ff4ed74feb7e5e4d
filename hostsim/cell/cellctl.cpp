// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operator's commands from a shell. Status: 0 done, 1 refused or no cell,
// 2 a command line that is not understood.
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
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

struct CommandLine {
    std::string socket = cell::CELL_SOCKET;
    bool help = false;
    Words words; // the command and what it works on
    bool now = false;
    std::string timeout = "60";
};

// The options of a command stand anywhere behind it. A negative number is none
// of them: it would be an option of one letter, and these have none.
bool parse_command_options(int argc, char **argv, const option *known, CommandLine *line)
{
    optind = 0; // afresh
    for (int found = 0; (found = getopt_long_only(argc, argv, "-", known, nullptr)) != -1;) {
        const std::string word = argv[optind - 1];
        double number = 0.0;
        if (found == 'n')
            line->now = true;
        else if (found == 't')
            line->timeout = optarg;
        else if (found == 1 || cell::parse_number(word, &number))
            line->words.push_back(word);
        else
            return false;
    }
    line->words.insert(line->words.end(), argv + optind, argv + argc);
    return true;
}

bool parse_command_line(int argc, char **argv, CommandLine *line)
{
    const option general[] = {
        {"socket", required_argument, nullptr, 's'}, {"help", no_argument, nullptr, 'h'}, {}};
    const option of_apply[] = {{"now", no_argument, nullptr, 'n'}, {}};
    const option of_wait[] = {{"timeout", required_argument, nullptr, 't'}, {}};
    opterr = 0; // the usage tells
    for (int found = 0; (found = getopt_long(argc, argv, "+h", general, nullptr)) != -1;) {
        if (found == 's')
            line->socket = optarg;
        else if (found == 'h')
            line->help = true;
        else
            return false;
    }
    argc -= optind;
    argv += optind;
    if (argc == 0)
        return line->help;
    const std::string name = argv[0];
    if (name != "apply" && name != "wait-settled") {
        line->words.assign(argv, argv + argc);
        return true;
    }
    line->words = {name};
    return parse_command_options(argc, argv, name == "apply" ? of_apply : of_wait, line);
}

int run(cell::CellClient &client, const CommandLine &line)
{
    const Words &words = line.words;
    double seconds = 0.0;
    double value = 0.0;
    long channel = 0;
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
    if (name == "wait-settled" && values == 1 && cell::parse_number(line.timeout, &seconds))
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
        return done(client.apply(ch, value, line.now));
    return usage(stderr);
}

} // namespace

int main(int argc, char **argv)
{
    CommandLine line;
    if (!parse_command_line(argc, argv, &line))
        return usage(stderr);
    if (line.help)
        return usage(stdout);
    cell::CellClient client(line.socket);
    return run(client, line);
}
