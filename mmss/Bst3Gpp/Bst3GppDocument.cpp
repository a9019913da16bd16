#include "mmss/Bst3Gpp/Bst3GppDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/Bst3Gpp/Bst3GppTextManager.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Bst3Gpp {
namespace {
constexpr DataError kError = DataError::InvalidAcqTable;
}

std::unique_ptr<Document> Document::FromBytes(const std::vector<uint8_t>& bytes) {
    return Mmss::ReadHeaderAndBody<Document>(bytes);
}

std::unique_ptr<Document> Document::FromJsonValue(const nlohmann::json& json) {
    auto doc = std::make_unique<Document>();
    doc->header.version = Mmss::GetFormValue(json, "version", kError);
    for (const auto& in : Mmss::JsonArray(json, "entries", kError)) {
        Entry& entry = doc->data.entries.emplace_back();
        if (in.contains("bstType")) entry.type = Mmss::GetFormValue(in, "bstType", kError);
        if (in.contains("extensionIncluded"))
            entry.extension = Mmss::GetFormValue(in, "extensionIncluded", kError);
        entry.mcc = Mmss::JsonTextOr(in, "mcc", {}, kError);
        for (const auto& recordJson : Mmss::JsonArray(in, "records", kError)) {
            auto record = std::make_unique<Record>();
            record->FromJson(recordJson);
            entry.records.Add(std::move(record));
        }
    }
    return doc;
}

std::string Document::RenderText() const {
    std::string text;
    TextManager::Render(header, data, text);
    return text;
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    Mmss::PutFormValue(out, "version", header.version);
    auto entries = nlohmann::json::array();
    for (size_t i = 0; i < data.entries.size(); ++i) {
        const Entry& entry = data.entries[i];
        nlohmann::json e = {{"index", i}};
        Mmss::PutFormValue(e, "bstType", entry.type);
        Mmss::PutFormValue(e, "extensionIncluded", entry.extension);
        e["mcc"] = entry.mcc;
        auto records = nlohmann::json::array();
        for (size_t r = 0; r < entry.records.GetSize(); ++r) {
            nlohmann::json rec = {{"index", r}};
            entry.records.GetAt(r)->ToJson(rec);
            records.push_back(std::move(rec));
        }
        e["records"] = std::move(records);
        entries.push_back(std::move(e));
    }
    out["entries"] = std::move(entries);
}

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = data.CheckTabs(); !bad.empty()) problems.push_back(bad);
    if (data.RecordCount() == 0) problems.push_back(FormatMessage(Msg::NeedOneBstRecord));
    return Problems(problems);
}

std::vector<std::string> Document::Info() const {
    return {"Version: " + header.version, "Entries: " + std::to_string(data.entries.size()),
            "Records: " + std::to_string(data.RecordCount())};
}

std::vector<std::string> Document::LoadNotices() const {
    if (data.RecordCount() == 0) return {FormatMessage(Msg::NoBstRecordsInFile)};
    return {};
}

unsigned Document::SaveFailedMessage() const {
    return Msg::ErrorSavingBst;
}

}  // namespace Tarn::Bst3Gpp
