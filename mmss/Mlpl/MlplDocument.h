// Mlpl::Document: an MLPL file held without any user interface. Its tabs are the location
// records (MCC, MNC, MSPL index), each with its location tags.
//
// JSON: {"fileType": "MLPL", "mmssRevision": 1, "mlplVersion": 3, "mlplId": 9,
//        "records": [{"index": 0, "mcc": "310", "mnc": "FFF", "msplIndex": 1,
//                     "tags": [{"index": 0, "sysType": 0, "sysTypeName": "cdma2000-AI",
//                               "sidStart": 4, "nidStart": 0, "nidRange": 255}]}]}
// Header values and the MSPL index are numbers when the form's text is a plain decimal and texts
// otherwise; MCC and MNC are always texts (leading zeros and "FFF" matter), "" or absent when the
// record has none.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/Mlpl/MlplData.h"
#include "mmss/Mlpl/MlplTextManager.h"
#include "mmss/MmssDocument.h"

namespace Tarn::Mlpl {

class Document : public Mmss::FormDocument<Header, Data, TextManager> {
public:
    Document() : FormDocument(FileKind::Mlpl) {}

    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    std::vector<Mmss::FormField> TabForm() const override;
    size_t TabCount() const override { return data.records.size(); }
    std::vector<std::string> TabValues(size_t tab) const override;
    const CRLItemList& TabRecords(size_t tab) const override { return data.records.at(tab).tags; }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>& values) override;
    std::unique_ptr<CRLItem> NewRecord() const override;
    // An MLPL needs a location record; one without tags is whole.
    size_t RecordCount() const override { return data.records.size(); }

protected:
    std::vector<std::string> KindProblems() const override;
};

}  // namespace Tarn::Mlpl
