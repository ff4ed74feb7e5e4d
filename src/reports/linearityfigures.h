// SPDX-License-Identifier: GPL-3.0-or-later
//
// The arithmetic of a linearity verification (40 CFR 1065.307 and the least
// squares of 40 CFR 1065.602): values in, values out.
#ifndef REPORTS_LINEARITYFIGURES_H
#define REPORTS_LINEARITYFIGURES_H

#include <cstdint>

#include "reports/linearity.h"

// One value a point, named as the columns of the dump. a1n holds the slope's
// denominator and a1d its numerator.
struct LinearityColumns {
    double s_calc[MAX_POINTS]; // squared residual
    double cdd[MAX_POINTS];    // squared distance of y from its mean
    double cdn[MAX_POINTS];    // squared residual
    double a1n[MAX_POINTS];
    double a1d[MAX_POINTS];
    double error[MAX_POINTS]; // measured minus reference
    double abs_error[MAX_POINTS];
    double abs_rel_error[MAX_POINTS]; // percent; NO_VALUE: excluded
};

struct LinearityFigures {
    LINE_RPT record;
    LinearityColumns columns;
    double sum_a1n;
    double sum_a1d;
    double sum_cdd;
    double sum_cdn;
    double min_abs_x;
    int32_t min_index; // row of x_min
    int32_t abs_index; // row of the largest absolute error
    int32_t rel_index; // row of the largest relative error
};

// Figures of `count` points (engineering units; at most the first 64 are read,
// none when count is 0 or less). eng_units is char[16]. What the verification
// does not overwrite comes from `carried`, the record that the last one left:
// see_sum goes on growing, and with no points the old x[0] stays in use. Missing
// values come out as NaN or NO_VALUE, never as a fault.
LinearityFigures linearity_figures(const POINT_STATISTICS *points, int32_t count,
                                   const char *eng_units, const LINE_RPT &carried);

// The value rounded to 8 decimals, exact ties away from zero: what printing it
// with 8 decimals in fixed notation and reading that back gives, bit for bit.
double rounded_to_8_decimals(double value);

// Whether the four checks pass. NaN never does. The slope and r2 are rounded to
// whole numbers before they are compared with their limits.
bool intercept_passes(double intercept_check_frac);
bool slope_passes(double slope_check);
bool see_passes(double see_check_frac);
bool r2_passes(double r2_check);

#endif
