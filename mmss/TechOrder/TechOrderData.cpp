#include "mmss/TechOrder/TechOrderData.h"

// Standard library
#include <bitset>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/MmssFrame.h"
#include "mmss/TechOrder/TechOrderRecord.h"

namespace Tarn::TechOrder {

uint32_t Header::Read(CRLFile& file) {
    file.Seek(0);
    file.SetBitOffset(0);
    version = Mmss::Decimal(Mmss::Take(file, 16, "technology order version"));
    return 16;
}

uint32_t Header::Write(CRLFile& file) const {
    file.Seek(0);
    file.SetBitOffset(0);
    file.WriteBits(16, static_cast<uint32_t>(Mmss::ParseDecimal(version)) & 0xFFFFu);
    return 16;
}

std::vector<std::string> Header::Check() const {
    std::vector<std::string> problems;
    Mmss::CheckHeaderValue(version, 65535, "Version Value is missing",
                           "Invalid Version Value.Range is 0 - 65535", problems);
    return problems;
}

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
