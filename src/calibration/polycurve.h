// SPDX-License-Identifier: GPL-3.0-or-later
//
// The live polynomial fit and its curve.
#ifndef CALIBRATION_POLYCURVE_H
#define CALIBRATION_POLYCURVE_H

#include "frame/zerl_cfg.h"

// Coefficients that a fit of the degree on show through n points uses: degree
// + 1, but n - 1 when there are fewer points than that; at most the 18 that a
// range holds, at least 0.
int32_t fit_coeff_count(int degree, int n);

// Fits the range in work (or, without fit, takes its stored coefficients),
// stores the coefficients in the record and samples the polynomial from x_from
// to x_to (mV) into 101 pairs. *y_min and *y_max receive the extent of the
// samples, engineering units. A set g_cal_type_changed takes the stored
// coefficients once and is cleared.
void update_poly_curve(ZERL_CFG *cfg, POLY_PLOT_CURVE *curve, double *y_min, double *y_max,
                       bool fit, double x_from, double x_to);

#endif
