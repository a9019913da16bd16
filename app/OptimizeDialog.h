// Roaming List > Optimize...: what each step of the optimiser would save on the list as it stands,
// the proof that handsets see no change, and the smaller list applied as one undoable edit.
#pragma once

#include <QDialog>

#include "analysis/Optimize.h"

class QLabel;
class QTableWidget;

namespace Tarn {

class CRLDoc;

class OptimizeDialog : public QDialog {
    Q_OBJECT
public:
    OptimizeDialog(const Analysis::OptimizeResult& result, const QString& listTitle,
                   QWidget* parent = nullptr);
    // One row per step: what it does, the records it touches, the bytes it saves.
    QTableWidget* Steps() const { return steps_; }
    QString Summary() const;

private:
    QLabel* summary_ = nullptr;
    QTableWidget* steps_ = nullptr;
};

// Optimises the list `doc`'s views hold, shows the preview and, when the user applies it, puts the
// smaller list in place as one undoable edit. False when nothing was applied (a row that does not
// read, nothing to save, a failed proof or a cancel: each is said to the user).
bool OptimizeDocument(CRLDoc& doc, QWidget* parent);

}  // namespace Tarn
