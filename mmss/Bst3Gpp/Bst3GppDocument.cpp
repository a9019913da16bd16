#include "mmss/Bst3Gpp/Bst3GppDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Bst3Gpp {
namespace {
constexpr DataError kError = DataError::InvalidAcqTable;

const std::array<Mmss::TabField<Entry>, 3> kTabFields = {{
    {{"type", "Type :", 3, {"bst type"}, "1"}, &Entry::type},
    {{"extension", "Extension :", 3, {"extension"}, "0"}, &Entry::extension},
    {{"mcc", "Mcc :", 3, {"mcc"}, ""}, &Entry::mcc},
}};
}  // namespace

void Document::ReadJson(const nlohmann::json& json, const std::string&) {
    header.FromJson(json, kError);
    for (const auto& in : Mmss::JsonArray(json, "entries", kError)) {
        Entry& entry = data.entries.emplace_back();
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
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    header.ToJson(out);
    auto entries = nlohmann::json::array();
    for (size_t i = 0; i < data.entries.size(); ++i) {
        const Entry& entry = data.entries[i];
        nlohmann::json e = {{"index", i}};
        Mmss::PutFormValue(e, "bstType", entry.type);
        Mmss::PutFormValue(e, "extensionIncluded", entry.extension);
        e["mcc"] = entry.mcc;
        Mmss::PutRecords(e, "records", entry.records);
        entries.push_back(std::move(e));
    }
    out["entries"] = std::move(entries);
}

std::vector<std::string> Document::KindProblems() const {
    std::vector<std::string> problems = header.Check();
    if (std::string bad = data.CheckTabs(); !bad.empty()) problems.push_back(bad);
    return problems;
}

std::vector<std::string> Document::Info() const {
    return {"Version: " + header.version, "Entries: " + std::to_string(data.entries.size()),
            "Records: " + std::to_string(RecordCount())};
}

std::vector<Mmss::FormField> Document::TabForm() const {
    return Mmss::TabFormOf(kTabFields);
}

std::vector<std::string> Document::TabValues(size_t tab) const {
    return Mmss::TabValuesOf(data.entries.at(tab), kTabFields);
}

CRLItemList& Document::AddTab(const std::vector<std::string>& values) {
    Entry& entry = data.entries.emplace_back();
    Mmss::SetTabValues(entry, values, kTabFields);
    return entry.records;
}

std::string Document::TabProblem(size_t tab) const {
    return tab < data.entries.size() ? data.entries[tab].Check(static_cast<int>(tab) + 1)
                                     : std::string();
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    auto record = std::make_unique<Record>();
    record->bands.push_back(Band{});
    return record;
}

}  // namespace Tarn::Bst3Gpp
