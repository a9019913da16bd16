// The Problems panel: the lint findings of the active roaming list, re-checked as the list is
// edited, with a double-click that takes the cursor to the record a finding is about.
#pragma once

#include <QDockWidget>
#include <QPointer>
#include <QString>
#include <optional>
#include <vector>

#include "analysis/Lint.h"
#include "analysis/Policy.h"

class QLabel;
class QTimer;
class QTreeWidget;
class QTreeWidgetItem;

namespace Tarn {

class CDocument;
class CRLDoc;

class ProblemsPanel : public QDockWidget {
    Q_OBJECT
public:
    explicit ProblemsPanel(QWidget* parent = nullptr);

    // Follows `doc` (nothing, or a document that is not a roaming list, empties the panel).
    void SetDocument(CDocument* doc);
    CRLDoc* Document() const { return doc_; }

    // Checks with the operator policy in `path` from now on; false, with the reason in `error`,
    // when the policy cannot be read (the panel keeps the policy it had).
    bool UsePolicy(const QString& path, QString& error);
    void ClearPolicy();
    const QString& PolicyPath() const { return policyPath_; }

    // Checks the list as the grids hold it now.
    void Refresh();

    // What the panel shows, for the tests and the status line.
    const std::vector<Analysis::Finding>& Findings() const { return findings_; }
    QString Summary() const;
    QTreeWidget* List() const { return list_; }

private:
    void Show(const std::vector<Analysis::Finding>& findings);
    void OnActivated(QTreeWidgetItem* item);

    QPointer<CRLDoc> doc_;
    QMetaObject::Connection editedConnection_;
    QTreeWidget* list_ = nullptr;
    QLabel* summary_ = nullptr;
    QLabel* policyLabel_ = nullptr;
    QTimer* refresh_ = nullptr;
    std::optional<Analysis::Policy> policy_;
    QString policyPath_;
    std::vector<Analysis::Finding> findings_;
};

}  // namespace Tarn
