// SPDX-License-Identifier: GPL-3.0-or-later
//
// The cell's log as a file. Each entry is one line of at most
// LOG_ENTRY_BYTES bytes, line feed included:
//
//   2024-05-17T09:30:00.125Z 1 77 mainwindow.cpp:120 text
//
// that is: time in UTC with milliseconds, severity, code, name of the source
// file without its folders and line in it, text; one space between them.
// In the text a line feed stands as \n, a carriage return as \r, a tab as \t,
// a backslash as \\, any other control character as \xHH. In the source name a
// space stands as \x20. An entry that had to be cut ends in \+.
#ifndef HOSTSIM_RUNTIME_LOG_H
#define HOSTSIM_RUNTIME_LOG_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace hostsim
{

constexpr char LOG_FILE[] = "/cell/vornax.log";
constexpr std::size_t LOG_ENTRY_BYTES = 4096;

// Codes of the runtime's own entries.
enum class LogCode : std::int32_t {
    TextCut = 901,           // copyn had to cut a text
    LineCut = 902,           // a line was longer than a line buffer
    TaskRefused = 903,       // the process ends, its task was not admitted
    MemoryRefused = 904,     // a shared memory object is not a whole memory
    UnitRefused = 905,       // an entry of the units catalogue is not usable
    UnitsDatabase = 906,     // the database of units cannot be read
    MemoryUnpublished = 907, // a memory could not be published
    HostLost = 908           // the cell died, or a memory in use was cut short
};

// As log_error takes it.
constexpr std::int32_t log_number(LogCode code)
{
    return static_cast<std::int32_t>(code);
}

struct LogEntry {
    std::string time;
    std::int32_t severity = 0;
    std::int32_t code = 0;
    std::string source;
    std::int32_t line = 0;
    std::string text; // as it was before escaping
    bool cut = false;
};

// Takes a line of the log apart, with or without its line feed; false when it
// is not a whole entry.
bool parse_log_line(const std::string &line, LogEntry *entry);

} // namespace hostsim

#endif
