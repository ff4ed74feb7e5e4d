// SPDX-License-Identifier: GPL-3.0-or-later
//
// The least-squares polynomial of given doubles as fractions, without any
// rounding, and the distance of a double from such a fraction.
#ifndef HOSTSIM_CURVES_EXACTFIT_H
#define HOSTSIM_CURVES_EXACTFIT_H

#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

namespace exactfit
{

using Values = std::vector<double>;

// Doubles as whole numbers, each to be multiplied by 2^exponent.
struct Whole {
    std::vector<mpz_class> values;
    int exponent = 0;
};

inline Whole to_whole(const Values &doubles)
{
    Whole whole;
    whole.exponent = std::numeric_limits<int>::max();
    for (const double value : doubles) {
        if (value != 0.0)
            whole.exponent = std::min(whole.exponent, std::max(std::ilogb(value) - 52, -1074));
    }
    if (whole.exponent == std::numeric_limits<int>::max())
        whole.exponent = 0;
    for (const double value : doubles) {
        int exponent = 0;
        const double mantissa = std::ldexp(std::frexp(value, &exponent), 53);
        const int shift = exponent - 53 - whole.exponent;
        mpz_class number(mantissa);
        if (shift >= 0)
            mpz_mul_2exp(number.get_mpz_t(), number.get_mpz_t(),
                         static_cast<mp_bitcnt_t>(value == 0.0 ? 0 : shift));
        else // what is shifted out is 0: a subnormal number
            mpz_tdiv_q_2exp(number.get_mpz_t(), number.get_mpz_t(),
                            static_cast<mp_bitcnt_t>(-shift));
        whole.values.push_back(number);
    }
    return whole;
}

// A fraction times a power of two.
struct Exact {
    mpq_class fraction;
    long exponent = 0;
};

using Rows = std::vector<std::vector<mpz_class>>;

// Normal equations: sums of powers, and of powers times y in the last column.
inline Rows normal_equations(const std::vector<mpz_class> &x, const std::vector<mpz_class> &y,
                             std::size_t count)
{
    std::vector<mpz_class> moments(2 * count - 1);
    std::vector<mpz_class> sides(count);
    for (std::size_t i = 0; i < x.size(); ++i) {
        mpz_class power = 1;
        for (std::size_t k = 0; k < moments.size(); ++k) {
            moments[k] += power;
            if (k < count)
                sides[k] += power * y[i];
            power *= x[i];
        }
    }
    Rows rows(count, std::vector<mpz_class>(count + 1));
    for (std::size_t r = 0; r < count; ++r) {
        for (std::size_t c = 0; c < count; ++c)
            rows[r][c] = moments[r + c];
        rows[r][count] = sides[r];
    }
    return rows;
}

// Elimination in whole numbers after Bareiss: each division is exact. The
// matrix is positive definite, so no pivot is 0. Returns numerators over the
// last pivot, which is the determinant.
inline std::vector<mpz_class> eliminate(Rows &rows)
{
    const std::size_t count = rows.size();
    mpz_class former = 1;
    for (std::size_t k = 0; k + 1 < count; ++k) {
        for (std::size_t r = k + 1; r < count; ++r) {
            for (std::size_t c = k + 1; c <= count; ++c) {
                rows[r][c] = rows[r][c] * rows[k][k] - rows[r][k] * rows[k][c];
                mpz_divexact(rows[r][c].get_mpz_t(), rows[r][c].get_mpz_t(), former.get_mpz_t());
            }
        }
        former = rows[k][k];
    }
    const mpz_class &determinant = rows[count - 1][count - 1];
    std::vector<mpz_class> numerators(count);
    for (std::size_t k = count; k-- > 0;) {
        mpz_class rest = determinant * rows[k][count];
        for (std::size_t c = k + 1; c < count; ++c)
            rest -= rows[k][c] * numerators[c];
        mpz_divexact(numerators[k].get_mpz_t(), rest.get_mpz_t(), rows[k][k].get_mpz_t());
    }
    return numerators;
}

// Lowest power first; zeros above the highest degree that the points determine.
inline std::vector<Exact> least_squares(const Values &x, const Values &y, std::size_t wanted)
{
    const std::size_t distinct = std::set<double>(x.begin(), x.end()).size();
    const std::size_t count = std::min(wanted, distinct);
    const Whole positions = to_whole(x);
    const Whole values = to_whole(y);
    Rows rows = normal_equations(positions.values, values.values, count);
    const std::vector<mpz_class> numerators = eliminate(rows);
    std::vector<Exact> solution(wanted);
    for (std::size_t k = 0; k < count; ++k) {
        solution[k].fraction = mpq_class(numerators[k], rows[count - 1][count - 1]);
        solution[k].fraction.canonicalize();
        solution[k].exponent = values.exponent - static_cast<long>(k) * positions.exponent;
    }
    return solution;
}

inline mpq_class scaled(const mpq_class &value, long exponent)
{
    mpq_class result;
    if (exponent >= 0)
        mpq_mul_2exp(result.get_mpq_t(), value.get_mpq_t(), static_cast<mp_bitcnt_t>(exponent));
    else
        mpq_div_2exp(result.get_mpq_t(), value.get_mpq_t(), static_cast<mp_bitcnt_t>(-exponent));
    return result;
}

// Exponent of the power of two at or below a fraction's magnitude.
inline long floor_exponent(const mpq_class &value)
{
    const mpq_class size = abs(value);
    const auto bits = [](const mpz_class &n) {
        return static_cast<long>(mpz_sizeinbase(n.get_mpz_t(), 2));
    };
    long exponent = bits(size.get_num()) - bits(size.get_den());
    if (size < scaled(1, exponent))
        --exponent;
    return exponent;
}

// Distance of a double from the exact value, in units in the last place of a
// double of the exact value's size. Zero has no such unit: infinite for all but
// zero itself. Infinity is right beyond the largest double.
inline double ulps(double value, const Exact &exact)
{
    const double infinity = std::numeric_limits<double>::infinity();
    if (exact.fraction == 0)
        return value == 0.0 ? 0.0 : infinity;
    const long top = floor_exponent(exact.fraction) + exact.exponent;
    if (!std::isfinite(value))
        return top >= 1024 && std::isinf(value) && (value > 0) == (exact.fraction > 0) ? 0.0
                                                                                       : infinity;
    const long unit = std::max(top - 52, -1074L);
    const mpq_class truth = scaled(exact.fraction, exact.exponent - unit);
    const mpq_class distance = abs(scaled(mpq_class(value), -unit) - truth);
    return distance.get_d();
}

} // namespace exactfit

#endif
