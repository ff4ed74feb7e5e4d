// SPDX-License-Identifier: GPL-3.0-or-later
//
// The polynomial fit at a full table, 64 points and 8 coefficients, against
// the general least squares of GSL on the same data. GSL's side has its
// workspace, matrices and design matrix ready beforehand, so that only the
// solution is timed; the fit's side starts from the points. Ends with the ratio
// of the medians and status 1 when that is above the limit.
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

void BM_polynomialfit(benchmark::State &state)
{
    const Data &points = data();
    std::array<double, COEFFS> coeffs{};
    for (auto run : state) {
        static_cast<void>(run);
        polynomialfit(POINTS, COEFFS, points.x.data(), points.y.data(), coeffs.data());
        benchmark::DoNotOptimize(coeffs);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_polynomialfit);

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
    return bench::run(argc, argv, {{"BM_polynomialfit", "BM_gsl_multifit_linear", 1.0}});
}
