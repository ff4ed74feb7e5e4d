// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is done with a polynomial once it is fitted. Coefficients stand lowest
// power first.
#include "host/operations.h"

#include <gsl/gsl_poly.h>

#include <algorithm>
#include <cmath>

namespace
{

// Exponent that brings the largest magnitude among the values and the
// residuals to about 1, so that no square leaves the range of a double.
int common_exponent(const double *x, const double *y, int32_t n, const double *coeffs,
                    int32_t coeff_count)
{
    double largest = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        const double residual = y[i] - poly(coeffs, coeff_count, x[i]);
        largest = std::max({largest, std::fabs(y[i]), std::fabs(residual)});
    }
    return largest > 0.0 && std::isfinite(largest) ? std::ilogb(largest) : 0;
}

} // namespace

// Horner's scheme; 0 without coefficients.
extern "C" double poly(const double *coeffs, int32_t coeff_count, double x)
{
    return coeff_count > 0 ? gsl_poly_eval(coeffs, coeff_count, x) : 0.0;
}

// out_x and out_y hold intervals + 1 samples, in equal steps from "from"; the
// last one is exactly at "to". Without intervals there is the one at "from".
extern "C" void computepoints(const double *coeffs, int32_t coeff_count, int32_t intervals,
                              double *out_x, double *out_y, double from, double to)
{
    const int32_t last = std::max(intervals, 0);
    for (int32_t i = 0; i <= last; ++i) {
        if (i == 0)
            out_x[i] = from;
        else if (i == last)
            out_x[i] = to;
        else
            out_x[i] = from + (to - from) * i / last;
        out_y[i] = poly(coeffs, coeff_count, out_x[i]);
    }
}

// 1 less the residuals' sum of squares over that of the values about their
// mean. Where all values are equal there is nothing to explain: 1 when the
// polynomial meets each of them, otherwise 0. 0 without pairs.
extern "C" double getRSquared(const double *x, const double *y, int32_t n, const double *coeffs,
                              int32_t coeff_count)
{
    if (n <= 0)
        return 0.0;
    const int exponent = -common_exponent(x, y, n, coeffs, coeff_count);
    long double mean = 0.0L;
    for (int32_t i = 0; i < n; ++i)
        mean += (std::ldexp(y[i], exponent) - mean) / (i + 1);
    long double residuals = 0.0L;
    long double values = 0.0L;
    for (int32_t i = 0; i < n; ++i) {
        const long double residual = std::ldexp(y[i] - poly(coeffs, coeff_count, x[i]), exponent);
        const long double value = std::ldexp(y[i], exponent) - mean;
        residuals += residual * residual;
        values += value * value;
    }
    const bool equal = std::equal(y + 1, y + n, y);
    if (equal && !std::isnan(y[0]))
        return residuals == 0.0L ? 1.0 : 0.0;
    return static_cast<double>(1.0L - residuals / values);
}
