// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table on show in the window.
#ifndef CALIBRATION_ZERL_UTIL_H
#define CALIBRATION_ZERL_UTIL_H

class MainWindow;

// Computes the table anew after the range in work changed, and shows it.
void recompute_table_view(MainWindow *main);

#endif
