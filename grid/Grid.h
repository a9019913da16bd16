// The abstract spreadsheet a record edits itself through: cell text by column and row, cell kinds,
// drop-down choices, edit masks and column headings. No Qt here; the editor adapts it to a view.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Tarn {

// The heading event: the grid asks the record of the selected row to title the columns.
inline constexpr int kGridHeadingEvent = 10000;

// The marker a cell holds when the value typed into it failed the cell's own check.
inline constexpr const char* kBadValue = "BADVAL";

enum class CellKind { Edit, DropDown, CheckBox };

// Drop-down choices are shared between the many cells that offer the same list.
using ChoiceList = std::shared_ptr<const std::vector<std::string>>;

class Grid {
public:
    virtual ~Grid() = default;

    // Columns and rows are zero-based. Reading a cell outside the grid gives an empty text.
    virtual int GetColumnCount() const = 0;
    virtual int GetRowCount() const = 0;
    virtual void SetColumnCount(int columns) = 0;
    virtual void SetRowCount(int rows) = 0;

    virtual std::string GetCellText(int column, int row) const = 0;
    virtual void SetCellText(int column, int row, const std::string& text) = 0;

    // A cell is an edit cell with no mask until a record says otherwise.
    virtual void SetCellEdit(int column, int row, const std::string& mask) = 0;
    virtual void SetCellDropDown(int column, int row, ChoiceList choices) = 0;
    virtual void SetCellCheckBox(int column, int row) = 0;
    virtual CellKind GetCellKind(int column, int row) const = 0;
    virtual std::string GetCellMask(int column, int row) const = 0;
    virtual ChoiceList GetCellChoices(int column, int row) const = 0;

    // Clears text and kind of every cell of a row from `fromColumn` on.
    virtual void ClearRow(int row, int fromColumn = 0) = 0;

    virtual std::string GetColumnHeading(int column) const = 0;
    virtual void SetColumnHeading(int column, const std::string& heading) = 0;

    // The name of the table shown in messages ("System Table", "Mspl-Table", ...).
    virtual std::string GetTableName() const = 0;

    // A check box cell reads "1" when checked and "0" (or empty) when not.
    bool IsCellChecked(int column, int row) const { return GetCellText(column, row) == "1"; }
};

// Makes a shared choice list from names.
ChoiceList MakeChoices(std::vector<std::string> names);

}  // namespace Tarn
