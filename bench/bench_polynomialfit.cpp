// SPDX-License-Identifier: GPL-3.0-or-later
//
// The polynomial fit at a full table, 64 points and 8 coefficients, against
// the general least squares of GSL on the same data. GSL's side has its
// workspace, matrices and design matrix ready beforehand, so that only the
// solution is timed; the fit's side starts from the points. The same with points
// in tight groups, which take the fit's slow way. Ends with the ratios of the
// medians and status 1 when one is above its limit.
#include <benchmark/benchmark.h>
#include <gsl/gsl_multifit.h>

#include <array>
#include <cmath>

#include "bench/ratios.h"
#include "host/operations.h"

namespace
{

constexpr int POINTS = 64;
constexpr int COEFFS = 8;

struct Data {
    std::array<double, POINTS> x;
    std::array<double, POINTS> y;
};

// A thermocouple's millivolts against degrees, with the scatter of a capture.
const Data &data()
{
    static const Data points = [] {
        Data made{};
        for (unsigned i = 0; i < POINTS; ++i) {
            const double mv = 0.86 * i - 3.2 + 0.01 * std::sin(12.9898 * i);
            made.x[i] = mv;
            made.y[i] = 18.4 * mv - 0.04 * mv * mv + 3e-4 * mv * mv * mv + std::cos(78.233 * i);
        }
        return made;
    }();
    return points;
}

// Two set points with a little scatter, and values without any: the slow way.
const Data &groups()
{
    static const Data points = [] {
        Data made{};
        for (unsigned i = 0; i < POINTS; ++i) {
            made.x[i] = (i % 2 == 0 ? 10.0 : 30.0) + 1e-7 * std::sin(12.9898 * i);
            made.y[i] = i % 2 == 0 ? 20.0 : 60.0;
        }
        return made;
    }();
    return points;
}

void time_fit(benchmark::State &state, const Data &points)
{
    std::array<double, COEFFS> coeffs{};
    for (auto run : state) {
        static_cast<void>(run);
        polynomialfit(POINTS, COEFFS, points.x.data(), points.y.data(), coeffs.data());
        benchmark::DoNotOptimize(coeffs);
        benchmark::ClobberMemory();
    }
}

void BM_polynomialfit(benchmark::State &state)
{
    time_fit(state, data());
}
BENCHMARK(BM_polynomialfit);

void BM_polynomialfit_groups(benchmark::State &state)
{
    time_fit(state, groups());
}
BENCHMARK(BM_polynomialfit_groups);

void BM_gsl_multifit_linear(benchmark::State &state)
{
    const Data &points = data();
    gsl_matrix *powers = gsl_matrix_alloc(POINTS, COEFFS);
    gsl_matrix *covariance = gsl_matrix_alloc(COEFFS, COEFFS);
    gsl_vector *coeffs = gsl_vector_alloc(COEFFS);
    gsl_multifit_linear_workspace *workspace = gsl_multifit_linear_alloc(POINTS, COEFFS);
    for (unsigned i = 0; i < POINTS; ++i) {
        double power = 1.0;
        for (unsigned k = 0; k < COEFFS; ++k, power *= points.x[i])
            gsl_matrix_set(powers, i, k, power);
    }
    const gsl_vector_const_view y = gsl_vector_const_view_array(points.y.data(), POINTS);
    double chi_squared = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        gsl_multifit_linear(powers, &y.vector, coeffs, covariance, &chi_squared, workspace);
        benchmark::DoNotOptimize(chi_squared);
        benchmark::ClobberMemory();
    }
    gsl_multifit_linear_free(workspace);
    gsl_vector_free(coeffs);
    gsl_matrix_free(covariance);
    gsl_matrix_free(powers);
}
BENCHMARK(BM_gsl_multifit_linear);

} // namespace

int main(int argc, char **argv)
{
    return bench::run(argc, argv,
                      {{"BM_polynomialfit", "BM_gsl_multifit_linear", 0.6},
                       {"BM_polynomialfit_groups", "BM_gsl_multifit_linear", 80.0}});
}
