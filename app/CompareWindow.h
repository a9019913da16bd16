// The "Compare With" window: what changed between two open roaming lists, grouped as the command
// line's diff groups it; choosing a difference shows the record in both documents' grids, and
// both documents stay editable while the window follows their edits.
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "analysis/Diff.h"

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace Tarn {

class CRLData;
class CRLDoc;
class CTessaryApp;

class CompareWindow : public QWidget {
    Q_OBJECT
public:
    // Name under which the window colours rows of both documents' grids.
    static const QString kHighlightSource;
    // Item data of a difference: whether it is a system record, and its row in each list (-1
    // where it has none).
    static constexpr int kSystemRole = Qt::UserRole;
    static constexpr int kRowARole = Qt::UserRole + 1;
    static constexpr int kRowBRole = Qt::UserRole + 2;

    // Asks which open list (or which file, opened as a document) to compare `doc` with, then
    // shows the window; nothing when the user cancels or the choice is not a roaming list.
    static CompareWindow* Ask(CRLDoc& doc, CTessaryApp& app, QWidget* parent);

    CompareWindow(CRLDoc& first, CRLDoc& second, QWidget* parent = nullptr);
    ~CompareWindow() override;

    CRLDoc* First() const { return a_; }
    CRLDoc* Second() const { return b_; }
    // Compares the lists as their grids hold them now.
    void Refresh();

    QString Summary() const;
    QTreeWidget* Differences() const { return tree_; }
    const Analysis::ListDiff* Diff() const { return diff_.get(); }
    // Shows the difference of `item` in both grids.
    void Show(QTreeWidgetItem* item);

private:
    void ShowMessage(const QString& text);
    void PaintRows(QTreeWidgetItem* selected);
    void ClearRows();

    QPointer<CRLDoc> a_, b_;
    QLabel* summary_ = nullptr;
    QTreeWidget* tree_ = nullptr;
    QTimer* refresh_ = nullptr;
    std::unique_ptr<Analysis::ListDiff> diff_;
};

}  // namespace Tarn
