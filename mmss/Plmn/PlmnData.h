// Plmn::Data: an EHPLMN, OPLMN or UPLMN list. The file is the bare run of records (3 or 5 bytes
// each) with no header, count, size or checksum; bytes after the last whole record are ignored.
#pragma once

#include <cstdint>
#include <string>

#include "mmss/Plmn/PlmnRecord.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Plmn {

class Data {
public:
    uint8_t listKind = kUnset;
    CRLItemList records;

    // "EHPLMN", "OPLMN", "UPLMN", or empty when the kind is not set.
    std::string KindName() const;
    // The grid's title: "EHPLMN Records", ...
    std::string GridTitle() const;
    // Appends a record of this list's kind.
    Record& AddRecord();

    // The record count is the file length (as a 16-bit value) divided by the record size.
    // Refuses a list whose kind is not set.
    uint32_t Read(CRLFile& file);
    // Every record from byte 0, no pad and no size word.
    uint32_t Write(CRLFile& file) const;
};

}  // namespace Tarn::Plmn
