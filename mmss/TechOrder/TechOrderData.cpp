#include "mmss/TechOrder/TechOrderData.h"

// Standard library
#include <bitset>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/MmssFrame.h"
#include "mmss/TechOrder/TechOrderRecord.h"

namespace Tarn::TechOrder {

const std::array<Mmss::HeaderField<Header>, 1> Header::kFields = {{
    {"version", &Header::version, 16, "technology order version", "version", "Version :",
     "version", "Version Value is missing", "Invalid Version Value.Range is 0 - 65535"},
}};

void Data::AddRecord() {
    records.Add(std::make_unique<Record>());
}

uint32_t Data::Read(CRLFile& file) {
    records.Clear();
    const uint32_t count = Mmss::Take(file, 16, "technology order count");
    for (uint32_t i = 0; i < count; ++i) {
        auto record = std::make_unique<Record>();
        record->Read(file);
        records.Add(std::move(record));
    }
    return count + 8 * count;
}

uint32_t Data::Write(CRLFile& file) const {
    if (records.GetSize() > 65535)
        throw Mmss::FormatError("The table holds " + std::to_string(records.GetSize()) +
                                " entries; at most 65535 fit in the file.");
    file.WriteBits(16, static_cast<uint32_t>(records.GetSize()));
    return 16 + records.Write(file);
}

std::string Data::CheckRepeats() const {
    std::bitset<256> seen;
    for (const auto& record : records) {
        const uint8_t id = static_cast<const Record&>(*record).ratId;
        if (seen.test(id)) return FormatMessage(Msg::RedundantRatIds);
        seen.set(id);
    }
    return {};
}

void SaveFile(CRLFile& file, const Header& header, const Data& data) {
    file.SetBitOffset(0);
    header.Write(file);
    data.Write(file);
}

}  // namespace Tarn::TechOrder
