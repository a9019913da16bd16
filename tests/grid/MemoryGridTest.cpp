#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "grid/MemoryGrid.h"

namespace Tarn {
namespace {

// The texts of column 0, one per row.
std::vector<std::string> FirstColumn(const MemoryGrid& g) {
    std::vector<std::string> texts;
    for (int row = 0; row < g.GetRowCount(); ++row) texts.push_back(g.GetCellText(0, row));
    return texts;
}

MemoryGrid Lettered(int rows) {
    MemoryGrid g("T", 3, rows);
    for (int row = 0; row < rows; ++row) g.SetCellText(0, row, std::string(1, static_cast<char>('a' + row)));
    return g;
}

TEST(MemoryGrid, StoresOnlyTouchedCellsInsideTheGrid) {
    MemoryGrid g("System Table", 300, 16383);
    g.SetCellText(0, 0, "x");
    g.SetCellText(299, 16382, "y");  // the last cell
    g.SetCellCheckBox(5, 100);
    EXPECT_EQ(g.GetCellText(299, 16382), "y");
    EXPECT_EQ(g.GetCellText(150, 8000), "");
    EXPECT_EQ(g.StoredCellCount(), 3u);  // reading creates nothing

    const struct {
        int column;
        int row;
    } outside[] = {{-1, 0}, {0, -1}, {300, 0}, {0, 16383}};
    for (auto c : outside) {
        g.SetCellText(c.column, c.row, "z");
        g.SetCellDropDown(c.column, c.row, MakeChoices({"a"}));
        EXPECT_EQ(g.GetCellText(c.column, c.row), "");
    }
    EXPECT_EQ(g.StoredCellCount(), 3u);
    for (int column : {-1, 300}) {
        g.SetColumnHeading(column, "outside");
        EXPECT_EQ(g.GetColumnHeading(column), "");
    }
    g.SetColumnHeading(299, "last");
    EXPECT_EQ(g.GetColumnHeading(299), "last");
    g.SetTableName("Acquisition Table");
    EXPECT_EQ(g.GetTableName(), "Acquisition Table");
}

TEST(MemoryGrid, InsertAndRemoveRowsMoveWholeRows) {
    const struct {
        const char* name;
        void (*edit)(MemoryGrid&);
        std::vector<std::string> column0;
    } cases[] = {
        {"insert in the middle", [](MemoryGrid& g) { g.InsertRow(1); }, {"a", "", "b", "c"}},
        {"insert at the top", [](MemoryGrid& g) { g.InsertRow(0); }, {"", "a", "b", "c"}},
        {"append", [](MemoryGrid& g) { g.InsertRow(3); }, {"a", "b", "c", ""}},
        {"insert out of range", [](MemoryGrid& g) { g.InsertRow(4), g.InsertRow(-1); }, {"a", "b", "c"}},
        {"remove the first", [](MemoryGrid& g) { g.RemoveRow(0); }, {"b", "c"}},
        {"remove the last", [](MemoryGrid& g) { g.RemoveRow(2); }, {"a", "b"}},
        {"remove out of range", [](MemoryGrid& g) { g.RemoveRow(3), g.RemoveRow(-1); }, {"a", "b", "c"}},
        {"remove then insert", [](MemoryGrid& g) { g.RemoveRow(1), g.InsertRow(1); }, {"a", "", "c"}},
    };
    for (const auto& c : cases) {
        MemoryGrid g = Lettered(3);
        g.SetCellCheckBox(2, 2);  // the kind travels with its row
        c.edit(g);
        EXPECT_EQ(FirstColumn(g), c.column0) << c.name;
        for (int row = 0; row < g.GetRowCount(); ++row)
            EXPECT_EQ(g.GetCellKind(2, row) == CellKind::CheckBox, g.GetCellText(0, row) == "c") << c.name << row;
    }
}

TEST(MemoryGrid, ShrinkingAndClearingDropCellsForGood) {
    MemoryGrid g = Lettered(3);
    g.SetCellText(2, 0, "far");
    g.SetColumnCount(2);
    g.SetRowCount(2);
    g.SetColumnCount(3);
    g.SetRowCount(3);
    EXPECT_EQ(g.GetCellText(2, 0), "");
    EXPECT_EQ(FirstColumn(g), (std::vector<std::string>{"a", "b", ""}));

    for (int column = 0; column < 3; ++column) g.SetCellCheckBox(column, 1);
    g.ClearRow(1, 1);  // from column 1 on
    EXPECT_EQ(g.GetCellKind(0, 1), CellKind::CheckBox);
    EXPECT_EQ(g.GetCellKind(1, 1), CellKind::Edit);
    g.ClearRow(0);
    g.ClearRow(5);
    EXPECT_EQ(g.StoredCellCount(), 1u);

    g.SetRowCount(-4);
    g.SetColumnCount(-1);
    EXPECT_EQ(g.GetRowCount(), 0);
    EXPECT_EQ(g.GetColumnCount(), 0);
    EXPECT_EQ(g.StoredCellCount(), 0u);
}

TEST(MemoryGrid, CellKindsReplaceEachOtherAndKeepTheText) {
    MemoryGrid g("T", 2, 1);
    EXPECT_EQ(g.GetCellKind(0, 0), CellKind::Edit);
    EXPECT_EQ(g.GetCellChoices(0, 0), nullptr);

    const ChoiceList bands = MakeChoices({"PCS", "Cellular"});
    g.SetCellEdit(0, 0, "99999");
    g.SetCellDropDown(0, 0, bands);
    EXPECT_EQ(g.GetCellKind(0, 0), CellKind::DropDown);
    EXPECT_EQ(g.GetCellMask(0, 0), "");
    EXPECT_EQ(g.GetCellChoices(0, 0), bands);  // shared, not copied

    g.SetCellText(0, 0, "1");
    g.SetCellCheckBox(0, 0);
    EXPECT_EQ(g.GetCellChoices(0, 0), nullptr);
    EXPECT_TRUE(g.IsCellChecked(0, 0));
    g.SetCellText(0, 0, "0");
    EXPECT_FALSE(g.IsCellChecked(0, 0));
    g.SetCellEdit(0, 0, "AAA");
    EXPECT_EQ(g.GetCellKind(0, 0), CellKind::Edit);
    EXPECT_EQ(g.GetCellMask(0, 0), "AAA");
    EXPECT_EQ(g.GetCellText(0, 0), "0");
}

}  // namespace
}  // namespace Tarn
