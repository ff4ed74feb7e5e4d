// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/newtonfit.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace newtonfit
{
namespace
{

// Bound for the error of a sum and a product together, as a part of the terms.
constexpr double ROUNDING = 0x1p-200;
// What cannot be told from zero and is below this part of the values is zero.
constexpr double UNSEEN = 0x1p-120;
// A product of distances smaller than this can hide a weight that is not zero.
constexpr int LEAST_EXPONENT = -90;
// A power that may be off by no more than this part of itself is right.
constexpr double SETTLED = 0x1p-54;
// Where a solution can be off by more than this part of itself, nothing is known.
constexpr double MOST_PART = 0.1;
// Largest exponent of a weight in the result, so that no power overflows.
constexpr int MOST_EXPONENT = 400;

inline double size(const qd_real &value)
{
    return std::fabs(value.x[0]);
}

qd_real scaled(const qd_real &value, int exponent)
{
    return {std::ldexp(value.x[0], exponent), std::ldexp(value.x[1], exponent),
            std::ldexp(value.x[2], exponent), std::ldexp(value.x[3], exponent)};
}

// Where the values of a degree are largest.
std::size_t find_node(const qd_real *values, std::size_t n)
{
    std::size_t node = 0;
    for (std::size_t i = 1; i < n; ++i)
        node = size(values[i]) > size(values[node]) ? i : node;
    return node;
}

// The basis' values; returns how many degrees there are.
std::size_t build(const Points &points, std::size_t count, const Workspace &work)
{
    const std::size_t n = points.count;
    std::fill_n(work.basis, n, qd_real(1.0));
    // Any node will do for a constant: the lowest x, whatever the order.
    std::size_t node =
        static_cast<std::size_t>(std::min_element(points.x, points.x + n) - points.x);
    for (std::size_t k = 0; k < count; ++k) {
        qd_real *values = work.basis + k * n;
        Degree &degree = work.degrees[k];
        if (k > 0) {
            const Degree &last = work.degrees[k - 1];
            // Both factors of one type: the library's product of a qd_real and a
            // dd_real has half of the digits only.
            for (std::size_t i = 0; i < n; ++i)
                values[i] = values[i - n] * qd_real(dd_real::sub(points.x[i], last.node));
            node = find_node(values, n);
            if (!(size(values[node]) > 0.0))
                return k;
            const int exponent = std::ilogb(values[node].x[0]);
            for (std::size_t i = 0; i < n; ++i)
                values[i] = scaled(values[i], -exponent);
            degree.exponent = last.exponent + exponent;
        }
        degree.node = points.x[node];
        double squares = 0.0;
        for (std::size_t i = 0; i < n; ++i)
            squares += values[i].x[0] * values[i].x[0];
        degree.norm = std::sqrt(squares);
    }
    return count;
}

qd_real product(const qd_real *a, const qd_real *b, std::size_t n)
{
    qd_real sum = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        sum += a[i] * b[i];
    return sum;
}

// The matrix of the normal equations as U' D U: D in the degrees' pivots, U,
// which is 1 on the diagonal, above it in factors.
void factorise(std::size_t n, std::size_t count, const Workspace &work)
{
    qd_real *u = work.factors;
    for (std::size_t r = 0; r < count; ++r) {
        for (std::size_t c = r; c < count; ++c) {
            qd_real sum = product(work.basis + r * n, work.basis + c * n, n);
            for (std::size_t k = 0; k < r; ++k)
                sum -= u[k * count + r] * u[k * count + c] * work.degrees[k].pivot;
            if (c == r)
                work.degrees[r].pivot = sum;
            else
                u[r * count + c] = sum / work.degrees[r].pivot;
        }
    }
}

// Solves with the sides, which are overwritten by the solution.
void solve(std::size_t count, const Workspace &work)
{
    const qd_real *u = work.factors;
    Degree *degrees = work.degrees;
    for (std::size_t r = 0; r < count; ++r) {
        for (std::size_t k = 0; k < r; ++k)
            degrees[r].side -= u[k * count + r] * degrees[k].side;
    }
    for (std::size_t r = count; r-- > 0;) {
        degrees[r].side /= degrees[r].pivot;
        for (std::size_t c = r + 1; c < count; ++c)
            degrees[r].side -= u[r * count + c] * degrees[c].side;
    }
}

// Magnitudes of the inverse of U' D U, in doubles, and bounds with that what
// the weights can be off. The first solution's rounding is made good by the
// second, except for a part as small as that rounding.
void bound_noise(std::size_t n, std::size_t count, const Workspace &work)
{
    const qd_real *u = work.factors;
    double *inverse = work.inverse; // of U, row by row; 1 on the diagonal
    for (std::size_t c = 0; c < count; ++c) {
        for (std::size_t r = c + 1; r-- > 0;) {
            double sum = r == c ? 1.0 : 0.0;
            for (std::size_t k = r + 1; k <= c; ++k)
                sum -= u[r * count + k].x[0] * inverse[k * count + c];
            inverse[r * count + c] = sum;
        }
    }
    double trace = 0.0;
    double inverse_trace = 0.0;
    double corrections = 0.0;
    for (std::size_t r = 0; r < count; ++r) {
        const Degree &degree = work.degrees[r];
        trace += degree.norm * degree.norm;
        corrections += size(degree.side) * size(degree.side);
        for (std::size_t k = r; k < count; ++k)
            inverse_trace +=
                inverse[r * count + k] * inverse[r * count + k] / size(work.degrees[k].pivot);
    }
    const double terms = static_cast<double>(n + 3 * count);
    const double part = 4 * terms * ROUNDING * trace * inverse_trace;
    const double unseen =
        part < MOST_PART ? part * std::sqrt(corrections) : std::numeric_limits<double>::infinity();
    for (std::size_t r = 0; r < count; ++r) {
        double sum = 0.0;
        for (std::size_t c = 0; c < count; ++c) {
            double entry = 0.0;
            for (std::size_t k = std::max(r, c); k < count; ++k)
                entry += std::fabs(inverse[r * count + k] * inverse[c * count + k]) /
                         size(work.degrees[k].pivot);
            sum += entry * work.degrees[c].error;
        }
        work.degrees[r].noise = 2 * sum + unseen + 2 * ROUNDING * size(work.degrees[r].weight);
    }
}

// Sides of the normal equations for what the fit so far leaves of the values,
// with bounds for their errors.
void find_sides(const Points &points, std::size_t count, const Workspace &work)
{
    const std::size_t n = points.count;
    const double steps = static_cast<double>(count + 2);
    for (std::size_t k = 0; k < count; ++k)
        work.degrees[k].error = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        qd_real residual = points.y[i];
        double error = std::fabs(points.y[i]);
        for (std::size_t k = 0; k < count; ++k) {
            const qd_real share = work.degrees[k].weight * work.basis[k * n + i];
            residual -= share;
            error += size(share);
        }
        work.residual[i] = residual;
        error *= steps * ROUNDING;
        error += static_cast<double>(n + 3 * count) * ROUNDING * size(residual);
        for (std::size_t k = 0; k < count; ++k)
            work.degrees[k].error += size(work.basis[k * n + i]) * error;
    }
    for (std::size_t k = 0; k < count; ++k)
        work.degrees[k].side = product(work.basis + k * n, work.residual, n);
}

// Weights that are zero within rounding are set to zero. Returns whether they
// are certainly so.
bool drop_noise(const Points &points, std::size_t count, const Workspace &work)
{
    double squares = 0.0;
    for (std::size_t i = 0; i < points.count; ++i)
        squares += points.y[i] * points.y[i];
    const double values = std::sqrt(squares);
    bool certain = true;
    for (std::size_t k = 0; k < count; ++k) {
        Degree &degree = work.degrees[k];
        if (size(degree.weight) <= degree.noise && degree.noise * degree.norm <= UNSEEN * values) {
            certain = certain && (squares == 0.0 || degree.exponent >= LEAST_EXPONENT);
            degree.weight = 0.0;
            degree.noise = 0.0;
        }
    }
    return certain;
}

// Expands into powers of x, from the innermost bracket outwards. Returns the
// exponent of the factor that they are still to be multiplied by, 0 but for
// points extremely near to each other.
int to_powers(std::size_t count, const Workspace &work)
{
    int most = 0;
    for (std::size_t k = 0; k < count; ++k) {
        if (size(work.degrees[k].weight) > 0.0)
            most =
                std::max(most, std::ilogb(work.degrees[k].weight.x[0]) - work.degrees[k].exponent);
    }
    const int factor = std::max(0, most - MOST_EXPONENT);
    qd_real *powers = work.powers;
    double *noise = work.noise;
    for (std::size_t k = count; k-- > 0;) {
        const Degree &degree = work.degrees[k];
        const int exponent = -degree.exponent - factor;
        for (std::size_t i = count - 1 - k; i > 0; --i) { // times x - node, plus the weight
            const qd_real here = i < count - 1 - k ? powers[i] * degree.node : qd_real(0.0);
            noise[i] = noise[i - 1] +
                       (i < count - 1 - k ? std::fabs(degree.node) * noise[i] : 0.0) +
                       ROUNDING * (size(here) + size(powers[i - 1]));
            powers[i] = powers[i - 1] - here;
        }
        const qd_real weight = scaled(degree.weight, exponent);
        const bool more = k + 1 < count;
        const qd_real here = more ? powers[0] * degree.node : qd_real(0.0);
        noise[0] = std::ldexp(degree.noise, exponent) +
                   (more ? std::fabs(degree.node) * noise[0] : 0.0) +
                   ROUNDING * (size(here) + size(weight));
        powers[0] = weight - here;
    }
    return factor;
}

// Powers that are zero within rounding are set to zero. Returns whether all
// others have the digits of a double.
bool drop_powers(const Points &points, std::size_t count, int factor, const Workspace &work)
{
    double reach = 0.0;
    double high = 0.0;
    for (std::size_t i = 0; i < points.count; ++i) {
        reach = std::max(reach, std::fabs(points.x[i]));
        high = std::max(high, std::fabs(points.y[i]));
    }
    bool settled = true;
    double share = 1.0; // largest value of the power over the points
    for (std::size_t k = 0; k < count; ++k) {
        const double noise = work.noise[k];
        if (size(work.powers[k]) <= noise && std::ldexp(noise, factor) * share <= UNSEEN * high)
            work.powers[k] = 0.0;
        else if (!(noise <= SETTLED * size(work.powers[k])))
            settled = false;
        share *= reach;
    }
    return settled;
}

} // namespace

Result fit(const Points &points, std::size_t count, const Workspace &work)
{
    const std::size_t known = build(points, count, work);
    factorise(points.count, known, work);
    for (int pass = 0; pass < 2; ++pass) {
        find_sides(points, known, work);
        solve(known, work);
        for (std::size_t k = 0; k < known; ++k)
            work.degrees[k].weight += work.degrees[k].side;
    }
    bound_noise(points.count, known, work);
    const bool certain = drop_noise(points, known, work);
    const int factor = to_powers(known, work);
    const bool settled = drop_powers(points, known, factor, work);
    return {factor, settled && certain && known == count};
}

} // namespace newtonfit
