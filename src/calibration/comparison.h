// SPDX-License-Identifier: GPL-3.0-or-later
//
// The calibration in progress compared with the previous one and with the best
// straight line, point by point.
#ifndef CALIBRATION_COMPARISON_H
#define CALIBRATION_COMPARISON_H

#include "frame/zerl_cfg.h"

// All in engineering units.
struct CurveComparison {
    double current;       // the point's reference value
    double previous;      // the previous calibration's at the same index, whatever its mV
    double straight_line; // the line at the point's mV
    double current_to_previous;
    double current_to_straight_line;
    double previous_to_straight_line;
};

// Point `index`, 0 to 63. Current and previous calibration are both read at the
// point's mV, so that points at different mV compare properly. Behind the last
// point of a calibration the straight line counts as 0.
CurveComparison compare_point(const LONG_TABLE &current, const LONG_TABLE &previous,
                              const LONG_TABLE &fit, int index);

#endif
