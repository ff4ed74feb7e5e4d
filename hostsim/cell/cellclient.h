// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operator's side of a cell's socket, for cellctl, the panel and tests.
#ifndef HOSTSIM_CELL_CELLCLIENT_H
#define HOSTSIM_CELL_CELLCLIENT_H

#include <string>
#include <vector>

namespace cell
{

constexpr const char *CELL_SOCKET = "/cell/cell.sock";

struct ChannelState {
    int number = 0;
    int active = 0;
    std::string label;
    std::string units; // of the channel
    std::string table_name;
    double mv = 0.0;
    bool held = false;    // at an exact millivolt value
    bool settled = false; // the lag has run out
    bool has_transducer = false;
    std::string condition; // "-" without transducer
    double applied = 0.0;  // in applied_units
    std::string applied_units;
    double from = 0.0; // range that can be applied
    double to = 0.0;
};

// Every operation gives false, and the reason in error(), when the cell cannot
// be reached, refuses, or does not answer within ten seconds.
class CellClient
{
public:
    explicit CellClient(std::string path = CELL_SOCKET) : m_path(std::move(path)) {}
    ~CellClient() { disconnect(); }
    CellClient(const CellClient &) = delete;
    CellClient &operator=(const CellClient &) = delete;

    const std::string &error() const { return m_error; }
    // Whether the last failure was one of the connection, not a refusal.
    bool unreachable() const { return m_unreachable; }

    // Sends one line, connecting first where needed; the answer without its
    // last line in *answer, which may be null.
    bool request(const std::string &line, std::vector<std::string> *answer = nullptr);

    bool apply(int channel, double value, bool now = false);
    bool hold_mv(int channel, double mv);
    bool release_mv(int channel);
    bool set_condition(int channel, const std::string &name);
    // field: label, units, active or table.
    bool set(int channel, const std::string &field, const std::string &text);
    bool show(int channel, ChannelState *state);
    bool list(std::vector<ChannelState> *channels);
    // Waits until the channel's lag has run out; false after so many seconds.
    bool wait_settled(int channel, double seconds = 60.0);
    bool quit();

private:
    bool connect();
    void disconnect();
    bool send_line(const std::string &line);
    bool read_line(std::string *line);
    bool lost(const std::string &what);

    std::string m_path;
    std::string m_error;
    std::string m_received;
    bool m_unreachable = false;
    int m_socket = -1;
};

} // namespace cell

#endif
