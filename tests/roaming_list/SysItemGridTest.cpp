#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "foundation/MessageTable.h"
#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/SysItem.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

// An acquisition table of real records of the given types (all exist in IS-683E).
CRLItemList AcqTable(const std::vector<uint8_t>& types) {
    CRLItemList list;
    for (uint8_t type : types) list.Add(CreateAcqItem(type, 5));
    return list;
}

using Cells = std::map<int, std::string>;

MemoryGrid GridWith(int row, const Cells& cells) {
    MemoryGrid grid("System Table", 40, 4);
    for (const auto& [column, text] : cells) grid.SetCellText(column, row, text);
    return grid;
}

Cells Merge(Cells base, const Cells& changes) {
    for (const auto& [column, text] : changes) base[column] = text;
    return base;
}

// Acquisition table of the grid tests: index -> type.
const std::vector<uint8_t> kAcqTypes = {1, 10, 11, 12, 15, 253, 16};

const Cells kPref = {{1, "Pref"}, {2, "Same"}, {3, "More"}, {4, "0"}, {5, "1"}, {6, "No"}};

const std::map<int, Cells> kTypeCells = {
    {0, {{10, "100"}, {11, "65535"}}},
    {14, {{10, "310"}, {11, "01"}}},
    {1, {{4, "2"}, {10, "2001:db8::/32"}}},
    {2,
     {{4, "3"},
      {10, "PLMN+Multi LAC"},
      {11, "310"},
      {12, "410"},
      {13, "Automatic"},
      {14, "2"},
      {15, "1"},
      {16, "2"}}},
    {3, {{10, "MCC-MNC SID/NID"}, {11, "310"}, {12, "26"}, {13, "1"}, {14, "100"}, {15, "7"}}},
    {7, {{4, "5"}, {10, "3"}}},
};

struct GridCase {
    const char* name;
    int type;
    Cells changes;
    unsigned message;  // 0: the row is accepted
    int column;
    long long low = 0;
    long long high = 0;
    int version = 5;
    int row = 1;
};

// Every check of a system row, each on an otherwise valid row of its type.
TEST(SysItemGrid, EachCheckNamesItsMessageAndCell) {
    constexpr unsigned kMissing = Msg::RequiredValueMissing;
    const std::vector<GridCase> cases = {
        {"valid IS-2000 row", 0, {}, 0, 0},
        {"neg/pref missing", 0, {{1, ""}}, kMissing, 1},
        {"geography missing", 0, {{2, ""}}, kMissing, 2},
        {"first row reads no geography", 0, {{2, ""}}, 0, 0, 0, 0, 5, 0},
        {"priority missing", 0, {{3, ""}}, kMissing, 3},
        {"negative needs no priority or roaming indicator",
         0,
         {{1, "Neg"}, {3, ""}, {5, ""}},
         0,
         0},
        {"acq index missing", 0, {{4, ""}}, kMissing, 4},
        {"acq index not a number", 0, {{4, "x"}}, kMissing, 4},
        {"acq index past the table", 0, {{4, "7"}}, Msg::InvalidAcqIndex, 4},
        {"roaming indicator missing", 0, {{5, ""}}, kMissing, 5},
        {"roaming indicator failed its cell check", 0, {{5, "BADVAL"}}, kMissing, 5},
        {"roaming indicator too large", 0, {{5, "256"}}, Msg::OutOfRange, 5, 0, 255},
        {"association included missing", 0, {{6, ""}}, kMissing, 6},
        {"IS-683B reads no association", 0, {{6, ""}}, 0, 0, 0, 0, 2},
        {"IS-683C reads the association", 0, {{6, ""}}, kMissing, 6, 0, 0, 3},
        {"association tag missing", 0, {{6, "Yes"}, {8, "No"}, {9, "No"}}, kMissing, 7},
        {"association tag above 255",
         0,
         {{6, "Yes"}, {7, "256"}, {8, "No"}, {9, "No"}},
         Msg::InvalidAssnTag,
         7},
        {"PN association missing", 0, {{6, "Yes"}, {7, "255"}, {9, "No"}}, kMissing, 8},
        {"data association missing", 0, {{6, "Yes"}, {7, "255"}, {8, "No"}}, kMissing, 9},
        {"SID 15904 is reserved", 0, {{10, "15904"}}, Msg::ReservedSid, 10},
        {"SID 15905 is reserved", 0, {{10, "15905"}}, Msg::ReservedSid, 10},
        {"SID 15903 is fine", 0, {{10, "15903"}}, 0, 0},
        {"SID 15906 is fine", 0, {{10, "15906"}}, 0, 0},
        {"SID missing", 0, {{10, ""}}, kMissing, 10},
        {"SID beyond 15 bits", 0, {{10, "32768"}}, Msg::OutOfRange, 10, 0, 32767},
        {"NID missing", 0, {{11, ""}}, kMissing, 11},
        {"NID beyond 16 bits", 0, {{11, "65536"}}, Msg::OutOfRange, 11, 0, 65535},
        {"MCC of two digits", 14, {{10, "31"}}, Msg::InvalidMcc, 10},
        {"MCC missing", 14, {{10, ""}}, kMissing, 10},
        {"IMSI_11_12 of three digits", 14, {{11, "123"}}, Msg::InvalidImsi, 11},
        {"IMSI_11_12 missing", 14, {{11, ""}}, kMissing, 11},
        {"subnet missing", 1, {{10, ""}}, kMissing, 10},
        {"subnet address malformed", 1, {{10, "2001:zz::/32"}}, Msg::InvalidSubnetAddress, 10},
        {"subnet address with two gaps", 1, {{10, "1::2::3/16"}}, Msg::InvalidSubnetAddress, 10},
        {"subnet without length", 1, {{10, "2001:db8::"}}, Msg::InvalidSubnetLength, 10},
        {"subnet length not a number", 1, {{10, "2001:db8::/x"}}, Msg::InvalidSubnetLength, 10},
        {"subnet length beyond 7 bits", 1, {{10, "2001:db8::/128"}}, Msg::OutOfRange, 10, 0, 127},
        {"PLMN type missing", 2, {{10, ""}}, kMissing, 10},
        {"PLMN select missing", 2, {{10, "Select Mode"}, {11, ""}}, kMissing, 11},
        {"PLMN select mode row", 2, {{10, "Select Mode"}, {11, "Home PLMN"}}, 0, 0},
        {"PLMN MCC wrong", 2, {{11, "31A"}}, Msg::InvalidMcc, 11},
        {"PLMN MNC of one digit", 2, {{12, "1"}}, Msg::InvalidMnc, 12},
        {"PLMN MNC with wildcards", 2, {{12, "F1F"}}, 0, 0},
        {"PLMN MNC with a letter", 2, {{12, "1G"}}, Msg::InvalidMnc, 12},
        {"network selection mode missing", 2, {{13, ""}}, kMissing, 13},
        {"LAC count missing", 2, {{14, ""}}, kMissing, 14},
        {"LAC count beyond 15", 2, {{14, "16"}}, Msg::OutOfRange, 14, 0, 15},
        {"LAC count beyond what 31 octets hold",
         2,
         {{6, "Yes"}, {7, "1"}, {8, "No"}, {9, "No"}, {14, "11"}},
         Msg::OutOfRange,
         14,
         0,
         10},
        {"counted LAC missing", 2, {{16, ""}}, kMissing, 16},
        {"single LAC missing", 2, {{10, "PLMN+Single LAC"}, {14, ""}}, kMissing, 14},
        {"MCC-MNC subtype missing", 3, {{10, ""}}, kMissing, 10},
        {"MCC-MNC MCC wrong", 3, {{11, "3100"}}, Msg::InvalidMcc, 11},
        {"MCC-MNC MNC wrong", 3, {{12, ""}}, kMissing, 12},
        {"MCC-MNC count missing", 3, {{13, ""}}, kMissing, 13},
        {"SID/NID count above 5", 3, {{13, "6"}}, Msg::OutOfRange, 13, 0, -1},
        {"MCC-MNC SID beyond 15 bits", 3, {{14, "32768"}}, Msg::OutOfRange, 14, 0, 32767},
        {"MCC-MNC NID beyond 16 bits", 3, {{15, "65536"}}, Msg::OutOfRange, 15, 0, 65535},
        {"subnet count above 16",
         3,
         {{4, "2"}, {10, "MCC-MNC Subnet-Id"}, {13, "17"}},
         Msg::OutOfRange,
         13,
         0,
         16},
        {"bad subnet in the list",
         3,
         {{4, "2"}, {10, "MCC-MNC Subnet-Id"}, {13, "1"}, {14, "fe80::/x"}},
         Msg::BadSubnetId,
         14},
        {"subnets beyond 31 octets",
         3,
         {{4, "2"}, {10, "MCC-MNC Subnet-Id"}, {13, "2"}, {14, "::/100"}, {15, "::/100"}},
         Msg::OutOfRange,
         13,
         0,
         1},
        {"SID-only subtype typed as its code", 3, {{10, "1"}, {14, "100"}, {15, ""}}, 0, 0},
        // Which acquisition types each system type may use.
        {"IS-2000 on CDMA Generic", 0, {{4, "1"}}, 0, 0},
        {"IS-2000 on HDR", 0, {{4, "2"}}, Msg::AcqIndexIs2000, 4},
        {"IS-2000 on an undefined acq record", 0, {{4, "5"}}, 0, 0},
        {"1x-MCC on GSM", 14, {{4, "3"}}, Msg::AcqIndexIs2000, 4},
        {"IS-856 on analog", 1, {{4, "0"}}, Msg::AcqIndexIs856, 4},
        {"IS-856 on an undefined acq record", 1, {{4, "5"}}, 0, 0},
        {"PLMN on CDMA Generic", 2, {{4, "1"}}, Msg::AcqIndexPlmn, 4},
        {"PLMN on GWL", 2, {{4, "4"}}, 0, 0},
        {"MCC-MNC SID/NID on HDR", 3, {{4, "2"}}, Msg::AcqIndexMccMncSidNid, 4},
        {"MCC-MNC SID/NID on GWL", 3, {{4, "4"}}, Msg::AcqIndexMccMncSidNid, 4},
        {"MCC-MNC SID/NID on UMB", 3, {{4, "6"}}, 0, 0},
        {"MCC-MNC subnet on analog",
         3,
         {{10, "MCC-MNC Subnet-Id"}, {13, "0"}},
         Msg::AcqIndexMccMncSubnet,
         4},
        {"undefined system type on analog", 7, {{4, "0"}}, Msg::AcqIndexUndefined, 4},
    };
    const CRLItemList acq = AcqTable(kAcqTypes);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Cells cells = Merge(Merge(kPref, kTypeCells.at(c.type)), c.changes);
        MemoryGrid grid = GridWith(c.row, cells);
        auto item = CreateSysItem(c.type, c.version);
        ASSERT_NE(item, nullptr);
        const GridContext context{c.version, &acq};
        if (c.message == 0) {
            EXPECT_NO_THROW(item->ReadFromGrid(grid, c.row, context));
            EXPECT_TRUE(item->IsValid());
            continue;
        }
        try {
            item->ReadFromGrid(grid, c.row, context);
            ADD_FAILURE() << "accepted";
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message) << e.what();
            EXPECT_EQ(e.Column(), c.column);
            EXPECT_EQ(e.Row(), c.row);
            EXPECT_EQ(e.TableName(), "System Table");
            if (c.message == Msg::OutOfRange) {
                EXPECT_EQ(e.Low(), c.low);
                EXPECT_EQ(e.High(), c.high);
            }
        }
    }
}

TEST(SysItemGrid, FirstRowIsAlwaysANewRegion) {
    const CRLItemList acq = AcqTable(kAcqTypes);
    const Cells cells = Merge(kPref, kTypeCells.at(0));
    auto first = CreateSysItem(0, 5);
    first->ReadFromGrid(GridWith(0, cells), 0, {5, &acq});
    EXPECT_EQ(first->GetGeography(), 0u);
    auto second = CreateSysItem(0, 5);
    second->ReadFromGrid(GridWith(1, cells), 1, {5, &acq});
    EXPECT_EQ(second->GetGeography(), 1u);
}

TEST(SysItemGrid, UnknownNamesRaiseTheirDataErrors) {
    const CRLItemList acq = AcqTable(kAcqTypes);
    struct Case {
        int type;
        Cells changes;
        int code;
    };
    const std::vector<Case> cases = {
        {0, {{1, "Maybe"}}, 12}, {0, {{2, "Far"}}, 13},
        {0, {{3, "Less"}}, 14},  {0, {{6, "Perhaps"}}, 18},
        {2, {{10, "PLMN"}}, 22}, {2, {{10, "Select Mode"}, {11, "Some"}}, 23},
        {2, {{13, "Auto"}}, 24},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        auto item = CreateSysItem(c.type, 5);
        const Cells cells = Merge(Merge(kPref, kTypeCells.at(c.type)), c.changes);
        try {
            item->ReadFromGrid(GridWith(1, cells), 1, {5, &acq});
            ADD_FAILURE() << "accepted";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), c.code);
        }
    }
}

// A record shown in a row and taken back unchanged writes the same bytes, odd values included.
TEST(SysItemGrid, RowRoundTripKeepsEveryByte) {
    const CRLItemList acq = AcqTable(std::vector<uint8_t>(32, 253));
    for (const auto& sample : SysSamples::All()) {
        SCOPED_TRACE(sample.name);
        auto item = SysSamples::ReadSample(sample);
        ASSERT_NE(item, nullptr);
        MemoryGrid grid("System Table", 40, 3);
        item->WriteToGrid(grid, 2);
        item->ReadFromGrid(grid, 2, {sample.version, &acq});
        EXPECT_EQ(SysSamples::WriteOne(*item, sample.version), sample.bytes);
    }
}

TEST(SysItemGrid, CellsAndHeadingsFollowVersionAndType) {
    struct Case {
        const char* sample;
        std::map<int, std::string> headings;
        std::map<int, std::string> cells;
    };
    const std::vector<Case> cases = {
        {"short preferred, NID not stored",
         {{1, "Neg/Pref"},
          {4, "Acq Index"},
          {5, "Roam Indicator"},
          {6, ""},
          {9, ""},
          {10, "SID"},
          {11, "NID"},
          {12, ""}},
         {{1, "Pref"}, {3, "More"}, {6, ""}, {10, "1"}, {11, "65535"}}},
        {"long IS-2000, no association: length 6, no fill",
         {{6, "Assn Incl"}, {7, "Assn Tag"}, {8, "PN Assn"}, {9, "Data Assn"}},
         {{6, "No"}, {7, "0"}}},
        {"1x-MCC in the short framing",
         {{10, "MCC"}, {11, "IMSI_11_12"}},
         {{10, "532"}, {11, "05"}}},
        {"IS-856 subnet",
         {{10, "SubnetId[Input format : IPv6 address/no of mask bits]"}},
         {{10, "2001:db8::/32"}}},
        {"PLMN multi LAC, negative",
         {{10, "PLMN Type"},
          {13, "Net Sel Mode"},
          {14, "LAC Count"},
          {15, "LAC 1"},
          {29, "LAC 15"},
          {30, ""}},
         {{1, "Neg"},
          {10, "PLMN+Multi LAC"},
          {11, "310"},
          {12, "410"},
          {13, "Automatic"},
          {14, "2"},
          {15, "4660"},
          {16, "1"}}},
        {"PLMN select mode",
         {{11, "PLMN Select"}, {12, ""}},
         {{10, "Select Mode"}, {11, "Allowed PLMNs"}}},
        {"MCC-MNC SID/NID with association",
         {{13, "Num SID/NID"}, {14, "SID 1"}, {15, "NID 1"}, {23, "NID 5"}, {24, ""}},
         {{6, "Yes"},
          {7, "5"},
          {8, "Yes"},
          {9, "No"},
          {10, "MCC-MNC SID/NID"},
          {12, "26"},
          {13, "1"},
          {14, "100"},
          {15, "7"}}},
        {"MCC-MNC subnet",
         {{13, "Num Subnets"}, {29, "Subnet 16"}},
         {{13, "1"}, {14, "fe80::/10"}}},
        {"undefined type 7 keeps its octets", {{10, "Data Length"}}, {{10, "5"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sample);
        const SysSamples::Sample* sample = nullptr;
        for (const auto& s : SysSamples::All())
            if (std::string(s.name) == c.sample) sample = &s;
        ASSERT_NE(sample, nullptr);
        auto item = SysSamples::ReadSample(*sample);
        MemoryGrid grid("System Table", 35, 2);
        for (int column = 0; column < 35; ++column) grid.SetColumnHeading(column, "stale");
        EXPECT_TRUE(item->OnGridHeading(grid, 1));
        EXPECT_EQ(grid.GetColumnHeading(10), "stale");
        EXPECT_TRUE(item->OnGridHeading(grid, kGridHeadingEvent));
        for (const auto& [column, heading] : c.headings)
            EXPECT_EQ(grid.GetColumnHeading(column), heading) << column;
        item->WriteToGrid(grid, 1);
        for (const auto& [column, text] : c.cells)
            EXPECT_EQ(grid.GetCellText(column, 1), text) << column;
    }
}

}  // namespace
}  // namespace Tarn
