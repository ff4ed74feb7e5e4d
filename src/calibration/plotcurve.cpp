// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/plotcurve.h"

#include <algorithm>

void fill_plot_curve(const LONG_TABLE *long_table, PLOT_CURVE *curve)
{
    const int count = point_count(*long_table);
    PLOT_PAIR last = {0.0, 0.0};
    for (int i = 0; i < MAX_POINTS; ++i) {
        if (i < count)
            last = {long_table->x[i], long_table->y[i]};
        curve->pairs[i] = last;
    }
    curve->count = MAX_POINTS;
}

void clear_unused_points(LONG_TABLE *long_table)
{
    const int count = point_count(*long_table);
    std::fill(long_table->x + count, long_table->x + MAX_POINTS, 0.0);
    std::fill(long_table->y + count, long_table->y + MAX_POINTS, 0.0);
}
