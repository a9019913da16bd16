#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/AcqItemSpecial.h"
#include "roaming_list/DataException.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItemIS2000.h"
#include "tests/roaming_list/AcqItemTestSupport.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using ListSamples::kAcqHead;
using ListSamples::kSysHead;

std::string Header(const std::string& type, const std::string& prefOnly, const std::string& id,
                   const std::string& roamInd) {
    return "\r\n\t\t=============== ROAMING LIST ===============\r\n\r\n\tRoaming List Type:\t\t" +
           type + "\r\n\tPreferred Only:\t\t" + prefOnly + "\r\n\tPreferred List ID:\t\t" + id +
           "\r\n\tDefault Roaming Indicator:\t" + roamInd + "\r\n";
}

CRLData EmptyList(bool prefOnly, uint16_t id, uint8_t roamInd) {
    CRLData data;
    data.GetProperties().prefOnly = prefOnly;
    data.GetProperties().prefListId = id;
    data.GetProperties().defRoamInd = roamInd;
    return data;
}

TEST(RenderText, EmptyListOfEveryVersionStillHasTitlesAndColumnLines) {
    struct Case {
        int version;
        bool as1xEV;
        std::string typeName;
    } cases[] = {
        {1, false, "IS-683A"}, {2, false, "IS-683B"}, {3, false, "IS-683C"},
        {3, true, "IS-683A+1xEV"}, {4, false, "IS-683D"}, {5, false, "IS-683E"},
        {4, true, "IS-683D"},  // only a version 3 list can carry the 1xEV title
    };
    const CRLData data = EmptyList(true, 4660, 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typeName);
        EXPECT_EQ(RenderRoamingListText(data, c.version, c.as1xEV),
                  Header(c.typeName, "TRUE", "4660", "1") + kAcqHead + kSysHead);
    }
    EXPECT_THROW(RenderRoamingListText(data, 6), CTextRenderException);
}

TEST(RenderText, RefusalCarriesMessage162) {
    CTextRenderException e("acquisition record 3: field 1 has no name");
    EXPECT_EQ(e.MessageId(), 162u);
    EXPECT_STREQ(e.what(), "The roaming list is invalid.  Could not be converted to text view.");
}

struct HeaderCase {
    const char* name;
    std::string text;
    int version;       // 0: no manager reads it
    bool is1xEV;
    std::string error; // what() of the failure, or its start
};

TEST(DetectTextVersion, HeaderRules) {
    const std::string tables = kAcqHead + kSysHead;
    const HeaderCase cases[] = {
        {"each version by name", Header("IS-683B", "FALSE", "1", "2") + tables, 2, false, ""},
        {"type name in any case", Header("is-683c", "true", "1", "2") + tables, 3, false, ""},
        {"1xEV is version 3", Header("IS-683A+1xEV", "False", "1", "2") + tables, 3, true, ""},
        {"1xEV in any case", Header("is-683a+1XEV", "TrUe", "0", "0") + tables, 3, true, ""},
        {"bare LF line ends", "\n\tRoaming List Type:\tIS-683E\n\tPreferred Only:\tFALSE\n"
                              "\tPreferred List ID:\t9\n\tDefault Roaming Indicator:\t8\n"
                              "\t\t*********** Acquisition Table ***********\n\tINDEX\n"
                              "\t\t*********** System Table ***********\n INDEX\n",
         5, false, ""},
        {"unknown type name", Header("IS-683F", "TRUE", "1", "2") + tables, 0, false,
         "Invalid rltype. (\"IS-683F\")"},
        {"no type line", "\r\n\tPreferred Only:\tTRUE\r\n", 0, false, "Premature end of file."},
        {"empty text", "", 0, false, "Premature end of file."},
        {"prefonly yes", Header("IS-683A", "YES", "1", "2") + tables, 0, false,
         "Invalid prefonly. (\"YES\")"},
        {"prefonly empty", Header("IS-683A", "", "1", "2") + tables, 0, false,
         "Invalid prefonly."},
        {"header cut after prefonly",
         "\tRoaming List Type:\t\tIS-683A\r\n\tPreferred Only:\t\tTRUE\r\n", 0, false,
         "Premature end of file. (the header ends before its \"Preferred List ID\" line)"},
        {"header without tables", Header("IS-683A", "TRUE", "1", "2"), 0, false,
         "Premature end of file. (the acquisition table is missing)"},
        {"no system table", Header("IS-683A", "TRUE", "1", "2") + kAcqHead, 0, false,
         "Premature end of file. (the system table is missing)"},
        {"system table without column line",
         Header("IS-683A", "TRUE", "1", "2") + kAcqHead +
             "\r\n\t\t*********** System Table ***********\r\n",
         0, false, "Premature end of file. (the system table ends before its column line)"},
        {"acquisition column line missing",
         Header("IS-683A", "TRUE", "1", "2") +
             "\t\t*********** Acquisition Table ***********\r\n\t0\t1\tA\t\r\n" + kSysHead,
         0, false, "Invalid acq table. (line 9: the column line"},
        {"list ID too large", Header("IS-683A", "TRUE", "65536", "2") + tables, 0, false,
         "Unknown error. (Preferred List ID \"65536\""},
        {"roaming indicator negative", Header("IS-683A", "TRUE", "1", "-1") + tables, 0, false,
         "Unknown error. (Default Roaming Indicator \"-1\""},
        {"record line in the system table that is not one",
         Header("IS-683A", "TRUE", "1", "2") + tables + "\tzero\t0\r\n", 0, false,
         "Invalid sys table. (line 16: not a record line"},
        {"record index out of order",
         Header("IS-683A", "TRUE", "1", "2") + tables + "\t1\t0\tPref\r\n", 0, false,
         "Invalid sys table index. (line 16: record 0 expected, found 1)"},
        {"type code beyond a byte",
         Header("IS-683A", "TRUE", "1", "2") + kAcqHead + "\t0\t256\tA\t\r\n" + kSysHead, 0,
         false, "Invalid acq type. (line 12: type \"256\")"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TextDetectResult r = DetectTextVersion(c.text);
        EXPECT_EQ(r.version, c.version);
        EXPECT_EQ(r.is1xEV, c.is1xEV);
        EXPECT_EQ(r.data != nullptr, c.version != 0);
        if (c.version == 0) {
            EXPECT_EQ(r.error.substr(0, c.error.size()), c.error);
        } else {
            EXPECT_TRUE(r.error.empty()) << r.error;
        }
    }
}

TEST(TextManager, ValuesOfTheHeaderAndWhatTheTextDoesNotCarry) {
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        const std::string name = std::string("IS-683") + static_cast<char>('A' + version - 1);
        auto manager = CreateTextManager(version);
        ASSERT_TRUE(manager->ReadText(Header(name, "false", "65535", "255") + kAcqHead + kSysHead));
        const CPropData& prop = manager->GetData().GetProperties();
        EXPECT_FALSE(prop.prefOnly);
        EXPECT_EQ(prop.prefListId, 65535);
        EXPECT_EQ(prop.defRoamInd, 255);
        EXPECT_EQ(prop.ssprPRev, version >= 3 ? 3 : 0);
        EXPECT_EQ(prop.reserved, 0);
        EXPECT_EQ(prop.numCommonSubnet, 0);
    }
}

TEST(TextManager, OnlyTheNamedVersionAcceptsAText) {
    const std::string text = Header("IS-683D", "TRUE", "1", "2") + kAcqHead + kSysHead;
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        auto manager = CreateTextManager(version);
        CRLFile file(std::vector<uint8_t>(text.begin(), text.end()));
        EXPECT_EQ(manager->ValidateFile(file), version == 4);
        EXPECT_EQ(manager->ReadText(text), version == 4);
    }
    CRLManagerTextC c;
    EXPECT_TRUE(c.AcceptsTypeName("IS-683A+1xEV"));
    RLManagerTextE e;
    EXPECT_FALSE(e.AcceptsTypeName("IS-683A+1xEV"));
}

TEST(TextManager, WritesWhatItReadAnd1xEVStaysTitled) {
    const std::string text = Header("IS-683A+1xEV", "TRUE", "77", "3") + kAcqHead + kSysHead;
    CRLFile in(std::vector<uint8_t>(text.begin(), text.end()));
    CRLManagerTextC manager;
    ASSERT_TRUE(manager.ValidateFile(in));
    ASSERT_TRUE(manager.ReadList(in));
    EXPECT_TRUE(manager.Is1xEV());
    EXPECT_EQ(manager.GetTextTypeName(), "IS-683A+1xEV");
    CRLFile out;
    ASSERT_TRUE(manager.WriteList(out));
    EXPECT_EQ(std::string(out.Bytes().begin(), out.Bytes().end()), text);

    manager.Set1xEV(false);
    EXPECT_EQ(manager.WriteText(), Header("IS-683C", "TRUE", "77", "3") + kAcqHead + kSysHead);
    CRLManagerTextD d;
    d.Set1xEV(true);  // not a version 3 manager: stays off
    EXPECT_FALSE(d.Is1xEV());
}

TEST(TextManager, ByteOrderMarkAndUnknownHeaderLinesArePassedOver) {
    const std::string text = "\xEF\xBB\xBF" + Header("IS-683E", "TRUE", "5", "6") +
                             "\tProtocol Revision:\t\t3\r\n" + kAcqHead + kSysHead;
    TextDetectResult r = DetectTextVersion(text);
    ASSERT_TRUE(r.data) << r.error;
    EXPECT_EQ(r.version, 5);
    EXPECT_EQ(r.data->GetProperties().defRoamInd, 6);
}

// A list of two acquisition and two system records, made field by field rather than from text.
CRLData SmallList(int version) {
    CRLData data = EmptyList(true, 100, 1);
    auto blocks = CreateAcqItem(5, version);
    dynamic_cast<CAcqItemPcsCdmaBlocks&>(*blocks).SetBlocks({0, 5});
    auto analog = CreateAcqItem(1, version);
    dynamic_cast<CAcqItemCellularAnalog&>(*analog).SetSystem(3);
    data.GetAcqTable().Items().Add(std::move(blocks));
    data.GetAcqTable().Items().Add(std::move(analog));

    auto pref = CreateSysItem(0, version);
    auto& p = dynamic_cast<CSysItemIS2000&>(*pref);
    p.SetPriority(1);
    p.SetRoamInd(7);
    p.SetSid(4096);
    p.SetNidIncl(1);
    p.SetNid(12);
    p.SetAssnIncluded(1);
    p.SetAssnTag(9);
    p.SetPnAssn(1);
    auto neg = CreateSysItem(0, version);
    auto& n = dynamic_cast<CSysItemIS2000&>(*neg);
    n.SetNegPref(0);
    n.SetGeography(1);
    n.SetAcqIndex(1);
    n.SetSid(4097);
    n.SetNidIncl(0);
    n.SetNid(65535);
    data.GetSysTable().Items().Add(std::move(pref));
    data.GetSysTable().Items().Add(std::move(neg));
    return data;
}

TEST(RenderText, SmallListOfEveryVersionExactly) {
    const std::string acqLines = "\t0\t5\tA\tF\t\r\n\t1\t1\tBoth\t\r\n";
    // Versions 1 and 2 have no association fields, so the one set above is not shown.
    const std::string shortSys =
        "\t0\t0\tPref\tNew\tMore\t0\t7\t4096\t12\t1\t\r\n"
        "\t1\t0\tNeg\tSame\tSame\t1\t0\t4097\t65535\t0\t\r\n";
    const std::string longSys =
        "\t0\t0\tPref\tNew\tMore\t0\t7\tYes\t9\tYes\tNo\t4096\t12\t1\t\r\n"
        "\t1\t0\tNeg\tSame\tSame\t1\t0\tNo\t0\tNo\tNo\t4097\t65535\t0\t\r\n";
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        const CRLData data = SmallList(version);
        const std::string expected = Header(VersionName(version), "TRUE", "100", "1") + kAcqHead +
                                     acqLines + kSysHead + (version < 3 ? shortSys : longSys);
        EXPECT_EQ(RenderRoamingListText(data, version), expected);

        // Read back, it is the same list: same text, same bytes.
        TextDetectResult back = DetectTextVersion(expected);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(back.version, version);
        EXPECT_EQ(RenderRoamingListText(*back.data, version), expected);
        const std::vector<uint8_t> bytes = ListSamples::Binary(data, version);
        EXPECT_FALSE(bytes.empty());
        EXPECT_EQ(ListSamples::Binary(*back.data, version), bytes);
    }
}

std::vector<std::string> SplitFields(const std::string& text) {
    std::vector<std::string> out;
    size_t start = 0;
    for (size_t tab; (tab = text.find('\t', start)) != std::string::npos; start = tab + 1)
        out.push_back(text.substr(start, tab - start));
    if (start < text.size()) out.push_back(text.substr(start));
    return out;
}

const std::string kOdd1xMcc = "1x-MCC with NID not stored keeps its odd identifiers";

// Every record type a version has, with values off their defaults, through text and back: the
// text holds everything the binary form holds.
TEST(TextRoundTrip, EveryRecordTypeOfEveryVersionKeepsItsBytes) {
    const auto acqSamples = AcqTest::SampleRecords();
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLData data = EmptyList(false, 65535, 255);
        for (const auto& sample : acqSamples) {
            if (sample->GetAcqType() == kAcqTypeSpecial) continue;  // see the next test
            auto item = CreateAcqItem(sample->GetAcqType(), version);
            if (!item) continue;
            item->FromText(SplitFields(sample->ToText()));
            data.GetAcqTable().Items().Add(std::move(item));
        }
        for (const auto& sample : SysSamples::All()) {
            // A 1x-MCC record shows only MCC and IMSI_11_12: see the test after the next.
            if (sample.version != version || sample.name == kOdd1xMcc) continue;
            auto item = SysSamples::ReadSample(sample);
            ASSERT_TRUE(item) << sample.name;
            data.GetSysTable().Items().Add(std::move(item));
        }
        ASSERT_GT(data.GetSysTable().GetSize(), 0u);
        const std::string text = RenderRoamingListText(data, version);
        TextDetectResult back = DetectTextVersion(text);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(back.data->GetAcqTable().GetSize(), data.GetAcqTable().GetSize());
        EXPECT_EQ(RenderRoamingListText(*back.data, version), text);
        const std::vector<uint8_t> bytes = ListSamples::Binary(data, version);
        EXPECT_FALSE(bytes.empty());
        EXPECT_EQ(ListSamples::Binary(*back.data, version), bytes);
    }
}

// The text of an undefined acquisition record carries only its length: read back, it holds as
// many zero octets. This is the one value the text form cannot carry.
TEST(TextRoundTrip, UndefinedAcquisitionRecordComesBackWithZeroOctets) {
    CRLData data = SmallList(5);
    auto special = CreateAcqItem(kAcqTypeSpecial, 5);
    dynamic_cast<CAcqItemSpecial&>(*special).SetData({0xDE, 0xAD, 0x01});
    data.GetAcqTable().Items().Add(std::move(special));
    const std::string text = RenderRoamingListText(data, 5);
    EXPECT_NE(text.find("\t2\t253\t3\t\r\n"), std::string::npos);
    TextDetectResult back = DetectTextVersion(text);
    ASSERT_TRUE(back.data) << back.error;
    const auto& read = dynamic_cast<const CAcqItemSpecial&>(*back.data->GetAcqTable().Items().GetAt(2));
    EXPECT_EQ(read.GetData(), (std::vector<uint8_t>{0, 0, 0}));
}

// A 1x-MCC record's text holds its MCC and IMSI_11_12, from which its SID and NID are made anew
// with the NID stored. A record read from a file with its NID not stored (or with identifiers no
// MCC maps back to) comes back with the same MCC and IMSI_11_12 but other bytes.
TEST(TextRoundTrip, OneXMccRecordKeepsItsMccAndImsiOnly) {
    for (const auto& sample : SysSamples::All()) {
        if (sample.name != kOdd1xMcc) continue;
        CRLData data = SmallList(sample.version);
        data.GetSysTable().Items().Add(SysSamples::ReadSample(sample));
        const std::string text = RenderRoamingListText(data, sample.version);
        TextDetectResult back = DetectTextVersion(text);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(RenderRoamingListText(*back.data, sample.version), text);
        const auto& before = dynamic_cast<const CSysItemIS2000Mcc&>(*data.GetSysTable().Items().GetAt(2));
        const auto& after = dynamic_cast<const CSysItemIS2000Mcc&>(*back.data->GetSysTable().Items().GetAt(2));
        EXPECT_EQ(after.GetMcc(), before.GetMcc());
        EXPECT_EQ(after.GetImsi(), before.GetImsi());
        EXPECT_EQ(before.GetNidIncl(), 0u);
        EXPECT_EQ(after.GetNidIncl(), 1u);
        EXPECT_NE(AcqTest::Bytes(after, sample.version), AcqTest::Bytes(before, sample.version));
    }
}

TEST(TextManager, RunsOfTabsBlanksAndBlankLinesChangeNothing) {
    const std::string canonical = ListSamples::Text(
        3, {"5\tA\tF", "11\t17\t1459"}, {"1\tPref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748"});
    const std::string loose =
        Header("IS-683C", "TRUE", "100", "1") + kAcqHead + "\t0\t\t5\t\tA\t\t\tF\r\n\r\n" +
        "  1 \t 11\t17 \t1459\t\t\t\r\n" + kSysHead +
        "0\t1\tPref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748\r\n\r\n\r\n";
    TextDetectResult a = DetectTextVersion(canonical);
    TextDetectResult b = DetectTextVersion(loose);
    ASSERT_TRUE(a.data) << a.error;
    ASSERT_TRUE(b.data) << b.error;
    EXPECT_EQ(RenderRoamingListText(*b.data, 3), canonical);
}

TEST(TextManager, RecordFaultsNameTheirLine) {
    std::vector<std::string> tooMany;
    for (int i = 0; i < 512; ++i) tooMany.push_back("1\tA");
    struct Case {
        const char* name;
        std::string text;
        std::string error;
    } cases[] = {
        {"analog with two fields", ListSamples::Text(1, {"1\tA\tB"}, {}),
         "Invalid acq table. (line 12)"},
        {"name not in its list", ListSamples::Text(1, {"1\tC"}, {}),
         "Invalid system. (line 12) (\"C\")"},
        {"type the version has no class for", ListSamples::Text(2, {"10\t1\t25"}, {}),
         "Invalid acq type. (line 12: type 10 is unknown in this version)"},
        {"IS-856 in IS-683B",
         ListSamples::Text(2, {"1\tA"}, {"1\tPref\tNew\tSame\t0\t9\ta00::/7"}),
         "Invalid sys rec type. (line 17: type 1 is unknown in this version)"},
        {"acquisition index skipped",
         Header("IS-683A", "TRUE", "1", "1") + kAcqHead + "\t0\t1\tA\t\r\n\t2\t1\tB\t\r\n" +
             kSysHead,
         "Invalid acq table index. (line 13: record 1 expected, found 2)"},
        {"system record with too few fields", ListSamples::Text(3, {"1\tA"}, {"0\tPref\tNew"}),
         "Invalid sys table. (line 17)"},
        {"512 acquisition records", ListSamples::Text(1, tooMany, {}),
         "Invalid acq table. (line 523: more than 511 records in the acquisition table)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TextDetectResult r = DetectTextVersion(c.text);
        EXPECT_FALSE(r.data);
        EXPECT_EQ(r.error.substr(0, c.error.size()), c.error);
    }
}

TEST(RenderText, ValueWithoutANameIsRefusedWithMessage162) {
    CRLData data = SmallList(2);
    dynamic_cast<CAcqItemCellularAnalog&>(*data.GetAcqTable().Items().GetAt(1)).SetSystem(2);
    try {
        RenderRoamingListText(data, 2);
        FAIL() << "rendered a value that has no name";
    } catch (const CTextRenderException& e) {
        EXPECT_EQ(e.MessageId(), 162u);
        EXPECT_EQ(e.Detail(), "acquisition record 1: field 1 has no name");
    }
    CRLManagerTextB manager;
    auto copy = std::make_unique<CRLData>(data);
    manager.AttachData(copy);
    CRLFile file;
    EXPECT_FALSE(manager.WriteList(file));
    EXPECT_EQ(manager.GetLastError(),
              "The roaming list is invalid.  Could not be converted to text view.");
}

}  // namespace
}  // namespace Tarn
