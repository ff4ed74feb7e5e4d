// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/polycurve.h"

#include <algorithm>

#include "host/operations.h"

namespace
{

int32_t bounded_coeff_count(int count)
{
    return std::clamp<int>(count, 0, POLY_COEFFS);
}

// Fits the points of the type's range and stores the coefficients in the range
// in work. The two ranges differ only for a POLY table whose index is not 0.
int32_t fit_range(ZERL_CFG *cfg, int degree, double *coeffs)
{
    const POLY_RANGE_RECORD &points = range_in_work(cfg->table);
    POLY_RANGE_RECORD &target = cfg->table.poly[range_index(cfg->table)];
    const int n = std::clamp<int>(points.num_points, 0, MAX_POINTS);
    const int32_t coeff_count = fit_coeff_count(degree, n);
    if (g_cal_type_changed != 0) {
        g_cal_type_changed = 0;
        std::copy_n(target.coeffs, coeff_count, coeffs);
    } else {
        polynomialfit(n, coeff_count, points.x, points.y, coeffs);
    }
    target.num_coeffs = static_cast<int16_t>(coeff_count);
    std::fill_n(target.coeffs, 8, 0.0);
    std::copy_n(coeffs, coeff_count, target.coeffs);
    return coeff_count;
}

} // namespace

int32_t fit_coeff_count(int degree, int n)
{
    const int wanted = degree + 1;
    return bounded_coeff_count(n < wanted ? n - 1 : wanted);
}

void update_poly_curve(ZERL_CFG *cfg, POLY_PLOT_CURVE *curve, double *y_min, double *y_max,
                       bool fit, double x_from, double x_to)
{
    *y_min = 999999.0;
    *y_max = -999999.0;
    double coeffs[POLY_COEFFS] = {};
    double out_x[POLY_SAMPLES] = {};
    double out_y[POLY_SAMPLES] = {};
    const int degree = g_poly_order_text.toInt();
    int32_t coeff_count = 0;
    if (fit) {
        coeff_count = fit_range(cfg, degree, coeffs);
    } else {
        coeff_count = bounded_coeff_count(degree + 1);
        std::copy_n(cfg->table.poly[range_index(cfg->table)].coeffs, coeff_count, coeffs);
    }
    computepoints(coeffs, coeff_count, POLY_SAMPLES - 1, out_x, out_y, x_from, x_to);
    curve->count = POLY_SAMPLES;
    for (int i = 0; i < POLY_SAMPLES; ++i) {
        curve->pairs[i] = {out_x[i], out_y[i]};
        *y_min = std::min(*y_min, out_y[i]);
        *y_max = std::max(*y_max, out_y[i]);
    }
}
