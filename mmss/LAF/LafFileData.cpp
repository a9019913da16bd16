#include "mmss/LAF/LafFileData.h"

#include "mmss/LAF/LafRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::LAF {

void LafFileData::Read(const std::vector<uint8_t>& bytes) {
    for (size_t i = 0; i < bytes.size(); ++i) {
        const uint8_t b = bytes[i];
        if ((b < 0x20 && b != '\t' && b != '\r' && b != '\n') || b > 0x7E)
            throw Mmss::FormatError("This is not an LTE available file: byte " + std::to_string(i) +
                                    " is not text.");
    }
    records.Clear();
    std::string line;
    auto flush = [&] {
        if (line.find_first_not_of(" \t") != std::string::npos)
            records.Add(std::make_unique<LafRecord>(LafRecord::Parse(line)));
        line.clear();
    };
    for (uint8_t b : bytes) {
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
