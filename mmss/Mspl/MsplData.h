// Mspl::Header and Mspl::Data: the MSPL file's header fields as the form holds them (decimal
// strings) and its priority tables, one record list per MSPL identifier; their readers, writers
// and save checks.
//
// MSPL_SIZE is read and ignored: a file whose size word disagrees with its length still loads,
// and a save always writes the true length.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssDocument.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Mspl {

// At byte 2: revision (8) and version (16).
struct Header : Mmss::FormHeader<Header> {
    std::string revision;  // CUR_MMSS_P_REV, shown as "RLType"
    std::string version;   // MSPL_VERS_ID

    static constexpr size_t kOffset = 2;
    static const std::array<Mmss::HeaderField<Header>, 2> kFields;
};

class Data {
public:
    // Identifier strings and record lists, one of each by tab (AddId keeps them in step).
    std::vector<std::string> ids;
    std::vector<CRLItemList> lists;

    // Appends an identifier with an empty record list.
    CRLItemList& AddId(const std::string& id);

    // Reads from byte 0: MSPL_SIZE, then from byte 5 the identifiers and their records.
    uint32_t Read(CRLFile& file);
    // Writes a 0 size word, the identifiers and records from byte 5, and the pad; reports
    // 24 + records + pad. Writes nothing (0 bits) when a list has no identifier string.
    uint32_t Write(CRLFile& file) const;

    // The message of the first bad identifier, or empty.
    static std::string CheckIds(const std::vector<std::string>& tabIds);
};

// Header writer + body writer + size word, as a save does.
void SaveFile(CRLFile& file, const Header& header, const Data& data);

}  // namespace Tarn::Mspl
