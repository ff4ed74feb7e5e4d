// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/linefit.h"

#include "calibration/plotcurve.h"

double fit_line(int32_t n, const double *x, const double *y, double *slope, double *intercept,
                double *r_squared, double at)
{
    const double count = n;
    double sx = 0.0;
    double sy = 0.0;
    double sxx = 0.0;
    double syy = 0.0;
    double sxy = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        sx += x[i];
        sy += y[i];
        sxx += x[i] * x[i];
        syy += y[i] * y[i];
        sxy += x[i] * y[i];
    }
    const double d = count * sxx - sx * sx;
    *slope = (count * sxy - sx * sy) / d;
    *intercept = (sy * sxx - sx * sxy) / d;
    const double covariance = sxy - sx * sy / count;
    *r_squared = covariance * covariance / (sxx - sx * sx / count) / (syy - sy * sy / count);
    return *slope * at + *intercept;
}

void compute_long_fit(const LONG_TABLE *long_in, LONG_TABLE *long_out)
{
    const int count = point_count(*long_in);
    long_out->num_points = long_in->num_points;
    double r_squared = 0.0;
    // One regression a point, deliberately the simple way: 64 by 64 at most.
    for (int i = 0; i < count; ++i) {
        long_out->x[i] = long_in->x[i];
        long_out->y[i] = fit_line(count, long_in->x, long_in->y, &long_out->slope[i],
                                  &long_out->intercept[i], &r_squared, long_in->x[i]);
    }
    for (int i = count; i < MAX_POINTS; ++i) {
        long_out->x[i] = long_in->x[i];
        long_out->y[i] = long_in->y[i];
    }
}
