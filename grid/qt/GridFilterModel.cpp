#include "grid/qt/GridFilterModel.h"

#include <algorithm>

#include "grid/qt/GridModel.h"

namespace Tarn {

GridFilterModel::GridFilterModel(GridModel& source, QObject* parent)
    : QSortFilterProxyModel(parent) {
    setSourceModel(&source);
    // Rows keep the order of the list; a changed cell never re-filters its row by itself.
    setDynamicSortFilter(false);
    // The flags must have moved before the proxy asks about the new rows, which it does while
    // handling rowsInserted: so they move on rowsAboutToBeInserted.
    connect(&source, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this](const QModelIndex&, int first, int last) {
                if (static_cast<size_t>(first) < visible_.size())
                    visible_.insert(visible_.begin() + first, static_cast<size_t>(last - first + 1),
                                    true);
            });
    connect(&source, &QAbstractItemModel::rowsRemoved, this,
            [this](const QModelIndex&, int first, int last) {
                if (static_cast<size_t>(first) >= visible_.size()) return;
                const auto end = std::min(visible_.size(), static_cast<size_t>(last) + 1);
                visible_.erase(visible_.begin() + first, visible_.begin() + static_cast<long>(end));
            });
    // A reloaded table holds other records: nothing of the old filter applies to it.
    connect(&source, &QAbstractItemModel::modelAboutToBeReset, this, [this] { visible_.clear(); });
}

void GridFilterModel::SetVisibleRows(std::vector<bool> visible) {
    if (visible.empty() && visible_.empty()) return;
    visible_ = std::move(visible);
    invalidateFilter();
}

void GridFilterModel::Reveal(int sourceRow) {
    if (sourceRow < 0 || IsRowVisible(sourceRow)) return;
    visible_[static_cast<size_t>(sourceRow)] = true;
    invalidateFilter();
}

bool GridFilterModel::IsRowVisible(int sourceRow) const {
    return sourceRow < 0 || static_cast<size_t>(sourceRow) >= visible_.size() ||
           visible_[static_cast<size_t>(sourceRow)];
}

bool GridFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex&) const {
    return IsRowVisible(sourceRow);
}

}  // namespace Tarn
