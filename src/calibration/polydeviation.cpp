// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/polydeviation.h"

#include "calibration/tableload.h"
#include "host/operations.h"

PointDeviation deviation_of(const POINT_STATISTICS &point, const POLY_RANGE_RECORD &range)
{
    PointDeviation result = {};
    result.x = point.mv_mean;
    result.y = point.eu_mean;
    double coeffs[MAX_POINTS] = {};
    const int32_t coeff_count = load_coefficients(range, coeffs);
    result.computed = poly(coeffs, coeff_count, result.x);
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
    double coeffs[MAX_POINTS] = {};
    const int32_t coeff_count = load_coefficients(range_in_work(cfg.table), coeffs);
    return getRSquared(x, y, n, coeffs, coeff_count);
}
