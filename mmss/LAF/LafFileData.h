// LAF::LafFileData: the records of an LTE available file in file order, read from and written as
// text lines.
//
// Lines end at CR or LF; empty lines and lines of blanks are skipped rather than read as zero
// records, so CR LF endings, LF-only endings and a trailing blank line all read the same. Any
// other line that does not give all four values becomes a record of zeros. Input holding a NUL,
// another control character or a byte above 0x7F is refused: it is not such a file.
#pragma once

#include <cstdint>
#include <vector>

#include "mmss/LAF/LafTextDest.h"
#include "roaming_list/RLItem.h"

namespace Tarn::LAF {

class LafFileData {
public:
    CRLItemList records;

    void Read(const std::vector<uint8_t>& bytes);
    // Each record's line followed by the sink's terminator.
    void Write(LafTextDest& dest) const;
};

}  // namespace Tarn::LAF
