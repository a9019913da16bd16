#include "app/OptimizeDialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "app/RLDoc.h"
#include "app/UiPrompts.h"
#include "roaming_list/RLData.h"

namespace Tarn {

OptimizeDialog::OptimizeDialog(const Analysis::OptimizeResult& r, const QString& listTitle,
                               QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("OptimizeDialog"));
    setWindowTitle(tr("Optimize %1").arg(listTitle));
    const size_t saved = r.bytesBefore > r.bytesAfter ? r.bytesBefore - r.bytesAfter : 0;
    summary_ = new QLabel(tr("%1 bytes now, %2 bytes optimized: %3 bytes saved (%4%).\n"
                             "Proven: every observation (%5 classes) gets the same behaviour from "
                             "the optimized list.")
                              .arg(r.bytesBefore)
                              .arg(r.bytesAfter)
                              .arg(saved)
                              .arg(r.bytesBefore ? 100.0 * static_cast<double>(saved) /
                                                       static_cast<double>(r.bytesBefore)
                                                 : 0.0,
                                   0, 'f', 1)
                              .arg(r.classes),
                          this);
    summary_->setWordWrap(true);

    steps_ = new QTableWidget(static_cast<int>(r.steps.size()), 3, this);
    steps_->setHorizontalHeaderLabels({tr("Step"), tr("Records"), tr("Bytes saved")});
    steps_->verticalHeader()->hide();
    steps_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    steps_->setSelectionMode(QAbstractItemView::NoSelection);
    int row = 0;
    for (const auto& step : r.steps) {
        auto* what = new QTableWidgetItem(QString::fromStdString(step.title));
        what->setToolTip(QString::fromStdString(step.id));
        steps_->setItem(row, 0, what);
        for (auto [column, value] : {std::pair{1, step.records}, std::pair{2, step.Saved()}}) {
            auto* cell = new QTableWidgetItem(QString::number(value));
            cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            steps_->setItem(row, column, cell);
        }
        ++row;
    }
    steps_->resizeColumnsToContents();
    steps_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    QPushButton* apply = buttons->addButton(tr("&Apply"), QDialogButtonBox::AcceptRole);
    apply->setDefault(true);
    apply->setEnabled(saved > 0 || std::any_of(r.steps.begin(), r.steps.end(),
                                               [](const auto& s) { return s.records > 0; }));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary_);
    layout->addWidget(steps_, 1);
    layout->addWidget(buttons);
    resize(620, 300);
}

QString OptimizeDialog::Summary() const {
    return summary_->text();
}

bool OptimizeDocument(CRLDoc& doc, QWidget* parent) {
    if (doc.IsReadOnly()) {
        Prompts().Message(parent, QObject::tr("This list is read-only: it cannot be optimized."),
                          MsgIcon::Error);
        return false;
    }
    std::unique_ptr<CRLData> current = doc.TakeValues();
    if (!current) return false;  // the document has shown the problem and put the cursor on it
    Analysis::OptimizeResult r = Analysis::OptimizeList(*current, doc.Version());
    if (!r.error.empty()) {
        Prompts().Message(
            parent,
            QObject::tr("The list cannot be optimized: %1").arg(QString::fromStdString(r.error)),
            MsgIcon::Error);
        return false;
    }
    if (!r.proven) {
        Prompts().Message(
            parent,
            QObject::tr(
                "The optimized list would not behave as this one does (%1 observation classes "
                "differ), so it was not applied. Please report this list.")
                .arg(r.differences),
            MsgIcon::Error);
        return false;
    }
    const bool anything =
        std::any_of(r.steps.begin(), r.steps.end(), [](const auto& s) { return s.records > 0; });
    if (!anything) {
        Prompts().Message(
            parent,
            QObject::tr("Nothing to optimize: %1 is already as small as the optimizer can make it "
                        "(%2 bytes).")
                .arg(doc.Title())
                .arg(r.bytesBefore),
            MsgIcon::Information);
        return false;
    }
    OptimizeDialog dialog(r, doc.Title(), parent);
    if (Prompts().ExecDialog(dialog) != QDialog::Accepted) return false;
    doc.ReplaceList(std::move(current), std::move(r.data), QObject::tr("Optimize"));
    return true;
}

}  // namespace Tarn
