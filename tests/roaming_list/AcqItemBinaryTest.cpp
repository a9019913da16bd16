#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemGeneric.h"
#include "roaming_list/AcqItemGwl.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/AcqItemSpecial.h"
#include "roaming_list/DataException.h"
#include "tests/roaming_list/AcqItemTestSupport.h"

namespace Tarn {
namespace {

using namespace AcqTest;

struct EncodingCase {
    const char* name;
    int version;
    std::function<std::unique_ptr<CAcqItem>()> make;
    const char* hex;
    uint32_t writtenBits;
};

std::unique_ptr<CAcqItem> Analog(int code, int version, uint8_t system) {
    auto item = Make<CAcqItemCellularAnalog>(code, version);
    item->SetSystem(system);
    return item;
}

std::unique_ptr<CAcqItem> Standard(int code, int version, uint8_t system, uint8_t channel) {
    auto item = Make<CAcqItemCellularCdmaStandard>(code, version);
    item->SetSystem(system);
    item->SetChannel(channel);
    return item;
}

std::unique_ptr<CAcqItem> Channels(int code, int version, std::vector<uint16_t> channels) {
    auto item = Make<CAcqItemCellularCdmaCustom>(code, version);
    item->SetChannels(std::move(channels));
    return item;
}

std::unique_ptr<CAcqItem> Blocks(int version, std::vector<uint8_t> blocks) {
    auto item = Make<CAcqItemPcsCdmaBlocks>(5, version);
    item->SetBlocks(std::move(blocks));
    return item;
}

const std::vector<EncodingCase>& EncodingCases() {
    static const std::vector<EncodingCase> cases = {
        {"analog v3: type, length 1, selector in the top two bits", 3,
         [] { return Analog(1, 3, 1); }, "01 01 40", 24},
        {"analog v1: 4-bit type and 2 bits, no fill", 1, [] { return Analog(1, 1, 0); }, "10", 6},
        {"preferred v2 with the unnamed system 3", 2, [] { return Analog(4, 2, 3); }, "4C", 6},
        {"standard v1", 1, [] { return Standard(2, 1, 1, 2); }, "26", 8},
        {"JTACS standard v3: 2 + 2 bits and 4 reserved", 3, [] { return Standard(7, 3, 3, 3); },
         "07 01 F0", 24},
        {"custom channel record with no channels, long framing", 3,
         [] { return Channels(3, 3, {}); }, "03 01 00", 24},
        {"custom channels 1 and 1600", 4,
         [] {
             return Channels(3, 4, {1, 1600});
         },
         "03 04 10 01 C8 00", 48},
        {"2GHz channel v2, short framing", 2, [] { return Channels(9, 2, {2047}); }, "90 FF F0",
         20},
        {"PCS channels v1", 1,
         [] {
             return Channels(6, 1, {25, 1199});
         },
         "61 01 99 5E", 31},
        {"PCS 2 blocks long: 9 bits of fields, 7 reserved, length 2", 3,
         [] {
             return Blocks(3, {0, 5});
         },
         "05 02 42 80", 32},
        {"PCS 2 blocks short: 13 bits", 1,
         [] {
             return Blocks(1, {0, 5});
         },
         "54 28", 13},
        {"CDMA generic: length is twice the pairs", 3,
         [] {
             auto item = Make<CAcqItemGenericCdma>(10, 3);
             item->SetPairs({{1, 25}});
             return item;
         },
         "0A 02 08 19", 32},
        {"HDR generic, two pairs", 4,
         [] {
             auto item = Make<CAcqItemGenericHdr>(11, 4);
             item->SetPairs({{17, 140}, {3, 1600}});
             return item;
         },
         "0B 04 88 8C 1E 40", 48},
        {"GSM generic", 3,
         [] {
             auto item = Make<CAcqItemGenericGsm>(12, 3);
             item->SetBands({3, 7});
             return item;
         },
         "0C 02 10 CE", 32},
        {"UMTS generic, UARFCN included and not", 3,
         [] {
             auto item = Make<CAcqItemGenericUmts>(13, 3);
             item->SetEntries({{0, 10700}, {1, std::nullopt}});
             return item;
         },
         "0D 04 10 34 E6 04", 48},
        {"UMB generic, one entry of five octets", 4,
         [] {
             auto item = Make<CAcqItemGenericUmb>(16, 4);
             item->SetEntries({{13, 100, 4, 128, 2, 0xA5}});
             return item;
         },
         "10 06 0B 43 24 20 15 28", 64},
        {"GWL generic, one LTE band with UARFCN", 5,
         [] {
             auto item = Make<AcqItemGenericGwl>(15, 5);
             item->Technologies().technologies = {{9, {{2, 1300}}}};
             return item;
         },
         "0F 05 32 04 28 28 A0", 56},
        {"GWL generic, GSM and WCDMA", 5,
         [] {
             auto item = Make<AcqItemGenericGwl>(15, 5);
             item->Technologies().technologies = {{3, {{8, std::nullopt}}}, {5, {{11, 4400}}}};
             return item;
         },
         "0F 07 46 04 82 81 2E 22 60", 72},
        {"3GPP generic, EUTRAN-250 needs the 8-bit band", 5,
         [] {
             auto item = Make<AcqItem3GPPGeneric>(14, 5);
             item->Technologies().technologies = {{9, {{249, 65535}}}};
             return item;
         },
         "0E 06 01 32 03 F3 FF FF", 64},
        {"undefined record keeps its octets", 3,
         [] {
             auto item = Make<CAcqItemSpecial>(253, 3);
             item->SetData({0xAA, 0xBB});
             return item;
         },
         "FD 02 AA BB", 32},
        {"undefined record with no data", 5, [] { return Make<CAcqItemSpecial>(253, 5); }, "FD 00",
         16},
    };
    return cases;
}

TEST(AcqItemBinary, WritesTheLayoutOfItsVersion) {
    for (const auto& c : EncodingCases()) {
        SCOPED_TRACE(c.name);
        auto item = c.make();
        ASSERT_TRUE(item);
        const Written w = WriteRecord(*item, c.version);
        EXPECT_EQ(w.hex, c.hex);
        EXPECT_EQ(w.bits, c.writtenBits);
    }
}

TEST(AcqItemBinary, ReadingAndWritingBackGivesTheSameBytes) {
    for (const auto& c : EncodingCases()) {
        SCOPED_TRACE(c.name);
        ReadBack r = ReadRecord(c.hex, c.version);
        ASSERT_TRUE(r.item);
        const uint32_t typeBits = c.version >= 3 ? 8 : 4;
        EXPECT_EQ(r.bits + typeBits, c.writtenBits);
        EXPECT_EQ(WriteRecord(*r.item, c.version).hex, c.hex);
        EXPECT_EQ(WriteRecord(*r.item->Clone(), c.version).hex, c.hex);
    }
}

TEST(AcqItemBinary, ShortFramingRecordsFollowEachOtherBitByBit) {
    // A 13-bit PCS record, then a 6-bit analog record starting at bit 13.
    CRLFile file;
    file.SetVersion(1);
    auto blocks = Blocks(1, {0, 5});
    auto analog = Analog(1, 1, 1);
    EXPECT_EQ(blocks->Write(file) + analog->Write(file), 19u);
    EXPECT_EQ(ToHex(file.Bytes()), "54 28 A0");

    CRLFile in(file.Bytes());
    ReadBack first = ReadRecord(in, 1);
    ReadBack second = ReadRecord(in, 1);
    ASSERT_TRUE(first.item && second.item);
    EXPECT_EQ(first.item->GetAcqType(), 5);
    EXPECT_EQ(first.bits, 9u);
    EXPECT_EQ(dynamic_cast<CAcqItemCellularAnalog&>(*second.item).GetSystem(), 1);
}

TEST(AcqItemBinary, OneRecordIsReadInOneFramingAndWrittenInTheOther) {
    ReadBack r = ReadRecord("54 28", 1);
    ASSERT_TRUE(r.item);
    EXPECT_EQ(WriteRecord(*r.item, 3).hex, "05 02 42 80");
}

TEST(AcqItemBinary, NothingWiderThanItsFieldIsWritten) {
    struct Case {
        const char* name;
        int version;
        std::function<std::unique_ptr<CAcqItem>()> make;
        int expectedCode;
        bool valid = false;  // a valid record whose framing cannot carry it
    };
    const std::vector<Case> cases = {
        {"channel 2048 in an 11-bit field", 3, [] { return Channels(8, 3, {2048}); }, 4},
        {"32 channels behind a 5-bit count", 3,
         [] { return Channels(8, 3, std::vector<uint16_t>(32, 1)); }, 4},
        {"128 generic pairs behind an 8-bit length", 3,
         [] {
             auto item = Make<CAcqItemGenericCdma>(10, 3);
             item->SetPairs(std::vector<BandChannel>(128, {1, 25}));
             return item;
         },
         4},
        {"a GWL record longer than 255 octets", 5,
         [] {
             auto item = Make<AcqItemGenericGwl>(15, 5);
             GwlTechnology lte{9, std::vector<GwlBand>(66, {2, 1300})};
             item->Technologies().technologies = {lte, lte};
             return item;
         },
         4},
        {"a generic record has no short form", 2,
         [] {
             auto item = Make<CAcqItemGenericCdma>(10, 3);
             item->SetPairs({{1, 25}});
             return item;
         },
         6, true},
        {"the undefined record has no short form", 1, [] { return Make<CAcqItemSpecial>(253, 3); },
         6, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto item = c.make();
        ASSERT_TRUE(item);
        EXPECT_EQ(item->IsValid(), c.valid);
        CRLFile file;
        file.SetVersion(c.version);
        try {
            item->Write(file);
            ADD_FAILURE() << "wrote " << ToHex(file.Bytes());
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), c.expectedCode);
        }
    }
}

TEST(AcqItemBinary, HostileCountsStayBounded) {
    // Largest counts every field allows, with the file ending early: reads stop at the widths.
    const std::vector<std::pair<const char*, std::string>> cases = {
        {"channel count 31", "03 FF F8"},
        {"GWL: 7 technologies of 127 bands", "0F FF FF FF"},
        {"3GPP: 7 technologies of 255 bands", "0E FF 01 FF FF FF"},
        {"generic pairs from length 255", "0A FF"},
        {"undefined record of 255 octets", "FD FF"},
    };
    for (const auto& [name, hex] : cases) {
        SCOPED_TRACE(name);
        ReadBack r = ReadRecord(hex, 5);
        ASSERT_TRUE(r.item);
        EXPECT_GT(r.bits, 8u);
    }
}

TEST(AcqItemFactory, EachVersionMakesItsOwnTypes) {
    const std::set<int> v1 = {1, 2, 3, 4, 5, 6};
    const std::set<int> v2 = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const std::set<int> v34 = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 16, 253};
    const std::set<int> v5 = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 253};
    const std::vector<std::pair<int, std::set<int>>> versions = {{1, v1},  {2, v2}, {3, v34},
                                                                 {4, v34}, {5, v5}, {0, v5}};
    for (const auto& [version, offered] : versions) {
        for (int code = 0; code <= 255; ++code) {
            SCOPED_TRACE("version " + std::to_string(version) + " code " + std::to_string(code));
            auto item = CreateAcqItem(code, version);
            ASSERT_EQ(item != nullptr, offered.count(code) == 1);
            if (item) {
                EXPECT_EQ(item->GetAcqType(), code);
            }
        }
    }
}

}  // namespace
}  // namespace Tarn
