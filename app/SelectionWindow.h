// The "Simulate selection" window of a roaming list: the user types the system a handset found and
// sees what the list makes it do, with the records involved highlighted in the system grid.
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "analysis/Selection.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QTableWidget;

namespace Tarn {

class CRLDoc;

class SelectionWindow : public QWidget {
    Q_OBJECT
public:
    // Name under which the window colours rows of the system grid.
    static const QString kHighlightSource;

    SelectionWindow(CRLDoc& doc, QWidget* parent = nullptr);
    ~SelectionWindow() override;

    CRLDoc* Document() const { return doc_; }
    // The observation fields, in the order sid, nid, mcc, mnc, subnet, band, channel.
    QLineEdit* Field(int index) const { return fields_[index]; }
    // Answers the observation in the fields against the list as the grids hold it now.
    void Simulate();

    // What the window shows, for the tests and the status line.
    QString Summary() const;
    QString ResultText() const;
    QTableWidget* Records() const { return records_; }
    const std::optional<Analysis::SelectionResult>& Result() const { return result_; }

private:
    void ShowResult(const Analysis::SelectionResult& result, const Analysis::ListFacts& facts);
    void ShowMessage(const QString& text);
    void OnRecordActivated(int row);

    QPointer<CRLDoc> doc_;
    QLineEdit* fields_[7] = {};
    QLabel* summary_ = nullptr;
    QPlainTextEdit* text_ = nullptr;
    QTableWidget* records_ = nullptr;
    QTimer* refresh_ = nullptr;
    bool asked_ = false;  // nothing is simulated before the user first asks
    std::optional<Analysis::SelectionResult> result_;
};

}  // namespace Tarn
