// The six MMSS kinds in the file kind registry, in the order the editor registers them.
#include <nlohmann/json.hpp>

#include "formats/FileKinds.h"
#include "mmss/Bst3Gpp/Bst3GppDocument.h"
#include "mmss/LAF/LafDocument.h"
#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/MmssDocument.h"
#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Plmn/PlmnDocument.h"
#include "mmss/TechOrder/TechOrderDocument.h"

namespace Tarn {
namespace {

using Bytes = std::vector<uint8_t>;
using DocPtr = std::unique_ptr<FileDocument>;

// A JSON file description must be an object, and when it names its kind that must be this one;
// a PLMN list may name any of the three list kinds.
void CheckJsonKind(const nlohmann::json& json, const std::vector<std::string>& kindNames) {
    if (!json.is_object()) throw Mmss::FormatError("The JSON of a file must be an object.");
    const auto it = json.find("fileType");
    if (it == json.end()) return;
    if (!it->is_string()) throw Mmss::FormatError("\"fileType\" must be a text.");
    for (const auto& name : kindNames)
        if (*it == name) return;
    throw Mmss::FormatError("The JSON describes a " + it->get<std::string>() + " file, not " +
                            kindNames.front() + ".");
}

template <typename Doc>
FileKindInfo MakeKind(FileKind kind, std::string name, std::vector<std::string> extensions,
                      std::string filter, std::vector<std::string> jsonNames) {
    FileKindInfo info;
    info.kind = kind;
    info.name = std::move(name);
    info.extensions = std::move(extensions);
    info.filter = std::move(filter);
    info.jsonTypes = jsonNames;
    info.read = [](const Bytes& bytes, const std::string&, std::string& error) {
        return Mmss::Guarded([&]() -> DocPtr { return Doc::FromBytes(bytes); }, error);
    };
    info.fromJson = [jsonNames](const nlohmann::json& json, const std::string&,
                                std::string& error) {
        return Mmss::Guarded(
            [&]() -> DocPtr {
                CheckJsonKind(json, jsonNames);
                return Doc::FromJsonValue(json);
            },
            error);
    };
    return info;
}

FileKindInfo PlmnKind() {
    FileKindInfo info;
    info.kind = FileKind::Plmn;
    info.name = "PLMN";
    info.extensions = {"ehplmn", "oplmn", "uplmn"};
    info.filter = "Plmn Files (*.ehplmn, *.oplmn, *.uplmn)";
    info.jsonTypes = {"EHPLMN", "OPLMN", "UPLMN"};
    info.read = [](const Bytes& bytes, const std::string& path, std::string& error) {
        return Mmss::Guarded([&]() -> DocPtr { return Plmn::Document::FromBytes(bytes, path); },
                             error);
    };
    info.fromJson = [](const nlohmann::json& json, const std::string& path, std::string& error) {
        return Mmss::Guarded(
            [&]() -> DocPtr {
                CheckJsonKind(json, {"EHPLMN", "OPLMN", "UPLMN"});
                return Plmn::Document::FromJsonValue(json, path);
            },
            error);
    };
    return info;
}

}  // namespace

void AddMmssFileKinds(std::vector<FileKindInfo>& kinds) {
    kinds.push_back(MakeKind<Mspl::Document>(FileKind::Mspl, "MSPL", {"mspl"},
                                             "Mspl Files (*.mspl)", {"MSPL"}));
    kinds.push_back(MakeKind<Bst3Gpp::Document>(FileKind::Bst3Gpp, "3GPP BST", {"Bst3Gpp"},
                                                "3GppBst Files (*.Bst3Gpp)", {"3GPP BST"}));
    kinds.push_back(MakeKind<Mlpl::Document>(FileKind::Mlpl, "MLPL", {"mlpl"},
                                             "Mlpl Files (*.mlpl)", {"MLPL"}));
    kinds.push_back(PlmnKind());
    kinds.push_back(MakeKind<TechOrder::Document>(FileKind::TechOrder, "Technology Order", {"tot"},
                                                  "Technology Order (*.tot)", {"TOT"}));
    kinds.push_back(MakeKind<LAF::LafDocument>(FileKind::Laf, "LTE Available", {"laf"},
                                               "LTE Available (*.laf)", {"LAF"}));
}

}  // namespace Tarn
