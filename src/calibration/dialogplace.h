// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef CALIBRATION_DIALOGPLACE_H
#define CALIBRATION_DIALOGPLACE_H

#include <QRect>

// Where the recording dialog stands, pixels: left 280, right 860, and 250 to 553
// below the top of the main window. Moved back inside the screen's free area
// where it would leave it; of an area smaller than the dialog its left and top
// edge are kept.
QRect recording_dialog_place(int window_top, const QRect &available);

#endif
