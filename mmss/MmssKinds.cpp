// The six MMSS kinds: what each is called, where it is found and what it says, in one table, and
// their places in the file kind registry, in the order the editor registers them.
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "mmss/Bst3Gpp/Bst3GppDocument.h"
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/LAF/LafDocument.h"
#include "mmss/LAF/LafRecord.h"
#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/MmssDocument.h"
#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Plmn/PlmnDocument.h"
#include "mmss/Plmn/PlmnRecord.h"
#include "mmss/TechOrder/TechOrderDocument.h"
#include "mmss/TechOrder/TechOrderRecord.h"

namespace Tarn {
namespace Mmss {
namespace {

template <typename Kind>
std::unique_ptr<Document> Make() {
    return std::make_unique<Kind>();
}

}  // namespace

const std::vector<KindTraits>& Kinds() {
    // Wide enough for a BST record with a handful of bands and their channels; the row of a
    // record that needs more is cut at the grid's edge, which its save check then reports.
    constexpr int kBstColumns = 300;
    static const std::vector<KindTraits> kinds = {
        {FileKind::Mspl, "MSPL", "MSPL", {"mspl"}, "Mspl Files (*.mspl)", {"MSPL"},
         Mspl::Record::kTableName, "Mspl Records", 5, Msg::NeedOneMsplRecord,
         Msg::NoMsplRecordsInFile, Msg::ErrorSavingMspl, Make<Mspl::Document>},
        {FileKind::Bst3Gpp, "3GPP BST", "3GPP BST", {"Bst3Gpp"}, "3GppBst Files (*.Bst3Gpp)",
         {"3GPP BST"}, Bst3Gpp::Record::kTableName, "Bst3Gpp Records", kBstColumns,
         Msg::NeedOneBstRecord, Msg::NoBstRecordsInFile, Msg::ErrorSavingBst,
         Make<Bst3Gpp::Document>},
        {FileKind::Mlpl, "MLPL", "MLPL", {"mlpl"}, "Mlpl Files (*.mlpl)", {"MLPL"},
         Mlpl::Record::kTableName, "Mlpl Records", 8, Msg::NeedOneMlplRecord,
         Msg::NoMlplRecordsInFile, Msg::ErrorSavingMlpl, Make<Mlpl::Document>},
        // Title, grid title and columns follow the list kind (Plmn::Document says them).
        {FileKind::Plmn, "PLMN", "", {"ehplmn", "oplmn", "uplmn"},
         "Plmn Files (*.ehplmn, *.oplmn, *.uplmn)", {"EHPLMN", "OPLMN", "UPLMN"},
         Plmn::Record::kTableName, "", 0, Msg::NeedOnePlmnRecord, Msg::NoPlmnRecordsInFile,
         Msg::ErrorSavingPlmn, Make<Plmn::Document>},
        {FileKind::TechOrder, "Technology Order", "TOT", {"tot"}, "Technology Order (*.tot)",
         {"TOT"}, TechOrder::Record::kTableName, "Technology Order Table", 1,
         Msg::NeedOneTotRecord, Msg::NoTotRecordsInFile, Msg::ErrorSavingTot,
         Make<TechOrder::Document>},
        // The LTE available file has no save message of its own; the general one fits. An
        // empty one is said by its own notices (with the bytes skipped around the text).
        {FileKind::Laf, "LTE Available", "LAF", {"laf"}, "LTE Available (*.laf)", {"LAF"},
         LAF::LafRecord::kTableName, "LTE Available Records", 4, Msg::NeedOneLafRecord, 0,
         Msg::ErrorWritingFile, Make<LAF::LafDocument>},
    };
    return kinds;
}

const KindTraits& TraitsOf(FileKind kind) {
    for (const auto& traits : Kinds())
        if (traits.kind == kind) return traits;
    throw std::logic_error("not an MMSS file kind");
}

}  // namespace Mmss

namespace {

// A JSON file description must be an object, and when it names its kind that must be one of
// this kind's file types.
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

}  // namespace

void AddMmssFileKinds(std::vector<FileKindInfo>& kinds) {
    using Bytes = std::vector<uint8_t>;
    for (const Mmss::KindTraits& traits : Mmss::Kinds()) {
        FileKindInfo info;
        info.kind = traits.kind;
        info.name = traits.title;
        info.extensions = traits.extensions;
        info.filter = traits.filter;
        info.jsonTypes = traits.jsonTypes;
        const auto make = traits.make;
        info.read = [make](const Bytes& bytes, const std::string& path, std::string& error) {
            return Mmss::Guarded(
                [&]() -> std::unique_ptr<FileDocument> {
                    auto doc = make();
                    doc->ReadBytes(bytes, path);
                    return doc;
                },
                error);
        };
        info.fromJson = [make, types = traits.jsonTypes](const nlohmann::json& json,
                                                         const std::string& path,
                                                         std::string& error) {
            return Mmss::Guarded(
                [&]() -> std::unique_ptr<FileDocument> {
                    CheckJsonKind(json, types);
                    auto doc = make();
                    doc->ReadJson(json, path);
                    return doc;
                },
                error);
        };
        kinds.push_back(std::move(info));
    }
}

}  // namespace Tarn
