// Small helpers shared by the MMSS tests: fixture files, hex vectors and the registry entries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/FileKinds.h"
#include "tests/support/Files.h"

namespace Tarn::MmssTest {

inline std::string DataPath(const std::string& name) {
    return std::string(TARN_TEST_DATA_DIR) + "/mmss/" + name;
}

using Test::SlurpBytes;

// "13 F0 10" -> {0x13, 0xF0, 0x10}
inline std::vector<uint8_t> Hex(const std::string& text) {
    std::vector<uint8_t> bytes;
    std::string digits;
    for (char c : text)
        if (c != ' ') digits += c;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline const std::vector<FileKindInfo>& MmssKinds() {
    static const std::vector<FileKindInfo> kinds = [] {
        std::vector<FileKindInfo> k;
        AddMmssFileKinds(k);
        return k;
    }();
    return kinds;
}

inline const FileKindInfo& MmssKind(FileKind kind) {
    for (const auto& info : MmssKinds())
        if (info.kind == kind) return info;
    throw std::runtime_error("no such MMSS kind");
}

}  // namespace Tarn::MmssTest
