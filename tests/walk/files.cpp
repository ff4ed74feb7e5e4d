// SPDX-License-Identifier: GPL-3.0-or-later
#include "walk/files.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace walk
{

Record stored(const TABLE_RECORD &record, int save_type)
{
    auto kept = std::make_shared<TABLE_RECORD>(record);
    if (save_type >= 0)
        kept->last_save_type = static_cast<uint16_t>(save_type);
    for (int r = 0; r < POLY_RANGES; ++r) {
        // A point table's first range carries its count of points there.
        const int16_t limit =
            record.table_type == TABLE_INTERP && r == 0 ? TABLE_POINTS : POLY_COEFFS;
        kept->poly[r].num_coeffs = std::clamp<int16_t>(kept->poly[r].num_coeffs, 0, limit);
        kept->poly[r].num_points = std::clamp<int16_t>(kept->poly[r].num_points, 0, TABLE_POINTS);
    }
    return kept;
}

namespace
{

using Pair = std::pair<double, double>;

// Points of equal x may change places, so the order of the steps is the
// program's: median of first, middle and last as pivot, both ends inward.
void quicksort(std::vector<Pair> &pairs, int first, int last)
{
    if (first >= last)
        return;
    double pivots[3] = {pairs[static_cast<std::size_t>(first)].first,
                        pairs[static_cast<std::size_t>(first + (last - first) / 2)].first,
                        pairs[static_cast<std::size_t>(last)].first};
    std::sort(pivots, pivots + 3);
    int low = first;
    int high = last;
    while (low <= high) {
        while (pairs[static_cast<std::size_t>(low)].first < pivots[1])
            ++low;
        while (pairs[static_cast<std::size_t>(high)].first > pivots[1])
            --high;
        if (low <= high)
            std::swap(pairs[static_cast<std::size_t>(low++)],
                      pairs[static_cast<std::size_t>(high--)]);
    }
    quicksort(pairs, first, high);
    quicksort(pairs, low, last);
}

} // namespace

void sort_by_mv(POLY_RANGE_RECORD *range)
{
    std::vector<Pair> pairs;
    for (int i = 0; i < range->num_points; ++i)
        pairs.emplace_back(range->x[i], range->y[i]);
    quicksort(pairs, 0, static_cast<int>(pairs.size()) - 1);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        range->x[i] = pairs[i].first;
        range->y[i] = pairs[i].second;
    }
}

} // namespace walk
