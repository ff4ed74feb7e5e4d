// SPDX-License-Identifier: GPL-3.0-or-later
//
// vxtable: looks into table, archive and history files. It reads only.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include <fcntl.h>
#include <getopt.h>

#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/tabletext.h"
#include "hostsim/tools/blockreader.h"
#include "hostsim/tools/tableprint.h"

namespace
{

using hostsim::BlockEntry;
using hostsim::BlockReader;

enum class Status { AllWell = 0, Damaged = 1, NotPossible = 2 };

constexpr const char *USAGE = R"(usage: vxtable list FILE
       vxtable show FILE [NUMBER]
       vxtable verify FILE
       vxtable export FILE

Looks into a table (.tbl), archive (.save) or history (.old) file.

  list    one line for each record: number, step, when, who, type, points,
          description
  show    one record whole: the one of that number in the list, otherwise the
          last
  verify  checks every record; the first thing wrong of each is told
  export  CSV, one line for each coefficient and point

Exit status: 0 all is well; 1 a record is damaged or there is none of that
number; 2 wrong use, or the file cannot be read.
)";

Status complain(const std::string &text)
{
    std::fprintf(stderr, "vxtable: %s\n", text.c_str());
    return Status::NotPossible;
}

Status wrong_use(const std::string &text)
{
    complain(text);
    std::fputs("Try: vxtable --help\n", stderr);
    return Status::NotPossible;
}

void print(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

bool is_table_file(const std::string &path)
{
    return path.size() >= 4 && path.compare(path.size() - 4, 4, ".tbl") == 0;
}

void tell_damage(const std::string &path, const BlockEntry &entry)
{
    std::fprintf(stderr, "%s:%zu: record %zu: %s\n", path.c_str(), entry.fault.line, entry.number,
                 entry.fault.what.c_str());
}

// What each command does with the records as they come.
class Command
{
public:
    Command(std::string name, std::string path, std::size_t number)
        : m_name(std::move(name)), m_path(std::move(path)), m_number(number)
    {
    }

    void begin() const;
    void take(const BlockEntry &entry);
    Status finish() const;

private:
    bool is(const char *name) const { return m_name == name; }
    Status finish_show() const;
    Status finish_verify() const;

    std::string m_name;
    std::string m_path;
    std::size_t m_number; // record to show, 0: the last
    std::size_t m_count = 0;
    std::size_t m_damaged = 0;
    std::optional<BlockEntry> m_shown;
};

void Command::begin() const
{
    if (is("list"))
        print(hostsim::list_heading());
    else if (is("export"))
        print(hostsim::csv_heading());
}

void Command::take(const BlockEntry &entry)
{
    ++m_count;
    const bool damaged = !entry.fault.what.empty();
    m_damaged += damaged ? 1 : 0;
    if (is("list"))
        print(hostsim::list_line(entry));
    else if (is("show") && (m_number == 0 || m_number == entry.number))
        m_shown = entry;
    if (damaged && (is("verify") || is("export")))
        tell_damage(m_path, entry);
    else if (is("export"))
        print(hostsim::csv_lines(entry));
}

Status Command::finish_show() const
{
    if (!m_shown) {
        complain(m_path + (m_number == 0 ? " holds no record"
                                         : " holds no record " + std::to_string(m_number) +
                                               ", the last is " + std::to_string(m_count)));
        return Status::Damaged;
    }
    if (!m_shown->fault.what.empty()) {
        tell_damage(m_path, *m_shown);
        return Status::Damaged;
    }
    print(hostsim::show_text(*m_shown));
    return Status::AllWell;
}

Status Command::finish_verify() const
{
    const bool none = m_count == 0 && is_table_file(m_path);
    if (none)
        std::fprintf(stderr, "%s:1: the file holds no record\n", m_path.c_str());
    print(m_path + ": " + std::to_string(m_count - m_damaged) + " whole, " +
          std::to_string(m_damaged) + " damaged\n");
    return none || m_damaged > 0 ? Status::Damaged : Status::AllWell;
}

Status Command::finish() const
{
    if (is("show"))
        return finish_show();
    if (is("verify"))
        return finish_verify();
    return m_damaged > 0 ? Status::Damaged : Status::AllWell;
}

Status run(const std::string &name, const std::string &path, std::size_t number)
{
    const hostsim::Descriptor file = hostsim::open_regular(path.c_str(), O_RDONLY);
    if (!file.valid())
        return complain(path + ": " +
                        (errno == EINVAL ? "not a regular file" : hostsim::error_text()));
    Command command(name, path, number);
    command.begin();
    BlockReader reader(file.get(), is_table_file(path));
    BlockEntry entry;
    while (reader.next(&entry))
        command.take(entry);
    if (reader.failed())
        return complain(path + ": " + hostsim::error_text());
    const Status status = command.finish();
    if (std::fflush(stdout) != 0)
        return complain("the output cannot be written: " + hostsim::error_text());
    return status;
}

Status run_command(int argc, char **argv)
{
    const std::string name = argv[0];
    if (name != "list" && name != "show" && name != "verify" && name != "export")
        return wrong_use("there is no command " + hostsim::quoted(name));
    if (argc < 2)
        return wrong_use(name + " needs a FILE");
    std::int64_t number = 0;
    const bool numbered = name == "show" && argc == 3;
    if (numbered && (!hostsim::parse_integer(argv[2], &number) || number < 1))
        return wrong_use(hostsim::quoted(argv[2]) + " is no record's number; the first is 1");
    if (argc > 2 && !numbered)
        return wrong_use(name + " takes no more than a FILE" +
                         (name == "show" ? " and a NUMBER" : ""));
    return run(name, argv[1], static_cast<std::size_t>(number));
}

Status run_command_line(int argc, char **argv)
{
    const option known[] = {{"help", no_argument, nullptr, 'h'}, {}};
    opterr = 0; // told below
    const int found = getopt_long(argc, argv, "+h", known, nullptr);
    if (found == 'h' || (argc > 1 && std::strcmp(argv[1], "help") == 0)) {
        print(USAGE);
        return Status::AllWell;
    }
    if (found != -1)
        return wrong_use("there is no option " + hostsim::quoted(argv[1]));
    if (optind == argc) {
        std::fputs(USAGE, stderr);
        return Status::NotPossible;
    }
    return run_command(argc - optind, argv + optind);
}

} // namespace

int main(int argc, char **argv)
{
    return static_cast<int>(run_command_line(argc, argv));
}
