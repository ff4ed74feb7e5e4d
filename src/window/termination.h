// SPDX-License-Identifier: GPL-3.0-or-later
//
// SIGTERM ends the program with status 0, also during a modal dialog.
#ifndef WINDOW_TERMINATION_H
#define WINDOW_TERMINATION_H

// Installs the handler; the application object must exist. The handler itself
// only writes one byte; a notifier on the GUI thread ends the event loops.
void install_termination_handler();

// True once the end was asked for: every question then answers itself at once,
// so nothing may go on asking until it is answered.
bool termination_requested();

#endif
