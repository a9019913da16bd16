// The list diff over two lists near the 65,535-byte limit (8,150 system records in GEOs of ten),
// against building the facts of both lists once: pairing is hashed by identity and only the
// priority comparison works per GEO, so the ratio must stay a small constant, and the list at
// half size must take about half the time.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>

#include "analysis/Diff.h"
#include "analysis/ListFacts.h"
#include "bench/BenchRatio.h"
#include "roaming_list/RLJson.h"

namespace {

using namespace Tarn;
using nlohmann::json;

// `records` IS-2000 systems in GEOs of `geoSize`; the rebuild reverses the acquisition table,
// moves the head of every GEO to its bottom, drops every 50th system and adds as many new ones.
std::unique_ptr<CRLData> MakeList(int records, int geoSize, bool rebuilt) {
    json acq = json::array();
    for (int i = 0; i < 8; ++i) {
        const int k = rebuilt ? 7 - i : i;
        acq.push_back({{"type", 6}, {"channels", {25 + k, 50 + k, 75 + k, 100 + k}}});
    }
    json sys = json::array();
    for (int g = 0; g * geoSize < records; ++g) {
        std::vector<int> members;
        for (int i = g * geoSize; i < std::min(records, (g + 1) * geoSize); ++i) members.push_back(i);
        if (rebuilt) std::rotate(members.begin(), members.begin() + 1, members.end());
        bool first = true;
        for (int i : members) {
            int sid = 1 + i % 32000, nid = i % 65535;
            if (rebuilt && i % 50 == 7) nid = (nid + 1) % 65535;
            const int acqIndex = rebuilt ? 7 - i % 8 : i % 8;
            sys.push_back({{"type", 0}, {"negPref", 1}, {"geography", first ? 0 : 1},
                           {"priority", 1}, {"acqIndex", acqIndex}, {"roamInd", i % 3},
                           {"assnIncluded", 0}, {"sid", sid}, {"nidIncl", 1}, {"nid", nid}});
            first = false;
        }
    }
    json j = {{"version", "IS-683C"},
              {"header", {{"prefListId", 1}, {"prefOnly", true}, {"defRoamInd", 1}}},
              {"acquisitionTable", acq},
              {"systemTable", sys}};
    int version = 0;
    return ListFromJson(j, version);
}

struct Pair {
    std::unique_ptr<CRLData> a, b;
};

const Pair& Lists(int records, int geoSize) {
    static std::map<std::pair<int, int>, Pair> cache;
    auto& p = cache[{records, geoSize}];
    if (!p.a) p = {MakeList(records, geoSize, false), MakeList(records, geoSize, true)};
    return p;
}

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
    return Tarn::Bench::RunWithRatios(argc, argv, "FactsOfBoth", "building the facts of both lists");
}
