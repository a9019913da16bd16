// LAF::LafRecord: one CDMA cell at which LTE is available, the line
// "SID=%u,NID=%u,BID=%u,CNT=%u" of an LTE available file.
//
// A line that does not give all four values becomes a record of zeros, and values are narrowed
// to their fields (a CNT of 300 is kept as 44): files in the field rely on both. Grid entries are
// checked strictly instead: a refused cell raises its own message (236 SID, 237 NID, 238 BID,
// 239 CNT); the editor shows that message first and the hint (235, or 240 for CNT) below it.
//
// JSON errors and bad text fields raise CDataException(InvalidSystem).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "roaming_list/RLItem.h"

namespace Tarn::LAF {

class LafRecord : public CRLItem {
public:
    static constexpr const char* kTableName = "LTE Available Table";
    enum Column { kSid, kNid, kBid, kCnt };

    // The record of one line (without its terminator).
    static LafRecord Parse(const std::string& line);
    // "SID=4096,NID=0,BID=23,CNT=1", no terminator.
    std::string Format() const;

    // A typed grid entry: false with the message and the hint when the text is refused.
    static bool CheckEntry(int column, const std::string& text, unsigned& message, unsigned& hint);

    // One line of the file: up to the next CR or LF, which is consumed too.
    uint32_t Read(CRLFile& file) override;
    // The line and "\r\n".
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<LafRecord>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    // The line and "\r\n", as the text view shows it.
    std::string ToText() const override;
    // One token: a file line; four tokens: SID, NID, BID, CNT in their ranges.
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    bool operator==(const LafRecord& other) const {
        return sid == other.sid && nid == other.nid && bid == other.bid && cnt == other.cnt;
    }

    uint16_t sid = 0;
    uint16_t nid = 0;
    uint16_t bid = 0;
    uint8_t cnt = 0;
};

}  // namespace Tarn::LAF
