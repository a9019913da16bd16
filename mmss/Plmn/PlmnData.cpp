#include "mmss/Plmn/PlmnData.h"

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
    records.Clear();
    const uint32_t count = static_cast<uint16_t>(file.GetLength()) / RecordBytes(listKind);
    file.Seek(0);
    file.SetBitOffset(0);
    uint32_t bits = 0;
    for (uint32_t i = 0; i < count; ++i) bits += AddRecord().Read(file);
    return bits;
}

uint32_t Data::Write(CRLFile& file) const {
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
