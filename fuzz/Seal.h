// Making arbitrary bytes pass a roaming list's envelope, so the fuzzer's mutations reach the
// record readers instead of dying at the size and CRC check.
#pragma once

#include <cstdint>
#include <vector>

#include "roaming_list/RLFile.h"

namespace Tarn::Fuzz {

// The bytes with their first two set to the list's size and a CRC over them appended.
inline std::vector<uint8_t> Sealed(std::vector<uint8_t> body) {
    if (body.size() < 2) body.resize(2);
    const size_t size = body.size() + 2;
    body[0] = static_cast<uint8_t>(size >> 8);
    body[1] = static_cast<uint8_t>(size & 0xFF);
    const uint16_t crc = Crc16(body.data(), body.size());
    body.push_back(static_cast<uint8_t>(crc >> 8));
    body.push_back(static_cast<uint8_t>(crc & 0xFF));
    return body;
}

}  // namespace Tarn::Fuzz
