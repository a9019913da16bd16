// Plmn::Document: an EHPLMN, OPLMN or UPLMN list held without any user interface.
//
// The list kind comes from the path (".ehplmn"/".EHPLMN" and so on, anywhere in the path), or in
// JSON from "fileType" when the path names none. A file too short to hold one record is refused
// with "There are no plmn records in the file.": the format has nothing else to recognise it by.
//
// JSON: {"fileType": "OPLMN", "records": [{"index": 0, "mcc": "310", "mnc": "260",
//        "umtsPresent": true, "ltePresent": true, "gsmPresent": false}]}
// (EHPLMN records carry no access flags.)
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "mmss/MmssDocument.h"
#include "mmss/Plmn/PlmnData.h"

namespace Tarn::Plmn {

class Document : public Mmss::Document {
public:
    Data data;

    Document() : Mmss::Document(FileKind::Plmn) {}

    void ReadBytes(const std::vector<uint8_t>& bytes, const std::string& path) override;
    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    std::string KindName() const override { return data.KindName(); }
    std::unique_ptr<Mmss::Document> Empty() const override;
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    // The list kind names the form: "OPLMN", "OPLMN Records"; EHPLMN records have no access
    // columns.
    std::string Title() const override { return KindName(); }
    std::string GridTitle() const override { return data.GridTitle(); }
    int GridColumns() const override { return HasAccessBytes(data.listKind) ? 5 : 2; }
    const CRLItemList& TabRecords(size_t) const override { return data.records; }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>&) override { return data.records; }
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::vector<std::string> KindProblems() const override;
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { data.Write(file); }
};

}  // namespace Tarn::Plmn
