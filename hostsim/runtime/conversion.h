// SPDX-License-Identifier: GPL-3.0-or-later
//
// One conversion between two units, right to the last digit.
#ifndef HOSTSIM_RUNTIME_CONVERSION_H
#define HOSTSIM_RUNTIME_CONVERSION_H

#include <functional>

namespace hostsim
{

// UDUNITS-2 composes a conversion from rounded factors by way of the base unit:
// 32 degF come out as 3.6e-14 degC. Units are defined by short decimals (1.8,
// 459.67, 0.3048), and what stands so close to one that only rounding lies
// between is taken for it.
class Conversion
{
public:
    using Function = std::function<double(double)>;

    explicit Conversion(Function convert);

    double apply(double value) const;

private:
    enum class Zero { None, Before, After };

    bool find_line(double at_zero);
    void find_zero(double at_zero, double slope);

    Function m_convert; // serves where the conversion is not a straight line
    bool m_straight = false;
    bool m_divide = false;
    long double m_factor = 1.0L;
    Zero m_where = Zero::None;
    long double m_zero = 0.0L;
};

} // namespace hostsim

#endif
