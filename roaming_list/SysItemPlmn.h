// CSysItemPlmn ("PLMN-based"): a system record naming a GSM/UMTS network by PLMN and LACs.
#pragma once

#include <vector>

#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemHelpers.h"

namespace Tarn {

// Long framing only; the type's fields:
//   | field                  | bits | present                  |
//   | PLMN type              | 3    | always                   |
//   | PLMN select            | 2    | type 0 only              |
//   | PLMN                   | 24   | types 1..3               |
//   | LAC                    | 16   | type 2                   |
//   | network selection mode | 1    | types 1..3               |
//   | reserved               | 3    | type 3                   |
//   | LAC count              | 4    | type 3                   |
//   | LACs                   | 16   | type 3, one per LAC      |
// Type 0 ("Select Mode") ends after the PLMN select. The PLMN is three octets in the usual
// 3GPP order, one BCD digit per nibble:
//   | octet 1     | octet 2     | octet 3     |
//   | MCC2 | MCC1 | MNC3 | MCC3 | MNC2 | MNC1 |
// with MNC3 = 0xF for a two-digit MNC. The whole record must fit 31 octets, which bounds the
// LAC list below its 4-bit count (10 LACs for a preferred record with an association).
// Grid, from column 10: PLMN type; then for "Select Mode" the PLMN select; otherwise MCC, MNC,
// network selection mode, then the one LAC ("PLMN+Single LAC") or the LAC count and "LAC %d"
// columns ("PLMN+Multi LAC"). Text follows the grid's order with names for the three lists.
// JSON: plmnType, plmnSelect (type 0) or mcc, mnc (text), netSelMode and lacs (types 2, 3).
class CSysItemPlmn : public CSysItem {
public:
    static constexpr unsigned kMaxLacCount = 15;

    uint8_t GetSysType() const override { return 2; }
    std::unique_ptr<CRLItem> Clone() const override;

    unsigned GetPlmnType() const { return plmnType_; }
    void SetPlmnType(unsigned type) { plmnType_ = static_cast<uint8_t>(type); }
    unsigned GetPlmnSelect() const { return plmnSelect_; }
    void SetPlmnSelect(unsigned select) { plmnSelect_ = static_cast<uint8_t>(select); }
    const SysFields::Digits& GetMcc() const { return mcc_; }
    const SysFields::Digits& GetMnc() const { return mnc_; }
    void SetPlmn(const SysFields::Digits& mcc, const SysFields::Digits& mnc) {
        mcc_ = mcc;
        mnc_ = mnc;
    }
    unsigned GetNetSelMode() const { return netSel_; }
    void SetNetSelMode(unsigned mode) { netSel_ = static_cast<uint8_t>(mode); }
    const std::vector<uint16_t>& GetLacs() const { return lacs_; }
    void SetLacs(std::vector<uint16_t> lacs) { lacs_ = std::move(lacs); }

    // The most LACs a "PLMN+Multi LAC" record with these common fields can hold.
    unsigned MaxLacs() const;

protected:
    uint32_t ReadTypeFields(CRLFile& file) override;
    uint32_t WriteTypeFields(CRLFile& file) const override;
    uint32_t TypeFieldBits() const override;
    bool TypeIsValid() const override;

    void WriteTypeToGrid(Grid& grid, int row) const override;
    void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) override;
    std::vector<std::string> TypeHeadings() const override;
    bool AcceptsAcqType(int acqType, unsigned& refusal) const override;

    std::string TypeToText() const override;
    void TypeFromText(std::span<const std::string_view> tokens) override;
    void TypeToJson(nlohmann::json& out) const override;
    void TypeFromJson(const nlohmann::json& in) override;

private:
    uint8_t plmnType_ = 0;
    uint8_t plmnSelect_ = 0;
    SysFields::Digits mcc_{0, 0, 0};
    SysFields::Digits mnc_{0, 0, 0xF};
    uint8_t netSel_ = 0;
    std::vector<uint16_t> lacs_;
};

}  // namespace Tarn
