// tarn-cli lint: the checks run before a list ships, with an operator's policy on top; one line a
// finding and a summary a file, or JSON.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "analysis/Lint.h"
#include "analysis/ListSource.h"
#include "analysis/MmssLint.h"
#include "analysis/Policy.h"
#include "cli/Command.h"
#include "cli/ProviderOption.h"
#include "formats/FileKinds.h"
#include "mmss/Mspl/MsplDocument.h"

namespace Tarn::Cli {
namespace {

using Analysis::Finding;
using Analysis::Severity;

struct LintOptions {
    std::vector<std::string> files;
    std::string policyPath;
    std::string msplPath;
    std::string failOn = "error";
    int part = 1;
    bool json = false;
    ProviderOption providers;
};

// The size the list has in a handset: the bytes of the binary list without the 5-byte prefix;
// for the text and JSON forms, what writing it in its version gives (0 when it cannot be
// written, and the size rule then stays silent).
size_t ListBytes(const Analysis::LoadedList& list) {
    if (list.byteSize) return list.byteSize - (list.prefixed ? 5 : 0);
    return Analysis::WrittenListSize(*list.data, list.version);
}

bool IsMmss(FileKind kind) {
    return kind != FileKind::None && kind != FileKind::RoamingList &&
           kind != FileKind::RoamingListText;
}

// The findings of one file; false with `error` when it cannot be read.
bool LintFile(const std::string& path, const LintOptions& options, const Analysis::Policy* policy,
              const Mspl::Data* mspl, const Analysis::ProviderDirectory& providers,
              std::vector<Finding>& findings, std::string& error) {
    if (IsMmss(KindForOpen(path))) {
        auto doc = ReadFileDocument(path, error);
        if (!doc) {
            error = path + ": " + error;
            return false;
        }
        findings = Analysis::LintMmssDocument(*doc, mspl, &providers);
        Analysis::FinishFindings(findings, policy);
        return true;
    }
    auto list = Analysis::LoadRoamingList(path, error, options.part);
    if (!list) return false;
    findings = Analysis::LintRoamingList(*list->data, ListBytes(*list), policy, &providers);
    return true;
}

std::string Plural(size_t n, const char* word) {
    return std::to_string(n) + " " + word + (n == 1 || std::string(word) == "info" ? "" : "s");
}

void PrintText(const std::string& path, const std::vector<Finding>& findings) {
    for (const auto& f : findings)
        std::cout << path << ": " << Analysis::SeverityName(f.severity) << ": " << f.rule << ": "
                  << f.Where() << ": " << f.message << '\n';
    const auto c = Analysis::CountFindings(findings);
    std::cout << path << ": " << Plural(c.error, "error") << ", " << Plural(c.warning, "warning")
              << ", " << Plural(c.info, "info") << '\n';
}

nlohmann::json ToJson(const std::string& path, const std::vector<Finding>& findings) {
    nlohmann::json items = nlohmann::json::array();
    for (const auto& f : findings) {
        nlohmann::json item = {{"rule", f.rule},
                               {"severity", Analysis::SeverityName(f.severity)},
                               {"table", Analysis::TableName(f.table)},
                               {"index", f.index ? nlohmann::json(*f.index) : nlohmann::json(nullptr)},
                               {"message", f.message}};
        if (!f.operators.empty()) item["operators"] = Analysis::OperatorsJson(f.operators);
        items.push_back(std::move(item));
    }
    const auto c = Analysis::CountFindings(findings);
    return {{"file", path},
            {"findings", std::move(items)},
            {"counts", {{"error", c.error}, {"warning", c.warning}, {"info", c.info}}}};
}

int RunLint(const LintOptions& options) {
    Analysis::Policy policy;
    std::string error;
    if (!options.policyPath.empty() && !Analysis::LoadPolicy(options.policyPath, policy, error)) {
        PrintError("lint", error);
        return kExitUsage;
    }
    std::unique_ptr<FileDocument> msplDoc;
    const Mspl::Data* mspl = nullptr;
    if (!options.msplPath.empty()) {
        msplDoc = ReadFileDocument(options.msplPath, error);
        const auto* d = dynamic_cast<const Mspl::Document*>(msplDoc.get());
        if (!d) {
            PrintError("lint", options.msplPath + ": " +
                                   (msplDoc ? "--mspl needs an MSPL file (.mspl)" : error));
            return kExitUsage;
        }
        mspl = &d->data;
    }
    const auto& providers = options.providers.Directory("lint");
    const Severity failOn = Analysis::ParseSeverity(options.failOn).value_or(Severity::Error);
    const bool several = options.files.size() > 1;
    bool unreadable = false, failed = false;
    for (const auto& path : options.files) {
        std::vector<Finding> findings;
        if (!LintFile(path, options, options.policyPath.empty() ? nullptr : &policy, mspl, providers,
                      findings, error)) {
            PrintError("lint", error);
            unreadable = true;
            continue;
        }
        if (options.json)
            std::cout << (several ? ToJson(path, findings).dump() : ToJson(path, findings).dump(2))
                      << '\n';
        else
            PrintText(path, findings);
        if (Analysis::CountFindings(findings).AtOrAbove(failOn)) failed = true;
    }
    return unreadable ? kExitUsage : failed ? kExitFailure : kExitOk;
}

const CommandRegistrar kRegistrar(90, "lint", [](CLI::App& app) {
    auto options = std::make_shared<LintOptions>();
    CLI::App* sub = app.add_subcommand(
        "lint", "Check roaming lists and MMSS files against the rules engineers run before shipping");
    sub->add_option("FILE", options->files, "Files to check")->required();
    sub->add_option("--policy", options->policyPath, "Operator policy (JSON)");
    sub->add_option("--mspl", options->msplPath, "MSPL file the MLPL files point into");
    sub->add_option("--fail-on", options->failOn, "Exit 1 from this severity up (default error)")
        ->check(CLI::IsMember({"error", "warning", "info"}));
    sub->add_option("--part", options->part, "List of a concatenated file (1 or 2)")
        ->check(CLI::Range(1, 2));
    sub->add_flag("--json", options->json, "One JSON object per file");
    options->providers.AddTo(sub);
    return std::function<int()>([options] { return RunLint(*options); });
});

}  // namespace
}  // namespace Tarn::Cli
