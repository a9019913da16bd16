#include <gtest/gtest.h>

#include "tests/roaming_list/AcqItemTestSupport.h"

namespace Tarn {
namespace {

using namespace AcqTest;

Maker Channels(int code, std::vector<uint16_t> channels) {
    return With<CAcqItemCellularCdmaCustom>(code, 5, [=](auto& r) { r.SetChannels(channels); });
}

Maker Gwl(std::vector<GwlTechnology> techs) {
    return With<AcqItemGenericGwl>(15, 5, [=](auto& r) { r.Technologies().technologies = techs; });
}

Maker Gpp(uint8_t version, std::vector<GwlTechnology> techs) {
    return With<AcqItem3GPPGeneric>(14, 5, [=](auto& r) {
        r.SetVersion(version);
        r.Technologies().technologies = techs;
    });
}

// LTE bands: `withUarfcn` of 25 bits and `without` of 9.
GwlTechnology Lte(int withUarfcn, int without) {
    GwlTechnology t{9, std::vector<GwlBand>(static_cast<size_t>(withUarfcn), {0, 1})};
    t.bands.resize(t.bands.size() + static_cast<size_t>(without), {0, std::nullopt});
    return t;
}

// The limits of every type, on both sides; what a check passes, a write carries without loss.
TEST(AcqItemValidity, LimitsOfEveryType) {
    const GwlTechnology lte{9, {{2, 1300}}};
    struct Case {
        const char* name;
        Maker make;
        bool valid;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"analog with the unnamed system 2", With<CAcqItemCellularAnalog>(1, 5, [](auto& r) { r.SetSystem(2); }), true},
        {"standard with system 2", With<CAcqItemCellularCdmaStandard>(2, 5, [](auto& r) { r.SetSystem(2); }), false},
        {"standard with system Both", With<CAcqItemCellularCdmaStandard>(7, 5, [](auto& r) { r.SetSystem(3); }), true},
        {"standard with channel 0", With<CAcqItemCellularCdmaStandard>(2, 5, [](auto& r) { r.SetChannel(0); }), false},
        {"standard with channel 3", With<CAcqItemCellularCdmaStandard>(2, 5, [](auto& r) { r.SetChannel(3); }), true},
        {"cellular 1, 799 and 801", Channels(3, {1, 799, 801}), true},
        {"cellular 800", Channels(3, {800}), false},
        {"cellular 1039, 1041, 1199, 1201", Channels(3, {1039, 1041, 1199, 1201}), true},
        {"cellular 1040", Channels(3, {1040}), false},
        {"cellular 1200", Channels(3, {1200}), false},
        {"cellular 1600", Channels(3, {1600}), true},
        {"cellular 1601", Channels(3, {1601}), false},
        {"cellular 0", Channels(3, {0}), false},
        {"no channels", Channels(3, {}), false},
        {"31 channels", Channels(3, std::vector<uint16_t>(31, 1)), true},
        {"32 channels do not fit the count", Channels(3, std::vector<uint16_t>(32, 1)), false},
        {"PCS 0 and 1199", Channels(6, {0, 1199}), true},
        {"PCS 1200", Channels(6, {1200}), false},
        {"JTACS any channel that fits", Channels(8, {0, 2047}), true},
        {"2GHz channel 2048", Channels(9, {2048}), false},
        {"block Any", With<CAcqItemPcsCdmaBlocks>(5, 5, [](auto& r) { r.SetBlocks({7}); }), true},
        {"block 6", With<CAcqItemPcsCdmaBlocks>(5, 5, [](auto& r) { r.SetBlocks({0, 6}); }), false},
        {"6 blocks", With<CAcqItemPcsCdmaBlocks>(5, 5, [](auto& r) { r.SetBlocks({0, 1, 2, 3, 4, 5}); }), true},
        {"7 blocks", With<CAcqItemPcsCdmaBlocks>(5, 5, [](auto& r) { r.SetBlocks(std::vector<uint8_t>(7, 0)); }), false},
        {"127 generic pairs", With<CAcqItemGenericCdma>(10, 5, [](auto& r) { r.SetPairs(std::vector<BandChannel>(127, {31, 2047})); }), true},
        {"128 generic pairs", With<CAcqItemGenericCdma>(11, 5, [](auto& r) { r.SetPairs(std::vector<BandChannel>(128, {1, 1})); }), false},
        {"band class 32", With<CAcqItemGenericCdma>(10, 5, [](auto& r) { r.SetPairs({{32, 1}}); }), false},
        {"no generic pairs", With<CAcqItemGenericCdma>(10, 5, [](auto&) {}), false},
        {"31 GSM bands", With<CAcqItemGenericGsm>(12, 5, [](auto& r) { r.SetBands(std::vector<uint8_t>(31, 31)); }), true},
        {"32 GSM bands", With<CAcqItemGenericGsm>(12, 5, [](auto& r) { r.SetBands(std::vector<uint8_t>(32, 8)); }), false},
        {"31 UMTS entries, UARFCN 16383", With<CAcqItemGenericUmts>(13, 5, [](auto& r) { r.SetEntries(std::vector<UmtsEntry>(31, {31, 16383})); }), true},
        {"UARFCN 16384", With<CAcqItemGenericUmts>(13, 5, [](auto& r) { r.SetEntries({{0, 16384}}); }), false},
        {"32 UMTS entries", With<CAcqItemGenericUmts>(13, 5, [](auto& r) { r.SetEntries(std::vector<UmtsEntry>(32)); }), false},
        {"UMB without entries", With<CAcqItemGenericUmb>(16, 5, [](auto&) {}), true},
        {"16 UMB entries at their largest", With<CAcqItemGenericUmb>(16, 5, [](auto& r) { r.SetEntries(std::vector<UmbEntry>(16, {31, 2047, 7, 1023, 7, 255})); }), true},
        {"17 UMB entries", With<CAcqItemGenericUmb>(16, 5, [](auto& r) { r.SetEntries(std::vector<UmbEntry>(17)); }), false},
        {"1024 guard carriers", With<CAcqItemGenericUmb>(16, 5, [](auto& r) { r.SetEntries({{0, 0, 0, 1024, 0, 0}}); }), false},
        {"GWL as created: technologies without bands", Gwl({{9, {}}, {3, {}}, {5, {}}}), false},
        {"GWL with one LTE band", Gwl({lte}), true},
        {"GWL with three technologies", Gwl({lte, {3, {{0, std::nullopt}}}, {5, {{0, 65535}}}}), true},
        {"GWL with four technologies", Gwl({lte, lte, lte, lte}), false},
        {"GWL system mode 4", Gwl({{4, {{2, 1}}}}), false},
        {"GWL 66 bands", Gwl({{9, std::vector<GwlBand>(66, {63, std::nullopt})}}), true},
        {"GWL 67 bands", Gwl({{9, std::vector<GwlBand>(67, {2, std::nullopt})}}), false},
        {"GWL band 64 does not fit", Gwl({{9, {{64, std::nullopt}}}}), false},
        {"GWL past 255 octets", Gwl({{9, std::vector<GwlBand>(66, {2, 1})}, {9, std::vector<GwlBand>(66, {2, 1})}}), false},
        {"3GPP version 1 with EUTRAN-250", Gpp(1, {{9, {{249, 1}}}}), true},
        {"3GPP version 2", Gpp(2, {lte}), false},
        {"3GPP of exactly 255 octets", Gpp(1, {Lte(76, 13)}), true},
        {"3GPP one band past 255 octets", Gpp(1, {Lte(76, 14)}), false},
        {"255 octets of undefined data", With<CAcqItemSpecial>(253, 5, [](auto& r) { r.SetData(std::vector<uint8_t>(255)); }), true},
        {"256 octets", With<CAcqItemSpecial>(253, 5, [](auto& r) { r.SetData(std::vector<uint8_t>(256)); }), false},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto item = c.make();
        EXPECT_EQ(item->IsValid(), c.valid);
        if (!c.valid) continue;
        ReadBack back = ReadRecord(Bytes(*item), 5);
        ASSERT_TRUE(back.item);
        EXPECT_EQ(Bytes(*back.item), Bytes(*item));
    }
    for (const auto& item : SampleRecords()) {
        SCOPED_TRACE(item->GetAcqType());
        EXPECT_TRUE(item->IsValid());
    }
}

}  // namespace
}  // namespace Tarn
