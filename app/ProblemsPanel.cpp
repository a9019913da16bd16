#include "app/ProblemsPanel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "analysis/Providers.h"
#include "app/RLDoc.h"
#include "roaming_list/RLData.h"

namespace Tarn {
namespace {

enum Column { kSeverity, kRule, kWhere, kMessage };

QIcon SeverityIcon(Analysis::Severity s) {
    const QStyle::StandardPixmap pixmap =
        s == Analysis::Severity::Error     ? QStyle::SP_MessageBoxCritical
        : s == Analysis::Severity::Warning ? QStyle::SP_MessageBoxWarning
                                           : QStyle::SP_MessageBoxInformation;
    return QApplication::style()->standardIcon(pixmap);
}

}  // namespace

ProblemsPanel::ProblemsPanel(QWidget* parent) : QDockWidget(tr("Problems"), parent) {
    setObjectName(QStringLiteral("ProblemsPanel"));
    auto* body = new QWidget(this);
    summary_ = new QLabel(tr("No roaming list is active."), body);
    policyLabel_ = new QLabel(tr("No policy"), body);
    auto* noPolicy = new QPushButton(tr("No &Policy"), body);
    connect(noPolicy, &QPushButton::clicked, this, [this] {
        ClearPolicy();
        Refresh();
    });
    list_ = new QTreeWidget(body);
    list_->setColumnCount(4);
    list_->setHeaderLabels({tr("Severity"), tr("Rule"), tr("Where"), tr("Message")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setSelectionBehavior(QAbstractItemView::SelectRows);
    list_->header()->setStretchLastSection(true);
    connect(list_, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item, int) { OnActivated(item); });

    auto* top = new QHBoxLayout;
    top->addWidget(summary_, 1);
    top->addWidget(policyLabel_);
    top->addWidget(noPolicy);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(top);
    layout->addWidget(list_, 1);
    setWidget(body);

    // Typing in the grids never waits on the rules: edits are gathered for a moment and checked
    // once, and only while the panel is on screen.
    refresh_ = new QTimer(this);
    refresh_->setSingleShot(true);
    refresh_->setInterval(300);
    connect(refresh_, &QTimer::timeout, this, &ProblemsPanel::Refresh);
    connect(this, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible) refresh_->start();
    });
}

void ProblemsPanel::SetDocument(CDocument* doc) {
    auto* list = qobject_cast<CRLDoc*>(doc);
    // A closed document has already left `doc_` empty; nothing still clears what it showed.
    if (list && list == doc_) return;
    disconnect(editedConnection_);
    doc_ = list;
    findings_.clear();
    list_->clear();
    if (!list) {
        summary_->setText(tr("No roaming list is active."));
        return;
    }
    editedConnection_ = connect(list, &CRLDoc::listEdited, refresh_, qOverload<>(&QTimer::start));
    summary_->setText(tr("Checking..."));
    refresh_->start();
}

bool ProblemsPanel::UsePolicy(const QString& path, QString& error) {
    Analysis::Policy policy;
    std::string message;
    if (!Analysis::LoadPolicy(path.toStdString(), policy, message)) {
        error = QString::fromStdString(message);
        return false;
    }
    policy_ = std::move(policy);
    policyPath_ = path;
    policyLabel_->setText(tr("Policy: %1").arg(path.section('/', -1)));
    policyLabel_->setToolTip(path);
    return true;
}

void ProblemsPanel::ClearPolicy() {
    policy_.reset();
    policyPath_.clear();
    policyLabel_->setText(tr("No policy"));
    policyLabel_->setToolTip({});
}

void ProblemsPanel::Refresh() {
    refresh_->stop();
    if (!doc_ || !isVisible()) return;
    ListProblem problem;
    std::unique_ptr<CRLData> list = doc_->SnapshotList(&problem);
    if (!list) {
        findings_.clear();
        list_->clear();
        summary_->setText(tr("The list cannot be checked as it stands: %1")
                              .arg(QString::fromStdString(
                                  problem.text.empty() ? "a row does not read" : problem.text)));
        return;
    }
    const Analysis::Policy* policy = policy_ ? &*policy_ : nullptr;
    // Writing the list only to weigh it is worth it only when the policy sets a limit.
    const size_t bytes =
        policy && policy->maxListSize ? Analysis::WrittenListSize(*list, doc_->Version()) : 0;
    Show(Analysis::LintRoamingList(*list, bytes, policy, &Analysis::ProviderDirectory::Shared()));
}

QString ProblemsPanel::Summary() const {
    return summary_->text();
}

void ProblemsPanel::Show(const std::vector<Analysis::Finding>& findings) {
    findings_ = findings;
    list_->clear();
    QList<QTreeWidgetItem*> items;
    for (size_t i = 0; i < findings_.size(); ++i) {
        const auto& f = findings_[i];
        auto* item = new QTreeWidgetItem;
        item->setIcon(kSeverity, SeverityIcon(f.severity));
        item->setText(kSeverity, QString::fromUtf8(Analysis::SeverityName(f.severity)));
        item->setText(kRule, QString::fromStdString(f.rule));
        item->setText(kWhere, QString::fromStdString(f.Where()));
        item->setText(kMessage, QString::fromStdString(f.message));
        item->setToolTip(kMessage, item->text(kMessage));
        item->setData(kSeverity, Qt::UserRole, static_cast<qulonglong>(i));
        items.push_back(item);
    }
    list_->addTopLevelItems(items);
    // Severity, rule and place are short: each takes what its text needs, the message the rest.
    for (int column : {kSeverity, kRule, kWhere}) list_->resizeColumnToContents(column);
    const auto c = Analysis::CountFindings(findings_);
    QStringList counts;
    if (c.error) counts << (c.error == 1 ? tr("1 error") : tr("%1 errors").arg(c.error));
    if (c.warning) counts << (c.warning == 1 ? tr("1 warning") : tr("%1 warnings").arg(c.warning));
    if (c.info) counts << tr("%1 info").arg(c.info);
    summary_->setText(findings_.empty() ? tr("No problems found.") : counts.join(", "));
}

void ProblemsPanel::OnActivated(QTreeWidgetItem* item) {
    if (!doc_ || !item) return;
    const size_t i = item->data(kSeverity, Qt::UserRole).toULongLong();
    if (i >= findings_.size()) return;
    const Analysis::Finding& f = findings_[i];
    if (f.index && f.table == Analysis::LintTable::Acquisition)
        emit doc_->focusCell(CRLDoc::Table::Acq, 0, static_cast<int>(*f.index));
    else if (f.index && f.table == Analysis::LintTable::System)
        emit doc_->focusCell(CRLDoc::Table::Sys, 0, static_cast<int>(*f.index));
    else if (f.rule == "reserved-roaming-indicator" || f.rule == "policy-def-roam-ind")
        emit doc_->focusHeaderField(CRLDoc::HeaderField::DefaultRoamInd);
}

}  // namespace Tarn
