#include "mmss/LAF/LafRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "mmss/MmssFrame.h"

namespace Tarn::LAF {
namespace {

constexpr DataError kError = DataError::InvalidSystem;

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// One "%u" conversion as the C library performs it: blanks, an optional sign, at least one
// digit; a minus wraps modulo 2^32 and a value too large for 32 bits reads as the largest one.
bool ScanUnsigned(const std::string& text, size_t& at, uint32_t& value) {
    while (at < text.size() && IsSpace(text[at])) ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) negative = text[at++] == '-';
    if (at >= text.size() || text[at] < '0' || text[at] > '9') return false;
    uint64_t v = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        v = std::min<uint64_t>(v * 10 + static_cast<unsigned>(text[at] - '0'), 0xFFFFFFFFull + 1);
    if (v > 0xFFFFFFFFull) v = 0xFFFFFFFFull;
    value = static_cast<uint32_t>(negative ? (0 - v) : v);
    return true;
}

bool ScanLiteral(const std::string& text, size_t& at, const char* literal) {
    for (; *literal; ++literal, ++at)
        if (at >= text.size() || text[at] != *literal) return false;
    return true;
}

constexpr unsigned kEntryMessages[] = {Msg::SidNotNumeric, Msg::NidNotNumeric, Msg::BidNotNumeric,
                                       Msg::CntNotNumeric};

}  // namespace

LafRecord LafRecord::Parse(const std::string& line) {
    static const char* const kLabels[] = {"SID=", ",NID=", ",BID=", ",CNT="};
    uint32_t values[4] = {};
    size_t at = 0;
    for (int i = 0; i < 4; ++i)
        if (!ScanLiteral(line, at, kLabels[i]) || !ScanUnsigned(line, at, values[i]))
            return LafRecord();
    LafRecord r;
    r.sid = static_cast<uint16_t>(values[0]);
    r.nid = static_cast<uint16_t>(values[1]);
    r.bid = static_cast<uint16_t>(values[2]);
    r.cnt = static_cast<uint8_t>(values[3]);
    return r;
}

std::string LafRecord::Format() const {
    return "SID=" + std::to_string(sid) + ",NID=" + std::to_string(nid) +
           ",BID=" + std::to_string(bid) + ",CNT=" + std::to_string(cnt);
}

bool LafRecord::CheckEntry(int column, const std::string& text, unsigned& message, unsigned& hint) {
    if (column < kSid || column > kCnt) return true;
    const long long high = column == kCnt ? 255 : 65535;
    if (Mmss::IsDigits(text) && text.size() <= 5 && Mmss::ParseDecimal(text) <= high) return true;
    message = kEntryMessages[column];
    hint = column == kCnt ? Msg::HintDecimal255 : Msg::HintDecimal65535;
    return false;
}

uint32_t LafRecord::Read(CRLFile& file) {
    std::string line;
    uint8_t byte = 0;
    uint32_t bytes = 0;
    file.SetBitOffset(0);
    while (file.Read(&byte, 1) == 1) {
        ++bytes;
        if (byte == '\r' || byte == '\n') break;
        line.push_back(static_cast<char>(byte));
    }
    *this = Parse(line);
    return bytes * 8;
}

uint32_t LafRecord::Write(CRLFile& file) const {
    const std::string line = Format() + "\r\n";
    file.SetBitOffset(0);
    file.Write(line.data(), line.size());
    return static_cast<uint32_t>(line.size() * 8);
}

void LafRecord::WriteToGrid(Grid& grid, int row) const {
    grid.SetCellText(kSid, row, std::to_string(sid));
    grid.SetCellText(kNid, row, std::to_string(nid));
    grid.SetCellText(kBid, row, std::to_string(bid));
    grid.SetCellText(kCnt, row, std::to_string(cnt));
}

void LafRecord::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    uint32_t values[4] = {};
    for (int column = kSid; column <= kCnt; ++column) {
        const std::string text = Mmss::RequiredCell(grid, column, row);
        unsigned message = 0, hint = 0;
        if (!CheckEntry(column, text, message, hint))
            throw GridError(message, column, row, grid.GetTableName());
        values[column] = static_cast<uint32_t>(Mmss::ParseDecimal(text));
    }
    sid = static_cast<uint16_t>(values[kSid]);
    nid = static_cast<uint16_t>(values[kNid]);
    bid = static_cast<uint16_t>(values[kBid]);
    cnt = static_cast<uint8_t>(values[kCnt]);
}

bool LafRecord::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) Mmss::SetHeadings(grid, {"SID", "NID", "BID", "CNT"});
    return true;
}

std::string LafRecord::ToText() const {
    return Format() + "\r\n";
}

void LafRecord::ToJson(nlohmann::json& out) const {
    out["sid"] = sid;
    out["nid"] = nid;
    out["bid"] = bid;
    out["cnt"] = cnt;
}

void LafRecord::FromJson(const nlohmann::json& in) {
    LafRecord r;
    r.sid = static_cast<uint16_t>(Mmss::JsonUInt(in, "sid", 65535, kError));
    r.nid = static_cast<uint16_t>(Mmss::JsonUInt(in, "nid", 65535, kError));
    r.bid = static_cast<uint16_t>(Mmss::JsonUInt(in, "bid", 65535, kError));
    r.cnt = static_cast<uint8_t>(Mmss::JsonUInt(in, "cnt", 255, kError));
    *this = r;
}

}  // namespace Tarn::LAF
