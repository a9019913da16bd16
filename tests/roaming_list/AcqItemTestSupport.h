// Small helpers the acquisition record tests share: hex, framing a record for a version, and
// reading one back through the factory as the read helpers do.
#pragma once

#include <cstdint>
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

// The record's bytes in the long framing (or in the short one when `version` < 3): what two
// records are compared by.
inline std::string Bytes(const CRLItem& item, int version = 5) {
    return WriteRecord(item, version).hex;
}

// One valid record of every type, none left at its defaults; nothing hidden from the grid.
inline std::vector<std::unique_ptr<CAcqItem>> SampleRecords() {
    std::vector<std::unique_ptr<CAcqItem>> out;
    auto analog = Make<CAcqItemCellularAnalog>(1);
    analog->SetSystem(3);
    out.push_back(std::move(analog));
    auto preferred = Make<CAcqItemCellularAnalog>(4);
    preferred->SetSystem(1);
    out.push_back(std::move(preferred));
    for (int code : {2, 7}) {
        auto standard = Make<CAcqItemCellularCdmaStandard>(code);
        standard->SetSystem(1);
        standard->SetChannel(2);
        out.push_back(std::move(standard));
    }
    for (int code : {3, 6, 8, 9}) {
        auto custom = Make<CAcqItemCellularCdmaCustom>(code);
        custom->SetChannels({25, 799, 1100});
        out.push_back(std::move(custom));
    }
    auto blocks = Make<CAcqItemPcsCdmaBlocks>(5);
    blocks->SetBlocks({0, 5, 7});
    out.push_back(std::move(blocks));
    auto cdma = Make<CAcqItemGenericCdma>(10);
    cdma->SetPairs({{1, 25}, {3, 1600}, {15, 2047}});
    out.push_back(std::move(cdma));
    auto hdr = Make<CAcqItemGenericCdma>(11);
    hdr->SetPairs({{17, 1459}, {0, 283}});
    out.push_back(std::move(hdr));
    auto gsm = Make<CAcqItemGenericGsm>(12);
    gsm->SetBands({0, 8, 3});
    out.push_back(std::move(gsm));
    auto umts = Make<CAcqItemGenericUmts>(13);
    umts->SetEntries({{0, 10700}, {11, std::nullopt}, {4, 0}});
    out.push_back(std::move(umts));
    auto gpp = Make<AcqItem3GPPGeneric>(14);
    gpp->Technologies().technologies = {{9, {{249, 65535}, {45, std::nullopt}}}, {5, {{0, 10700}}}};
    out.push_back(std::move(gpp));
    auto gwl = Make<AcqItemGenericGwl>(15);
    gwl->Technologies().technologies = {
        {3, {{8, 512}}}, {5, {{11, std::nullopt}}}, {9, {{62, 66000 - 1000}, {0, 0}}}};
    out.push_back(std::move(gwl));
    auto umb = Make<CAcqItemGenericUmb>(16);
    umb->SetEntries({{13, 100, 5, 128, 4, 0}, {0, 2047, 0, 1023, 0, 0}});
    out.push_back(std::move(umb));
    auto special = Make<CAcqItemSpecial>(253);
    special->SetData(std::vector<uint8_t>(3, 0));
    out.push_back(std::move(special));
    return out;
}

}  // namespace Tarn::AcqTest
