// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/termination.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>

namespace
{

int write_end = -1;
bool requested = false;     // GUI thread only
bool window_closes = false; // GUI thread only

void note_termination(int)
{
    const int kept = errno;
    const char byte = 1;
    // A full pipe already tells of the signal.
    if (write(write_end, &byte, 1) < 0)
        errno = kept;
    errno = kept;
}

} // namespace

void install_termination_handler()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    write_end = ends[1];
    auto *notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [notifier] {
        notifier->setEnabled(false);
        requested = true;
        QCoreApplication::exit(0);
    });
    signal(SIGTERM, note_termination);
}

void note_window_closes(bool closes)
{
    window_closes = closes;
}

bool end_decided()
{
    return requested || window_closes;
}
