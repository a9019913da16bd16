#include "app/mmss/MmssViews.h"

#include <QAction>
#include <algorithm>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QTabWidget>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>

#include "app/MainFrame.h"
#include "app/TessaryApp.h"
#include "grid/qt/GridModel.h"

namespace Tarn::App {
namespace {

// Refuses a typed entry before it reaches the grid, with the document's message, so a cell
// never holds what its file cannot.
class EntryCheckDelegate : public GridDelegate {
public:
    EntryCheckDelegate(MmssDocument& doc, QObject* parent) : GridDelegate(parent), doc_(doc) {}
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
            const QString refusal = doc_.RefuseEntry(index.column(), edit->text());
            if (!refusal.isEmpty()) {
                Prompts().Message(doc_.DialogParent(), refusal, MsgIcon::Warning);
                return;
            }
        }
        GridDelegate::setModelData(editor, model, index);
    }

private:
    MmssDocument& doc_;
};

QLineEdit* MakeField(const FieldSpec& request, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QString::fromStdString(request.key));
    const int digits = std::max(request.maxLength, 3) + 3;
    edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QString(digits, '0')) + 16);
    return edit;
}

}  // namespace

// ---- IndexedGridView ----------------------------------------------------------------------------

IndexedGridView::IndexedGridView(QWidget* parent) : GridView(parent) {
    corner_ = new QLabel(tr("Index"), this);
    corner_->setAlignment(Qt::AlignCenter);
    corner_->setAttribute(Qt::WA_TransparentForMouseEvents);
    verticalHeader()->setMinimumWidth(fontMetrics().horizontalAdvance(tr("Index")) + 12);
}

void IndexedGridView::updateGeometries() {
    GridView::updateGeometries();
    const int f = frameWidth();
    corner_->setGeometry(f, f, verticalHeader()->width(), horizontalHeader()->height());
    corner_->raise();
}

// ---- MmssTabPage --------------------------------------------------------------------------------

MmssTabPage::MmssTabPage(MmssDocument& doc, int tab, QWidget* parent)
    : QWidget(parent), doc_(doc), tab_(tab) {
    auto* layout = new QVBoxLayout(this);
    const auto requests = doc.TabFields();
    if (!requests.empty()) {
        auto* row = new QHBoxLayout;
        for (size_t i = 0; i < requests.size(); ++i) {
            QLineEdit* edit = MakeField(requests[i], this);
            auto* label = new QLabel(tr(requests[i].label.c_str()), this);
            label->setBuddy(edit);
            row->addWidget(label);
            row->addWidget(edit);
            row->addSpacing(16);
            fields_.push_back(edit);
            connect(edit, &QLineEdit::editingFinished, this, &MmssTabPage::Commit);
        }
        row->addStretch(1);
        layout->addLayout(row);
    }
    title_ = new QLabel(this);
    QFont bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    layout->addWidget(title_);

    auto* grid = new IndexedGridView(this);
    grid_ = grid;
    GridModel& model = *doc.Tab(tab).grid;
    grid_->SetGridModel(&model);
    grid_->setItemDelegate(new EntryCheckDelegate(doc, grid_));
    grid_->FitColumns();
    // Long titles (the MLPL subnet column) stay readable in full rather than clipped.
    const QFontMetrics heading(grid_->horizontalHeader()->font());
    for (int c = 0; c < model.columnCount(); ++c) {
        int width = 0;
        for (const QString& line :
             model.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString().split('\n'))
            width = std::max(width, heading.horizontalAdvance(line) + 20);
        if (grid_->columnWidth(c) < width) grid_->setColumnWidth(c, width);
    }
    layout->addWidget(grid_, 1);
    empty_ = new QLabel(tr("No records on this tab yet: Append Row adds one."), this);
    empty_->setEnabled(false);
    layout->addWidget(empty_);

    connect(&model, &QAbstractItemModel::rowsInserted, this, &MmssTabPage::UpdateTitle);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &MmssTabPage::UpdateTitle);
    connect(&model, &QAbstractItemModel::modelReset, this, &MmssTabPage::UpdateTitle);
    connect(grid_, &GridView::currentRowChanged, this,
            [this](int row) { doc_.RefreshHeadings(tab_, row); });
    Load();
    UpdateTitle();
}

QLineEdit* MmssTabPage::Field(int index) const {
    return index >= 0 && index < static_cast<int>(fields_.size())
               ? fields_[static_cast<size_t>(index)]
               : nullptr;
}

void MmssTabPage::Commit() {
    if (tab_ >= doc_.TabCount()) return;
    const auto requests = doc_.TabFields();
    for (size_t i = 0; i < fields_.size() && i < requests.size(); ++i)
        doc_.SetTabValue(tab_, requests[i].key, fields_[i]->text().toStdString());
}

void MmssTabPage::Load() {
    if (tab_ >= doc_.TabCount()) return;
    const auto requests = doc_.TabFields();
    for (size_t i = 0; i < fields_.size() && i < requests.size(); ++i) {
        const QString value = QString::fromStdString(doc_.TabValue(tab_, requests[i].key));
        if (fields_[i]->text() != value) fields_[i]->setText(value);
    }
}

void MmssTabPage::UpdateTitle() {
    const int rows = grid_->Model() ? grid_->Model()->GetRowCount() : 0;
    title_->setText(tr("%1 (%2)").arg(doc_.GridTitle()).arg(rows));
    empty_->setVisible(rows == 0);
}

// ---- MmssView -----------------------------------------------------------------------------------

MmssView::MmssView(MmssDocument& doc, QWidget* parent) : QWidget(parent), doc_(doc) {
    auto* layout = new QVBoxLayout(this);

    // Header form.
    const auto requests = doc.HeaderFields();
    if (!requests.empty()) {
        auto* box = new QGroupBox(tr("%1 Header").arg(doc.KindTitle()), this);
        auto* row = new QHBoxLayout(box);
        for (const auto& request : requests) {
            QLineEdit* edit = MakeField(request, box);
            auto* label = new QLabel(tr(request.label.c_str()), box);
            label->setBuddy(edit);
            row->addWidget(label);
            row->addWidget(edit);
            row->addSpacing(24);
            header_.push_back(edit);
            connect(edit, &QLineEdit::editingFinished, this, &MmssView::CommitAll);
        }
        row->addStretch(1);
        layout->addWidget(box);
    }

    // Commands of this document.
    auto* bar = new QHBoxLayout;
    auto button = [&](const QString& text, const QString& tip, auto fn) {
        auto* b = new QToolButton(this);
        b->setText(text);
        b->setToolTip(tip);
        b->setAutoRaise(true);
        connect(b, &QToolButton::clicked, this, fn);
        bar->addWidget(b);
        return b;
    };
    if (doc.Tabbed()) {
        button(tr("Add Tab"), tr("Add an entry on a tab of its own"), [this] {
            CommitAll();
            doc_.AddTab();
            if (tabs_) tabs_->setCurrentIndex(tabs_->count() - 1);
        });
        button(tr("Remove Tab"), tr("Remove the entry of the current tab"), [this] {
            if (tabs_ && tabs_->count() > 0) doc_.RemoveTab(tabs_->currentIndex());
        });
        bar->addSpacing(12);
    }
    button(tr("Insert Rows"), tr("Insert rows before the selected ones"), [this] {
        if (MmssTabPage* p = CurrentPage()) p->Grid()->InsertRowsAtSelection();
    });
    button(tr("Append Row"), tr("Add a row at the end"), [this] {
        if (MmssTabPage* p = CurrentPage()) p->Grid()->AppendRow();
    });
    button(tr("Delete Rows"), tr("Delete the selected rows"), [this] {
        if (MmssTabPage* p = CurrentPage()) p->Grid()->DeleteSelectedRows();
    });
    bar->addSpacing(12);
    QToolButton* undo = button(tr("Undo"), tr("Undo the last change (Ctrl+Z)"), [this] {
        doc_.UndoStack().undo();
    });
    QToolButton* redo = button(tr("Redo"), tr("Redo the change undone last (Ctrl+Y)"), [this] {
        doc_.UndoStack().redo();
    });
    bar->addSpacing(12);
    button(tr("Text View"), tr("Show the text form of this file (Ctrl+T)"),
           [this] { ShowTextView(); });
    bar->addStretch(1);
    layout->addLayout(bar);
    auto updateUndo = [this, undo, redo] {
        undo->setEnabled(doc_.UndoStack().canUndo());
        redo->setEnabled(doc_.UndoStack().canRedo());
    };
    connect(&doc.UndoStack(), &QUndoStack::indexChanged, this, updateUndo);
    updateUndo();

    auto* textView = new QAction(this);
    textView->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    textView->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(textView, &QAction::triggered, this, &MmssView::ShowTextView);
    addAction(textView);

    if (doc.Tabbed()) {
        tabs_ = new QTabWidget(this);
        tabs_->setDocumentMode(true);
        layout->addWidget(tabs_, 1);
    } else {
        body_ = new QWidget(this);
        auto* bodyLayout = new QVBoxLayout(body_);
        bodyLayout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(body_, 1);
    }

    connect(&doc, &MmssDocument::tabsChanged, this, &MmssView::RebuildPages);
    connect(&doc, &MmssDocument::valuesChanged, this, [this] {
        LoadHeader();
        if (tabs_) {
            for (int i = 0; i < tabs_->count(); ++i)
                if (MmssTabPage* p = Page(i)) p->Load();
        } else if (single_) {
            single_->Load();
        }
    });
    connect(&doc, &MmssDocument::commitViews, this, &MmssView::CommitAll);
    connect(&doc, &MmssDocument::focusHeaderField, this, [this](int field) {
        if (QLineEdit* e = HeaderField(field)) {
            e->setFocus(Qt::OtherFocusReason);
            e->selectAll();
        }
    });
    connect(&doc, &MmssDocument::focusTabField, this, [this](int tab, int field) {
        if (tabs_ && tab >= 0 && tab < tabs_->count()) tabs_->setCurrentIndex(tab);
        if (MmssTabPage* p = Page(tab))
            if (QLineEdit* e = p->Field(field)) {
                e->setFocus(Qt::OtherFocusReason);
                e->selectAll();
            }
    });
    connect(&doc, &MmssDocument::focusCell, this, [this](int tab, int column, int row) {
        if (tabs_ && tab >= 0 && tab < tabs_->count()) tabs_->setCurrentIndex(tab);
        if (MmssTabPage* p = Page(tab)) p->Grid()->FocusCell(column, row);
    });

    LoadHeader();
    RebuildPages();
}

QLineEdit* MmssView::HeaderField(int index) const {
    return index >= 0 && index < static_cast<int>(header_.size())
               ? header_[static_cast<size_t>(index)]
               : nullptr;
}

MmssTabPage* MmssView::Page(int index) const {
    if (!tabs_) return index == 0 ? single_ : nullptr;
    return qobject_cast<MmssTabPage*>(tabs_->widget(index));
}

MmssTabPage* MmssView::CurrentPage() const {
    return tabs_ ? qobject_cast<MmssTabPage*>(tabs_->currentWidget()) : single_;
}

void MmssView::RebuildPages() {
    if (tabs_) {
        const int current = tabs_->currentIndex();
        while (tabs_->count() > 0) {
            QWidget* w = tabs_->widget(0);
            tabs_->removeTab(0);
            delete w;
        }
        for (int i = 0; i < doc_.TabCount(); ++i)
            tabs_->addTab(new MmssTabPage(doc_, i, tabs_), doc_.TabLabel(i));
        if (tabs_->count() > 0) tabs_->setCurrentIndex(std::clamp(current, 0, tabs_->count() - 1));
        return;
    }
    delete single_;
    single_ = nullptr;
    if (doc_.TabCount() > 0) {
        single_ = new MmssTabPage(doc_, 0, body_);
        body_->layout()->addWidget(single_);
    }
}

void MmssView::CommitAll() {
    const auto requests = doc_.HeaderFields();
    for (size_t i = 0; i < header_.size() && i < requests.size(); ++i)
        doc_.SetHeaderValue(requests[i].key, header_[i]->text().toStdString());
    if (tabs_) {
        for (int i = 0; i < tabs_->count(); ++i)
            if (MmssTabPage* p = Page(i)) {
                p->Grid()->CommitPendingEdit();
                p->Commit();
            }
    } else if (single_) {
        single_->Grid()->CommitPendingEdit();
    }
}

void MmssView::LoadHeader() {
    const auto requests = doc_.HeaderFields();
    for (size_t i = 0; i < header_.size() && i < requests.size(); ++i) {
        const QString value = QString::fromStdString(doc_.HeaderValue(requests[i].key));
        if (header_[i]->text() != value) header_[i]->setText(value);
    }
}

void MmssView::ShowTextView() {
    auto view = std::make_unique<MmssTextView>(doc_);
    if (!view->Refresh(false)) return;
    CTessaryApp* app = CTessaryApp::Instance();
    CMainFrame* frame = app ? app->MainFrame() : nullptr;
    if (!frame) return;
    auto* child = new CMDIChildBase(doc_, std::move(view));
    child->SetSecondary(true);
    child->UpdateTitle();
    frame->MdiArea()->addSubWindow(child);
    child->showMaximized();
    frame->MdiArea()->setActiveSubWindow(child);
}

// ---- MmssTextView -------------------------------------------------------------------------------

MmssTextView::MmssTextView(MmssDocument& doc, QWidget* parent)
    : QPlainTextEdit(parent), doc_(doc) {
    setReadOnly(true);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabStopDistance(fontMetrics().horizontalAdvance(QString(16, ' ')));
    // Follows the edits; a row still being typed leaves the last good text in place.
    connect(&doc.UndoStack(), &QUndoStack::indexChanged, this, [this] { Refresh(true); });
}

bool MmssTextView::Refresh(bool quiet) {
    QString text;
    if (!doc_.RenderText(text, quiet)) return false;
    text.replace("\r\n", "\n");
    setPlainText(text);
    return true;
}

}  // namespace Tarn::App
