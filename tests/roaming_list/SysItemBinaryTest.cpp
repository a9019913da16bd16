#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemPlmn.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using SysSamples::ReadOne;
using SysSamples::WriteOne;

// Hand-assembled records of every type and framing: each reads into the expected type and fields
// (shown as its text line), is valid, and writes back to the very same bytes.
TEST(SysItemBinary, HandAssembledRecordsReadAndWriteBack) {
    struct Case {
        const char* sample;
        int type;
        const char* text;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"short preferred, NID not stored", 0, "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t"},
        {"short negative, NID stored", 0, "Neg\tSame\tSame\t5\t0\t15903\t48879\t1\t"},
        {"long IS-2000, no association: length 6, no fill", 0,
         "Pref\tNew\tMore\t2\t64\tNo\t0\tNo\tNo\t4\t65535\t0\t"},
        {"MCC-MNC SID/NID with association", 3,
         "Pref\tSame\tSame\t1\t3\tYes\t5\tYes\tNo\t2\t310\t26\t1\t100\t7\t"},
        {"MCC-MNC subnet", 3, "Neg\tNew\tSame\t2\t0\tNo\t0\tNo\tNo\t3\t123\t45\t1\tfe80::/10\t"},
        {"PLMN multi LAC, negative", 2,
         "Neg\tNew\tSame\t4\t0\tNo\t0\tNo\tNo\tPLMN+Multi LAC\t310\t410\tAutomatic\t2\t4660\t1\t"},
        {"PLMN select mode", 2, "Pref\tNew\tSame\t0\t1\tNo\t0\tNo\tNo\tSelect Mode\tAllowed PLMNs\t"},
        {"PLMN single LAC, two-digit MNC", 2,
         "Pref\tNew\tMore\t1\t2\tNo\t0\tNo\tNo\tPLMN+Single LAC\t001\t01\tManual\t43981\t"},
        {"IS-856 subnet", 1, "Neg\tNew\tSame\t7\t0\tNo\t0\tNo\tNo\t2001:db8::/32\t"},
        {"IS-856 with common offset and a 7-bit subnet", 1,
         "Pref\tSame\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748\t"},
        {"1x-MCC in the short framing", 14, "Pref\tNew\tSame\t0\t1\t532\t5\t"},
        {"1x-MCC with NID not stored keeps its odd identifiers", 14,
         "Neg\tNew\tSame\t0\t0\tNo\t0\tNo\tNo\t511\t0\t"},
        {"undefined type 7 keeps its octets", 7,
         "Pref\tNew\tSame\t18\t0\tNo\t0\tNo\tNo\t5\t81245670\t"},
        {"undefined type 15 of two octets", 15, "Pref\tNew\tSame\t0\t0\tNo\t0\tNo\tNo\t2\tFE\t"},
    };
    // clang-format on
    ASSERT_EQ(cases.size(), SysSamples::All().size());
    for (const auto& c : cases) {
        const SysSamples::Sample& s = SysSamples::Find(c.sample);
        SCOPED_TRACE(s.name);
        CRLFile file(s.bytes);
        file.SetVersion(s.version);
        uint32_t readBits = 0;
        auto item = ReadOne(file, s.version, readBits);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(readBits, s.version < 3 ? s.recordBits : s.recordBits - 9);
        EXPECT_EQ(item->GetSysType(), c.type);
        EXPECT_EQ(item->ToText(), c.text);
        EXPECT_TRUE(item->IsValid());
        uint32_t writtenBits = 0;
        EXPECT_EQ(WriteOne(*item, s.version, writtenBits), s.bytes);
        EXPECT_EQ(writtenBits, s.recordBits);
        if (s.version >= 3) {
            EXPECT_EQ((item->LongFramingBits() + 7) / 8 * 8, s.recordBits);
        }
    }
}

// An MCC below 512 goes under SID 15904, one from 512 under 15905; the rest of it and IMSI_11_12
// fill the NID.
TEST(SysItemBinary, EditedMccAndImsiAreFoldedIntoSidAndNid) {
    struct Case {
        unsigned mcc, imsi, sid;
        std::vector<uint8_t> bytes;
    };
    const std::vector<Case> cases = {
        {511, 99, 15904, {0x7C, 0x40, 0xFF, 0xF1, 0xC0, 0x00, 0x08}},
        {512, 0, 15905, {0x7C, 0x42, 0x80, 0x00, 0x40, 0x00, 0x08}},
        {999, 99, 15905, {0x7C, 0x42, 0xF9, 0xF1, 0xC0, 0x00, 0x08}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mcc);
        auto item = SysSamples::ReadSample(SysSamples::Find("1x-MCC in the short framing"));
        auto& mcc = dynamic_cast<CSysItemIS2000Mcc&>(*item);
        mcc.SetMcc(c.mcc);
        mcc.SetImsi(c.imsi);
        EXPECT_EQ(WriteOne(mcc, 1), c.bytes);
        CRLFile again(c.bytes);
        again.SetVersion(1);
        uint32_t bits = 0;
        const auto read = ReadOne(again, 1, bits);
        const auto& back = dynamic_cast<const CSysItemIS2000Mcc&>(*read);
        EXPECT_EQ(back.GetMcc(), c.mcc);
        EXPECT_EQ(back.GetImsi(), c.imsi);
        EXPECT_EQ(back.GetSid(), c.sid);
    }
}

TEST(SysItemBinary, FactoryOffersTheTypesOfEachVersion) {
    struct Case {
        int version, type, length;
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

    // 31 octets hold 10 LACs beside the association fields, not 11.
    CSysItemPlmn plmn;
    plmn.SetPlmnType(3);
    plmn.SetAssnIncluded(1);
    plmn.SetLacs(std::vector<uint16_t>(11, 1));
    EXPECT_FALSE(plmn.IsValid());
    out.SetVersion(4);
    EXPECT_THROW(plmn.Write(out), CDataException);
    plmn.SetLacs(std::vector<uint16_t>(10, 1));
    EXPECT_EQ(plmn.MaxLacs(), 10u);
    EXPECT_TRUE(plmn.IsValid());
    EXPECT_NO_THROW(WriteOne(plmn, 4));

    // A record whose length cannot even hold its own type is malformed; two octets can.
    for (uint8_t head : {uint8_t{0x0B}, uint8_t{0x03}}) {  // type 7 of length 1 and 0
        CRLFile in(std::vector<uint8_t>{head, 0x80, 0, 0});
        in.SetVersion(3);
        uint32_t bits = 0;
        EXPECT_THROW(ReadOne(in, 3, bits), CDataException);
    }
}

}  // namespace
}  // namespace Tarn
