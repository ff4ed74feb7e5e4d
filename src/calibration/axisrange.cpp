// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/axisrange.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/functions.h"

namespace
{

struct Extent {
    double min;
    double max;
};

// A value that is not a number is neither greater nor smaller: it is taken as
// both ends.
Extent scan(const double *values, int32_t n)
{
    if (n < 1)
        return {0.0, 0.0};
    Extent extent = {values[0], values[0]};
    for (int32_t i = 1; i < n; ++i) {
        if (!(values[i] > extent.min))
            extent.min = values[i];
        if (!(values[i] < extent.max))
            extent.max = values[i];
    }
    return extent;
}

// A range that lies far from zero on one side, seen from its other end, starts
// at zero.
void pull_to_zero(AXIS_RANGE *axis)
{
    const bool above = axis->min > 0.0 && axis->max > 0.0;
    const bool below = axis->min < 0.0 && axis->max < 0.0;
    if (!above && !below)
        return;
    if (std::fabs(axis->max) / std::fabs(axis->min) > 5.0)
        axis->min = 0.0;
    else if (std::fabs(axis->min) / std::fabs(axis->max) > 5.0)
        axis->max = 0.0;
}

// raw as the next round number: 2, 4, 5, 6, 8 or 10 times a power of ten.
double round_step(double raw)
{
    static const double ladder[] = {2.0, 4.0, 5.0, 6.0, 8.0, 10.0};
    int exponent = 0;
    while (raw < 1.0) {
        raw *= 10.0;
        --exponent;
    }
    while (raw > 10.0) {
        raw /= 10.0;
        ++exponent;
    }
    const double *entry = std::find_if(std::begin(ladder), std::end(ladder) - 1,
                                       [raw](double candidate) { return raw <= candidate; });
    return std::pow(10.0, exponent) * *entry;
}

// The whole number of a quotient, cut to its low 16 bits.
int16_t low_16_bits(double quotient)
{
    if (!(std::fabs(quotient) < 9.0e18))
        return 0;
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<int64_t>(quotient)));
}

} // namespace

void reset_axis_range(AXIS_RANGE *axis)
{
    std::memset(axis, 0, sizeof *axis);
    axis->divisions = 5;
}

void rescale_axis_range(AXIS_RANGE *axis)
{
    if (nearly_equal(axis->min, axis->max)) {
        axis->min -= 1.0;
        axis->max += 1.0;
    }
    pull_to_zero(axis);
    const double span = (axis->max - axis->min) * 1.1;
    if (axis->divisions == 0)
        axis->divisions = 2;
    const int steps = axis->divisions - 1;
    const double raw = span / steps;
    axis->step_unit = 1.0; // nothing reads it back
    if (!std::isfinite(raw) || !(raw > 0.0))
        return; // no round range around values that are not numbers
    const double step = round_step(raw);
    if (axis->min == 0.0) {
        axis->max = std::copysign(step * steps, axis->max);
    } else if (axis->max == 0.0) {
        axis->min = std::copysign(step * steps, axis->min);
    } else {
        const double half = step * 0.5;
        const int16_t k = low_16_bits(std::fabs(axis->min) / half);
        axis->min = axis->min < 0.0 ? -(k + 1) * half : k * half;
        axis->max = step * steps + axis->min;
    }
}

int32_t update_axis_range(AXIS_RANGE *axis, const double *values, int32_t n)
{
    AXIS_RANGE before;
    std::memcpy(&before, axis, sizeof before);
    const Extent seen = scan(values, n);
    if (before.min == 0.0 && before.max == 0.0) {
        axis->min = seen.min;
        axis->max = seen.max;
    } else {
        axis->min = std::min(seen.min, before.min);
        axis->max = std::max(seen.max, before.max);
    }
    if (!nearly_equal(axis->min, before.min) || !nearly_equal(axis->max, before.max))
        rescale_axis_range(axis);
    if (std::memcmp(axis, &before, sizeof before) == 0)
        return 0;
    axis->changed = 1;
    return 1;
}
