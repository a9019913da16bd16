#include "app/RLViews.h"

#include <QScrollBar>
#include <QUndoStack>

#include <QCheckBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QVBoxLayout>
#include <QValidator>

#include "app/ExchangeActions.h"
#include "analysis/ListFacts.h"
#include "analysis/Providers.h"
#include "analysis/RecordSearch.h"
#include "app/FilterBar.h"
#include "app/FindBar.h"
#include "app/GoToDialog.h"
#include "grid/qt/GridModel.h"
#include "grid/qt/GridView.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

// Digits only, and never above the field's largest value: the field refuses what it could not
// hold, so only an empty field is left for the save check to report.
class RangeValidator : public QValidator {
public:
    RangeValidator(int max, QObject* parent) : QValidator(parent), max_(max) {}
    State validate(QString& input, int&) const override {
        if (input.isEmpty()) return Intermediate;
        bool ok = false;
        for (QChar c : input)
            if (!c.isDigit()) return Invalid;
        const long long v = input.toLongLong(&ok);
        return ok && v <= max_ ? Acceptable : Invalid;
    }

private:
    int max_;
};

// 65535 -> "65,535": the figures engineers compare against the limit read best grouped.
QString Grouped(qulonglong n) {
    QString digits = QString::number(n);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3) digits.insert(at, ',');
    return digits;
}

// The largest list the 16-bit size field can describe.
constexpr qulonglong kMaxListBytes = 65535;

// Every other GEO is banded, so where one GEO ends and the next begins shows at a glance.
const QColor kGeoBand(226, 236, 248);
const QString kAcqOfSystem = QStringLiteral("acquisition of the current system");
const QColor kAcqOfSystemColour(200, 230, 200);

}  // namespace

// ---- CListFacts ---------------------------------------------------------------------------------

CListFacts::CListFacts(CRLDoc& doc, QObject* parent) : QObject(parent), doc_(doc) {
    timer_.setSingleShot(true);
    timer_.setInterval(300);
    connect(&timer_, &QTimer::timeout, this, &CListFacts::Refresh);
    connect(&doc_, &CRLDoc::listEdited, &timer_, qOverload<>(&QTimer::start));
    // The grids are loaded after the views are made (and again after a conversion).
    connect(&doc_.Grid(CRLDoc::Table::Sys), &QAbstractItemModel::modelReset, &timer_,
            qOverload<>(&QTimer::start));
    timer_.start();
}

CListFacts::~CListFacts() = default;

void CListFacts::Refresh() {
    timer_.stop();
    ListProblem problem;
    std::unique_ptr<CRLData> data = doc_.SnapshotList(&problem);
    GridModel& sysGrid = doc_.Grid(CRLDoc::Table::Sys);
    const int acqRows = doc_.Grid(CRLDoc::Table::Acq).GetRowCount();
    const int sysRows = sysGrid.GetRowCount();
    const QString counts = tr("%1 acquisition, %2 system records").arg(acqRows).arg(sysRows);
    if (!data) {
        // The bands and levels stay as last computed (they move with their rows) while a row is
        // being typed; the figures a save would write are unknown until the list reads again.
        problem_ = QString::fromStdString(problem.text);
        if (problem_.isEmpty()) problem_ = tr("a row does not read");
        status_ = counts + "    " + tr("Not writable as it stands: %1").arg(problem_);
        emit refreshed();
        return;
    }
    problem_.clear();
    search_.reset();
    facts_.reset();
    data_ = std::move(data);
    facts_ = std::make_unique<Analysis::ListFacts>(*data_);
    // Operator names come from the installed provider database, read the first time a query
    // names an operator.
    search_ = std::make_unique<Analysis::RecordSearch>(
        *facts_, [facts = facts_.get()](size_t i) {
            return Analysis::OperatorLabel(
                Analysis::OperatorsForRecord(Analysis::ProviderDirectory::Shared(), facts->System(i)));
        });

    std::vector<GridModel::RowAnnotation> rows(facts_->SystemCount());
    for (size_t i = 0; i < rows.size(); ++i) {
        const Analysis::SystemFacts& f = facts_->Facts(i);
        rows[i].band = f.geo % 2 ? kGeoBand : QColor();
        rows[i].info = {QString::number(f.geo), f.preferred ? QString::number(f.level) : tr("neg")};
    }
    sysGrid.SetRowAnnotations({tr("GEO"), tr("Level")}, std::move(rows));

    // The figures of the bytes a save would write now.
    QString written;
    try {
        std::unique_ptr<CRLManager> manager = CreateClassFactory(doc_.Version())->CreateManager();
        auto copy = std::make_unique<CRLData>(*data_);
        manager->AttachData(copy);
        CRLFile file;
        if (manager->WriteList(file) && file.GetLength() >= 2) {
            const auto& bytes = file.Bytes();
            const unsigned crc = (unsigned{bytes[bytes.size() - 2]} << 8) | bytes.back();
            written = tr("List size: %1 / %2 bytes").arg(Grouped(bytes.size()), Grouped(kMaxListBytes)) +
                      "    " + tr("CRC: 0x%1").arg(QString::number(crc, 16).toUpper().rightJustified(4, '0'));
        } else {
            written = tr("Not writable as it stands: %1")
                          .arg(QString::fromStdString(manager->GetLastError()));
        }
    } catch (const std::exception& e) {
        written = tr("Not writable as it stands: %1").arg(QString::fromUtf8(e.what()));
    }
    status_ = tr("%1 acquisition, %2 system records in %3 GEOs")
                  .arg(facts_->AcquisitionCount())
                  .arg(facts_->SystemCount())
                  .arg(facts_->GeoCount()) +
              "    " + written;
    emit refreshed();
}

// ---- CPropView ----------------------------------------------------------------------------------

CPropView::CPropView(CRLDoc& doc, QWidget* parent)
    : QGroupBox(tr("Roaming List Settings"), parent), doc_(doc) {
    type_ = new QLineEdit(this);
    type_->setReadOnly(true);
    type_->setFocusPolicy(Qt::NoFocus);
    prefOnly_ = new QCheckBox(this);
    defRoamInd_ = new QLineEdit(this);
    defRoamInd_->setValidator(new RangeValidator(255, defRoamInd_));
    prefListId_ = new QLineEdit(this);
    prefListId_->setValidator(new RangeValidator(65535, prefListId_));
    for (QLineEdit* e : {type_, defRoamInd_, prefListId_}) e->setMaximumWidth(110);

    auto* left = new QFormLayout;
    left->addRow(tr("Roaming List Type:"), type_);
    left->addRow(tr("Preferred Only:"), prefOnly_);
    auto* right = new QFormLayout;
    right->addRow(tr("Default Roaming Indicator:"), defRoamInd_);
    right->addRow(tr("Preferred Roaming List ID:"), prefListId_);
    auto* row = new QHBoxLayout(this);
    row->addLayout(left);
    row->addSpacing(24);
    row->addLayout(right);
    row->addStretch(1);

    connect(defRoamInd_, &QLineEdit::editingFinished, this, &CPropView::Commit);
    connect(prefListId_, &QLineEdit::editingFinished, this, &CPropView::Commit);
    connect(prefOnly_, &QCheckBox::toggled, this, [this] {
        if (!loading_) Commit();
    });
    connect(&doc_, &CRLDoc::headerChanged, this, &CPropView::Load);
    connect(&doc_, &CRLDoc::versionChanged, this, &CPropView::Load);
    connect(&doc_, &CRLDoc::commitViews, this, &CPropView::Commit);
    connect(&doc_, &CRLDoc::focusHeaderField, this, &CPropView::Focus);
    Load();
}

void CPropView::Load() {
    loading_ = true;
    type_->setText(QString::fromStdString(VersionName(doc_.Version())));
    const HeaderTexts& h = doc_.Header();
    prefOnly_->setChecked(h.prefOnly);
    if (defRoamInd_->text().toStdString() != h.defRoamInd)
        defRoamInd_->setText(QString::fromStdString(h.defRoamInd));
    if (prefListId_->text().toStdString() != h.prefListId)
        prefListId_->setText(QString::fromStdString(h.prefListId));
    loading_ = false;
}

void CPropView::Commit() {
    if (loading_) return;
    doc_.SetHeader(HeaderTexts{defRoamInd_->text().toStdString(), prefListId_->text().toStdString(),
                               prefOnly_->isChecked()});
}

void CPropView::Focus(CRLDoc::HeaderField field) {
    QLineEdit* edit = field == CRLDoc::HeaderField::DefaultRoamInd ? defRoamInd_ : prefListId_;
    edit->setFocus(Qt::OtherFocusReason);
    edit->selectAll();
}

// ---- Record tables ------------------------------------------------------------------------------

CRecordTableView::CRecordTableView(CRLDoc& doc, CRLDoc::Table table, const QString& title,
                                   QWidget* parent)
    : QWidget(parent), doc_(doc), table_(table), title_(title) {
    label_ = new QLabel(this);
    QFont bold = label_->font();
    bold.setBold(true);
    label_->setFont(bold);
    note_ = new QLabel(this);
    note_->setTextFormat(Qt::RichText);
    connect(note_, &QLabel::linkActivated, this, &CRecordTableView::noteLinkActivated);
    grid_ = new GridView(this);
    grid_->SetGridModel(&doc.Grid(table));
    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(label_);
    titleRow->addSpacing(16);
    titleRow->addWidget(note_, 1);
    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(0, 4, 0, 0);
    layout_->setSpacing(2);
    layout_->addLayout(titleRow);
    layout_->addWidget(grid_, 1);

    GridModel& model = doc.Grid(table);
    connect(grid_, &GridView::currentRowChanged, this,
            [this](int row) { doc_.RefreshHeadings(table_, row); });
    connect(&model, &GridModel::rowsEdited, this, [this](int first, int last) {
        const int row = grid_->CurrentRow();
        if (row >= first && row <= last) doc_.RefreshHeadings(table_, row);
    });
    connect(&model, &QAbstractItemModel::rowsInserted, this, &CRecordTableView::UpdateTitle);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &CRecordTableView::UpdateTitle);
    connect(&model, &QAbstractItemModel::modelReset, this, [this] {
        UpdateTitle();
        // A freshly loaded table starts on its first record, so its columns are titled at once.
        if (!grid_->currentIndex().isValid() && doc_.Grid(table_).rowCount() > 0)
            grid_->setCurrentIndex(grid_->ToView(0, 0));
        else
            doc_.RefreshHeadings(table_, grid_->CurrentRow());
        grid_->FitColumns();
    });
    connect(&doc, &CRLDoc::commitViews, grid_, &GridView::CommitPendingEdit);
    connect(&doc, &CRLDoc::focusCell, this, [this](CRLDoc::Table t, int column, int row) {
        if (t == table_) grid_->FocusCell(column, row);
    });
    UpdateTitle();
    if (model.rowCount() > 0)
        grid_->setCurrentIndex(model.index(0, 0));
    else
        doc_.RefreshHeadings(table_, -1);
    grid_->FitColumns();
}

void CRecordTableView::SetNote(const QString& html) {
    note_->setText(html);
}

QString CRecordTableView::Note() const {
    return note_->text();
}

void CRecordTableView::UpdateTitle() {
    const int n = doc_.Grid(table_).GetRowCount();
    label_->setText(n == 1 ? tr("%1 (1 row)").arg(title_) : tr("%1 (%2 rows)").arg(title_).arg(n));
}

CAcqView::CAcqView(CRLDoc& doc, QWidget* parent)
    : CRecordTableView(doc, CRLDoc::Table::Acq, tr("Acquisition Table"), parent) {}

CSysView::CSysView(CRLDoc& doc, CListFacts& facts, QWidget* parent)
    : CRecordTableView(doc, CRLDoc::Table::Sys, tr("System Table"), parent) {
    ShowOperatorColumns(doc, doc.Grid(CRLDoc::Table::Sys), this);
    filter_ = new FilterBar(facts, *Grid(), this);
    Layout()->insertWidget(1, filter_);
}

// ---- Frame view ---------------------------------------------------------------------------------

CRLView::CRLView(CRLDoc& doc, QWidget* parent) : QWidget(parent), doc_(doc) {
    facts_ = new CListFacts(doc, this);
    prop_ = new CPropView(doc, this);
    acq_ = new CAcqView(doc);
    sys_ = new CSysView(doc, *facts_);
    find_ = new FindBar(*facts_, *acq_->Grid(), *sys_->Grid(), this);
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(acq_);
    split->addWidget(sys_);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    split->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(prop_);
    layout->addWidget(find_);
    layout->addWidget(split, 1);
    setFocusProxy(acq_->Grid());

    connect(sys_->Grid(), &GridView::currentRowChanged, this, &CRLView::FollowSystemRow);
    connect(acq_->Grid(), &GridView::currentRowChanged, this, &CRLView::FollowAcqRow);
    connect(facts_, &CListFacts::refreshed, this, [this] {
        FollowSystemRow(sys_->Grid()->CurrentRow());
        FollowAcqRow(acq_->Grid()->CurrentRow());
        emit statusTextChanged(facts_->StatusText());
    });
    connect(acq_, &CRecordTableView::noteLinkActivated, this, [this] {
        const int row = acq_->Grid()->CurrentRow();
        if (row >= 0) sys_->Filter()->SetAcquisition(row);
    });
}

void CRLView::FollowSystemRow(int row) {
    GridModel& acqGrid = doc_.Grid(CRLDoc::Table::Acq);
    const Analysis::RecordSearch* search = facts_->Search();
    if (!search || row < 0 || static_cast<size_t>(row) >= search->Facts().SystemCount() ||
        !search->Facts().Facts(static_cast<size_t>(row)).acqInRange) {
        acqGrid.ClearRowHighlights(kAcqOfSystem);
        return;
    }
    const int acq = static_cast<int>(search->Facts().System(static_cast<size_t>(row)).GetAcqIndex());
    acqGrid.SetRowHighlights(kAcqOfSystem, {{acq, kAcqOfSystemColour}});
}

void CRLView::FollowAcqRow(int row) {
    const Analysis::RecordSearch* search = facts_->Search();
    if (!search || row < 0 || static_cast<size_t>(row) >= search->Facts().AcquisitionCount()) {
        acq_->SetNote({});
        return;
    }
    const size_t users = search->SystemsUsing(static_cast<size_t>(row)).size();
    const QString link = QStringLiteral(" <a href=\"show\">%1</a>").arg(tr("Show them"));
    if (users == 0)
        acq_->SetNote(tr("Record %1 is used by no system record.").arg(row));
    else if (users == 1)
        acq_->SetNote(tr("Record %1 is used by 1 system record.").arg(row) + link);
    else
        acq_->SetNote(tr("Record %1 is used by %2 system records.").arg(row).arg(users) + link);
}

void CRLView::ShowFind() {
    find_->Activate();
}

void CRLView::FindNext(bool backwards) {
    if (backwards)
        find_->Previous();
    else
        find_->Next();
}

void CRLView::ShowGoTo() {
    const Analysis::RecordSearch* search = facts_->Search();
    auto* dialog = new GoToDialog(doc_.Grid(CRLDoc::Table::Sys).GetRowCount(),
                                  doc_.Grid(CRLDoc::Table::Acq).GetRowCount(),
                                  search ? search->Facts().GeoCount() : 0, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const int current = sys_->Grid()->CurrentRow();
    dialog->Set(GoToDialog::Target::System, std::max(current, 0));
    connect(dialog, &GoToDialog::goTo, this,
            [this](GoToDialog::Target target, int number) { GoTo(static_cast<int>(target), number); });
    dialog->open();
}

void CRLView::GoTo(int target, int number) {
    switch (static_cast<GoToDialog::Target>(target)) {
        case GoToDialog::Target::System:
            sys_->Grid()->FocusCell(0, number);
            break;
        case GoToDialog::Target::Acquisition:
            acq_->Grid()->FocusCell(0, number);
            break;
        case GoToDialog::Target::Geo:
            if (const Analysis::RecordSearch* search = facts_->Search();
                search && number >= 0 && number < search->Facts().GeoCount())
                sys_->Grid()->FocusCell(0, static_cast<int>(search->Facts().GeoRange(number).first));
            break;
    }
}

// ---- Text view ----------------------------------------------------------------------------------

CRLViewText::CRLViewText(CRLDoc& doc, QWidget* parent) : QPlainTextEdit(parent), doc_(doc) {
    setReadOnly(true);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    const QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    setFont(mono);
    setTabStopDistance(QFontMetricsF(mono).horizontalAdvance(' ') * 8);
    connect(&doc.UndoStack(), &QUndoStack::indexChanged, this, &CRLViewText::Follow);
    connect(&doc, &CRLDoc::versionChanged, this, &CRLViewText::Follow);
}

bool CRLViewText::Refresh() {
    QString text;
    if (!doc_.RenderText(text)) return false;
    Show(std::move(text));
    return true;
}

void CRLViewText::Follow() {
    QString text;
    if (doc_.RenderTextQuietly(text)) Show(std::move(text));
}

void CRLViewText::Show(QString text) {
    text.replace("\r\n", "\n");
    if (text == toPlainText()) return;
    // Keep the reader's place in a long list.
    const int scroll = verticalScrollBar()->value();
    setPlainText(text);
    verticalScrollBar()->setValue(scroll);
}

}  // namespace Tarn
