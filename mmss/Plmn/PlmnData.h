// Plmn::Data: an EHPLMN, OPLMN or UPLMN list. The file is the bare run of records (3 or 5 bytes
// each) with no header, count, size or checksum; bytes after the last whole record are ignored
// and counted so the user can be told.
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
    // Bytes after the last whole record in the file last read.
    uint32_t ignoredBytes = 0;

    // "EHPLMN", "OPLMN", "UPLMN", or empty when the kind is not set.
    std::string KindName() const;
    // The grid's title: "EHPLMN Records", ...
    std::string GridTitle() const;
    // Appends a record of this list's kind.
    Record& AddRecord();

    // The record count is the file length (as a 16-bit value) divided by the record size.
    // Refuses a list whose kind is not set, and a file longer than 65,535 bytes, whose length
    // would wrap and silently drop records.
    uint32_t Read(CRLFile& file);
    // Every record from byte 0, no pad and no size word. Refuses a list longer than 65,535 bytes:
    // it would not read back whole.
    uint32_t Write(CRLFile& file) const;
    // The bytes Write gives.
    uint64_t FileBytes() const;
};

}  // namespace Tarn::Plmn
