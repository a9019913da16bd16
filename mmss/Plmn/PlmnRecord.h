// Plmn::Record: one PLMN of an EHPLMN, OPLMN or UPLMN list, in the 3GPP packed-BCD coding, with
// the access technology flags of the OPLMN and UPLMN lists.
//
// Deliberate one-way behaviours: MCC digit 2 is written modulo 10 when above 9 (a stored F goes
// out as 5), every other nibble as stored; access bits other than UMTS, LTE and GSM are dropped.
// The writer reports 0 bits for an EHPLMN record and 16 for the others.
//
// JSON "mcc"/"mnc" are one hexadecimal character a nibble ("310", "01", "FFF"), so filler and
// odd nibbles survive; JSON errors and bad text fields raise CDataException(InvalidPlmnType).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssFrame.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Plmn {

// 1 EHPLMN, 2 OPLMN, 3 UPLMN; anything else is "not set".
enum ListKind : uint8_t { kUnset = 0, kEhplmn = 1, kOplmn = 2, kUplmn = 3 };
inline bool HasAccessBytes(uint8_t kind) {
    return kind == kOplmn || kind == kUplmn;
}
// 3 bytes for EHPLMN, 5 for the others.
inline unsigned RecordBytes(uint8_t kind) {
    return HasAccessBytes(kind) ? 5 : 3;
}

class Record : public CRLItem {
public:
    static constexpr const char* kTableName = "Plmn Table";
    enum Column { kMcc, kMnc, kUmts, kLte, kGsm };

    explicit Record(uint8_t listKind = kEhplmn) : listKind(listKind) {}

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<Record>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    // MCC: 140 when empty, 61453 unless three decimal digits; MNC: 140, 61458 unless two or three
    // characters each a digit or F.
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    std::string ToText() const override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    std::string MccText() const { return Mmss::ShowMcc(mcc); }
    std::string MncText() const { return Mmss::ShowMnc(mnc); }
    // Recomputes the values kept beside the digits.
    void UpdateValues();

    uint8_t listKind;
    Mmss::Digits mcc = {0, 0, 0};
    Mmss::Digits mnc = {0, 0, 15};
    uint16_t mccValue = 0;
    uint16_t mncValue = 0;
    uint8_t umts = 0;
    uint8_t lte = 0;
    uint8_t gsm = 0;
};

}  // namespace Tarn::Plmn
