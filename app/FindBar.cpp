#include "app/FindBar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include "analysis/RecordSearch.h"
#include "app/RLViews.h"
#include "grid/qt/GridView.h"

namespace Tarn {

namespace {
const QString kFindSource = QStringLiteral("find");
const QColor kMatchColour(255, 236, 150);
}  // namespace

FindBar::FindBar(CListFacts& facts, GridView& acqGrid, GridView& sysGrid, QWidget* parent)
    : QWidget(parent), facts_(facts), acqGrid_(acqGrid), sysGrid_(sysGrid) {
    edit_ = new QLineEdit(this);
    edit_->setClearButtonEnabled(true);
    edit_->setPlaceholderText(tr("SID, sid 4106 nid 2, 310-120, 2001:db8::/32, channel 283, operator"));
    edit_->setMinimumWidth(320);
    auto* previous = new QToolButton(this);
    previous->setText(tr("Previous"));
    previous->setToolTip(tr("Find Previous (Shift+F3)"));
    auto* next = new QToolButton(this);
    next->setText(tr("Next"));
    next->setToolTip(tr("Find Next (F3)"));
    auto* close = new QToolButton(this);
    close->setText(tr("Close"));
    status_ = new QLabel(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 2, 0, 2);
    row->addWidget(new QLabel(tr("Find:"), this));
    row->addWidget(edit_, 2);
    row->addWidget(previous);
    row->addWidget(next);
    row->addWidget(status_, 1);
    row->addWidget(close);

    connect(edit_, &QLineEdit::textChanged, this, &FindBar::Search);
    connect(edit_, &QLineEdit::returnPressed, this, [this] { Next(); });
    connect(next, &QToolButton::clicked, this, [this] { Next(); });
    connect(previous, &QToolButton::clicked, this, [this] { Previous(); });
    connect(close, &QToolButton::clicked, this, &FindBar::Close);
    // The list changed: the same query may now name other rows.
    connect(&facts_, &CListFacts::refreshed, this, [this] {
        if (!isHidden() && !edit_->text().trimmed().isEmpty()) Search();
    });
    hide();
}

void FindBar::Activate() {
    show();
    edit_->setFocus(Qt::ShortcutFocusReason);
    edit_->selectAll();
    if (!edit_->text().isEmpty()) Search();
}

void FindBar::SetQuery(const QString& text) {
    if (edit_->text() == text)
        Search();
    else
        edit_->setText(text);
}

QString FindBar::Query() const {
    return edit_->text();
}

void FindBar::Search() {
    matches_.clear();
    position_ = -1;
    error_.clear();
    Analysis::SearchQuery query;
    std::string error;
    if (!Analysis::ParseSearchQuery(edit_->text().toStdString(), query, error)) {
        error_ = QString::fromStdString(error);
    } else if (!query.Empty()) {
        if (!facts_.Search()) {
            error_ = tr("The list does not read as it stands: %1").arg(facts_.Problem());
        } else {
            const auto found = facts_.Search()->Find(query);
            for (size_t a : found.acquisitions)
                matches_.push_back({CRLDoc::Table::Acq, static_cast<int>(a)});
            for (size_t i : found.systems)
                matches_.push_back({CRLDoc::Table::Sys, static_cast<int>(i)});
        }
    }
    Highlight();
    status_->setText(StatusText());
}

void FindBar::Highlight() {
    QHash<int, QColor> acq, sys;
    for (const Match& m : matches_) (m.table == CRLDoc::Table::Acq ? acq : sys).insert(m.row, kMatchColour);
    acqGrid_.Model()->SetRowHighlights(kFindSource, acq);
    sysGrid_.Model()->SetRowHighlights(kFindSource, sys);
}

bool FindBar::Next() {
    return Step(1);
}

bool FindBar::Previous() {
    return Step(-1);
}

bool FindBar::Step(int direction) {
    if (isHidden()) {
        Activate();
        if (edit_->text().isEmpty()) return false;
    }
    if (matches_.empty()) {
        status_->setText(StatusText());
        return false;
    }
    const int n = static_cast<int>(matches_.size());
    position_ = position_ < 0 ? (direction > 0 ? 0 : n - 1) : (position_ + direction + n) % n;
    const Match& m = matches_[static_cast<size_t>(position_)];
    GridView& grid = m.table == CRLDoc::Table::Acq ? acqGrid_ : sysGrid_;
    const int column = grid.CurrentRow() >= 0 ? std::max(grid.currentIndex().column(), 0) : 0;
    grid.FocusCell(column, m.row);
    status_->setText(StatusText());
    return true;
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return Close();
    QWidget::keyPressEvent(event);
}

void FindBar::Close() {
    acqGrid_.Model()->ClearRowHighlights(kFindSource);
    sysGrid_.Model()->ClearRowHighlights(kFindSource);
    hide();
}

QString FindBar::StatusText() const {
    if (!error_.isEmpty()) return error_;
    if (edit_->text().trimmed().isEmpty()) return {};
    if (matches_.empty()) return tr("No match");
    int acq = 0;
    for (const Match& m : matches_) acq += m.table == CRLDoc::Table::Acq;
    const int sys = static_cast<int>(matches_.size()) - acq;
    const QString where = tr("%1 acquisition, %2 system").arg(acq).arg(sys);
    if (position_ < 0)
        return (matches_.size() == 1 ? tr("1 match") : tr("%1 matches").arg(matches_.size())) +
               " (" + where + ")";
    return tr("%1 of %2 (%3)").arg(position_ + 1).arg(matches_.size()).arg(where);
}

}  // namespace Tarn
