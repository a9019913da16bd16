#include "roaming_list/SysItemMccMnc.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

using namespace SysFields;

namespace {

constexpr int kColSubtype = CSysItem::kFirstTypeColumn;
constexpr int kColMcc = kColSubtype + 1;
constexpr int kColMnc = kColSubtype + 2;
constexpr int kColCount = kColSubtype + 3;
constexpr int kColFirstEntry = kColSubtype + 4;

bool HasSids(unsigned subtype) {
    return subtype == CSysItemMccMnc::kSid || subtype == CSysItemMccMnc::kSidNid;
}

}  // namespace

std::unique_ptr<CRLItem> CSysItemMccMnc::Clone() const {
    return std::make_unique<CSysItemMccMnc>(*this);
}

size_t CSysItemMccMnc::EntryCount() const {
    if (HasSids(subtype_)) return sids_.size();
    if (subtype_ == kSubnet) return subnets_.size();
    return 0;
}

uint32_t CSysItemMccMnc::ReadTypeFields(CRLFile& file) {
    subtype_ = static_cast<uint8_t>(file.ReadBits(3));
    mcc_ = UnpackDigits(file.ReadBits(12));
    mnc_ = UnpackDigits(file.ReadBits(12));
    uint32_t bits = 27;
    sids_.clear();
    nids_.clear();
    subnets_.clear();
    if (HasSids(subtype_)) {
        file.ReadBits(4);  // reserved
        const unsigned count = file.ReadBits(4);
        bits += 8;
        for (unsigned i = 0; i < count; ++i) {
            file.ReadBits(1);  // reserved
            sids_.push_back(static_cast<uint16_t>(file.ReadBits(15)));
            bits += 16;
            if (subtype_ == kSidNid) {
                nids_.push_back(static_cast<uint16_t>(file.ReadBits(16)));
                bits += 16;
            }
        }
    } else if (subtype_ == kSubnet) {
        file.ReadBits(3);  // reserved
        const unsigned count = file.ReadBits(5);
        bits += 8;
        for (unsigned i = 0; i < count; ++i) {
            file.ReadBits(1);  // reserved
            const unsigned length = file.ReadBits(7);
            CSubnetId subnet;
            bits += 8 + subnet.ReadBits(file, length);
            subnets_.push_back(subnet);
        }
    }
    return bits;
}

uint32_t CSysItemMccMnc::WriteTypeFields(CRLFile& file) const {
    file.WriteBits(3, subtype_ & 7u);
    file.WriteBits(12, PackDigits(mcc_));
    file.WriteBits(12, PackDigits(mnc_));
    uint32_t bits = 27;
    if (HasSids(subtype_)) {
        const size_t count = sids_.size() < 15 ? sids_.size() : 15;
        file.WriteBits(4, 0);
        file.WriteBits(4, static_cast<uint32_t>(count));
        bits += 8;
        for (size_t i = 0; i < count; ++i) {
            file.WriteBits(1, 0);
            file.WriteBits(15, sids_[i] & 0x7FFFu);
            bits += 16;
            if (subtype_ == kSidNid) {
                file.WriteBits(16, i < nids_.size() ? nids_[i] : 0u);
                bits += 16;
            }
        }
    } else if (subtype_ == kSubnet) {
        const size_t count = subnets_.size() < 31 ? subnets_.size() : 31;
        file.WriteBits(3, 0);
        file.WriteBits(5, static_cast<uint32_t>(count));
        bits += 8;
        for (size_t i = 0; i < count; ++i) {
            file.WriteBits(1, 0);
            file.WriteBits(7, subnets_[i].length & 0x7Fu);
            bits += 8 + subnets_[i].WriteBits(file);
        }
    }
    return bits;
}

uint32_t CSysItemMccMnc::TypeFieldBits() const {
    uint32_t bits = 27;
    if (HasSids(subtype_))
        bits += 8 + static_cast<uint32_t>(sids_.size()) * (subtype_ == kSidNid ? 32 : 16);
    if (subtype_ == kSubnet) {
        bits += 8;
        for (const auto& subnet : subnets_) bits += 8 + subnet.length;
    }
    return bits;
}

bool CSysItemMccMnc::TypeIsValid() const {
    if (subtype_ > kSubnet) return false;
    if (HasSids(subtype_)) {
        if (sids_.size() > kMaxSids) return false;
        if (subtype_ == kSidNid && nids_.size() != sids_.size()) return false;
        for (uint16_t sid : sids_)
            if (sid > 32767) return false;
    }
    if (subtype_ == kSubnet) {
        if (subnets_.size() > kMaxSubnets) return false;
        for (const auto& subnet : subnets_)
            if (subnet.length > CSubnetId::kMaxLength) return false;
    }
    return true;
}

void CSysItemMccMnc::WriteTypeToGrid(Grid& grid, int row) const {
    const auto& subtypes = CRLNameTables::Instance().MccMncSubtype();
    grid.SetCellDropDown(kColSubtype, row, subtypes.Choices());
    grid.SetCellText(
        kColSubtype, row,
        subtypes.HasValue(subtype_) ? subtypes.GetName(subtype_) : std::to_string(subtype_));
    PutText(grid, kColMcc, row, FormatMcc(mcc_), "999");
    PutText(grid, kColMnc, row, FormatMnc(mnc_));
    if (subtype_ == kMccMncOnly || subtype_ > kSubnet) return;
    PutNumber(grid, kColCount, row, static_cast<uint32_t>(EntryCount()), "99");
    int column = kColFirstEntry;
    if (HasSids(subtype_)) {
        for (size_t i = 0; i < sids_.size(); ++i) {
            PutNumber(grid, column++, row, sids_[i], "99999");
            if (subtype_ == kSidNid)
                PutNumber(grid, column++, row, i < nids_.size() ? nids_[i] : 0u, "99999");
        }
    } else {
        for (const auto& subnet : subnets_) PutText(grid, column++, row, subnet.ToText());
    }
}

void CSysItemMccMnc::ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) {
    const auto& subtypes = CRLNameTables::Instance().MccMncSubtype();
    const std::string subtypeText = CellText(grid, kColSubtype, row);
    if (IsMissing(subtypeText)) ThrowGrid(Msg::RequiredValueMissing, kColSubtype, row);
    int subtype = 0;
    uint32_t code = 0;
    // The two unnamed subtypes are typed as their codes.
    if (!subtypes.FindValue(subtypeText, subtype)) {
        if (!ParseUnsigned(subtypeText, code) || code > kSubnet) subtypes.GetValue(subtypeText);
        subtype = static_cast<int>(code);
    }
    subtype_ = static_cast<uint8_t>(subtype);
    CheckAcqType(row, context);

    const std::string mcc = CellText(grid, kColMcc, row);
    if (IsMissing(mcc)) ThrowGrid(Msg::RequiredValueMissing, kColMcc, row);
    if (!ParseMcc(mcc, mcc_)) ThrowGrid(Msg::InvalidMcc, kColMcc, row);
    const std::string mnc = CellText(grid, kColMnc, row);
    if (IsMissing(mnc)) ThrowGrid(Msg::RequiredValueMissing, kColMnc, row);
    if (!ParseMnc(mnc, mnc_)) ThrowGrid(Msg::InvalidMnc, kColMnc, row);

    if (subtype_ == kMccMncOnly) {
        sids_.clear();
        nids_.clear();
        subnets_.clear();
        return;
    }
    const std::string countText = CellText(grid, kColCount, row);
    uint32_t count = 0;
    if (IsMissing(countText) || !ParseUnsigned(countText, count))
        ThrowGrid(Msg::RequiredValueMissing, kColCount, row);

    if (HasSids(subtype_)) {
        // The shown upper bound of -1 is how this check has always read.
        if (count > kMaxSids) ThrowRange(kColCount, row, 0, -1);
        std::vector<uint16_t> sids;
        std::vector<uint16_t> nids;
        int column = kColFirstEntry;
        for (uint32_t i = 0; i < count; ++i) {
            sids.push_back(static_cast<uint16_t>(GridNumber(grid, column++, row, 0, 32767)));
            if (subtype_ == kSidNid)
                nids.push_back(static_cast<uint16_t>(GridNumber(grid, column++, row, 0, 65535)));
        }
        sids_ = std::move(sids);
        nids_ = std::move(nids);
        subnets_.clear();
        return;
    }
    if (count > kMaxSubnets) ThrowRange(kColCount, row, 0, kMaxSubnets);
    std::vector<CSubnetId> subnets;
    uint32_t bits = CommonLongBits() + 27 + 8;
    unsigned fit = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const int column = kColFirstEntry + static_cast<int>(i);
        const std::string text = CellText(grid, column, row);
        if (IsMissing(text)) ThrowGrid(Msg::RequiredValueMissing, column, row);
        CSubnetId subnet;
        if (CSubnetId::FromText(text, subnet) != CSubnetId::Parse::Ok)
            ThrowGrid(Msg::BadSubnetId, column, row);
        bits += 8 + subnet.length;
        if (bits <= kMaxRecordOctets * 8) fit = i + 1;
        subnets.push_back(subnet);
    }
    if (bits > kMaxRecordOctets * 8) ThrowRange(kColCount, row, 0, fit);
    subnets_ = std::move(subnets);
    sids_.clear();
    nids_.clear();
}

std::vector<std::string> CSysItemMccMnc::TypeHeadings() const {
    std::vector<std::string> headings = {"Subtype", "MCC", "MNC"};
    if (subtype_ == kSid) {
        headings.push_back("Num SID");
        for (unsigned i = 1; i <= kMaxSids; ++i) headings.push_back("SID " + std::to_string(i));
    } else if (subtype_ == kSidNid) {
        headings.push_back("Num SID/NID");
        for (unsigned i = 1; i <= kMaxSids; ++i) {
            headings.push_back("SID " + std::to_string(i));
            headings.push_back("NID " + std::to_string(i));
        }
    } else if (subtype_ == kSubnet) {
        headings.push_back("Num Subnets");
        for (unsigned i = 1; i <= kMaxSubnets; ++i)
            headings.push_back("Subnet " + std::to_string(i));
    }
    return headings;
}

bool CSysItemMccMnc::AcceptsAcqType(int acqType, unsigned& refusal) const {
    if (subtype_ == kSubnet) {
        refusal = Msg::AcqIndexMccMncSubnet;
        return acqType == 11;
    }
    refusal = Msg::AcqIndexMccMncSidNid;
    return acqType < 11 || acqType > 15;
}

std::string CSysItemMccMnc::TypeToText() const {
    std::string text = Tab(subtype_) + Tab(FormatMcc(mcc_)) + Tab(FormatMnc(mnc_));
    if (subtype_ == kMccMncOnly || subtype_ > kSubnet) return text;
    text += Tab(static_cast<uint32_t>(EntryCount()));
    if (HasSids(subtype_)) {
        for (size_t i = 0; i < sids_.size(); ++i) {
            text += Tab(sids_[i]);
            if (subtype_ == kSidNid) text += Tab(i < nids_.size() ? nids_[i] : 0u);
        }
    } else {
        for (const auto& subnet : subnets_) text += Tab(subnet.ToText());
    }
    return text;
}

void CSysItemMccMnc::TypeFromText(std::span<const std::string_view> tokens) {
    if (tokens.size() < 3) ThrowText("an MCC-MNC system record takes subtype, MCC and MNC");
    const unsigned subtype = TextNumber(tokens[0], kSubnet, "MCC-MNC subtype");
    Digits mcc{};
    Digits mnc{};
    if (!ParseMccLoose(tokens[1], mcc))
        ThrowText(std::string("MCC \"").append(tokens[1]) + "\"");
    if (!ParseMncLoose(tokens[2], mnc))
        ThrowText(std::string("MNC \"").append(tokens[2]) + "\"");
    std::vector<uint16_t> sids;
    std::vector<uint16_t> nids;
    std::vector<CSubnetId> subnets;
    if (subtype == kMccMncOnly) {
        if (tokens.size() != 3) ThrowText("an MCC-MNC only record takes 3 fields");
    } else {
        if (tokens.size() < 4) ThrowText("an MCC-MNC system record needs its count");
        const unsigned count =
            TextNumber(tokens[3], subtype == kSubnet ? kMaxSubnets : kMaxSids, "MCC-MNC count");
        const size_t perEntry = subtype == kSidNid ? 2 : 1;
        if (tokens.size() != 4 + count * perEntry)
            ThrowText("an MCC-MNC record with " + std::to_string(count) + " entries takes " +
                      std::to_string(4 + count * perEntry) + " fields");
        for (size_t i = 0, t = 4; i < count; ++i) {
            if (subtype == kSubnet) {
                CSubnetId subnet;
                const std::string text(tokens[t]);
                if (CSubnetId::FromText(text, subnet) != CSubnetId::Parse::Ok)
                    throw CDataException(DataError::InvalidSubnetId, "(\"" + text + "\")");
                subnets.push_back(subnet);
                ++t;
                continue;
            }
            sids.push_back(static_cast<uint16_t>(TextNumber(tokens[t++], 32767, "SID")));
            if (subtype == kSidNid)
                nids.push_back(static_cast<uint16_t>(TextNumber(tokens[t++], 65535, "NID")));
        }
    }
    subtype_ = static_cast<uint8_t>(subtype);
    mcc_ = mcc;
    mnc_ = mnc;
    sids_ = std::move(sids);
    nids_ = std::move(nids);
    subnets_ = std::move(subnets);
}

void CSysItemMccMnc::TypeToJson(nlohmann::json& out) const {
    PutJsonName(out, "subtype", CRLNameTables::Instance().MccMncSubtype(), subtype_);
    out["mcc"] = FormatMcc(mcc_);
    out["mnc"] = FormatMnc(mnc_);
    if (subtype_ == kSid) out["sids"] = sids_;
    if (subtype_ == kSidNid) {
        auto pairs = nlohmann::json::array();
        for (size_t i = 0; i < sids_.size(); ++i)
            pairs.push_back({{"sid", sids_[i]}, {"nid", i < nids_.size() ? nids_[i] : 0u}});
        out["sidNidPairs"] = std::move(pairs);
    }
    if (subtype_ == kSubnet) {
        auto subnets = nlohmann::json::array();
        for (const auto& subnet : subnets_) subnets.push_back(subnet.ToText());
        out["subnets"] = std::move(subnets);
    }
}

void CSysItemMccMnc::TypeFromJson(const nlohmann::json& in) {
    const unsigned subtype = JsonNumber(in, "subtype", kSubnet, true);
    Digits mcc{};
    Digits mnc{};
    const std::string mccText = JsonString(in, "mcc", true);
    if (!ParseMccLoose(mccText, mcc)) ThrowJson("mcc", "\"" + mccText + "\" is not three digits");
    const std::string mncText = JsonString(in, "mnc", true);
    if (!ParseMncLoose(mncText, mnc))
        ThrowJson("mnc", "\"" + mncText + "\" is not two or three digits");
    std::vector<uint16_t> sids;
    std::vector<uint16_t> nids;
    std::vector<CSubnetId> subnets;
    if (subtype == kSid) {
        const auto& list = JsonArray(in, "sids", false);
        if (list.size() > kMaxSids) ThrowJson("sids", "holds more than 5 entries");
        for (const auto& sid : list) {
            uint64_t value = 0;
            if (!JsonWhole(sid, value) || value > 32767)
                ThrowJson("sids", "holds an entry that is not a SID from 0 to 32767");
            sids.push_back(static_cast<uint16_t>(value));
        }
    } else if (subtype == kSidNid) {
        const auto& list = JsonArray(in, "sidNidPairs", false);
        if (list.size() > kMaxSids) ThrowJson("sidNidPairs", "holds more than 5 entries");
        for (const auto& pair : list) {
            if (!pair.is_object()) ThrowJson("sidNidPairs", "holds an entry that is not an object");
            sids.push_back(static_cast<uint16_t>(JsonNumber(pair, "sid", 32767, true)));
            nids.push_back(static_cast<uint16_t>(JsonNumber(pair, "nid", 65535, true)));
        }
    } else if (subtype == kSubnet) {
        const auto& list = JsonArray(in, "subnets", false);
        if (list.size() > kMaxSubnets) ThrowJson("subnets", "holds more than 16 entries");
        for (const auto& text : list) {
            CSubnetId subnet;
            if (!text.is_string() ||
                CSubnetId::FromText(text.get<std::string>(), subnet) != CSubnetId::Parse::Ok)
                ThrowJson("subnets", "holds an entry that is not an IPv6 address/length up to 127");
            subnets.push_back(subnet);
        }
    }
    subtype_ = static_cast<uint8_t>(subtype);
    mcc_ = mcc;
    mnc_ = mnc;
    sids_ = std::move(sids);
    nids_ = std::move(nids);
    subnets_ = std::move(subnets);
}

}  // namespace Tarn
