// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/conversion.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace hostsim
{
namespace
{

// The decimal of so many digits nearest to the value, if it is no further off
// than the tolerance.
bool short_decimal(double value, int digits, double tolerance, long double *decimal)
{
    char text[64];
    const auto end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, digits - 1);
    if (end.ec != std::errc() || std::from_chars(text, end.ptr, *decimal).ec != std::errc())
        return false;
    return std::fabs(*decimal - static_cast<long double>(value)) <=
           static_cast<long double>(tolerance);
}

} // namespace

Conversion::Conversion(Function convert) : m_convert(std::move(convert))
{
    m_straight = find_line(m_convert(0.0));
}

bool Conversion::find_line(double at_zero)
{
    // With a zero point of its own the slope is a difference; far apart, the
    // rounding of the two values weighs little.
    constexpr double far = 1e6;
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    const double slope = at_zero == 0.0 ? m_convert(1.0) : (m_convert(far) - at_zero) / far;
    const double opposite = at_zero - far * slope;
    if (!std::isfinite(slope) || slope == 0.0 ||
        !(std::fabs(m_convert(-far) - opposite) <= 1e-12 * std::fabs(opposite)))
        return false;
    const double rounding = at_zero == 0.0 ? 2.0 * epsilon : 8.0 * epsilon;
    constexpr int digits = 13;
    m_factor = slope;
    if (!short_decimal(slope, digits, rounding * std::fabs(slope), &m_factor)) {
        long double inverse = 0.0L;
        m_divide = short_decimal(1.0 / slope, digits, rounding / std::fabs(slope), &inverse);
        m_factor = m_divide ? inverse : static_cast<long double>(slope);
    }
    if (at_zero != 0.0)
        find_zero(at_zero, slope);
    return true;
}

// Either the source's reading at the target's zero is a short decimal, or the
// target's at the source's.
void Conversion::find_zero(double at_zero, double slope)
{
    constexpr int digits = 10;
    constexpr double rounding = 1e-12;
    const double root = -at_zero / slope;
    // Two units of one zero point, apart by the rounding on the way through it.
    if (std::fabs(at_zero) <= rounding && std::fabs(root) <= rounding)
        return;
    m_where = Zero::After;
    if (short_decimal(at_zero, digits, rounding * std::fmax(1.0, std::fabs(at_zero)), &m_zero))
        return;
    if (short_decimal(root, digits, rounding * std::fmax(1.0, std::fabs(root)), &m_zero))
        m_where = Zero::Before;
    else
        m_zero = at_zero;
}

double Conversion::apply(double value) const
{
    if (!m_straight)
        return m_convert(value);
    long double result = value;
    if (m_where == Zero::Before)
        result -= m_zero;
    result = m_divide ? result / m_factor : result * m_factor;
    if (m_where == Zero::After)
        result += m_zero;
    return static_cast<double>(result);
}

} // namespace hostsim
