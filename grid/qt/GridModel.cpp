#include "grid/qt/GridModel.h"

#include <QBrush>
#include <QColor>
#include <QStringList>
#include <QUndoCommand>
#include <QUndoStack>
#include <algorithm>
#include <memory>
#include <set>

#include "grid/qt/GridRoles.h"

namespace Tarn {
namespace {

// Puts rows back to a recorded state. The change itself was made before the command was pushed,
// so the first redo (which QUndoStack::push runs) does nothing.
class RowsChangeCommand : public QUndoCommand {
public:
    RowsChangeCommand(GridModel* model, std::vector<GridRowSnapshot> before,
                      std::vector<GridRowSnapshot> after, const QString& label)
        : QUndoCommand(label),
          model_(model),
          before_(std::move(before)),
          after_(std::move(after)) {}
    void undo() override { Apply(before_); }
    void redo() override {
        if (first_) {
            first_ = false;
            return;
        }
        Apply(after_);
    }

private:
    void Apply(const std::vector<GridRowSnapshot>& rows) {
        for (const auto& s : rows) model_->RestoreSnapshot(s);
    }
    GridModel* model_;
    std::vector<GridRowSnapshot> before_;
    std::vector<GridRowSnapshot> after_;
    bool first_ = true;
};

class InsertRowsCommand : public QUndoCommand {
public:
    InsertRowsCommand(GridModel* model, int row, int count, const QString& label)
        : QUndoCommand(label), model_(model), row_(row), count_(count) {}
    void redo() override {
        model_->RawInsertRows(row_, count_);
        for (int r = row_; r < row_ + count_; ++r) model_->RunRowInitializer(r);
    }
    void undo() override {
        for (int r = row_ + count_ - 1; r >= row_; --r) model_->RawRemoveRow(r);
    }

private:
    GridModel* model_;
    int row_;
    int count_;
};

class RemoveRowsCommand : public QUndoCommand {
public:
    // `rows` ascending, each with its snapshot.
    RemoveRowsCommand(GridModel* model, std::vector<GridRowSnapshot> rows, const QString& label)
        : QUndoCommand(label), model_(model), rows_(std::move(rows)) {}
    void redo() override {
        // From the bottom up, so each removal leaves the rows still to go where they were.
        for (auto it = rows_.rbegin(); it != rows_.rend(); ++it) model_->RawRemoveRow(it->row);
    }
    void undo() override {
        for (const auto& s : rows_) {
            model_->RawInsertRows(s.row, 1);
            model_->RestoreSnapshot(s);
        }
    }

private:
    GridModel* model_;
    std::vector<GridRowSnapshot> rows_;
};

}  // namespace

GridModel::GridModel(std::string tableName, int columnCapacity, int minVisibleColumns,
                     QObject* parent)
    : QAbstractTableModel(parent),
      grid_(std::move(tableName), columnCapacity, 0),
      minVisible_(std::min(minVisibleColumns, columnCapacity)),
      visibleColumns_(minVisible_) {}

GridModel::~GridModel() = default;

// ---- Grid ---------------------------------------------------------------------------------------

void GridModel::SetColumnCount(int columns) {
    beginResetModel();
    grid_.SetColumnCount(columns);
    usedColumns_ = std::min(usedColumns_, grid_.GetColumnCount());
    minVisible_ = std::min(minVisible_, grid_.GetColumnCount());
    visibleColumns_ = std::max(minVisible_, std::min(grid_.GetColumnCount(), usedColumns_ + 1));
    endResetModel();
}

void GridModel::SetRowCount(int rows) {
    rows = std::max(rows, 0);
    const int old = grid_.GetRowCount();
    if (rows == old) return;
    if (annotations_.size() > static_cast<size_t>(rows)) annotations_.resize(static_cast<size_t>(rows));
    if (batch_ > 0) {
        grid_.SetRowCount(rows);
    } else if (rows > old) {
        beginInsertRows({}, old, rows - 1);
        grid_.SetRowCount(rows);
        endInsertRows();
    } else {
        beginRemoveRows({}, rows, old - 1);
        grid_.SetRowCount(rows);
        endRemoveRows();
    }
}

std::string GridModel::GetCellText(int column, int row) const {
    return grid_.GetCellText(column, row);
}

void GridModel::Touch(int column, int row) {
    if (column < 0 || row < 0 || column >= grid_.GetColumnCount() || row >= grid_.GetRowCount())
        return;
    if (column + 1 > usedColumns_) {
        usedColumns_ = column + 1;
        if (batch_ == 0) GrowVisibleColumns();
    }
}

void GridModel::GrowVisibleColumns() {
    const int wanted = std::max(minVisible_, std::min(grid_.GetColumnCount(), usedColumns_ + 1));
    if (wanted > visibleColumns_) {
        beginInsertColumns({}, visibleColumns_, wanted - 1);
        visibleColumns_ = wanted;
        endInsertColumns();
    }
}

void GridModel::CellChanged(int column, int row) {
    if (batch_ > 0 || column >= visibleColumns_) return;
    const QModelIndex i = index(row, column);
    emit dataChanged(i, i);
}

void GridModel::SetCellText(int column, int row, const std::string& text) {
    grid_.SetCellText(column, row, text);
    Touch(column, row);
    CellChanged(column, row);
}

void GridModel::SetCellEdit(int column, int row, const std::string& mask) {
    grid_.SetCellEdit(column, row, mask);
    Touch(column, row);
    CellChanged(column, row);
}

void GridModel::SetCellDropDown(int column, int row, ChoiceList choices) {
    grid_.SetCellDropDown(column, row, std::move(choices));
    Touch(column, row);
    CellChanged(column, row);
}

void GridModel::SetCellCheckBox(int column, int row) {
    grid_.SetCellCheckBox(column, row);
    Touch(column, row);
    CellChanged(column, row);
}

CellKind GridModel::GetCellKind(int column, int row) const {
    return grid_.GetCellKind(column, row);
}
std::string GridModel::GetCellMask(int column, int row) const {
    return grid_.GetCellMask(column, row);
}
ChoiceList GridModel::GetCellChoices(int column, int row) const {
    return grid_.GetCellChoices(column, row);
}

void GridModel::ClearRow(int row, int fromColumn) {
    grid_.ClearRow(row, fromColumn);
    if (batch_ == 0 && row >= 0 && row < grid_.GetRowCount() && fromColumn < visibleColumns_)
        emit dataChanged(index(row, std::max(fromColumn, 0)), index(row, visibleColumns_ - 1));
}

std::string GridModel::GetColumnHeading(int column) const {
    return grid_.GetColumnHeading(column);
}

void GridModel::SetColumnHeading(int column, const std::string& heading) {
    if (grid_.GetColumnHeading(column) == heading) return;
    grid_.SetColumnHeading(column, heading);
    if (column >= usedColumns_ && column < grid_.GetColumnCount() && !heading.empty()) {
        // A heading names a column a record uses, even when the cell is still empty.
        usedColumns_ = column + 1;
        if (batch_ == 0) GrowVisibleColumns();
    }
    if (batch_ == 0 && column < visibleColumns_)
        emit headerDataChanged(Qt::Horizontal, column, column);
}

void GridModel::ClearHeadings() {
    bool any = false;
    for (int c = 0; c < usedColumns_; ++c) {
        if (!grid_.GetColumnHeading(c).empty()) {
            grid_.SetColumnHeading(c, {});
            any = true;
        }
    }
    if (any && batch_ == 0 && visibleColumns_ > 0)
        emit headerDataChanged(Qt::Horizontal, 0, visibleColumns_ - 1);
}

void GridModel::BeginBatch() {
    if (batch_++ == 0) beginResetModel();
}

void GridModel::EndBatch() {
    if (batch_ == 0) return;
    if (--batch_ == 0) {
        visibleColumns_ = std::max(minVisible_, std::min(grid_.GetColumnCount(), usedColumns_ + 1));
        endResetModel();
    }
}

// ---- Qt model -----------------------------------------------------------------------------------

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : grid_.GetRowCount();
}

void GridModel::SetRowHighlights(const QString& source, const QHash<int, QColor>& rows) {
    auto it = std::find_if(highlights_.begin(), highlights_.end(),
                           [&](const auto& entry) { return entry.first == source; });
    if (it != highlights_.end()) highlights_.erase(it);
    if (!rows.isEmpty()) highlights_.emplace_back(source, rows);
    if (rowCount() > 0 && columnCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::BackgroundRole});
}

void GridModel::SetRowAnnotations(const QStringList& headings, std::vector<RowAnnotation> rows) {
    infoHeadings_ = headings;
    annotations_ = std::move(rows);
    const int n = rowCount();
    if (n == 0) return;
    emit headerDataChanged(Qt::Vertical, 0, n - 1);
    if (columnCount() > 0)
        emit dataChanged(index(0, 0), index(n - 1, columnCount() - 1), {kRowBandRole});
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : visibleColumns_ + static_cast<int>(annotationTitles_.size());
}

void GridModel::SetAnnotations(QStringList titles, AnnotationText text, AnnotationTip tip) {
    beginResetModel();
    annotationTitles_ = std::move(titles);
    annotationText_ = std::move(text);
    annotationTip_ = std::move(tip);
    endResetModel();
}

void GridModel::RefreshAnnotations(int firstRow, int lastRow) {
    if (annotationTitles_.isEmpty() || rowCount() == 0) return;
    firstRow = std::max(firstRow, 0);
    lastRow = std::min(lastRow, rowCount() - 1);
    if (firstRow > lastRow) return;
    emit dataChanged(index(firstRow, visibleColumns_),
                     index(lastRow, visibleColumns_ + static_cast<int>(annotationTitles_.size()) - 1),
                     {Qt::DisplayRole, Qt::ToolTipRole});
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const int c = index.column();
    const int r = index.row();
    if (role == Qt::ToolTipRole && annotationTip_) {
        const QString tip = annotationTip_(r);
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    if (IsAnnotationColumn(c)) {
        if (role != Qt::DisplayRole || !annotationText_) return {};
        return annotationText_(r, c - visibleColumns_);
    }
    switch (role) {
        case Qt::DisplayRole:
            if (grid_.GetCellKind(c, r) == CellKind::CheckBox) return {};
            return QString::fromStdString(grid_.GetCellText(c, r));
        case Qt::EditRole:
            return QString::fromStdString(grid_.GetCellText(c, r));
        case Qt::CheckStateRole:
            if (grid_.GetCellKind(c, r) != CellKind::CheckBox) return {};
            return grid_.IsCellChecked(c, r) ? Qt::Checked : Qt::Unchecked;
        case Qt::BackgroundRole:
            if (grid_.GetCellText(c, r) == kBadValue) return QBrush(QColor(255, 210, 210));
            for (auto it = highlights_.rbegin(); it != highlights_.rend(); ++it)
                if (auto found = it->second.find(r); found != it->second.end())
                    return QBrush(found.value());
            return {};
        case kRowBandRole:
            if (static_cast<size_t>(r) < annotations_.size() && annotations_[r].band.isValid())
                return annotations_[r].band;
            return {};
        case kCellKindRole:
            return static_cast<int>(grid_.GetCellKind(c, r));
        case kCellMaskRole:
            return QString::fromStdString(grid_.GetCellMask(c, r));
        case kCellChoicesRole: {
            QStringList list;
            if (ChoiceList choices = grid_.GetCellChoices(c, r))
                for (const auto& s : *choices) list << QString::fromStdString(s);
            return list;
        }
        default:
            return {};
    }
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || IsAnnotationColumn(index.column())) return false;
    std::string text;
    if (role == Qt::CheckStateRole) {
        text.assign(1, value.toInt() == Qt::Checked ? '1' : '0');
    } else if (role == Qt::EditRole || role == Qt::DisplayRole) {
        text = value.toString().toStdString();
    } else {
        return false;
    }
    EditCells({{index.column(), index.row(), text}}, tr("Edit Cell"));
    return true;
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (IsAnnotationColumn(index.column())) return f;
    if (grid_.GetCellKind(index.column(), index.row()) == CellKind::CheckBox)
        f |= Qt::ItemIsUserCheckable;
    else
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical && (role == kRowInfoRole || role == kRowBandRole)) {
        if (section < 0 || static_cast<size_t>(section) >= annotations_.size()) return {};
        const RowAnnotation& a = annotations_[section];
        if (role == kRowBandRole) return a.band;
        return a.info;
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    if (orientation == Qt::Vertical) {
        if (role == Qt::ToolTipRole && !infoHeadings_.isEmpty() && section >= 0 &&
            static_cast<size_t>(section) < annotations_.size()) {
            QStringList parts{tr("Row %1").arg(section)};
            const QStringList& info = annotations_[section].info;
            for (int i = 0; i < infoHeadings_.size() && i < info.size(); ++i)
                parts << infoHeadings_[i] + " " + info[i];
            return parts.join(", ");
        }
        return QString::number(section);
    }
    if (IsAnnotationColumn(section)) return annotationTitles_[section - visibleColumns_];
    const std::string heading = grid_.GetColumnHeading(section);
    if (role == Qt::ToolTipRole)
        return heading.empty()
                   ? tr("Column %1").arg(section)
                   : tr("Column %1: %2").arg(section).arg(QString::fromStdString(heading));
    // Messages name cells by number, so the number stays visible above the record's title.
    return heading.empty() ? QString::number(section)
                           : QString::number(section) + "\n" + QString::fromStdString(heading);
}

// ---- User edits ---------------------------------------------------------------------------------

GridRowSnapshot GridModel::TakeSnapshot(int row) const {
    GridRowSnapshot s;
    s.row = row;
    for (int c = 0; c < usedColumns_; ++c) {
        GridCellData d{grid_.GetCellText(c, row), grid_.GetCellKind(c, row),
                       grid_.GetCellMask(c, row), grid_.GetCellChoices(c, row)};
        if (!d.text.empty() || d.kind != CellKind::Edit || !d.mask.empty())
            s.cells.emplace_back(c, std::move(d));
    }
    return s;
}

void GridModel::RestoreSnapshot(const GridRowSnapshot& s) {
    if (s.row < 0 || s.row >= grid_.GetRowCount()) return;
    grid_.ClearRow(s.row);
    for (const auto& [c, d] : s.cells) {
        switch (d.kind) {
            case CellKind::Edit:
                grid_.SetCellEdit(c, s.row, d.mask);
                break;
            case CellKind::DropDown:
                grid_.SetCellDropDown(c, s.row, d.choices);
                break;
            case CellKind::CheckBox:
                grid_.SetCellCheckBox(c, s.row);
                break;
        }
        grid_.SetCellText(c, s.row, d.text);
        Touch(c, s.row);
    }
    if (batch_ == 0 && visibleColumns_ > 0) {
        emit dataChanged(index(s.row, 0), index(s.row, visibleColumns_ - 1));
        emit rowsEdited(s.row, s.row);
    }
}

void GridModel::RawInsertRows(int row, int count) {
    row = std::clamp(row, 0, grid_.GetRowCount());
    if (count <= 0) return;
    if (batch_ == 0) beginInsertRows({}, row, row + count - 1);
    for (int i = 0; i < count; ++i) grid_.InsertRow(row);
    if (static_cast<size_t>(row) < annotations_.size())
        annotations_.insert(annotations_.begin() + row, static_cast<size_t>(count), RowAnnotation{});
    if (batch_ == 0) endInsertRows();
}

void GridModel::RawRemoveRow(int row) {
    if (row < 0 || row >= grid_.GetRowCount()) return;
    if (batch_ == 0) beginRemoveRows({}, row, row);
    grid_.RemoveRow(row);
    if (static_cast<size_t>(row) < annotations_.size()) annotations_.erase(annotations_.begin() + row);
    if (batch_ == 0) endRemoveRows();
}

void GridModel::RecordRowChange(std::vector<int> rows, const QString& label,
                                const std::function<void()>& apply) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&](int r) { return r < 0 || r >= grid_.GetRowCount(); }),
               rows.end());
    std::vector<GridRowSnapshot> before;
    before.reserve(rows.size());
    for (int r : rows) before.push_back(TakeSnapshot(r));
    apply();
    std::vector<GridRowSnapshot> after;
    after.reserve(rows.size());
    for (int r : rows) after.push_back(TakeSnapshot(r));
    if (undoStack_)
        undoStack_->push(
            std::make_unique<RowsChangeCommand>(this, std::move(before), std::move(after), label)
                .release());
    if (!rows.empty()) emit rowsEdited(rows.front(), rows.back());
}

void GridModel::ApplyCellEdit(const CellEdit& e) {
    if (e.column == 0 && typeHandler_) {
        typeHandler_(*this, e.row, e.text);
        return;
    }
    const std::string old = grid_.GetCellText(e.column, e.row);
    SetCellText(e.column, e.row, e.text);
    if (e.column != 0 && cellHandler_) cellHandler_(*this, e.row, e.column, old);
}

void GridModel::EditCells(const std::vector<CellEdit>& edits, const QString& label) {
    // An edit aimed at an annotation cell has nowhere to land and is dropped, unless it continues
    // a run of cells that starts in the record's own (a pasted row wider than the grid shows so
    // far, which widens the row as it always did).
    std::vector<CellEdit> kept = edits;
    if (!annotationTitles_.isEmpty()) {
        std::set<std::pair<int, int>> landed;
        std::sort(kept.begin(), kept.end(), [](const CellEdit& a, const CellEdit& b) {
            return std::pair(a.row, a.column) < std::pair(b.row, b.column);
        });
        std::vector<CellEdit> runs;
        for (const auto& e : kept)
            if (!IsAnnotationColumn(e.column) || landed.count({e.row, e.column - 1})) {
                landed.insert({e.row, e.column});
                runs.push_back(e);
            }
        kept = std::move(runs);
    }
    std::vector<CellEdit> wanted;
    for (const auto& e : kept) {
        if (e.row < 0 || e.row >= grid_.GetRowCount() || e.column < 0 ||
            e.column >= grid_.GetColumnCount())
            continue;
        if (grid_.GetCellText(e.column, e.row) == e.text) continue;
        wanted.push_back(e);
    }
    if (wanted.empty()) return;
    // Type cells first: a new type rebuilds its row, and the other cells then land on top.
    std::stable_partition(wanted.begin(), wanted.end(),
                          [](const CellEdit& e) { return e.column == 0; });
    std::vector<int> rows;
    for (const auto& e : wanted) rows.push_back(e.row);
    RecordRowChange(rows, label, [&] {
        for (const auto& e : wanted) ApplyCellEdit(e);
    });
}

void GridModel::InsertRows(int row, int count, const QString& label) {
    if (count <= 0) return;
    row = std::clamp(row, 0, grid_.GetRowCount());
    auto cmd = std::make_unique<InsertRowsCommand>(this, row, count, label);
    if (undoStack_)
        undoStack_->push(cmd.release());  // the stack owns its commands
    else
        cmd->redo();
}

void GridModel::RemoveRows(std::vector<int> rows, const QString& label) {
    std::set<int> unique;
    for (int r : rows)
        if (r >= 0 && r < grid_.GetRowCount()) unique.insert(r);
    if (unique.empty()) return;
    std::vector<GridRowSnapshot> snaps;
    snaps.reserve(unique.size());
    for (int r : unique) snaps.push_back(TakeSnapshot(r));
    auto cmd = std::make_unique<RemoveRowsCommand>(this, std::move(snaps), label);
    if (undoStack_)
        undoStack_->push(cmd.release());
    else
        cmd->redo();
}

}  // namespace Tarn
