// LAF::LafDocument: an LTE available file held without any user interface.
//
// JSON: {"fileType": "LAF", "records": [{"index": 0, "sid": 4096, "nid": 0, "bid": 23, "cnt": 1}]}
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "mmss/LAF/LafFileData.h"
#include "mmss/MmssDocument.h"

namespace Tarn::LAF {

class LafDocument : public Mmss::Document {
public:
    LafFileData data;

    static std::unique_ptr<LafDocument> FromBytes(const std::vector<uint8_t>& bytes);
    static std::unique_ptr<LafDocument> FromJsonValue(const nlohmann::json& json);

    FileKind Kind() const override { return FileKind::Laf; }
    std::string KindName() const override { return "LAF"; }
    // The file's own text: the view shows exactly the lines a save writes.
    std::string RenderText() const override;
    void ToJson(nlohmann::json& out) const override;
    std::vector<CheckProblem> Check() const override;
    std::vector<std::string> Info() const override;

protected:
    // The bytes the reader skipped around the text: a save does not write them back.
    std::vector<std::string> LoadNotices() const override;
    void Save(CRLFile& file) const override;
    unsigned SaveFailedMessage() const override;
};

}  // namespace Tarn::LAF
