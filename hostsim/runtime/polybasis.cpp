// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/polybasis.h"

#include <algorithm>
#include <cmath>

namespace polybasis
{
namespace
{

using doubledouble::Pair;
using Wide = Pair<Lanes>;

// Bound for the error of a sum and a product together, as a part of the terms.
constexpr double ROUNDING = 0x1p-102;
// A polynomial with errors above this part of its values says nothing.
constexpr double MOST_ERROR = 0x1p-10;

inline double total(Lanes lanes)
{
    return lanes[0] + lanes[1];
}

// A scalar in every lane.
inline Lanes spread(double value)
{
    return Lanes{} + value;
}

// Plain sums over the points for one polynomial of the basis.
struct Sums {
    Lanes squares;   // p * p
    Lanes positions; // u * p * p
    Lanes residuals; // residual * p
};

inline void accumulate(Sums &sums, Lanes position, Lanes residual, Lanes p)
{
    const Lanes square = p * p;
    sums.squares += square;
    sums.positions += position * square;
    sums.residuals += residual * p;
}

inline Wide less(Wide residual, Wide p, Lanes weight)
{
    return doubledouble::add(residual, negate(doubledouble::multiply(p, weight)));
}

// A first, rough weight: the rounding of plain sums is made good afterwards.
void settle(Degree &degree, const Sums &sums)
{
    degree.squares = total(sums.squares);
    degree.norm = std::sqrt(degree.squares);
    degree.alpha = total(sums.positions) / degree.squares;
    degree.weight = {total(sums.residuals) / degree.squares, 0.0};
    degree.correction = 0.0;
}

void start(const Samples &s, Degree &degree)
{
    Sums sums{};
    for (std::size_t i = 0; i < s.blocks; ++i)
        accumulate(sums, s.position_hi[i], s.residual_hi[i], s.basis_hi[i]);
    degree.beta = 0.0;
    degree.error = 0.0;
    settle(degree, sums);
}

// Takes degree k - 1 out of the residuals and builds degree k, in one go over
// the points.
void extend(const Samples &s, const Degree *degrees, std::size_t k, Degree &next)
{
    const Lanes alpha = spread(-degrees[k - 1].alpha);
    const Lanes beta = spread(-degrees[k - 1].beta);
    const Lanes weight = spread(degrees[k - 1].weight.hi);
    const std::size_t last = (k - 1) * s.blocks;
    const std::size_t former = k > 1 ? last - s.blocks : last; // beta is 0 there
    Sums sums{};
    for (std::size_t i = 0; i < s.blocks; ++i) {
        const Wide p = {s.basis_hi[last + i], s.basis_lo[last + i]};
        const Wide q = {s.basis_hi[former + i], s.basis_lo[former + i]};
        const Wide residual = less({s.residual_hi[i], s.residual_lo[i]}, p, weight);
        s.residual_hi[i] = residual.hi;
        s.residual_lo[i] = residual.lo;
        const Wide position = {s.position_hi[i], s.position_lo[i]};
        const Wide risen = doubledouble::multiply(p, doubledouble::add(position, alpha));
        const Wide value = doubledouble::add(risen, doubledouble::multiply(q, beta));
        s.basis_hi[last + s.blocks + i] = value.hi;
        s.basis_lo[last + s.blocks + i] = value.lo;
        accumulate(sums, position.hi, residual.hi, value.hi);
    }
    settle(next, sums);
    next.beta = next.squares / degrees[k - 1].squares;
    next.error =
        (s.reach + std::fabs(alpha[0])) * (degrees[k - 1].error + ROUNDING * degrees[k - 1].norm);
    if (k > 1)
        next.error += std::fabs(beta[0]) * (degrees[k - 2].error + ROUNDING * degrees[k - 2].norm);
}

void take_off(const Samples &s, std::size_t degree, double weight)
{
    const Lanes share = spread(weight);
    const std::size_t first = degree * s.blocks;
    for (std::size_t i = 0; i < s.blocks; ++i) {
        const Wide p = {s.basis_hi[first + i], s.basis_lo[first + i]};
        const Wide residual = less({s.residual_hi[i], s.residual_lo[i]}, p, share);
        s.residual_hi[i] = residual.hi;
        s.residual_lo[i] = residual.lo;
    }
}

// Sum of the residuals times one polynomial, as exactly as with twice the
// digits.
double project(const Samples &s, std::size_t degree)
{
    const std::size_t first = degree * s.blocks;
    Lanes sum{};
    Lanes rest{};
    for (std::size_t i = 0; i < s.blocks; ++i) {
        const Wide p = {s.basis_hi[first + i], s.basis_lo[first + i]};
        const Wide product = doubledouble::two_prod(s.residual_hi[i], p.hi);
        const Wide next = doubledouble::two_sum(sum, product.hi);
        sum = next.hi;
        rest += next.lo + (product.lo + (s.residual_hi[i] * p.lo + s.residual_lo[i] * p.hi));
    }
    const Scalar folded = doubledouble::two_sum(sum[0], sum[1]);
    return folded.hi + (folded.lo + total(rest));
}

double points_of(const Samples &s)
{
    return static_cast<double>(LANES * s.blocks);
}

double sum_of_squares(const Samples &s)
{
    Lanes sum{};
    for (std::size_t i = 0; i < s.blocks; ++i)
        sum += s.residual_hi[i] * s.residual_hi[i];
    return total(sum);
}

// Bound for the shares of the polynomials in one another.
double measure_skew(const Samples &s, const Degree *degrees, std::size_t count)
{
    double squares = 0.0;
    double error = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        error = std::max(error, degrees[k].error / degrees[k].norm);
        for (std::size_t j = 0; j < k; ++j) {
            Lanes sum{};
            for (std::size_t i = 0; i < s.blocks; ++i)
                sum += s.basis_hi[k * s.blocks + i] * s.basis_hi[j * s.blocks + i];
            const double share = total(sum) / (degrees[k].norm * degrees[j].norm);
            squares += 2 * share * share;
        }
    }
    const double plain_sum = (points_of(s) / LANES + 4) * 0x1p-53;
    const double values = 4 * std::sqrt(points_of(s)) * error;
    return std::sqrt(squares) + static_cast<double>(count) * (plain_sum + values);
}

// What taking a share of one polynomial off the residuals adds to their error.
double share_error(const Degree &degree, double weight, double values)
{
    return std::fabs(weight) * (degree.error + ROUNDING * degree.norm) + 2 * ROUNDING * values;
}

// What the weights can be off: by the errors of residuals and polynomials in
// the projections, and by what the pass could not see of its own corrections,
// which the polynomials have in common.
void bound_noise(const Samples &s, Degree *degrees, std::size_t count, Progress &progress)
{
    const double root = std::sqrt(points_of(s));
    const double sums = ROUNDING * points_of(s) * progress.values;
    progress.rounding = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        Degree &degree = degrees[k];
        degree.noise =
            root * progress.residual_error + sums +
            root * (progress.values + root * progress.residual_error) * degree.error / degree.norm;
        progress.rounding += degree.noise * degree.noise;
    }
    progress.rounding = std::sqrt(progress.rounding);
    const double common = 2 * progress.skew * (progress.correction + progress.rounding);
    for (std::size_t k = 0; k < count; ++k) {
        Degree &degree = degrees[k];
        degree.noise = (1.25 * degree.noise + common) / degree.norm +
                       0x1p-50 * std::fabs(degree.correction) +
                       ROUNDING * std::fabs(degree.weight.hi);
    }
}

} // namespace

bool build(const Samples &samples, Degree *degrees, std::size_t count, Progress &progress)
{
    progress = {};
    progress.values = std::sqrt(sum_of_squares(samples));
    start(samples, degrees[0]);
    for (std::size_t k = 1; k < count; ++k) {
        extend(samples, degrees, k, degrees[k]);
        const double norm = degrees[k].norm;
        if (!(norm * MOST_ERROR > degrees[k].error) || !std::isfinite(norm))
            return false;
        progress.residual_error +=
            share_error(degrees[k - 1], degrees[k - 1].weight.hi, progress.values);
    }
    progress.skew = measure_skew(samples, degrees, count);
    return true;
}

void correct(const Samples &samples, Degree *degrees, std::size_t count, bool first,
             Progress &progress)
{
    // After build only the last degree is still in the residuals.
    for (std::size_t k = first ? count - 1 : 0; k < count; ++k) {
        const double weight = first ? degrees[k].weight.hi : degrees[k].correction;
        take_off(samples, k, weight);
        progress.residual_error += share_error(degrees[k], weight, progress.values);
    }
    progress.correction = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        Degree &degree = degrees[k];
        degree.correction = project(samples, k) / degree.squares;
        degree.weight = doubledouble::add(degree.weight, degree.correction);
        progress.correction += degree.correction * degree.correction * degree.squares;
    }
    progress.correction = std::sqrt(progress.correction);
    bound_noise(samples, degrees, count, progress);
}

void to_powers(const Degree *degrees, std::size_t count, double centre, const Powers &out)
{
    // Clenshaw's scheme with polynomials in place of numbers: after each step
    // now is weight[k] + (u - alpha[k]) next - beta[k+1] after.
    Scalar *now = out.powers, *next = out.scratch, *after = out.scratch + count;
    double *noise = out.noise, *next_noise = out.scratch_noise,
           *after_noise = out.scratch_noise + count;
    for (std::size_t i = 0; i < count; ++i) {
        now[i] = next[i] = after[i] = {0.0, 0.0};
        noise[i] = next_noise[i] = after_noise[i] = 0.0;
    }
    for (std::size_t k = count; k-- > 0;) {
        const double alpha = -degrees[k].alpha;
        const double beta = k + 1 < count ? -degrees[k + 1].beta : 0.0;
        for (std::size_t i = 0; i < count - k; ++i) {
            Scalar value = doubledouble::add(doubledouble::multiply(next[i], alpha),
                                             doubledouble::multiply(after[i], beta));
            noise[i] = std::fabs(alpha) * next_noise[i] + std::fabs(beta) * after_noise[i];
            noise[i] +=
                2 * ROUNDING * (std::fabs(alpha * next[i].hi) + std::fabs(beta * after[i].hi));
            value = doubledouble::add(value, i > 0 ? next[i - 1] : degrees[k].weight);
            noise[i] += i > 0 ? next_noise[i - 1] : degrees[k].noise;
            noise[i] += ROUNDING * std::fabs(value.hi);
            now[i] = value;
        }
        std::swap(now, after);
        std::swap(next, after);
        std::swap(noise, after_noise);
        std::swap(next_noise, after_noise);
    }
    // The last result stands in next. Put the centre back by repeated division.
    for (std::size_t i = 0; i + 1 < count; ++i) {
        for (std::size_t j = count - 1; j-- > i;) {
            next[j] = doubledouble::add(next[j], doubledouble::multiply(next[j + 1], -centre));
            next_noise[j] +=
                std::fabs(centre) * next_noise[j + 1] +
                2 * ROUNDING * (std::fabs(centre * next[j + 1].hi) + std::fabs(next[j].hi));
        }
    }
    if (next != out.powers) {
        std::copy_n(next, count, out.powers);
        std::copy_n(next_noise, count, out.noise);
    }
}

} // namespace polybasis
