#include "grid/qt/GridView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpressionValidator>
#include <QTimer>
#include <QUndoStack>
#include <algorithm>
#include <set>

#include "grid/qt/GridFilterModel.h"
#include "grid/qt/GridModel.h"
#include "grid/qt/GridRoles.h"
#include "grid/qt/RowHeaderView.h"

namespace Tarn {

// ---- Delegate -----------------------------------------------------------------------------------

QString GridDelegate::MaskPattern(const QString& mask) {
    if (mask.isEmpty() || !std::all_of(mask.begin(), mask.end(), [](QChar c) { return c == '9'; }))
        return {};
    return QStringLiteral("\\d{0,%1}").arg(mask.size());
}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    const auto kind = static_cast<CellKind>(index.data(kCellKindRole).toInt());
    if (kind == CellKind::CheckBox) return nullptr;
    if (kind == CellKind::DropDown) {
        auto* combo = new QComboBox(parent);
        combo->addItems(index.data(kCellChoicesRole).toStringList());
        combo->setMaxVisibleItems(20);
        // Picking an entry is the whole edit: commit at once instead of waiting for focus to move.
        connect(combo, &QComboBox::activated, this, [this, combo](int) {
            auto* self = const_cast<GridDelegate*>(this);
            emit self->commitData(combo);
            emit self->closeEditor(combo);
        });
        // The list is what the user came for: open it straight away.
        QTimer::singleShot(0, combo, [combo] {
            if (combo->isVisible()) combo->showPopup();
        });
        return combo;
    }
    auto* edit = qobject_cast<QLineEdit*>(QStyledItemDelegate::createEditor(parent, option, index));
    if (!edit) edit = new QLineEdit(parent);
    const QString mask = index.data(kCellMaskRole).toString();
    const QString pattern = MaskPattern(mask);
    if (!pattern.isEmpty()) {
        edit->setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), edit));
        edit->setMaxLength(static_cast<int>(mask.size()));
    }
    return edit;
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    // A row's band lies under everything: a cell with a background of its own covers it.
    if (const QVariant band = index.data(kRowBandRole);
        band.isValid() && !index.data(Qt::BackgroundRole).isValid())
        painter->fillRect(option.rect, band.value<QColor>());
    if (static_cast<CellKind>(index.data(kCellKindRole).toInt()) != CellKind::DropDown)
        return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem opt(option);
    initStyleOption(&opt, index);
    const int arrow = std::min(opt.rect.height() - 6, 10);
    opt.rect.adjust(0, 0, -(arrow + 6), 0);
    // Only the type cell asks to be chosen: other empty drop-downs are optional entries.
    if (opt.text.isEmpty() && index.column() == 0) {
        opt.text = tr("(choose)");
        opt.palette.setColor(QPalette::Text, opt.palette.color(QPalette::PlaceholderText));
        opt.palette.setColor(QPalette::HighlightedText,
                             opt.palette.color(QPalette::PlaceholderText));
    }
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    // The background spans the whole cell, the text stops short of the arrow.
    QStyleOptionViewItem back(option);
    initStyleOption(&back, index);
    back.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &back, painter, widget);
    style->drawItemText(
        painter, opt.rect.adjusted(3, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, opt.palette, true,
        opt.fontMetrics.elidedText(opt.text, Qt::ElideRight, opt.rect.width() - 4),
        (opt.state & QStyle::State_Selected) ? QPalette::HighlightedText : QPalette::Text);
    QStyleOption arrowOpt;
    arrowOpt.rect =
        QRect(option.rect.right() - arrow - 3, option.rect.center().y() - arrow / 2, arrow, arrow);
    arrowOpt.palette = option.palette;
    arrowOpt.state = QStyle::State_Enabled;
    style->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrowOpt, painter, widget);
}

void GridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentIndex(combo->findText(text));
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
        edit->setText(text);
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                const QModelIndex& index) const {
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        if (combo->currentIndex() >= 0) model->setData(index, combo->currentText(), Qt::EditRole);
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
        model->setData(index, edit->text(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

// ---- View ---------------------------------------------------------------------------------------

GridView::GridView(QWidget* parent) : QTableView(parent) {
    setVerticalHeader(new RowHeaderView(this));
    setItemDelegate(new GridDelegate(this));
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    setWordWrap(false);
    setCornerButtonEnabled(true);
    // Fixed row heights keep a 16,383-row table as cheap as a short one.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setDefaultSectionSize(96);
    horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    horizontalHeader()->setHighlightSections(true);
    // The corner above the row header names its slots.
    if (auto* corner = findChild<QAbstractButton*>()) corner->installEventFilter(this);
}

void GridView::SetGridModel(GridModel* model) {
    model_ = model;
    filter_ = nullptr;
    setModel(model);
    if (model) {
        connect(model, &QAbstractItemModel::headerDataChanged, this,
                [this](Qt::Orientation o) {
                    if (o == Qt::Vertical) FollowRowInfo();
                });
        FollowRowInfo();
    }
    // The type column holds the longest texts ("CDMA Cellular (preferred)").
    setColumnWidth(0, 190);
}

GridFilterModel* GridView::EnableRowFilter() {
    if (filter_ || !model_) return filter_;
    filter_ = new GridFilterModel(*model_, this);
    const int typeWidth = columnWidth(0);
    setModel(filter_);
    setColumnWidth(0, typeWidth);
    return filter_;
}

void GridView::FollowRowInfo() {
    auto* header = qobject_cast<RowHeaderView*>(verticalHeader());
    if (!header || !model_ || header->InfoHeadings() == model_->RowInfoHeadings()) return;
    header->SetInfoHeadings(model_->RowInfoHeadings());
    updateGeometries();
}

bool GridView::eventFilter(QObject* watched, QEvent* event) {
    auto* header = qobject_cast<RowHeaderView*>(verticalHeader());
    auto* corner = qobject_cast<QAbstractButton*>(watched);
    if (event->type() != QEvent::Paint || !corner || !header || header->InfoHeadings().isEmpty())
        return QTableView::eventFilter(watched, event);
    QPainter painter(corner);
    const QList<int> widths = header->SlotWidths();
    QStringList texts{tr("Row")};
    texts << header->InfoHeadings();
    int x = 0;
    for (int i = 0; i < texts.size() && i < widths.size(); ++i) {
        QStyleOptionHeader opt;
        opt.initFrom(corner);
        opt.rect = QRect(x, 0, i + 1 == texts.size() ? corner->width() - x : widths[i],
                         corner->height());
        opt.text = texts[i];
        opt.textAlignment = Qt::AlignCenter;
        opt.orientation = Qt::Horizontal;
        style()->drawControl(QStyle::CE_Header, &opt, &painter, corner);
        x += widths[i];
    }
    return true;
}

int GridView::CurrentRow() const {
    const QModelIndex i = ToGrid(currentIndex());
    return i.isValid() ? i.row() : -1;
}

QModelIndex GridView::ToGrid(const QModelIndex& viewIndex) const {
    if (!filter_ || !viewIndex.isValid() || viewIndex.model() != filter_) return viewIndex;
    return filter_->mapToSource(viewIndex);
}

QModelIndex GridView::ToView(int column, int row) const {
    if (!model_) return {};
    const QModelIndex i = model_->index(row, column);
    return filter_ ? filter_->mapFromSource(i) : i;
}

std::vector<int> GridView::SelectedRows() const {
    std::set<int> rows;
    if (selectionModel())
        for (const QModelIndex& i : selectionModel()->selectedIndexes()) rows.insert(ToGrid(i).row());
    if (rows.empty() && currentIndex().isValid()) rows.insert(CurrentRow());
    return {rows.begin(), rows.end()};
}

QString GridView::SelectionText() const {
    if (!model_ || !selectionModel()) return {};
    QModelIndexList sel;
    for (const QModelIndex& i : selectionModel()->selectedIndexes()) sel << ToGrid(i);
    if (sel.isEmpty()) return {};
    int top = sel.front().row(), bottom = top, left = sel.front().column(), right = left;
    for (const QModelIndex& i : sel) {
        top = std::min(top, i.row());
        bottom = std::max(bottom, i.row());
        left = std::min(left, i.column());
        right = std::max(right, i.column());
    }
    std::set<std::pair<int, int>> chosen;
    for (const QModelIndex& i : sel) chosen.insert({i.row(), i.column()});
    QString out;
    for (int r = top; r <= bottom; ++r) {
        for (int c = left; c <= right; ++c) {
            if (c > left) out += '\t';
            if (chosen.count({r, c})) out += QString::fromStdString(model_->GetCellText(c, r));
        }
        out += '\n';
    }
    return out;
}

void GridView::Copy() {
    const QString text = SelectionText();
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

void GridView::Cut() {
    Copy();
    ClearSelectedCells();
}

void GridView::ClearSelectedCells() {
    if (!model_ || !selectionModel()) return;
    std::vector<GridModel::CellEdit> edits;
    for (const QModelIndex& v : selectionModel()->selectedIndexes())
        if (const QModelIndex i = ToGrid(v); i.column() > 0) edits.push_back({i.column(), i.row(), {}});
    // Emptying a type cell would leave a row with no record: the type stays.
    model_->EditCells(edits, tr("Clear"));
}

std::vector<std::vector<std::string>> GridView::ParseCells(const QString& text) {
    std::vector<std::vector<std::string>> rows;
    QString t = text;
    t.replace("\r\n", "\n");
    t.replace('\r', '\n');
    if (t.endsWith('\n')) t.chop(1);
    if (t.isEmpty()) return rows;
    for (const QString& line : t.split('\n')) {
        std::vector<std::string> cells;
        for (const QString& cell : line.split('\t')) cells.push_back(cell.toStdString());
        rows.push_back(std::move(cells));
    }
    return rows;
}

void GridView::Paste() {
    PasteText(QApplication::clipboard()->text());
}

void GridView::PasteText(const QString& text) {
    if (!model_) return;
    const auto cells = ParseCells(text);
    if (cells.empty()) return;
    QModelIndex start = ToGrid(currentIndex());
    if (selectionModel() && !selectionModel()->selectedIndexes().isEmpty()) {
        QModelIndexList sel;
        for (const QModelIndex& i : selectionModel()->selectedIndexes()) sel << ToGrid(i);
        start = *std::min_element(
            sel.begin(), sel.end(), [](const QModelIndex& a, const QModelIndex& b) {
                return std::pair(a.row(), a.column()) < std::pair(b.row(), b.column());
            });
    }
    const int row0 = start.isValid() ? start.row() : model_->GetRowCount();
    const int col0 = start.isValid() ? start.column() : 0;

    std::vector<GridModel::CellEdit> edits;
    const bool single = cells.size() == 1 && cells[0].size() == 1;
    if (single && selectionModel() && selectionModel()->selectedIndexes().size() > 1) {
        for (const QModelIndex& v : selectionModel()->selectedIndexes()) {
            const QModelIndex i = ToGrid(v);
            edits.push_back({i.column(), i.row(), cells[0][0]});
        }
    } else {
        for (size_t r = 0; r < cells.size(); ++r)
            for (size_t c = 0; c < cells[r].size(); ++c)
                edits.push_back(
                    {col0 + static_cast<int>(c), row0 + static_cast<int>(r), cells[r][c]});
    }
    const int needed = row0 + static_cast<int>(cells.size()) - model_->GetRowCount();
    QUndoStack* stack = model_->UndoStack();
    if (stack) stack->beginMacro(tr("Paste"));
    if (!single && needed > 0) model_->InsertRows(model_->GetRowCount(), needed, tr("Add Rows"));
    model_->EditCells(edits, tr("Paste"));
    if (stack) stack->endMacro();
}

void GridView::InsertRowsAtSelection() {
    if (!model_) return;
    const auto rows = SelectedRows();
    const int at = rows.empty() ? model_->GetRowCount() : rows.front();
    const int count = rows.empty() ? 1 : static_cast<int>(rows.size());
    model_->InsertRows(at, count, tr("Insert Rows"));
    setCurrentIndex(ToView(0, at));
}

void GridView::AppendRow() {
    if (!model_) return;
    const int at = model_->GetRowCount();
    model_->InsertRows(at, 1, tr("Add Row"));
    setCurrentIndex(ToView(0, at));
    scrollTo(currentIndex());
}

void GridView::DeleteSelectedRows() {
    if (!model_) return;
    const auto rows = SelectedRows();
    if (rows.empty()) return;
    model_->RemoveRows(rows, tr("Delete Rows"));
}

void GridView::FitColumns(int sampleRows) {
    if (!model_) return;
    const QFontMetrics fm(font());
    const QFontMetrics hfm(horizontalHeader()->font());
    const int rows = std::min(model_->rowCount(), sampleRows);
    constexpr int kMin = 56;
    constexpr int kMax = 240;
    constexpr int kArrow = 18;
    for (int c = 0; c < model_->columnCount(); ++c) {
        int width = 0;
        for (const QString& line :
             model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString().split('\n'))
            width = std::max(width, hfm.horizontalAdvance(line) + 16);
        for (int r = 0; r < rows; ++r) {
            const std::string text = model_->GetCellText(c, r);
            const CellKind kind = model_->GetCellKind(c, r);
            int w = fm.horizontalAdvance(QString::fromStdString(text)) + 12;
            if (kind == CellKind::DropDown) w += kArrow;
            width = std::max(width, w);
        }
        setColumnWidth(c, std::clamp(width, c == 0 ? 150 : kMin, kMax));
    }
}

void GridView::CommitPendingEdit() {
    if (state() != QAbstractItemView::EditingState) return;
    QWidget* editor = indexWidget(currentIndex());
    if (!editor) editor = QApplication::focusWidget();
    if (editor && isAncestorOf(editor)) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void GridView::FocusCell(int column, int row) {
    if (!model_ || row < 0 || row >= model_->rowCount()) return;
    column = std::clamp(column, 0, std::max(model_->columnCount() - 1, 0));
    if (filter_) filter_->Reveal(row);
    const QModelIndex i = ToView(column, row);
    setCurrentIndex(i);
    scrollTo(i);
    setFocus(Qt::OtherFocusReason);
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return Copy();
    if (event->matches(QKeySequence::Cut)) return Cut();
    if (event->matches(QKeySequence::Paste)) return Paste();
    if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier &&
        state() != QAbstractItemView::EditingState)
        return ClearSelectedCells();
    QTableView::keyPressEvent(event);
}

void GridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    // Under a filter the same view row can be another grid row; `previous` may already be stale,
    // so the grid row last reported is kept rather than mapped again.
    const int row = current.isValid() ? ToGrid(current).row() : -1;
    if (row != lastRow_ || current.row() != previous.row()) {
        lastRow_ = row;
        emit currentRowChanged(row);
    }
}

}  // namespace Tarn
