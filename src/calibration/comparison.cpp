// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/comparison.h"

#include <cmath>

#include "host/operations.h"

namespace
{

double value_at(const LONG_TABLE &table, double mv)
{
    uint16_t hint = 0;
    return linear_interp(&hint, &table, 0, mv);
}

double line_at_point(const LONG_TABLE &fit, const LONG_TABLE &table, int index)
{
    return index < table.num_points ? value_at(fit, table.x[index]) : 0.0;
}

} // namespace

CurveComparison compare_point(const LONG_TABLE &current, const LONG_TABLE &previous,
                              const LONG_TABLE &fit, int index)
{
    const double mv = current.x[index];
    CurveComparison result = {};
    result.current = current.y[index];
    result.straight_line = line_at_point(fit, current, index);
    result.current_to_straight_line = std::fabs(current.y[index] - result.straight_line);
    result.current_to_previous = std::fabs(value_at(current, mv) - value_at(previous, mv));
    result.previous = previous.y[index];
    result.previous_to_straight_line =
        std::fabs(previous.y[index] - line_at_point(fit, previous, index));
    return result;
}
