// tarn-cli diff: what changed between two roaming lists (or two MMSS files of one kind), by what
// the records mean rather than where they stand. Exit status as diff has it: 0 same, 1
// different, 2 trouble.
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>

#include "analysis/Behaviour.h"
#include "analysis/DiffReport.h"
#include "analysis/Providers.h"
#include "cli/Command.h"
#include "cli/ProviderOption.h"

namespace Tarn::Cli {
namespace {

// "auto" colours only a terminal that can show it, and steps aside for NO_COLOR, as git does.
bool UseColor(const std::string& when) {
    if (when == "always") return true;
    if (when == "never") return false;
    if (std::getenv("NO_COLOR")) return false;
    const char* term = std::getenv("TERM");
    if (term && std::string(term) == "dumb") return false;
    return ::isatty(STDOUT_FILENO) == 1;
}

// What handsets do differently with the second list, grouped by system.
int BehaviourDiff(const std::string& a, const std::string& b, int part, bool json,
                  const ProviderOption& providers) {
    std::string error;
    std::unique_ptr<Analysis::LoadedList> listA, listB;
    if (!Analysis::LoadListPair(a, b, part, listA, listB, error)) {
        PrintError("diff", error);
        return kExitUsage;
    }
    auto cmp = Analysis::CompareBehaviour(*listA->data, *listB->data);
    if (json) {
        std::cout << Analysis::BehaviourDiffJson(*cmp).dump(2) << '\n';
    } else {
        const Analysis::ProviderDirectory& dir = providers.Directory("diff");
        std::cout << Analysis::BehaviourDiffText(*cmp, dir.Empty() ? nullptr : &dir);
    }
    return cmp->Same() ? kExitOk : kExitFailure;
}

int Diff(const std::string& a, const std::string& b, int part, bool json, const std::string& color,
         const ProviderOption& providers) {
    std::string error;
    auto cmp = Analysis::CompareFiles(a, b, part, error);
    if (!cmp) {
        PrintError("diff", error);
        return kExitUsage;
    }
    Analysis::TextStyle style;
    style.color = !json && UseColor(color);
    if (cmp->roamingLists) {
        const CRLData& la = *cmp->listA->data;
        const CRLData& lb = *cmp->listB->data;
        // A reviewer reads "SID 4139" faster as the operator behind it.
        const Analysis::ProviderDirectory& dir = providers.Directory("diff");
        if (json) {
            auto operators = [&dir](const CSysItem& item) {
                auto ops = Analysis::OperatorsForRecord(dir, item);
                return ops.empty() ? nlohmann::json() : Analysis::OperatorsJson(ops);
            };
            std::cout << Analysis::ListDiffJson(cmp->list, &la, &lb, operators).dump(2) << '\n';
        } else {
            style.label = [&dir](const CSysItem& item) {
                return Analysis::OperatorLabel(Analysis::OperatorsForRecord(dir, item));
            };
            std::cout << Analysis::ListDiffText(cmp->list, la, lb, style);
        }
    } else {
        if (json) std::cout << Analysis::MmssDiffJson(cmp->mmss).dump(2) << '\n';
        else std::cout << Analysis::MmssDiffText(cmp->mmss, style);
    }
    return cmp->Same() ? kExitOk : kExitFailure;
}

const CommandRegistrar kDiff(90, "diff", [](CLI::App& app) {
    struct Args {
        std::string a, b, color = "auto";
        int part = 1;
        bool json = false, behaviour = false;
        ProviderOption providers;
    };
    auto args = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand(
        "diff", "What changed between two roaming lists, or two MMSS files of one kind "
                "(exit 0 same, 1 different, 2 error)");
    sub->add_option("A", args->a, "The first (older) file")->required();
    sub->add_option("B", args->b, "The second (newer) file")->required();
    sub->add_flag("--json", args->json, "One JSON object instead of text");
    sub->add_flag("--behaviour,--behavior", args->behaviour,
                  "Compare what handsets do with the two roaming lists, for every system they "
                  "could find, instead of their records");
    sub->add_option("--part", args->part, "Which list of concatenated roaming lists: 1 or 2")
        ->check(CLI::Range(1, 2));
    sub->add_option("--color", args->color, "Colour the text: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    args->providers.AddTo(sub);
    return std::function<int()>(
        [args] {
            return args->behaviour ? BehaviourDiff(args->a, args->b, args->part, args->json, args->providers)
                                   : Diff(args->a, args->b, args->part, args->json, args->color, args->providers);
        });
});

}  // namespace
}  // namespace Tarn::Cli
