#include <gtest/gtest.h>

#include <map>

#include "foundation/MessageTable.h"
#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "tests/roaming_list/AcqItemTestSupport.h"

namespace Tarn {
namespace {

using namespace AcqTest;
using Cells = std::map<int, std::string>;

constexpr int kRow = 3;

MemoryGrid MakeGrid(int columns = 300) {
    return MemoryGrid("Acquisition Table", columns, 6);
}

void Fill(Grid& grid, const Cells& cells) {
    for (const auto& [column, text] : cells) grid.SetCellText(column, kRow, text);
}

// `group` `times` over from column `first`, then `more`.
Cells Seq(int first, int times, const std::vector<std::string>& group, Cells more = {}) {
    for (int i = 0; i < times; ++i)
        for (size_t j = 0; j < group.size(); ++j)
            more.emplace(first + i * static_cast<int>(group.size()) + static_cast<int>(j),
                         group[j]);
    return more;
}

// A row written over the row of another type keeps none of its cells; lists are offered as
// drop-downs of their names.
TEST(AcqItemGrid, ARowHoldsOnlyTheCellsOfItsType) {
    MemoryGrid grid = MakeGrid();
    for (const auto& item : SampleRecords()) item->WriteToGrid(grid, kRow);  // 253 comes last
    EXPECT_EQ(grid.StoredCellCount(), 1u);
    Make<CAcqItemPcsCdmaBlocks>(5)->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.StoredCellCount(), 6u);
    EXPECT_EQ(grid.GetCellKind(6, kRow), CellKind::DropDown);
    EXPECT_EQ(grid.GetCellChoices(6, kRow), CRLNameTables::Instance().Block().Choices());
}

// Counts every touch of a column the grid does not have.
class NarrowGrid : public MemoryGrid {
public:
    using MemoryGrid::MemoryGrid;
    int outside = 0;
    void SetCellText(int c, int r, const std::string& t) override {
        Note(c);
        MemoryGrid::SetCellText(c, r, t);
    }
    void SetCellEdit(int c, int r, const std::string& mask) override {
        Note(c);
        MemoryGrid::SetCellEdit(c, r, mask);
    }
    void SetCellDropDown(int c, int r, ChoiceList choices) override {
        Note(c);
        MemoryGrid::SetCellDropDown(c, r, std::move(choices));
    }
    void SetColumnHeading(int c, const std::string& heading) override {
        Note(c);
        MemoryGrid::SetColumnHeading(c, heading);
    }

private:
    void Note(int column) { outside += column >= GetColumnCount() ? 1 : 0; }
};

// A record of every type is written into grids narrower than its row without touching a column
// past the last one, and one wide enough gives it back whole; the type column is the grid's.
TEST(AcqItemGrid, EveryTypeComesBackFromItsOwnRowAndNeverWritesPastTheLastColumn) {
    for (int columns : {2, 3, 7, 300}) {
        for (const auto& item : SampleRecords()) {
            SCOPED_TRACE(std::to_string(item->GetAcqType()) + " in " + std::to_string(columns));
            NarrowGrid grid("Acquisition Table", columns, 6);
            grid.SetCellText(0, kRow, "type cell");
            grid.SetCellText(columns - 1, kRow, "left over from another type");
            item->WriteToGrid(grid, kRow);
            item->OnGridHeading(grid, kGridHeadingEvent);
            EXPECT_EQ(grid.outside, 0);
            EXPECT_NE(grid.GetCellText(1, kRow), "");
            EXPECT_EQ(grid.GetCellText(0, kRow), "type cell");
            if (columns < 300) continue;
            auto fresh = CreateAcqItem(item->GetAcqType(), 5);
            fresh->ReadFromGrid(grid, kRow, GridContext{5, nullptr});
            EXPECT_EQ(Bytes(*fresh), Bytes(*item));
        }
    }
}

// A 3GPP record of exactly 255 octets: 23 bits of header, 76 bands with a UARFCN (25 bits) and
// 13 without (9 bits). One band more is refused with the number that fit.
TEST(AcqItemGrid, BandsFillTheRecordToItsLastOctet) {
    MemoryGrid grid = MakeGrid();
    Fill(grid, Seq(5, 76, {"EUTRAN-1", "1"}, Seq(157, 14, {"EUTRAN-1", ""})));
    Fill(grid, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "90"}});
    auto item = CreateAcqItem(14, 5);
    try {
        item->ReadFromGrid(grid, kRow, {});
        ADD_FAILURE() << "90 bands taken";
    } catch (const GridError& e) {
        EXPECT_EQ(e.MessageId(), Msg::OutOfRange);
        EXPECT_EQ(e.Column(), 4);
        EXPECT_EQ(e.High(), 89);
    }
    grid.SetCellText(4, kRow, "89");
    grid.SetCellText(183, kRow, "");
    item->ReadFromGrid(grid, kRow, {});
    EXPECT_TRUE(item->IsValid());
    EXPECT_EQ(WriteRecord(*item, 5).bits, 255u * 8 + 16);
}

// A name missing from its list raises that list's data error rather than a grid error.
constexpr unsigned DataErr(int code) {
    return 1000u + static_cast<unsigned>(code);
}

struct GridErrorCase {
    const char* name;
    int code;
    Cells cells;
    unsigned message;  // 0: taken; DataErr(code): the data error
    int column;
    long long low = 0, high = 0;
};

// Every cell at its largest and smallest value is taken and one past it is refused with the
// range; gaps, missing cells and bad values name their cell.
TEST(AcqItemGrid, CellsAtTheirEdgesAndRowsThatCannotBeTakenBack) {
    const std::string bc3 = "3:850-MHz-JTACS";
    const std::string cdma = "0:800-MHz-Cellular";
    constexpr unsigned kRange = Msg::OutOfRange;
    constexpr unsigned kMissing = Msg::RequiredValueMissing;
    // clang-format off
    const std::vector<GridErrorCase> cases = {
        {"analog without a system", 1, {}, kMissing, 1},
        {"standard without a channel", 2, {{1, "A"}}, kMissing, 2},
        {"channels with a gap", 3, {{1, "25"}, {3, "50"}}, Msg::ChannelGap, 3},
        {"no first channel", 8, {{2, "25"}}, kMissing, 1},
        {"a bad value after good ones", 3, {{1, "25"}, {2, kBadValue}}, kMissing, 2},
        {"channel 2047", 3, {{1, "2047"}}, 0, 0},
        {"channel 2048", 3, {{1, "2048"}}, kRange, 1, 0, 2047},
        {"JTACS channels 1 and 1600", 8, {{1, "1"}, {2, "1600"}}, 0, 0},
        {"JTACS channel 1601", 8, {{1, "1"}, {2, "1601"}}, kRange, 2, 1, 1600},
        {"2GHz channel 0", 9, {{1, "0"}}, kRange, 1, 1, 1600},
        {"31 channels", 3, Seq(1, 31, {"1"}), 0, 0},
        {"a 32nd channel", 3, Seq(1, 32, {"1"}), kRange, 32, 1, 31},
        {"6 blocks", 5, Seq(1, 6, {"A"}), 0, 0},
        {"blocks with a gap", 5, {{1, "A"}, {4, "B"}}, Msg::ChannelGap, 4},
        {"127 pairs", 10, Seq(1, 127, {"5:450-MHz-NMT", "2047"}), 0, 0},
        {"a 128th pair", 10, Seq(1, 128, {cdma, "1"}), kRange, 255, 1, 127},
        {"band class 3 channels 2 and 1600", 10, {{1, bc3}, {2, "2"}, {3, bc3}, {4, "1600"}}, 0, 0},
        {"band class 3 channel 0", 10, {{1, bc3}, {2, "0"}}, kRange, 2, 1, 1600},
        {"band class 3 odd channel", 10, {{1, bc3}, {2, "101"}}, Msg::MustBeEven, 2},
        {"band class 3 channel 1602", 10, {{1, bc3}, {2, "1602"}}, kRange, 2, 1, 1600},
        {"band class 5 channel 2048", 10, {{1, "5:450-MHz-NMT"}, {2, "2048"}}, kRange, 2, 0, 2047},
        {"HDR band class 17 channels 140 and 1459", 11, Seq(1, 2, {"17:US2.5G-Forward-Link", "140"}, {{4, "1459"}}), 0, 0},
        {"HDR band class 17 channel 139", 11, {{1, "17:US2.5G-Forward-Link"}, {2, "139"}}, kRange, 2, 140, 1459},
        {"HDR band class 17 channel 1460", 11, {{1, "17:US2.5G-Forward-Link"}, {2, "1460"}}, kRange, 2, 140, 1459},
        {"HDR band class 18 channel 240", 11, {{1, "18:700-MHz-Public-Safety"}, {2, "240"}}, 0, 0},
        {"HDR band class 18 channel 241", 11, {{1, "18:700-MHz-Public-Safety"}, {2, "241"}}, kRange, 2, 0, 240},
        {"second pair 19 channel 360", 11, {{1, cdma}, {2, "1"}, {3, "19:700-MHz-Lower"}, {4, "360"}}, 0, 0},
        {"second pair 19 channel 361", 11, {{1, cdma}, {2, "1"}, {3, "19:700-MHz-Lower"}, {4, "361"}}, kRange, 4, 0, 360},
        {"band without its channel", 10, {{1, bc3}}, kMissing, 2},
        {"31 GSM bands", 12, Seq(1, 31, {"1:GSM-480"}), 0, 0},
        {"a 32nd GSM band", 12, Seq(1, 32, {"1:GSM-480"}), kRange, 32, 1, 31},
        {"31 UMTS entries, UARFCN 16383", 13, Seq(1, 31, {"BC1-IMT2G", "16383"}), 0, 0},
        {"a 32nd UMTS entry", 13, Seq(1, 32, {"BC1-IMT2G", ""}), kRange, 63, 1, 31},
        {"UARFCN without its band", 13, {{1, "BC1-IMT2G"}, {4, "10"}}, kMissing, 3},
        {"UARFCN 16384", 13, {{1, "BC1-IMT2G"}, {2, "16384"}}, kRange, 2, 0, 16383},
        {"UMB entries with a gap", 16, {{1, cdma}, {2, "1"}, {3, "128"}, {4, "2"}, {5, "Unknown"}, {11, "1:1900-MHz-PCS"}}, Msg::UmbGap, 11},
        {"UMB entry without its cyclic prefix", 16, {{1, cdma}, {2, "1"}, {3, "128"}, {4, "2"}}, kMissing, 5},
        {"GWL without technologies", 15, {{1, "0"}}, kRange, 1, 1, 3},
        {"GWL with three technologies, 66 bands in one", 15, Seq(4, 66, {"1:GSM-480", ""}, {{1, "3"}, {2, "GSM"}, {3, "66"},
         {136, "WCDMA"}, {137, "1"}, {138, "BC1-IMT2G"}, {139, "65535"}, {140, "LTE"}, {141, "1"}, {142, "EUTRAN-1"}}), 0, 0},
        {"GWL with four technologies", 15, {{1, "4"}}, kRange, 1, 1, 3},
        {"GWL with 67 bands", 15, {{1, "1"}, {2, "LTE"}, {3, "67"}}, kRange, 3, 1, 66},
        {"GWL technology without bands", 15, {{1, "1"}, {2, "LTE"}, {3, "0"}}, kRange, 3, 1, 66},
        {"GWL technology without a system mode", 15, {{1, "1"}, {3, "1"}}, kMissing, 2},
        {"GWL band gap", 15, {{1, "1"}, {2, "GSM"}, {3, "2"}, {6, "1:GSM-480"}}, Msg::TypeSpecificGap, 4},
        {"GWL value right of the last technology", 15, {{1, "1"}, {2, "GSM"}, {3, "1"}, {4, "1:GSM-480"}, {7, "8"}}, Msg::TypeSpecificGap, 7},
        {"GWL last band missing", 15, {{1, "1"}, {2, "GSM"}, {3, "2"}, {4, "1:GSM-480"}}, kMissing, 6},
        {"GWL UARFCN 65535", 15, {{1, "1"}, {2, "WCDMA"}, {3, "1"}, {4, "BC1-IMT2G"}, {5, "65535"}}, 0, 0},
        {"GWL UARFCN 65536", 15, {{1, "1"}, {2, "WCDMA"}, {3, "1"}, {4, "BC1-IMT2G"}, {5, "65536"}}, kRange, 5, 0, 65535},
        {"3GPP version 2", 14, {{1, "2"}, {2, "1"}}, Msg::VersionNotSupported, 1},
        {"3GPP without a version", 14, {{2, "1"}}, kMissing, 1},
        {"3GPP with 256 bands", 14, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "256"}}, kRange, 4, 1, 255},
        {"3GPP bands past the grid", 14, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "200"}}, kRange, 4, 1, 147},
        {"undefined record of 255 octets", 253, {{1, "255"}}, 0, 0},
        {"undefined record of 256 octets", 253, {{1, "256"}}, kRange, 1, 0, 255},
        // Names no list has.
        {"system", 1, {{1, "Invalid"}}, DataErr(7), 0},
        {"channel", 2, {{1, "A"}, {2, "Third"}}, DataErr(8), 0},
        {"block", 5, {{1, "G"}}, DataErr(9), 0},
        {"CDMA band", 10, {{1, "17:US2.5G-Forward-Link"}, {2, "1"}}, DataErr(25), 0},
        {"HDR band", 11, {{1, "13:2.5-GHz-IMT-Ext"}, {2, "1"}}, DataErr(26), 0},
        {"GSM band", 12, {{1, "9:GSM-990"}}, DataErr(27), 0},
        {"UMTS band", 13, {{1, "BC12"}}, DataErr(28), 0},
        {"GWL system mode", 15, {{1, "1"}, {2, "CDMA"}, {3, "1"}}, DataErr(30), 0},
        {"a 3GPP-only band in GWL", 15, {{1, "1"}, {2, "LTE"}, {3, "1"}, {4, "EUTRAN-250"}}, DataErr(4), 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MemoryGrid grid = MakeGrid();
        Fill(grid, c.cells);
        auto item = CreateAcqItem(c.code, 5);
        const std::string before = Bytes(*item);
        try {
            item->ReadFromGrid(grid, kRow, GridContext{5, nullptr});
            EXPECT_EQ(c.message, 0u) << "row was taken";
            continue;
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message);
            EXPECT_EQ(e.Column(), c.column);
            EXPECT_EQ(e.Row(), kRow);
            EXPECT_EQ(e.TableName(), "Acquisition Table");
            EXPECT_EQ(e.Low(), c.low);
            EXPECT_EQ(e.High(), c.high);
        } catch (const CDataException& e) {
            EXPECT_EQ(DataErr(e.Code()), c.message);
        }
        EXPECT_EQ(Bytes(*item), before);  // a refused row leaves the record as it was
    }
}

TEST(AcqItemGrid, MessagesReadAsTheUserSeesThem) {
    const std::vector<std::tuple<int, Cells, std::string>> cases = {
        {10,
         {{1, "3:850-MHz-JTACS"}, {2, "1602"}},
         "The value in column 2, row 3 of the Acquisition Table is out of range.\n"
         "The range for this input is 1 - 1600"},
        {3,
         {{1, "25"}, {3, "50"}},
         "At least one gap was detected between channels in record 3 of the ACQ table. "},
    };
    for (const auto& [code, cells, text] : cases) {
        MemoryGrid grid = MakeGrid();
        Fill(grid, cells);
        try {
            CreateAcqItem(code, 3)->ReadFromGrid(grid, kRow, {});
            ADD_FAILURE() << "row was taken";
        } catch (const GridError& e) {
            EXPECT_EQ(e.Text(), text);
        }
    }
}

// What the grid does not show survives an edit: the UMB spare field, and the octets of an
// undefined record whose length grows.
TEST(AcqItemGrid, ValuesTheGridDoesNotShowAreKept) {
    MemoryGrid grid = MakeGrid();
    auto umb = Make<CAcqItemGenericUmb>(16);
    umb->SetEntries({{1, 10, 1, 2, 1, 0x5A}});
    umb->WriteToGrid(grid, kRow);
    grid.SetCellText(2, kRow, "11");
    umb->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(umb->GetEntries(), (std::vector<UmbEntry>{{1, 11, 1, 2, 1, 0x5A}}));

    auto special = Make<CAcqItemSpecial>(253);
    special->SetData({0xAA, 0xBB});
    special->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.GetCellText(1, kRow), "2");
    grid.SetCellText(1, kRow, "3");
    special->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(special->GetData(), (std::vector<uint8_t>{0xAA, 0xBB, 0x00}));
}

TEST(AcqItemGrid, HeadingsTitleTheColumnsOfTheSelectedType) {
    // clang-format off
    const std::vector<std::pair<int, Cells>> cases = {
        {1, {{1, "System"}, {2, ""}}},
        {7, {{1, "System"}, {2, "Channel"}, {3, ""}}},
        {6, {{1, "Channel 1"}, {32, "Channel 32"}, {33, ""}}},
        {5, {{1, "Block 1"}, {6, "Block 6"}, {7, ""}}},
        {11, {{1, "Band 1"}, {2, "Channel 1"}, {255, "Band 128"}, {256, "Channel 128"}, {257, ""}}},
        {12, {{1, "Band 1"}, {32, "Band 32"}}},
        {13, {{1, "Band 1"}, {2, "UARFCN 1"}, {100, "UARFCN 50"}, {101, ""}}},
        {16, {{6, "Band 2"}, {7, "Channel 2"}, {8, "FFT Size 2"}, {9, "Num Guard 2"}, {80, "Cyclic Prefix 16"}, {81, ""}}},
        {15, {{1, "Num Rats"}, {2, "SysMode 1"}, {3, "Num Bands"}, {4, "Band 1"}, {5, "Uarfcn 1"}, {6, "SysMode 2"}, {8, "Band 1"}, {10, "SysMode 3"}, {12, "Band 1"}, {14, "Band 2"}, {15, "Uarfcn 2"}, {16, ""}, {299, ""}}},
        {14, {{1, "Version"}, {2, "Num Rats"}, {3, "SysMode 1"}, {5, "Band 1"}, {7, "Band 2"}, {9, "SysMode 2"}}},
        {253, {{1, "Data Length"}, {2, ""}}},
    };
    // clang-format on
    const auto samples = SampleRecords();
    for (const auto& [code, headings] : cases) {
        SCOPED_TRACE(code);
        MemoryGrid grid = MakeGrid();
        for (int col = 0; col < 300; ++col) grid.SetColumnHeading(col, "stale");
        const CAcqItem* item = nullptr;
        for (const auto& s : samples)
            if (s->GetAcqType() == code) item = s.get();
        ASSERT_TRUE(item);
        EXPECT_TRUE(item->OnGridHeading(grid, kGridHeadingEvent + 1));
        EXPECT_EQ(grid.GetColumnHeading(1), "stale");
        EXPECT_TRUE(item->OnGridHeading(grid, kGridHeadingEvent));
        EXPECT_EQ(grid.GetColumnHeading(0), "stale");  // the type column is the grid's
        for (const auto& [col, text] : headings) EXPECT_EQ(grid.GetColumnHeading(col), text) << col;
    }
}

}  // namespace
}  // namespace Tarn
