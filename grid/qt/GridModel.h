// The Qt model of a record grid: a Grid that records write into and a table model that views
// read from, with every user edit recorded on an undo stack.
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QHash>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <vector>

#include "grid/MemoryGrid.h"

class QUndoStack;

namespace Tarn {

// Everything a cell holds, so a row can be put back exactly as it was.
struct GridCellData {
    std::string text;
    CellKind kind = CellKind::Edit;
    std::string mask;
    ChoiceList choices;
};

struct GridRowSnapshot {
    int row = 0;
    std::vector<std::pair<int, GridCellData>> cells;  // only the cells that hold something
};

class GridModel : public QAbstractTableModel, public Grid {
    Q_OBJECT
public:
    // `columnCapacity` is the widest row any record may write (cells beyond it are dropped);
    // `minVisibleColumns` how many columns the view shows before any record widens it.
    GridModel(std::string tableName, int columnCapacity, int minVisibleColumns,
              QObject* parent = nullptr);
    ~GridModel() override;

    void SetUndoStack(QUndoStack* stack) { undoStack_ = stack; }
    QUndoStack* UndoStack() const { return undoStack_; }

    // ---- Grid: what records and documents write through. These are not undoable.
    int GetColumnCount() const override { return grid_.GetColumnCount(); }
    int GetRowCount() const override { return grid_.GetRowCount(); }
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
    std::string GetTableName() const override { return grid_.GetTableName(); }

    void ClearHeadings();

    // Row backgrounds that windows over the document ask for (a simulated selection, a compare,
    // a problem list), each under its own name so that one never clears another's. A cell whose
    // value is bad keeps its warning colour; otherwise the most recently set source wins.
    void SetRowHighlights(const QString& source, const QHash<int, QColor>& rows);
    void ClearRowHighlights(const QString& source) { SetRowHighlights(source, {}); }

    // Read-only columns shown after the record's own (the operator behind a system record):
    // the view asks `text` for their cells and `tip` for a row's tooltip. They are no part of the
    // Grid, so no record reads or writes them and no user edit reaches them.
    using AnnotationText = std::function<QString(int row, int annotation)>;
    using AnnotationTip = std::function<QString(int row)>;
    void SetAnnotations(QStringList titles, AnnotationText text, AnnotationTip tip);
    // Repaints the annotation cells of these rows (their records changed).
    void RefreshAnnotations(int firstRow, int lastRow);
    bool IsAnnotationColumn(int column) const {
        return column >= visibleColumns_ && column < visibleColumns_ + annotationTitles_.size();
    }
    // What a document computes about each row and shows beside it without writing it to any
    // record: a band the view paints under every other colour (kRowBandRole; a cell's warning,
    // the named highlights and the selection all show over it, and Qt::BackgroundRole stays
    // theirs alone) and short read-only fields under `headings`, which the row header shows
    // after the row number (kRowInfoRole). Annotations move with their rows when
    // rows are inserted or removed; a new row has none until the next call.
    struct RowAnnotation {
        QColor band;       // invalid: no band
        QStringList info;  // one text per heading
    };
    void SetRowAnnotations(const QStringList& headings, std::vector<RowAnnotation> rows);
    const QStringList& RowInfoHeadings() const { return infoHeadings_; }

    // Many writes at once (loading a whole table): the views are told once, at the end.
    void BeginBatch();
    void EndBatch();

    // ---- Qt model
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // ---- User edits: each one is a command on the undo stack (applied at once without one).
    struct CellEdit {
        int column;
        int row;
        std::string text;
    };
    // Sets the cells in one step. A type-cell edit (column 0) goes to the type handler first,
    // so a pasted row rebuilds its record before the rest of its cells land.
    void EditCells(const std::vector<CellEdit>& edits, const QString& label);
    void InsertRows(int row, int count, const QString& label);
    // Removes the given rows (any order, duplicates ignored).
    void RemoveRows(std::vector<int> rows, const QString& label);

    // Called when the user puts a text into the type cell of a row; it may rewrite the whole row
    // through the Grid interface. Without a handler the text is simply stored.
    using TypeHandler = std::function<void(GridModel& grid, int row, const std::string& text)>;
    void SetTypeHandler(TypeHandler handler) { typeHandler_ = std::move(handler); }
    // Prepares a newly inserted, empty row (the type cell's drop-down).
    // Called after a cell other than the type cell took new text, inside the same undoable
    // change, so that a record can lay its row out anew.
    using CellHandler =
        std::function<void(GridModel& grid, int row, int column, const std::string& oldText)>;
    void SetCellHandler(CellHandler handler) { cellHandler_ = std::move(handler); }

    using RowInitializer = std::function<void(GridModel& grid, int row)>;
    void SetRowInitializer(RowInitializer init) { rowInit_ = std::move(init); }

    // Runs `apply` and records the before/after state of `rows` as one undoable change.
    void RecordRowChange(std::vector<int> rows, const QString& label,
                         const std::function<void()>& apply);

    // Used by the undo commands.
    GridRowSnapshot TakeSnapshot(int row) const;
    void RestoreSnapshot(const GridRowSnapshot& snapshot);
    void RawInsertRows(int row, int count);
    void RawRemoveRow(int row);
    void RunRowInitializer(int row) {
        if (rowInit_) rowInit_(*this, row);
    }

    // The widest column written so far, plus one.
    int UsedColumns() const { return usedColumns_; }

signals:
    // A cell changed through a user edit or an undo/redo (not through record writes).
    void rowsEdited(int firstRow, int lastRow);

private:
    void Touch(int column, int row);
    void CellChanged(int column, int row);
    void ApplyCellEdit(const CellEdit& edit);
    void GrowVisibleColumns();

    MemoryGrid grid_;
    std::vector<std::pair<QString, QHash<int, QColor>>> highlights_;
    QStringList infoHeadings_;
    std::vector<RowAnnotation> annotations_;
    int minVisible_;
    int visibleColumns_;
    int usedColumns_ = 0;
    int batch_ = 0;
    QUndoStack* undoStack_ = nullptr;
    TypeHandler typeHandler_;
    RowInitializer rowInit_;
    CellHandler cellHandler_;
    QStringList annotationTitles_;
    AnnotationText annotationText_;
    AnnotationTip annotationTip_;
};

}  // namespace Tarn
