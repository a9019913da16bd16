// TechOrder::Document: a technology order table held without any user interface.
//
// JSON: {"fileType": "TOT", "version": 5,
//        "records": [{"index": 0, "ratId": 9, "ratIdName": "EUTRAN"}]}
// The version is a number when the form's text is a plain decimal and a text otherwise.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/MmssDocument.h"
#include "mmss/TechOrder/TechOrderData.h"
#include "mmss/TechOrder/TechOrderTextManager.h"

namespace Tarn::TechOrder {

class Document : public Mmss::FormDocument<Header, Data, TextManager> {
public:
    Document() : FormDocument(FileKind::TechOrder) {}

    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    const CRLItemList& TabRecords(size_t) const override { return data.records; }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>&) override { return data.records; }
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::vector<std::string> KindProblems() const override;
};

}  // namespace Tarn::TechOrder
