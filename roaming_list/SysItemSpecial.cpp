#include "roaming_list/SysItemSpecial.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItemHelpers.h"

namespace Tarn {

using namespace SysFields;

namespace {

constexpr int kColLength = CSysItem::kFirstTypeColumn;
// A fresh record: 9 bits of length and type, 12 common bits and 3 fill bits.
constexpr unsigned kFreshOctets = 3;

}  // namespace

CSysItemSpecial::CSysItemSpecial(uint8_t type, unsigned lengthOctets)
    : type_(type),
      length_(static_cast<uint8_t>(lengthOctets > kMaxRecordOctets ? 0 : lengthOctets)) {}

std::unique_ptr<CRLItem> CSysItemSpecial::Clone() const {
    return std::make_unique<CSysItemSpecial>(*this);
}

bool CSysItemSpecial::IsValid() const {
    return CommonIsValid() && length_ <= kMaxRecordOctets;
}

uint32_t CSysItemSpecial::LongFramingBits() const {
    return 8u * (length_ == 0 ? kFreshOctets : length_);
}

uint32_t CSysItemSpecial::Read(CRLFile& file) {
    if (file.GetVersion() != 0) version_ = static_cast<int8_t>(file.GetVersion());
    if (version_ < 3) return ReadShort(file);
    return ReadTypeFields(file);
}

uint32_t CSysItemSpecial::ReadTypeFields(CRLFile& file) {
    if (length_ < 2)
        throw CDataException(DataError::InvalidSysTable,
                             "(a system record of type " + std::to_string(type_) + " is " +
                                 std::to_string(length_) +
                                 " octets long, shorter than its own header)");
    data_.assign(length_ - 1u, 0);
    for (size_t i = 0; i + 1 < data_.size(); ++i) data_[i] = static_cast<uint8_t>(file.ReadBits(8));
    data_.back() = static_cast<uint8_t>(file.ReadBits(7) << 1);
    TakeCommonFromData();
    return 8u * length_ - 9u;
}

void CSysItemSpecial::TakeCommonFromData() {
    if (length_ < kFreshOctets) return;
    const unsigned head = (static_cast<unsigned>(data_[0]) << 4) | (data_[1] >> 4);
    negPref_ = static_cast<uint8_t>((head >> 11) & 1u);
    geo_ = static_cast<uint8_t>((head >> 10) & 1u);
    priority_ = static_cast<uint8_t>((head >> 9) & 1u);
    acqIndex_ = static_cast<uint16_t>(head & 0x1FFu);
}

std::vector<uint8_t> CSysItemSpecial::GetData() const {
    std::vector<uint8_t> data = data_;
    if (length_ >= kFreshOctets && data.size() >= 2) {
        const unsigned head = ((negPref_ & 1u) << 11) | ((geo_ & 1u) << 10) |
                              ((priority_ & 1u) << 9) | (acqIndex_ & 0x1FFu);
        data[0] = static_cast<uint8_t>(head >> 4);
        data[1] = static_cast<uint8_t>((data[1] & 0x0Fu) | ((head & 0xFu) << 4));
    }
    return data;
}

uint32_t CSysItemSpecial::Write(CRLFile& file) const {
    const int fileVersion = file.GetVersion() != 0 ? file.GetVersion() : version_;
    if (fileVersion < 3) return WriteShort(file);
    if (length_ == 0) {
        file.WriteBits(5, kFreshOctets);
        file.WriteBits(4, type_ & 0xFu);
        WriteCommonHead(file);
        file.WriteBits(3, 0);
        return 8 * kFreshOctets;
    }
    file.WriteBits(5, length_);
    file.WriteBits(4, type_ & 0xFu);
    return 9 + WriteTypeFields(file);
}

uint32_t CSysItemSpecial::WriteTypeFields(CRLFile& file) const {
    const std::vector<uint8_t> data = GetData();
    if (data.empty()) return 0;
    for (size_t i = 0; i + 1 < data.size(); ++i) file.WriteBits(8, data[i]);
    file.WriteBits(7, static_cast<uint32_t>(data.back() >> 1));
    return 8u * static_cast<uint32_t>(data.size()) - 1u;
}

void CSysItemSpecial::WriteTypeToGrid(Grid& grid, int row) const {
    PutNumber(grid, kColLength, row, length_, "99");
}

void CSysItemSpecial::ReadTypeFromGrid(const Grid&, int row, const GridContext& context) {
    // The data length is the record's own; the cell only shows it.
    CheckAcqType(row, context);
}

std::vector<std::string> CSysItemSpecial::TypeHeadings() const {
    return {"Data Length"};
}

bool CSysItemSpecial::AcceptsAcqType(int acqType, unsigned& refusal) const {
    refusal = Msg::AcqIndexUndefined;
    return acqType == 253;
}

std::string CSysItemSpecial::DataHex() const {
    static const char* const kHex = "0123456789ABCDEF";
    std::string text;
    for (uint8_t byte : GetData()) {
        text += kHex[byte >> 4];
        text += kHex[byte & 0xF];
    }
    return text;
}

bool CSysItemSpecial::TakeHex(unsigned length, const std::string& hex) {
    if (length == 1 || length > kMaxRecordOctets) return false;
    const size_t octets = length == 0 ? 0 : length - 1u;
    if (hex.size() != 2 * octets) return false;
    std::vector<uint8_t> data(octets);
    for (size_t i = 0; i < hex.size(); ++i) {
        const char c = hex[i];
        int d = -1;
        if (c >= '0' && c <= '9') d = c - '0';
        if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
        if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
        if (d < 0) return false;
        data[i / 2] = static_cast<uint8_t>(data[i / 2] | (i % 2 == 0 ? d << 4 : d));
    }
    if (!data.empty()) data.back() &= 0xFE;
    length_ = static_cast<uint8_t>(length);
    data_ = std::move(data);
    return true;
}

std::string CSysItemSpecial::TypeToText() const {
    if (length_ == 0) return Tab(0u);
    return Tab(length_) + Tab(DataHex());
}

void CSysItemSpecial::TypeFromText(std::span<const std::string_view> tokens) {
    if (tokens.empty() || tokens.size() > 2)
        ThrowText("an undefined system record takes its length and its data");
    const unsigned length = TextNumber(tokens[0], kMaxRecordOctets, "record length");
    if (!TakeHex(length, tokens.size() == 2 ? std::string(tokens[1]) : std::string()))
        ThrowText("the data does not fill a record of " + std::to_string(length) + " octets");
}

void CSysItemSpecial::TypeToJson(nlohmann::json& out) const {
    out["length"] = length_;
    out["data"] = DataHex();
}

void CSysItemSpecial::TypeFromJson(const nlohmann::json& in) {
    const unsigned length = JsonNumber(in, "length", kMaxRecordOctets, true);
    const std::string hex = JsonString(in, "data", false);
    if (!TakeHex(length, hex))
        ThrowJson("data", "does not fill a record of " + std::to_string(length) + " octets");
}

}  // namespace Tarn
