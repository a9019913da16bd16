// Runs the registered benchmarks and prints each one's CPU time as a ratio to a baseline measured
// in the same run: on a shared machine the wall clock measures the neighbours as much as the code.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace Tarn::Bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times_[run.benchmark_name()] = run.GetAdjustedCPUTime();
    }
    const std::map<std::string, double>& Times() const { return times_; }

private:
    std::map<std::string, double> times_;
};

// The body of a bench program's main: runs everything, then prints "<name>: ratio to <label>: N".
inline int RunWithRatios(int argc, char** argv, const std::string& baseline, const char* label) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    const auto& times = reporter.Times();
    const auto base = times.find(baseline);
    if (base == times.end() || base->second <= 0) return 0;
    for (const auto& [name, time] : times)
        if (name != base->first)
            std::printf("%s: ratio to %s: %.1f\n", name.c_str(), label, time / base->second);
    return 0;
}

}  // namespace Tarn::Bench
