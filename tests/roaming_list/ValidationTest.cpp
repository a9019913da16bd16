#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "grid/MemoryGrid.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/Validation.h"
#include "tests/roaming_list/ListSamples.h"

namespace Tarn {
namespace {

TEST(CheckHeaderFields, RoamingIndicatorFirstThenListId) {
    const std::string roamText = "The default roaming indicator value is out of range (0-255).";
    const std::string idText = "The Preferred List ID value is out of range (0-65535).";
    struct Case {
        const char* roamInd;
        const char* listId;
        std::string text;  // empty: accepted
    } cases[] = {
        {"", "", roamText},     {"256", "7", roamText}, {"-1", "7", roamText},  {"1", "", idText},
        {"1", "65536", idText}, {"1", "12a", idText},   {" 255 ", "65535", ""}, {"0", "0", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.roamInd) + "/" + c.listId);
        CPropData prop;
        prop.defRoamInd = 9;
        prop.prefListId = 9;
        auto issue = CheckHeaderFields(c.roamInd, c.listId, &prop);
        EXPECT_EQ(issue ? issue->text : "", c.text);
        EXPECT_EQ(issue ? issue->messageId : 0u, c.text.empty()       ? 0u
                                                 : c.text == roamText ? 160u
                                                                      : 161u);
        EXPECT_EQ(prop.defRoamInd, issue ? 9 : std::stoi(c.roamInd));
        EXPECT_EQ(prop.prefListId, issue ? 9 : std::stoi(c.listId));
    }
}

struct Where {
    unsigned message;
    int row;
    int column;
    bool operator==(const Where&) const = default;
};

std::vector<Where> Places(const ValidationResult& r) {
    std::vector<Where> out;
    for (const auto& i : r.issues) out.push_back({i.messageId, i.row, i.column});
    return out;
}

const std::string kCommon = "Pref\tNew\tSame\t";
const std::string kTail = "\t1\tNo\t0\tNo\tNo\t";

// An IS-683E list with a record of each kind of fault, beside the records just inside each rule.
std::unique_ptr<CRLData> FaultyList() {
    const auto sys = [](const std::string& type, int acq, const std::string& fields) {
        return type + "\t" + kCommon + std::to_string(acq) + kTail + fields;
    };
    const std::string is2000 = "4096\t12\t1", plmn = "Select Mode\tAny PLMNs";
    auto data =
        ListSamples::List(5,
                          {"10\t1\t25", "11\t17\t1459", "12\t0\t8", "253\t2",
                           "15\t9\t1\t2\tUARFCN_NOT_PRESENT", "16"},
                          {sys("0", 0, is2000),                    // fine
                           sys("1", 0, "a00::/7"),                 // IS-856 on CDMA: 167
                           sys("0", 7, is2000),                    // index one past the table: 156
                           sys("0", 1, is2000),                    // IS-2000 on HDR: 163
                           sys("2", 0, plmn),                      // PLMN on CDMA: 196
                           sys("2", 2, plmn),                      // PLMN on GSM: fine
                           sys("3", 0, "3\t310\t26\t1\ta00::/7"),  // MCC-MNC subnet on CDMA: 205
                           sys("3", 1, "2\t310\t26\t1\t5\t6"),     // MCC-MNC SID/NID on HDR: 204
                           sys("1", 3, "a00::/7"),                 // anything on undefined: fine
                           sys("2", 4, plmn),                      // PLMN on GWL: fine
                           sys("2", 5, plmn),                      // PLMN on UMB: 196
                           sys("3", 4, "2\t310\t26\t1\t5\t6"),     // MCC-MNC SID/NID on GWL: 204
                           sys("3", 5, "2\t310\t26\t1\t5\t6"),     // MCC-MNC SID/NID on UMB: fine
                           sys("0", 6, is2000)});                  // the last index: fine
    // Two records that fail their own checks, which text would not let in.
    data->GetAcqTable().Items().Add(CreateAcqItem(3, 5));  // a custom record without channels
    auto badNid = CreateSysItem(0, 5);
    dynamic_cast<CSysItemIS2000&>(*badNid).SetNidIncl(3);
    data->GetSysTable().Items().Add(std::move(badNid));
    return data;
}

TEST(CheckRoamingList, NamesEveryFailureWithItsMessageRowAndColumn) {
    const ValidationResult r = CheckRoamingList(*FaultyList(), 5);
    const std::vector<Where> expected = {
        {144, 6, -1}, {167, 1, 4}, {156, 2, 4},  {163, 3, 4},  {196, 4, 4},
        {205, 6, 4},  {204, 7, 4}, {196, 10, 4}, {204, 11, 4}, {145, 14, -1},
    };
    EXPECT_EQ(Places(r), expected);
    EXPECT_EQ(
        r.issues[2].Describe(),
        "156 (System Table, row 2, column 4): An invalid ACQ Index is entered column 4, row 2 "
        "of the System Record Table.");
    EXPECT_EQ(r.issues[0].table, "Acquisition Table");
}

// Fills a grid the way the record grids do: the type name in column 0, the record after it.
MemoryGrid GridOf(const CRLItemList& items, const CNameList& types, bool acq) {
    MemoryGrid grid(acq ? "Acquisition Table" : "System Table", 300,
                    static_cast<int>(items.GetSize()));
    for (size_t i = 0; i < items.GetSize(); ++i) {
        const CRLItem& item = *items.GetAt(i);
        const int type = acq ? dynamic_cast<const CAcqItem&>(item).GetAcqType()
                             : dynamic_cast<const CSysItem&>(item).GetSysType();
        grid.SetCellText(0, static_cast<int>(i), types.GetName(type));
        item.WriteToGrid(grid, static_cast<int>(i));
    }
    return grid;
}

TEST(TakeListFromEditor, GridsReadBackToTheSameList) {
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        const bool hasGsm = version >= 3;
        std::vector<std::string> acq = {"5\tA\tF", "1\tBoth", "3\t25\t799"};
        if (hasGsm) acq.push_back("12\t0\t8");  // a type whose cell shows "Invalid"
        const std::string assn = version >= 3 ? "\tYes\t9\tYes\tNo\t" : "\t";
        auto data = ListSamples::List(version, acq,
                                      {"0\tPref\tNew\tMore\t2\t7" + assn + "4096\t12\t1",
                                       "14\tNeg\tSame\tSame\t0\t0" + assn + "310\t26"});
        const std::vector<uint8_t> before = ListSamples::Binary(*data, version);
        ASSERT_FALSE(before.empty());
        const auto& names = CRLNameTables::Instance();
        const MemoryGrid acqGrid =
            GridOf(data->GetAcqTable().Items(), names.AcqTypes(version), true);
        const MemoryGrid sysGrid =
            GridOf(data->GetSysTable().Items(), names.SysTypes(version), false);
        if (hasGsm) {
            EXPECT_EQ(acqGrid.GetCellText(0, 3), "Invalid");
        }

        data->GetProperties().defRoamInd = 0;  // taken back from the header fields
        data->GetProperties().prefListId = 0;
        const ValidationResult r = TakeListFromEditor("1", "100", acqGrid, sysGrid, version, *data);
        EXPECT_TRUE(r.Ok()) << (r.Ok() ? "" : r.issues[0].Describe());
        EXPECT_EQ(ListSamples::Binary(*data, version), before);

        if (hasGsm) {
            // Without the table the grid came from, the "Invalid" type name has no type.
            CRLItemList out;
            const ValidationResult fresh = ReadAcqTableFromGrid(acqGrid, version, out);
            ASSERT_EQ(fresh.issues.size(), 1u);
            EXPECT_EQ(fresh.issues[0].dataError, 6);
            EXPECT_EQ(fresh.issues[0].row, 3);
            EXPECT_EQ(out.GetSize(), 3u);
        }
    }
}

TEST(TakeListFromEditor, FailuresLeaveTheListAsItWas) {
    auto data = ListSamples::List(3, {"1\tA", "1\tB"},
                                  {"0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1",
                                   "0\tPref\tSame\tMore\t1\t7\tNo\t0\tNo\tNo\t4097\t12\t1"});
    const std::vector<uint8_t> before = ListSamples::Binary(*data, 3);
    const auto& names = CRLNameTables::Instance();
    const MemoryGrid acqGrid = GridOf(data->GetAcqTable().Items(), names.AcqTypes(3), true);
    const MemoryGrid goodSys = GridOf(data->GetSysTable().Items(), names.SysTypes(3), false);

    MemoryGrid gap = goodSys;  // a filled row, an empty one, a filled one, and an empty last row
    gap.InsertRow(1);
    gap.InsertRow(3);
    MemoryGrid badChannel = acqGrid;
    badChannel.SetCellText(1, 1, "C");
    MemoryGrid badIndex = goodSys;
    badIndex.SetCellText(4, 1, "2");
    MemoryGrid emptyAcq("Acquisition Table", 300, 0);

    struct Case {
        const char* name;
        std::string roamInd;
        const Grid& acq;
        const Grid& sys;
        std::vector<Where> issues;
    } cases[] = {
        {"empty rows among system rows", "1", acqGrid, gap, {{198, 1, 0}, {198, 3, 0}}},
        {"header first, grids not read", "", acqGrid, gap, {{160, -1, -1}}},
        {"record's own refusal; system grid not read", "1", badChannel, gap, {{0, 1, -1}}},
        {"index beyond the table", "1", acqGrid, badIndex, {{156, 1, 4}}},
        {"no acquisition rows", "1", emptyAcq, emptyAcq, {{155, -1, -1}, {154, -1, -1}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ValidationResult r = TakeListFromEditor(c.roamInd, "9", c.acq, c.sys, 3, *data);
        EXPECT_EQ(Places(r), c.issues);
        EXPECT_EQ(ListSamples::Binary(*data, 3), before);
    }
}

}  // namespace
}  // namespace Tarn
