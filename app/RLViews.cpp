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
#include "grid/qt/GridView.h"
#include "roaming_list/RLManager.h"

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

}  // namespace

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
    grid_ = new GridView(this);
    grid_->SetGridModel(&doc.Grid(table));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 4, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(label_);
    layout->addWidget(grid_, 1);

    GridModel& model = doc.Grid(table);
    connect(grid_, &GridView::currentRowChanged, this,
            [this](int row) { doc_.RefreshHeadings(table_, row); });
    connect(&model, &GridModel::rowsEdited, this, [this](int first, int last) {
        const int row = grid_->currentIndex().row();
        if (row >= first && row <= last) doc_.RefreshHeadings(table_, row);
    });
    connect(&model, &QAbstractItemModel::rowsInserted, this, &CRecordTableView::UpdateTitle);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &CRecordTableView::UpdateTitle);
    connect(&model, &QAbstractItemModel::modelReset, this, [this] {
        UpdateTitle();
        // A freshly loaded table starts on its first record, so its columns are titled at once.
        if (!grid_->currentIndex().isValid() && doc_.Grid(table_).rowCount() > 0)
            grid_->setCurrentIndex(doc_.Grid(table_).index(0, 0));
        else
            doc_.RefreshHeadings(table_, grid_->currentIndex().row());
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

void CRecordTableView::UpdateTitle() {
    const int n = doc_.Grid(table_).GetRowCount();
    label_->setText(n == 1 ? tr("%1 (1 row)").arg(title_) : tr("%1 (%2 rows)").arg(title_).arg(n));
}

CAcqView::CAcqView(CRLDoc& doc, QWidget* parent)
    : CRecordTableView(doc, CRLDoc::Table::Acq, tr("Acquisition Table"), parent) {}

CSysView::CSysView(CRLDoc& doc, QWidget* parent)
    : CRecordTableView(doc, CRLDoc::Table::Sys, tr("System Table"), parent) {
    ShowOperatorColumns(doc, doc.Grid(CRLDoc::Table::Sys), this);
}

// ---- Frame view ---------------------------------------------------------------------------------

CRLView::CRLView(CRLDoc& doc, QWidget* parent) : QWidget(parent) {
    prop_ = new CPropView(doc, this);
    acq_ = new CAcqView(doc);
    sys_ = new CSysView(doc);
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(acq_);
    split->addWidget(sys_);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    split->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(prop_);
    layout->addWidget(split, 1);
    setFocusProxy(acq_->Grid());
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
