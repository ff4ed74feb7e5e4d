// SPDX-License-Identifier: GPL-3.0-or-later
//
// Input that was given while the window stood still.
#ifndef WINDOW_QUEUEDINPUT_H
#define WINDOW_QUEUEDINPUT_H

// Drops the presses, keys, touches and turns of the wheel that wait for the
// window: they were made for what it showed before. All else that waits, ticks
// among it, is worked off. GUI thread only, at the end of a slot.
void drop_queued_input();

#endif
