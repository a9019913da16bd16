// A sparse in-memory Grid: what tests drive records with, and what the editor's model stores.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "grid/Grid.h"

namespace Tarn {

class MemoryGrid : public Grid {
public:
    explicit MemoryGrid(std::string tableName = {}, int columns = 0, int rows = 0);

    int GetColumnCount() const override { return columns_; }
    int GetRowCount() const override { return rows_; }
    void SetColumnCount(int columns) override;
    void SetRowCount(int rows) override;

    std::string GetCellText(int column, int row) const override;
    void SetCellText(int column, int row, const std::string& text) override;
    void SetCellEdit(int column, int row, const std::string& mask) override;
    void SetCellDropDown(int column, int row, ChoiceList choices) override;
    void SetCellCheckBox(int column, int row) override;
    CellKind GetCellKind(int column, int row) const override;
    std::string GetCellMask(int column, int row) const override;
    ChoiceList GetCellChoices(int column, int row) const override;
    void ClearRow(int row, int fromColumn = 0) override;

    std::string GetColumnHeading(int column) const override;
    void SetColumnHeading(int column, const std::string& heading) override;
    std::string GetTableName() const override { return tableName_; }
    void SetTableName(std::string name) { tableName_ = std::move(name); }

    // Inserts an empty row before `row` (or appends when `row` is the row count).
    void InsertRow(int row);
    void RemoveRow(int row);

    // The number of cells that hold anything; the rest of the grid costs nothing.
    size_t StoredCellCount() const;

private:
    struct Cell {
        std::string text;
        CellKind kind = CellKind::Edit;
        std::string mask;
        ChoiceList choices;
    };
    bool Inside(int column, int row) const;
    Cell* Find(int column, int row);
    const Cell* Find(int column, int row) const;
    Cell& At(int column, int row);

    std::string tableName_;
    int columns_ = 0;
    int rows_ = 0;
    // One entry per row, each holding only the cells that were touched, sorted by column: a row
    // has a handful of cells, so a sorted vector beats a tree on every access.
    using Row = std::vector<std::pair<int, Cell>>;
    std::vector<Row> cells_;
    std::unordered_map<int, std::string> headings_;
};

}  // namespace Tarn
