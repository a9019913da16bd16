#include "mmss/Mspl/MsplDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Mspl/MsplTextManager.h"

namespace Tarn::Mspl {
namespace {
constexpr DataError kError = DataError::InvalidSysTable;
}

std::unique_ptr<Document> Document::FromBytes(const std::vector<uint8_t>& bytes) {
    return Mmss::ReadHeaderAndBody<Document>(bytes);
}

std::unique_ptr<Document> Document::FromJsonValue(const nlohmann::json& json) {
    auto doc = std::make_unique<Document>();
    doc->header.revision = Mmss::GetFormValue(json, "mmssRevision", kError);
    doc->header.version = Mmss::GetFormValue(json, "msplVersion", kError);
    for (const auto& id : Mmss::JsonArray(json, "msplIds", kError)) {
        CRLItemList& list = doc->data.AddId(Mmss::GetFormValue(id, "msplId", kError));
        for (const auto& in : Mmss::JsonArray(id, "records", kError)) {
            auto record = std::make_unique<Record>();
            record->FromJson(in);
            list.Add(std::move(record));
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
    Mmss::PutFormValue(out, "msplVersion", header.version);
    auto ids = nlohmann::json::array();
    for (size_t i = 0; i < data.ids.size() && i < data.lists.size(); ++i) {
        nlohmann::json id = nlohmann::json::object();
        Mmss::PutFormValue(id, "msplId", data.ids[i]);
        auto records = nlohmann::json::array();
        for (size_t r = 0; r < data.lists[i].GetSize(); ++r) {
            nlohmann::json rec = {{"index", r}};
            data.lists[i].GetAt(r)->ToJson(rec);
            records.push_back(std::move(rec));
        }
        id["records"] = std::move(records);
        ids.push_back(std::move(id));
    }
    out["msplIds"] = std::move(ids);
}

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = Data::CheckIds(data.ids); !bad.empty()) problems.push_back(bad);
    if (data.RecordCount() == 0) problems.push_back(FormatMessage(Msg::NeedOneMsplRecord));
    return Problems(problems);
}

std::vector<std::string> Document::Info() const {
    return {"MMSS revision: " + header.revision, "MSPL version: " + header.version,
            "MSPL ids: " + std::to_string(data.ids.size()),
            "Records: " + std::to_string(data.RecordCount())};
}

std::vector<std::string> Document::LoadNotices() const {
    if (data.RecordCount() == 0) return {FormatMessage(Msg::NoMsplRecordsInFile)};
    return {};
}

unsigned Document::SaveFailedMessage() const {
    return Msg::ErrorSavingMspl;
}

}  // namespace Tarn::Mspl
