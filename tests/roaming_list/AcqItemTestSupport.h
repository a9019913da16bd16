// Small helpers the acquisition record tests share: hex, framing a record for a version, and
// reading one back through the factory as the read helpers do.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemGeneric.h"
#include "roaming_list/AcqItemGwl.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/AcqItemSpecial.h"
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

using Maker = std::function<std::unique_ptr<CAcqItem>()>;

// Makes a record of type `code` for `version` and lets `set` fill it in.
template <typename T>
Maker With(int code, int version, std::function<void(T&)> set) {
    return [=] {
        auto item = Make<T>(code, version);
        set(*item);
        return std::unique_ptr<CAcqItem>(std::move(item));
    };
}

// The record's bytes in the long framing (or in the short one when `version` < 3): what two
// records are compared by.
inline std::string Bytes(const CRLItem& item, int version = 5) {
    return WriteRecord(item, version).hex;
}

// The fields of a record line split at its tabs.
inline std::vector<std::string> Fields(const std::string& text) {
    std::vector<std::string> fields;
    std::istringstream in(text);
    for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
    return fields;
}

// One valid record of every type, none left at its defaults; nothing hidden from the grid.
inline std::vector<std::unique_ptr<CAcqItem>> SampleRecords() {
    const std::vector<std::pair<int, std::string>> texts = {
        {1, "Both"},
        {4, "B"},
        {2, "B\tSec"},
        {7, "B\tSec"},
        {3, "25\t799\t1100"},
        {6, "25\t799\t1100"},
        {8, "25\t799\t1100"},
        {9, "25\t799\t1100"},
        {5, "A\tF\tAny"},
        {10, "1\t25\t3\t1600\t15\t2047"},
        {11, "17\t1459\t0\t283"},
        {12, "0\t8\t3"},
        {13, "0\tUARFCN_INCL_YES\t10700\t11\tUARFCN_INCL_NO\t4\tUARFCN_INCL_YES\t0"},
        {14,
         "1\t9\t2\t249\tUARFCN_PRESENT\t65535\t45\tUARFCN_NOT_PRESENT\t5\t1\t0\tUARFCN_PRESENT\t"
         "10700"},
        {15,
         "3\t1\t8\tUARFCN_PRESENT\t512\t5\t1\t11\tUARFCN_NOT_PRESENT\t9\t2\t62\tUARFCN_PRESENT\t"
         "65000\t0\tUARFCN_PRESENT\t0"},
        {16, "13\t100\t5\t128\t4\t0\t0\t2047\t0\t1023\t0\t0"},
        {253, "3"},
    };
    std::vector<std::unique_ptr<CAcqItem>> out;
    for (const auto& [code, text] : texts) {
        out.push_back(CreateAcqItem(code, 5));
        out.back()->FromText(Fields(text));
    }
    return out;
}

}  // namespace Tarn::AcqTest
