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

// A sensor of 0 to 1000 with the scatter of a capture.
const Data &data()
{
    static const Data made = [] {
        Data fresh{};
        for (unsigned i = 0; i < POINTS; ++i) {
            fresh.x[i] = 1000.0 * i / (POINTS - 1);
            fresh.y[i] = fresh.x[i] + 0.3 * std::sin(12.9898 * i);
            fresh.points[i].eu_reference = fresh.x[i];
            fresh.points[i].eu_mean = fresh.y[i];
            fresh.points[i].eu_std = 0.01;
            fresh.points[i].eu_min = fresh.y[i] - 0.02;
            fresh.points[i].eu_max = fresh.y[i] + 0.02;
        }
        return fresh;
    }();
    return made;
}

void BM_linearity_figures(benchmark::State &state)
{
    const Data &session = data();
    const char units[16] = "kPa";
    LINE_RPT record = {};
    record.max_expected_val = 1000.0;
    for (auto run : state) {
        static_cast<void>(run);
        const LinearityFigures figures =
            linearity_figures(session.points.data(), POINTS, units, record);
        benchmark::DoNotOptimize(&figures);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_linearity_figures);

void BM_fit_line(benchmark::State &state)
{
    const Data &session = data();
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
    return bench::run(argc, argv, {{"BM_linearity_figures", "BM_fit_line", 20.0}});
}
