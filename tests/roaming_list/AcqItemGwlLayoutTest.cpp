// Editing a count or a system mode of a GWL Generic row moves the later cells to fit, so a user
// can grow a technology's band list without retyping the technologies after it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "roaming_list/AcqItem.h"

namespace Tarn {
namespace {

struct Row {
    MemoryGrid grid{"Acquisition Table", 300, 1};
    std::unique_ptr<CAcqItem> item = CreateAcqItem(15, 5);

    Row() {
        item->FromJson(nlohmann::json::parse(R"({"technologies": [
            {"sysMode": 9, "bands": [{"band": 12}]},
            {"sysMode": 5, "bands": [{"band": 1, "uarfcn": 4385}]}]})"));
        item->WriteToGrid(grid, 0);
    }
    // Types `text` into a cell the way the editor does, then lets the record lay the row out.
    bool Edit(int column, const std::string& text) {
        const std::string old = grid.GetCellText(column, 0);
        grid.SetCellText(column, 0, text);
        return item->OnCellEdited(grid, 0, column, old);
    }
    std::vector<std::string> Cells(int from, int to) const {
        std::vector<std::string> out;
        for (int c = from; c <= to; ++c) out.push_back(grid.GetCellText(c, 0));
        return out;
    }
};

using Cells = std::vector<std::string>;

TEST(GwlRowLayout, ABandCountMakesRoomAndTheNextTechnologyMoves) {
    Row r;
    ASSERT_EQ(r.Cells(1, 9), (Cells{"2", "LTE", "1", "EUTRAN-13", "", "WCDMA", "1", "BC2-PCS1.9G", "4385"}));
    EXPECT_TRUE(r.Edit(3, "2"));
    EXPECT_EQ(r.Cells(1, 12), (Cells{"2", "LTE", "2", "EUTRAN-13", "", "", "", "WCDMA", "1",
                                     "BC2-PCS1.9G", "4385", ""}));
    EXPECT_EQ(r.grid.GetCellKind(6, 0), CellKind::DropDown);

    // Until the new band is chosen the row does not read, but its headings already follow it.
    auto item = CreateAcqItem(15, 5);
    EXPECT_THROW(item->ReadFromGrid(r.grid, 0, GridContext{5, nullptr}), GridError);
    item->AdoptRowLayout(r.grid, 0);
    item->OnGridHeading(r.grid, kGridHeadingEvent);
    EXPECT_EQ(r.grid.GetColumnHeading(6), "Band 2");
    EXPECT_EQ(r.grid.GetColumnHeading(8), "SysMode 2");

    r.grid.SetCellText(6, 0, "EUTRAN-4");
    EXPECT_NO_THROW(item->ReadFromGrid(r.grid, 0, GridContext{5, nullptr}));

    EXPECT_TRUE(r.Edit(3, "1"));  // and back: the last band goes
    EXPECT_EQ(r.Cells(4, 10), (Cells{"EUTRAN-13", "", "WCDMA", "1", "BC2-PCS1.9G", "4385", ""}));
}

TEST(GwlRowLayout, TechnologyCountAndSystemModeRelayTheRow) {
    Row r;
    EXPECT_TRUE(r.Edit(1, "1"));
    EXPECT_EQ(r.Cells(1, 7), (Cells{"1", "LTE", "1", "EUTRAN-13", "", "", ""}));

    EXPECT_TRUE(r.Edit(1, "2"));  // a new technology starts with one empty band
    EXPECT_EQ(r.Cells(1, 9), (Cells{"2", "LTE", "1", "EUTRAN-13", "", "", "1", "", ""}));

    EXPECT_TRUE(r.Edit(2, "GSM"));  // its bands are now offered from the GSM list
    auto choices = r.grid.GetCellChoices(4, 0);
    ASSERT_TRUE(choices);
    EXPECT_EQ(choices->front(), "0:GSM-450");

    EXPECT_FALSE(r.Edit(5, "700"));  // a UARFCN places nothing
    EXPECT_FALSE(r.Edit(4, "1:GSM-480"));
}

}  // namespace
}  // namespace Tarn
