// Bst3Gpp::Document: a 3GPP BST file held without any user interface.
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
#include "mmss/MmssDocument.h"

namespace Tarn::Bst3Gpp {

class Document : public Mmss::Document {
public:
    Header header;
    Data data;

    static std::unique_ptr<Document> FromBytes(const std::vector<uint8_t>& bytes);
    static std::unique_ptr<Document> FromJsonValue(const nlohmann::json& json);

    FileKind Kind() const override { return FileKind::Bst3Gpp; }
    std::string KindName() const override { return "3GPP BST"; }
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { SaveFile(file, header, data); }
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::Bst3Gpp
