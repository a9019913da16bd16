#include "mmss/TechOrder/TechOrderDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "mmss/MmssFrame.h"
#include "mmss/TechOrder/TechOrderRecord.h"

namespace Tarn::TechOrder {
namespace {
constexpr DataError kError = DataError::InvalidAcqType;
}

void Document::ReadJson(const nlohmann::json& json, const std::string&) {
    header.FromJson(json, kError);
    for (const auto& in : Mmss::JsonArray(json, "records", kError)) {
        auto record = std::make_unique<Record>();
        record->FromJson(in);
        data.records.Add(std::move(record));
    }
}

void Document::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    header.ToJson(out);
    Mmss::PutRecords(out, "records", data.records);
}

std::vector<std::string> Document::KindProblems() const {
    std::vector<std::string> problems = header.Check();
    if (std::string repeat = data.CheckRepeats(); !repeat.empty()) problems.push_back(repeat);
    return problems;
}

std::vector<std::string> Document::Info() const {
    return {"Version: " + header.version, "Records: " + std::to_string(data.records.GetSize())};
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Record>();
}

}  // namespace Tarn::TechOrder
