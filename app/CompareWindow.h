// The "Compare With" window: what changed between two open roaming lists, grouped as the command
// line's diff groups it, and what handsets do differently with them (the "Behaviour" tab);
// choosing a difference shows the record in both documents' grids, and both documents stay
// editable while the window follows their edits.
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "analysis/Behaviour.h"
#include "analysis/Diff.h"

class QLabel;
class QTabWidget;
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
    // The "Behaviour" tab: per system, the observations a handset treats differently, each item
    // carrying the deciding record of each list in kRowARole and kRowBRole (-1 for none).
    QTreeWidget* Behaviour() const { return behaviourTree_; }
    QTabWidget* Tabs() const { return tabs_; }
    const Analysis::BehaviourComparison* BehaviourResult() const { return behaviour_.get(); }
    const Analysis::ListDiff* Diff() const { return diff_.get(); }
    // Shows the difference of `item` in both grids.
    void Show(QTreeWidgetItem* item);

private:
    void ShowMessage(const QString& text);
    void PaintRows(QTreeWidgetItem* selected);
    void ClearRows();
    void RefreshBehaviour(const CRLData& listA, const CRLData& listB);

    QPointer<CRLDoc> a_, b_;
    QLabel* summary_ = nullptr;
    QTreeWidget* tree_ = nullptr;
    QTreeWidget* behaviourTree_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QTimer* refresh_ = nullptr;
    std::unique_ptr<Analysis::ListDiff> diff_;
    std::unique_ptr<Analysis::BehaviourComparison> behaviour_;
};

}  // namespace Tarn
