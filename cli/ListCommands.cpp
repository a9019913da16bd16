// The verbs that build and reshape files: build (from JSON or text), convert (between roaming
// list versions), join and split (concatenated roaming lists).
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "analysis/CsvExchange.h"
#include "cli/Command.h"
#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "formats/FileKinds.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/Conversion.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/Validation.h"

namespace Tarn::Cli {
namespace {

struct LoadedList {
    std::unique_ptr<CRLData> data;
    int version = 0;
    bool is1xEV = false;
    std::vector<uint8_t> prefix;  // the 5-byte prefix a spreadsheet export carried
};

bool IsTextPath(const std::string& path) { return KindForOpen(path) == FileKind::RoamingListText; }

// A roaming list from a binary file, its text form or its JSON form (by the path's extension).
bool LoadList(const std::string& path, LoadedList& out, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, error)) return false;
    if (path.size() >= 5 && path.compare(path.size() - 5, 5, ".json") == 0) {
        try {
            out.data = ListFromJson(nlohmann::json::parse(bytes.begin(), bytes.end()), out.version);
            return true;
        } catch (const std::exception& e) {
            error = e.what();
            return false;
        }
    }
    if (IsTextPath(path)) {
        TextDetectResult r = DetectTextVersion(std::string(bytes.begin(), bytes.end()));
        if (!r.data) {
            error = std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
            return false;
        }
        out = {std::move(r.data), r.version, r.is1xEV, {}};
        return true;
    }
    CRLFile file(std::move(bytes));
    DetectResult r = DetectVersion(file);
    if (!r.manager) {
        size_t first = 0;
        error = CheckConcatenatedPrl(file.Bytes().data(), file.Bytes().size(), first)
                    ? "This file is a Concatenated PRL file; split it first."
                    : std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
        return false;
    }
    out.version = r.manager->GetVersion();
    out.data = r.manager->DetachData();
    return true;
}

// Runs the checks a save runs; prints each failure. True when the list may be written.
bool CheckForSave(const std::string& verb, const LoadedList& list, bool enforce) {
    ValidationResult result = CheckRoamingList(*list.data, list.version);
    for (const auto& issue : result.issues)
        PrintError(verb, (enforce ? "" : "warning: ") + issue.Describe());
    return result.Ok() || !enforce;
}

// Writes the list to `out` as text (".txt") or as a binary list, atomically.
bool SaveList(const std::string& verb, const LoadedList& list, const std::string& out) {
    std::string error;
    if (IsTextPath(out)) {
        try {
            std::string text = RenderRoamingListText(*list.data, list.version, list.is1xEV);
            if (WriteFileAtomically(out, text, error)) return true;
        } catch (const std::exception& e) {
            error = e.what();
        }
        PrintError(verb, out + ": " + error);
        return false;
    }
    auto manager = CreateClassFactory(list.version)->CreateManager();
    auto copy = std::make_unique<CRLData>(*list.data);
    manager->AttachData(copy);
    CRLFile file;
    try {
        if (!manager->WriteList(file)) {
            PrintError(verb, std::string(MessageText(Msg::ErrorWritingFile)) + " " +
                                 manager->GetLastError());
            return false;
        }
    } catch (const std::exception& e) {
        PrintError(verb, std::string(MessageText(Msg::ErrorWritingFile)) + " " + e.what());
        return false;
    }
    if (!list.prefix.empty()
            ? !WriteFileAtomically(out, Analysis::WithPrefix(list.prefix, file.Bytes()), error)
            : !file.Save(out, error)) {
        PrintError(verb, out + ": " + error);
        return false;
    }
    return true;
}

int ParseVersionOption(const std::string& verb, const std::string& text) {
    int v = VersionFromName(text);
    if (v == 0 && text.size() == 1 && text[0] >= 'A' && text[0] <= 'E') v = text[0] - 'A' + 1;
    if (v == 0 && text.size() == 1 && text[0] >= 'a' && text[0] <= 'e') v = text[0] - 'a' + 1;
    if (v == 0) PrintError(verb, "unknown version \"" + text + "\" (use IS-683A .. IS-683E)");
    return v;
}

// Carries `list` into `target`, printing what was dropped or changed.
void Convert(const std::string& verb, LoadedList& list, int target) {
    if (target == list.version) return;
    ConversionResult r = ConvertRoamingList(*list.data, list.version, target);
    if (IsDowngrade(list.version, target) && !r.changes.empty())
        std::cerr << "tarn-cli: " << verb << ": " << VersionName(list.version) << " -> "
                  << VersionName(target) << ": " << r.changes.size() << " change(s):\n";
    for (const auto& line : r.changes) std::cerr << "  " << line << '\n';
    list.data = std::move(r.data);
    list.version = target;
    list.is1xEV = false;
}

// build: a JSON file of any kind, or a roaming list text, into the kind the output names.
int Build(const std::string& in, const std::string& out, const std::string& versionText,
          bool noCheck) {
    const bool json = in.size() >= 5 && in.compare(in.size() - 5, 5, ".json") == 0;
    nlohmann::json j;
    if (json) {
        std::vector<uint8_t> bytes;
        std::string error;
        if (!ReadWholeFile(in, bytes, error)) {
            PrintError("build", error);
            return kExitFailure;
        }
        j = nlohmann::json::parse(bytes.begin(), bytes.end(), nullptr, false);
        if (j.is_discarded()) {
            PrintError("build", in + ": not valid JSON");
            return kExitFailure;
        }
        const FileKind outKind = KindForOpen(out);
        const bool roamingListOut = outKind == FileKind::None || outKind == FileKind::RoamingList ||
                                    outKind == FileKind::RoamingListText;
        if (!roamingListOut) {
            // Every other kind goes through the registry, chosen by the output's name.
            const FileKindInfo* info = FindFileKind(outKind);
            std::string error;
            auto doc = info && info->fromJson ? info->fromJson(j, out, error) : nullptr;
            std::vector<uint8_t> bytes;
            if (!doc || !doc->Write(bytes, error) || !WriteFileAtomically(out, bytes, error)) {
                PrintError("build", error);
                return kExitFailure;
            }
            return kExitOk;
        }
        if (j.is_object() && j.contains("fileType")) {
            PrintError("build", in + " describes a " + j.at("fileType").dump() +
                                    " file: give the output that kind's extension");
            return kExitFailure;
        }
    }
    LoadedList list;
    std::string error;
    if (std::filesystem::is_directory(in)) {
        // A directory is a spreadsheet export: header.csv, acquisition.csv, system.csv.
        Analysis::ImportedList imported = Analysis::ReadListCsv(in, !noCheck);
        for (const auto& line : imported.errors) PrintError("build", line);
        if (!imported.data) return kExitFailure;
        list.data = std::move(imported.data);
        list.version = imported.version;
        list.prefix = std::move(imported.prefix);
    } else if (!LoadList(in, list, error)) {
        PrintError("build", in + ": " + error);
        return kExitFailure;
    }
    if (!versionText.empty()) {
        int v = ParseVersionOption("build", versionText);
        if (v == 0) return kExitUsage;
        Convert("build", list, v);
    }
    if (!CheckForSave("build", list, !noCheck)) return kExitFailure;
    return SaveList("build", list, out) ? kExitOk : kExitFailure;
}

const CommandRegistrar kBuild(50, "build", [](CLI::App& app) {
    struct Args {
        std::string in, out, version;
        bool noCheck = false;
    };
    auto a = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand(
        "build", "Write a file from its JSON form (any kind) or a roaming list from its text form");
    sub->add_option("IN", a->in, "A .json file, a roaming list text (.txt), or a directory tarn-cli csv wrote")->required();
    sub->add_option("-o,--output", a->out, "The file to write; its name gives its kind")->required();
    sub->add_option("--version", a->version, "Roaming list version to write (IS-683A .. IS-683E)");
    sub->add_flag("--no-check", a->noCheck, "Write a roaming list even if the save checks fail");
    return std::function<int()>([a] { return Build(a->in, a->out, a->version, a->noCheck); });
});

const CommandRegistrar kConvert(60, "convert", [](CLI::App& app) {
    struct Args {
        std::string in, out, to;
        bool noCheck = false;
    };
    auto a = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand(
        "convert", "Carry a roaming list into another version; what is lost is printed to stderr");
    sub->add_option("FILE", a->in, "A binary roaming list, its text form or its JSON form")->required();
    sub->add_option("--to", a->to, "Target version: IS-683A .. IS-683E (or A .. E)")->required();
    sub->add_option("-o,--output", a->out, "The file to write (.txt for the text form)")->required();
    sub->add_flag("--no-check", a->noCheck, "Write even if the save checks fail");
    return std::function<int()>([a] {
        int target = ParseVersionOption("convert", a->to);
        if (target == 0) return kExitUsage;
        LoadedList list;
        std::string error;
        if (!LoadList(a->in, list, error)) {
            PrintError("convert", a->in + ": " + error);
            return kExitFailure;
        }
        Convert("convert", list, target);
        if (!CheckForSave("convert", list, !a->noCheck)) return kExitFailure;
        return SaveList("convert", list, a->out) ? kExitOk : kExitFailure;
    });
});

const CommandRegistrar kJoin(70, "join", [](CLI::App& app) {
    struct Args {
        std::string first, second, out;
    };
    auto a = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand("join", "Join two roaming lists into a concatenated roaming list");
    sub->add_option("FIRST", a->first, "First roaming list")->required();
    sub->add_option("SECOND", a->second, "Second roaming list")->required();
    sub->add_option("-o,--output", a->out, "The concatenated file to write")->required();
    return std::function<int()>([a] {
        if (a->first == a->second) {
            PrintError("join", "Two different files must be specified. Please change one of the paths.");
            return kExitUsage;
        }
        if (a->out == a->first || a->out == a->second) {
            PrintError("join", "The output path must not be the same as either input path. Please enter a different path.");
            return kExitUsage;
        }
        try {
            JoinPrl(a->first, a->second, a->out);
        } catch (const ConcatPrlException& e) {
            PrintError("join", e.what());
            return kExitFailure;
        }
        return kExitOk;
    });
});

const CommandRegistrar kSplit(80, "split", [](CLI::App& app) {
    struct Args {
        std::string in;
        std::vector<std::string> outs;
    };
    auto a = std::make_shared<Args>();
    CLI::App* sub = app.add_subcommand("split", "Split a concatenated roaming list into its two lists");
    sub->add_option("FILE", a->in, "The concatenated roaming list")->required();
    sub->add_option("-o,--output", a->outs, "The two lists to write: FIRST SECOND")
        ->required()
        ->expected(2);
    return std::function<int()>([a] {
        if (a->outs[0] == a->in || a->outs[1] == a->in) {
            PrintError("split", "The output paths must not be the same as the input path.");
            return kExitUsage;
        }
        if (a->outs[0] == a->outs[1]) {
            PrintError("split", "Two different files must be specified. Please change one of the paths.");
            return kExitUsage;
        }
        try {
            SplitPrl(a->in, a->outs[0], a->outs[1]);
        } catch (const ConcatPrlException& e) {
            PrintError("split", e.what());
            return kExitFailure;
        }
        return kExitOk;
    });
});

}  // namespace
}  // namespace Tarn::Cli
