#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/AcqItemSpecial.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItemIS2000.h"
#include "tests/roaming_list/AcqItemTestSupport.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using ListSamples::Binary;
using ListSamples::kAcqHead;
using ListSamples::kSysHead;
using ListSamples::Text;

std::string Header(const std::string& type, const std::string& prefOnly, const std::string& id,
                   const std::string& roamInd) {
    return "\r\n\t\t=============== ROAMING LIST ===============\r\n\r\n\tRoaming List Type:\t\t" +
           type + "\r\n\tPreferred Only:\t\t" + prefOnly + "\r\n\tPreferred List ID:\t\t" + id +
           "\r\n\tDefault Roaming Indicator:\t" + roamInd + "\r\n";
}

// Two acquisition and two system records, made field by field rather than from text.
CRLData SmallList(int version) {
    CRLData data;
    data.GetProperties().prefOnly = true;
    data.GetProperties().prefListId = 100;
    data.GetProperties().defRoamInd = 1;
    auto blocks = CreateAcqItem(5, version);
    dynamic_cast<CAcqItemPcsCdmaBlocks&>(*blocks).SetBlocks({0, 5});
    auto analog = CreateAcqItem(1, version);
    dynamic_cast<CAcqItemCellularAnalog&>(*analog).SetSystem(3);
    data.GetAcqTable().Items().Add(std::move(blocks));
    data.GetAcqTable().Items().Add(std::move(analog));
    for (int i = 0; i < 2; ++i) {
        auto item = CreateSysItem(0, version);
        auto& s = dynamic_cast<CSysItemIS2000&>(*item);
        s.SetNegPref(i == 0);
        s.SetGeography(i);
        s.SetPriority(i == 0);
        s.SetAcqIndex(i);
        s.SetRoamInd(i == 0 ? 7 : 0);
        s.SetSid(4096 + i);
        s.SetNidIncl(i == 0);
        s.SetNid(i == 0 ? 12 : 65535);
        s.SetAssnIncluded(i == 0);
        s.SetAssnTag(i == 0 ? 9 : 0);
        s.SetPnAssn(i == 0);
        data.GetSysTable().Items().Add(std::move(item));
    }
    return data;
}

TEST(RenderText, SmallListOfEveryVersionExactlyAndReadBack) {
    const std::string acqLines = "\t0\t5\tA\tF\t\r\n\t1\t1\tBoth\t\r\n";
    // Versions 1 and 2 have no association fields, so the one set above is not shown.
    const std::string shortSys = "\t0\t0\tPref\tNew\tMore\t0\t7\t4096\t12\t1\t\r\n"
                                 "\t1\t0\tNeg\tSame\tSame\t1\t0\t4097\t65535\t0\t\r\n";
    const std::string longSys = "\t0\t0\tPref\tNew\tMore\t0\t7\tYes\t9\tYes\tNo\t4096\t12\t1\t\r\n"
                                "\t1\t0\tNeg\tSame\tSame\t1\t0\tNo\t0\tNo\tNo\t4097\t65535\t0\t\r\n";
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLData data = SmallList(version);
        const std::string head = Header(VersionName(version), "TRUE", "100", "1");
        const std::string text = head + kAcqHead + acqLines + kSysHead + (version < 3 ? shortSys : longSys);
        EXPECT_EQ(RenderRoamingListText(data, version), text);

        TextDetectResult back = DetectTextVersion(text);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(back.version, version);
        EXPECT_EQ(back.data->GetProperties().ssprPRev, version >= 3 ? 3 : 0);
        EXPECT_EQ(RenderRoamingListText(*back.data, version), text);
        EXPECT_FALSE(Binary(data, version).empty());
        EXPECT_EQ(Binary(*back.data, version), Binary(data, version));

        // Empty tables keep their titles and column lines; only version 3 takes the 1xEV title.
        data.GetAcqTable().Items().Clear();
        data.GetSysTable().Items().Clear();
        const std::string shownType = version == 3 ? "IS-683A+1xEV" : VersionName(version);
        EXPECT_EQ(RenderRoamingListText(data, version, true),
                  Header(shownType, "TRUE", "100", "1") + kAcqHead + kSysHead);
    }
}

std::vector<std::string> SplitFields(const std::string& text) {
    std::vector<std::string> out;
    size_t start = 0;
    for (size_t tab; (tab = text.find('\t', start)) != std::string::npos; start = tab + 1)
        out.push_back(text.substr(start, tab - start));
    return out;
}

const std::string kOdd1xMcc = "1x-MCC with NID not stored keeps its odd identifiers";

// Every record type a version has, off its defaults, through text and back to the same bytes.
TEST(TextRoundTrip, EveryRecordTypeOfEveryVersionKeepsItsBytes) {
    const auto acqSamples = AcqTest::SampleRecords();
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLData data;
        for (const auto& sample : acqSamples) {
            auto item = CreateAcqItem(sample->GetAcqType(), version);
            if (!item || sample->GetAcqType() == kAcqTypeSpecial) continue;  // see below
            item->FromText(SplitFields(sample->ToText()));
            data.GetAcqTable().Items().Add(std::move(item));
        }
        for (const auto& sample : SysSamples::All())
            if (sample.version == version && sample.name != kOdd1xMcc)
                data.GetSysTable().Items().Add(SysSamples::ReadSample(sample));
        const std::string text = RenderRoamingListText(data, version);
        TextDetectResult back = DetectTextVersion(text);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(RenderRoamingListText(*back.data, version), text);
        EXPECT_FALSE(Binary(data, version).empty());
        EXPECT_EQ(Binary(*back.data, version), Binary(data, version));
    }
}

// The two values the text form does not carry, and what a list read back holds instead.
TEST(TextRoundTrip, ValuesTheTextCannotCarry) {
    for (const auto& sample : SysSamples::All()) {
        if (sample.name != kOdd1xMcc) continue;
        CRLData data = SmallList(sample.version);
        auto special = CreateAcqItem(kAcqTypeSpecial, sample.version);
        dynamic_cast<CAcqItemSpecial&>(*special).SetData({0xDE, 0xAD, 0x01});
        data.GetAcqTable().Items().Add(std::move(special));
        data.GetSysTable().Items().Add(SysSamples::ReadSample(sample));
        TextDetectResult back = DetectTextVersion(RenderRoamingListText(data, sample.version));
        ASSERT_TRUE(back.data) << back.error;

        const auto& octets = dynamic_cast<const CAcqItemSpecial&>(*back.data->GetAcqTable().Items().GetAt(2));
        EXPECT_EQ(octets.GetData(), (std::vector<uint8_t>{0, 0, 0}));
        const auto& before = dynamic_cast<const CSysItemIS2000Mcc&>(*data.GetSysTable().Items().GetAt(2));
        const auto& after = dynamic_cast<const CSysItemIS2000Mcc&>(*back.data->GetSysTable().Items().GetAt(2));
        EXPECT_EQ(after.GetMcc(), before.GetMcc());
        EXPECT_EQ(after.GetImsi(), before.GetImsi());
        EXPECT_EQ(before.GetNidIncl(), 0u);
        EXPECT_EQ(after.GetNidIncl(), 1u);
    }
}

TEST(DetectTextVersion, AcceptsAndRefuses) {
    const std::string empty = kAcqHead + kSysHead;
    std::vector<std::string> tooMany(512, "1\tA");
    struct Case {
        const char* name;
        std::string text;
        int version;        // 0: refused
        bool is1xEV;
        std::string error;  // the start of the refusal
    } cases[] = {
        {"names in any case", Header("is-683c", "true", "1", "2") + empty, 3, false, ""},
        {"1xEV is version 3", Header("is-683a+1XEV", "False", "0", "0") + empty, 3, true, ""},
        {"byte order mark, bare LF, unknown header line",
         "\xEF\xBB\xBF\tRoaming List Type:\tIS-683E\n\tPreferred Only:\tFALSE\n\tProtocol:\t3\n"
         "\tPreferred List ID:\t9\n\tDefault Roaming Indicator:\t8\n"
         "\t\t*********** Acquisition Table ***********\n\tINDEX\n"
         "\t\t*********** System Table ***********\n INDEX\n",
         5, false, ""},
        {"unknown type", Header("IS-683F", "TRUE", "1", "2") + empty, 0, false,
         "Invalid rltype. (\"IS-683F\")"},
        {"prefonly yes", Header("IS-683A", "YES", "1", "2") + empty, 0, false,
         "Invalid prefonly. (\"YES\")"},
        {"header cut short", "\tRoaming List Type:\tIS-683A\r\n\tPreferred Only:\tTRUE\r\n", 0,
         false, "Premature end of file. (the header ends before its \"Preferred List ID\" line)"},
        {"no system table", Header("IS-683A", "TRUE", "1", "2") + kAcqHead, 0, false,
         "Premature end of file. (the system table is missing)"},
        {"no acquisition column line",
         Header("IS-683A", "TRUE", "1", "2") +
             "\t\t*********** Acquisition Table ***********\r\n\t0\t1\tA\t\r\n" + kSysHead,
         0, false, "Invalid acq table. (line 9: the column line"},
        {"list ID too large", Header("IS-683A", "TRUE", "65536", "2") + empty, 0, false,
         "Unknown error. (Preferred List ID \"65536\""},
        {"index skipped", Header("IS-683A", "TRUE", "1", "2") + empty + "\t1\t0\tPref\r\n", 0,
         false, "Invalid sys table index. (line 16: record 0 expected, found 1)"},
        {"type the version lacks", Text(2, {"10\t1\t25"}, {}), 0, false,
         "Invalid acq type. (line 12: type 10 is unknown in this version)"},
        {"system type the version lacks", Text(2, {"1\tA"}, {"1\tPref\tNew\tSame\t0\t9\tx"}), 0,
         false, "Invalid sys rec type. (line 17: type 1 is unknown in this version)"},
        {"token count of the record", Text(1, {"1\tA\tB"}, {}), 0, false,
         "Invalid acq table. (line 12)"},
        {"name not in its list", Text(1, {"1\tC"}, {}), 0, false,
         "Invalid system. (line 12) (\"C\")"},
        {"512 acquisition records", Text(1, tooMany, {}), 0, false,
         "Invalid acq table. (line 523: more than 511 records in the acquisition table)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TextDetectResult r = DetectTextVersion(c.text);
        EXPECT_EQ(r.version, c.version);
        EXPECT_EQ(r.is1xEV, c.is1xEV);
        EXPECT_EQ(r.data != nullptr, c.version != 0);
        EXPECT_EQ(r.error.substr(0, c.error.size()), c.error);
    }
}

TEST(TextManager, RunsOfTabsBlanksAndBlankLinesChangeNothing) {
    const std::string canonical = Text(3, {"5\tA\tF", "11\t17\t1459"},
                                       {"1\tPref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748"});
    const std::string loose = Header("IS-683C", "TRUE", "100", "1") + kAcqHead +
                              "\t0\t\t5\t\tA\t\t\tF\r\n\r\n  1 \t 11\t17 \t1459\t\t\t\r\n" + kSysHead +
                              "0\t1\tPref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748\r\n\r\n";
    TextDetectResult r = DetectTextVersion(loose);
    ASSERT_TRUE(r.data) << r.error;
    EXPECT_EQ(RenderRoamingListText(*r.data, 3), canonical);
}

TEST(TextManager, ValueWithoutANameIsRefusedWithMessage162) {
    CRLData data = SmallList(2);
    dynamic_cast<CAcqItemCellularAnalog&>(*data.GetAcqTable().Items().GetAt(1)).SetSystem(2);
    try {
        RenderRoamingListText(data, 2);
        ADD_FAILURE() << "rendered a value that has no name";
    } catch (const CTextRenderException& e) {
        EXPECT_EQ(e.MessageId(), 162u);
        EXPECT_EQ(e.Detail(), "acquisition record 1: field 1 has no name");
    }
    CRLManagerTextB manager;
    auto copy = std::make_unique<CRLData>(data);
    manager.AttachData(copy);
    CRLFile file;
    EXPECT_FALSE(manager.WriteList(file));
    EXPECT_EQ(manager.GetLastError(), "The roaming list is invalid.  Could not be converted to text view.");
}

}  // namespace
}  // namespace Tarn
