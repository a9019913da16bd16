// Runs the registered benchmarks and prints each one's CPU time as a ratio to a baseline measured
// in the same run: on a shared machine the wall clock measures the neighbours as much as the code.
#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace Tarn::Bench {

// The baseline pass: the roaming list CRC one byte at a time through one 256-entry table. It stays
// bytewise whatever the product's own CRC does, so ratios measured before and after a faster CRC
// are ratios to the same yardstick.
inline uint16_t BytewiseCrc16(const uint8_t* buffer, size_t length) {
    static const std::array<uint16_t, 256> table = [] {
        std::array<uint16_t, 256> t{};
        for (unsigned i = 0; i < 256; ++i) {
            uint16_t reg = static_cast<uint16_t>(i << 8);
            for (int step = 0; step < 8; ++step)
                reg = static_cast<uint16_t>((reg & 0x8000) ? (reg << 1) ^ 0x1021 : reg << 1);
            t[i] = reg;
        }
        return t;
    }();
    uint16_t reg = 0xFFFF;
    for (size_t i = 0; i < length; ++i)
        reg = static_cast<uint16_t>((reg << 8) ^ table[((reg >> 8) ^ buffer[i]) & 0xFF]);
    return static_cast<uint16_t>(reg ^ 0xFFFF);
}

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
