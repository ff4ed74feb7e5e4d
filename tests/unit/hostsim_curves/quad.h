// SPDX-License-Identifier: GPL-3.0-or-later
//
// Numbers of 113 bits to judge the fit by: reading of decimal texts, distance
// in units in the last place, and a least-squares solution by another road
// than the runtime's.
#ifndef HOSTSIM_CURVES_QUAD_H
#define HOSTSIM_CURVES_QUAD_H

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace quad
{

#ifdef __SIZEOF_FLOAT128__
using Real = __float128;
#else
using Real = long double;
#endif

inline Real absolute(Real value)
{
    return value < 0 ? -value : value;
}

inline Real power_of_ten(int exponent)
{
    Real power = 1;
    for (int i = 0; i < std::abs(exponent); ++i)
        power *= 10;
    return power;
}

// A decimal text such as "-2.6232e-1" or ".11019"; good to 33 digits or so.
inline Real from_decimal(const QByteArray &text)
{
    const int mark = text.toLower().indexOf('e');
    const QByteArray mantissa = mark < 0 ? text : text.left(mark);
    int exponent = mark < 0 ? 0 : text.mid(mark + 1).toInt();
    Real value = 0;
    bool fraction = false;
    for (const char c : mantissa) {
        if (c == '.')
            fraction = true;
        if (c < '0' || c > '9')
            continue;
        value = value * 10 + (c - '0');
        exponent -= fraction ? 1 : 0;
    }
    value = exponent < 0 ? value / power_of_ten(exponent) : value * power_of_ten(exponent);
    return mantissa.startsWith('-') ? -value : value;
}

// Distance of a double from the true value, in units in the last place of the
// latter.
inline double ulps(double value, Real truth)
{
    const double size = std::fabs(static_cast<double>(truth));
    const double unit = std::nextafter(size, std::numeric_limits<double>::infinity()) - size;
    return static_cast<double>(absolute(static_cast<Real>(value) - truth) / unit);
}

// Correct digits, 16 at most.
inline double correct_digits(double value, Real truth)
{
    const Real error = absolute(static_cast<Real>(value) - truth) / absolute(truth);
    return error > 0 ? std::min(16.0, -std::log10(static_cast<double>(error))) : 16.0;
}

// Least squares by the normal equations with pivoting, lowest power first.
inline std::vector<Real> least_squares(const std::vector<double> &x, const std::vector<double> &y,
                                       std::size_t count)
{
    std::vector<std::vector<Real>> rows(count, std::vector<Real>(count + 1, Real(0)));
    for (std::size_t i = 0; i < x.size(); ++i) {
        std::vector<Real> powers(2 * count, Real(1));
        for (std::size_t k = 1; k < powers.size(); ++k)
            powers[k] = powers[k - 1] * static_cast<Real>(x[i]);
        for (std::size_t r = 0; r < count; ++r) {
            for (std::size_t c = 0; c < count; ++c)
                rows[r][c] += powers[r + c];
            rows[r][count] += powers[r] * static_cast<Real>(y[i]);
        }
    }
    for (std::size_t k = 0; k < count; ++k) {
        std::size_t pivot = k;
        for (std::size_t r = k + 1; r < count; ++r)
            pivot = absolute(rows[r][k]) > absolute(rows[pivot][k]) ? r : pivot;
        std::swap(rows[k], rows[pivot]);
        for (std::size_t r = 0; r < count; ++r) {
            const Real factor = r == k ? Real(0) : rows[r][k] / rows[k][k];
            for (std::size_t c = k; c <= count; ++c)
                rows[r][c] -= factor * rows[k][c];
        }
    }
    std::vector<Real> solution(count);
    for (std::size_t k = 0; k < count; ++k)
        solution[k] = rows[k][count] / rows[k][k];
    return solution;
}

} // namespace quad

#endif
