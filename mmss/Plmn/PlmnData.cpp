#include "mmss/Plmn/PlmnData.h"

#include "mmss/MmssFrame.h"
#include "mmss/MmssNames.h"

namespace Tarn::Plmn {

std::string Data::KindName() const {
    const auto& names = Mmss::NameTables::Instance().PlmnListKind();
    return names.HasValue(listKind) ? names.GetName(listKind) : std::string();
}

std::string Data::GridTitle() const {
    return KindName() + " Records";
}

Record& Data::AddRecord() {
    auto record = std::make_unique<Record>(listKind);
    Record& added = *record;
    records.Add(std::move(record));
    return added;
}

uint32_t Data::Read(CRLFile& file) {
    if (KindName().empty())
        throw Mmss::FormatError(
            "The PLMN list kind is not set: the file name must hold .ehplmn, .oplmn or .uplmn.");
    if (file.GetLength() > Mmss::kMaxSizeWordBytes)
        throw Mmss::FormatError("The file is " + Mmss::GroupedNumber(file.GetLength()) +
                                " bytes; a PLMN list file holds at most " +
                                Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".");
    records.Clear();
    const uint32_t length = static_cast<uint16_t>(file.GetLength());
    const uint32_t count = length / RecordBytes(listKind);
    ignoredBytes = length - count * RecordBytes(listKind);
    file.Seek(0);
    file.SetBitOffset(0);
    uint32_t bits = 0;
    for (uint32_t i = 0; i < count; ++i) bits += AddRecord().Read(file);
    return bits;
}

uint64_t Data::FileBytes() const {
    return static_cast<uint64_t>(records.GetSize()) * RecordBytes(listKind);
}

uint32_t Data::Write(CRLFile& file) const {
    if (FileBytes() > Mmss::kMaxSizeWordBytes)
        throw Mmss::FormatError("The " + KindName() + " list would be " +
                                Mmss::GroupedNumber(FileBytes()) +
                                " bytes; a PLMN list file holds at most " +
                                Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".");
    file.Seek(0);
    file.SetBitOffset(0);
    uint32_t bits = 0;
    for (const auto& record : records) {
        // A record keeps the kind it was made with; the list decides how it is written.
        Record copy = static_cast<const Record&>(*record);
        copy.listKind = listKind;
        bits += copy.Write(file);
    }
    return bits;
}

}  // namespace Tarn::Plmn
