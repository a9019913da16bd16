// Mspl::Document: an MSPL file held without any user interface. Its tabs are the MSPL
// identifiers, each with its priority table.
//
// JSON: {"fileType": "MSPL", "mmssRevision": 1, "msplVersion": 7,
//        "msplIds": [{"msplId": 5, "records": [{"index": 0, "sysType": 7, "sysTypeName": ...}]}]}
// Header values and identifiers are numbers when the form's text is a plain decimal and texts
// otherwise, so what the user typed comes back unchanged.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/MmssDocument.h"
#include "mmss/Mspl/MsplData.h"
#include "mmss/Mspl/MsplTextManager.h"

namespace Tarn::Mspl {

class Document : public Mmss::FormDocument<Header, Data, TextManager> {
public:
    Document() : FormDocument(FileKind::Mspl) {}

    void ReadJson(const nlohmann::json& json, const std::string& path) override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<std::string> Info() const override;

    std::vector<Mmss::FormField> TabForm() const override;
    size_t TabCount() const override { return data.lists.size(); }
    std::vector<std::string> TabValues(size_t tab) const override;
    const CRLItemList& TabRecords(size_t tab) const override { return data.lists.at(tab); }
    using Mmss::Document::TabRecords;
    CRLItemList& AddTab(const std::vector<std::string>& values) override;
    // The next identifier after the highest one in use, so a new tab does not repeat one.
    std::vector<std::string> NewTabValues(
        const std::vector<std::vector<std::string>>& tabs) const override;
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::vector<std::string> KindProblems() const override;
};

}  // namespace Tarn::Mspl
