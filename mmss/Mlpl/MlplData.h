// Mlpl::Header and Mlpl::Data: the MLPL file's header as the form holds it (decimal strings) and
// its MLPL records, one a tab: MCC, MNC and MSPL index as typed, and the location tags.
//
// Bounds behind the per-tab messages: MCC 0 - 999 (218), MNC 0 - 999 or FFF (219), MSPL index
// 0 - 255 (221). A tab is checked MCC, MNC, MSPL index in that order, range before digit count
// (so "1000" is out of range and "31" is not three digits); the first failing tab stops the check.
// A record whose only tag has SysType 2 ("WiMAX") is written without location tags: that lone
// tag is how the editor says "no tags", and it does not come back when the file is read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mmss/MmssDocument.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Mlpl {

// At byte 2: revision (8), version (16), identifier (8).
struct Header : Mmss::FormHeader<Header> {
    std::string revision;  // CUR_MMSS_P_REV
    std::string version;   // MLPL_VERS_ID
    std::string id;        // MLPL_ID

    static constexpr size_t kOffset = 2;
    static const std::array<Mmss::HeaderField<Header>, 3> kFields;
};

// One MLPL record (one tab).
struct Location {
    std::string mcc;        // empty: no MCC
    std::string mnc;        // empty: no MNC; "FFF" is the wildcard
    std::string msplIndex;  // MSPL_INDEX
    CRLItemList tags;

    bool WritesTags() const;
    uint32_t Read(CRLFile& file);
    uint32_t Write(CRLFile& file) const;
    // The first problem of this tab (numbered from 1), or empty.
    std::string Check(int tab) const;
};

class Data {
public:
    std::vector<Location> records;

    // From byte 0: size, header fields and NUM_MLPL_RECS (56 bits), the records, the pad.
    uint32_t Read(CRLFile& file);
    // A 0 size word, NUM_MLPL_RECS at byte 6, the records and the pad: 24 + records + pad bits.
    uint32_t Write(CRLFile& file) const;
    // The first failing tab's message, or empty.
    std::string CheckTabs() const;
};

void SaveFile(CRLFile& file, const Header& header, const Data& data);

}  // namespace Tarn::Mlpl
