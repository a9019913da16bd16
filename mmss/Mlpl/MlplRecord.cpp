#include "mmss/Mlpl/MlplRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "mmss/MmssNames.h"

namespace Tarn::Mlpl {
namespace {

constexpr DataError kError = DataError::InvalidSystem;

enum class Body { None, SidNid, Plmn, Subnet };

Body BodyOf(uint8_t sysType) {
    switch (sysType) {
        case 0:
        case 3:
            return Body::SidNid;
        case 1:
        case 5:
        case 6:
        case 7:
            return Body::Plmn;
        case 4:
            return Body::Subnet;
        default:
            return Body::None;
    }
}

const CNameList& SysTypes() {
    return Mmss::NameTables::Instance().SysType();
}

// RFC 5952: lower-case groups without leading zeros, the longest run of two or more zero groups
// (the first of equal runs) written as "::".
std::string FormatIpv6(const std::array<uint16_t, 8>& words) {
    int bestStart = -1, bestLength = 0;
    for (int i = 0; i < 8;) {
        if (words[i] != 0) {
            ++i;
            continue;
        }
        int j = i;
        while (j < 8 && words[j] == 0) ++j;
        if (j - i > bestLength && j - i >= 2) {
            bestStart = i;
            bestLength = j - i;
        }
        i = j;
    }
    static const char kHex[] = "0123456789abcdef";
    auto group = [](uint16_t w) {
        std::string s;
        bool started = false;
        for (int shift = 12; shift >= 0; shift -= 4) {
            const unsigned nibble = (w >> shift) & 0xFu;
            if (nibble || started || shift == 0) {
                s += kHex[nibble];
                started = true;
            }
        }
        return s;
    };
    std::string text;
    for (int i = 0; i < 8; ++i) {
        if (i == bestStart) {
            text += "::";
            i += bestLength - 1;
            continue;
        }
        if (!text.empty() && text.back() != ':') text += ':';
        text += group(words[i]);
    }
    return text;
}

bool ParseGroups(const std::string& text, std::vector<uint16_t>& groups) {
    if (text.empty()) return true;
    size_t start = 0;
    while (true) {
        const size_t end = text.find(':', start);
        const std::string piece = text.substr(start, end == std::string::npos ? end : end - start);
        if (piece.empty() || piece.size() > 4) return false;
        unsigned value = 0;
        for (char c : piece) {
            int nibble;
            if (c >= '0' && c <= '9')
                nibble = c - '0';
            else if (c >= 'a' && c <= 'f')
                nibble = c - 'a' + 10;
            else if (c >= 'A' && c <= 'F')
                nibble = c - 'A' + 10;
            else
                return false;
            value = value * 16 + static_cast<unsigned>(nibble);
        }
        groups.push_back(static_cast<uint16_t>(value));
        if (groups.size() > 8) return false;
        if (end == std::string::npos) return true;
        start = end + 1;
    }
}

bool ParseIpv6(const std::string& text, std::array<uint16_t, 8>& words) {
    std::vector<uint16_t> head, tail;
    const size_t gap = text.find("::");
    if (gap == std::string::npos) {
        if (!ParseGroups(text, head) || head.size() != 8) return false;
    } else {
        if (text.find("::", gap + 1) != std::string::npos) return false;
        if (!ParseGroups(text.substr(0, gap), head) || !ParseGroups(text.substr(gap + 2), tail))
            return false;
        if (head.size() + tail.size() > 7) return false;
    }
    words = {};
    for (size_t i = 0; i < head.size(); ++i) words[i] = head[i];
    for (size_t i = 0; i < tail.size(); ++i) words[8 - tail.size() + i] = tail[i];
    return true;
}

void MaskSubnet(std::array<uint16_t, 8>& words, unsigned length) {
    for (unsigned i = 0; i < 8; ++i) {
        const unsigned first = i * 16;
        if (length >= first + 16) continue;
        const unsigned keep = length > first ? length - first : 0;
        words[i] = keep == 0 ? 0 : static_cast<uint16_t>(words[i] & (0xFFFFu << (16 - keep)));
    }
}

uint32_t TextNumber(const std::string& text, uint32_t high, const char* field) {
    if (!Mmss::IsDigits(text) || Mmss::ParseDecimal(text) > high)
        throw CDataException(kError, std::string("(") + field + " \"" + text +
                                         "\" is not a number from 0 to " + std::to_string(high) +
                                         ")");
    return static_cast<uint32_t>(Mmss::ParseDecimal(text));
}

}  // namespace

const std::vector<std::string>& Record::GridHeadings() {
    static const std::vector<std::string> kTitles = {
        "Sys Type",
        "Sid Start",
        "Nid Start",
        "Nid Range",
        "SubnetId[Input format : IPv6 address/no of mask bits]",
        "PLMN Range",
        "Mcc",
        "Mnc"};
    return kTitles;
}

uint8_t Record::ComputeTagSize() const {
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            return 40;
        case Body::Plmn:
            return 32;
        case Body::Subnet:
            return static_cast<uint8_t>((subnetLength + 8 + 7) / 8 * 8);
        case Body::None:
            break;
    }
    return 0;
}

uint32_t Record::Read(CRLFile& file) {
    sysType = static_cast<uint8_t>(Mmss::Take(file, 8, "MLPL tag SYS_TYPE"));
    tagSize = static_cast<uint8_t>(Mmss::Take(file, 8, "MLPL tag TAG_SIZE"));
    uint32_t bits = 16;
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            Mmss::Take(file, 1, "MLPL tag reserved bit");
            sidStart = static_cast<uint16_t>(Mmss::Take(file, 15, "MLPL tag SID"));
            nidStart = static_cast<uint16_t>(Mmss::Take(file, 16, "MLPL tag NID"));
            nidRange = static_cast<uint8_t>(Mmss::Take(file, 8, "MLPL tag NID range"));
            bits += 40;
            break;
        case Body::Plmn:
            Mmss::ReadPlmnDigits(file, mcc, mnc);
            plmnRange = static_cast<uint8_t>(Mmss::Take(file, 8, "MLPL tag PLMN range"));
            bits += 32;
            break;
        case Body::Subnet: {
            subnetLength = static_cast<uint8_t>(Mmss::Take(file, 8, "MLPL tag subnet length"));
            if (subnetLength > 128)
                throw CDataException(
                    DataError::InvalidSubnetId,
                    "(subnet length " + std::to_string(subnetLength) + " is above 128)");
            subnet = {};
            for (unsigned at = 0; at < subnetLength; at += 16) {
                const int width = static_cast<int>(std::min(16u, subnetLength - at));
                const uint32_t value = Mmss::Take(file, width, "MLPL tag subnet");
                subnet[at / 16] = static_cast<uint16_t>(value << (16 - width));
            }
            const int pad = (8 - subnetLength % 8) % 8;
            Mmss::Take(file, pad, "MLPL tag subnet pad");
            bits += 8 + subnetLength + static_cast<uint32_t>(pad);
            break;
        }
        case Body::None:
            break;
    }
    const int pad = static_cast<int>((8 - bits % 8) % 8);
    Mmss::Take(file, pad, "MLPL tag pad");
    return bits + static_cast<uint32_t>(pad);
}

uint32_t Record::Write(CRLFile& file) const {
    file.WriteBits(8, sysType);
    file.WriteBits(8, ComputeTagSize());
    uint32_t bits = 16;
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            file.WriteBits(1, 0);
            file.WriteBits(15, sidStart & 0x7FFFu);
            file.WriteBits(16, nidStart);
            file.WriteBits(8, nidRange);
            bits += 40;
            break;
        case Body::Plmn:
            Mmss::WritePlmnDigits(file, mcc, mnc);
            file.WriteBits(8, plmnRange);
            bits += 32;
            break;
        case Body::Subnet: {
            const unsigned length = std::min<unsigned>(subnetLength, 128);
            file.WriteBits(8, length);
            for (unsigned at = 0; at < length; at += 16) {
                const int width = static_cast<int>(std::min(16u, length - at));
                file.WriteBits(width, static_cast<uint32_t>(subnet[at / 16]) >> (16 - width));
            }
            const int pad = static_cast<int>((8 - length % 8) % 8);
            file.WriteBits(pad, 0);
            bits += 8 + length + static_cast<uint32_t>(pad);
            break;
        }
        case Body::None:
            break;
    }
    const int pad = static_cast<int>((8 - bits % 8) % 8);
    file.WriteBits(pad, 0);
    return bits + static_cast<uint32_t>(pad);
}

std::string Record::SubnetText() const {
    return FormatIpv6(subnet) + "/" + std::to_string(subnetLength);
}

bool Record::SetSubnetText(const std::string& text, bool& lengthBad) {
    const size_t slash = text.find('/');
    std::array<uint16_t, 8> words{};
    lengthBad = false;
    if (!ParseIpv6(text.substr(0, slash), words)) return false;
    lengthBad = true;
    if (slash == std::string::npos) return false;
    const std::string length = text.substr(slash + 1);
    if (!Mmss::IsDigits(length) || length.size() > 3 || Mmss::ParseDecimal(length) > 128)
        return false;
    subnetLength = static_cast<uint8_t>(Mmss::ParseDecimal(length));
    MaskSubnet(words, subnetLength);
    subnet = words;
    lengthBad = false;
    return true;
}

void Record::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 0);
    Mmss::SetNameCell(grid, kSysType, row, SysTypes(), sysType);
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            grid.SetCellText(kSidStart, row, std::to_string(sidStart));
            grid.SetCellText(kNidStart, row, std::to_string(nidStart));
            grid.SetCellText(kNidRange, row, std::to_string(nidRange));
            break;
        case Body::Plmn:
            grid.SetCellText(kPlmnRange, row, std::to_string(plmnRange));
            grid.SetCellText(kMcc, row, Mmss::ShowMcc(mcc));
            grid.SetCellText(kMnc, row, Mmss::ShowMnc(mnc));
            break;
        case Body::Subnet:
            grid.SetCellText(kSubnet, row, SubnetText());
            break;
        case Body::None:
            break;
    }
}

void Record::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    Record r = *this;
    r.sysType = static_cast<uint8_t>(Mmss::NameCell(grid, kSysType, row, SysTypes(), sysType));
    const std::string table = grid.GetTableName();
    switch (BodyOf(r.sysType)) {
        case Body::SidNid:
            r.sidStart = static_cast<uint16_t>(Mmss::NumberCell(grid, kSidStart, row, 0, 32767));
            r.nidStart = static_cast<uint16_t>(Mmss::NumberCell(grid, kNidStart, row, 0, 65535));
            r.nidRange = static_cast<uint8_t>(Mmss::NumberCell(grid, kNidRange, row, 0, 255));
            break;
        case Body::Plmn:
            r.plmnRange = static_cast<uint8_t>(Mmss::NumberCell(grid, kPlmnRange, row, 0, 255));
            if (!Mmss::ParseMcc(Mmss::RequiredCell(grid, kMcc, row), r.mcc))
                throw GridError(Msg::InvalidMcc, kMcc, row, table);
            if (!Mmss::ParseMnc(Mmss::RequiredCell(grid, kMnc, row), r.mnc))
                throw GridError(Msg::InvalidMnc, kMnc, row, table);
            break;
        case Body::Subnet: {
            bool lengthBad = false;
            if (!r.SetSubnetText(Mmss::RequiredCell(grid, kSubnet, row), lengthBad))
                throw GridError(lengthBad ? Msg::InvalidSubnetLength : Msg::InvalidSubnetAddress,
                                kSubnet, row, table);
            break;
        }
        case Body::None:
            break;
    }
    *this = r;
}

bool Record::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) Mmss::SetHeadings(grid, GridHeadings());
    return true;
}

std::string Record::ToText() const {
    std::string line = SysTypes().GetName(sysType);
    // Field by field onto the line: GCC 12 at -O3 misreads `"\t" + std::string&&` as an
    // overlapping copy (-Wrestrict).
    auto field = [&line](const std::string& text) {
        line += '\t';
        line += text;
    };
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            field(std::to_string(sidStart));
            field(std::to_string(nidStart));
            field(std::to_string(nidRange));
            break;
        case Body::Plmn:
            field(Mmss::ShowMcc(mcc));
            field(Mmss::ShowMnc(mnc));
            field(std::to_string(plmnRange));
            break;
        case Body::Subnet:
            field(SubnetText());
            break;
        case Body::None:
            break;
    }
    return line + "\r\n";
}

void Record::FromText(const std::vector<std::string>& tokens) {
    if (tokens.empty()) throw CDataException(kError, "(an MLPL tag line needs a Sys Type)");
    Record r;
    int type = 0;
    if (!SysTypes().FindValue(tokens[0], type))
        throw CDataException(kError, "(Sys Type \"" + tokens[0] + "\" is unknown)");
    r.sysType = static_cast<uint8_t>(type);
    const Body body = BodyOf(r.sysType);
    const size_t needed = body == Body::None ? 1 : body == Body::Subnet ? 2 : 4;
    if (tokens.size() < needed)
        throw CDataException(
            kError, "(the " + tokens[0] + " tag needs " + std::to_string(needed - 1) + " values)");
    switch (body) {
        case Body::SidNid:
            r.sidStart = static_cast<uint16_t>(TextNumber(tokens[1], 32767, "Sid Start"));
            r.nidStart = static_cast<uint16_t>(TextNumber(tokens[2], 65535, "Nid Start"));
            r.nidRange = static_cast<uint8_t>(TextNumber(tokens[3], 255, "Nid Range"));
            break;
        case Body::Plmn:
            if (!Mmss::ParseMcc(tokens[1], r.mcc))
                throw CDataException(kError, "(MCC \"" + tokens[1] + "\" is not three digits)");
            if (!Mmss::ParseMnc(tokens[2], r.mnc))
                throw CDataException(kError,
                                     "(MNC \"" + tokens[2] + "\" is not two or three digits)");
            r.plmnRange = static_cast<uint8_t>(TextNumber(tokens[3], 255, "PLMN Range"));
            break;
        case Body::Subnet: {
            bool lengthBad = false;
            if (!r.SetSubnetText(tokens[1], lengthBad))
                throw CDataException(kError, "(subnet \"" + tokens[1] + "\" is not IPv6/length)");
            break;
        }
        case Body::None:
            break;
    }
    *this = r;
}

void Record::ToJson(nlohmann::json& out) const {
    out["sysType"] = sysType;
    out["sysTypeName"] = SysTypes().GetName(sysType);
    switch (BodyOf(sysType)) {
        case Body::SidNid:
            out["sidStart"] = sidStart;
            out["nidStart"] = nidStart;
            out["nidRange"] = nidRange;
            break;
        case Body::Plmn:
            out["mcc"] = Mmss::NibbleText(mcc, false);
            out["mnc"] = Mmss::NibbleText(mnc, true);
            out["plmnRange"] = plmnRange;
            break;
        case Body::Subnet:
            out["subnet"] = SubnetText();
            break;
        case Body::None:
            break;
    }
}

void Record::FromJson(const nlohmann::json& in) {
    Record r;
    r.sysType = static_cast<uint8_t>(Mmss::JsonUInt(in, "sysType", 255, kError));
    switch (BodyOf(r.sysType)) {
        case Body::SidNid:
            r.sidStart = static_cast<uint16_t>(Mmss::JsonUInt(in, "sidStart", 32767, kError));
            r.nidStart = static_cast<uint16_t>(Mmss::JsonUInt(in, "nidStart", 65535, kError));
            r.nidRange = static_cast<uint8_t>(Mmss::JsonUInt(in, "nidRange", 255, kError));
            break;
        case Body::Plmn: {
            const std::string mccText = Mmss::JsonText(in, "mcc", kError);
            const std::string mncText = Mmss::JsonText(in, "mnc", kError);
            if (!Mmss::ParseNibbleText(mccText, false, r.mcc))
                throw CDataException(kError, "(mcc \"" + mccText + "\" is not three digits)");
            if (!Mmss::ParseNibbleText(mncText, true, r.mnc))
                throw CDataException(kError,
                                     "(mnc \"" + mncText + "\" is not two or three digits)");
            r.plmnRange = static_cast<uint8_t>(Mmss::JsonUInt(in, "plmnRange", 255, kError));
            break;
        }
        case Body::Subnet: {
            const std::string text = Mmss::JsonText(in, "subnet", kError);
            bool lengthBad = false;
            if (!r.SetSubnetText(text, lengthBad))
                throw CDataException(kError, "(subnet \"" + text + "\" is not IPv6/length)");
            break;
        }
        case Body::None:
            break;
    }
    *this = r;
}

}  // namespace Tarn::Mlpl
