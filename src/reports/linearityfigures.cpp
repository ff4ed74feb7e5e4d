// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/linearityfigures.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/functions.h"
#include "host/operations.h"

namespace
{

struct Extremes {
    double min_abs_x = 9999.9;
    double abs_error = -9999.9;
    double rel_error = -999.9;
};

// 459.69 and not 459.67: the figure of the sheet that the dump is compared with.
void set_units(const char *eng_units, LINE_RPT *record)
{
    copyn(__FILE__, __LINE__, record->units_upper, eng_units, sizeof record->units_upper);
    strupr(record->units_upper);
    const char *absolute = record->units_upper;
    record->unit_zero_offset = 0.0;
    if (std::strcmp(record->units_upper, "DEG_F") == 0) {
        record->unit_zero_offset = 459.69;
        absolute = "deg R";
    } else if (std::strcmp(record->units_upper, "DEG_C") == 0) {
        record->unit_zero_offset = 273.15;
        absolute = "Kelvin";
    }
    copyn(__FILE__, __LINE__, record->abs_units, absolute, sizeof record->abs_units);
}

void take_point(const POINT_STATISTICS &point, int i, LINE_RPT *record)
{
    const double offset = record->unit_zero_offset;
    record->x_raw[i] = point.eu_reference;
    record->y_avg_raw[i] = point.eu_mean;
    record->y_std_raw[i] = point.eu_std;
    record->y_min_raw[i] = point.eu_min;
    record->y_max_raw[i] = point.eu_max;
    record->x[i] = point.eu_reference + offset;
    record->y_avg[i] = point.eu_mean + offset;
    record->y_std[i] = point.eu_std + offset;
    record->y_min[i] = point.eu_min + offset;
    record->y_max[i] = point.eu_max + offset;
}

void take_errors(int i, LINE_RPT *record, LinearityColumns *columns, Extremes *extremes)
{
    const double x = record->x[i];
    columns->error[i] = record->y_avg[i] - x;
    columns->abs_error[i] = std::fabs(columns->error[i]);
    if (columns->abs_error[i] > extremes->abs_error)
        extremes->abs_error = columns->abs_error[i];
    record->max_abs_error = extremes->abs_error;
    if (std::fabs(x) >= std::fabs(0.2 * record->x_max)) {
        columns->abs_rel_error[i] = std::fabs(columns->abs_error[i] / x) * 100;
        if (columns->abs_rel_error[i] > extremes->rel_error)
            extremes->rel_error = columns->abs_rel_error[i];
        record->max_rel_error_work = extremes->rel_error;
    } else {
        columns->abs_rel_error[i] = NO_VALUE;
    }
}

// The first row whose magnitude is exactly the one sought, otherwise row 0.
int32_t find_magnitude(const double *values, int rows, double sought)
{
    for (int i = 0; i < rows; ++i) {
        if (std::fabs(values[i]) == sought)
            return i;
    }
    return 0;
}

int32_t find_relative_error(int rows, LinearityFigures *figures)
{
    const LinearityColumns &columns = figures->columns;
    for (int i = 0; i < rows; ++i) {
        if (!nearly_equal(columns.abs_rel_error[i], NO_VALUE) &&
            nearly_equal(columns.abs_rel_error[i], figures->record.max_rel_error_work)) {
            figures->record.max_rel_error_work = columns.error[i];
            return i;
        }
    }
    return 0;
}

void find_extremes(int rows, const Extremes &extremes, LinearityFigures *figures)
{
    LINE_RPT &record = figures->record;
    figures->min_abs_x = extremes.min_abs_x;
    figures->min_index = find_magnitude(record.x, rows, extremes.min_abs_x);
    figures->abs_index = find_magnitude(figures->columns.abs_error, rows, extremes.abs_error);
    figures->rel_index = find_relative_error(rows, figures);
    record.max_abs_error_x = record.x[figures->abs_index];
    record.max_rel_error_x = record.x[figures->rel_index];
    record.max_rel_error =
        figures->columns.error[figures->rel_index] / std::fabs(record.max_rel_error_x);
    record.x_min = record.x[figures->min_index];
}

void fit(int rows, LinearityFigures *figures)
{
    LINE_RPT &record = figures->record;
    LinearityColumns &columns = figures->columns;
    for (int i = 0; i < rows; ++i) {
        const double d = record.x[i] - record.avg_x;
        columns.a1n[i] = d * d;
        columns.a1d[i] = (record.y_avg[i] - record.avg_y) * d;
        figures->sum_a1n += columns.a1n[i];
        figures->sum_a1d += columns.a1d[i];
    }
    record.a1 = figures->sum_a1d / figures->sum_a1n;
    record.a0 = record.avg_y - record.avg_x * record.a1;
    for (int i = 0; i < rows; ++i) {
        const double residual = (record.y_avg[i] - record.a0) - record.a1 * record.x[i];
        const double distance = record.y_avg[i] - record.avg_y;
        columns.s_calc[i] = residual * residual;
        columns.cdd[i] = distance * distance;
        columns.cdn[i] = residual * residual;
        record.see_sum += columns.s_calc[i]; // never reset: the error grows with each run
        figures->sum_cdd += columns.cdd[i];
        figures->sum_cdn += columns.cdn[i];
    }
    const int32_t count = record.entered_points;
    record.see = count > 2 ? std::sqrt(record.see_sum / (count - 2)) : NO_VALUE;
    record.r2 = 1 - figures->sum_cdn / figures->sum_cdd;
}

void set_checks(LINE_RPT *record)
{
    record->intercept_check = std::fabs((record->a1 - 1) * record->x_min + record->a0);
    record->intercept_check_frac = record->intercept_check / record->x_max;
    record->slope_check = record->a1;
    record->see_check_frac =
        nearly_equal(record->see, NO_VALUE) ? NO_VALUE : record->see / record->x_max;
    record->r2_check = record->r2;
}

} // namespace

LinearityFigures linearity_figures(const POINT_STATISTICS *points, int32_t count,
                                   const char *eng_units, const LINE_RPT &carried)
{
    LinearityFigures figures = {};
    LINE_RPT &record = figures.record;
    record = carried;
    record.entered_points = count;
    set_units(eng_units, &record);
    record.x_max = record.unit_zero_offset + record.max_expected_val;

    const int rows = std::clamp<int32_t>(count, 0, MAX_POINTS);
    Extremes extremes;
    double sum_x = 0.0;
    double sum_y = 0.0;
    for (int i = 0; i < rows; ++i) {
        take_point(points[i], i, &record);
        if (extremes.min_abs_x > std::fabs(record.x[i]))
            extremes.min_abs_x = std::fabs(record.x[i]);
        sum_x += record.x[i];
        // Only this sum takes the rounded figure.
        sum_y += rounded_to_8_decimals(record.y_avg[i]);
        take_errors(i, &record, &figures.columns, &extremes);
    }
    find_extremes(rows, extremes, &figures);
    record.avg_x = sum_x / count;
    record.avg_y = sum_y / count;
    fit(rows, &figures);
    set_checks(&record);
    return figures;
}

double rounded_to_8_decimals(double value)
{
    constexpr double SCALE = 1e8;
    // From 2^26 on doubles lie further apart than the decimals, and the value is
    // the double nearest to its own text.
    constexpr double LIMIT = 67108864.0;
    const double magnitude = std::fabs(value);
    if (!(magnitude < LIMIT))
        return value;
    // The scaled value exactly: product and rest. Whole numbers below 2^53 over
    // 1e8 divide to the nearest double, which is what reading the text gives.
    const double product = magnitude * SCALE;
    const double rest = std::fma(magnitude, SCALE, -product);
    const double whole = std::floor(product);
    const double above_half = (product - whole - 0.5) + rest;
    const double rounded = (above_half >= 0.0 ? whole + 1.0 : whole) / SCALE;
    return std::copysign(rounded, value);
}

bool intercept_passes(double intercept_check_frac)
{
    return 0.01 >= intercept_check_frac;
}

bool slope_passes(double slope_check)
{
    const double rounded = std::round(slope_check);
    return rounded >= 0.99 && 1.01 >= rounded;
}

bool see_passes(double see_check_frac)
{
    return 0.01 > see_check_frac; // strict, unlike the intercept's
}

bool r2_passes(double r2_check)
{
    return std::round(r2_check) >= 0.998;
}
