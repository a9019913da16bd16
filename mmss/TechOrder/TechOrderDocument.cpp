#include "mmss/TechOrder/TechOrderDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/MmssFrame.h"
#include "mmss/TechOrder/TechOrderRecord.h"
#include "mmss/TechOrder/TechOrderTextManager.h"

namespace Tarn::TechOrder {
namespace {
constexpr DataError kError = DataError::InvalidAcqType;
}

std::unique_ptr<Document> Document::FromBytes(const std::vector<uint8_t>& bytes) {
    return Mmss::ReadHeaderAndBody<Document>(bytes);
}

std::unique_ptr<Document> Document::FromJsonValue(const nlohmann::json& json) {
    auto doc = std::make_unique<Document>();
    doc->header.version = Mmss::GetFormValue(json, "version", kError);
    for (const auto& in : Mmss::JsonArray(json, "records", kError)) {
        auto record = std::make_unique<Record>();
        record->FromJson(in);
        doc->data.records.Add(std::move(record));
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
    auto records = nlohmann::json::array();
    for (size_t i = 0; i < data.records.GetSize(); ++i) {
        nlohmann::json rec = {{"index", i}};
        data.records.GetAt(i)->ToJson(rec);
        records.push_back(std::move(rec));
    }
    out["records"] = std::move(records);
}

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> problems = header.Check();
    if (data.records.IsEmpty()) problems.push_back(FormatMessage(Msg::NeedOneTotRecord));
    if (std::string repeat = data.CheckRepeats(); !repeat.empty()) problems.push_back(repeat);
    return Problems(problems);
}

std::vector<std::string> Document::Info() const {
    return {"Version: " + header.version, "Records: " + std::to_string(data.records.GetSize())};
}

std::vector<std::string> Document::LoadNotices() const {
    if (data.records.IsEmpty()) return {FormatMessage(Msg::NoTotRecordsInFile)};
    return {};
}

unsigned Document::SaveFailedMessage() const {
    return Msg::ErrorSavingTot;
}

}  // namespace Tarn::TechOrder
