// The text form of whole lists; the golden lists pin the text of every record type in every
// version, so these tests take what they do not: the header's edges, empty tables, the reader's
// refusals and the spellings a line may take.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemSpecial.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItemIS2000.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using ListSamples::Header;
using ListSamples::kAcqHead;
using ListSamples::kSysHead;
using ListSamples::Text;

// Empty tables keep their titles and column lines; only version 3 takes the 1xEV title, and a
// list read back carries protocol revision 3 from version 3 on.
TEST(RenderText, EmptyListsOfEveryVersion) {
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLData data;
        data.GetProperties().prefOnly = true;
        data.GetProperties().prefListId = 100;
        data.GetProperties().defRoamInd = 1;
        const std::string text =
            Header(VersionName(version), "TRUE", "100", "1") + kAcqHead + kSysHead;
        EXPECT_EQ(RenderRoamingListText(data, version), text);
        const std::string shownType = version == 3 ? "IS-683A+1xEV" : VersionName(version);
        EXPECT_EQ(RenderRoamingListText(data, version, true),
                  Header(shownType, "TRUE", "100", "1") + kAcqHead + kSysHead);
        TextDetectResult back = DetectTextVersion(text);
        ASSERT_TRUE(back.data) << back.error;
        EXPECT_EQ(back.version, version);
        EXPECT_EQ(back.data->GetProperties().ssprPRev, version >= 3 ? 3 : 0);
    }
}

// The two values the text form does not carry, and what a list read back holds instead.
TEST(TextRoundTrip, ValuesTheTextCannotCarry) {
    const auto& sample = SysSamples::Find("1x-MCC with NID not stored keeps its odd identifiers");
    auto data = ListSamples::List(sample.version, {"253\t3"}, {});
    dynamic_cast<CAcqItemSpecial&>(*data->GetAcqTable().Items().GetAt(0)).SetData({0xDE, 0xAD, 1});
    data->GetSysTable().Items().Add(SysSamples::ReadSample(sample));
    TextDetectResult back = DetectTextVersion(RenderRoamingListText(*data, sample.version));
    ASSERT_TRUE(back.data) << back.error;

    const auto& octets =
        dynamic_cast<const CAcqItemSpecial&>(*back.data->GetAcqTable().Items().GetAt(0));
    EXPECT_EQ(octets.GetData(), (std::vector<uint8_t>{0, 0, 0}));
    const auto& before =
        dynamic_cast<const CSysItemIS2000Mcc&>(*data->GetSysTable().Items().GetAt(0));
    const auto& after =
        dynamic_cast<const CSysItemIS2000Mcc&>(*back.data->GetSysTable().Items().GetAt(0));
    EXPECT_EQ(after.GetMcc(), before.GetMcc());
    EXPECT_EQ(after.GetImsi(), before.GetImsi());
    EXPECT_EQ(before.GetNidIncl(), 0u);
    EXPECT_EQ(after.GetNidIncl(), 1u);
}

TEST(DetectTextVersion, AcceptsAndRefuses) {
    const std::string empty = kAcqHead + kSysHead;
    const std::string sysLine = "0\tNeg\tNew\tSame\t0\t0\t1\t65535\t0";
    const std::vector<std::string> mostAcq(511, "1\tA");
    const std::vector<std::string> mostSys(16383, sysLine);
    std::vector<std::string> tooManySys = mostSys;
    tooManySys.push_back(sysLine);
    std::vector<std::string> tooManyAcq = mostAcq;
    tooManyAcq.push_back("1\tA");
    struct Case {
        const char* name;
        std::string text;
        int version;  // 0: refused
        bool is1xEV;
        std::string error;  // the start of the refusal
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"names in any case", Header("is-683c", "true", "1", "2") + empty, 3, false, ""},
        {"1xEV is version 3", Header("is-683a+1XEV", "False", "0", "0") + empty, 3, true, ""},
        {"byte order mark, bare LF, unknown header line",
         "\xEF\xBB\xBF\tRoaming List Type:\tIS-683E\n\tPreferred Only:\tFALSE\n\tProtocol:\t3\n"
         "\tPreferred List ID:\t9\n\tDefault Roaming Indicator:\t8\n"
         "\t\t*********** Acquisition Table ***********\n\tINDEX\n"
         "\t\t*********** System Table ***********\n INDEX\n",
         5, false, ""},
        {"unknown type", Header("IS-683F", "TRUE", "1", "2") + empty, 0, false, "Invalid rltype. (\"IS-683F\")"},
        {"prefonly yes", Header("IS-683A", "YES", "1", "2") + empty, 0, false, "Invalid prefonly. (\"YES\")"},
        {"header cut short", "\tRoaming List Type:\tIS-683A\r\n\tPreferred Only:\tTRUE\r\n", 0, false,
         "Premature end of file. (the header ends before its \"Preferred List ID\" line)"},
        {"no system table", Header("IS-683A", "TRUE", "1", "2") + kAcqHead, 0, false,
         "Premature end of file. (the system table is missing)"},
        {"no acquisition column line",
         Header("IS-683A", "TRUE", "1", "2") + "\t\t*********** Acquisition Table ***********\r\n\t0\t1\tA\t\r\n" + kSysHead,
         0, false, "Invalid acq table. (line 9: the column line"},
        {"list ID 65535, roaming indicator 255", Header("IS-683A", "TRUE", "65535", "255") + empty, 1, false, ""},
        {"list ID 65536", Header("IS-683A", "TRUE", "65536", "2") + empty, 0, false,
         "Unknown error. (Preferred List ID \"65536\" is not a number from 0 to 65535)"},
        {"list ID empty", Header("IS-683A", "TRUE", "", "2") + empty, 0, false,
         "Unknown error. (Preferred List ID \"\" is not a number from 0 to 65535)"},
        {"roaming indicator 256", Header("IS-683A", "TRUE", "0", "256") + empty, 0, false,
         "Unknown error. (Default Roaming Indicator \"256\" is not a number from 0 to 255)"},
        {"roaming indicator -1", Header("IS-683A", "TRUE", "0", "-1") + empty, 0, false,
         "Unknown error. (Default Roaming Indicator \"-1\""},
        {"index skipped", Header("IS-683A", "TRUE", "1", "2") + empty + "\t1\t0\tPref\r\n", 0, false,
         "Invalid sys table index. (line 16: record 0 expected, found 1)"},
        {"type the version lacks", Text(2, {"10\t1\t25"}, {}), 0, false,
         "Invalid acq type. (line 12: type 10 is unknown in this version)"},
        {"type 255 is no type", Text(5, {"255\t1"}, {}), 0, false,
         "Invalid acq type. (line 12: type 255 is unknown in this version)"},
        {"type 256 is no number of a type", Text(5, {"256\t1"}, {}), 0, false,
         "Invalid acq type. (line 12: type \"256\")"},
        {"system type the version lacks", Text(2, {"1\tA"}, {"1\tPref\tNew\tSame\t0\t9\tx"}), 0, false,
         "Invalid sys rec type. (line 17: type 1 is unknown in this version)"},
        {"token count of the record", Text(1, {"1\tA\tB"}, {}), 0, false, "Invalid acq table. (line 12)"},
        {"name not in its list", Text(1, {"1\tC"}, {}), 0, false, "Invalid system. (line 12) (\"C\")"},
        {"511 acquisition records", Text(1, mostAcq, {}), 1, false, ""},
        {"512 acquisition records", Text(1, tooManyAcq, {}), 0, false,
         "Invalid acq table. (line 523: more than 511 records in the acquisition table)"},
        {"16383 system records", Text(1, {}, mostSys), 1, false, ""},
        {"16384 system records", Text(1, {}, tooManySys), 0, false,
         "Invalid sys table. (line 16399: more than 16383 records in the system table)"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TextDetectResult r = DetectTextVersion(c.text);
        EXPECT_EQ(r.version, c.version);
        EXPECT_EQ(r.is1xEV, c.is1xEV);
        EXPECT_EQ(r.data != nullptr, c.version != 0);
        EXPECT_EQ(r.error.substr(0, c.error.size()), c.error);
        if (r.data && c.version == 1) {
            EXPECT_EQ(RenderRoamingListText(*r.data, 1), c.text);  // every value kept
        }
    }
}

// A record line may be spelled with any runs of tabs, blanks around its fields, blank lines and
// blank pieces between them; a blank inside a field stays part of it.
TEST(TextLine, SpellingsOfOneRecordRead) {
    const std::string canonical =
        Text(3, {"5\tA\tF"}, {"0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1"});
    struct Case {
        const char* line;   // the whole system record line, without its CR LF
        const char* error;  // empty: reads as the canonical record
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"\t0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1\t", ""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", ""},
        {"   0 \t 0 \t Pref \t New\t More\t0 \t7\tNo\t0\tNo\tNo\t4096\t12\t1", ""},
        {"\t\t0\t\t\t0\tPref\t\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t\t12\t1\t\t\t", ""},
        {"0\t \t0\t   \tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1\t \t  ", ""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1 \r", ""},
        {"\r\n \t\r\n0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1\r\n\r\n", ""},
        {"0\t0\tPr ef\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", "\"Pr ef\""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t40 96\t12\t1", "SID \"40 96\""},
        {"0\t0 1\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", "type \"0 1\""},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const std::string text = Header("IS-683C") + kAcqHead + "\t0\t5\tA\tF\t\r\n" +
                                 kSysHead + c.line + "\r\n";
        const TextDetectResult r = DetectTextVersion(text);
        if (*c.error == '\0') {
            ASSERT_TRUE(r.data) << r.error;
            EXPECT_EQ(RenderRoamingListText(*r.data, 3), canonical);
        } else {
            EXPECT_FALSE(r.data);
            EXPECT_NE(r.error.find(c.error), std::string::npos) << r.error;
        }
    }
}

TEST(TextManager, ValueWithoutANameIsRefusedWithMessage162) {
    auto data = ListSamples::List(2, {"1\tA", "1\tB"}, {});
    dynamic_cast<CAcqItemCellularAnalog&>(*data->GetAcqTable().Items().GetAt(1)).SetSystem(2);
    try {
        RenderRoamingListText(*data, 2);
        ADD_FAILURE() << "rendered a value that has no name";
    } catch (const CTextRenderException& e) {
        EXPECT_EQ(e.MessageId(), 162u);
        EXPECT_EQ(e.Detail(), "acquisition record 1: field 1 has no name");
    }
    CRLManagerTextB manager;
    manager.AttachData(data);
    CRLFile file;
    EXPECT_FALSE(manager.WriteList(file));
    EXPECT_EQ(manager.GetLastError(),
              "The roaming list is invalid.  Could not be converted to text view.");
}

}  // namespace
}  // namespace Tarn
