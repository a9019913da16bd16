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

constexpr int kRow = 3;

MemoryGrid MakeGrid(int columns = 300) {
    return MemoryGrid("Acquisition Table", columns, 6);
}

void Fill(MemoryGrid& grid, const std::map<int, std::string>& cells) {
    for (const auto& [column, text] : cells) grid.SetCellText(column, kRow, text);
}

TEST(AcqItemGrid, EveryTypeComesBackFromItsOwnRow) {
    for (const auto& item : SampleRecords()) {
        SCOPED_TRACE(item->GetAcqType());
        MemoryGrid grid = MakeGrid();
        grid.SetCellText(0, kRow, "type cell");
        grid.SetCellText(299, kRow, "left over from another type");
        item->WriteToGrid(grid, kRow);
        EXPECT_EQ(grid.GetCellText(0, kRow), "type cell");
        auto fresh = CreateAcqItem(item->GetAcqType(), 5);
        fresh->ReadFromGrid(grid, kRow, GridContext{5, nullptr});
        EXPECT_EQ(Bytes(*fresh), Bytes(*item));
    }
}

TEST(AcqItemGrid, CellsCarryTheirListsAndMasks) {
    auto custom = Make<CAcqItemCellularCdmaCustom>(3);
    custom->SetChannels({25});
    auto umts = Make<CAcqItemGenericUmts>(13);
    umts->SetEntries({{0, std::nullopt}});
    auto blocks = Make<CAcqItemPcsCdmaBlocks>(5);
    blocks->SetBlocks({7});
    const auto& names = CRLNameTables::Instance();

    MemoryGrid grid = MakeGrid();
    custom->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.GetCellText(1, kRow), "25");
    EXPECT_EQ(grid.GetCellMask(32, kRow), "9999");  // room for every channel column
    EXPECT_EQ(grid.GetCellKind(33, kRow), CellKind::Edit);
    EXPECT_EQ(grid.GetCellMask(33, kRow), "");

    umts->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.GetCellText(1, kRow), "BC1-IMT2G");
    EXPECT_EQ(grid.GetCellChoices(1, kRow), names.UmtsBand().Choices());
    EXPECT_EQ(grid.GetCellMask(2, kRow), "99999");
    EXPECT_EQ(grid.GetCellText(2, kRow), "");
    EXPECT_EQ(grid.GetCellMask(32, kRow), "99999");  // old channel cells are gone

    blocks->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.GetCellText(1, kRow), "Any");
    EXPECT_EQ(grid.GetCellKind(6, kRow), CellKind::DropDown);
    EXPECT_EQ(grid.GetCellChoices(6, kRow), names.Block().Choices());
    EXPECT_EQ(grid.StoredCellCount(), 6u);
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

TEST(AcqItemGrid, NeverWritesPastTheLastColumn) {
    for (int columns : {2, 3, 7, 300}) {
        for (const auto& item : SampleRecords()) {
            SCOPED_TRACE(std::to_string(item->GetAcqType()) + " in " + std::to_string(columns));
            NarrowGrid grid("Acquisition Table", columns, 6);
            item->WriteToGrid(grid, kRow);
            item->OnGridHeading(grid, kGridHeadingEvent);
            EXPECT_EQ(grid.outside, 0);
            EXPECT_NE(grid.GetCellText(1, kRow), "");
        }
    }
}

TEST(AcqItemGrid, BandCountsStopWhereTheRecordIsFull) {
    // 3GPP bands with a UARFCN take 25 bits: after 23 bits of header, 80 fill the 255 octets.
    MemoryGrid grid = MakeGrid();
    Fill(grid, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "100"}});
    for (int j = 0; j < 100; ++j) Fill(grid, {{5 + 2 * j, "EUTRAN-1"}, {6 + 2 * j, "1"}});
    auto item = CreateAcqItem(14, 5);
    try {
        item->ReadFromGrid(grid, kRow, {});
        FAIL();
    } catch (const GridError& e) {
        EXPECT_EQ(e.MessageId(), Msg::OutOfRange);
        EXPECT_EQ(e.Column(), 4);
        EXPECT_EQ(e.High(), 80);
    }
    grid.SetCellText(4, kRow, "80");
    for (int c = 165; c < 300; ++c) grid.SetCellText(c, kRow, "");
    item->ReadFromGrid(grid, kRow, {});
    EXPECT_TRUE(item->IsValid());
    EXPECT_EQ(WriteRecord(*item, 5).bits, 253u * 8 + 16);  // one more band would need 256
}

struct GridErrorCase {
    const char* name;
    int code;
    std::map<int, std::string> cells;
    unsigned message;
    int column;
    long long low = 0, high = 0;
};

TEST(AcqItemGrid, RowsThatCannotBeTakenBackNameTheirCell) {
    const std::string bc3 = "3:850-MHz-JTACS";
    // clang-format off
    const std::vector<GridErrorCase> cases = {
        {"analog without a system", 1, {}, Msg::RequiredValueMissing, 1},
        {"standard without a channel", 2, {{1, "A"}}, Msg::RequiredValueMissing, 2},
        {"channels with a gap", 3, {{1, "25"}, {3, "50"}}, Msg::ChannelGap, 3},
        {"no first channel", 8, {{2, "25"}}, Msg::RequiredValueMissing, 1},
        {"a bad value after good ones", 3, {{1, "25"}, {2, kBadValue}}, Msg::RequiredValueMissing, 2},
        {"a channel the field cannot hold", 3, {{1, "3000"}}, Msg::OutOfRange, 1, 0, 2047},
        {"JTACS channel 1601", 8, {{1, "1"}, {2, "1601"}}, Msg::OutOfRange, 2, 1, 1600},
        {"2GHz channel 0", 9, {{1, "0"}}, Msg::OutOfRange, 1, 1, 1600},
        {"a 32nd channel", 3, {}, Msg::OutOfRange, 32, 1, 31},
        {"blocks with a gap", 5, {{1, "A"}, {4, "B"}}, Msg::ChannelGap, 4},
        {"band class 3 odd channel", 10, {{1, bc3}, {2, "101"}}, Msg::MustBeEven, 2},
        {"band class 3 channel 1602", 10, {{1, bc3}, {2, "1602"}}, Msg::OutOfRange, 2, 1, 1600},
        {"band class 5 channel 3000 does not fit 11 bits", 10, {{1, "5:450-MHz-NMT"}, {2, "3000"}}, Msg::OutOfRange, 2, 0, 2047},
        {"HDR band class 17 channel 139", 11, {{1, "17:US2.5G-Forward-Link"}, {2, "139"}}, Msg::OutOfRange, 2, 140, 1459},
        {"HDR band class 18 channel 241", 11, {{1, "18:700-MHz-Public-Safety"}, {2, "241"}}, Msg::OutOfRange, 2, 0, 240},
        {"second pair 19 channel 361", 11, {{1, "0:800-MHz-Cellular"}, {2, "1"}, {3, "19:700-MHz-Lower"}, {4, "361"}}, Msg::OutOfRange, 4, 0, 360},
        {"band without its channel", 10, {{1, bc3}}, Msg::RequiredValueMissing, 2},
        {"UARFCN without its band", 13, {{1, "BC1-IMT2G"}, {4, "10"}}, Msg::RequiredValueMissing, 3},
        {"UARFCN past 14 bits", 13, {{1, "BC1-IMT2G"}, {2, "16384"}}, Msg::OutOfRange, 2, 0, 16383},
        {"UMB entries with a gap", 16, {{1, "0:800-MHz-Cellular"}, {2, "1"}, {3, "128"}, {4, "2"}, {5, "Unknown"}, {11, "1:1900-MHz-PCS"}}, Msg::UmbGap, 11},
        {"UMB entry without its cyclic prefix", 16, {{1, "0:800-MHz-Cellular"}, {2, "1"}, {3, "128"}, {4, "2"}}, Msg::RequiredValueMissing, 5},
        {"GWL without technologies", 15, {{1, "0"}}, Msg::OutOfRange, 1, 1, 3},
        {"GWL with four technologies", 15, {{1, "4"}}, Msg::OutOfRange, 1, 1, 3},
        {"GWL with 67 bands", 15, {{1, "1"}, {2, "LTE"}, {3, "67"}}, Msg::OutOfRange, 3, 1, 66},
        {"GWL technology without bands", 15, {{1, "1"}, {2, "LTE"}, {3, "0"}}, Msg::OutOfRange, 3, 1, 66},
        {"GWL technology without a system mode", 15, {{1, "1"}, {3, "1"}}, Msg::RequiredValueMissing, 2},
        {"GWL band gap", 15, {{1, "1"}, {2, "GSM"}, {3, "2"}, {6, "1:GSM-480"}}, Msg::TypeSpecificGap, 4},
        {"GWL value right of the last technology", 15, {{1, "1"}, {2, "GSM"}, {3, "1"}, {4, "1:GSM-480"}, {7, "8"}}, Msg::TypeSpecificGap, 7},
        {"GWL last band missing", 15, {{1, "1"}, {2, "GSM"}, {3, "2"}, {4, "1:GSM-480"}}, Msg::RequiredValueMissing, 6},
        {"GWL UARFCN past 16 bits", 15, {{1, "1"}, {2, "WCDMA"}, {3, "1"}, {4, "BC1-IMT2G"}, {5, "65536"}}, Msg::OutOfRange, 5, 0, 65535},
        {"3GPP version 2", 14, {{1, "2"}, {2, "1"}}, Msg::VersionNotSupported, 1},
        {"3GPP without a version", 14, {{2, "1"}}, Msg::RequiredValueMissing, 1},
        {"3GPP with 256 bands", 14, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "256"}}, Msg::OutOfRange, 4, 1, 255},
        {"3GPP bands past the grid", 14, {{1, "1"}, {2, "1"}, {3, "LTE"}, {4, "200"}}, Msg::OutOfRange, 4, 1, 147},
        {"undefined record of 256 octets", 253, {{1, "256"}}, Msg::OutOfRange, 1, 0, 255},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MemoryGrid grid = MakeGrid();
        Fill(grid, c.cells);
        if (c.column == 32 && c.message == Msg::OutOfRange)
            for (int col = 1; col <= 32; ++col) grid.SetCellText(col, kRow, "1");
        auto item = CreateAcqItem(c.code, 5);
        const std::string before = Bytes(*item);
        try {
            item->ReadFromGrid(grid, kRow, GridContext{5, nullptr});
            ADD_FAILURE() << "row was taken";
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message);
            EXPECT_EQ(e.Column(), c.column);
            EXPECT_EQ(e.Row(), kRow);
            EXPECT_EQ(e.TableName(), "Acquisition Table");
            if (c.message == Msg::OutOfRange) {
                EXPECT_EQ(e.Low(), c.low);
                EXPECT_EQ(e.High(), c.high);
            }
        }
        EXPECT_EQ(Bytes(*item), before);  // a refused row leaves the record as it was
    }
}

TEST(AcqItemGrid, MessagesReadAsTheUserSeesThem) {
    MemoryGrid grid = MakeGrid();
    Fill(grid, {{1, "3:850-MHz-JTACS"}, {2, "1602"}});
    auto item = CreateAcqItem(10, 3);
    try {
        item->ReadFromGrid(grid, kRow, {});
        FAIL();
    } catch (const GridError& e) {
        EXPECT_EQ(e.Text(),
                  "The value in column 2, row 3 of the Acquisition Table is out of range.\n"
                  "The range for this input is 1 - 1600");
    }
    grid.ClearRow(kRow);
    Fill(grid, {{1, "25"}, {3, "50"}});
    item = CreateAcqItem(3, 3);
    try {
        item->ReadFromGrid(grid, kRow, {});
        FAIL();
    } catch (const GridError& e) {
        EXPECT_EQ(e.Text(),
                  "At least one gap was detected between channels in record 3 of the ACQ table. ");
    }
}

TEST(AcqItemGrid, UnknownNamesAreDataErrorsOfTheirList) {
    // clang-format off
    const std::vector<std::tuple<int, std::map<int, std::string>, int>> cases = {
        {1, {{1, "Invalid"}}, 7},
        {2, {{1, "A"}, {2, "Third"}}, 8},
        {5, {{1, "G"}}, 9},
        {10, {{1, "17:US2.5G-Forward-Link"}, {2, "1"}}, 25},
        {11, {{1, "13:2.5-GHz-IMT-Ext"}, {2, "1"}}, 26},
        {12, {{1, "9:GSM-990"}}, 27},
        {13, {{1, "BC12"}}, 28},
        {15, {{1, "1"}, {2, "CDMA"}, {3, "1"}}, 30},
        {15, {{1, "1"}, {2, "LTE"}, {3, "1"}, {4, "EUTRAN-250"}}, 4},  // 3GPP-only band
    };
    // clang-format on
    for (const auto& [code, cells, error] : cases) {
        SCOPED_TRACE(code);
        MemoryGrid grid = MakeGrid();
        Fill(grid, cells);
        auto item = CreateAcqItem(code, 5);
        try {
            item->ReadFromGrid(grid, kRow, {});
            ADD_FAILURE() << "row was taken";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), error);
        }
    }
}

TEST(AcqItemGrid, AcceptedRowsKeepTheirValues) {
    MemoryGrid grid = MakeGrid();
    // Trailing empty cells are fine; a single channel is a list.
    Fill(grid, {{1, "25"}});
    auto custom = Make<CAcqItemCellularCdmaCustom>(3);
    custom->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(custom->GetChannels(), std::vector<uint16_t>{25});

    grid.ClearRow(kRow);
    Fill(grid, {{1, "5:450-MHz-NMT"}, {2, "2047"}, {3, "3:850-MHz-JTACS"}, {4, "1600"}});
    auto cdma = Make<CAcqItemGenericCdma>(10);
    cdma->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(cdma->GetPairs(), (std::vector<BandChannel>{{5, 2047}, {3, 1600}}));

    // The UMB spare field is not in the grid; an edit keeps it.
    auto umb = Make<CAcqItemGenericUmb>(16);
    umb->SetEntries({{1, 10, 1, 2, 1, 0x5A}});
    umb->WriteToGrid(grid, kRow);
    grid.SetCellText(2, kRow, "11");
    umb->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(umb->GetEntries(), (std::vector<UmbEntry>{{1, 11, 1, 2, 1, 0x5A}}));

    // So are the octets of an undefined record whose length grows.
    auto special = Make<CAcqItemSpecial>(253);
    special->SetData({0xAA, 0xBB});
    special->WriteToGrid(grid, kRow);
    EXPECT_EQ(grid.GetCellText(1, kRow), "2");
    grid.SetCellText(1, kRow, "3");
    special->ReadFromGrid(grid, kRow, {});
    EXPECT_EQ(special->GetData(), (std::vector<uint8_t>{0xAA, 0xBB, 0x00}));
}

TEST(AcqItemGrid, HeadingsTitleTheColumnsOfTheSelectedType) {
    struct Case {
        int code;
        std::map<int, std::string> headings;
    };
    // clang-format off
    const std::vector<Case> cases = {
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        MemoryGrid grid = MakeGrid();
        for (int col = 0; col < 300; ++col) grid.SetColumnHeading(col, "stale");
        const CAcqItem* item = nullptr;
        for (const auto& s : samples)
            if (s->GetAcqType() == c.code) item = s.get();
        ASSERT_TRUE(item);

        EXPECT_TRUE(item->OnGridHeading(grid, kGridHeadingEvent + 1));
        EXPECT_EQ(grid.GetColumnHeading(1), "stale");

        EXPECT_TRUE(item->OnGridHeading(grid, kGridHeadingEvent));
        EXPECT_EQ(grid.GetColumnHeading(0), "stale");  // the type column is the grid's
        for (const auto& [col, text] : c.headings)
            EXPECT_EQ(grid.GetColumnHeading(col), text) << col;
    }
}

}  // namespace
}  // namespace Tarn
