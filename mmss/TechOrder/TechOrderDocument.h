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

namespace Tarn::TechOrder {

class Document : public Mmss::Document {
public:
    Header header;
    Data data;

    static std::unique_ptr<Document> FromBytes(const std::vector<uint8_t>& bytes);
    static std::unique_ptr<Document> FromJsonValue(const nlohmann::json& json);

    FileKind Kind() const override { return FileKind::TechOrder; }
    std::string KindName() const override { return "TOT"; }
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { SaveFile(file, header, data); }
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::TechOrder
