// CDataException: a binary or text parse failure of a roaming list, carrying its numbered code.
#pragma once

#include <exception>
#include <string>

namespace Tarn {

// The codes are the contract; their texts come from DataErrorText.
enum class DataError : int {
    PrematureEof = 1,
    InvalidRlType = 2,
    InvalidPrefOnly = 3,
    InvalidAcqTable = 4,
    InvalidAcqTableIndex = 5,
    InvalidAcqType = 6,
    InvalidSystem = 7,
    InvalidPriSecChannel = 8,
    InvalidBlock = 9,
    InvalidSysTable = 10,
    InvalidSysTableIndex = 11,
    InvalidNegPref = 12,
    InvalidGeoRegion = 13,
    InvalidPriority = 14,
    InvalidCdmaChannelPairs = 15,
    InvalidHdrChannelPairs = 16,
    InvalidSysRecType = 17,
    InvalidAssnIncl = 18,
    InvalidPnAssn = 19,
    InvalidDataAssn = 20,
    InvalidSubnetId = 21,
    InvalidPlmnType = 22,
    InvalidPlmnSelectMode = 23,
    InvalidNetworkSelectionMode = 24,
    InvalidGenericCdmaBand = 25,
    InvalidGenericHdrBand = 26,
    InvalidGenericGsmBand = 27,
    InvalidGenericUmtsBand = 28,
    InvalidSsprPRev = 29,
    InvalidGwlSysMode = 30,
};

// The text of a code; any code outside 1..30 reads "Unknown error.".
const char* DataErrorText(int code);

class CDataException : public std::exception {
public:
    explicit CDataException(DataError code) : code_(static_cast<int>(code)) {}
    explicit CDataException(int code) : code_(code) {}
    // A code with a more precise text for the user (which token, which line); the code stays.
    CDataException(DataError code, std::string detail);

    int Code() const { return code_; }
    const char* what() const noexcept override;
    const std::string& Detail() const { return detail_; }

private:
    int code_;
    std::string detail_;
    std::string text_;
};

}  // namespace Tarn
