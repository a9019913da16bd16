// LAF::LafDocument: an LTE available file held without any user interface.
//
// JSON: {"fileType": "LAF", "records": [{"index": 0, "sid": 4096, "nid": 0, "bid": 23, "cnt": 1}]}
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/LAF/LafFileData.h"
#include "mmss/MmssDocument.h"

namespace Tarn::LAF {

class LafDocument : public Mmss::Document {
public:
    LafFileData data;

    LafDocument() : Document(FileKind::Laf) {}

    void ReadBytes(const std::vector<uint8_t>& bytes, const std::string& path) override;
    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    // The file's own text: the view shows exactly the lines a save writes.
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    const CRLItemList& TabRecords(size_t) const override { return data.records; }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>&) override { return data.records; }
    std::unique_ptr<CRLItem> NewRecord() const override;
    // SID, NID, BID: 0-65535; CNT: 0-255. The refusal names the field, then the hint.
    std::string RefuseEntry(int column, const std::string& text) const override;

protected:
    // The bytes the reader skipped around the text: a save does not write them back.
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override;
};

}  // namespace Tarn::LAF
