// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs the registered benchmarks and holds the ratios of their medians against
// limits. Repetitions are interleaved, so that a change of the processor's clock
// strikes both sides of a ratio.
#ifndef BENCH_RATIOS_H
#define BENCH_RATIOS_H

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench
{

struct Ratio {
    std::string measured; // names of two benchmarks
    std::string reference;
    double limit;
};

class Medians : public benchmark::ConsoleReporter
{
public:
    Medians() : ConsoleReporter(OO_None) {} // no colours in a log

    std::map<std::string, double> times;

    void ReportRuns(const std::vector<Run> &runs) override
    {
        static const std::string suffix = "_median";
        for (const Run &run : runs) {
            const std::string name = run.benchmark_name();
            const std::size_t place = name.rfind(suffix);
            if (place != std::string::npos && place + suffix.size() == name.size())
                times[name.substr(0, place)] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

// 0 when every ratio keeps its limit, 1 when one does not, 2 when one could not
// be measured.
inline int run(int argc, char **argv, const std::vector<Ratio> &ratios)
{
    std::string repetitions = "--benchmark_repetitions=9";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::vector<char *> arguments = {argv[0], repetitions.data(), interleaving.data(),
                                     aggregates.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    int status = 0;
    for (const Ratio &ratio : ratios) {
        const double measured = medians.times[ratio.measured];
        const double reference = medians.times[ratio.reference];
        if (!(measured > 0.0) || !(reference > 0.0)) {
            std::fprintf(stderr, "no ratio %s/%s: one of the two did not run\n",
                         ratio.measured.c_str(), ratio.reference.c_str());
            return 2;
        }
        const double value = measured / reference;
        std::printf("ratio %s/%s: %.3f (limit %.2f)\n", ratio.measured.c_str(),
                    ratio.reference.c_str(), value, ratio.limit);
        if (value > ratio.limit)
            status = 1;
    }
    return status;
}

} // namespace bench

#endif
