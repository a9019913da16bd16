// System selection in its batch form: thousands of observations against a list near the 64 KB
// limit, answered through the selector's index, against one full scan of the system table per
// observation (what the index saves) and against loading the list (what a run costs anyway).
#include <benchmark/benchmark.h>

#include <cstdio>

#include "analysis/ListSource.h"
#include "analysis/Selection.h"
#include "bench/BenchRatio.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"

namespace {

using namespace Tarn;
using namespace Tarn::Analysis;

constexpr int kObservations = 5000;

// An IS-683C list of 8-octet IS-2000 records in GEOs of ten, a few MCC/MNC and subnet records
// among them, written to bytes as a handset would receive it.
const std::vector<uint8_t>& LargeList() {
    static const std::vector<uint8_t> bytes = [] {
        nlohmann::json j = {{"version", "IS-683C"},
                            {"header", {{"prefListId", 1}, {"prefOnly", false}, {"defRoamInd", 1}}}};
        nlohmann::json acq = nlohmann::json::array();
        for (int i = 0; i < 8; ++i)
            acq.push_back({{"type", 6}, {"channels", {25 + i, 50 + i, 75 + i, 100 + i}}});
        j["acquisitionTable"] = acq;
        nlohmann::json sys = nlohmann::json::array();
        for (int i = 0; i < 7900; ++i) {
            nlohmann::json r = {{"negPref", i % 17 ? 1 : 0}, {"geography", i % 10 == 0 ? 0 : 1},
                                {"priority", i % 3 ? 1 : 0}, {"acqIndex", i % 8}, {"roamInd", i % 3},
                                {"assnIncluded", 0}};
            if (i % 500 == 1) r.update({{"type", 1}, {"subnet", "2001:db8:" + std::to_string(i) + "::/48"}});
            else if (i % 500 == 2) r.update({{"type", 14}, {"mcc", 310}, {"imsi11_12", i % 100}});
            else r.update({{"type", 0}, {"sid", 1 + i % 4000}, {"nidIncl", i % 2}, {"nid", i % 65535}});
            sys.push_back(r);
        }
        j["systemTable"] = sys;
        int version = 0;
        auto data = ListFromJson(j, version);
        auto manager = CreateClassFactory(version)->CreateManager();
        manager->AttachData(data);
        CRLFile out;
        if (!manager->WriteList(out)) std::fprintf(stderr, "%s\n", manager->GetLastError().c_str());
        return out.TakeBytes();
    }();
    return bytes;
}

const LoadedList& Loaded() {
    static const std::unique_ptr<LoadedList> list = [] {
        std::string error;
        auto l = LoadRoamingListBytes(LargeList(), "bench", error);
        if (!l) std::fprintf(stderr, "%s\n", error.c_str());
        return l;
    }();
    return *list;
}

const std::vector<Observation>& Observations() {
    static const std::vector<Observation> observations = [] {
        std::vector<Observation> out;
        for (int i = 0; i < kObservations; ++i) {
            ObservationFields f;
            if (i % 10 == 7) {
                f.mcc = "310";
                f.mnc = std::to_string(10 + i % 90);
            } else if (i % 10 == 9) {
                f.subnet = "2001:db8:" + std::to_string(i % 8000) + "::1/128";
            } else {
                f.sid = std::to_string(i * 7 % 5000);
                if (i % 2) f.nid = std::to_string(i % 7);
                // As a std::string value: GCC 12 at -O3 misreads this literal's copy as overlapping.
                f.band = std::string("1");
                f.channel = std::to_string(25 + i % 100);
            }
            Observation o;
            std::string error;
            if (!ParseObservation(f, o, error)) std::fprintf(stderr, "%s\n", error.c_str());
            out.push_back(o);
        }
        return out;
    }();
    return observations;
}

void LoadList(benchmark::State& state) {
    for (auto _ : state) {
        std::string error;
        benchmark::DoNotOptimize(LoadRoamingListBytes(LargeList(), "bench", error));
    }
}

// What the batch would cost without the index: every record asked about every observation.
void LinearScanPerObservation(benchmark::State& state) {
    const ListFacts facts(*Loaded().data);
    for (auto _ : state) {
        size_t matches = 0;
        for (const auto& o : Observations())
            for (size_t i = 0; i < facts.SystemCount(); ++i)
                matches += MatchSpecificity(facts.System(i), o).has_value();
        benchmark::DoNotOptimize(matches);
    }
    state.SetItemsProcessed(state.iterations() * kObservations);
}

void IndexedBatch(benchmark::State& state) {
    for (auto _ : state) {
        const Selector selector(*Loaded().data);
        size_t lines = 0;
        for (const auto& o : Observations()) lines += FormatSelectionJson(selector.Select(o)).size();
        benchmark::DoNotOptimize(lines);
    }
    state.SetItemsProcessed(state.iterations() * kObservations);
}

}  // namespace

BENCHMARK(LoadList)->Unit(benchmark::kMillisecond);
BENCHMARK(LinearScanPerObservation)->Unit(benchmark::kMillisecond);
BENCHMARK(IndexedBatch)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    std::printf("list of %zu bytes, %d observations\n", LargeList().size(), kObservations);
    return Tarn::Bench::RunWithRatios(argc, argv, "LoadList", "loading the list");
}
