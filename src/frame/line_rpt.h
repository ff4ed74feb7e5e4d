// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one record of a linearity verification. The small files behind a report
// write their part of it, the figures theirs, and the report reads all.
#ifndef FRAME_LINE_RPT_H
#define FRAME_LINE_RPT_H

#include <cstdint>

#include "frame/zerl_cfg.h"

// Stands for a value that does not exist.
constexpr double NO_VALUE = -999.9;

// Results of the last verification. "Raw" values are as captured, in the
// channel's engineering units; their neighbours have unit_zero_offset added and
// are in abs_units. All zero when the program starts and never cleared: a value
// stays until it is overwritten, and see_sum and max_rel_error_work are
// carried from one verification to the next.
struct LINE_RPT {
    double x_raw[MAX_POINTS]; // reference value
    double x[MAX_POINTS];
    double y_avg_raw[MAX_POINTS]; // measured value: mean, deviation, extremes
    double y_avg[MAX_POINTS];
    double y_std_raw[MAX_POINTS];
    double y_std[MAX_POINTS]; // shifted like the others, on purpose
    double y_min_raw[MAX_POINTS];
    double y_min[MAX_POINTS];
    double y_max_raw[MAX_POINTS];
    double y_max[MAX_POINTS];
    int32_t entered_points;
    char units_upper[16];
    double unit_zero_offset;
    char abs_units[16];
    double x_min;            // the reference of smallest magnitude, with its sign
    double x_max;            // unit_zero_offset + max_expected_val
    double max_expected_val; // entered by the technician
    double avg_x;
    double avg_y;
    double a0;      // intercept
    double a1;      // slope
    double see_sum; // squared residuals of all verifications of this run
    double see;     // standard error of estimate, or NO_VALUE
    double r2;
    double max_abs_error;
    int32_t abs_error_ref_index; // nothing sets these two: the dump shows point 0
    int32_t rel_error_ref_index;
    double max_rel_error_work; // percent while searching, then the worst point's error
    double max_rel_error;      // signed fraction
    double max_abs_error_x;
    double max_rel_error_x;
    double intercept_check;
    double intercept_check_frac;
    double slope_check;
    double see_check_frac; // or NO_VALUE
    double r2_check;
    double validation_nominal_range_min; // kept for the measurement system; not used here
    double validation_nominal_range_max;
    double min_expected_val;
    char ws_qie_number[80]; // working standard
    char ws_make[80];
    char ws_model[80];
    char ws_cal_date[80];
    char ws_serial_no[80];
    char ws_range[80];
};

extern LINE_RPT g_line_rpt;

#endif
