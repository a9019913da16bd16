// Bst3Gpp::Document: a 3GPP BST file held without any user interface. Its tabs are the BST
// entries (type, extension flag, MCC), each with its records.
//
// JSON: {"fileType": "3GPP BST", "version": 1,
//        "entries": [{"index": 0, "bstType": 1, "extensionIncluded": 0, "mcc": "310",
//                     "records": [{"index": 0, "ratId": 9, "ratIdName": "EUTRAN",
//                                  "bandChannelType": 1,
//                                  "bands": [{"bandId": 4, "channels": [2175, 2200]}]}]}]}
// Version, type and extension flag are numbers when the form's text is a plain decimal and texts
// otherwise; the MCC is always a text ("" when the entry has none).
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/Bst3Gpp/Bst3GppData.h"
#include "mmss/Bst3Gpp/Bst3GppTextManager.h"
#include "mmss/MmssDocument.h"

namespace Tarn::Bst3Gpp {

class Document : public Mmss::FormDocument<Header, Data, TextManager> {
public:
    Document() : FormDocument(FileKind::Bst3Gpp) {}

    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    std::vector<Mmss::FormField> TabForm() const override;
    size_t TabCount() const override { return data.entries.size(); }
    std::vector<std::string> TabValues(size_t tab) const override;
    const CRLItemList& TabRecords(size_t tab) const override {
        return data.entries.at(tab).records;
    }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>& values) override;
    // An entry's messages do not name its tab.
    std::string TabProblem(size_t tab) const override;
    // A record starts with one band.
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::vector<std::string> KindProblems() const override;
};

}  // namespace Tarn::Bst3Gpp
