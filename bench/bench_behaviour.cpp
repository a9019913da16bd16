// The behaviour comparison of two lists near the 65,535-byte limit (8,150 system records), against
// one load of such a list from its bytes (version detection included): a reviewer runs it on the
// lists they are about to sign off, so it must stay a small multiple of opening one of them.
#include <benchmark/benchmark.h>

#include "analysis/Behaviour.h"
#include "analysis/Optimize.h"
#include "bench/BenchLists.h"
#include "bench/BenchRatio.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

namespace {

using namespace Tarn;
using Bench::Lists;

const std::vector<uint8_t>& Bytes() {
    static const std::vector<uint8_t> bytes = [] {
        auto manager = CreateClassFactory(3)->CreateManager();
        auto copy = std::make_unique<CRLData>(*Lists(8150, 10).a);
        manager->AttachData(copy);
        CRLFile file;
        manager->WriteList(file);
        return file.Bytes();
    }();
    return bytes;
}

void LoadList(benchmark::State& state) {
    for (auto _ : state) {
        CRLFile file(Bytes());
        DetectResult r = DetectVersion(file);
        benchmark::DoNotOptimize(r.manager.get());
    }
    state.counters["bytes"] = static_cast<double>(Bytes().size());
}

void BehaviourRebuilt(benchmark::State& state) {
    const Bench::Pair& p =
        Lists(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    size_t changed = 0, classes = 0;
    for (auto _ : state) {
        auto cmp = Analysis::CompareBehaviour(*p.a, *p.b);
        changed = cmp->changes.size();
        classes = cmp->classes;
    }
    state.counters["classes"] = static_cast<double>(classes);
    state.counters["changed"] = static_cast<double>(changed);
}

void BehaviourIdentical(benchmark::State& state) {
    const Bench::Pair& p = Lists(8150, 10);
    for (auto _ : state) benchmark::DoNotOptimize(Analysis::CompareBehaviour(*p.a, *p.a)->Same());
}

void OptimizeLarge(benchmark::State& state) {
    const Bench::Pair& p = Lists(8150, 10);
    for (auto _ : state) benchmark::DoNotOptimize(Analysis::OptimizeList(*p.a, 3).proven);
}

BENCHMARK(LoadList);
BENCHMARK(BehaviourIdentical);
// Full size and half size in GEOs of ten; then the whole list as one GEO, where every record ranks
// against every other.
BENCHMARK(BehaviourRebuilt)->Args({8150, 10})->Args({4075, 10})->Args({8150, 8150});
BENCHMARK(OptimizeLarge);

}  // namespace

int main(int argc, char** argv) {
    return Tarn::Bench::RunWithRatios(argc, argv, "LoadList",
                                      "one load of the list from its bytes");
}
