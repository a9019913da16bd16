// A row filter over a GridModel: hides rows from a view without copying or changing the grid, so
// every edit made through it lands on the record's own row.
#pragma once

#include <QSortFilterProxyModel>
#include <vector>

namespace Tarn {

class GridModel;

class GridFilterModel : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit GridFilterModel(GridModel& source, QObject* parent = nullptr);

    // One flag per source row; rows past the end of `visible` are shown, and so is every row
    // when it is empty. Flags move with their rows when rows are inserted or removed, and a
    // newly inserted row is always shown, so an edit never makes a row vanish under the cursor.
    void SetVisibleRows(std::vector<bool> visible);
    void ShowAllRows() { SetVisibleRows({}); }
    bool IsFiltering() const { return !visible_.empty(); }
    // Shows one more row (the cursor is sent to a row the filter hides).
    void Reveal(int sourceRow);
    bool IsRowVisible(int sourceRow) const;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    std::vector<bool> visible_;
};

}  // namespace Tarn
