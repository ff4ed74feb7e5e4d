// SPDX-License-Identifier: GPL-3.0-or-later
//
// How well the polynomial of a table reproduces the captured points.
#ifndef CALIBRATION_POLYDEVIATION_H
#define CALIBRATION_POLYDEVIATION_H

#include "frame/zerl_cfg.h"

struct PointDeviation {
    double x;         // measured mean, mV
    double y;         // measured mean, engineering units
    double computed;  // the polynomial at x, engineering units
    double deviation; // y less computed, with its sign
};

// A captured point against the range's polynomial; without coefficients that is
// 0. A count beyond the 18 that a range holds goes on into its x values, as
// load_coefficients tells.
PointDeviation deviation_of(const POINT_STATISTICS &point, const POLY_RANGE_RECORD &range);

// r squared of the polynomial in work over the points of long_current, with the
// measured engineering values for x and the millivolts for y: the host is given
// them that way round.
double poly_r_squared(const ZERL_CFG &cfg);

#endif
