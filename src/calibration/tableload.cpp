// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/tableload.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "calibration/axisrange.h"
#include "calibration/plotcurve.h"
#include "calibration/tablestore.h"
#include "frame/functions.h"
#include "frame/relaxed.h"
#include "host/operations.h"
#include "sensor/tolerances.h"

namespace
{

struct Pair {
    double x;
    double y;
};

bool before(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return !std::isnan(a) && std::isnan(b);
    return a < b;
}

double median(double a, double b, double c)
{
    if (before(b, a))
        std::swap(a, b);
    if (before(c, b))
        b = before(c, a) ? a : c;
    return b;
}

// Quicksort of [first, last] with the median of first, middle and last element
// as pivot.
void quicksort(Pair *pairs, int first, int last)
{
    if (first >= last)
        return;
    const double pivot = median(pairs[first].x, pairs[first + (last - first) / 2].x, pairs[last].x);
    int low = first;
    int high = last;
    while (low <= high) {
        while (before(pairs[low].x, pivot))
            ++low;
        while (before(pivot, pairs[high].x))
            --high;
        if (low <= high)
            std::swap(pairs[low++], pairs[high--]);
    }
    quicksort(pairs, first, high);
    quicksort(pairs, low, last);
}

// A straight line through poly[0]'s points becomes the coefficients of target.
void fit_straight_line(const POLY_RANGE_RECORD &points, POLY_RANGE_RECORD *target)
{
    double buffer[MAX_POINTS] = {};
    const int n = points_of(points);
    polynomialfit(n, 2, points.x, points.y, buffer);
    store_line_coefficients(target, buffer, n);
    target->num_coeffs = static_cast<int16_t>(n);
}

void compute_scaled(ZERL_CFG *cfg)
{
    show_information("Table will be converted to an INTERP table on save.\n"
                     "The newly read table is a SCALED table type");
    convert_scaled_table(&cfg->table);
    compute_long_table(&cfg->table, &cfg->long_current);
}

void compute_interp(ZERL_CFG *cfg)
{
    POLY_RANGE_RECORD &range = cfg->table.poly[0];
    fit_straight_line(range, &range);
    sort_points(range.x, range.y, points_of(range));
    compute_long_table(&cfg->table, &cfg->long_current);
}

// A stored polynomial is never fitted again here.
void compute_poly(ZERL_CFG *cfg)
{
    POLY_RANGE_RECORD &range = cfg->table.poly[0];
    if (range.num_coeffs == 0)
        fit_straight_line(range, &cfg->table.poly[range_index(cfg->table)]);
    sort_points(range.x, range.y, points_of(range));
    compute_long_table(&cfg->table, &cfg->long_current);
}

// The lowest range in use is put in work; a table with none builds nothing.
void compute_poly_range(ZERL_CFG *cfg)
{
    for (int16_t r = 0; r < POLY_RANGES; ++r) {
        if (cfg->table.poly[r].num_coeffs <= 0)
            continue;
        cfg->table.poly_range_index = r;
        std::memcpy(&cfg->long_current, &cfg->table.poly[r], sizeof cfg->table.poly[r]);
        compute_long_table(&cfg->table, &cfg->long_current);
        return;
    }
}

} // namespace

void sort_points(double *x, double *y, int n)
{
    Pair pairs[MAX_POINTS];
    n = std::clamp<int>(n, 0, MAX_POINTS);
    for (int i = 0; i < n; ++i)
        pairs[i] = {x[i], y[i]};
    quicksort(pairs, 0, n - 1);
    for (int i = 0; i < n; ++i) {
        x[i] = pairs[i].x;
        y[i] = pairs[i].y;
    }
}

void convert_scaled_table(TABLE_RECORD *table)
{
    POLY_RANGE_RECORD &range = table->poly[0];
    const double scale = range.x[0];
    table->table_type = TABLE_INTERP;
    range.num_points = 2;
    range.x[0] = 0.0;
    range.y[0] = 0.0;
    range.x[1] = 100.0;
    range.y[1] = scale * 100.0;
}

void store_line_coefficients(POLY_RANGE_RECORD *range, const double *buffer, int n)
{
    // As bytes of the whole record, since the copy leaves the coefficient array.
    const std::size_t bytes =
        static_cast<std::size_t>(std::clamp<int>(n, 0, MAX_POINTS)) * sizeof(double);
    std::memcpy(reinterpret_cast<unsigned char *>(range) + offsetof(POLY_RANGE_RECORD, coeffs),
                buffer, bytes);
}

int32_t load_coefficients(const POLY_RANGE_RECORD &range, double (&coeffs)[MAX_POINTS])
{
    const int32_t count = std::clamp<int32_t>(range.num_coeffs, 0, MAX_POINTS);
    std::memcpy(coeffs,
                reinterpret_cast<const unsigned char *>(&range) +
                    offsetof(POLY_RANGE_RECORD, coeffs),
                static_cast<std::size_t>(count) * sizeof(double));
    return count;
}

int32_t load_channel_table(ZERL_CFG *cfg)
{
    std::memset(&cfg->table, 0, sizeof cfg->table);
    const int32_t status = read_channel_table(cfg->tbl_path, &cfg->table);
    if (is_failure(status))
        return status;
    switch (cfg->table.table_type) {
    case TABLE_SCALED:
        compute_scaled(cfg);
        break;
    case TABLE_INTERP:
        compute_interp(cfg);
        break;
    case TABLE_POLY:
        compute_poly(cfg);
        break;
    case TABLE_POLY_RANGE:
        compute_poly_range(cfg);
        break;
    default:
        break;
    }
    return status;
}

void refresh_long_table(ZERL_CFG *cfg)
{
    LONG_TABLE fresh = cfg->long_current; // offered points stay behind the counted ones
    compute_long_table(&cfg->table, &fresh);
    relaxed_copy(cfg->long_current, fresh);
}

void take_table_into_work(ZERL_CFG *cfg)
{
    reset_axis_range(&cfg->x_axis_range);
    reset_axis_range(&cfg->y_axis_range);
    clear_unused_points(&cfg->long_current);
    cfg->plot_previous = cfg->plot_current;
    cfg->long_previous = cfg->long_current;
    mua_instance_index = 0;
    cfg->table.worst_status = 0;
    load_tolerances_and_biases(cfg);
    g_num_points = cfg->long_current.num_points;
    relaxed_store(g_monitor_run, static_cast<uint16_t>(1));
    cfg->redraw_all = 1;
    cfg->table_dirty = 0;
}
