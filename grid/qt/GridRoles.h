// The item roles through which a grid view's delegates learn what kind of cell they edit.
#pragma once

#include <Qt>

namespace Tarn {

inline constexpr int kCellKindRole = Qt::UserRole + 1;     // int of CellKind
inline constexpr int kCellMaskRole = Qt::UserRole + 2;     // QString, e.g. "9999"
inline constexpr int kCellChoicesRole = Qt::UserRole + 3;  // QStringList of a drop-down

}  // namespace Tarn
