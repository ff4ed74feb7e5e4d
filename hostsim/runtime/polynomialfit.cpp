// SPDX-License-Identifier: GPL-3.0-or-later
//
// The least-squares polynomial. A calibration is kept for years and compared
// with its successor coefficient by coefficient, so each coefficient is the
// exact solution for the given doubles, rounded once; a library's fit in plain
// doubles loses up to eight digits on ordinary load cell data. The points are
// centred and scaled by powers of two, which loses nothing, fitted in
// polynomials orthogonal over the points with about 32 digits, and the result
// is expanded into powers. A bound for the rounding goes along: where it does
// not show each coefficient to be right, as with points in tight groups, the
// fit is made again with 62 digits.
#include "host/operations.h"

#include <gsl/gsl_sort.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>

#include "hostsim/runtime/newtonfit.h"
#include "hostsim/runtime/polybasis.h"

namespace
{

using polybasis::Degree;
using polybasis::Lanes;
using polybasis::LANES;
using polybasis::Progress;
using polybasis::Samples;
using polybasis::Scalar;

// A coefficient that may be off by no more than this part of itself is rounded
// to the right double, or to its neighbour where it lies between two.
constexpr double SETTLED = 0x1p-60;
// Polynomials that share more than this say nothing.
constexpr double MOST_SKEW = 0.1;
constexpr int MOST_PASSES = 6;

// Code in the host's log.
constexpr int32_t LOG_FIT_UNSETTLED = 931;

// Memory for one fit: on the stack for a table's points and coefficients, so
// that the live fit allocates nothing, otherwise from the heap.
class Arena
{
public:
    // Forgets what was taken; false when there is no memory for that much.
    bool reserve(std::size_t bytes);
    // `count` objects of T, all zero.
    template <class T> T *take(std::size_t count)
    {
        T *first = reinterpret_cast<T *>(free);
        free += units(count * sizeof(T));
        std::uninitialized_value_construct_n(first, count);
        return first;
    }
    // Bytes that `count` objects of T take at most.
    template <class T> static std::size_t bytes(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(Unit), "");
        return count * sizeof(T) + sizeof(Unit);
    }

private:
    struct alignas(16) Unit {
        unsigned char bytes[16];
    };
    static constexpr std::size_t OWN = 65536 / sizeof(Unit);
    static std::size_t units(std::size_t bytes)
    {
        return (bytes + sizeof(Unit) - 1) / sizeof(Unit);
    }

    Unit own[OWN];
    std::unique_ptr<Unit[]> heap;
    Unit *free = own;
};

bool Arena::reserve(std::size_t bytes)
{
    if (units(bytes) <= OWN) {
        free = own;
        return true;
    }
    heap.reset(new (std::nothrow) Unit[units(bytes)]);
    free = heap.get();
    return free != nullptr;
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
    double reach; // largest magnitude of u
};

Scale find_scale(const Range &x, const Range &y)
{
    Scale scale{};
    const double largest = std::max(std::fabs(x.low), std::fabs(x.high));
    const double half = x.high / 2 - x.low / 2;
    scale.x_exponent = exponent_of(half > 0.0 ? half : largest);
    const PowerOfTwo factor(-scale.x_exponent);
    scale.centre = factor * x.low / 2 + factor * x.high / 2;
    scale.reach = std::max(scale.centre - factor * x.low, factor * x.high - scale.centre);
    scale.y_exponent = exponent_of(std::max(std::fabs(y.low), std::fabs(y.high)));
    return scale;
}

// The points as they were given.
struct Given {
    std::size_t n;
    const double *x;
    const double *y;
};

Samples load(const Given &given, const Scale &scale, std::size_t count, Arena &arena)
{
    const PowerOfTwo x_factor(-scale.x_exponent);
    const PowerOfTwo y_factor(-scale.y_exponent);
    const std::size_t blocks = (given.n + LANES - 1) / LANES;
    auto *points = arena.take<Lanes>(4 * blocks);
    auto *basis = arena.take<Lanes>(2 * count * blocks);
    const Samples s = {blocks,          scale.reach,           points,
                       points + blocks, points + 2 * blocks,   points + 3 * blocks,
                       basis,           basis + count * blocks};
    for (std::size_t i = 0; i < given.n; ++i) {
        const std::size_t block = i / LANES;
        const std::size_t lane = i % LANES;
        const Scalar position = doubledouble::two_sum(x_factor * given.x[i], -scale.centre);
        s.position_hi[block][lane] = position.hi;
        s.position_lo[block][lane] = position.lo;
        s.residual_hi[block][lane] = y_factor * given.y[i];
        s.basis_hi[block][lane] = 1.0;
    }
    return s;
}

// A coefficient in the units of the points; exponent is that of a factor.
double unscaled(double value, std::size_t power, const Scale &scale, int exponent)
{
    const double whole = exponent + scale.y_exponent -
                         static_cast<double>(power) * static_cast<double>(scale.x_exponent);
    // Beyond this the result is infinite or zero in any case.
    const double bounded = std::clamp(whole, -10000.0, 10000.0);
    return value == 0.0 ? 0.0 : std::ldexp(value, static_cast<int>(bounded));
}

bool settled(const polybasis::Powers &fit, std::size_t count)
{
    for (std::size_t k = 0; k < count; ++k) {
        if (!(fit.noise[k] <= SETTLED * std::fabs(fit.powers[k].hi)))
            return false;
    }
    return true;
}

// Corrects the weights until each power is settled; false when another pass
// would gain nothing.
bool refine(const Samples &samples, Degree *degrees, std::size_t count, Progress &progress,
            double centre, const polybasis::Powers &powers)
{
    double former = std::numeric_limits<double>::infinity();
    for (int pass = 0; pass < MOST_PASSES; ++pass) {
        polybasis::correct(samples, degrees, count, pass == 0, progress);
        polybasis::to_powers(degrees, count, centre, powers);
        if (settled(powers, count))
            return true;
        const bool gaining = progress.correction < former / 2;
        if (!gaining || progress.skew * progress.correction < progress.rounding)
            return false;
        former = progress.correction;
    }
    return false;
}

// With 32 digits. False when they do not settle the coefficients.
bool fit_quickly(const Given &given, const Scale &scale, std::size_t count, Arena &arena,
                 double *store)
{
    const Samples samples = load(given, scale, count, arena);
    auto *degrees = arena.take<Degree>(count);
    auto *powers = arena.take<Scalar>(3 * count);
    auto *noise = arena.take<double>(3 * count);
    const polybasis::Powers fit = {powers, noise, powers + count, noise + count};
    Progress progress{};
    if (!polybasis::build(samples, degrees, count, progress) || !(progress.skew <= MOST_SKEW) ||
        !refine(samples, degrees, count, progress, scale.centre, fit))
        return false;
    for (std::size_t k = 0; k < count; ++k)
        store[k] = unscaled(powers[k].hi, k, scale, 0);
    return true;
}

// With 62 digits; stores what they give, and says so where that is not enough.
void fit_thoroughly(const Given &given, const Scale &scale, std::size_t count, Arena &arena,
                    double *store)
{
    const PowerOfTwo x_factor(-scale.x_exponent);
    const PowerOfTwo y_factor(-scale.y_exponent);
    auto *x = arena.take<double>(given.n);
    auto *y = arena.take<double>(given.n);
    for (std::size_t i = 0; i < given.n; ++i) {
        x[i] = x_factor * given.x[i];
        y[i] = y_factor * given.y[i];
    }
    const newtonfit::Workspace work = {arena.take<qd_real>(count * given.n),
                                       arena.take<qd_real>(given.n),
                                       arena.take<qd_real>(count * count),
                                       arena.take<double>(count * count),
                                       arena.take<newtonfit::Degree>(count),
                                       arena.take<qd_real>(count),
                                       arena.take<double>(count)};
    const newtonfit::Result result = newtonfit::fit({given.n, x, y}, count, work);
    for (std::size_t k = 0; k < count; ++k)
        store[k] = unscaled(work.powers[k].x[0], k, scale, result.exponent);
    if (!result.settled)
        log_error(__FILE__, __LINE__, 1, LOG_FIT_UNSETTLED,
                  "polynomial of degree %zu through %zu points is not exact to the last digit",
                  count - 1, given.n);
}

std::size_t quick_bytes(std::size_t n, std::size_t count)
{
    return Arena::bytes<Lanes>((n + 1) / LANES * (4 + 2 * count)) + sizeof(Lanes) +
           Arena::bytes<Degree>(count) + Arena::bytes<Scalar>(3 * count) +
           Arena::bytes<double>(3 * count) + Arena::bytes<double>(n);
}

std::size_t thorough_bytes(std::size_t n, std::size_t count)
{
    return Arena::bytes<qd_real>((n + count + 2) * (count + 1)) + 3 * sizeof(qd_real) +
           Arena::bytes<double>(2 * n + 2 + count * count + count) + 3 * sizeof(qd_real) +
           Arena::bytes<newtonfit::Degree>(count);
}

int32_t fit_points(const Given &given, std::size_t wanted, double *store)
{
    Range x_range{};
    Range y_range{};
    const bool finite =
        find_range(given.x, given.n, x_range) && find_range(given.y, given.n, y_range);
    if (!finite) {
        std::fill_n(store, wanted, std::numeric_limits<double>::quiet_NaN());
        return -1;
    }
    std::fill_n(store, wanted, 0.0);
    const std::size_t limit = std::min(given.n, wanted);
    Arena arena;
    if (!arena.reserve(quick_bytes(given.n, limit)))
        return -1;
    const std::size_t distinct =
        count_distinct(given.x, given.n, limit, arena.take<double>(given.n));
    const Scale scale = find_scale(x_range, y_range);
    if (fit_quickly(given, scale, distinct, arena, store))
        return 0;
    if (!arena.reserve(thorough_bytes(given.n, distinct)))
        return -1;
    fit_thoroughly(given, scale, distinct, arena, store);
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
    return fit_points({static_cast<std::size_t>(obs), x, y}, wanted, store);
}
