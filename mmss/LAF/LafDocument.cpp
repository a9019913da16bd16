#include "mmss/LAF/LafDocument.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/LAF/LafRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::LAF {

std::unique_ptr<LafDocument> LafDocument::FromBytes(const std::vector<uint8_t>& bytes) {
    auto doc = std::make_unique<LafDocument>();
    doc->data.Read(bytes);
    return doc;
}

std::unique_ptr<LafDocument> LafDocument::FromJsonValue(const nlohmann::json& json) {
    auto doc = std::make_unique<LafDocument>();
    for (const auto& in : Mmss::JsonArray(json, "records", DataError::InvalidSystem)) {
        auto record = std::make_unique<LafRecord>();
        record->FromJson(in);
        doc->data.records.Add(std::move(record));
    }
    return doc;
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
    auto records = nlohmann::json::array();
    for (size_t i = 0; i < data.records.GetSize(); ++i) {
        nlohmann::json rec = {{"index", i}};
        data.records.GetAt(i)->ToJson(rec);
        records.push_back(std::move(rec));
    }
    out["records"] = std::move(records);
}

std::vector<CheckProblem> LafDocument::Check() const {
    if (data.records.IsEmpty()) return Problems({FormatMessage(Msg::NeedOneLafRecord)});
    return {};
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

// The LTE available file has no save message of its own; the general one fits.
unsigned LafDocument::SaveFailedMessage() const {
    return Msg::ErrorWritingFile;
}

}  // namespace Tarn::LAF
