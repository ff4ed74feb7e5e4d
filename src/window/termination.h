// SPDX-License-Identifier: GPL-3.0-or-later
//
// The end of the program: SIGTERM ends it with status 0, also during a modal
// dialog, and so does the main window that closes.
#ifndef WINDOW_TERMINATION_H
#define WINDOW_TERMINATION_H

// Installs the handler; the application object must exist. The handler itself
// only writes one byte; a notifier on the GUI thread ends the event loops.
void install_termination_handler();

// Told by the main window: it closes, or it is there to be worked with.
void note_window_closes(bool closes);

// True once the end is decided: SIGTERM came or the main window closes. From then
// on nothing is asked, and the slot of a field that loses the focus changes nothing.
bool end_decided();

#endif
