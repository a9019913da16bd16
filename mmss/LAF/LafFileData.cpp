#include "mmss/LAF/LafFileData.h"

#include "mmss/LAF/LafRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::LAF {

void LafFileData::Read(const std::vector<uint8_t>& bytes) {
    size_t begin = 0;
    size_t end = bytes.size();
    const bool bom = end >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF;
    if (bom) begin = 3;
    while (end > begin && bytes[end - 1] == 0x1A) --end;
    for (size_t i = begin; i < end; ++i) {
        const uint8_t b = bytes[i];
        if ((b < 0x20 && b != '\t' && b != '\r' && b != '\n') || b > 0x7E) {
            static const char kHex[] = "0123456789ABCDEF";
            throw Mmss::FormatError("This is not an LTE available file: byte " + std::to_string(i) +
                                    " (0x" + kHex[b >> 4] + kHex[b & 0xF] + ") is not text.");
        }
    }
    records.Clear();
    skippedBom = bom;
    skippedEofBytes = bytes.size() - end;
    std::string line;
    auto flush = [&] {
        if (line.find_first_not_of(" \t") != std::string::npos)
            records.Add(std::make_unique<LafRecord>(LafRecord::Parse(line)));
        line.clear();
    };
    for (size_t i = begin; i < end; ++i) {
        const uint8_t b = bytes[i];
        if (b == '\r' || b == '\n')
            flush();
        else
            line.push_back(static_cast<char>(b));
    }
    flush();
}

void LafFileData::Write(LafTextDest& dest) const {
    for (const auto& record : records)
        dest.Append(static_cast<const LafRecord&>(*record).Format() + dest.LineTerminator());
}

}  // namespace Tarn::LAF
