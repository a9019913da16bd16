// CSubnetId: an IS-856 subnet identifier of up to 127 leading bits of an IPv6 address, as the
// system records carry it, with its "address/length" text form.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace Tarn {

class CRLFile;

struct CSubnetId {
    // The 7-bit length field caps the number of bits.
    static constexpr unsigned kMaxLength = 127;

    // Left-aligned: bit 0 of the subnet is the top bit of words[0]; bits past `length` are zero.
    std::array<uint16_t, 8> words{};
    unsigned length = 0;

    enum class Parse { Ok, BadAddress, BadLength, LengthTooLarge };
    // "address/length" with an IPv6 address in any of its usual forms (zero runs shortened with
    // "::", an IPv4 tail accepted). Bits of the address beyond the length are dropped.
    static Parse FromText(const std::string& text, CSubnetId& out);
    // The address in its shortest form, a slash and the length: "2001:db8::/32".
    std::string ToText() const;

    // The subnet bits only (the length field is the caller's), in chunks of at most 16 bits.
    uint32_t ReadBits(CRLFile& file, unsigned bitCount);
    uint32_t WriteBits(CRLFile& file) const;

    bool operator==(const CSubnetId&) const = default;
};

// An IPv6 address in text form; false when it is not one.
bool ParseIpv6(const std::string& text, std::array<uint16_t, 8>& words);
std::string FormatIpv6(const std::array<uint16_t, 8>& words);

}  // namespace Tarn
