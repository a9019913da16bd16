#include "mmss/Mlpl/MlplDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Mlpl {
namespace {
constexpr DataError kError = DataError::InvalidSystem;

const std::array<Mmss::TabField<Location>, 3> kTabFields = {{
    {{"mcc", "Mcc :", 3, {"mcc"}, ""}, &Location::mcc},
    {{"mnc", "Mnc :", 3, {"mnc"}, ""}, &Location::mnc},
    {{"msplIndex", "Mspl Index :", 3, {"msplindex"}, "0"}, &Location::msplIndex},
}};
}  // namespace

void Document::ReadJson(const nlohmann::json& json, const std::string&) {
    header.FromJson(json, kError);
    for (const auto& in : Mmss::JsonArray(json, "records", kError)) {
        Location& location = data.records.emplace_back();
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
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    header.ToJson(out);
    auto records = nlohmann::json::array();
    for (size_t i = 0; i < data.records.size(); ++i) {
        const Location& location = data.records[i];
        nlohmann::json rec = {{"index", i}, {"mcc", location.mcc}, {"mnc", location.mnc}};
        Mmss::PutFormValue(rec, "msplIndex", location.msplIndex);
        Mmss::PutRecords(rec, "tags", location.tags);
        records.push_back(std::move(rec));
    }
    out["records"] = std::move(records);
}

std::vector<std::string> Document::KindProblems() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = data.CheckTabs(); !bad.empty()) problems.push_back(bad);
    return problems;
}

std::vector<std::string> Document::Info() const {
    size_t tags = 0;
    for (const auto& location : data.records) tags += location.tags.GetSize();
    return {"MMSS revision: " + header.revision, "MLPL version: " + header.version,
            "MLPL id: " + header.id, "Records: " + std::to_string(data.records.size()),
            "Location tags: " + std::to_string(tags)};
}

std::vector<Mmss::FormField> Document::TabForm() const {
    return Mmss::TabFormOf(kTabFields);
}

std::vector<std::string> Document::TabValues(size_t tab) const {
    return Mmss::TabValuesOf(data.records.at(tab), kTabFields);
}

CRLItemList& Document::AddTab(const std::vector<std::string>& values) {
    Location& location = data.records.emplace_back();
    Mmss::SetTabValues(location, values, kTabFields);
    return location.tags;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Record>();
}

}  // namespace Tarn::Mlpl
