// Mlpl::Document: an MLPL file held without any user interface.
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
#include "mmss/MmssDocument.h"

namespace Tarn::Mlpl {

class Document : public Mmss::Document {
public:
    Header header;
    Data data;

    static std::unique_ptr<Document> FromBytes(const std::vector<uint8_t>& bytes);
    static std::unique_ptr<Document> FromJsonValue(const nlohmann::json& json);

    FileKind Kind() const override { return FileKind::Mlpl; }
    std::string KindName() const override { return "MLPL"; }
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { SaveFile(file, header, data); }
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::Mlpl
