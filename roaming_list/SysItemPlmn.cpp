#include "roaming_list/SysItemPlmn.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

using namespace SysFields;

namespace {

constexpr int kColType = CSysItem::kFirstTypeColumn;
constexpr int kColSelect = kColType + 1;
constexpr int kColMcc = kColType + 1;
constexpr int kColMnc = kColType + 2;
constexpr int kColNetSel = kColType + 3;
constexpr int kColLac = kColType + 4;  // the single LAC, or the LAC count
constexpr int kColFirstLac = kColType + 5;

constexpr unsigned kSelectMode = 0;
constexpr unsigned kSingleLac = 2;
constexpr unsigned kMultiLac = 3;

}  // namespace

std::unique_ptr<CRLItem> CSysItemPlmn::Clone() const {
    return std::make_unique<CSysItemPlmn>(*this);
}

uint32_t CSysItemPlmn::ReadTypeFields(CRLFile& file) {
    plmnType_ = static_cast<uint8_t>(file.ReadBits(3));
    lacs_.clear();
    if (plmnType_ == kSelectMode) {
        plmnSelect_ = static_cast<uint8_t>(file.ReadBits(2));
        return 5;
    }
    const uint32_t octet1 = file.ReadBits(8);
    const uint32_t octet2 = file.ReadBits(8);
    const uint32_t octet3 = file.ReadBits(8);
    mcc_ = {static_cast<uint8_t>(octet1 & 0xF), static_cast<uint8_t>(octet1 >> 4),
            static_cast<uint8_t>(octet2 & 0xF)};
    mnc_ = {static_cast<uint8_t>(octet3 & 0xF), static_cast<uint8_t>(octet3 >> 4),
            static_cast<uint8_t>(octet2 >> 4)};
    uint32_t bits = 3 + 24;
    if (plmnType_ == kSingleLac) {
        lacs_.push_back(static_cast<uint16_t>(file.ReadBits(16)));
        bits += 16;
    }
    netSel_ = static_cast<uint8_t>(file.ReadBits(1));
    bits += 1;
    if (plmnType_ == kMultiLac) {
        file.ReadBits(3);  // reserved
        const unsigned count = file.ReadBits(4);
        bits += 7;
        for (unsigned i = 0; i < count; ++i)
            lacs_.push_back(static_cast<uint16_t>(file.ReadBits(16)));
        bits += 16 * count;
    }
    return bits;
}

uint32_t CSysItemPlmn::WriteTypeFields(CRLFile& file) const {
    file.WriteBits(3, plmnType_ & 7u);
    if (plmnType_ == kSelectMode) {
        file.WriteBits(2, plmnSelect_ & 3u);
        return 5;
    }
    file.WriteBits(4, mcc_[1] & 0xFu);
    file.WriteBits(4, mcc_[0] & 0xFu);
    file.WriteBits(4, mnc_[2] & 0xFu);
    file.WriteBits(4, mcc_[2] & 0xFu);
    file.WriteBits(4, mnc_[1] & 0xFu);
    file.WriteBits(4, mnc_[0] & 0xFu);
    uint32_t bits = 3 + 24;
    if (plmnType_ == kSingleLac) {
        file.WriteBits(16, lacs_.empty() ? 0u : lacs_.front());
        bits += 16;
    }
    file.WriteBits(1, netSel_ & 1u);
    bits += 1;
    if (plmnType_ == kMultiLac) {
        file.WriteBits(3, 0);
        const size_t count = lacs_.size() < kMaxLacCount ? lacs_.size() : kMaxLacCount;
        file.WriteBits(4, static_cast<uint32_t>(count));
        for (size_t i = 0; i < count; ++i) file.WriteBits(16, lacs_[i]);
        bits += 7 + 16 * static_cast<uint32_t>(count);
    }
    return bits;
}

uint32_t CSysItemPlmn::TypeFieldBits() const {
    if (plmnType_ == kSelectMode) return 5;
    uint32_t bits = 3 + 24 + 1;
    if (plmnType_ == kSingleLac) bits += 16;
    if (plmnType_ == kMultiLac) bits += 7 + 16 * static_cast<uint32_t>(lacs_.size());
    return bits;
}

bool CSysItemPlmn::TypeIsValid() const {
    if (plmnType_ > kMultiLac || netSel_ > 1) return false;
    if (plmnType_ == kSelectMode) return plmnSelect_ < 3;
    if (plmnType_ == kSingleLac) return lacs_.size() == 1;
    if (plmnType_ == kMultiLac) return lacs_.size() <= kMaxLacCount;
    return true;
}

unsigned CSysItemPlmn::MaxLacs() const {
    const uint32_t fixed = CommonLongBits() + 3 + 24 + 1 + 7;
    const uint32_t room = kMaxRecordOctets * 8 - fixed;
    const unsigned lacs = room / 16;
    return lacs < kMaxLacCount ? lacs : kMaxLacCount;
}

void CSysItemPlmn::WriteTypeToGrid(Grid& grid, int row) const {
    const auto& names = CRLNameTables::Instance();
    PutName(grid, kColType, row, names.PlmnType(), plmnType_);
    if (plmnType_ == kSelectMode) {
        PutName(grid, kColSelect, row, names.PlmnSelect(), plmnSelect_);
        return;
    }
    PutText(grid, kColMcc, row, FormatMcc(mcc_), "999");
    PutText(grid, kColMnc, row, FormatMnc(mnc_));
    PutName(grid, kColNetSel, row, names.NetSelMode(), netSel_);
    if (plmnType_ == kSingleLac) {
        PutNumber(grid, kColLac, row, lacs_.empty() ? 0u : lacs_.front(), "99999999");
    } else if (plmnType_ == kMultiLac) {
        PutNumber(grid, kColLac, row, static_cast<uint32_t>(lacs_.size()), "99");
        for (size_t i = 0; i < lacs_.size(); ++i)
            PutNumber(grid, kColFirstLac + static_cast<int>(i), row, lacs_[i], "99999999");
    }
}

void CSysItemPlmn::ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) {
    const auto& names = CRLNameTables::Instance();
    CheckAcqType(row, context);
    plmnType_ = static_cast<uint8_t>(GridName(grid, kColType, row, names.PlmnType(), plmnType_));
    if (plmnType_ == kSelectMode) {
        plmnSelect_ =
            static_cast<uint8_t>(GridName(grid, kColSelect, row, names.PlmnSelect(), plmnSelect_));
        lacs_.clear();
        return;
    }
    const std::string mcc = CellText(grid, kColMcc, row);
    if (IsMissing(mcc)) ThrowGrid(Msg::RequiredValueMissing, kColMcc, row);
    if (!ParseMcc(mcc, mcc_)) ThrowGrid(Msg::InvalidMcc, kColMcc, row);
    const std::string mnc = CellText(grid, kColMnc, row);
    if (IsMissing(mnc)) ThrowGrid(Msg::RequiredValueMissing, kColMnc, row);
    if (!ParseMnc(mnc, mnc_)) ThrowGrid(Msg::InvalidMnc, kColMnc, row);
    netSel_ = static_cast<uint8_t>(GridName(grid, kColNetSel, row, names.NetSelMode(), netSel_));
    if (plmnType_ == kSingleLac) {
        lacs_ = {static_cast<uint16_t>(GridNumber(grid, kColLac, row, 0, 0xFFFF))};
    } else if (plmnType_ == kMultiLac) {
        const unsigned count = GridNumber(grid, kColLac, row, 0, kMaxLacCount);
        const unsigned fit = MaxLacs();
        if (count > fit) ThrowRange(kColLac, row, 0, fit);
        std::vector<uint16_t> lacs;
        for (unsigned i = 0; i < count; ++i)
            lacs.push_back(static_cast<uint16_t>(
                GridNumber(grid, kColFirstLac + static_cast<int>(i), row, 0, 0xFFFF)));
        lacs_ = std::move(lacs);
    } else {
        lacs_.clear();
    }
}

std::vector<std::string> CSysItemPlmn::TypeHeadings() const {
    std::vector<std::string> headings = {"PLMN Type"};
    if (plmnType_ == kSelectMode) {
        headings.push_back("PLMN Select");
        return headings;
    }
    headings.insert(headings.end(), {"MCC", "MNC", "Net Sel Mode"});
    if (plmnType_ == kSingleLac) headings.push_back("LAC");
    if (plmnType_ == kMultiLac) {
        headings.push_back("LAC Count");
        for (unsigned i = 1; i <= kMaxLacCount; ++i) headings.push_back("LAC " + std::to_string(i));
    }
    return headings;
}

bool CSysItemPlmn::AcceptsAcqType(int acqType, unsigned& refusal) const {
    refusal = Msg::AcqIndexPlmn;
    return acqType >= 12 && acqType <= 15;
}

std::string CSysItemPlmn::TypeToText() const {
    const auto& names = CRLNameTables::Instance();
    std::string text = Tab(names.PlmnType().GetName(plmnType_));
    if (plmnType_ == kSelectMode) return text + Tab(names.PlmnSelect().GetName(plmnSelect_));
    text += Tab(FormatMcc(mcc_)) + Tab(FormatMnc(mnc_)) + Tab(names.NetSelMode().GetName(netSel_));
    if (plmnType_ == kSingleLac) text += Tab(lacs_.empty() ? 0u : lacs_.front());
    if (plmnType_ == kMultiLac) {
        text += Tab(static_cast<uint32_t>(lacs_.size()));
        for (uint16_t lac : lacs_) text += Tab(lac);
    }
    return text;
}

void CSysItemPlmn::TypeFromText(std::span<const std::string_view> tokens) {
    const auto& names = CRLNameTables::Instance();
    if (tokens.empty()) ThrowText("a PLMN system record needs its PLMN type");
    const unsigned type = static_cast<unsigned>(TextName(tokens[0], names.PlmnType()));
    size_t expected = type == kSelectMode ? 2 : 4;
    if (type == kSingleLac) expected = 5;
    if (type == kMultiLac) {
        if (tokens.size() < 5) ThrowText("a PLMN+Multi LAC record needs its LAC count");
        expected = 5 + TextNumber(tokens[4], kMaxLacCount, "LAC count");
    }
    if (tokens.size() != expected)
        ThrowText("a PLMN system record of this type takes " + std::to_string(expected) +
                  " fields");
    plmnType_ = static_cast<uint8_t>(type);
    lacs_.clear();
    if (type == kSelectMode) {
        plmnSelect_ = static_cast<uint8_t>(TextName(tokens[1], names.PlmnSelect()));
        return;
    }
    if (!ParseMccLoose(tokens[1], mcc_)) ThrowText(std::string("MCC \"").append(tokens[1]) + "\"");
    if (!ParseMncLoose(tokens[2], mnc_)) ThrowText(std::string("MNC \"").append(tokens[2]) + "\"");
    netSel_ = static_cast<uint8_t>(TextName(tokens[3], names.NetSelMode()));
    if (type == kSingleLac)
        lacs_.push_back(static_cast<uint16_t>(TextNumber(tokens[4], 0xFFFF, "LAC")));
    if (type == kMultiLac)
        for (size_t i = 5; i < tokens.size(); ++i)
            lacs_.push_back(static_cast<uint16_t>(TextNumber(tokens[i], 0xFFFF, "LAC")));
}

void CSysItemPlmn::TypeToJson(nlohmann::json& out) const {
    const auto& names = CRLNameTables::Instance();
    PutJsonName(out, "plmnType", names.PlmnType(), plmnType_);
    if (plmnType_ == kSelectMode) {
        PutJsonName(out, "plmnSelect", names.PlmnSelect(), plmnSelect_);
        return;
    }
    out["mcc"] = FormatMcc(mcc_);
    out["mnc"] = FormatMnc(mnc_);
    PutJsonName(out, "netSelMode", names.NetSelMode(), netSel_);
    if (plmnType_ == kSingleLac || plmnType_ == kMultiLac) out["lacs"] = lacs_;
}

void CSysItemPlmn::TypeFromJson(const nlohmann::json& in) {
    const unsigned type = JsonNumber(in, "plmnType", kMultiLac, true);
    plmnType_ = static_cast<uint8_t>(type);
    lacs_.clear();
    if (type == kSelectMode) {
        plmnSelect_ = static_cast<uint8_t>(JsonNumber(in, "plmnSelect", 2, false));
        return;
    }
    const std::string mcc = JsonString(in, "mcc", true);
    if (!ParseMccLoose(mcc, mcc_)) ThrowJson("mcc", "\"" + mcc + "\" is not three digits");
    const std::string mnc = JsonString(in, "mnc", true);
    if (!ParseMncLoose(mnc, mnc_)) ThrowJson("mnc", "\"" + mnc + "\" is not two or three digits");
    netSel_ = static_cast<uint8_t>(JsonNumber(in, "netSelMode", 1, false));
    if (type != kSingleLac && type != kMultiLac) return;
    const auto& lacs = JsonArray(in, "lacs", type == kSingleLac);
    const size_t most = type == kSingleLac ? 1 : kMaxLacCount;
    if ((type == kSingleLac && lacs.size() != 1) || lacs.size() > most)
        ThrowJson("lacs",
                  "holds " + std::to_string(lacs.size()) + " entries, allowed " +
                      (type == kSingleLac ? std::string("1") : "0.." + std::to_string(most)));
    for (const auto& lac : lacs) {
        uint64_t value = 0;
        if (!JsonWhole(lac, value) || value > 0xFFFF)
            ThrowJson("lacs", "holds an entry that is not a number from 0 to 65535");
        lacs_.push_back(static_cast<uint16_t>(value));
    }
}

}  // namespace Tarn
