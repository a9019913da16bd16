#include <gtest/gtest.h>

#include <functional>

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
Maker Analog(int code, int version, uint8_t system) {
    return With<CAcqItemCellularAnalog>(code, version, [=](auto& r) { r.SetSystem(system); });
}

Maker Channels(int code, int version, std::vector<uint16_t> channels) {
    return With<CAcqItemCellularCdmaCustom>(code, version,
                                            [=](auto& r) { r.SetChannels(channels); });
}

Maker Blocks(int version, std::vector<uint8_t> blocks) {
    return With<CAcqItemPcsCdmaBlocks>(5, version, [=](auto& r) { r.SetBlocks(blocks); });
}

Maker Pairs(int code, int version, std::vector<BandChannel> pairs) {
    return With<CAcqItemGenericCdma>(code, version, [=](auto& r) { r.SetPairs(pairs); });
}

Maker Gwl(int version, std::vector<GwlTechnology> techs) {
    return With<AcqItemGenericGwl>(15, version,
                                   [=](auto& r) { r.Technologies().technologies = techs; });
}

struct EncodingCase {
    const char* name;
    int version;
    Maker make;
    const char* hex;
    uint32_t writtenBits;
};

const std::vector<EncodingCase>& EncodingCases() {
    // clang-format off
    static const std::vector<EncodingCase> cases = {
        {"analog v3: type, length 1, selector in the top two bits", 3, Analog(1, 3, 1), "01 01 40", 24},
        {"analog v1: 4-bit type and 2 bits, no fill", 1, Analog(1, 1, 0), "10", 6},
        {"preferred v2 with the unnamed system 3", 2, Analog(4, 2, 3), "4C", 6},
        {"standard v1", 1, With<CAcqItemCellularCdmaStandard>(2, 1, [](auto& r) { r.SetSystem(1); r.SetChannel(2); }), "26", 8},
        {"JTACS standard v3: 2 + 2 bits and 4 reserved", 3,
         With<CAcqItemCellularCdmaStandard>(7, 3, [](auto& r) { r.SetSystem(3); r.SetChannel(3); }), "07 01 F0", 24},
        {"custom channel record with no channels, long framing", 3, Channels(3, 3, {}), "03 01 00", 24},
        {"custom channels 1 and 1600", 4, Channels(3, 4, {1, 1600}), "03 04 10 01 C8 00", 48},
        {"2GHz channel v2, short framing", 2, Channels(9, 2, {2047}), "90 FF F0", 20},
        {"PCS channels v1", 1, Channels(6, 1, {25, 1199}), "61 01 99 5E", 31},
        {"PCS 2 blocks long: 9 bits of fields, 7 reserved, length 2", 3, Blocks(3, {0, 5}), "05 02 42 80", 32},
        {"PCS 2 blocks short: 13 bits", 1, Blocks(1, {0, 5}), "54 28", 13},
        {"CDMA generic: length is twice the pairs", 3, Pairs(10, 3, {{1, 25}}), "0A 02 08 19", 32},
        {"HDR generic, two pairs", 4,
         With<CAcqItemGenericHdr>(11, 4, [](auto& r) { r.SetPairs({{17, 140}, {3, 1600}}); }), "0B 04 88 8C 1E 40", 48},
        {"GSM generic", 3, With<CAcqItemGenericGsm>(12, 3, [](auto& r) { r.SetBands({3, 7}); }), "0C 02 10 CE", 32},
        {"UMTS generic, UARFCN included and not", 3,
         With<CAcqItemGenericUmts>(13, 3, [](auto& r) { r.SetEntries({{0, 10700}, {1, std::nullopt}}); }),
         "0D 04 10 34 E6 04", 48},
        {"UMB generic, one entry of five octets", 4,
         With<CAcqItemGenericUmb>(16, 4, [](auto& r) { r.SetEntries({{13, 100, 4, 128, 2, 0xA5}}); }),
         "10 06 0B 43 24 20 15 28", 64},
        {"GWL generic, one LTE band with UARFCN", 5, Gwl(5, {{9, {{2, 1300}}}}), "0F 05 32 04 28 28 A0", 56},
        {"GWL generic, GSM and WCDMA", 5, Gwl(5, {{3, {{8, std::nullopt}}}, {5, {{11, 4400}}}}),
         "0F 07 46 04 82 81 2E 22 60", 72},
        {"3GPP generic, EUTRAN-250 needs the 8-bit band", 5,
         With<AcqItem3GPPGeneric>(14, 5, [](auto& r) { r.Technologies().technologies = {{9, {{249, 65535}}}}; }),
         "0E 06 01 32 03 F3 FF FF", 64},
        {"undefined record keeps its octets", 3,
         With<CAcqItemSpecial>(253, 3, [](auto& r) { r.SetData({0xAA, 0xBB}); }), "FD 02 AA BB", 32},
        {"undefined record with no data", 5, With<CAcqItemSpecial>(253, 5, [](auto&) {}), "FD 00", 16},
    };
    // clang-format on
    return cases;
}

// Each record writes exactly the layout of its version, and reading those bytes gives a record
// (and a clone) that writes them again.
TEST(AcqItemBinary, WritesTheLayoutOfItsVersionAndReadsItBack) {
    for (const auto& c : EncodingCases()) {
        SCOPED_TRACE(c.name);
        const Written w = WriteRecord(*c.make(), c.version);
        EXPECT_EQ(w.hex, c.hex);
        EXPECT_EQ(w.bits, c.writtenBits);

        ReadBack r = ReadRecord(c.hex, c.version);
        ASSERT_TRUE(r.item);
        EXPECT_EQ(r.bits + (c.version >= 3 ? 8 : 4), c.writtenBits);
        EXPECT_EQ(WriteRecord(*r.item, c.version).hex, c.hex);
        EXPECT_EQ(WriteRecord(*r.item->Clone(), c.version).hex, c.hex);
    }
}

TEST(AcqItemBinary, ShortFramingRecordsFollowEachOtherBitByBit) {
    // A 13-bit PCS record, then a 6-bit analog record starting at bit 13.
    CRLFile file;
    file.SetVersion(1);
    EXPECT_EQ(Blocks(1, {0, 5})()->Write(file) + Analog(1, 1, 1)()->Write(file), 19u);
    EXPECT_EQ(ToHex(file.Bytes()), "54 28 A0");

    CRLFile in(file.Bytes());
    ReadBack first = ReadRecord(in, 1);
    ReadBack second = ReadRecord(in, 1);
    ASSERT_TRUE(first.item && second.item);
    EXPECT_EQ(first.item->GetAcqType(), 5);
    EXPECT_EQ(first.bits, 9u);
    EXPECT_EQ(dynamic_cast<CAcqItemCellularAnalog&>(*second.item).GetSystem(), 1);
    // The same record read in the short framing is written in the long one.
    EXPECT_EQ(WriteRecord(*first.item, 3).hex, "05 02 42 80");
}

TEST(AcqItemBinary, NothingWiderThanItsFieldIsWritten) {
    struct Case {
        const char* name;
        int version;
        Maker make;
        int expectedCode;
        bool valid = false;  // a valid record whose framing cannot carry it
    };
    const GwlTechnology lte{9, std::vector<GwlBand>(66, {2, 1300})};
    // clang-format off
    const std::vector<Case> cases = {
        {"channel 2048 in an 11-bit field", 3, Channels(8, 3, {2048}), 4},
        {"32 channels behind a 5-bit count", 3, Channels(8, 3, std::vector<uint16_t>(32, 1)), 4},
        {"128 generic pairs behind an 8-bit length", 3, Pairs(10, 3, std::vector<BandChannel>(128, {1, 25})), 4},
        {"a GWL record longer than 255 octets", 5, Gwl(5, {lte, lte}), 4},
        {"a generic record has no short form", 2, Pairs(10, 3, {{1, 25}}), 6, true},
        {"the undefined record has no short form", 1, With<CAcqItemSpecial>(253, 3, [](auto&) {}), 6, true},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto item = c.make();
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

// The first and last type each version offers, and the ones just outside.
TEST(AcqItemFactory, EachVersionMakesItsOwnTypes) {
    struct Case {
        int version, code;
        bool made;
    };
    const std::vector<Case> cases = {
        {1, 0, false},   {1, 1, true},   {1, 6, true},    {1, 7, false},   {1, 253, false},
        {2, 9, true},    {2, 10, false}, {2, 253, false}, {3, 13, true},   {3, 14, false},
        {3, 15, false},  {3, 16, true},  {3, 17, false},  {3, 252, false}, {3, 253, true},
        {3, 254, false}, {4, 13, true},  {4, 14, false},  {4, 253, true},  {5, 14, true},
        {5, 16, true},   {5, 17, false}, {5, 253, true},  {0, 15, true},   {6, 16, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("version " + std::to_string(c.version) + " code " + std::to_string(c.code));
        auto item = CreateAcqItem(c.code, c.version);
        ASSERT_EQ(item != nullptr, c.made);
        if (item) {
            EXPECT_EQ(item->GetAcqType(), c.code);
        }
    }
}

}  // namespace
}  // namespace Tarn
