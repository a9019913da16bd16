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

    static std::unique_ptr<Document> FromBytes(const std::vector<uint8_t>& bytes,
                                               const std::string& path);
    static std::unique_ptr<Document> FromJsonValue(const nlohmann::json& json,
                                                   const std::string& path);

    FileKind Kind() const override { return FileKind::Plmn; }
    std::string KindName() const override { return data.KindName(); }
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { data.Write(file); }
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::Plmn
