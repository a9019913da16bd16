#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSpecial.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using SysSamples::ReadOne;
using SysSamples::WriteOne;

struct BinaryCase {
    const char* sample;
    std::function<void(const CSysItem&)> check;
};

const SysSamples::Sample& Find(const std::string& name) {
    for (const auto& sample : SysSamples::All())
        if (name == sample.name) return sample;
    throw std::logic_error("no sample " + name);
}

template <typename T>
const T& As(const CSysItem& item) {
    const auto* typed = dynamic_cast<const T*>(&item);
    if (typed == nullptr) throw std::logic_error("the record is of another class");
    return *typed;
}

// Hand-assembled records of every type and framing: each reads into the expected fields and
// writes back to the very same bytes.
TEST(SysItemBinary, HandAssembledRecordsReadAndWriteBack) {
    ASSERT_EQ(SysSamples::All().size(), 14u);  // every sample has its checks below
    const std::vector<BinaryCase> cases = {
        {"short preferred, NID not stored",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS2000>(item);
             EXPECT_EQ(r.GetSysType(), 0);
             EXPECT_EQ(r.GetSid(), 1u);
             EXPECT_EQ(r.GetNidIncl(), 0u);
             EXPECT_EQ(r.GetNid(), 65535u);
             EXPECT_TRUE(r.IsPreferred());
             EXPECT_EQ(r.GetPriority(), 1u);
             EXPECT_EQ(r.GetAcqIndex(), 3u);
             EXPECT_EQ(r.GetRoamInd(), 1u);
         }},
        {"short negative, NID stored",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS2000>(item);
             EXPECT_EQ(r.GetSid(), 15903u);
             EXPECT_EQ(r.GetNid(), 0xBEEFu);
             EXPECT_FALSE(r.IsPreferred());
             EXPECT_EQ(r.GetGeography(), 1u);
             EXPECT_EQ(r.GetPriority(), 0u);
             EXPECT_EQ(r.GetRoamInd(), 0u);
             EXPECT_EQ(r.GetAcqIndex(), 5u);
         }},
        {"long IS-2000, no association: length 6, no fill",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS2000>(item);
             EXPECT_EQ(r.GetSid(), 4u);
             EXPECT_EQ(r.GetAcqIndex(), 2u);
             EXPECT_EQ(r.GetRoamInd(), 64u);
             EXPECT_EQ(r.GetAssnIncluded(), 0u);
         }},
        {"MCC-MNC SID/NID with association",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemMccMnc>(item);
             EXPECT_EQ(r.GetSubtype(), 2u);
             EXPECT_EQ(SysFields::FormatMcc(r.GetMcc()), "310");
             EXPECT_EQ(SysFields::FormatMnc(r.GetMnc()), "26");
             EXPECT_EQ(r.GetSids(), std::vector<uint16_t>{100});
             EXPECT_EQ(r.GetNids(), std::vector<uint16_t>{7});
             EXPECT_EQ(r.GetGeography(), 1u);
             EXPECT_EQ(r.GetRoamInd(), 3u);
             EXPECT_EQ(r.GetAssnTag(), 5u);
             EXPECT_EQ(r.GetPnAssn(), 1u);
             EXPECT_EQ(r.GetDataAssn(), 0u);
         }},
        {"MCC-MNC subnet",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemMccMnc>(item);
             EXPECT_EQ(r.GetSubtype(), 3u);
             EXPECT_EQ(SysFields::FormatMcc(r.GetMcc()), "123");
             EXPECT_EQ(SysFields::FormatMnc(r.GetMnc()), "45");
             ASSERT_EQ(r.GetSubnets().size(), 1u);
             EXPECT_EQ(r.GetSubnets()[0].ToText(), "fe80::/10");
         }},
        {"PLMN multi LAC, negative",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemPlmn>(item);
             EXPECT_EQ(r.GetPlmnType(), 3u);
             EXPECT_EQ(SysFields::FormatMcc(r.GetMcc()), "310");
             EXPECT_EQ(SysFields::FormatMnc(r.GetMnc()), "410");
             EXPECT_EQ(r.GetNetSelMode(), 1u);
             EXPECT_EQ(r.GetLacs(), (std::vector<uint16_t>{0x1234, 0x0001}));
             EXPECT_EQ(r.GetAcqIndex(), 4u);
         }},
        {"PLMN select mode",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemPlmn>(item);
             EXPECT_EQ(r.GetPlmnType(), 0u);
             EXPECT_EQ(r.GetPlmnSelect(), 1u);
             EXPECT_EQ(r.GetRoamInd(), 1u);
         }},
        {"PLMN single LAC, two-digit MNC",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemPlmn>(item);
             EXPECT_EQ(SysFields::FormatMcc(r.GetMcc()), "001");
             EXPECT_EQ(SysFields::FormatMnc(r.GetMnc()), "01");
             EXPECT_EQ(r.GetLacs(), std::vector<uint16_t>{0xABCD});
             EXPECT_EQ(r.GetNetSelMode(), 0u);
         }},
        {"IS-856 subnet",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS856>(item);
             EXPECT_EQ(r.GetSubnet().ToText(), "2001:db8::/32");
             EXPECT_FALSE(r.GetCommonIncluded());
             EXPECT_EQ(r.GetAcqIndex(), 7u);
         }},
        {"IS-856 with common offset and a 7-bit subnet",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS856>(item);
             EXPECT_TRUE(r.GetCommonIncluded());
             EXPECT_EQ(r.GetCommonOffset(), 0xABCu);
             EXPECT_EQ(r.GetSubnet().ToText(), "a00::/7");
             EXPECT_EQ(r.GetRoamInd(), 9u);
         }},
        {"1x-MCC in the short framing",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS2000Mcc>(item);
             EXPECT_EQ(r.GetSysType(), 14);
             EXPECT_EQ(r.GetMcc(), 532u);
             EXPECT_EQ(r.GetImsi(), 5u);
         }},
        {"1x-MCC with NID not stored keeps its odd identifiers",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemIS2000Mcc>(item);
             EXPECT_EQ(r.GetMcc(), 511u);
             EXPECT_EQ(r.GetImsi(), 0u);  // 127 is no IMSI_11_12
             EXPECT_EQ(r.GetNidIncl(), 0u);
         }},
        {"undefined type 7 keeps its octets",
         [](const CSysItem& item) {
             const auto& r = As<CSysItemSpecial>(item);
             EXPECT_EQ(r.GetSysType(), 7);
             EXPECT_EQ(r.GetLength(), 5u);
             EXPECT_TRUE(r.IsPreferred());
             EXPECT_EQ(r.GetAcqIndex(), 0x012u);
         }},
        {"undefined type 15 of two octets",
         [](const CSysItem& item) { EXPECT_EQ(As<CSysItemSpecial>(item).GetSysType(), 15); }},
    };
    for (const auto& bc : cases) {
        const SysSamples::Sample& c = Find(bc.sample);
        SCOPED_TRACE(c.name);
        CRLFile file(c.bytes);
        file.SetVersion(c.version);
        uint32_t readBits = 0;
        auto item = ReadOne(file, c.version, readBits);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(readBits, c.version < 3 ? c.recordBits : c.recordBits - 9);
        bc.check(*item);
        EXPECT_TRUE(item->IsValid());
        uint32_t writtenBits = 0;
        EXPECT_EQ(WriteOne(*item, c.version, writtenBits), c.bytes);
        EXPECT_EQ(writtenBits, c.recordBits);
        if (c.version >= 3) {
            EXPECT_EQ((item->LongFramingBits() + 7) / 8 * 8, c.recordBits);
        }
    }
}

TEST(SysItemBinary, EditedMccAndImsiAreFoldedIntoSidAndNid) {
    struct Case {
        unsigned mcc, imsi;
        std::vector<uint8_t> bytes;
    };
    const std::vector<Case> cases = {
        {310, 12, {0x7C, 0x40, 0xCD, 0x86, 0x40, 0x00, 0x08}},
        {532, 5, {0x7C, 0x42, 0x85, 0x02, 0xC0, 0x00, 0x08}},
        {999, 99, {0x7C, 0x42, 0xF9, 0xF1, 0xC0, 0x00, 0x08}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mcc);
        CRLFile file(std::vector<uint8_t>{0x7C, 0x42, 0x85, 0x02, 0xC0, 0x00, 0x08});
        file.SetVersion(1);
        uint32_t bits = 0;
        auto item = ReadOne(file, 1, bits);
        auto& mcc = dynamic_cast<CSysItemIS2000Mcc&>(*item);
        mcc.SetMcc(c.mcc);
        mcc.SetImsi(c.imsi);
        EXPECT_EQ(WriteOne(mcc, 1, bits), c.bytes);
        CRLFile again(c.bytes);
        again.SetVersion(1);
        auto back = ReadOne(again, 1, bits);
        EXPECT_EQ(As<CSysItemIS2000Mcc>(*back).GetMcc(), c.mcc);
        EXPECT_EQ(As<CSysItemIS2000Mcc>(*back).GetImsi(), c.imsi);
    }
}

TEST(SysItemBinary, FactoryOffersTheTypesOfEachVersion) {
    struct Case {
        int version;
        int type;
        int length;
        bool made;
    };
    const std::vector<Case> cases = {
        {1, 0, 0, true},   {2, 1, 0, false}, {2, 7, 3, false}, {3, 1, 3, true},   {3, 2, 3, false},
        {3, 3, 3, false},  {3, 4, 3, true},  {3, 15, 3, true}, {4, 2, 3, true},   {5, 3, 3, true},
        {5, 14, 3, false}, {5, 14, 0, true}, {1, 14, 0, true}, {5, 16, 3, false}, {5, -1, 3, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.version) + "/" + std::to_string(c.type));
        auto item = CreateSysItem(c.type, c.version, c.length);
        EXPECT_EQ(item != nullptr, c.made);
        if (item) {
            EXPECT_EQ(item->GetVersion(), c.version);
        }
    }
}

// Records that cannot be written are refused with a data error instead of a damaged file.
TEST(SysItemBinary, RecordsThatCannotBeFramedAreRefused) {
    CRLFile out;
    out.SetVersion(1);
    EXPECT_THROW(CSysItemIS856().Write(out), CDataException);

    CSysItemPlmn plmn;
    plmn.SetPlmnType(3);
    plmn.SetAssnIncluded(1);
    plmn.SetLacs(std::vector<uint16_t>(11, 1));
    EXPECT_FALSE(plmn.IsValid());
    out.SetVersion(4);
    EXPECT_THROW(plmn.Write(out), CDataException);
    plmn.SetLacs(std::vector<uint16_t>(plmn.MaxLacs(), 1));
    EXPECT_EQ(plmn.MaxLacs(), 10u);
    EXPECT_TRUE(plmn.IsValid());

    // A record whose length cannot even hold its own type is malformed.
    for (uint8_t head : {uint8_t{0x0B}, uint8_t{0x03}}) {  // type 7 of length 1 and 0
        CRLFile in(std::vector<uint8_t>{head, 0x80, 0, 0});
        in.SetVersion(3);
        uint32_t bits = 0;
        EXPECT_THROW(ReadOne(in, 3, bits), CDataException);
    }
}

TEST(SysItemBinary, FreshUndefinedRecordCarriesItsCommonFields) {
    auto item = CreateSysItem(9, 5);
    item->SetAcqIndex(300);
    uint32_t bits = 0;
    const auto bytes = WriteOne(*item, 5, bits);
    EXPECT_EQ(bits, 24u);
    CRLFile in(bytes);
    in.SetVersion(5);
    auto back = ReadOne(in, 5, bits);
    EXPECT_EQ(back->GetSysType(), 9);
    EXPECT_EQ(back->GetAcqIndex(), 300u);
    EXPECT_TRUE(back->IsPreferred());
}

}  // namespace
}  // namespace Tarn
