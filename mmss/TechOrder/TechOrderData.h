// TechOrder::Header and TechOrder::Data: the technology order table's version as the form holds
// it (a decimal string) and its entries, one RatId byte each in order of preference.
//
// Repeated RatIds are refused by the save check with message 231: a technology can hold only one
// place in an order of preference, and a repeat is almost always a slip in the grid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssDocument.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::TechOrder {

// At byte 0: the 16-bit version.
struct Header : Mmss::FormHeader<Header> {
    std::string version;

    static constexpr size_t kOffset = 0;
    static const std::array<Mmss::HeaderField<Header>, 1> kFields;
};

class Data {
public:
    CRLItemList records;

    // Appends a new entry ("CDMA-1x").
    void AddRecord();

    // The 16-bit count and the entries. Reports the count plus 8 bits an entry (9 * count), not
    // 16 + 8 * count: callers have always summed it that way, so it stays.
    uint32_t Read(CRLFile& file);
    // The count and the entries: 16 + 8 * count bits.
    uint32_t Write(CRLFile& file) const;
    // Message 231 when a RatId appears twice, else empty.
    std::string CheckRepeats() const;
};

void SaveFile(CRLFile& file, const Header& header, const Data& data);

}  // namespace Tarn::TechOrder
