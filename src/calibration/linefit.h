// SPDX-License-Identifier: GPL-3.0-or-later
//
// The best straight line through a table.
#ifndef CALIBRATION_LINEFIT_H
#define CALIBRATION_LINEFIT_H

#include "frame/zerl_cfg.h"

// Least-squares line of y against x over n points, by the sums of x, y, their
// squares and products. Returns the line's value at `at`. With fewer than two
// distinct x the results are what the divisions give.
double fit_line(int32_t n, const double *x, const double *y, double *slope, double *intercept,
                double *r_squared, double at);

// Best-fit table: the x of long_in with the line's values for y, and the line's
// slope and intercept at each point. Slots behind the last point are copied.
void compute_long_fit(const LONG_TABLE *long_in, LONG_TABLE *long_out);

#endif
