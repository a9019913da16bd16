#include "grid/MemoryGrid.h"

#include <iterator>

namespace Tarn {

ChoiceList MakeChoices(std::vector<std::string> names) {
    return std::make_shared<const std::vector<std::string>>(std::move(names));
}

MemoryGrid::MemoryGrid(std::string tableName, int columns, int rows)
    : tableName_(std::move(tableName)), columns_(columns), rows_(rows) {}

void MemoryGrid::SetColumnCount(int columns) {
    columns_ = columns < 0 ? 0 : columns;
    for (auto& [row, cols] : cells_) cols.erase(cols.lower_bound(columns_), cols.end());
}

void MemoryGrid::SetRowCount(int rows) {
    rows_ = rows < 0 ? 0 : rows;
    cells_.erase(cells_.lower_bound(rows_), cells_.end());
}

bool MemoryGrid::Inside(int column, int row) const {
    return column >= 0 && row >= 0 && column < columns_ && row < rows_;
}

MemoryGrid::Cell* MemoryGrid::Find(int column, int row) {
    auto r = cells_.find(row);
    if (r == cells_.end()) return nullptr;
    auto c = r->second.find(column);
    return c == r->second.end() ? nullptr : &c->second;
}

const MemoryGrid::Cell* MemoryGrid::Find(int column, int row) const {
    return const_cast<MemoryGrid*>(this)->Find(column, row);
}

MemoryGrid::Cell& MemoryGrid::At(int column, int row) { return cells_[row][column]; }

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
    auto r = cells_.find(row);
    if (r == cells_.end()) return;
    r->second.erase(r->second.lower_bound(fromColumn), r->second.end());
    if (r->second.empty()) cells_.erase(r);
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
    std::map<int, std::map<int, Cell>> moved;
    for (auto it = cells_.begin(); it != cells_.end();) {
        if (it->first >= row) {
            moved.emplace(it->first + 1, std::move(it->second));
            it = cells_.erase(it);
        } else {
            ++it;
        }
    }
    cells_.merge(moved);
    ++rows_;
}

void MemoryGrid::RemoveRow(int row) {
    if (row < 0 || row >= rows_) return;
    cells_.erase(row);
    std::map<int, std::map<int, Cell>> moved;
    for (auto it = cells_.upper_bound(row); it != cells_.end();) {
        moved.emplace(it->first - 1, std::move(it->second));
        it = cells_.erase(it);
    }
    cells_.merge(moved);
    --rows_;
}

size_t MemoryGrid::StoredCellCount() const {
    size_t n = 0;
    for (const auto& [row, cols] : cells_) n += cols.size();
    return n;
}

}  // namespace Tarn
