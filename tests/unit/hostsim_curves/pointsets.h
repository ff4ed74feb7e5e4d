// SPDX-License-Identifier: GPL-3.0-or-later
//
// Random sets of points, in families that strain a polynomial fit in different
// ways. A set follows from the seed, the family and the set's number alone.
#ifndef HOSTSIM_CURVES_POINTSETS_H
#define HOSTSIM_CURVES_POINTSETS_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace pointsets
{

using Values = std::vector<double>;

struct Set {
    Values x;
    Values y;
    std::size_t coeff_count = 0;
};

enum class Family {
    Noise,
    Smooth,
    AsManyAsPoints,
    FewDistinct,
    Clusters,
    FarFromZero,
    NearEqual,
    ExactPolynomial,
};

class Generator
{
public:
    Generator(std::uint32_t seed, Family family, std::uint32_t number)
    {
        std::seed_seq parts{seed, static_cast<std::uint32_t>(family), number};
        engine.seed(parts);
    }

    Set make(Family family)
    {
        switch (family) {
        case Family::Noise:
            return noise();
        case Family::Smooth:
            return smooth();
        case Family::AsManyAsPoints:
            return as_many_as_points();
        case Family::FewDistinct:
            return few_distinct();
        case Family::Clusters:
            return clusters();
        case Family::FarFromZero:
            return far_from_zero();
        case Family::NearEqual:
            return near_equal();
        case Family::ExactPolynomial:
            return exact_polynomial();
        }
        return {};
    }

private:
    // The standard's distributions differ between libraries.
    double uniform(double low, double high)
    {
        const double fine = static_cast<double>(engine() >> 11) * 0x1p-53;
        return low + (high - low) * fine;
    }
    int integer(int low, int high)
    {
        return low + static_cast<int>(engine() % static_cast<std::uint64_t>(high - low + 1));
    }
    bool heads() { return integer(0, 1) == 1; }
    double magnitude(double low, double high) { return std::pow(10.0, uniform(low, high)); }

    Values scatter(int n, double low, double high)
    {
        Values values;
        for (int i = 0; i < n; ++i)
            values.push_back(uniform(low, high));
        return values;
    }

    // A transducer's curve over the points with little or no noise, to as many
    // decimals as someone would type, or to all.
    Values curve(const Values &x)
    {
        const double low = *std::min_element(x.begin(), x.end());
        const double span = std::max(*std::max_element(x.begin(), x.end()) - low, 1e-300);
        const double size = magnitude(-3, 4);
        const double bend = uniform(0.1, 3.0);
        const int kind = integer(0, 3);
        const double noisy = heads() ? magnitude(-12, -2) : 0.0;
        const bool typed = heads();
        Values y;
        for (const double at : x) {
            const double t = (at - low) / span;
            double value = kind == 0   ? std::sin(bend * t)
                           : kind == 1 ? std::exp(bend * t)
                           : kind == 2 ? t + 0.1 * bend * t * t
                                       : 1.0 / (bend + t);
            value = size * (value + noisy * uniform(-1.0, 1.0));
            y.push_back(typed ? std::round(value * 1e4) * 1e-4 : value);
        }
        return y;
    }
    Values any_values(const Values &x)
    {
        const double size = magnitude(-3, 4);
        return heads() ? curve(x) : scatter(static_cast<int>(x.size()), -size, size);
    }

    Set noise()
    {
        const int count = integer(1, 8);
        const double reach = magnitude(-3, 4);
        const int n = integer(count, 64);
        return {scatter(n, heads() ? 0.0 : -reach, reach), scatter(n, -100.0, 100.0),
                static_cast<std::size_t>(count)};
    }
    Set smooth()
    {
        const int count = integer(2, 8);
        const int n = integer(count, 64);
        const double reach = magnitude(-2, 3);
        Values x;
        for (int i = 0; i < n; ++i)
            x.push_back(reach * (i + (heads() ? 0.0 : uniform(-0.3, 0.3))) / n);
        return {x, curve(x), static_cast<std::size_t>(count)};
    }
    Set as_many_as_points()
    {
        const int n = integer(1, 8);
        const double reach = magnitude(-3, 4);
        const Values x = scatter(n, -reach, reach);
        return {x, any_values(x), static_cast<std::size_t>(n)};
    }
    Set few_distinct()
    {
        const int count = integer(2, 8);
        const Values places = scatter(integer(1, 10), -50.0, 50.0);
        const int n = integer(1, 40);
        Values x;
        for (int i = 0; i < n; ++i)
            x.push_back(places[static_cast<std::size_t>(engine() % places.size())]);
        return {x, any_values(x), static_cast<std::size_t>(count)};
    }
    // Points about a few set points, and a few far from all of them.
    Set clusters()
    {
        const int count = integer(3, 8);
        const double span = magnitude(-1, 3);
        const double width = span * magnitude(-6, -1);
        const Values places = scatter(integer(2, 4), 0.0, span * (heads() ? 1.0 : 0.1));
        const int n = integer(count, count + (heads() ? 4 : 40));
        Values x = scatter(integer(1, 3), 0.0, span);
        while (static_cast<int>(x.size()) < n) {
            const double place = places[static_cast<std::size_t>(engine() % places.size())];
            x.push_back(place + uniform(-width, width));
        }
        return {x, any_values(x), static_cast<std::size_t>(count)};
    }
    Set far_from_zero()
    {
        const int count = integer(2, 8);
        const int n = integer(count, 64);
        const double reach = magnitude(-2, 3);
        const double offset = reach * magnitude(1, 12) * (heads() ? 1.0 : -1.0);
        Values x = scatter(n, offset, offset + reach);
        return {x, any_values(x), static_cast<std::size_t>(count)};
    }
    double next_to(double place, int steps)
    {
        return place + steps * (std::nextafter(place, 2 * place) - place);
    }
    // A few units in the last place apart: all points in one group; the same
    // with a point on either side, which up to degree 4 is within 62 digits
    // whatever the values; or twos and threes all over the range.
    Set near_equal()
    {
        const int kind = integer(0, 2);
        const int count = integer(2, kind == 1 ? 5 : 8);
        const int n = integer(count, 30);
        const int steps = heads() ? 20 : 100000;
        const double place = magnitude(-3, 3);
        Values x;
        for (int i = 0; i < n; ++i) {
            const double from = kind != 2    ? place
                                : i % 3 == 0 ? uniform(1.0, 2.0) * place
                                             : x.back();
            x.push_back(next_to(from, integer(0, steps)));
        }
        if (kind == 1) {
            x.back() = place * 1.5;
            x.front() = place * 0.5;
        }
        return {x, any_values(x), static_cast<std::size_t>(count)};
    }
    // Whole numbers through which a polynomial of a lower degree runs, so that
    // some coefficients are exactly 0.
    Set exact_polynomial()
    {
        const int count = integer(2, 8);
        const int degree = integer(0, std::min(count - 1, 5));
        const int n = integer(2, 64);
        const double step = std::ldexp(1.0, integer(-4, 4));
        Values coeffs;
        for (int k = 0; k <= degree; ++k)
            coeffs.push_back(heads() ? 0.0 : integer(-9, 9));
        Set set;
        for (int i = 0; i < n; ++i) {
            set.x.push_back(step * integer(-40, 40));
            double y = 0.0;
            for (std::size_t k = coeffs.size(); k-- > 0;)
                y = y * set.x.back() + coeffs[k];
            set.y.push_back(y);
        }
        set.coeff_count = static_cast<std::size_t>(count);
        return set;
    }

    std::mt19937_64 engine;
};

} // namespace pointsets

#endif
