// Mspl::Document: an MSPL file held without any user interface.
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

namespace Tarn::Mspl {

class Document : public Mmss::Document {
public:
    Header header;
    Data data;

    // Both throw with one clear message on input that is not an MSPL file.
    static std::unique_ptr<Document> FromBytes(const std::vector<uint8_t>& bytes);
    static std::unique_ptr<Document> FromJsonValue(const nlohmann::json& json);

    FileKind Kind() const override { return FileKind::Mspl; }
    std::string KindName() const override { return "MSPL"; }
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    // Header, then the identifiers tab by tab, then "needs at least one Mspl record".
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override { SaveFile(file, header, data); }
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::Mspl
