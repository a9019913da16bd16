#include "roaming_list/SysItemIS2000.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItemHelpers.h"

namespace Tarn {

using namespace SysFields;

namespace {

constexpr int kColSid = CSysItem::kFirstTypeColumn;
constexpr int kColNid = CSysItem::kFirstTypeColumn + 1;

uint16_t ImpliedNid(unsigned incl) {
    return incl == 2 ? 0 : 65535;
}

bool IsMccSid(unsigned sid) {
    return sid == CSysItemIS2000::kMccSid || sid == CSysItemIS2000::kMccSidHigh;
}

}  // namespace

std::unique_ptr<CRLItem> CSysItemIS2000::Clone() const {
    return std::make_unique<CSysItemIS2000>(*this);
}

std::unique_ptr<CRLItem> CSysItemIS2000::GetReplacement() {
    if (!IsMccSid(sid_)) return nullptr;
    return std::make_unique<CSysItemIS2000Mcc>(*this);
}

void CSysItemIS2000::TakeNid(unsigned nid) {
    if (nidIncl_ != 1) {
        if (nid == 65535) {
            nidIncl_ = 0;
        } else if (nid == 0) {
            nidIncl_ = 2;
        } else {
            nidIncl_ = 1;
        }
    }
    nid_ = static_cast<uint16_t>(nid);
}

uint32_t CSysItemIS2000::ReadIds(CRLFile& file, bool longFraming) {
    uint32_t bits = 0;
    if (longFraming) {
        // The reserved bit, NID_INCL and SID in one field, as written.
        const uint32_t ids = file.ReadBits(18);
        nidIncl_ = static_cast<uint8_t>((ids >> 15) & 3u);
        sid_ = static_cast<uint16_t>(ids & 0x7FFFu);
        bits = 18;
    } else {
        sid_ = static_cast<uint16_t>(file.ReadBits(15));
        nidIncl_ = static_cast<uint8_t>(file.ReadBits(2));
        bits = 17;
    }
    if (nidIncl_ == 1) {
        nid_ = static_cast<uint16_t>(file.ReadBits(16));
        bits += 16;
    } else {
        nid_ = ImpliedNid(nidIncl_);
    }
    return bits;
}

uint32_t CSysItemIS2000::ReadShort(CRLFile& file) {
    uint32_t bits = ReadIds(file, false);
    negPref_ = static_cast<uint8_t>(file.ReadBits(1));
    geo_ = static_cast<uint8_t>(file.ReadBits(1));
    bits += 2;
    priority_ = 0;
    roamInd_ = 0;
    if (IsPreferred()) {
        priority_ = static_cast<uint8_t>(file.ReadBits(1));
        bits += 1;
    }
    acqIndex_ = static_cast<uint16_t>(file.ReadBits(9));
    bits += 9;
    if (IsPreferred()) {
        roamInd_ = static_cast<uint8_t>(file.ReadBits(8));
        bits += 8;
    }
    return bits;
}

uint32_t CSysItemIS2000::WriteShort(CRLFile& file) const {
    const Ids ids = FileIds();
    file.WriteBits(15, ids.sid & 0x7FFFu);
    file.WriteBits(2, ids.nidIncl & 3u);
    uint32_t bits = 17;
    if (ids.nidIncl == 1) {
        file.WriteBits(16, ids.nid);
        bits += 16;
    }
    file.WriteBits(1, negPref_ & 1u);
    file.WriteBits(1, geo_ & 1u);
    bits += 2;
    if (IsPreferred()) {
        file.WriteBits(1, priority_ & 1u);
        bits += 1;
    }
    file.WriteBits(9, acqIndex_ & 0x1FFu);
    bits += 9;
    if (IsPreferred()) {
        file.WriteBits(8, roamInd_);
        bits += 8;
    }
    return bits;
}

uint32_t CSysItemIS2000::ReadTypeFields(CRLFile& file) {
    return ReadIds(file, true);
}

uint32_t CSysItemIS2000::WriteTypeFields(CRLFile& file) const {
    const Ids ids = FileIds();
    // The reserved bit, NID_INCL and SID in one field.
    file.WriteBits(18, ((ids.nidIncl & 3u) << 15) | (ids.sid & 0x7FFFu));
    if (ids.nidIncl != 1) return 18;
    file.WriteBits(16, ids.nid);
    return 34;
}

uint32_t CSysItemIS2000::TypeFieldBits() const {
    return FileIds().nidIncl == 1 ? 34 : 18;
}

bool CSysItemIS2000::TypeIsValid() const {
    return sid_ <= kMaxSid && nidIncl_ < 3;
}

void CSysItemIS2000::WriteTypeToGrid(Grid& grid, int row) const {
    PutNumber(grid, kColSid, row, sid_, "99999");
    PutNumber(grid, kColNid, row, nid_, "99999");
}

void CSysItemIS2000::ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) {
    CheckAcqType(row, context);
    const std::string sidText = CellText(grid, kColSid, row);
    uint32_t sid = 0;
    if (IsMissing(sidText) || !ParseUnsigned(sidText, sid))
        ThrowGrid(Msg::RequiredValueMissing, kColSid, row);
    if (IsMccSid(sid)) ThrowGrid(Msg::ReservedSid, kColSid, row);
    if (sid > kMaxSid) ThrowRange(kColSid, row, 0, kMaxSid);
    sid_ = static_cast<uint16_t>(sid);
    TakeNid(GridNumber(grid, kColNid, row, 0, 65535));
}

std::vector<std::string> CSysItemIS2000::TypeHeadings() const {
    return {"SID", "NID"};
}

bool CSysItemIS2000::AcceptsAcqType(int acqType, unsigned& refusal) const {
    refusal = Msg::AcqIndexIs2000;
    return acqType >= 1 && acqType <= 10;
}

std::string CSysItemIS2000::TypeToText() const {
    std::string text;
    FieldBuffer line(text);
    CSysItemIS2000::TypeAppendText(line);
    line.Flush();
    return text;
}

bool CSysItemIS2000::TypeAppendText(FieldBuffer& line) const {
    line.Add(sid_);
    line.Add(nid_);
    line.Add(nidIncl_);
    return true;
}

void CSysItemIS2000::TypeFromText(std::span<const std::string_view> tokens) {
    if (tokens.size() != 2 && tokens.size() != 3)
        ThrowText("an IS-2000 system record takes SID, NID and NID_INCL");
    sid_ = static_cast<uint16_t>(TextNumber(tokens[0], kMaxSid, "SID"));
    const unsigned nid = TextNumber(tokens[1], 65535, "NID");
    if (tokens.size() == 3) {
        // 3 is reserved; a list that holds it keeps it, as the binary reader does.
        nidIncl_ = static_cast<uint8_t>(TextNumber(tokens[2], 3, "NID_INCL"));
        if (nidIncl_ != 1 && nid != ImpliedNid(nidIncl_))
            ThrowText("NID " + std::to_string(nid) + " is not the one NID_INCL " +
                      std::to_string(nidIncl_) + " stands for");
        nid_ = static_cast<uint16_t>(nid);
    } else {
        nidIncl_ = 0;
        TakeNid(nid);
    }
}

void CSysItemIS2000::TypeToJson(nlohmann::json& out) const {
    out["sid"] = sid_;
    out["nidIncl"] = nidIncl_;
    out["nid"] = nid_;
}

void CSysItemIS2000::TypeFromJson(const nlohmann::json& in) {
    sid_ = static_cast<uint16_t>(JsonNumber(in, "sid", kMaxSid, true));
    ReadNidJson(in);
}

void CSysItemIS2000::ReadNidJson(const nlohmann::json& in) {
    if (in.contains("nidIncl")) {
        // 3 is reserved; a list that holds it keeps it, as the binary reader does.
        nidIncl_ = static_cast<uint8_t>(JsonNumber(in, "nidIncl", 3, true));
        nid_ = nidIncl_ == 1 ? static_cast<uint16_t>(JsonNumber(in, "nid", 65535, true))
                             : ImpliedNid(nidIncl_);
        return;
    }
    nidIncl_ = 0;
    nid_ = 65535;
    if (in.contains("nid")) TakeNid(JsonNumber(in, "nid", 65535, true));
}

// ---------------------------------------------------------------------------------------------
// 1x-MCC

CSysItemIS2000Mcc::CSysItemIS2000Mcc() {
    sid_ = kMccSid;
    nidIncl_ = 1;
    nid_ = 0;
}

CSysItemIS2000Mcc::CSysItemIS2000Mcc(const CSysItemIS2000& from) : CSysItemIS2000(from) {
    TakeIds();
}

std::unique_ptr<CRLItem> CSysItemIS2000Mcc::Clone() const {
    return std::make_unique<CSysItemIS2000Mcc>(*this);
}

unsigned CSysItemIS2000Mcc::MccFromIds(unsigned sid, unsigned nid) {
    const unsigned mcc = (sid == kMccSidHigh ? 512u : 0u) | ((nid & 0xFFFFu) >> 7);
    return mcc > 999 ? 0 : mcc;
}

unsigned CSysItemIS2000Mcc::ImsiFromIds(unsigned nid) {
    const unsigned imsi = nid & 0x7Fu;
    return imsi > 99 ? 0 : imsi;
}

void CSysItemIS2000Mcc::TakeIds() {
    mcc_ = static_cast<uint16_t>(MccFromIds(sid_, nid_));
    imsi_ = static_cast<uint8_t>(ImsiFromIds(nid_));
}

CSysItemIS2000::Ids CSysItemIS2000Mcc::FileIds() const {
    if (IsMccSid(sid_) && nidIncl_ < 3 && MccFromIds(sid_, nid_) == mcc_ &&
        ImsiFromIds(nid_) == imsi_)
        return {sid_, nidIncl_, nid_};
    const unsigned mcc = mcc_ > 999 ? 0u : mcc_;
    const unsigned imsi = imsi_ > 99 ? 0u : imsi_;
    return {static_cast<uint16_t>(mcc >= 512 ? kMccSidHigh : kMccSid), 1,
            static_cast<uint16_t>(((mcc & 511u) << 7) | imsi)};
}

uint32_t CSysItemIS2000Mcc::ReadShort(CRLFile& file) {
    const uint32_t bits = CSysItemIS2000::ReadShort(file);
    TakeIds();
    return bits;
}

uint32_t CSysItemIS2000Mcc::ReadTypeFields(CRLFile& file) {
    const uint32_t bits = CSysItemIS2000::ReadTypeFields(file);
    TakeIds();
    return bits;
}

bool CSysItemIS2000Mcc::TypeIsValid() const {
    return mcc_ <= 999 && imsi_ <= 99;
}

void CSysItemIS2000Mcc::WriteTypeToGrid(Grid& grid, int row) const {
    char mcc[8];
    char imsi[8];
    std::snprintf(mcc, sizeof mcc, "%03u", static_cast<unsigned>(mcc_));
    std::snprintf(imsi, sizeof imsi, "%02u", static_cast<unsigned>(imsi_));
    PutText(grid, kColSid, row, mcc, "999");
    PutText(grid, kColNid, row, imsi, "99");
}

namespace {

bool AllDigits(const std::string& text, size_t count) {
    if (text.size() != count) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    return true;
}

}  // namespace

void CSysItemIS2000Mcc::ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) {
    CheckAcqType(row, context);
    const std::string mcc = CellText(grid, kColSid, row);
    if (IsMissing(mcc)) ThrowGrid(Msg::RequiredValueMissing, kColSid, row);
    if (!AllDigits(mcc, 3)) ThrowGrid(Msg::InvalidMcc, kColSid, row);
    mcc_ = static_cast<uint16_t>(std::stoi(mcc));
    const std::string imsi = CellText(grid, kColNid, row);
    if (IsMissing(imsi)) ThrowGrid(Msg::RequiredValueMissing, kColNid, row);
    if (!AllDigits(imsi, 2)) ThrowGrid(Msg::InvalidImsi, kColNid, row);
    imsi_ = static_cast<uint8_t>(std::stoi(imsi));
}

std::vector<std::string> CSysItemIS2000Mcc::TypeHeadings() const {
    return {"MCC", "IMSI_11_12"};
}

std::string CSysItemIS2000Mcc::TypeToText() const {
    std::string text;
    FieldBuffer line(text);
    CSysItemIS2000Mcc::TypeAppendText(line);
    line.Flush();
    return text;
}

bool CSysItemIS2000Mcc::TypeAppendText(FieldBuffer& line) const {
    line.Add(mcc_);
    line.Add(imsi_);
    return true;
}

void CSysItemIS2000Mcc::TypeFromText(std::span<const std::string_view> tokens) {
    if (tokens.size() != 2) ThrowText("a 1x-MCC system record takes MCC and IMSI_11_12");
    mcc_ = static_cast<uint16_t>(TextNumber(tokens[0], 999, "MCC"));
    imsi_ = static_cast<uint8_t>(TextNumber(tokens[1], 99, "IMSI_11_12"));
}

void CSysItemIS2000Mcc::TypeToJson(nlohmann::json& out) const {
    out["mcc"] = mcc_;
    out["imsi11_12"] = imsi_;
    CSysItemIS2000::TypeToJson(out);
}

void CSysItemIS2000Mcc::TypeFromJson(const nlohmann::json& in) {
    mcc_ = static_cast<uint16_t>(JsonNumber(in, "mcc", 999, true));
    imsi_ = static_cast<uint8_t>(JsonNumber(in, "imsi11_12", 99, true));
    // The identifiers the record was read with, so an unusual file is written back unchanged;
    // they are only used while they still give this MCC and IMSI_11_12.
    if (in.contains("sid")) {
        sid_ = static_cast<uint16_t>(JsonNumber(in, "sid", kMaxSid, true));
        ReadNidJson(in);
    }
}

}  // namespace Tarn
