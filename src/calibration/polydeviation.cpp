// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/polydeviation.h"

#include <algorithm>

#include "calibration/plotcurve.h"
#include "host/operations.h"

namespace
{

int32_t coeff_count(const POLY_RANGE_RECORD &range)
{
    return std::clamp<int32_t>(range.num_coeffs, 0, POLY_COEFFS);
}

} // namespace

POLY_DEVIATION deviation_of(const POINT_STATISTICS &point, const POLY_RANGE_RECORD &range)
{
    POLY_DEVIATION result = {};
    result.x = point.mv_mean;
    result.y = point.eu_mean;
    result.computed = poly(range.coeffs, coeff_count(range), result.x);
    result.deviation = result.y - result.computed;
    return result;
}

double poly_r_squared(const ZERL_CFG &cfg)
{
    const int n = point_count(cfg.long_current);
    double x[MAX_POINTS] = {};
    double y[MAX_POINTS] = {};
    for (int i = 0; i < n; ++i) {
        x[i] = cfg.point_stats[i].eu_mean;
        y[i] = cfg.point_stats[i].mv_mean;
    }
    const POLY_RANGE_RECORD &range = range_in_work(cfg.table);
    return getRSquared(x, y, n, range.coeffs, coeff_count(range));
}
