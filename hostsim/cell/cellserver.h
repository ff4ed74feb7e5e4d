// SPDX-License-Identifier: GPL-3.0-or-later
//
// The local socket of a cell: one line a command, and its answer's lines.
#ifndef HOSTSIM_CELL_CELLSERVER_H
#define HOSTSIM_CELL_CELLSERVER_H

#include <functional>
#include <list>
#include <poll.h>
#include <string>
#include <vector>

namespace cell
{

class CellServer
{
public:
    using Handler = std::function<std::vector<std::string>(const std::string &)>;

    CellServer() = default;
    ~CellServer();
    CellServer(const CellServer &) = delete;
    CellServer &operator=(const CellServer &) = delete;

    // Listens at the path; a socket left there by a cell that died is replaced,
    // nothing else is.
    // False, and why in *error, when it cannot.
    bool listen(const std::string &path, std::string *error);

    // Adds the descriptors to wait for.
    void add_to(std::vector<pollfd> *descriptors) const;
    // Serves what is ready among them, never waiting; each whole line goes to
    // the handler, its answer goes back.
    void serve(const std::vector<pollfd> &descriptors, const Handler &handler);
    // Sends what can be sent at once; for the last answers before the end.
    void flush();

private:
    struct Client {
        int socket;
        std::string received;
        std::string to_send;
        bool gone = false;
    };
    void accept_client();
    static void receive(Client *client, const Handler &handler);
    static void send(Client *client);

    int m_socket = -1;
    std::string m_path;
    std::list<Client> m_clients;
};

} // namespace cell

#endif
