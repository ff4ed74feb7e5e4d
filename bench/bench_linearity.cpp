// SPDX-License-Identifier: GPL-3.0-or-later
//
// The figures of a linearity verification over a full session, 64 points,
// against one straight-line regression through the same points. The figures are
// timed with all that goes into the record and the dump, but not the writing.
#include <array>
#include <cmath>

#include "bench/ratios.h"
#include "calibration/linefit.h"
#include "frame/functions.h"
#include "reports/linearityfigures.h"

// Nothing here tells the user anything.
void show_information(const char *) {}
void show_warning(const char *, const char *) {}

namespace
{

constexpr unsigned POINTS = 64;

struct Data {
    std::array<POINT_STATISTICS, POINTS> points;
    std::array<double, POINTS> x;
    std::array<double, POINTS> y;
};

// A sensor from that value on, over a span of 1000, with the scatter of a capture.
Data data_from(double first)
{
    Data fresh{};
    for (unsigned i = 0; i < POINTS; ++i) {
        fresh.x[i] = first + 1000.0 * i / (POINTS - 1);
        fresh.y[i] = fresh.x[i] + 0.3 * std::sin(12.9898 * i);
        fresh.points[i].eu_reference = fresh.x[i];
        fresh.points[i].eu_mean = fresh.y[i];
        fresh.points[i].eu_std = 0.01;
        fresh.points[i].eu_min = fresh.y[i] - 0.02;
        fresh.points[i].eu_max = fresh.y[i] + 0.02;
    }
    return fresh;
}

void run_figures(benchmark::State &state, double first)
{
    const Data session = data_from(first);
    const char units[16] = "kPa";
    LINE_RPT record = {};
    record.max_expected_val = first + 1000.0;
    for (auto run : state) {
        static_cast<void>(run);
        const LinearityFigures figures =
            linearity_figures(session.points.data(), POINTS, units, record);
        benchmark::DoNotOptimize(&figures);
        benchmark::ClobberMemory();
    }
}

void BM_linearity_figures(benchmark::State &state)
{
    run_figures(state, 0.0);
}
BENCHMARK(BM_linearity_figures);

// Pressures in Pa: beyond what 8 decimals of a double still tell apart.
void BM_linearity_figures_near_1e8(benchmark::State &state)
{
    run_figures(state, 1e8);
}
BENCHMARK(BM_linearity_figures_near_1e8);

// Between the two: decimals of a double that are finer than 1e-8 by a hair.
void BM_linearity_figures_near_5e7(benchmark::State &state)
{
    run_figures(state, 5e7);
}
BENCHMARK(BM_linearity_figures_near_5e7);

void BM_fit_line(benchmark::State &state)
{
    const Data session = data_from(0.0);
    double slope = 0.0;
    double intercept = 0.0;
    double r_squared = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        fit_line(POINTS, session.x.data(), session.y.data(), &slope, &intercept, &r_squared, 0.0);
        benchmark::DoNotOptimize(slope);
        benchmark::DoNotOptimize(intercept);
        benchmark::DoNotOptimize(r_squared);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_fit_line);

} // namespace

int main(int argc, char **argv)
{
    return bench::run(argc, argv,
                      {{"BM_linearity_figures", "BM_fit_line", 20.0},
                       {"BM_linearity_figures_near_5e7", "BM_fit_line", 20.0},
                       {"BM_linearity_figures_near_1e8", "BM_fit_line", 20.0}});
}
