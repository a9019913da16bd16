// The verbs that work on every file kind through the registry: info, text, json, build.
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/Command.h"
#include "cli/SystemsListing.h"
#include "foundation/AtomicFile.h"
#include "formats/FileKinds.h"

namespace Tarn::Cli {
namespace {

// Writes `text` to `out` atomically, or to stdout when `out` is empty.
int Emit(const std::string& verb, const std::string& out, const std::string& text) {
    if (out.empty()) {
        std::cout << text;
        return std::cout.good() ? kExitOk : kExitFailure;
    }
    std::string error;
    if (!WriteFileAtomically(out, text, error)) {
        PrintError(verb, error);
        return kExitFailure;
    }
    return kExitOk;
}

std::unique_ptr<FileDocument> Open(const std::string& verb, const std::string& path) {
    std::string error;
    auto doc = ReadFileDocument(path, error);
    if (!doc) PrintError(verb, path + ": " + error);
    return doc;
}

const CommandRegistrar kInfo(20, "info", [](CLI::App& app) {
    auto file = std::make_shared<std::string>();
    CLI::App* sub = app.add_subcommand("info", "Show the kind, header fields and record counts of a file");
    sub->add_option("FILE", *file, "File to describe")->required();
    auto systems = std::make_shared<bool>(false);
    auto providers = std::make_shared<ProviderOption>();
    sub->add_flag("--systems", *systems, "List a roaming list's systems by GEO with operator and country");
    providers->AddTo(sub);
    return std::function<int()>([file, systems, providers] {
        if (*systems) return PrintSystemsByGeo(*file, *providers);
        auto doc = Open("info", *file);
        if (!doc) return kExitFailure;
        std::cout << *file << ": " << doc->KindName() << '\n';
        for (const auto& line : doc->Info()) std::cout << "  " << line << '\n';
        for (const auto& notice : doc->Notices()) std::cout << "  notice: " << notice << '\n';
        return kExitOk;
    });
});

const CommandRegistrar kText(30, "text", [](CLI::App& app) {
    auto file = std::make_shared<std::string>();
    auto out = std::make_shared<std::string>();
    CLI::App* sub = app.add_subcommand("text", "Render a file in its text form (to stdout by default)");
    sub->add_option("FILE", *file, "File to render")->required();
    sub->add_option("-o,--output", *out, "Write the text to this file instead");
    return std::function<int()>([file, out] {
        auto doc = Open("text", *file);
        if (!doc) return kExitFailure;
        return Emit("text", *out, doc->RenderText());
    });
});

const CommandRegistrar kJson(40, "json", [](CLI::App& app) {
    auto file = std::make_shared<std::string>();
    auto out = std::make_shared<std::string>();
    CLI::App* sub = app.add_subcommand("json", "Export a whole file as JSON (to stdout by default)");
    sub->add_option("FILE", *file, "File to export")->required();
    sub->add_option("-o,--output", *out, "Write the JSON to this file instead");
    return std::function<int()>([file, out] {
        auto doc = Open("json", *file);
        if (!doc) return kExitFailure;
        nlohmann::json j;
        doc->ToJson(j);
        return Emit("json", *out, j.dump(2) + "\n");
    });
});

}  // namespace
}  // namespace Tarn::Cli
