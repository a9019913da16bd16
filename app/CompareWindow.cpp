#include "app/CompareWindow.h"

#include <QHeaderView>
#include <QLabel>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "analysis/DiffReport.h"
#include "analysis/ListFacts.h"
#include "analysis/Providers.h"
#include "app/RLDoc.h"
#include "app/TessaryApp.h"
#include "app/UiPrompts.h"
#include "roaming_list/RLData.h"

namespace Tarn {

const QString CompareWindow::kHighlightSource = QStringLiteral("compare");

namespace {

// The colours of the command line's diff, lightened for a grid background; the chosen record
// stands out from all of them.
const QColor kAddedColour(200, 240, 200);
const QColor kRemovedColour(250, 205, 205);
const QColor kChangedColour(255, 236, 179);
const QColor kChosenColour(170, 200, 250);

using Kind = Analysis::DiffEntry::Kind;

}  // namespace

CompareWindow* CompareWindow::Ask(CRLDoc& doc, CTessaryApp& app, QWidget* parent) {
    std::vector<CRLDoc*> others;
    QStringList items;
    for (CDocument* d : app.Documents())
        if (auto* list = qobject_cast<CRLDoc*>(d); list && list != &doc) {
            others.push_back(list);
            items << list->Title();
        }
    CRLDoc* other = nullptr;
    int choice = static_cast<int>(others.size());
    if (!others.empty()) {
        items << QObject::tr("A file...");
        choice = Prompts().ChooseItem(parent, QObject::tr("Compare With"),
                                      QObject::tr("Compare %1 with:").arg(doc.Title()), items, 0);
        if (choice < 0) return nullptr;
    }
    if (choice < static_cast<int>(others.size())) {
        other = others[static_cast<size_t>(choice)];
    } else {
        FileDialogSpec request;
        request.title = QObject::tr("Compare With");
        request.filter = CTessaryApp::RoamingListFilter();
        request.defaultSuffix = QStringLiteral("prl");
        const QString path = Prompts().GetOpenFileName(parent, request);
        if (path.isEmpty()) return nullptr;
        // Opened as a document of its own, the other list can be edited beside the first.
        CDocument* opened = app.OpenDocumentFile(path);
        if (!opened) return nullptr;  // the document has said why
        other = qobject_cast<CRLDoc*>(opened);
        if (!other || other == &doc) {
            Prompts().Message(
                parent,
                other ? QObject::tr(
                            "Choose another roaming list: this one is the list being compared.")
                      : QObject::tr("Only a roaming list can be compared with a roaming list."),
                MsgIcon::Warning);
            return nullptr;
        }
    }
    auto* w = new CompareWindow(doc, *other, parent);
    w->show();
    return w;
}

CompareWindow::CompareWindow(CRLDoc& first, CRLDoc& second, QWidget* parent)
    : QWidget(parent, Qt::Window), a_(&first), b_(&second) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("CompareWindow"));
    setWindowTitle(tr("Compare %1 with %2").arg(first.Title(), second.Title()));

    summary_ = new QLabel(this);
    summary_->setWordWrap(true);
    tree_ = new QTreeWidget(this);
    tree_->setColumnCount(1);
    tree_->setHeaderHidden(true);
    tree_->setUniformRowHeights(true);
    connect(tree_, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { Show(item); });
    // What a reviewer signs off: the observations a handset now treats differently. A
    // double-click shows the record that decides in each list.
    behaviourTree_ = new QTreeWidget(this);
    behaviourTree_->setObjectName(QStringLiteral("BehaviourTree"));
    behaviourTree_->setColumnCount(1);
    behaviourTree_->setHeaderHidden(true);
    behaviourTree_->setUniformRowHeights(true);
    connect(behaviourTree_, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { Show(item); });
    tabs_ = new QTabWidget(this);
    tabs_->addTab(tree_, tr("Records"));
    tabs_->addTab(behaviourTree_, tr("Behaviour"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary_);
    layout->addWidget(tabs_, 1);
    resize(820, 600);

    // Edits in either document are gathered for a moment and compared once, so typing in a grid
    // never waits on the comparison.
    refresh_ = new QTimer(this);
    refresh_->setSingleShot(true);
    refresh_->setInterval(300);
    connect(refresh_, &QTimer::timeout, this, &CompareWindow::Refresh);
    for (CRLDoc* d : {&first, &second}) {
        connect(d, &CRLDoc::listEdited, refresh_, qOverload<>(&QTimer::start));
        connect(d, &QObject::destroyed, this, &QWidget::close);
    }
    Refresh();
}

CompareWindow::~CompareWindow() {
    ClearRows();
}

QString CompareWindow::Summary() const {
    return summary_->text();
}

void CompareWindow::ClearRows() {
    for (CRLDoc* d : {a_.data(), b_.data()})
        if (d)
            for (auto table : {CRLDoc::Table::Acq, CRLDoc::Table::Sys})
                d->Grid(table).ClearRowHighlights(kHighlightSource);
}

void CompareWindow::ShowMessage(const QString& text) {
    diff_.reset();
    behaviour_.reset();
    tree_->clear();
    behaviourTree_->clear();
    summary_->setText(text);
    ClearRows();
}

void CompareWindow::Refresh() {
    if (!a_ || !b_) return;
    ListProblem problem;
    std::unique_ptr<CRLData> listA = a_->SnapshotList(&problem);
    std::unique_ptr<CRLData> listB = listA ? b_->SnapshotList(&problem) : nullptr;
    if (!listA || !listB) {
        ShowMessage(tr("%1 cannot be compared as it stands: %2")
                        .arg(listA ? b_->Title() : a_->Title(),
                             QString::fromStdString(problem.text.empty() ? "a row does not read"
                                                                         : problem.text)));
        return;
    }
    diff_ = std::make_unique<Analysis::ListDiff>(
        Analysis::DiffLists(*listA, a_->Version(), *listB, b_->Version()));
    const Analysis::ListDiff& d = *diff_;
    const Analysis::ListFacts fa(*listA), fb(*listB);
    const auto& providers = Analysis::ProviderDirectory::Shared();
    auto label = [&providers](const CSysItem& item) {
        return Analysis::OperatorLabel(Analysis::OperatorsForRecord(providers, item));
    };

    // The tree is rebuilt after an edit; the difference the user was looking at stays chosen
    // when it is still there.
    const QString current = tree_->currentItem() ? tree_->currentItem()->text(0) : QString();
    tree_->clear();
    QTreeWidgetItem* keep = nullptr;
    auto addGroup = [this](const QString& title) {
        auto* group = new QTreeWidgetItem(tree_, {title});
        QFont bold = group->font(0);
        bold.setBold(true);
        group->setFont(0, bold);
        group->setExpanded(true);
        return group;
    };
    if (!d.header.empty()) {
        QTreeWidgetItem* group = addGroup(tr("header"));
        for (const auto& h : d.header) {
            auto value = [](const nlohmann::json& v) {
                return QString::fromStdString(v.is_string() ? v.get<std::string>() : v.dump());
            };
            new QTreeWidgetItem(
                group, {QStringLiteral("~ %1: %2 -> %3")
                            .arg(QString::fromStdString(h.field), value(h.a), value(h.b))});
        }
    }
    for (const auto& section : Analysis::ListDiffSections(d)) {
        QTreeWidgetItem* group = addGroup(QString::fromStdString(section.title));
        for (const auto& e : section.entries) {
            const auto lines = Analysis::DiffEntryLines(d, e, fa, fb, label);
            auto* item = new QTreeWidgetItem(group, {QString::fromStdString(lines[0])});
            item->setData(0, kSystemRole, e.system);
            item->setData(0, kRowARole, e.kind == Kind::Added ? -1 : static_cast<int>(e.a));
            item->setData(0, kRowBRole, e.kind == Kind::Removed ? -1 : static_cast<int>(e.b));
            item->setForeground(0, e.kind == Kind::Added     ? QColor(0, 120, 0)
                                   : e.kind == Kind::Removed ? QColor(170, 0, 0)
                                                             : QColor(140, 100, 0));
            for (size_t k = 1; k < lines.size(); ++k) {
                auto* detail =
                    new QTreeWidgetItem(item, {QString::fromStdString(lines[k]).trimmed()});
                for (int role : {kSystemRole, kRowARole, kRowBRole})
                    detail->setData(0, role, item->data(0, role));
            }
            item->setExpanded(true);
            if (!keep && item->text(0) == current) keep = item;
        }
    }
    RefreshBehaviour(*listA, *listB);
    summary_->setText(QString::fromStdString(Analysis::ListDiffSummary(d)));
    if (keep) tree_->setCurrentItem(keep);
    PaintRows(tree_->currentItem());
}

void CompareWindow::RefreshBehaviour(const CRLData& listA, const CRLData& listB) {
    behaviour_ = Analysis::CompareBehaviour(listA, listB);
    const Analysis::BehaviourComparison& cmp = *behaviour_;
    const auto& providers = Analysis::ProviderDirectory::Shared();
    behaviourTree_->clear();
    const int systems = static_cast<int>(Analysis::GroupBehaviourChanges(cmp).size());
    tabs_->setTabText(1, cmp.Same()     ? tr("Behaviour: the same")
                         : systems == 1 ? tr("Behaviour: 1 system differs")
                                        : tr("Behaviour: %1 systems differ").arg(systems));
    if (cmp.Same()) {
        new QTreeWidgetItem(
            behaviourTree_,
            {tr("Handsets treat every system the same with both lists (%1 classes of "
                "observations compared).")
                 .arg(cmp.classes)});
        return;
    }
    for (const auto& group : Analysis::GroupBehaviourChanges(cmp)) {
        const auto& first = cmp.changes[group.changes.front()].observation.observation;
        QString title = QString::fromStdString(group.system);
        const std::string label = Analysis::ObservationOperators(first, providers);
        if (!label.empty()) title += QStringLiteral("  (%1)").arg(QString::fromStdString(label));
        auto* system = new QTreeWidgetItem(behaviourTree_, {title});
        QFont bold = system->font(0);
        bold.setBold(true);
        system->setFont(0, bold);
        for (size_t index : group.changes) {
            const Analysis::BehaviourChange& c = cmp.changes[index];
            const std::string detail =
                c.observation.detail.empty() ? "every observation" : c.observation.detail;
            auto* item = new QTreeWidgetItem(system, {QString::fromStdString(detail)});
            const int rowA = c.recordA ? static_cast<int>(*c.recordA) : -1;
            const int rowB = c.recordB ? static_cast<int>(*c.recordB) : -1;
            for (QTreeWidgetItem* target : {system, item}) {
                if (target == system && system->data(0, kRowARole).isValid()) continue;
                target->setData(0, kSystemRole, true);
                target->setData(0, kRowARole, rowA);
                target->setData(0, kRowBRole, rowB);
            }
            for (const auto& line : Analysis::DescribeChange(c, cmp.keys)) {
                auto* what = new QTreeWidgetItem(item, {QString::fromStdString(line)});
                for (int role : {kSystemRole, kRowARole, kRowBRole})
                    what->setData(0, role, item->data(0, role));
            }
            item->setExpanded(true);
        }
        system->setExpanded(true);
    }
}

void CompareWindow::PaintRows(QTreeWidgetItem* selected) {
    if (!a_ || !b_ || !diff_) return;
    const Analysis::ListDiff& d = *diff_;
    QHash<int, QColor> sysA, sysB, acqA, acqB;
    for (size_t i : d.sysRemoved) sysA[static_cast<int>(i)] = kRemovedColour;
    for (size_t j : d.sysAdded) sysB[static_cast<int>(j)] = kAddedColour;
    for (const auto& c : d.sysChanged) {
        sysA[static_cast<int>(c.a)] = kChangedColour;
        sysB[static_cast<int>(c.b)] = kChangedColour;
    }
    for (size_t i : d.acqRemoved) acqA[static_cast<int>(i)] = kRemovedColour;
    for (size_t j : d.acqAdded) acqB[static_cast<int>(j)] = kAddedColour;
    for (const auto& c : d.acqChanged) {
        acqA[static_cast<int>(c.a)] = kChangedColour;
        acqB[static_cast<int>(c.b)] = kChangedColour;
    }
    if (selected && selected->data(0, kRowARole).isValid()) {
        const bool system = selected->data(0, kSystemRole).toBool();
        const int rowA = selected->data(0, kRowARole).toInt();
        const int rowB = selected->data(0, kRowBRole).toInt();
        if (rowA >= 0) (system ? sysA : acqA)[rowA] = kChosenColour;
        if (rowB >= 0) (system ? sysB : acqB)[rowB] = kChosenColour;
    }
    a_->Grid(CRLDoc::Table::Sys).SetRowHighlights(kHighlightSource, sysA);
    a_->Grid(CRLDoc::Table::Acq).SetRowHighlights(kHighlightSource, acqA);
    b_->Grid(CRLDoc::Table::Sys).SetRowHighlights(kHighlightSource, sysB);
    b_->Grid(CRLDoc::Table::Acq).SetRowHighlights(kHighlightSource, acqB);
}

void CompareWindow::Show(QTreeWidgetItem* item) {
    PaintRows(item);
    if (!item || !item->data(0, kRowARole).isValid()) return;
    const auto table =
        item->data(0, kSystemRole).toBool() ? CRLDoc::Table::Sys : CRLDoc::Table::Acq;
    const int rowA = item->data(0, kRowARole).toInt();
    const int rowB = item->data(0, kRowBRole).toInt();
    if (a_ && rowA >= 0) emit a_->focusCell(table, 0, rowA);
    if (b_ && rowB >= 0) emit b_->focusCell(table, 0, rowB);
}

}  // namespace Tarn
