#include "mmss/Mlpl/MlplDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/Mlpl/MlplTextManager.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Mlpl {
namespace {
constexpr DataError kError = DataError::InvalidSystem;
}

std::unique_ptr<Document> Document::FromBytes(const std::vector<uint8_t>& bytes) {
    return Mmss::ReadHeaderAndBody<Document>(bytes);
}

std::unique_ptr<Document> Document::FromJsonValue(const nlohmann::json& json) {
    auto doc = std::make_unique<Document>();
    doc->header.revision = Mmss::GetFormValue(json, "mmssRevision", kError);
    doc->header.version = Mmss::GetFormValue(json, "mlplVersion", kError);
    doc->header.id = Mmss::GetFormValue(json, "mlplId", kError);
    for (const auto& in : Mmss::JsonArray(json, "records", kError)) {
        Location& location = doc->data.records.emplace_back();
        location.mcc = Mmss::JsonTextOr(in, "mcc", {}, kError);
        location.mnc = Mmss::JsonTextOr(in, "mnc", {}, kError);
        location.msplIndex = Mmss::GetFormValue(in, "msplIndex", kError);
        if (in.contains("tags")) {
            for (const auto& tagJson : Mmss::JsonArray(in, "tags", kError)) {
                auto tag = std::make_unique<Record>();
                tag->FromJson(tagJson);
                location.tags.Add(std::move(tag));
            }
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
    Mmss::PutFormValue(out, "mmssRevision", header.revision);
    Mmss::PutFormValue(out, "mlplVersion", header.version);
    Mmss::PutFormValue(out, "mlplId", header.id);
    auto records = nlohmann::json::array();
    for (size_t i = 0; i < data.records.size(); ++i) {
        const Location& location = data.records[i];
        nlohmann::json rec = {{"index", i}, {"mcc", location.mcc}, {"mnc", location.mnc}};
        Mmss::PutFormValue(rec, "msplIndex", location.msplIndex);
        auto tags = nlohmann::json::array();
        for (size_t t = 0; t < location.tags.GetSize(); ++t) {
            nlohmann::json tag = {{"index", t}};
            location.tags.GetAt(t)->ToJson(tag);
            tags.push_back(std::move(tag));
        }
        rec["tags"] = std::move(tags);
        records.push_back(std::move(rec));
    }
    out["records"] = std::move(records);
}

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = data.CheckTabs(); !bad.empty()) problems.push_back(bad);
    if (data.records.empty()) problems.push_back(FormatMessage(Msg::NeedOneMlplRecord));
    return Problems(problems);
}

std::vector<std::string> Document::Info() const {
    size_t tags = 0;
    for (const auto& r : data.records) tags += r.tags.GetSize();
    return {"MMSS revision: " + header.revision, "MLPL version: " + header.version,
            "MLPL id: " + header.id, "Records: " + std::to_string(data.records.size()),
            "Location tags: " + std::to_string(tags)};
}

std::vector<std::string> Document::LoadNotices() const {
    if (data.records.empty()) return {FormatMessage(Msg::NoMlplRecordsInFile)};
    return {};
}

unsigned Document::SaveFailedMessage() const {
    return Msg::ErrorSavingMlpl;
}

}  // namespace Tarn::Mlpl
