#include "roaming_list/DataException.h"

namespace Tarn {

const char* DataErrorText(int code) {
    static const char* const kTexts[] = {
        "Premature end of file.",
        "Invalid rltype.",
        "Invalid prefonly.",
        "Invalid acq table.",
        "Invalid acq table index.",
        "Invalid acq type.",
        "Invalid system.",
        "Invalid pri/sec channel.",
        "Invalid block.",
        "Invalid sys table.",
        "Invalid sys table index.",
        "Invalid neg/pref.",
        "Invalid geo region.",
        "Invalid priority.",
        "Invalid CDMA channel pairs.",
        "Invalid HDR channel pairs.",
        "Invalid sys rec type.",
        "Invalid assn incl.",
        "Invalid pn assn.",
        "Invalid data assn.",
        "Invalid subnet id.",
        "Invalid PLMN type.",
        "Invalid PLMN select mode.",
        "Invalid network selection mode.",
        "Invalid Generic CDMA Band.",
        "Invalid Generic HDR Band.",
        "Invalid Generic GSM Band.",
        "Invalid Generic UMTS Band.",
        "Invalid SSPR_P_REV.",
        "Invalid GWL Sys Mode Selection.",
    };
    if (code < 1 || code > 30) return "Unknown error.";
    return kTexts[code - 1];
}

CDataException::CDataException(DataError code, std::string detail)
    : code_(static_cast<int>(code)), detail_(std::move(detail)) {
    text_ = std::string(DataErrorText(code_)) + " " + detail_;
}

const char* CDataException::what() const noexcept {
    return text_.empty() ? DataErrorText(code_) : text_.c_str();
}

}  // namespace Tarn
