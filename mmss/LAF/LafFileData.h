// LAF::LafFileData: the records of an LTE available file in file order, read from and written as
// text lines.
//
// Lines end at CR or LF; empty lines and lines of blanks are skipped rather than read as zero
// records, so CR LF endings, LF-only endings and a trailing blank line all read the same. Any
// other line that does not give all four values becomes a record of zeros. A UTF-8 byte order mark
// at the start and end-of-file bytes (0x1A) at the end, which some editors and transfer tools add,
// are skipped and counted so the user can be told; any other NUL, control character or byte above
// 0x7E is refused with its offset: it is not such a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mmss/LAF/LafTextDest.h"
#include "roaming_list/RLItem.h"

namespace Tarn::LAF {

class LafFileData {
public:
    CRLItemList records;
    // What the last Read skipped around the text.
    bool skippedBom = false;
    size_t skippedEofBytes = 0;

    void Read(const std::vector<uint8_t>& bytes);
    // Each record's line followed by the sink's terminator.
    void Write(LafTextDest& dest) const;
};

}  // namespace Tarn::LAF
