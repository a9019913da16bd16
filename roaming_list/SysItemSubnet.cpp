#include "roaming_list/SysItemSubnet.h"

#include <cstdio>
#include <vector>

#include "roaming_list/RLFile.h"

namespace Tarn {

namespace {

int Hex(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

bool ParseGroup(const std::string& group, uint16_t& word) {
    if (group.empty() || group.size() > 4) return false;
    unsigned value = 0;
    for (char c : group) {
        const int d = Hex(c);
        if (d < 0) return false;
        value = value * 16 + static_cast<unsigned>(d);
    }
    word = static_cast<uint16_t>(value);
    return true;
}

bool ParseIpv4(const std::string& text, uint16_t& high, uint16_t& low) {
    const auto parts = Split(text, '.');
    if (parts.size() != 4) return false;
    unsigned octets[4];
    for (size_t i = 0; i < 4; ++i) {
        const std::string& p = parts[i];
        if (p.empty() || p.size() > 3) return false;
        unsigned v = 0;
        for (char c : p) {
            if (c < '0' || c > '9') return false;
            v = v * 10 + static_cast<unsigned>(c - '0');
        }
        if (v > 255) return false;
        octets[i] = v;
    }
    high = static_cast<uint16_t>((octets[0] << 8) | octets[1]);
    low = static_cast<uint16_t>((octets[2] << 8) | octets[3]);
    return true;
}

// The groups of one side of "::" (or of the whole address); an IPv4 tail counts as two groups
// and is allowed only where `allowIpv4` says the side ends the address.
bool ParseSide(const std::string& side, bool allowIpv4, std::vector<uint16_t>& words) {
    if (side.empty()) return true;
    const auto groups = Split(side, ':');
    for (size_t i = 0; i < groups.size(); ++i) {
        const bool last = i + 1 == groups.size();
        if (last && allowIpv4 && groups[i].find('.') != std::string::npos) {
            uint16_t high = 0;
            uint16_t low = 0;
            if (!ParseIpv4(groups[i], high, low)) return false;
            words.push_back(high);
            words.push_back(low);
            continue;
        }
        uint16_t word = 0;
        if (!ParseGroup(groups[i], word)) return false;
        words.push_back(word);
    }
    return true;
}

}  // namespace

bool ParseIpv6(const std::string& text, std::array<uint16_t, 8>& out) {
    if (text.empty() || text.size() > 45) return false;
    const auto gap = text.find("::");
    std::vector<uint16_t> head;
    std::vector<uint16_t> tail;
    if (gap == std::string::npos) {
        if (!ParseSide(text, true, head) || head.size() != 8) return false;
    } else {
        if (text.find("::", gap + 1) != std::string::npos) return false;
        const std::string left = text.substr(0, gap);
        const std::string right = text.substr(gap + 2);
        if (!ParseSide(left, false, head) || !ParseSide(right, true, tail)) return false;
        // "::" stands for at least one zero group.
        if (head.size() + tail.size() > 7) return false;
    }
    out.fill(0);
    for (size_t i = 0; i < head.size(); ++i) out[i] = head[i];
    for (size_t i = 0; i < tail.size(); ++i) out[8 - tail.size() + i] = tail[i];
    return true;
}

std::string FormatIpv6(const std::array<uint16_t, 8>& words) {
    // The longest run of two or more zero groups (the first of equal runs) becomes "::".
    int bestStart = -1;
    int bestLength = 1;
    for (int i = 0; i < 8;) {
        if (words[static_cast<size_t>(i)] != 0) {
            ++i;
            continue;
        }
        int j = i;
        while (j < 8 && words[static_cast<size_t>(j)] == 0) ++j;
        if (j - i > bestLength) {
            bestStart = i;
            bestLength = j - i;
        }
        i = j;
    }
    std::string text;
    char group[8];
    for (int i = 0; i < 8; ++i) {
        if (i == bestStart) {
            text += "::";
            i += bestLength - 1;
            continue;
        }
        if (!text.empty() && text.back() != ':') text += ':';
        std::snprintf(group, sizeof group, "%x",
                      static_cast<unsigned>(words[static_cast<size_t>(i)]));
        text += group;
    }
    return text;
}

CSubnetId::Parse CSubnetId::FromText(const std::string& text, CSubnetId& out) {
    const auto slash = text.rfind('/');
    if (slash == std::string::npos) {
        std::array<uint16_t, 8> ignored{};
        return ParseIpv6(text, ignored) ? Parse::BadLength : Parse::BadAddress;
    }
    CSubnetId subnet;
    if (!ParseIpv6(text.substr(0, slash), subnet.words)) return Parse::BadAddress;
    const std::string lengthText = text.substr(slash + 1);
    if (lengthText.empty() || lengthText.size() > 3) return Parse::BadLength;
    unsigned length = 0;
    for (char c : lengthText) {
        if (c < '0' || c > '9') return Parse::BadLength;
        length = length * 10 + static_cast<unsigned>(c - '0');
    }
    if (length > kMaxLength) return Parse::LengthTooLarge;
    subnet.length = length;
    for (unsigned w = 0; w < 8; ++w) {
        const unsigned start = w * 16;
        if (start >= length) {
            subnet.words[w] = 0;
        } else if (length - start < 16) {
            const unsigned keep = length - start;
            subnet.words[w] = static_cast<uint16_t>(subnet.words[w] & (0xFFFFu << (16 - keep)));
        }
    }
    out = subnet;
    return Parse::Ok;
}

std::string CSubnetId::ToText() const {
    return FormatIpv6(words) + "/" + std::to_string(length);
}

uint32_t CSubnetId::ReadBits(CRLFile& file, unsigned bitCount) {
    words.fill(0);
    length = bitCount > kMaxLength ? kMaxLength : bitCount;
    for (unsigned start = 0, w = 0; start < length; start += 16, ++w) {
        const unsigned chunk = length - start < 16 ? length - start : 16;
        const uint32_t value = file.ReadBits(static_cast<int>(chunk));
        words[w] = static_cast<uint16_t>(value << (16 - chunk));
    }
    return length;
}

uint32_t CSubnetId::WriteBits(CRLFile& file) const {
    for (unsigned start = 0, w = 0; start < length && w < 8; start += 16, ++w) {
        const unsigned chunk = length - start < 16 ? length - start : 16;
        file.WriteBits(static_cast<int>(chunk), static_cast<uint32_t>(words[w]) >> (16 - chunk));
    }
    return length;
}

}  // namespace Tarn
