// Hand-assembled system records of every type and framing, and the read/write steps the list
// readers perform around one record; shared by the system record tests.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"

namespace Tarn::SysSamples {

struct Sample {
    const char* name;
    int version;
    std::vector<uint8_t> bytes;
    uint32_t recordBits;  // the whole record, fill included
};

// Field by field, from the layout tables in the record headers.
inline const std::vector<Sample>& All() {
    // clang-format off
    static const std::vector<Sample> samples = {
        {"short preferred, NID not stored", 1, {0x00, 0x02, 0x50, 0x18, 0x08}, 37},
        {"short negative, NID stored", 2, {0x7C, 0x3E, 0xDF, 0x77, 0xA0, 0x50}, 44},
        {"long IS-2000, no association: length 6, no fill", 3, {0x30, 0x50, 0x10, 0x00, 0x08, 0x80}, 48},
        {"MCC-MNC SID/NID with association", 4,
         {0x71, 0xE0, 0x0A, 0x31, 0x02, 0x6F, 0x01, 0x00, 0x64, 0x00, 0x07, 0x03, 0x82, 0xC0}, 112},
        {"MCC-MNC subnet", 5, {0x51, 0x80, 0x13, 0x12, 0x34, 0x5F, 0x01, 0x0A, 0xFE, 0x80}, 80},
        {"PLMN multi LAC, negative", 4, {0x61, 0x00, 0x23, 0x13, 0x00, 0x14, 0x82, 0x12, 0x34, 0x00, 0x01, 0x00}, 96},
        {"PLMN select mode", 5, {0x29, 0x40, 0x00, 0x40, 0x40}, 40},
        {"PLMN single LAC, two-digit MNC", 4, {0x51, 0x50, 0x0A, 0x00, 0xF1, 0x10, 0xAB, 0xCD, 0x01, 0x00}, 80},
        {"IS-856 subnet", 3, {0x48, 0x80, 0x38, 0x20, 0x20, 0x01, 0x0D, 0xB8, 0x00}, 72},
        {"IS-856 with common offset and a 7-bit subnet", 3, {0x40, 0xE0, 0x08, 0xD5, 0xE0, 0x70, 0xA1, 0x20}, 64},
        {"1x-MCC in the short framing", 1, {0x7C, 0x42, 0x85, 0x02, 0xC0, 0x00, 0x08}, 53},
        {"1x-MCC with NID not stored keeps its odd identifiers", 3, {0x28, 0x00, 0x00, 0x7C, 0x40}, 40},
        {"undefined type 7 keeps its octets", 5, {0x2B, 0xC0, 0x92, 0x2B, 0x38}, 40},
        {"undefined type 15 of two octets", 3, {0x17, 0xFF}, 16},
    };
    // clang-format on
    return samples;
}

inline const Sample& Find(const std::string& name) {
    for (const auto& sample : All())
        if (name == sample.name) return sample;
    throw std::logic_error("no sample " + name);
}

// Reads one record the way the list readers do: versions 1-2 have no type, 3-5 a 5-bit length
// and a 4-bit type in front; the record read may be swapped for its replacement.
inline std::unique_ptr<CSysItem> ReadOne(CRLFile& file, int version, uint32_t& bits) {
    std::unique_ptr<CSysItem> item;
    if (version < 3) {
        item = CreateSysItem(0, version);
    } else {
        const int length = static_cast<int>(file.ReadBits(5));
        item = CreateSysItem(static_cast<int>(file.ReadBits(4)), version, length);
    }
    if (!item) return nullptr;
    bits = item->Read(file);
    if (auto replacement = item->GetReplacement())
        item.reset(static_cast<CSysItem*>(replacement.release()));
    return item;
}

inline std::unique_ptr<CSysItem> ReadSample(const Sample& sample) {
    CRLFile file(sample.bytes);
    file.SetVersion(sample.version);
    uint32_t bits = 0;
    return ReadOne(file, sample.version, bits);
}

inline std::vector<uint8_t> WriteOne(const CSysItem& item, int version, uint32_t& bits) {
    CRLFile out;
    out.SetVersion(version);
    bits = item.Write(out);
    return out.Bytes();
}

inline std::vector<uint8_t> WriteOne(const CSysItem& item, int version) {
    uint32_t bits = 0;
    return WriteOne(item, version, bits);
}

}  // namespace Tarn::SysSamples
