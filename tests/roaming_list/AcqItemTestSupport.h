// Small helpers the acquisition record tests share: hex, framing a record for a version, and
// reading one back through the factory as the read helpers do.
#pragma once

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/RLFile.h"

namespace Tarn::AcqTest {

inline std::vector<uint8_t> Hex(const std::string& text) {
    std::vector<uint8_t> bytes;
    std::istringstream in(text);
    std::string octet;
    while (in >> octet) bytes.push_back(static_cast<uint8_t>(std::stoul(octet, nullptr, 16)));
    return bytes;
}

inline std::string ToHex(const std::vector<uint8_t>& bytes) {
    std::string out;
    char buf[4];
    for (uint8_t b : bytes) {
        std::snprintf(buf, sizeof buf, "%02X", b);
        if (!out.empty()) out += ' ';
        out += buf;
    }
    return out;
}

struct Written {
    std::string hex;
    uint32_t bits = 0;
};

// The record written alone into a fresh file framed for `version`.
inline Written WriteRecord(const CRLItem& item, int version) {
    CRLFile file;
    file.SetVersion(version);
    Written w;
    w.bits = item.Write(file);
    w.hex = ToHex(file.Bytes());
    return w;
}

struct ReadBack {
    std::unique_ptr<CAcqItem> item;
    uint32_t bits = 0;  // after the type, as Read reports
};

// Reads the type (4 bits before version 3, else 8) and lets the factory's record read the rest.
inline ReadBack ReadRecord(CRLFile& file, int version) {
    file.SetVersion(version);
    ReadBack r;
    const int code = static_cast<int>(file.ReadBits(version >= 3 ? 8 : 4));
    r.item = CreateAcqItem(code, version);
    if (r.item) r.bits = r.item->Read(file);
    return r;
}

inline ReadBack ReadRecord(const std::string& hex, int version) {
    CRLFile file(Hex(hex));
    return ReadRecord(file, version);
}

template <typename T>
std::unique_ptr<T> Make(int code, int version = 5) {
    auto item = CreateAcqItem(code, version);
    auto* typed = dynamic_cast<T*>(item.get());
    if (!typed) return nullptr;
    item.release();
    return std::unique_ptr<T>(typed);
}

}  // namespace Tarn::AcqTest
