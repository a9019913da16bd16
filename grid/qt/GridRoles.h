// The item roles through which a grid view's delegates learn what kind of cell they edit.
#pragma once

#include <Qt>

namespace Tarn {

inline constexpr int kCellKindRole = Qt::UserRole + 1;     // int of CellKind
inline constexpr int kCellMaskRole = Qt::UserRole + 2;     // QString, e.g. "9999"
inline constexpr int kCellChoicesRole = Qt::UserRole + 3;  // QStringList of a drop-down
// Vertical header: QStringList of the row's read-only fields (GridModel::SetRowAnnotations).
inline constexpr int kRowInfoRole = Qt::UserRole + 4;
// Cells and vertical header: QColor of the row's band, painted where no background is set;
// invalid when it has none.
inline constexpr int kRowBandRole = Qt::UserRole + 5;

}  // namespace Tarn
