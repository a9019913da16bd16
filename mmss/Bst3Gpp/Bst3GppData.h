// Bst3Gpp::Header and Bst3Gpp::Data: the 3GPP BST file's version as the form holds it and its
// entries, one a tab, each with its type, extension flag and MCC as typed and its records.
//
// The 16-bit entry length is skipped on reading and written as the number of bytes that follow
// it up to the end of the entry (extension flag, MCC count, MCC, record count and records). An
// MCC is written with an MCC count of 1 and a zero filler nibble before its three digits.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssDocument.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Bst3Gpp {

// At byte 0: the 16-bit version.
struct Header : Mmss::FormHeader<Header> {
    std::string version;

    static constexpr size_t kOffset = 0;
    static const std::array<Mmss::HeaderField<Header>, 1> kFields;
};

// One entry (one tab).
struct Entry {
    std::string type = "1";       // BST type: only 1 is supported
    std::string extension = "0";  // extension included: only 0 is supported
    std::string mcc;              // empty: no MCC
    CRLItemList records;

    // Refuses a type other than 1 or an extension flag other than 0 with the editor's texts.
    uint32_t Read(CRLFile& file);
    uint32_t Write(CRLFile& file) const;
    // Bytes after the length field, as Write stores them.
    uint32_t LengthAfterLengthField() const;
    // The first problem of this tab (numbered from 1), or empty.
    std::string Check(int tab) const;
};

class Data {
public:
    std::vector<Entry> entries;

    // From byte 2: the 16-bit entry count and the entries.
    uint32_t Read(CRLFile& file);
    uint32_t Write(CRLFile& file) const;
    std::string CheckTabs() const;
};

void SaveFile(CRLFile& file, const Header& header, const Data& data);

}  // namespace Tarn::Bst3Gpp
