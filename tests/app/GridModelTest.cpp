// The Qt grid: a type cell's edit lands in the grid and undoes and redoes as one step; the
// clipboard text round-trips; a full-size table stays sparse and its rows go and come back whole.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QUndoStack>

#include "grid/qt/GridModel.h"
#include "grid/qt/GridRoles.h"
#include "grid/qt/GridView.h"

namespace Tarn {
namespace {

struct GridFixture {
    QUndoStack stack;
    GridModel model{"Test Table", 300, 8};
    GridFixture() {
        model.SetUndoStack(&stack);
        model.SetRowCount(3);
    }
    std::string At(int c, int r) const { return model.GetCellText(c, r); }
};

TEST(GridModel, TypeCellGoesThroughTheHandlerAndUndoesAsOneStep) {
    GridFixture f;
    f.model.SetTypeHandler([](GridModel& g, int row, const std::string& text) {
        g.ClearRow(row);
        g.SetCellDropDown(0, row, MakeChoices({"A", "B"}));
        g.SetCellText(0, row, text);
        g.SetCellCheckBox(3, row);
        g.SetCellText(3, row, "1");
        g.SetCellEdit(4, row, "9999");
        g.SetCellText(4, row, text == "A" ? "12" : "34");
    });
    f.model.SetCellText(5, 0, "stale");
    // A pasted row: its type lands first, the other cells on top of the new record.
    f.model.EditCells({{4, 0, "77"}, {0, 0, "B"}}, "Paste");
    EXPECT_EQ(f.At(0, 0), "B");
    EXPECT_EQ(f.At(4, 0), "77");
    EXPECT_EQ(f.At(5, 0), "");
    EXPECT_EQ(f.model.GetCellKind(3, 0), CellKind::CheckBox);
    EXPECT_EQ(f.model.data(f.model.index(0, 3), Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(f.model.data(f.model.index(0, 4), kCellMaskRole).toString(), "9999");

    f.model.setData(f.model.index(0, 3), Qt::Unchecked, Qt::CheckStateRole);
    f.model.setData(f.model.index(0, 3), Qt::Unchecked, Qt::CheckStateRole);  // the same again records nothing
    EXPECT_EQ(f.At(3, 0), "0");
    EXPECT_EQ(f.stack.count(), 2);
    f.stack.undo();
    f.stack.undo();
    EXPECT_EQ(f.At(0, 0), "");
    EXPECT_EQ(f.At(5, 0), "stale");
    EXPECT_EQ(f.model.GetCellKind(3, 0), CellKind::Edit);
    f.stack.redo();
    EXPECT_EQ(f.At(4, 0), "77");
    EXPECT_EQ(f.model.GetCellKind(0, 0), CellKind::DropDown);
}

TEST(GridModel, FullSizeTableWithWideRowsIsSparse) {
    QUndoStack stack;
    GridModel model("System Table", 300, 16);
    model.SetUndoStack(&stack);
    model.BeginBatch();
    model.SetRowCount(16383);
    for (int r = 0; r < 16383; r += 97) model.SetCellText(299, r, "w");
    model.SetCellText(3, 16382, "last");
    model.EndBatch();
    EXPECT_EQ(model.data(model.index(16382, 3), Qt::DisplayRole).toString(), "last");
    EXPECT_EQ(model.data(model.index(97, 299), Qt::DisplayRole).toString(), "w");
    // Removing every row is one step, and one undo brings them all back.
    std::vector<int> all(16383);
    for (int i = 0; i < 16383; ++i) all[static_cast<size_t>(i)] = i;
    model.RemoveRows(all, "Delete");
    EXPECT_EQ(model.rowCount(), 0);
    stack.undo();
    EXPECT_EQ(model.rowCount(), 16383);
    EXPECT_EQ(model.GetCellText(3, 16382), "last");
}

TEST(GridView, ClipboardTextRoundTripsAndPasteAddsRows) {
    EXPECT_EQ(GridView::ParseCells("a\tb\r\nc\t\n"),
              (std::vector<std::vector<std::string>>{{"a", "b"}, {"c", ""}}));
    EXPECT_TRUE(GridView::ParseCells("").empty());

    QUndoStack stack;
    GridModel model("T", 300, 6);
    model.SetUndoStack(&stack);
    model.SetRowCount(2);
    GridView view;
    view.SetGridModel(&model);
    model.SetCellText(1, 0, "x");
    model.SetCellText(2, 0, "y");
    model.SetCellText(1, 1, "z");
    view.selectionModel()->select(QItemSelection(model.index(0, 1), model.index(1, 2)),
                                  QItemSelectionModel::Select);
    EXPECT_EQ(view.SelectionText(), "x\ty\nz\t\n");

    view.setCurrentIndex(model.index(1, 3));
    view.PasteText("1\t2\n3\t4\n5\t6\n");
    EXPECT_EQ(model.rowCount(), 4);
    EXPECT_EQ(model.GetCellText(3, 1), "1");
    EXPECT_EQ(model.GetCellText(4, 3), "6");
    // The whole paste, new rows included, is one undo step.
    stack.undo();
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.GetCellText(3, 1), "");

    // One value over a selection fills it; Cut leaves the type column alone.
    view.selectionModel()->clearSelection();
    view.selectionModel()->select(QItemSelection(model.index(0, 0), model.index(1, 1)),
                                  QItemSelectionModel::Select);
    view.PasteText("v");
    EXPECT_EQ(model.GetCellText(1, 1), "v");
    view.Cut();
    EXPECT_EQ(QApplication::clipboard()->text(), "v\tv\nv\tv\n");
    EXPECT_EQ(model.GetCellText(0, 0), "v");
    EXPECT_EQ(model.GetCellText(1, 0), "");
}

}  // namespace
}  // namespace Tarn
