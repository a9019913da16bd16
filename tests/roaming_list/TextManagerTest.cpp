#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/DataException.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManagerText.h"

namespace Tarn {
namespace {

const std::string kAcqHead =
    "\r\n\t\t*********** Acquisition Table ***********\r\n\r\n"
    "\tINDEX\tACQ TYPE\tCH1\tCH2\tCH3\tCH4\tCH5\tCH6\tCH7 - - CH31\r\n";
const std::string kSysHead =
    "\r\n\t\t*********** System Table ***********\r\n\r\n"
    "INDEX\tSYS TYPE\tNEG/PREF\tGEO\tPRI\tACQ IND\tROAM IND\tASSN INC\tASSN TAG\tPN ASSN\t"
    "DATA ASSN\tSID, NID / MCC, IMSI_11_12 / SUBNETID / PLMN TYPE, PLMN, LAC\r\n";

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

}  // namespace
}  // namespace Tarn
