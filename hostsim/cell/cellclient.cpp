// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/cellclient.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "hostsim/cell/descriptionline.h"

namespace cell
{

namespace
{

constexpr int ANSWER_MS = 10000;
constexpr const char *NO_ANSWER = "the cell does not answer";
constexpr auto POLL_INTERVAL = std::chrono::milliseconds(10);

std::string quoted(const std::string &text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + '"';
}

bool parse_channel(const std::string &line, ChannelState *state)
{
    std::vector<std::string> f(1);
    for (const char c : line) {
        if (c == '\t')
            f.emplace_back();
        else
            f.back() += c;
    }
    if (f.size() != 13)
        return false;
    state->number = std::atoi(f[0].c_str());
    state->active = std::atoi(f[1].c_str());
    state->label = f[2];
    state->units = f[3];
    state->table_name = f[4];
    parse_number(f[5], &state->mv);
    state->held = f[6] == "1";
    state->settled = f[7] == "1";
    state->condition = f[8];
    state->has_transducer = f[8] != "-";
    parse_number(f[9], &state->applied);
    state->applied_units = f[10];
    parse_number(f[11], &state->from);
    parse_number(f[12], &state->to);
    return true;
}

} // namespace

void CellClient::disconnect()
{
    if (m_socket >= 0)
        close(m_socket);
    m_socket = -1;
    m_received.clear();
}

bool CellClient::lost(const std::string &what)
{
    m_error = m_path + ": " + what;
    m_unreachable = true;
    disconnect();
    return false;
}

bool CellClient::connect()
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (m_path.size() >= sizeof address.sun_path)
        return lost("too long for a socket");
    std::memcpy(address.sun_path, m_path.c_str(), m_path.size());
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Bounds the connecting as well, to a cell that is stopped.
    const timeval limit = {ANSWER_MS / 1000, 0};
    if (m_socket < 0 || setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) != 0 ||
        ::connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        return lost(errno == EAGAIN         ? NO_ANSWER
                    : errno == ECONNREFUSED ? "the cell does not run any more"
                                            : std::strerror(errno));
    return true;
}

bool CellClient::send_line(const std::string &line)
{
    const std::string text = line + '\n';
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = send(m_socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR)
            return lost(errno == EAGAIN ? NO_ANSWER : std::strerror(errno));
        if (count > 0)
            sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool CellClient::read_line(std::string *line)
{
    std::size_t end = 0;
    while ((end = m_received.find('\n')) == std::string::npos) {
        pollfd wait = {m_socket, POLLIN, 0};
        const int ready = poll(&wait, 1, ANSWER_MS);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return lost(NO_ANSWER);
        char bytes[65536];
        const ssize_t count = recv(m_socket, bytes, sizeof bytes, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return lost("the cell has ended");
        m_received.append(bytes, static_cast<std::size_t>(count));
    }
    *line = m_received.substr(0, end);
    m_received.erase(0, end + 1);
    return true;
}

bool CellClient::request(const std::string &line, std::vector<std::string> *answer)
{
    m_unreachable = false;
    if (answer != nullptr)
        answer->clear();
    if (line.find('\n') != std::string::npos) {
        m_error = "a command is one line";
        return false;
    }
    if ((m_socket < 0 && !connect()) || !send_line(line))
        return false;
    std::string received;
    while (read_line(&received)) {
        if (received == "ok")
            return true;
        if (received.compare(0, 6, "error ") == 0) {
            m_error = received.substr(6);
            return false;
        }
        if (answer != nullptr)
            answer->push_back(received);
    }
    return false;
}

bool CellClient::apply(int channel, double value, bool now)
{
    return request("apply " + std::to_string(channel) + ' ' + exact(value) + (now ? " now" : ""));
}

bool CellClient::hold_mv(int channel, double mv)
{
    return request("mv " + std::to_string(channel) + ' ' + exact(mv));
}

bool CellClient::release_mv(int channel)
{
    return request("mv " + std::to_string(channel) + " auto");
}

bool CellClient::set_condition(int channel, const std::string &name)
{
    return request("condition " + std::to_string(channel) + ' ' + quoted(name));
}

bool CellClient::set(int channel, const std::string &field, const std::string &text)
{
    return request("set " + std::to_string(channel) + ' ' + quoted(field) + ' ' + quoted(text));
}

bool CellClient::show(int channel, ChannelState *state)
{
    std::vector<std::string> answer;
    if (!request("show " + std::to_string(channel), &answer))
        return false;
    return (answer.size() == 1 && parse_channel(answer[0], state)) || lost("not a cell's answer");
}

bool CellClient::list(std::vector<ChannelState> *channels)
{
    std::vector<std::string> answer;
    if (!request("list", &answer))
        return false;
    channels->resize(answer.size());
    for (std::size_t i = 0; i < answer.size(); ++i)
        if (!parse_channel(answer[i], &(*channels)[i]))
            return lost("not a cell's answer");
    return true;
}

bool CellClient::wait_settled(int channel, double seconds)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    ChannelState state;
    while (show(channel, &state)) {
        if (state.settled)
            return true;
        if (std::chrono::steady_clock::now() > deadline) {
            m_error = "channel " + std::to_string(channel) + " does not settle";
            return false;
        }
        std::this_thread::sleep_for(POLL_INTERVAL);
    }
    return false;
}

bool CellClient::quit()
{
    return request("quit");
}

} // namespace cell
