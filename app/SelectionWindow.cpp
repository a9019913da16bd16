#include "app/SelectionWindow.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "analysis/ListFacts.h"
#include "analysis/Providers.h"
#include "app/ExchangeActions.h"
#include "app/RLDoc.h"
#include "roaming_list/RLData.h"

namespace Tarn {

const QString SelectionWindow::kHighlightSource = QStringLiteral("selection");

namespace {

// The rows are coloured by what they mean to the handset; the GEO first so the more specific
// colours overwrite it.
const QColor kGeoColour(225, 236, 250);
const QColor kMorePreferredColour(255, 236, 179);
const QColor kWinnerPreferredColour(200, 240, 200);
const QColor kWinnerNegativeColour(250, 205, 205);

const char* const kFieldLabels[] = {"SID", "NID", "MCC", "MNC", "Subnet", "Band", "Channel"};

}  // namespace

SelectionWindow::SelectionWindow(CRLDoc& doc, QWidget* parent)
    : QWidget(parent, Qt::Window), doc_(&doc) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("SelectionWindow"));
    setWindowTitle(tr("Simulate selection - %1").arg(doc.Title()));

    auto* form = new QFormLayout;
    for (int i = 0; i < 7; ++i) {
        fields_[i] = new QLineEdit(this);
        form->addRow(tr(kFieldLabels[i]), fields_[i]);
        connect(fields_[i], &QLineEdit::returnPressed, this, &SelectionWindow::Simulate);
    }
    fields_[1]->setPlaceholderText(tr("unknown"));
    fields_[4]->setPlaceholderText(tr("2001:db8::1/128"));
    auto* simulate = new QPushButton(tr("&Simulate"), this);
    connect(simulate, &QPushButton::clicked, this, &SelectionWindow::Simulate);

    summary_ = new QLabel(tr("Type the system the handset found, then Simulate."), this);
    summary_->setWordWrap(true);
    text_ = new QPlainTextEdit(this);
    text_->setReadOnly(true);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    records_ = new QTableWidget(0, 7, this);
    records_->setHorizontalHeaderLabels({tr("Record"), tr("Role"), tr("System"), tr("Operator"),
                                         tr("GEO"), tr("Level"), tr("Note")});
    records_->horizontalHeader()->setStretchLastSection(true);
    records_->verticalHeader()->hide();
    records_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    records_->setSelectionBehavior(QAbstractItemView::SelectRows);
    connect(records_, &QTableWidget::cellDoubleClicked, this,
            [this](int row, int) { OnRecordActivated(row); });

    auto* top = new QHBoxLayout;
    top->addLayout(form);
    top->addWidget(simulate, 0, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(summary_);
    layout->addWidget(records_, 1);
    layout->addWidget(text_, 1);
    resize(980, 640);

    // Typing in the grids must never wait on a simulation: edits are gathered for a moment and
    // answered once.
    refresh_ = new QTimer(this);
    refresh_->setSingleShot(true);
    refresh_->setInterval(300);
    connect(refresh_, &QTimer::timeout, this, [this] {
        if (asked_) Simulate();
    });
    connect(&doc, &CRLDoc::listEdited, refresh_, qOverload<>(&QTimer::start));
    connect(&doc, &QObject::destroyed, this, &QWidget::close);
}

SelectionWindow::~SelectionWindow() {
    if (doc_) doc_->Grid(CRLDoc::Table::Sys).ClearRowHighlights(kHighlightSource);
}

QString SelectionWindow::Summary() const {
    return summary_->text();
}
QString SelectionWindow::ResultText() const {
    return text_->toPlainText();
}

void SelectionWindow::ShowMessage(const QString& text) {
    result_.reset();
    summary_->setText(text);
    text_->clear();
    records_->setRowCount(0);
    if (doc_) doc_->Grid(CRLDoc::Table::Sys).ClearRowHighlights(kHighlightSource);
}

void SelectionWindow::Simulate() {
    if (!doc_) return;
    asked_ = true;
    Analysis::ObservationFields f;
    std::string* targets[] = {&f.sid, &f.nid, &f.mcc, &f.mnc, &f.subnet, &f.band, &f.channel};
    for (int i = 0; i < 7; ++i) *targets[i] = fields_[i]->text().trimmed().toStdString();
    Analysis::Observation observation;
    std::string error;
    if (!Analysis::ParseObservation(f, observation, error)) {
        // The messages speak of command-line options; here the same words are field names.
        QString message = QString::fromStdString(error).remove(QStringLiteral("--"));
        message[0] = message[0].toUpper();
        ShowMessage(message + '.');
        return;
    }
    ListProblem problem;
    std::unique_ptr<CRLData> list = doc_->SnapshotList(&problem);
    if (!list) {
        ShowMessage(tr("The list cannot be simulated as it stands: %1")
                        .arg(QString::fromStdString(problem.text.empty() ? "a row does not read"
                                                                         : problem.text)));
        return;
    }
    const Analysis::Selector selector(*list);
    ShowResult(selector.Select(observation), selector.Facts());
}

void SelectionWindow::ShowResult(const Analysis::SelectionResult& r,
                                 const Analysis::ListFacts& facts) {
    using namespace Analysis;
    result_ = r;
    // Operators and countries as tarn-cli select --providers names them.
    const ProviderDirectory& providers = EditorProviders(this);
    const auto operators = [&](size_t index) {
        return QString::fromStdString(
            OperatorLabel(OperatorsForRecord(providers, facts.System(index))));
    };
    QString summary =
        QString::fromStdString(r.observation.Describe()) + ": " + VerdictName(r.verdict);
    if (r.match) {
        summary += tr(", record %1 (GEO %2, level %3)")
                       .arg(r.match->index)
                       .arg(r.match->geo)
                       .arg(r.match->level);
        if (const QString names = operators(r.match->index); !names.isEmpty())
            summary += " - " + names;
    }
    summary +=
        tr(", roaming indicator %1").arg(r.roamInd ? QString::number(*r.roamInd) : tr("none"));
    summary_->setText(summary);
    text_->setPlainText(QString::fromStdString(FormatSelectionText(r, facts, &providers)));

    records_->setRowCount(0);
    auto addRow = [&](size_t index, const QString& role, int geo, int level, const QString& note) {
        const int row = records_->rowCount();
        records_->insertRow(row);
        const QString cells[] = {QString::number(index),
                                 role,
                                 QString::fromStdString(SystemIdentityText(facts.System(index))),
                                 operators(index),
                                 QString::number(geo),
                                 QString::number(level),
                                 note};
        for (int c = 0; c < 7; ++c) {
            auto* item = new QTableWidgetItem(cells[c]);
            item->setData(Qt::UserRole, static_cast<qulonglong>(index));
            records_->setItem(row, c, item);
        }
    };
    QHash<int, QColor> highlights;
    if (r.match) {
        const auto [first, last] = facts.GeoRange(r.match->geo);
        for (size_t i = first; i < last; ++i) highlights[static_cast<int>(i)] = kGeoColour;
        // The winner's note says why it won; a loser's why it lost.
        QString why =
            r.candidates.size() > 1 ? tr("the winner: ") : tr("the only record naming the system");
        if (r.candidates.size() > 1)
            why += r.match->acqCovers == true ? tr("scans the channel, most specific, earliest")
                                              : tr("most specific, earliest");
        if (r.match->acqCovers == false) why += tr("; does not scan the channel");
        addRow(r.match->index, tr("match"), r.match->geo, r.match->level, why);
        for (const auto& s : r.morePreferred) {
            highlights[static_cast<int>(s.index)] = kMorePreferredColour;
            addRow(
                s.index, tr("more preferred"), r.match->geo, s.level,
                tr("kept looking for; scans %1").arg(QString::fromStdString(s.coverage.ToText())));
        }
        highlights[static_cast<int>(r.match->index)] =
            r.match->preferred ? kWinnerPreferredColour : kWinnerNegativeColour;
        for (const auto& c : r.candidates)
            if (c.lost != LossReason::None)
                addRow(c.index, tr("also matches"), c.geo, c.level,
                       QString::fromStdString(LossReasonText(c, r)));
    }
    records_->resizeColumnsToContents();
    doc_->Grid(CRLDoc::Table::Sys).SetRowHighlights(kHighlightSource, highlights);
}

void SelectionWindow::OnRecordActivated(int row) {
    if (!doc_ || row < 0 || row >= records_->rowCount()) return;
    const int index = static_cast<int>(records_->item(row, 0)->data(Qt::UserRole).toULongLong());
    emit doc_->focusCell(CRLDoc::Table::Sys, 0, index);
}

}  // namespace Tarn
