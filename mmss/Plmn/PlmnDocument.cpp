#include "mmss/Plmn/PlmnDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/MmssFrame.h"
#include "mmss/MmssNames.h"
#include "mmss/Plmn/PlmnTextManager.h"

namespace Tarn::Plmn {
namespace {
constexpr DataError kError = DataError::InvalidPlmnType;
}

std::unique_ptr<Document> Document::FromBytes(const std::vector<uint8_t>& bytes,
                                              const std::string& path) {
    auto doc = std::make_unique<Document>();
    doc->data.listKind = static_cast<uint8_t>(Mmss::PlmnListKindFromPath(path));
    CRLFile file(bytes);
    doc->data.Read(file);
    if (doc->data.records.IsEmpty())
        throw Mmss::FormatError(FormatMessage(Msg::NoPlmnRecordsInFile));
    return doc;
}

std::unique_ptr<Document> Document::FromJsonValue(const nlohmann::json& json,
                                                  const std::string& path) {
    auto doc = std::make_unique<Document>();
    int kind = Mmss::PlmnListKindFromPath(path);
    if (kind == 0) {
        const std::string name = Mmss::JsonTextOr(json, "fileType", {}, kError);
        if (!Mmss::NameTables::Instance().PlmnListKind().FindValue(name, kind))
            throw Mmss::FormatError(
                "The PLMN list kind is not set: give \"fileType\" (EHPLMN, OPLMN or UPLMN) or a "
                "path holding .ehplmn, .oplmn or .uplmn.");
    }
    doc->data.listKind = static_cast<uint8_t>(kind);
    for (const auto& in : Mmss::JsonArray(json, "records", kError))
        doc->data.AddRecord().FromJson(in);
    return doc;
}

std::string Document::RenderText() const {
    std::string text;
    TextManager::Render(data, text);
    return text;
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    auto records = nlohmann::json::array();
    for (size_t i = 0; i < data.records.GetSize(); ++i) {
        nlohmann::json rec = {{"index", i}};
        data.records.GetAt(i)->ToJson(rec);
        records.push_back(std::move(rec));
    }
    out["records"] = std::move(records);
}

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> problems;
    if (data.records.IsEmpty()) problems.push_back(FormatMessage(Msg::NeedOnePlmnRecord));
    if (data.FileBytes() > Mmss::kMaxSizeWordBytes)
        problems.push_back("The list holds " + std::to_string(data.records.GetSize()) +
                           " records, " + Mmss::GroupedNumber(data.FileBytes()) +
                           " bytes; a PLMN list file holds at most " +
                           Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".");
    return Problems(problems);
}

std::vector<std::string> Document::Info() const {
    return {"File type: " + KindName(), "Records: " + std::to_string(data.records.GetSize())};
}

std::vector<std::string> Document::LoadNotices() const {
    std::vector<std::string> notices;
    if (data.records.IsEmpty()) notices.push_back(FormatMessage(Msg::NoPlmnRecordsInFile));
    if (data.ignoredBytes > 0)
        notices.push_back(
            "The last " + std::to_string(data.ignoredBytes) +
            (data.ignoredBytes == 1 ? " byte does" : " bytes do") +
            " not make a whole record and " + (data.ignoredBytes == 1 ? "was" : "were") +
            " ignored; a save does not write " + (data.ignoredBytes == 1 ? "it." : "them."));
    return notices;
}

unsigned Document::SaveFailedMessage() const {
    return Msg::ErrorSavingPlmn;
}

}  // namespace Tarn::Plmn
