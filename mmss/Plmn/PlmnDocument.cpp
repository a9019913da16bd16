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

void Document::ReadBytes(const std::vector<uint8_t>& bytes, const std::string& path) {
    data.listKind = static_cast<uint8_t>(Mmss::PlmnListKindFromPath(path));
    CRLFile file(bytes);
    data.Read(file);
    if (data.records.IsEmpty()) throw Mmss::FormatError(FormatMessage(Msg::NoPlmnRecordsInFile));
}

void Document::ReadJson(const nlohmann::json& json, const std::string& path) {
    int kind = Mmss::PlmnListKindFromPath(path);
    if (kind == 0) {
        const std::string name = Mmss::JsonTextOr(json, "fileType", {}, kError);
        if (!Mmss::NameTables::Instance().PlmnListKind().FindValue(name, kind))
            throw Mmss::FormatError(
                "The PLMN list kind is not set: give \"fileType\" (EHPLMN, OPLMN or UPLMN) or a "
                "path holding .ehplmn, .oplmn or .uplmn.");
    }
    data.listKind = static_cast<uint8_t>(kind);
    for (const auto& in : Mmss::JsonArray(json, "records", kError)) data.AddRecord().FromJson(in);
}

std::string Document::RenderText() const {
    std::string text;
    TextManager::Render(data, text);
    return text;
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    Mmss::PutRecords(out, "records", data.records);
}

std::vector<std::string> Document::KindProblems() const {
    std::vector<std::string> problems;
    if (data.FileBytes() > Mmss::kMaxSizeWordBytes)
        problems.push_back("The list holds " + std::to_string(data.records.GetSize()) +
                           " records, " + Mmss::GroupedNumber(data.FileBytes()) +
                           " bytes; a PLMN list file holds at most " +
                           Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".");
    return problems;
}

std::vector<std::string> Document::Info() const {
    return {"File type: " + KindName(), "Records: " + std::to_string(data.records.GetSize())};
}

std::vector<std::string> Document::LoadNotices() const {
    std::vector<std::string> notices = Mmss::Document::LoadNotices();
    if (data.ignoredBytes > 0)
        notices.push_back(
            "The last " + std::to_string(data.ignoredBytes) +
            (data.ignoredBytes == 1 ? " byte does" : " bytes do") +
            " not make a whole record and " + (data.ignoredBytes == 1 ? "was" : "were") +
            " ignored; a save does not write " + (data.ignoredBytes == 1 ? "it." : "them."));
    return notices;
}

std::unique_ptr<Mmss::Document> Document::Empty() const {
    auto doc = std::make_unique<Document>();
    doc->data.listKind = data.listKind;
    return doc;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Record>(data.listKind);
}

}  // namespace Tarn::Plmn
