// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/cellserver.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace cell
{

namespace
{

constexpr std::size_t LONGEST_LINE = 4096;
constexpr std::size_t LONGEST_ANSWER = 64 * 1024 * 1024; // of a client that does not read
constexpr std::size_t MOST_CLIENTS = 64;

} // namespace

CellServer::~CellServer()
{
    for (const Client &client : m_clients)
        close(client.socket);
    if (m_socket >= 0) {
        close(m_socket);
        unlink(m_path.c_str());
    }
}

bool CellServer::listen(const std::string &path, std::string *error)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        *error = path + ": too long for a socket";
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (file < 0) {
        *error = path + ": " + std::strerror(errno);
        return false;
    }
    // The cell's lock is held, so whoever made this socket is dead.
    struct stat there = {};
    if (lstat(path.c_str(), &there) == 0) {
        if (!S_ISSOCK(there.st_mode)) {
            *error = path + ": is there, and is no socket";
            close(file);
            return false;
        }
        unlink(path.c_str());
    }
    if (bind(file, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(file, 16) != 0) {
        *error = path + ": " + std::strerror(errno);
        close(file);
        return false;
    }
    m_socket = file;
    m_path = path;
    return true;
}

void CellServer::add_to(std::vector<pollfd> *descriptors) const
{
    if (m_clients.size() < MOST_CLIENTS)
        descriptors->push_back({m_socket, POLLIN, 0});
    for (const Client &client : m_clients) {
        const int events = client.to_send.empty() ? POLLIN : POLLIN | POLLOUT;
        descriptors->push_back({client.socket, static_cast<short>(events), 0});
    }
}

void CellServer::serve(const std::vector<pollfd> &descriptors, const Handler &handler)
{
    bool connecting = false;
    for (const pollfd &ready : descriptors) {
        if (ready.revents == 0)
            continue;
        connecting = connecting || ready.fd == m_socket;
        for (Client &client : m_clients)
            if (client.socket == ready.fd)
                receive(&client, handler);
    }
    flush();
    for (auto client = m_clients.begin(); client != m_clients.end();) {
        if (!client->gone) {
            ++client;
            continue;
        }
        close(client->socket);
        client = m_clients.erase(client);
    }
    if (connecting)
        accept_client();
}

void CellServer::flush()
{
    for (Client &client : m_clients)
        send(&client);
}

void CellServer::accept_client()
{
    const int file = accept4(m_socket, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (file >= 0)
        m_clients.push_back({file, {}, {}, false});
}

void CellServer::receive(Client *client, const Handler &handler)
{
    char bytes[4096];
    const ssize_t count = recv(client->socket, bytes, sizeof bytes, 0);
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
        client->gone = true;
        return;
    }
    if (count > 0)
        client->received.append(bytes, static_cast<std::size_t>(count));
    std::size_t end = 0;
    while ((end = client->received.find('\n')) != std::string::npos) {
        const std::string line = client->received.substr(0, end);
        client->received.erase(0, end + 1);
        for (const std::string &answer : handler(line))
            client->to_send += answer + '\n';
    }
    if (client->received.size() > LONGEST_LINE || client->to_send.size() > LONGEST_ANSWER)
        client->gone = true;
}

void CellServer::send(Client *client)
{
    while (!client->gone && !client->to_send.empty()) {
        const ssize_t count =
            ::send(client->socket, client->to_send.data(), client->to_send.size(), MSG_NOSIGNAL);
        if (count < 0) {
            client->gone = errno != EAGAIN && errno != EINTR;
            return;
        }
        client->to_send.erase(0, static_cast<std::size_t>(count));
    }
}

} // namespace cell
