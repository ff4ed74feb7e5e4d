// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tracking of the extent of the values on one axis of the plot.
#ifndef CALIBRATION_AXISRANGE_H
#define CALIBRATION_AXISRANGE_H

#include "frame/zerl_cfg.h"

// Extent 0 to 0, five divisions.
void reset_axis_range(AXIS_RANGE *axis);

// Takes n values into the extent, which only grows; n below 1 counts as one
// value of zero. Returns 1, and sets changed, when the record changed, else 0.
int32_t update_axis_range(AXIS_RANGE *axis, const double *values, int32_t n);

// Widens min and max to a round range.
void rescale_axis_range(AXIS_RANGE *axis);

#endif
