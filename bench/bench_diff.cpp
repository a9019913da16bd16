// The list diff over two lists near the 65,535-byte limit (8,150 system records in GEOs of ten),
// against building the facts of both lists once: pairing is hashed by identity and only the
// priority comparison works per GEO, so the ratio must stay a small constant, and the list at
// half size must take about half the time.
#include <benchmark/benchmark.h>

#include "analysis/Diff.h"
#include "analysis/ListFacts.h"
#include "bench/BenchLists.h"
#include "bench/BenchRatio.h"

namespace {

using namespace Tarn;
using Bench::Lists;
using Bench::Pair;

void FactsOfBoth(benchmark::State& state) {
    const Pair& p = Lists(8150, 10);
    for (auto _ : state) {
        Analysis::ListFacts fa(*p.a), fb(*p.b);
        benchmark::DoNotOptimize(fa.GeoCount() + fb.GeoCount());
    }
}

void DiffRebuilt(benchmark::State& state) {
    const Pair& p = Lists(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    size_t changed = 0;
    for (auto _ : state) {
        Analysis::ListDiff d = Analysis::DiffLists(*p.a, 3, *p.b, 3);
        changed = d.sysChanged.size();
        benchmark::DoNotOptimize(changed);
    }
    state.counters["changed"] = static_cast<double>(changed);
}

void DiffIdentical(benchmark::State& state) {
    const Pair& p = Lists(8150, 10);
    for (auto _ : state) benchmark::DoNotOptimize(Analysis::DiffLists(*p.a, 3, *p.a, 3).Same());
}

BENCHMARK(FactsOfBoth);
BENCHMARK(DiffIdentical);
// Full size and half size in GEOs of ten; then the whole list as one GEO, where the priority
// comparison spans every record.
BENCHMARK(DiffRebuilt)->Args({8150, 10})->Args({4075, 10})->Args({8150, 8150});

}  // namespace

int main(int argc, char** argv) {
    return Tarn::Bench::RunWithRatios(argc, argv, "FactsOfBoth",
                                      "building the facts of both lists");
}
