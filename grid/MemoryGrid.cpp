#include "grid/MemoryGrid.h"

#include <algorithm>
#include <iterator>

namespace Tarn {

ChoiceList MakeChoices(std::vector<std::string> names) {
    return std::make_shared<const std::vector<std::string>>(std::move(names));
}

MemoryGrid::MemoryGrid(std::string tableName, int columns, int rows)
    : tableName_(std::move(tableName)), columns_(columns), rows_(rows) {}

namespace {

template <typename Row>
auto ColumnAt(Row& row, int column) {
    return std::lower_bound(row.begin(), row.end(), column,
                            [](const auto& cell, int c) { return cell.first < c; });
}

}  // namespace

void MemoryGrid::SetColumnCount(int columns) {
    columns_ = columns < 0 ? 0 : columns;
    for (Row& row : cells_) row.erase(ColumnAt(row, columns_), row.end());
}

void MemoryGrid::SetRowCount(int rows) {
    rows_ = rows < 0 ? 0 : rows;
    if (cells_.size() > static_cast<size_t>(rows_)) cells_.resize(static_cast<size_t>(rows_));
}

bool MemoryGrid::Inside(int column, int row) const {
    return column >= 0 && row >= 0 && column < columns_ && row < rows_;
}

MemoryGrid::Cell* MemoryGrid::Find(int column, int row) {
    if (row < 0 || static_cast<size_t>(row) >= cells_.size()) return nullptr;
    Row& r = cells_[static_cast<size_t>(row)];
    auto it = ColumnAt(r, column);
    return (it != r.end() && it->first == column) ? &it->second : nullptr;
}

const MemoryGrid::Cell* MemoryGrid::Find(int column, int row) const {
    return const_cast<MemoryGrid*>(this)->Find(column, row);
}

MemoryGrid::Cell& MemoryGrid::At(int column, int row) {
    if (static_cast<size_t>(row) >= cells_.size()) cells_.resize(static_cast<size_t>(row) + 1);
    Row& r = cells_[static_cast<size_t>(row)];
    auto it = ColumnAt(r, column);
    if (it == r.end() || it->first != column) it = r.emplace(it, column, Cell{});
    return it->second;
}

std::string MemoryGrid::GetCellText(int column, int row) const {
    const Cell* c = Find(column, row);
    return c ? c->text : std::string{};
}

void MemoryGrid::SetCellText(int column, int row, const std::string& text) {
    if (!Inside(column, row)) return;
    At(column, row).text = text;
}

void MemoryGrid::SetCellEdit(int column, int row, const std::string& mask) {
    if (!Inside(column, row)) return;
    Cell& c = At(column, row);
    c.kind = CellKind::Edit;
    c.mask = mask;
    c.choices.reset();
}

void MemoryGrid::SetCellDropDown(int column, int row, ChoiceList choices) {
    if (!Inside(column, row)) return;
    Cell& c = At(column, row);
    c.kind = CellKind::DropDown;
    c.mask.clear();
    c.choices = std::move(choices);
}

void MemoryGrid::SetCellCheckBox(int column, int row) {
    if (!Inside(column, row)) return;
    Cell& c = At(column, row);
    c.kind = CellKind::CheckBox;
    c.mask.clear();
    c.choices.reset();
}

CellKind MemoryGrid::GetCellKind(int column, int row) const {
    const Cell* c = Find(column, row);
    return c ? c->kind : CellKind::Edit;
}

std::string MemoryGrid::GetCellMask(int column, int row) const {
    const Cell* c = Find(column, row);
    return c ? c->mask : std::string{};
}

ChoiceList MemoryGrid::GetCellChoices(int column, int row) const {
    const Cell* c = Find(column, row);
    return c ? c->choices : ChoiceList{};
}

void MemoryGrid::ClearRow(int row, int fromColumn) {
    if (row < 0 || static_cast<size_t>(row) >= cells_.size()) return;
    Row& r = cells_[static_cast<size_t>(row)];
    r.erase(ColumnAt(r, fromColumn), r.end());
}

std::string MemoryGrid::GetColumnHeading(int column) const {
    auto it = headings_.find(column);
    return it == headings_.end() ? std::string{} : it->second;
}

void MemoryGrid::SetColumnHeading(int column, const std::string& heading) {
    if (column < 0 || column >= columns_) return;
    headings_[column] = heading;
}

void MemoryGrid::InsertRow(int row) {
    if (row < 0 || row > rows_) return;
    if (static_cast<size_t>(row) <= cells_.size())
        cells_.insert(cells_.begin() + row, Row{});
    ++rows_;
}

void MemoryGrid::RemoveRow(int row) {
    if (row < 0 || row >= rows_) return;
    if (static_cast<size_t>(row) < cells_.size()) cells_.erase(cells_.begin() + row);
    --rows_;
}

size_t MemoryGrid::StoredCellCount() const {
    size_t n = 0;
    for (const Row& r : cells_) n += r.size();
    return n;
}

}  // namespace Tarn
