// SPDX-License-Identifier: GPL-3.0-or-later
//
// The least-squares polynomial. A calibration is kept for years and compared
// with its successor coefficient by coefficient, so each coefficient is the
// exact solution for the given doubles, rounded once; a library's fit in plain
// doubles loses up to eight digits on ordinary load cell data. The points are
// centred and scaled by powers of two, which loses nothing, fitted in
// polynomials orthogonal over the points with about 32 digits, and the result
// is expanded into powers.
#include "host/operations.h"

#include <gsl/gsl_sort.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>

#include "hostsim/runtime/polybasis.h"

namespace
{

using polybasis::Degree;
using polybasis::Lanes;
using polybasis::LANES;
using polybasis::Samples;
using polybasis::Scalar;

// A coefficient that is within its rounding and whose share of the fit, over
// the points, is below this part of the values is the rounding of a zero.
constexpr double UNSEEN = 0x1p-60;

// Buffers for one fit: on the stack for a table's points and coefficients, so
// that the live fit allocates nothing, otherwise from the heap.
struct Buffers {
    // False when there is no memory for a fit of that size.
    bool reserve(std::size_t points, std::size_t count);
    Samples samples(std::size_t count) const;
    polybasis::Powers powers(std::size_t count) const;

    std::size_t blocks = 0;
    Lanes *lanes = own_lanes.data();
    Degree *degrees = own_degrees.data();
    Scalar *scalars = own_scalars.data();
    double *noise = own_noise.data();
    double *sorted = own_sorted.data();

private:
    std::array<Lanes, TABLE_POINTS / LANES *(4 + 2 * POLY_COEFFS)> own_lanes;
    std::array<Degree, POLY_COEFFS> own_degrees;
    std::array<Scalar, 3 * POLY_COEFFS> own_scalars;
    std::array<double, 3 * POLY_COEFFS> own_noise;
    std::array<double, TABLE_POINTS> own_sorted;
    std::unique_ptr<Lanes[]> heap_lanes;
    std::unique_ptr<Degree[]> heap_degrees;
    std::unique_ptr<Scalar[]> heap_scalars;
    std::unique_ptr<double[]> heap_noise;
    std::unique_ptr<double[]> heap_sorted;
};

bool Buffers::reserve(std::size_t points, std::size_t count)
{
    blocks = (points + LANES - 1) / LANES;
    if (points <= TABLE_POINTS && count <= POLY_COEFFS)
        return true;
    heap_lanes.reset(new (std::nothrow) Lanes[blocks * (4 + 2 * count)]);
    heap_degrees.reset(new (std::nothrow) Degree[count]);
    heap_scalars.reset(new (std::nothrow) Scalar[3 * count]);
    heap_noise.reset(new (std::nothrow) double[3 * count]);
    heap_sorted.reset(new (std::nothrow) double[points]);
    lanes = heap_lanes.get();
    degrees = heap_degrees.get();
    scalars = heap_scalars.get();
    noise = heap_noise.get();
    sorted = heap_sorted.get();
    return lanes && degrees && scalars && noise && sorted;
}

Samples Buffers::samples(std::size_t count) const
{
    Lanes *basis = lanes + 4 * blocks;
    return {blocks,
            lanes,
            lanes + blocks,
            lanes + 2 * blocks,
            lanes + 3 * blocks,
            basis,
            basis + count * blocks};
}

polybasis::Powers Buffers::powers(std::size_t count) const
{
    return {scalars, noise, scalars + count, noise + count};
}

// Multiplies by a power of two in two steps, since one factor alone may be out
// of a double's range.
class PowerOfTwo
{
public:
    explicit PowerOfTwo(int exponent)
        : first(std::ldexp(1.0, exponent / 2)), second(std::ldexp(1.0, exponent - exponent / 2))
    {
    }
    double operator*(double value) const { return value * first * second; }

private:
    double first;
    double second;
};

struct Range {
    double low;
    double high;
};

// The values' range; false when one of them is not finite.
bool find_range(const double *values, std::size_t n, Range &range)
{
    range = {values[0], values[0]};
    double trace = 0.0; // becomes NaN with the first value that is not finite
    for (std::size_t i = 0; i < n; ++i) {
        trace += values[i] * 0.0;
        range.low = std::min(range.low, values[i]);
        range.high = std::max(range.high, values[i]);
    }
    return trace == 0.0;
}

// Exponent that brings a magnitude into [1, 2).
int exponent_of(double magnitude)
{
    return magnitude > 0.0 ? std::ilogb(magnitude) : 0;
}

// How many of the positions differ, counted no further than limit.
std::size_t count_distinct(const double *x, std::size_t n, std::size_t limit, double *sorted)
{
    std::size_t rising = 1;
    std::size_t falling = 1;
    for (std::size_t i = 1; i < n; ++i) {
        rising += x[i] > x[i - 1];
        falling += x[i] < x[i - 1];
    }
    if (rising == n || falling == n)
        return std::min(n, limit);
    std::copy_n(x, n, sorted);
    gsl_sort(sorted, 1, n);
    std::size_t distinct = 1;
    for (std::size_t i = 1; i < n && distinct < limit; ++i)
        distinct += sorted[i] > sorted[i - 1];
    return distinct;
}

// How the points were brought to size: u = x * 2^-x_exponent - centre.
struct Scale {
    int x_exponent;
    int y_exponent;
    double centre;
    double reach; // largest magnitude of x * 2^-x_exponent
    double high;  // largest magnitude of y * 2^-y_exponent
};

Scale find_scale(const Range &x, const Range &y)
{
    Scale scale{};
    const double reach = std::max(std::fabs(x.low), std::fabs(x.high));
    const double half = x.high / 2 - x.low / 2;
    scale.x_exponent = exponent_of(half > 0.0 ? half : reach);
    const PowerOfTwo factor(-scale.x_exponent);
    scale.centre = factor * x.low / 2 + factor * x.high / 2;
    scale.reach = factor * reach;
    const double high = std::max(std::fabs(y.low), std::fabs(y.high));
    scale.y_exponent = exponent_of(high);
    scale.high = PowerOfTwo(-scale.y_exponent) * high;
    return scale;
}

void load(const Samples &s, const Scale &scale, const double *x, const double *y, std::size_t n)
{
    const PowerOfTwo x_factor(-scale.x_exponent);
    const PowerOfTwo y_factor(-scale.y_exponent);
    for (std::size_t i = 0; i < s.blocks; ++i) {
        s.position_hi[i] = s.position_lo[i] = Lanes{};
        s.residual_hi[i] = s.residual_lo[i] = Lanes{};
        s.basis_hi[i] = s.basis_lo[i] = Lanes{};
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t block = i / LANES;
        const std::size_t lane = i % LANES;
        const Scalar position = doubledouble::two_sum(x_factor * x[i], -scale.centre);
        s.position_hi[block][lane] = position.hi;
        s.position_lo[block][lane] = position.lo;
        s.residual_hi[block][lane] = y_factor * y[i];
        s.basis_hi[block][lane] = 1.0;
    }
}

// Rounds to the given doubles, in the units of the points.
void store_powers(const polybasis::Powers &fit, std::size_t count, const Scale &scale,
                  double *store)
{
    double share = 1.0; // largest value of the power over the points
    for (std::size_t k = 0; k < count; ++k) {
        const double value = fit.powers[k].hi;
        const double size = std::fabs(value);
        const bool nothing =
            size == 0.0 || (size <= fit.noise[k] && size * share <= UNSEEN * scale.high);
        const double exponent =
            scale.y_exponent - static_cast<double>(k) * static_cast<double>(scale.x_exponent);
        // Beyond this the result is infinite or zero in any case.
        const double bounded = std::clamp(exponent, -10000.0, 10000.0);
        store[k] = nothing ? 0.0 : std::ldexp(value, static_cast<int>(bounded));
        share *= scale.reach;
    }
}

int32_t fit_points(std::size_t n, std::size_t wanted, const double *x, const double *y,
                   double *store)
{
    Range x_range{};
    Range y_range{};
    const bool finite = find_range(x, n, x_range) && find_range(y, n, y_range);
    if (!finite) {
        std::fill_n(store, wanted, std::numeric_limits<double>::quiet_NaN());
        return -1;
    }
    std::fill_n(store, wanted, 0.0);
    const std::size_t limit = std::min(n, wanted);
    Buffers buffers;
    if (!buffers.reserve(n, limit))
        return -1;
    const std::size_t distinct = count_distinct(x, n, limit, buffers.sorted);
    const Scale scale = find_scale(x_range, y_range);
    const Samples samples = buffers.samples(distinct);
    load(samples, scale, x, y, n);
    const std::size_t count = polybasis::fit(samples, buffers.degrees, distinct);
    const polybasis::Powers powers = buffers.powers(count);
    polybasis::to_powers(buffers.degrees, count, scale.centre, powers);
    store_powers(powers, count, scale, store);
    return 0;
}

} // namespace

// x in mV, y in engineering units, or the other way round: any unit will do.
// With fewer distinct x than coefficients the highest degree that the points
// determine is fitted and the coefficients above are 0. Returns 0; -1 with
// coefficients of 0 when there are no points, and with NaN when one of the
// points is not finite.
extern "C" int32_t polynomialfit(int32_t obs, int32_t coeff_count, const double *x, const double *y,
                                 double *store)
{
    if (coeff_count <= 0 || !store)
        return -1;
    const std::size_t wanted = static_cast<std::size_t>(coeff_count);
    if (obs <= 0 || !x || !y) {
        std::fill_n(store, wanted, 0.0);
        return -1;
    }
    return fit_points(static_cast<std::size_t>(obs), wanted, x, y, store);
}
