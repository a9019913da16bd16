// The row header of a record grid: the row number, then the read-only fields a document computes
// for each row (GEO, priority level), each in a fixed slot so they read as columns that stay in
// view however far the grid scrolls right.
#pragma once

#include <QHeaderView>
#include <QStringList>

namespace Tarn {

class RowHeaderView : public QHeaderView {
    Q_OBJECT
public:
    explicit RowHeaderView(QWidget* parent = nullptr);

    // The headings of the slots after the row number (empty: a plain row number header).
    void SetInfoHeadings(const QStringList& headings);
    const QStringList& InfoHeadings() const { return headings_; }
    // Widths of the row number and of each slot, left to right.
    QList<int> SlotWidths() const;

    QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    QStringList headings_;
};

}  // namespace Tarn
