#include "grid/qt/RowHeaderView.h"

#include <QPainter>
#include <QStyleOptionHeader>
#include <algorithm>

#include "grid/qt/GridRoles.h"

namespace Tarn {

RowHeaderView::RowHeaderView(QWidget* parent) : QHeaderView(Qt::Vertical, parent) {}

void RowHeaderView::SetInfoHeadings(const QStringList& headings) {
    if (headings == headings_) return;
    headings_ = headings;
    updateGeometry();
    viewport()->update();
}

QList<int> RowHeaderView::SlotWidths() const {
    const QFontMetrics fm(font());
    // Five digits hold any row, GEO or level of the largest table.
    const int digits = fm.horizontalAdvance(QStringLiteral("00000")) + 12;
    QList<int> widths{digits};
    for (const QString& h : headings_) widths << std::max(digits, fm.horizontalAdvance(h) + 12);
    return widths;
}

QSize RowHeaderView::sizeHint() const {
    QSize size = QHeaderView::sizeHint();
    if (headings_.isEmpty()) return size;
    int width = 0;
    for (int w : SlotWidths()) width += w;
    size.setWidth(std::max(size.width(), width));
    return size;
}

void RowHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    if (headings_.isEmpty() || !model()) return QHeaderView::paintSection(painter, rect, logicalIndex);
    const QList<int> widths = SlotWidths();
    // The row number keeps the header's own look (selection, hover); the slots are drawn after it.
    QRect slot(rect.left(), rect.top(), widths.front(), rect.height());
    painter->save();
    QHeaderView::paintSection(painter, slot, logicalIndex);
    painter->restore();

    const QStringList info = model()->headerData(logicalIndex, Qt::Vertical, kRowInfoRole).toStringList();
    const QColor band = model()->headerData(logicalIndex, Qt::Vertical, kRowBandRole).value<QColor>();
    for (int i = 0; i < headings_.size(); ++i) {
        slot = QRect(slot.right() + 1, rect.top(), widths[i + 1], rect.height());
        if (i + 1 == headings_.size()) slot.setRight(rect.right());
        QStyleOptionHeader opt;
        opt.initFrom(this);
        opt.rect = slot;
        opt.orientation = Qt::Vertical;
        opt.section = logicalIndex;
        opt.position = QStyleOptionHeader::Middle;
        opt.text = i < info.size() ? info[i] : QString();
        opt.textAlignment = Qt::AlignCenter;
        painter->save();
        style()->drawControl(QStyle::CE_HeaderSection, &opt, painter, this);
        // The first slot carries the row's band, so the grouping shows even where a highlight
        // covers the cells.
        if (i == 0 && band.isValid()) painter->fillRect(slot.adjusted(1, 1, -1, -1), band);
        style()->drawControl(QStyle::CE_HeaderLabel, &opt, painter, this);
        painter->restore();
    }
}

}  // namespace Tarn
