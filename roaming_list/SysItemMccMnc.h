// CSysItemMccMnc ("MCC-MNC-based"): a system record naming a network by MCC and MNC, narrowed by
// SIDs, SID/NID pairs or HDR subnets according to its subtype.
#pragma once

#include <vector>

#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemHelpers.h"
#include "roaming_list/SysItemSubnet.h"

namespace Tarn {

// Long framing only. The type's fields start with
//   | subtype | MCC (3 BCD digits, hundreds first) | MNC (3 BCD digits; 0xFFF: no MNC) |
//   | 3       | 12                                 | 12                                |
// (a two-digit MNC has 0xF as its last digit) and go on by subtype:
//   subtype 0, MCC-MNC only:  nothing more
//   subtype 1, SID:           reserved 4 | count 4 | per SID:  reserved 1, SID 15
//   subtype 2, SID/NID:       reserved 4 | count 4 | per pair: reserved 1, SID 15, NID 16
//   subtype 3, Subnet-Id:     reserved 3 | count 5 | per subnet: reserved 1, length 7, subnet bits
// Subtype 3 takes a 5-bit count because up to 16 subnets are allowed; at most 5 SIDs or pairs
// fit a 31-octet record. Subtypes 4..7 carry nothing more and are not valid.
// Grid, from column 10: subtype, MCC, MNC, count ("Num SID", "Num SID/NID", "Num Subnets"),
// then "SID %d" columns (subtype 1), "SID %d"/"NID %d" column pairs (subtype 2) or "Subnet %d"
// columns (subtype 3). Text: subtype number, MCC, MNC, count and the entries in grid order.
// JSON: subtype, mcc, mnc (text), and sids, sidNidPairs [{sid, nid}] or subnets (text).
class CSysItemMccMnc : public CSysItem {
public:
    enum Subtype : uint8_t { kMccMncOnly = 0, kSid = 1, kSidNid = 2, kSubnet = 3 };
    static constexpr unsigned kMaxSids = 5;
    static constexpr unsigned kMaxSubnets = 16;

    uint8_t GetSysType() const override { return 3; }
    std::unique_ptr<CRLItem> Clone() const override;

    unsigned GetSubtype() const { return subtype_; }
    void SetSubtype(unsigned subtype) { subtype_ = static_cast<uint8_t>(subtype); }
    const SysFields::Digits& GetMcc() const { return mcc_; }
    const SysFields::Digits& GetMnc() const { return mnc_; }
    void SetMccMnc(const SysFields::Digits& mcc, const SysFields::Digits& mnc) {
        mcc_ = mcc;
        mnc_ = mnc;
    }
    // SIDs of subtypes 1 and 2; NIDs (subtype 2) pair with them by position.
    const std::vector<uint16_t>& GetSids() const { return sids_; }
    const std::vector<uint16_t>& GetNids() const { return nids_; }
    void SetSidNids(std::vector<uint16_t> sids, std::vector<uint16_t> nids) {
        sids_ = std::move(sids);
        nids_ = std::move(nids);
    }
    const std::vector<CSubnetId>& GetSubnets() const { return subnets_; }
    void SetSubnets(std::vector<CSubnetId> subnets) { subnets_ = std::move(subnets); }

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
    size_t EntryCount() const;

    uint8_t subtype_ = kSidNid;
    SysFields::Digits mcc_{0, 0, 0};
    SysFields::Digits mnc_{0xF, 0xF, 0xF};
    std::vector<uint16_t> sids_;
    std::vector<uint16_t> nids_;
    std::vector<CSubnetId> subnets_;
};

}  // namespace Tarn
