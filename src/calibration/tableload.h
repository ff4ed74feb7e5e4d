// SPDX-License-Identifier: GPL-3.0-or-later
//
// From a table as read to the long table that the tool works with.
#ifndef CALIBRATION_TABLELOAD_H
#define CALIBRATION_TABLELOAD_H

#include "frame/zerl_cfg.h"

// Reads the channel's table (tbl_path and its archive) into the zeroed record
// and computes it according to its type. Returns the status of the read; 65535
// as a 16-bit value is failure, and nothing is computed then.
int32_t load_channel_table(ZERL_CFG *cfg);

// A SCALED table as the INTERP table of two points that takes its place.
void convert_scaled_table(TABLE_RECORD *table);

// Sorts n pairs by x, ascending. Not stable: pairs with equal x may change
// places. Values that are not numbers end up behind all others.
void sort_points(double *x, double *y, int n);

// Copies n values of a straight line's coefficient buffer over the range's
// coefficients. The range holds 18: more run into the x values behind them,
// whose first n - 18 are overwritten. That is how a table of more than 18
// points has always been loaded.
void store_line_coefficients(POLY_RANGE_RECORD *range, const double *buffer, int n);

// The range's coefficients, as many as it counts, 64 at most; returns that
// number. Behind the 18 that it holds stand its x values, and with the count
// that a table of more than 18 points was given they serve as coefficients.
int32_t load_coefficients(const POLY_RANGE_RECORD &range, double (&coeffs)[MAX_POINTS]);

// long_current from the points of the table. For use without the table mutex: a
// pass meanwhile reads each value whole, the former one or the new.
void refresh_long_table(ZERL_CFG *cfg);

// Starts the work on the table just computed: the copies to compare with, the
// limits, the extents and the counts.
void take_table_into_work(ZERL_CFG *cfg);

#endif
