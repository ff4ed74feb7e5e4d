// SPDX-License-Identifier: GPL-3.0-or-later
//
// The training cell: stands for the running host. Publishes the memories of
// the described cell, moves the signals, takes an operator's commands, until
// SIGTERM or SIGINT; then it removes what it made.
// Status: 0 ended as asked, 1 it cannot run, 2 wrong description or options.
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <getopt.h>
#include <spawn.h>
#include <string>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "host/operations.h"
#include "hostsim/cell/cellclient.h"
#include "hostsim/cell/celldescription.h"
#include "hostsim/cell/cellmemories.h"
#include "hostsim/cell/cellserver.h"
#include "hostsim/cell/descriptionline.h"
#include "hostsim/cell/livecell.h"
#include "hostsim/runtime/memoryheader.h"

namespace
{

constexpr int ENDED = 0;
constexpr int CANNOT_RUN = 1;
constexpr int MISUSED = 2;
constexpr long TICK_NANOSECONDS = 10000000; // a hundred times a second

struct Options {
    std::string description = "/cell/cell.txt";
    std::string socket = cell::CELL_SOCKET;
    int ready_fd = -1;
    pid_t end_with = 0; // 0: of nobody
    bool init_only = false;
    bool help = false;
};

int usage(FILE *to)
{
    std::fputs("usage: trainingcell [options]\n"
               "  --describe FILE  description of the cell (default /cell/cell.txt)\n"
               "  --socket PATH    where the operator's commands come in\n"
               "                   (default /cell/cell.sock)\n"
               "  --ready-fd N     write one byte to that descriptor when all is up\n"
               "  --end-with PID   end when the parent does, which has that number\n"
               "  --init-only      make the table files that are missing, and end\n"
               "  --foreground     stay in the foreground, as it always does\n"
               "  --help           this text\n",
               to);
    return to == stdout ? ENDED : MISUSED;
}

bool parse_options(int argc, char **argv, Options *options)
{
    const option known[] = {{"describe", required_argument, nullptr, 'd'},
                            {"socket", required_argument, nullptr, 's'},
                            {"ready-fd", required_argument, nullptr, 'r'},
                            {"end-with", required_argument, nullptr, 'e'},
                            {"init-only", no_argument, nullptr, 'i'},
                            {"foreground", no_argument, nullptr, 'f'},
                            {"help", no_argument, nullptr, 'h'},
                            {}};
    opterr = 0; // the usage tells
    long number = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
        if (found == 'd')
            options->description = optarg;
        else if (found == 's')
            options->socket = optarg;
        else if (found == 'r' && cell::parse_integer(optarg, 0, 1000000, &number))
            options->ready_fd = static_cast<int>(number);
        else if (found == 'e' && cell::parse_integer(optarg, 1, INT_MAX, &number))
            options->end_with = static_cast<pid_t>(number);
        else if (found == 'i')
            options->init_only = true;
        else if (found == 'h')
            options->help = true;
        else if (found != 'f')
            return false;
    }
    return optind == argc;
}

int cannot_run(const std::string &why)
{
    std::fprintf(stderr, "trainingcell: %s\n", why.c_str());
    return CANNOT_RUN;
}

// One cell to a view: the lock lies on the folder itself and goes with the
// process, however that ends. Never closed otherwise.
bool lock_view(std::string *error)
{
    const int folder = open("/cell", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        *error = std::string("/cell: ") + std::strerror(errno) +
                 "; a cell runs in its private view, see privatecell --help";
        return false;
    }
    if (flock(folder, LOCK_EX | LOCK_NB) != 0) {
        *error = "a cell already runs here";
        return false;
    }
    return true;
}

// A descriptor that SIGTERM and SIGINT come in by; whoever started us may have
// had them ignored.
int open_signals()
{
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {};
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT}) {
        sigaction(number, &nothing, nullptr);
        sigaddset(&set, number);
    }
    sigprocmask(SIG_BLOCK, &set, nullptr);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

int open_ticks()
{
    const int file = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    itimerspec interval = {};
    interval.it_interval.tv_nsec = TICK_NANOSECONDS;
    interval.it_value.tv_nsec = TICK_NANOSECONDS;
    if (file >= 0)
        timerfd_settime(file, 0, &interval, nullptr);
    return file;
}

// Has the host's rebuild program, which stands beside this one, build the
// run-time tables. That some table cannot be read does not keep a cell down.
bool build_tables(std::string *error)
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    std::string program(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    program.replace(program.rfind('/') + 1, std::string::npos, "bld_tables");
    char *arguments[] = {program.data(), nullptr};
    posix_spawnattr_t attributes;
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t child = 0;
    const int refused =
        posix_spawn(&child, program.c_str(), nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    if (refused != 0) {
        *error = program + ": " + std::strerror(refused);
        return false;
    }
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return true;
}

void run(cell::LiveCell *live, cell::CellServer *server, int signals, int ticks)
{
    using Clock = std::chrono::steady_clock;
    const auto obey = [live](const std::string &line) { return live->command(line); };
    std::vector<pollfd> descriptors;
    auto last = Clock::now();
    while (!live->quit_asked()) {
        descriptors = {{signals, POLLIN, 0}, {ticks, POLLIN, 0}};
        server->add_to(&descriptors);
        if (poll(descriptors.data(), descriptors.size(), -1) < 0 && errno != EINTR)
            return;
        if (descriptors[0].revents != 0)
            return;
        std::uint64_t missed = 0;
        if (descriptors[1].revents != 0 && read(ticks, &missed, sizeof missed) > 0) {
            const auto now = Clock::now();
            live->tick(std::chrono::duration<double>(now - last).count());
            last = now;
            hostsim::watch_host();
        }
        server->serve(descriptors, obey);
    }
}

int run_cell(const cell::CellDescription &description, const Options &options)
{
    std::string error;
    const int signals = open_signals();
    const int ticks = open_ticks();
    if (signals < 0 || ticks < 0)
        return cannot_run(std::strerror(errno));
    cell::CellMemories memories;
    cell::CellServer server;
    if (!memories.publish(description, &error) || !build_tables(&error) ||
        !server.listen(options.socket, &error))
        return cannot_run(error);
    cell::LiveCell live(description, &memories);
    log_error(__FILE__, __LINE__, 0, 0, "training cell \"%s\" is up: a simulation, no test cell",
              description.cell_name.c_str());
    if (options.ready_fd >= 0) {
        if (write(options.ready_fd, "R", 1) != 1)
            return cannot_run("--ready-fd: " + std::string(std::strerror(errno)));
        close(options.ready_fd);
    }
    run(&live, &server, signals, ticks);
    log_error(__FILE__, __LINE__, 0, 0, "training cell \"%s\" ends", description.cell_name.c_str());
    return ENDED;
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!parse_options(argc, argv, &options))
        return usage(stderr);
    if (options.help)
        return usage(stdout);

    cell::CellDescription description;
    std::vector<std::string> errors;
    if (!cell::load_description(options.description, &description, &errors)) {
        for (const std::string &error : errors)
            std::fprintf(stderr, "%s\n", error.c_str());
        return MISUSED;
    }
    // A parent that was killed cannot end us; nor can one that is gone by now.
    if (options.end_with != 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != options.end_with)
            return cannot_run("whoever started it has gone");
    }
    std::string error;
    if (!lock_view(&error) || !cell::make_table_files(description, &error))
        return cannot_run(error);
    return options.init_only ? ENDED : run_cell(description, options);
}
