// Mlpl::Record: one location tag of an MLPL record (a system type with the SID/NID range, the
// PLMN, or the IPv6 subnet it applies to).
//
// Choices made where the format leaves room:
// - The subnet is entered and shown as "IPv6 address/mask bits", e.g. "2001:db8::/32" (RFC 5952
//   form on output; any RFC 4291 form without an embedded IPv4 part on input). Bits beyond the
//   mask length are cleared when the text is taken, since the file holds only the masked bits.
//   A subnet length above 128 in a file is refused (InvalidSubnetId).
// - The PLMN of a tag (system types 1, 5, 6, 7) belongs to the tag, so the grid carries it in two
//   columns after "PLMN Range": "Mcc" (6) and "Mnc" (7), in the PLMN list's formats.
// - A tag's text line is its SysType name followed, tab-separated, by what its body holds under
//   the DataCol columns: SID start, NID start, NID range (types 0 and 3); MCC, MNC, PLMN range
//   (1, 5, 6, 7); the subnet "address/length" (4); nothing for the others.
// - TagSize is recomputed on writing; the value read is kept only for inspection.
//
// JSON errors and unknown names in text fields raise CDataException(InvalidSystem).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssFrame.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Mlpl {

class Record : public CRLItem {
public:
    static constexpr const char* kTableName = "Mlpl Table";
    static const std::vector<std::string>& GridHeadings();

    enum Column { kSysType, kSidStart, kNidStart, kNidRange, kSubnet, kPlmnRange, kMcc, kMnc };

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<Record>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;

    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    // The body size in bits that a write stores in TAG_SIZE.
    uint8_t ComputeTagSize() const;
    std::string SubnetText() const;
    // False when `text` is not "IPv6/length"; `lengthBad` tells which half was wrong.
    bool SetSubnetText(const std::string& text, bool& lengthBad);

    uint8_t sysType = 0;
    uint8_t tagSize = 0;  // as read
    uint16_t sidStart = 0;
    uint16_t nidStart = 0;
    uint8_t nidRange = 0;
    Mmss::Digits mcc = {0, 0, 0};
    Mmss::Digits mnc = {0, 0, 15};
    uint8_t plmnRange = 0;
    uint8_t subnetLength = 0;
    std::array<uint16_t, 8> subnet = {};
};

}  // namespace Tarn::Mlpl
