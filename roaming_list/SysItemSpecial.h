// CSysItemSpecial: a system record of a type the editor does not model, kept byte for byte.
#pragma once

#include <vector>

#include "roaming_list/SysItem.h"

namespace Tarn {

// Long framing only. The record's count is its own 5-bit length field L (octets, 2..31): all
// 8L - 9 bits after the 4-bit type are opaque data, kept as read and written back unchanged.
//   | length L | type | opaque data                                              |
//   | 5        | 4    | 8L - 9: L - 2 whole octets and 7 more bits               |
// Like every system record it starts with the preferred, geography, priority and acquisition
// index fields, so when the data holds at least 12 bits (L >= 3) those are shown and edited in
// place; the rest (roaming indicator, association) is not known and stays inside the data.
// A record made for a grid row or a text line has no data yet and is written with L = 3: the
// 12 common bits and 3 fill bits.
// Grid: "Data Length" (L) in column 10, shown only. Text: L, then the data as hex when L >= 2.
// JSON: length, data (hex text).
class CSysItemSpecial : public CSysItem {
public:
    CSysItemSpecial(uint8_t type, unsigned lengthOctets);

    uint8_t GetSysType() const override { return type_; }
    std::unique_ptr<CRLItem> Clone() const override;
    bool IsValid() const override;

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    uint32_t LongFramingBits() const override;

    unsigned GetLength() const { return length_; }
    // The opaque bits, left-aligned; the last octet's lowest bit is never used.
    std::vector<uint8_t> GetData() const;

protected:
    uint32_t ReadTypeFields(CRLFile& file) override;
    uint32_t WriteTypeFields(CRLFile& file) const override;
    uint32_t TypeFieldBits() const override { return 0; }
    bool TypeIsValid() const override { return true; }

    void WriteTypeToGrid(Grid& grid, int row) const override;
    void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) override;
    std::vector<std::string> TypeHeadings() const override;
    bool AcceptsAcqType(int acqType, unsigned& refusal) const override;

    std::string TypeToText() const override;
    void TypeFromText(std::span<const std::string_view> tokens) override;
    void TypeToJson(nlohmann::json& out) const override;
    void TypeFromJson(const nlohmann::json& in) override;

private:
    std::string DataHex() const;
    // Takes L and its data in hex; false when they do not belong together.
    bool TakeHex(unsigned length, const std::string& hex);
    void TakeCommonFromData();

    uint8_t type_;
    uint8_t length_;
    std::vector<uint8_t> data_;  // L - 1 octets when L >= 2
};

}  // namespace Tarn
