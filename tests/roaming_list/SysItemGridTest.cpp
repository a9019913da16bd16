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

using Cells = std::map<int, std::string>;

// An acquisition table of real records of the given types (all exist in IS-683E).
CRLItemList AcqTable(const std::vector<uint8_t>& types) {
    CRLItemList list;
    for (uint8_t type : types) list.Add(CreateAcqItem(type, 5));
    return list;
}

MemoryGrid GridWith(int row, const Cells& cells) {
    MemoryGrid grid("System Table", 40, 4);
    for (const auto& [column, text] : cells) grid.SetCellText(column, row, text);
    return grid;
}

Cells Merge(Cells base, const Cells& changes) {
    for (const auto& [column, text] : changes) base[column] = text;
    return base;
}

// `count` in the count column and `count` cells of `text` after it.
Cells Counted(int countColumn, int count, const std::string& text) {
    Cells cells = {{countColumn, std::to_string(count)}};
    for (int i = 1; i <= count; ++i) cells[countColumn + i] = text;
    return cells;
}

// Acquisition table of the grid tests: index -> type.
const std::vector<uint8_t> kAcqTypes = {1, 10, 11, 12, 15, 253, 16};

const Cells kPref = {{1, "Pref"}, {2, "Same"}, {3, "More"}, {4, "0"}, {5, "1"}, {6, "No"}};
const Cells kAssn = {{6, "Yes"}, {7, "1"}, {8, "No"}, {9, "No"}};
const std::string kSubnets = "MCC-MNC Subnet-Id";

// A valid row of each type, on top of kPref.
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

// A name missing from its list raises that list's data error rather than a grid error.
constexpr unsigned DataErr(int code) {
    return 1000u + static_cast<unsigned>(code);
}

struct GridCase {
    const char* name;
    int type;
    Cells changes;
    unsigned message;  // 0: the row is accepted; DataErr(code): the data error
    int column;
    long long low = 0;
    long long high = 0;
    int version = 5;
    int row = 1;
};

// Every check of a system row, each on an otherwise valid row of its type; every number at its
// largest is taken and one past it refused with the range.
TEST(SysItemGrid, EachCheckNamesItsMessageAndCell) {
    constexpr unsigned kMissing = Msg::RequiredValueMissing;
    constexpr unsigned kRange = Msg::OutOfRange;
    // clang-format off
    const std::vector<GridCase> cases = {
        {"valid IS-2000 row", 0, {}, 0, 0},
        {"neg/pref missing", 0, {{1, ""}}, kMissing, 1},
        {"geography missing", 0, {{2, ""}}, kMissing, 2},
        {"first row reads no geography", 0, {{2, ""}}, 0, 0, 0, 0, 5, 0},
        {"priority missing", 0, {{3, ""}}, kMissing, 3},
        {"negative needs no priority or roaming indicator", 0, {{1, "Neg"}, {3, ""}, {5, ""}}, 0, 0},
        {"acq index missing", 0, {{4, ""}}, kMissing, 4},
        {"acq index not a number", 0, {{4, "x"}}, kMissing, 4},
        {"acq index past the table", 0, {{4, "7"}}, Msg::InvalidAcqIndex, 4},
        {"roaming indicator missing", 0, {{5, ""}}, kMissing, 5},
        {"roaming indicator failed its cell check", 0, {{5, "BADVAL"}}, kMissing, 5},
        {"roaming indicator 255", 0, {{5, "255"}}, 0, 0},
        {"roaming indicator 256", 0, {{5, "256"}}, kRange, 5, 0, 255},
        {"association included missing", 0, {{6, ""}}, kMissing, 6},
        {"IS-683B reads no association", 0, {{6, ""}}, 0, 0, 0, 0, 2},
        {"IS-683C reads the association", 0, {{6, ""}}, kMissing, 6, 0, 0, 3},
        {"association tag 255", 0, Merge(kAssn, {{7, "255"}}), 0, 0},
        {"association tag 256", 0, Merge(kAssn, {{7, "256"}}), Msg::InvalidAssnTag, 7},
        {"association tag missing", 0, Merge(kAssn, {{7, ""}}), kMissing, 7},
        {"PN association missing", 0, Merge(kAssn, {{8, ""}}), kMissing, 8},
        {"data association missing", 0, Merge(kAssn, {{9, ""}}), kMissing, 9},
        {"SID 15903 is fine", 0, {{10, "15903"}}, 0, 0},
        {"SID 15904 is reserved", 0, {{10, "15904"}}, Msg::ReservedSid, 10},
        {"SID 15905 is reserved", 0, {{10, "15905"}}, Msg::ReservedSid, 10},
        {"SID 15906 is fine", 0, {{10, "15906"}}, 0, 0},
        {"SID 32767", 0, {{10, "32767"}}, 0, 0},
        {"SID 32768", 0, {{10, "32768"}}, kRange, 10, 0, 32767},
        {"SID missing", 0, {{10, ""}}, kMissing, 10},
        {"NID missing", 0, {{11, ""}}, kMissing, 11},
        {"NID 65536", 0, {{11, "65536"}}, kRange, 11, 0, 65535},
        {"MCC 999, IMSI_11_12 99", 14, {{10, "999"}, {11, "99"}}, 0, 0},
        {"MCC of two digits", 14, {{10, "31"}}, Msg::InvalidMcc, 10},
        {"MCC missing", 14, {{10, ""}}, kMissing, 10},
        {"IMSI_11_12 of three digits", 14, {{11, "123"}}, Msg::InvalidImsi, 11},
        {"IMSI_11_12 missing", 14, {{11, ""}}, kMissing, 11},
        {"subnet missing", 1, {{10, ""}}, kMissing, 10},
        {"subnet address malformed", 1, {{10, "2001:zz::/32"}}, Msg::InvalidSubnetAddress, 10},
        {"subnet address with two gaps", 1, {{10, "1::2::3/16"}}, Msg::InvalidSubnetAddress, 10},
        {"subnet without length", 1, {{10, "2001:db8::"}}, Msg::InvalidSubnetLength, 10},
        {"subnet length not a number", 1, {{10, "2001:db8::/x"}}, Msg::InvalidSubnetLength, 10},
        {"subnet length 127", 1, {{10, "::/127"}}, 0, 0},
        {"subnet length 128", 1, {{10, "2001:db8::/128"}}, kRange, 10, 0, 127},
        {"PLMN type missing", 2, {{10, ""}}, kMissing, 10},
        {"PLMN select missing", 2, {{10, "Select Mode"}, {11, ""}}, kMissing, 11},
        {"PLMN select mode row", 2, {{10, "Select Mode"}, {11, "Home PLMN"}}, 0, 0},
        {"PLMN MCC wrong", 2, {{11, "31A"}}, Msg::InvalidMcc, 11},
        {"PLMN MNC of one digit", 2, {{12, "1"}}, Msg::InvalidMnc, 12},
        {"PLMN MNC with wildcards", 2, {{12, "F1F"}}, 0, 0},
        {"PLMN MNC with a letter", 2, {{12, "1G"}}, Msg::InvalidMnc, 12},
        {"network selection mode missing", 2, {{13, ""}}, kMissing, 13},
        {"LAC count missing", 2, {{14, ""}}, kMissing, 14},
        {"LAC count 16", 2, {{14, "16"}}, kRange, 14, 0, 15},
        {"11 LACs of 65535 fill 31 octets", 2, Counted(14, 11, "65535"), 0, 0},
        {"12 LACs do not fit", 2, Counted(14, 12, "1"), kRange, 14, 0, 11},
        {"10 LACs beside the association", 2, Merge(kAssn, Counted(14, 10, "1")), 0, 0},
        {"11 LACs beside the association", 2, Merge(kAssn, Counted(14, 11, "1")), kRange, 14, 0, 10},
        {"LAC 65536", 2, {{16, "65536"}}, kRange, 16, 0, 65535},
        {"counted LAC missing", 2, {{16, ""}}, kMissing, 16},
        {"single LAC missing", 2, {{10, "PLMN+Single LAC"}, {14, ""}}, kMissing, 14},
        {"MCC-MNC subtype missing", 3, {{10, ""}}, kMissing, 10},
        {"MCC-MNC MCC wrong", 3, {{11, "3100"}}, Msg::InvalidMcc, 11},
        {"MCC-MNC MNC wrong", 3, {{12, ""}}, kMissing, 12},
        {"MCC-MNC count missing", 3, {{13, ""}}, kMissing, 13},
        {"5 SID/NID pairs", 3, Merge(Counted(13, 10, "7"), {{13, "5"}}), 0, 0},
        {"SID/NID count 6", 3, {{13, "6"}}, kRange, 13, 0, -1},
        {"MCC-MNC SID 32767 NID 65535", 3, {{14, "32767"}, {15, "65535"}}, 0, 0},
        {"MCC-MNC SID 32768", 3, {{14, "32768"}}, kRange, 14, 0, 32767},
        {"MCC-MNC NID 65536", 3, {{15, "65536"}}, kRange, 15, 0, 65535},
        {"16 subnets", 3, Merge({{4, "2"}, {10, kSubnets}}, Counted(13, 16, "::/0")), 0, 0},
        {"17 subnets", 3, {{4, "2"}, {10, kSubnets}, {13, "17"}}, kRange, 13, 0, 16},
        {"bad subnet in the list", 3, {{4, "2"}, {10, kSubnets}, {13, "1"}, {14, "fe80::/x"}}, Msg::BadSubnetId, 14},
        {"subnets filling 31 octets", 3, {{4, "2"}, {10, kSubnets}, {13, "2"}, {14, "::/127"}, {15, "::/40"}}, 0, 0},
        {"subnets one bit past 31 octets", 3, {{4, "2"}, {10, kSubnets}, {13, "2"}, {14, "::/127"}, {15, "::/41"}}, kRange, 13, 0, 1},
        {"SID-only subtype typed as its code", 3, {{10, "1"}, {14, "100"}, {15, ""}}, 0, 0},
        // Which acquisition types each system type may use (index -> type: see kAcqTypes).
        {"IS-2000 on CDMA Generic", 0, {{4, "1"}}, 0, 0},
        {"IS-2000 on HDR", 0, {{4, "2"}}, Msg::AcqIndexIs2000, 4},
        {"IS-2000 on an undefined acq record", 0, {{4, "5"}}, 0, 0},
        {"1x-MCC on GSM", 14, {{4, "3"}}, Msg::AcqIndexIs2000, 4},
        {"IS-856 on analog", 1, {{4, "0"}}, Msg::AcqIndexIs856, 4},
        {"IS-856 on an undefined acq record", 1, {{4, "5"}}, 0, 0},
        {"PLMN on CDMA Generic", 2, {{4, "1"}}, Msg::AcqIndexPlmn, 4},
        {"PLMN on GWL", 2, {{4, "4"}}, 0, 0},
        {"PLMN on UMB", 2, {{4, "6"}}, Msg::AcqIndexPlmn, 4},
        {"MCC-MNC SID/NID on CDMA Generic", 3, {{4, "1"}}, 0, 0},
        {"MCC-MNC SID/NID on HDR", 3, {{4, "2"}}, Msg::AcqIndexMccMncSidNid, 4},
        {"MCC-MNC SID/NID on GWL", 3, {{4, "4"}}, Msg::AcqIndexMccMncSidNid, 4},
        {"MCC-MNC SID/NID on UMB", 3, {{4, "6"}}, 0, 0},
        {"MCC-MNC subnet on analog", 3, {{10, kSubnets}, {13, "0"}}, Msg::AcqIndexMccMncSubnet, 4},
        {"undefined system type on analog", 7, {{4, "0"}}, Msg::AcqIndexUndefined, 4},
        // Names no list has.
        {"neg/pref", 0, {{1, "Maybe"}}, DataErr(12), 0},
        {"geography", 0, {{2, "Far"}}, DataErr(13), 0},
        {"priority", 0, {{3, "Less"}}, DataErr(14), 0},
        {"association included", 0, {{6, "Perhaps"}}, DataErr(18), 0},
        {"PLMN type", 2, {{10, "PLMN"}}, DataErr(22), 0},
        {"PLMN select", 2, {{10, "Select Mode"}, {11, "Some"}}, DataErr(23), 0},
        {"network selection mode", 2, {{13, "Auto"}}, DataErr(24), 0},
    };
    // clang-format on
    const CRLItemList acq = AcqTable(kAcqTypes);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Cells cells = Merge(Merge(kPref, kTypeCells.at(c.type)), c.changes);
        auto item = CreateSysItem(c.type, c.version);
        ASSERT_NE(item, nullptr);
        try {
            item->ReadFromGrid(GridWith(c.row, cells), c.row, GridContext{c.version, &acq});
            EXPECT_EQ(c.message, 0u) << "accepted";
            EXPECT_TRUE(item->IsValid());
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message) << e.what();
            EXPECT_EQ(e.Column(), c.column);
            EXPECT_EQ(e.Row(), c.row);
            EXPECT_EQ(e.TableName(), "System Table");
            EXPECT_EQ(e.Low(), c.low);
            EXPECT_EQ(e.High(), c.high);
        } catch (const CDataException& e) {
            EXPECT_EQ(DataErr(e.Code()), c.message);
        }
    }
    // Without an acquisition table the index is held to its 9 bits.
    const Cells row = Merge(kPref, kTypeCells.at(0));
    auto item = CreateSysItem(0, 5);
    item->ReadFromGrid(GridWith(1, Merge(row, {{4, "511"}})), 1, GridContext{5, nullptr});
    EXPECT_EQ(item->GetAcqIndex(), 511u);
    try {
        item->ReadFromGrid(GridWith(1, Merge(row, {{4, "512"}})), 1, GridContext{5, nullptr});
        ADD_FAILURE() << "index 512 accepted";
    } catch (const GridError& e) {
        EXPECT_EQ(e.MessageId(), Msg::OutOfRange);
        EXPECT_EQ(e.High(), 511);
    }
}

TEST(SysItemGrid, FirstRowIsAlwaysANewRegion) {
    const CRLItemList acq = AcqTable(kAcqTypes);
    const Cells cells = Merge(kPref, kTypeCells.at(0));
    for (int row : {0, 1}) {
        auto item = CreateSysItem(0, 5);
        item->ReadFromGrid(GridWith(row, cells), row, {5, &acq});
        EXPECT_EQ(item->GetGeography(), row == 0 ? 0u : 1u);
    }
}

// A record shown in a row and taken back unchanged writes the same bytes, odd values included.
TEST(SysItemGrid, RowRoundTripKeepsEveryByte) {
    const CRLItemList acq = AcqTable(std::vector<uint8_t>(32, 253));
    for (const auto& sample : SysSamples::All()) {
        SCOPED_TRACE(sample.name);
        auto item = SysSamples::ReadSample(sample);
        MemoryGrid grid("System Table", 40, 3);
        item->WriteToGrid(grid, 2);
        item->ReadFromGrid(grid, 2, {sample.version, &acq});
        EXPECT_EQ(SysSamples::WriteOne(*item, sample.version), sample.bytes);
    }
}

TEST(SysItemGrid, CellsAndHeadingsFollowVersionAndType) {
    struct Case {
        const char* sample;
        Cells headings;
        Cells cells;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"short preferred, NID not stored",
         {{1, "Neg/Pref"}, {4, "Acq Index"}, {5, "Roam Indicator"}, {6, ""}, {9, ""}, {10, "SID"}, {11, "NID"}, {12, ""}},
         {{1, "Pref"}, {3, "More"}, {6, ""}, {10, "1"}, {11, "65535"}}},
        {"long IS-2000, no association: length 6, no fill",
         {{6, "Assn Incl"}, {7, "Assn Tag"}, {8, "PN Assn"}, {9, "Data Assn"}},
         {{6, "No"}, {7, "0"}}},
        {"1x-MCC in the short framing", {{10, "MCC"}, {11, "IMSI_11_12"}}, {{10, "532"}, {11, "05"}}},
        {"IS-856 subnet", {{10, "SubnetId[Input format : IPv6 address/no of mask bits]"}}, {{10, "2001:db8::/32"}}},
        {"PLMN multi LAC, negative",
         {{10, "PLMN Type"}, {13, "Net Sel Mode"}, {14, "LAC Count"}, {15, "LAC 1"}, {29, "LAC 15"}, {30, ""}},
         {{1, "Neg"}, {10, "PLMN+Multi LAC"}, {11, "310"}, {12, "410"}, {13, "Automatic"}, {14, "2"}, {15, "4660"}, {16, "1"}}},
        {"PLMN select mode", {{11, "PLMN Select"}, {12, ""}}, {{10, "Select Mode"}, {11, "Allowed PLMNs"}}},
        {"MCC-MNC SID/NID with association",
         {{13, "Num SID/NID"}, {14, "SID 1"}, {15, "NID 1"}, {23, "NID 5"}, {24, ""}},
         {{6, "Yes"}, {7, "5"}, {8, "Yes"}, {9, "No"}, {10, "MCC-MNC SID/NID"}, {12, "26"}, {13, "1"}, {14, "100"}, {15, "7"}}},
        {"MCC-MNC subnet", {{13, "Num Subnets"}, {29, "Subnet 16"}}, {{13, "1"}, {14, "fe80::/10"}}},
        {"undefined type 7 keeps its octets", {{10, "Data Length"}}, {{10, "5"}}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sample);
        auto item = SysSamples::ReadSample(SysSamples::Find(c.sample));
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
