// Builds roaming list images bit by bit for tests, sealing them with size and CRC like a writer.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "roaming_list/RLFile.h"

namespace Tarn::Test {

// Fields as (width, value) pairs, packed MSB first with no alignment.
inline std::vector<uint8_t> PackBits(const std::vector<std::pair<int, uint32_t>>& fields) {
    CRLFile f;
    uint64_t bits = 0;
    for (auto [w, v] : fields) {
        f.WriteBits(w, v);
        bits += static_cast<uint64_t>(w);
    }
    f.PadToByte(bits);
    return f.Bytes();
}

// Puts the 16-bit size in front of `body` (which must start with two placeholder bytes) and the
// CRC after it, as the manager's finishing step does.
inline std::vector<uint8_t> Seal(std::vector<uint8_t> body) {
    const uint16_t size = static_cast<uint16_t>(body.size() + 2);
    body[0] = static_cast<uint8_t>(size >> 8);
    body[1] = static_cast<uint8_t>(size & 0xFF);
    const uint16_t crc = Crc16(body.data(), body.size());
    body.push_back(static_cast<uint8_t>(crc >> 8));
    body.push_back(static_cast<uint8_t>(crc & 0xFF));
    return body;
}

// `bytes` with the 16-bit word at `at` set to `word` and the closing CRC made right again.
inline std::vector<uint8_t> WithWord(std::vector<uint8_t> bytes, size_t at, uint16_t word) {
    bytes[at] = static_cast<uint8_t>(word >> 8);
    bytes[at + 1] = static_cast<uint8_t>(word);
    const uint16_t crc = Crc16(bytes.data(), bytes.size() - 2);
    bytes[bytes.size() - 2] = static_cast<uint8_t>(crc >> 8);
    bytes[bytes.size() - 1] = static_cast<uint8_t>(crc);
    return bytes;
}

// The 5-byte prefix some tools put in front of a list: 0x02 and the list's bit count LE.
inline std::vector<uint8_t> Prefix(const std::vector<uint8_t>& list, uint8_t first = 0x02) {
    const uint32_t bits = static_cast<uint32_t>(list.size() * 8);
    // Sized once and filled in place: growing a 5-byte vector by an insert makes GCC 12 at -O3
    // report a copy past its end (-Warray-bounds) that cannot happen.
    std::vector<uint8_t> out(5 + list.size());
    out[0] = first;
    for (int i = 0; i < 4; ++i) out[1 + i] = static_cast<uint8_t>(bits >> (8 * i));
    std::copy(list.begin(), list.end(), out.begin() + 5);
    return out;
}

}  // namespace Tarn::Test
