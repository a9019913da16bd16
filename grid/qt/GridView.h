// The record grid widget: a table view over a GridModel with drop-down, masked and check-box
// cells, multi-selection, clipboard, row insertion and removal, all undoable.
#pragma once

#include <QStyledItemDelegate>
#include <QTableView>
#include <string>
#include <vector>

namespace Tarn {

class GridFilterModel;
class GridModel;

// Edits a cell according to its kind: a combo box for a drop-down, a digits-only line for a mask
// made of '9's (one digit per '9'), a plain line otherwise. Check boxes need no editor.
class GridDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    // Drop-down cells show an arrow, and an empty one a hint, so a new row says what to do.
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    // The pattern a mask allows ("9999" -> up to four digits); empty for no restriction.
    static QString MaskPattern(const QString& mask);
};

class GridView : public QTableView {
    Q_OBJECT
public:
    explicit GridView(QWidget* parent = nullptr);

    void SetGridModel(GridModel* model);
    GridModel* Model() const { return model_; }
    // Puts a row filter between the grid and the view (once; after SetGridModel). Every call of
    // this class keeps speaking of the grid's own rows, filtered or not.
    GridFilterModel* EnableRowFilter();
    GridFilterModel* Filter() const { return filter_; }

    // The grid row of the cursor, -1 when there is none.
    int CurrentRow() const;
    // The grid's index of a view index, and the view index of a grid cell (invalid when hidden).
    QModelIndex ToGrid(const QModelIndex& viewIndex) const;
    QModelIndex ToView(int column, int row) const;

    // The selected cells as tab/newline text (the bounding rectangle of the selection).
    QString SelectionText() const;
    void Copy();
    void Cut();
    // Pastes at the current cell, adding rows when the text runs past the last one; a single
    // value pasted over a selection fills every selected cell.
    void Paste();
    void PasteText(const QString& text);
    void ClearSelectedCells();
    // Inserts as many empty rows as are selected, before the first selected one.
    void InsertRowsAtSelection();
    void AppendRow();
    void DeleteSelectedRows();
    // Closes an open cell editor, keeping what was typed.
    void CommitPendingEdit();
    // Moves the cursor to a cell (after a message that names it); a row the filter hides is
    // shown first.
    void FocusCell(int column, int row);

    std::vector<int> SelectedRows() const;

    // Widens each column to what its heading and its first `sampleRows` cells need, within
    // bounds; sampling keeps this cheap on a 16,383-row table.
    void FitColumns(int sampleRows = 200);

    // Splits clipboard text into rows of cells (a trailing line end adds no row).
    static std::vector<std::vector<std::string>> ParseCells(const QString& text);

signals:
    // The grid row of the cursor changed.
    void currentRowChanged(int row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void FollowRowInfo();

    GridModel* model_ = nullptr;
    GridFilterModel* filter_ = nullptr;
    int lastRow_ = -1;
};

}  // namespace Tarn
