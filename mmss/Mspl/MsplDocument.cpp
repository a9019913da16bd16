#include "mmss/Mspl/MsplDocument.h"

// Standard library
#include <algorithm>
#include <nlohmann/json.hpp>

// Tarn
#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplRecord.h"

namespace Tarn::Mspl {
namespace {
constexpr DataError kError = DataError::InvalidSysTable;
}

void Document::ReadJson(const nlohmann::json& json, const std::string&) {
    header.FromJson(json, kError);
    for (const auto& id : Mmss::JsonArray(json, "msplIds", kError)) {
        CRLItemList& list = data.AddId(Mmss::GetFormValue(id, "msplId", kError));
        for (const auto& in : Mmss::JsonArray(id, "records", kError)) {
            auto record = std::make_unique<Record>();
            record->FromJson(in);
            list.Add(std::move(record));
        }
    }
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    header.ToJson(out);
    auto ids = nlohmann::json::array();
    for (size_t i = 0; i < data.ids.size() && i < data.lists.size(); ++i) {
        nlohmann::json id = nlohmann::json::object();
        Mmss::PutFormValue(id, "msplId", data.ids[i]);
        Mmss::PutRecords(id, "records", data.lists[i]);
        ids.push_back(std::move(id));
    }
    out["msplIds"] = std::move(ids);
}

std::vector<std::string> Document::KindProblems() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = Data::CheckIds(data.ids); !bad.empty()) problems.push_back(bad);
    return problems;
}

std::vector<std::string> Document::Info() const {
    return {"MMSS revision: " + header.revision, "MSPL version: " + header.version,
            "MSPL ids: " + std::to_string(data.ids.size()),
            "Records: " + std::to_string(RecordCount())};
}

std::vector<Mmss::FormField> Document::TabForm() const {
    return {{"id", "Mspl Id :", 3, {"mspl id"}, "0"}};
}

std::vector<std::string> Document::TabValues(size_t tab) const {
    return {tab < data.ids.size() ? data.ids[tab] : std::string()};
}

CRLItemList& Document::AddTab(const std::vector<std::string>& values) {
    return data.AddId(values.empty() ? std::string() : values.front());
}

std::vector<std::string> Document::NewTabValues(
    const std::vector<std::vector<std::string>>& tabs) const {
    long long next = 0;
    for (const auto& tab : tabs)
        if (!tab.empty()) next = std::max(next, Mmss::ParseDecimal(tab.front()) + 1);
    return {std::to_string(std::min(next, 255LL))};
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Record>();
}

}  // namespace Tarn::Mspl
