#include "mmss/LAF/LafDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/LAF/LafRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::LAF {

void LafDocument::ReadBytes(const std::vector<uint8_t>& bytes, const std::string&) {
    data.Read(bytes);
}

void LafDocument::ReadJson(const nlohmann::json& json, const std::string&) {
    for (const auto& in : Mmss::JsonArray(json, "records", DataError::InvalidSystem)) {
        auto record = std::make_unique<LafRecord>();
        record->FromJson(in);
        data.records.Add(std::move(record));
    }
}

std::string LafDocument::RenderText() const {
    std::string text;
    LafTextOutCString sink(text);
    data.Write(sink);
    return text;
}

void LafDocument::ToJson(nlohmann::json& out) const {
    out = nlohmann::json::object();
    out["fileType"] = KindName();
    Mmss::PutRecords(out, "records", data.records);
}

std::vector<std::string> LafDocument::Info() const {
    return {"Records: " + std::to_string(data.records.GetSize())};
}

std::vector<std::string> LafDocument::LoadNotices() const {
    std::vector<std::string> notices;
    if (data.skippedBom)
        notices.push_back("The file starts with a UTF-8 byte order mark (EF BB BF), which was "
                          "skipped; a save does not write it.");
    if (data.skippedEofBytes == 1)
        notices.push_back("The file ends in an end-of-file byte (1A), which was skipped; a save "
                          "does not write it.");
    else if (data.skippedEofBytes > 1)
        notices.push_back("The file ends in " + std::to_string(data.skippedEofBytes) +
                          " end-of-file bytes (1A), which were skipped; a save does not write "
                          "them.");
    return notices;
}

void LafDocument::Save(CRLFile& file) const {
    LafTextOutFile sink(file);
    data.Write(sink);
}

std::unique_ptr<CRLItem> LafDocument::NewRecord() const {
    return std::make_unique<LafRecord>();
}

std::string LafDocument::RefuseEntry(int column, const std::string& text) const {
    unsigned message = 0, hint = 0;
    if (LafRecord::CheckEntry(column, text, message, hint)) return {};
    return FormatMessage(message) + "\n" + FormatMessage(hint);
}

}  // namespace Tarn::LAF
