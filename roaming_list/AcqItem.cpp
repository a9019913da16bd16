#include "roaming_list/AcqItem.h"

#include <string>

#include "roaming_list/AcqItemHelpers.h"
#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"

namespace Tarn {
namespace {

bool LongFraming(const CRLFile& file) {
    return file.GetVersion() >= 3;
}

uint32_t FillToOctet(uint32_t bits) {
    return (8 - bits % 8) % 8;
}

[[noreturn]] void NoShortForm(uint8_t type) {
    throw CDataException(DataError::InvalidAcqType,
                         "(type " + std::to_string(type) + " exists only in IS-683C and later)");
}

}  // namespace

uint32_t CAcqItem::Read(CRLFile& file) {
    if (!LongFraming(file)) {
        if (!HasShortForm()) NoShortForm(GetAcqType());
        return ReadFields(file, -1);
    }
    const int length = static_cast<int>(file.ReadBits(8));
    const uint32_t fields = ReadFields(file, length);
    const uint32_t fill = FillToOctet(fields);
    file.ReadBits(static_cast<int>(fill));
    return 8 + fields + fill;
}

uint32_t CAcqItem::Write(CRLFile& file) const {
    using AcqDetail::Put;
    if (!LongFraming(file)) {
        if (!HasShortForm()) NoShortForm(GetAcqType());
        Put(file, 4, GetAcqType(), "acquisition type");
        return 4 + WriteFields(file);
    }
    // The length comes first, so the fields are laid out aside before anything reaches the file;
    // a field that does not fit then fails the write before the record is half written.
    CRLFile scratch;
    const uint32_t fields = WriteFields(scratch);
    const uint32_t fill = FillToOctet(fields);
    Put(file, 8, GetAcqType(), "acquisition type");
    Put(file, 8, (fields + fill) / 8, "record length in octets");
    scratch.SeekToBegin();
    scratch.SetBitOffset(0);
    for (uint32_t left = fields; left > 0;) {
        const int chunk = static_cast<int>(left < 16 ? left : 16);
        file.WriteBits(chunk, scratch.ReadBits(chunk));
        left -= static_cast<uint32_t>(chunk);
    }
    file.WriteBits(static_cast<int>(fill), 0);
    return 16 + fields + fill;
}

}  // namespace Tarn
