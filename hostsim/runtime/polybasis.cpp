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

// Relative to the terms that it comes from: well above the rounding of the
// arithmetic (2^-104 an operation), far below anything that data can carry.
constexpr double NOISE = 0x1p-96;
// Polynomials that have shrunk below this share of their points' spread are
// made of rounding.
constexpr double LEAST_NORM = 0x1p-160;
constexpr int MOST_PASSES = 12;

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
    degree.norm = total(sums.squares);
    degree.alpha = total(sums.positions) / degree.norm;
    degree.weight = {total(sums.residuals) / degree.norm, 0.0};
}

void start(const Samples &s, Degree &degree)
{
    Sums sums{};
    for (std::size_t i = 0; i < s.blocks; ++i)
        accumulate(sums, s.position_hi[i], s.residual_hi[i], s.basis_hi[i]);
    degree.beta = 0.0;
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
    next.beta = next.norm / degrees[k - 1].norm;
}

// Takes off weight times one polynomial, and sums the residuals times another
// as exactly as with twice the digits.
double exchange(const Samples &s, std::size_t off, double weight, std::size_t sought)
{
    const Lanes share = spread(weight);
    Lanes sum{};
    Lanes rest{};
    for (std::size_t i = 0; i < s.blocks; ++i) {
        const Wide p = {s.basis_hi[off * s.blocks + i], s.basis_lo[off * s.blocks + i]};
        const Wide residual = less({s.residual_hi[i], s.residual_lo[i]}, p, share);
        s.residual_hi[i] = residual.hi;
        s.residual_lo[i] = residual.lo;
        const Wide q = {s.basis_hi[sought * s.blocks + i], s.basis_lo[sought * s.blocks + i]};
        const Wide product = doubledouble::two_prod(residual.hi, q.hi);
        const Wide next = doubledouble::two_sum(sum, product.hi);
        sum = next.hi;
        rest += next.lo + (product.lo + (residual.hi * q.lo + residual.lo * q.hi));
    }
    const Scalar folded = doubledouble::two_sum(sum[0], sum[1]);
    return folded.hi + (folded.lo + total(rest));
}

// One pass over all degrees, each corrected by what the residuals still hold of
// it; the degrees are orthogonal but for rounding, so a pass gains as many
// digits as a double has. pending is the correction of the last degree, still
// to be taken off, and the result the largest correction, squared, as a part of
// the fit's values.
double correct(const Samples &s, Degree *degrees, std::size_t count, double &pending)
{
    double largest = 0.0;
    std::size_t off = count - 1;
    for (std::size_t k = 0; k < count; ++k) {
        const double weight = exchange(s, off, pending, k) / degrees[k].norm;
        degrees[k].weight = doubledouble::add(degrees[k].weight, weight);
        largest = std::max(largest, weight * weight * degrees[k].norm);
        pending = weight;
        off = k;
    }
    return largest;
}

double largest_share(const Degree *degrees, std::size_t count)
{
    double largest = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        const double weight = degrees[k].weight.hi;
        largest = std::max(largest, weight * weight * degrees[k].norm);
    }
    return largest;
}

double sum_of_squares(const Samples &s)
{
    Lanes sum{};
    for (std::size_t i = 0; i < s.blocks; ++i)
        sum += s.residual_hi[i] * s.residual_hi[i];
    return total(sum);
}

// A weight within its own noise is the rounding of a zero.
void drop_noise(Degree *degrees, std::size_t count, double values)
{
    for (std::size_t k = 0; k < count; ++k) {
        Degree &degree = degrees[k];
        degree.noise = NOISE * std::sqrt(values / degree.norm);
        if (std::fabs(degree.weight.hi) <= degree.noise)
            degree.weight = {0.0, 0.0};
        degree.noise = std::max(degree.noise, NOISE * std::fabs(degree.weight.hi));
    }
}

} // namespace

std::size_t fit(const Samples &samples, Degree *degrees, std::size_t count)
{
    const double values = sum_of_squares(samples);
    start(samples, degrees[0]);
    const double least = LEAST_NORM * degrees[0].norm;
    std::size_t known = 1;
    while (known < count) {
        extend(samples, degrees, known, degrees[known]);
        if (!(degrees[known].norm > least) || !std::isfinite(degrees[known].norm))
            break;
        ++known;
    }
    // Where the next degree was refused, the last one is off the residuals.
    double pending = known < count ? 0.0 : degrees[known - 1].weight.hi;
    double former = largest_share(degrees, known);
    const double whole = former;
    for (int pass = 0; pass < MOST_PASSES && former > 0.0; ++pass) {
        const double now = correct(samples, degrees, known, pending);
        // The next correction would be smaller by the same ratio again.
        if (!(now < former) || now / former * now <= NOISE * NOISE * whole)
            break;
        former = now;
    }
    drop_noise(degrees, known, values);
    return known;
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
            value = doubledouble::add(value, i > 0 ? next[i - 1] : degrees[k].weight);
            noise[i] += i > 0 ? next_noise[i - 1] : degrees[k].noise;
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
            next_noise[j] += std::fabs(centre) * next_noise[j + 1];
        }
    }
    if (next != out.powers) {
        std::copy_n(next, count, out.powers);
        std::copy_n(next_noise, count, out.noise);
    }
}

} // namespace polybasis
