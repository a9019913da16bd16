// tarn-cli optimize: the smallest roaming list the optimiser can make that every handset treats
// as it treats the input, proven by the behaviour comparison before anything is written.
#include <iostream>
#include <nlohmann/json.hpp>

#include "analysis/ListSource.h"
#include "analysis/Optimize.h"
#include "cli/Command.h"
#include "formats/FileKinds.h"
#include "foundation/AtomicFile.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"

namespace Tarn::Cli {
namespace {

// The output in the form its name asks for: the text form for ".txt", JSON for ".json", else a
// binary list; atomically in every case.
bool WriteOutput(const CRLData& data, int version, const std::string& out, std::string& error) {
    try {
        if (KindForOpen(out) == FileKind::RoamingListText)
            return WriteFileAtomically(out, RenderRoamingListText(data, version), error);
        if (out.size() >= 5 && out.compare(out.size() - 5, 5, ".json") == 0)
            return WriteFileAtomically(out, ListToJson(data, version, false).dump(2) + "\n", error);
        auto manager = CreateClassFactory(version)->CreateManager();
        auto copy = std::make_unique<CRLData>(data);
        manager->AttachData(copy);
        CRLFile file;
        if (!manager->WriteList(file)) {
            error = manager->GetLastError();
            return false;
        }
        return file.Save(out, error);
    } catch (const std::exception& e) {
        error = e.what();
        return false;
    }
}

int Optimize(const std::string& in, const std::string& out, bool report, bool json) {
    std::string error;
    auto list = Analysis::LoadRoamingList(in, error);
    if (!list) {
        PrintError("optimize", error);
        return kExitUsage;
    }
    if (list->form == Analysis::ListForm::Concatenated) {
        PrintError("optimize", in +
                                   " is a concatenated roaming list: split it (tarn-cli split) and "
                                   "optimise each list on its own");
        return kExitUsage;
    }
    Analysis::OptimizeResult result = Analysis::OptimizeList(*list->data, list->version);
    if (!result.error.empty()) {
        PrintError("optimize", in + ": " + result.error);
        return kExitFailure;
    }
    if (json)
        std::cout << Analysis::OptimizeReportJson(result).dump(2) << '\n';
    else if (report)
        std::cout << in << ": " << Analysis::OptimizeReportText(result);
    if (!result.proven) {
        PrintError("optimize", "the optimised list does not behave as " + in + " does (" +
                                   std::to_string(result.differences) +
                                   " observation classes differ); nothing was written");
        return kExitFailure;
    }
    if (!WriteOutput(*result.data, list->version, out, error)) {
        PrintError("optimize", out + ": " + error);
        return kExitFailure;
    }
    if (!json && !report)
        std::cout << out << ": " << result.bytesBefore << " -> " << result.bytesAfter << " bytes\n";
    return kExitOk;
}

const CommandRegistrar kOptimize(95, "optimize", [](CLI::App& app) {
    struct Args {
        std::string in, out;
        bool report = false, json = false;
    };
    auto args = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand(
        "optimize",
        "Write the smallest roaming list that every handset treats as it treats IN "
        "(proven before it is written)");
    sub->add_option("IN", args->in, "The roaming list (binary, text or JSON form)")->required();
    sub->add_option("-o,--output", args->out,
                    "The smaller list (\".txt\": text form, \".json\": JSON)")
        ->required();
    sub->add_flag("--report", args->report, "Say what each step saved");
    sub->add_flag("--json", args->json, "The report as one JSON object");
    return std::function<int()>(
        [args] { return Optimize(args->in, args->out, args->report, args->json); });
});

}  // namespace
}  // namespace Tarn::Cli
