// Opening the largest roaming list (16,383 system rows) into the editor's grids, shown and painted
// once on the offscreen platform, against what `tarn-cli text` does with the same file: read it,
// find its version and render its text.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QWidget>
#include <cstdio>

#include "app/Document.h"
#include "app/RLDoc.h"
#include "bench/BenchRatio.h"
#include "foundation/MessageTable.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"

namespace {

using namespace Tarn;

std::string g_path;

// An IS-683A list of 16,383 system records (one in four preferred) that stays under the
// 65,535-byte limit, with a handful of acquisition records.
bool WriteLargeList(const std::string& path) {
    nlohmann::json j = {{"version", "IS-683A"},
                        {"header", {{"prefListId", 1}, {"prefOnly", false}, {"defRoamInd", 1}}}};
    nlohmann::json acq = nlohmann::json::array();
    for (int i = 0; i < 6; ++i) acq.push_back({{"type", 6}, {"channels", {25 + i, 50 + i}}});
    j["acquisitionTable"] = acq;
    nlohmann::json sys = nlohmann::json::array();
    for (int i = 0; i < 16383; ++i) {
        const bool pref = i % 4 == 0;
        sys.push_back({{"type", 0}, {"negPref", pref ? 1 : 0}, {"geography", i % 16 == 0 ? 0 : 1},
                       {"priority", pref ? 1 : 0}, {"acqIndex", i % 6}, {"roamInd", pref ? 1 : 0},
                       {"sid", 1 + i % 32000}, {"nidIncl", 0}, {"nid", 65535}});
    }
    j["systemTable"] = sys;
    int version = 0;
    auto data = ListFromJson(j, version);
    auto manager = CreateClassFactory(version)->CreateManager();
    manager->AttachData(data);
    CRLFile out;
    std::string error;
    if (!manager->WriteList(out) || !out.Save(path, error)) {
        std::fprintf(stderr, "bench_editor_open: %s %s\n", manager->GetLastError().c_str(),
                     error.c_str());
        return false;
    }
    std::printf("list: %llu bytes, 16383 system rows\n",
                static_cast<unsigned long long>(out.GetLength()));
    return true;
}

void CliText(benchmark::State& state) {
    for (auto _ : state) {
        CRLFile file;
        std::string error;
        file.Load(g_path, error);
        DetectResult r = DetectVersion(file);
        if (!r.manager) state.SkipWithError("not read");
        benchmark::DoNotOptimize(RenderRoamingListText(r.manager->GetData(), r.manager->GetVersion()));
    }
}

void EditorOpen(benchmark::State& state) {
    CDocTemplate tmpl(Msg::TemplateRoamingList, [](CDocTemplate& t) -> std::unique_ptr<CDocument> {
        return std::make_unique<CRLDoc>(t, false);
    });
    for (auto _ : state) {
        auto doc = tmpl.CreateDocument();
        if (!doc->OnOpenDocument(QString::fromStdString(g_path))) state.SkipWithError("not opened");
        std::unique_ptr<QWidget> view = doc->CreateMainView();
        view->resize(1280, 900);
        view->show();
        QApplication::processEvents();
        benchmark::DoNotOptimize(view.get());
    }
}

BENCHMARK(CliText)->Unit(benchmark::kMillisecond);
BENCHMARK(EditorOpen)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    g_path = (dir.path() + "/largest.prl").toStdString();
    if (!WriteLargeList(g_path)) return 1;
    return Tarn::Bench::RunWithRatios(argc, argv, "CliText", "tarn-cli text");
}
