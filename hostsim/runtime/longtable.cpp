// SPDX-License-Identifier: GPL-3.0-or-later
//
// The long table: the points of a calibration, and reading between them.
#include "host/operations.h"

#include <algorithm>
#include <cmath>

namespace
{

int clamp_count(int count)
{
    return std::clamp(count, 0, static_cast<int>(TABLE_POINTS));
}

const POLY_RANGE_RECORD &range_of(const TABLE_RECORD &table)
{
    const int index = table.table_type == TABLE_POLY_RANGE ? table.poly_range_index : 0;
    return table.poly[std::clamp(index, 0, POLY_RANGES - 1)];
}

// The straight line through points i and i + 1; level where both have the same x.
void set_segment(LONG_TABLE &table, int i)
{
    const double run = table.x[i + 1] - table.x[i];
    table.slope[i] = run == 0.0 ? 0.0 : (table.y[i + 1] - table.y[i]) / run;
    table.intercept[i] = table.y[i] - table.slope[i] * table.x[i];
}

// Value at x of the line through points i and i + 1: exactly the point's y at
// either point, and the earlier point's y where both have the same x.
double on_segment(const LONG_TABLE &table, int i, double x)
{
    const double x0 = table.x[i], x1 = table.x[i + 1];
    const double y0 = table.y[i], y1 = table.y[i + 1];
    if (x == x0 || x0 == x1 || y0 == y1)
        return y0;
    if (x == x1)
        return y1;
    // The product first, since round numbers then give round results; where it
    // leaves the range of a double, the quotient first.
    const double product = (x - x0) * (y1 - y0);
    if (std::isnormal(product))
        return y0 + product / (x1 - x0);
    return y0 + (x - x0) / (x1 - x0) * (y1 - y0);
}

// The first segment that holds x, or else the first or last one, whichever end
// of the table is nearer: above all points the larger end, below them the
// smaller one. count is at least 2.
int segment_at(const LONG_TABLE &table, int count, double x)
{
    for (int i = 0; i + 1 < count; ++i) {
        const double x0 = table.x[i], x1 = table.x[i + 1];
        if ((x0 <= x && x <= x1) || (x1 <= x && x <= x0))
            return i;
    }
    const double first = table.x[0], last = table.x[count - 1];
    const bool last_is_nearer = x > first ? last > first : last < first;
    return last_is_nearer ? count - 2 : 0;
}

double interpolate(uint16_t *hint, const LONG_TABLE *table, double x)
{
    const int count = table ? clamp_count(table->num_points) : 0;
    if (count == 0)
        return 0.0;
    if (count == 1)
        return table->y[0];
    if (std::isnan(x))
        return x;
    const int segment = segment_at(*table, count, x);
    if (hint)
        *hint = static_cast<uint16_t>(segment);
    return on_segment(*table, segment, x);
}

} // namespace

// Fills x, y, slope and intercept of the points and num_points. Slots of x and
// y behind the points stay as they are, since the callers keep offered points
// there; slope and intercept are 0 there. Counts and index out of range are
// taken as the nearest valid ones. Returns 0, or -1 for a null record.
extern "C" int32_t compute_long_table(const TABLE_RECORD *table, LONG_TABLE *long_table)
{
    if (!table || !long_table)
        return -1;
    const POLY_RANGE_RECORD &range = range_of(*table);
    const int count = clamp_count(range.num_points);
    long_table->num_points = static_cast<int16_t>(count);
    std::copy_n(range.x, count, long_table->x);
    std::copy_n(range.y, count, long_table->y);
    for (int i = 0; i + 1 < count; ++i)
        set_segment(*long_table, i);
    if (count == 1) {
        long_table->slope[0] = 0.0;
        long_table->intercept[0] = long_table->y[0];
    } else if (count > 1) {
        long_table->slope[count - 1] = long_table->slope[count - 2];
        long_table->intercept[count - 1] = long_table->intercept[count - 2];
    }
    std::fill(long_table->slope + count, long_table->slope + TABLE_POINTS, 0.0);
    std::fill(long_table->intercept + count, long_table->intercept + TABLE_POINTS, 0.0);
    return 0;
}

// Reads x and y alone: a capture over a point changes these and leaves slope
// and intercept behind. At most 63 segments are looked through from the first,
// so *hint, which may be null, is only told the segment, and what it held
// before plays no part. No points give 0, one gives its y, x that is not a
// number gives NaN otherwise.
extern "C" double linear_interp(uint16_t *hint, const LONG_TABLE *long_table, int32_t, double x)
{
    return interpolate(hint, long_table, x);
}

extern "C" double linear_interp_long(uint16_t *hint, const LONG_TABLE *long_table, int32_t,
                                     double x)
{
    return interpolate(hint, long_table, x);
}
