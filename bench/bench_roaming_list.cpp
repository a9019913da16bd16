// Whole roaming lists close to the 65,535-byte limit of the size field (thousands of system
// records): reading with version detection, writing, rendering the text form and reading it back,
// each against one Crc16 pass over the same bytes.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench/BenchRatio.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItem.h"

namespace {

using namespace Tarn;

// An IS-683C list: a few acquisition records and as many 8-octet IS-2000 system records as fit.
const std::vector<uint8_t>& LargeList() {
    static const std::vector<uint8_t> bytes = [] {
        nlohmann::json j = {{"version", "IS-683C"},
                            {"header", {{"prefListId", 1}, {"prefOnly", true}, {"defRoamInd", 1}}}};
        nlohmann::json acq = nlohmann::json::array();
        for (int i = 0; i < 8; ++i)
            acq.push_back({{"type", 6}, {"channels", {25 + i, 50 + i, 75 + i, 100 + i}}});
        j["acquisitionTable"] = acq;
        nlohmann::json sys = nlohmann::json::array();
        for (int i = 0; i < 8150; ++i)
            sys.push_back({{"type", 0}, {"negPref", 1}, {"geography", i % 10 == 0 ? 0 : 1},
                           {"priority", 1}, {"acqIndex", i % 8}, {"roamInd", i % 3},
                           {"assnIncluded", 0}, {"sid", 1 + i % 32000}, {"nidIncl", 1},
                           {"nid", i % 65535}});
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

void Crc16Pass(benchmark::State& state) {
    std::vector<uint8_t> bytes = LargeList();
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes.data());
        benchmark::DoNotOptimize(Bench::BytewiseCrc16(bytes.data(), bytes.size()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void ReadWithDetection(benchmark::State& state) {
    for (auto _ : state) {
        CRLFile file(LargeList());
        DetectResult r = DetectVersion(file);
        if (!r.manager) state.SkipWithError(r.error.c_str());
        benchmark::DoNotOptimize(r.manager.get());
    }
}

void Write(benchmark::State& state) {
    CRLFile in(LargeList());
    DetectResult r = DetectVersion(in);
    for (auto _ : state) {
        CRLFile out;
        r.manager->WriteList(out);
        benchmark::DoNotOptimize(out.Bytes().data());
    }
}

void RenderText(benchmark::State& state) {
    CRLFile in(LargeList());
    DetectResult r = DetectVersion(in);
    for (auto _ : state)
        benchmark::DoNotOptimize(RenderRoamingListText(r.manager->GetData(), 3).size());
}

void ParseText(benchmark::State& state) {
    CRLFile in(LargeList());
    DetectResult r = DetectVersion(in);
    const std::string text = RenderRoamingListText(r.manager->GetData(), 3);
    for (auto _ : state) {
        TextDetectResult t = DetectTextVersion(text);
        if (!t.data) state.SkipWithError(t.error.c_str());
        benchmark::DoNotOptimize(t.data.get());
    }
}

BENCHMARK(Crc16Pass)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadWithDetection)->Unit(benchmark::kMicrosecond);
BENCHMARK(Write)->Unit(benchmark::kMicrosecond);
BENCHMARK(RenderText)->Unit(benchmark::kMicrosecond);
BENCHMARK(ParseText)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    std::printf("list size: %zu bytes\n", LargeList().size());
    return Tarn::Bench::RunWithRatios(argc, argv, "Crc16Pass", "Crc16 pass");
}
