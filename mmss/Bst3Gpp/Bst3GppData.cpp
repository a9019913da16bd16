#include "mmss/Bst3Gpp/Bst3GppData.h"

// Standard library
#include <algorithm>

// Tarn
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Bst3Gpp {

const std::array<Mmss::HeaderField<Header>, 1> Header::kFields = {{
    {"version", &Header::version, 16, "BST version", "version", "Version :", "version",
     "Bst3Gpp Version Value is missing", "Invalid Bst3Gpp Version Value.Range is 0 - 65535"},
}};

uint32_t Entry::Read(CRLFile& file) {
    records.Clear();
    mcc.clear();
    const uint32_t bstType = Mmss::Take(file, 8, "BST type");
    if (bstType != 1) throw Mmss::FormatError("Invalid Bst Type. Only Type1 is supported");
    type = std::to_string(bstType);
    Mmss::Take(file, 16, "BST entry length");
    const uint32_t ext = Mmss::Take(file, 8, "BST extension flag");
    if (ext != 0) throw Mmss::FormatError("Invalid Extension Inclusion. Only 0 is supported");
    extension = std::to_string(ext);
    uint32_t bits = 40;
    if (Mmss::Take(file, 8, "MCC count") != 0) {
        Mmss::Take(file, 4, "MCC filler");
        for (int i = 0; i < 3; ++i) mcc += std::to_string(Mmss::Take(file, 4, "MCC digit"));
        bits += 16;
    }
    return bits + Mmss::ReadRecordList(file, records, [] { return std::make_unique<Record>(); });
}

uint32_t Entry::LengthAfterLengthField() const {
    uint32_t bits = 8 + 8 + (mcc.empty() ? 0 : 16) + 8;
    for (const auto& record : records) bits += static_cast<const Record&>(*record).WrittenBits();
    return bits / 8;
}

uint32_t Entry::Write(CRLFile& file) const {
    if (LengthAfterLengthField() > Mmss::kMaxSizeWordBytes)
        throw Mmss::FormatError("A BST entry would be " +
                                Mmss::GroupedNumber(LengthAfterLengthField()) +
                                " bytes long; its 16-bit length field holds at most " +
                                Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".");
    file.WriteBits(8, static_cast<uint32_t>(Mmss::ParseDecimal(type)) & 0xFFu);
    file.WriteBits(16, LengthAfterLengthField());
    file.WriteBits(8, static_cast<uint32_t>(Mmss::ParseDecimal(extension)) & 0xFFu);
    uint32_t bits = 40;
    if (mcc.empty()) {
        file.WriteBits(8, 0);
    } else {
        const long long value = std::clamp(Mmss::ParseDecimal(mcc), 0LL, 999LL);
        file.WriteBits(8, 1);
        file.WriteBits(4, 0);
        file.WriteBits(4, static_cast<uint32_t>(value / 100));
        file.WriteBits(4, static_cast<uint32_t>(value / 10 % 10));
        file.WriteBits(4, static_cast<uint32_t>(value % 10));
        bits += 16;
    }
    return bits + Mmss::WriteRecordList(file, records);
}

std::string Entry::Check(int tab) const {
    if (Mmss::ParseDecimal(type) != 1) return "Invalid Bst Type. Only Type1 is supported";
    if (Mmss::ParseDecimal(extension) != 0) return "Invalid Bst ExtensionIncl. Only 0 is supported";
    if (!mcc.empty() && Mmss::ParseDecimal(mcc) > 999)
        return "Invalid Mcc value in Tab " + std::to_string(tab) + "The range is 0 - 999";
    for (const auto& record : records)
        if (static_cast<const Record&>(*record).bandChannelType != 1)
            return "Invalid Band Channel Type. Should be Type1 only";
    for (const auto& record : records)
        if (std::string problem = static_cast<const Record&>(*record).SizeProblem();
            !problem.empty())
            return "Tab " + std::to_string(tab) + ": " + problem;
    if (records.GetSize() > Mmss::kMaxListRecords)
        return "Tab " + std::to_string(tab) + " holds " + std::to_string(records.GetSize()) +
               " records; at most 255 fit in the file.";
    if (LengthAfterLengthField() > Mmss::kMaxSizeWordBytes)
        return "The entry in Tab " + std::to_string(tab) + " would be " +
               Mmss::GroupedNumber(LengthAfterLengthField()) +
               " bytes long; its 16-bit length field holds at most " +
               Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ": remove channels or records.";
    return {};
}

uint32_t Data::Read(CRLFile& file) {
    entries.clear();
    file.Seek(2);
    file.SetBitOffset(0);
    const uint32_t count = Mmss::Take(file, 16, "number of BST entries");
    uint32_t bits = 16;
    for (uint32_t i = 0; i < count; ++i) {
        entries.emplace_back();
        bits += entries.back().Read(file);
    }
    return bits;
}

uint32_t Data::Write(CRLFile& file) const {
    if (entries.size() > 65535)
        throw Mmss::FormatError("The file holds " + std::to_string(entries.size()) +
                                " entries; at most 65535 fit in it.");
    file.Seek(2);
    file.SetBitOffset(0);
    file.WriteBits(16, static_cast<uint32_t>(entries.size()));
    uint32_t bits = 16;
    for (const auto& entry : entries) bits += entry.Write(file);
    return bits;
}

std::string Data::CheckTabs() const {
    for (size_t i = 0; i < entries.size(); ++i) {
        std::string problem = entries[i].Check(static_cast<int>(i + 1));
        if (!problem.empty()) return problem;
    }
    return {};
}

void SaveFile(CRLFile& file, const Header& header, const Data& data) {
    file.SetBitOffset(0);
    header.Write(file);
    data.Write(file);
}

}  // namespace Tarn::Bst3Gpp
