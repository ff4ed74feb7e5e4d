// SPDX-License-Identifier: GPL-3.0-or-later
//
// Long tables as samples of the plot.
#ifndef CALIBRATION_PLOTCURVE_H
#define CALIBRATION_PLOTCURVE_H

#include "frame/zerl_cfg.h"

// Copies the table's points and repeats the last one, so that a curve always
// has 64 pairs and its tail sits on the last point. A table without points
// gives zero pairs.
void fill_plot_curve(const LONG_TABLE *long_table, PLOT_CURVE *curve);

// Zeroes x and y of the slots behind the last point.
void clear_unused_points(LONG_TABLE *long_table);

#endif
