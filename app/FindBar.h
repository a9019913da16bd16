// The find bar of a roaming list window: one query over both record grids (SID, NID, MCC-MNC,
// subnet, channel, operator name), every match highlighted, the cursor stepped from match to match.
#pragma once

#include <QWidget>
#include <vector>

#include "app/RLDoc.h"

class QLabel;
class QLineEdit;

namespace Tarn {

// The editor's own command ids for finding; no message table prompt exists for them.
namespace Cmd {
inline constexpr int EditFind = 32910;
inline constexpr int EditFindNext = 32911;
inline constexpr int EditFindPrevious = 32912;
inline constexpr int EditGoTo = 32913;
}  // namespace Cmd

class CListFacts;
class GridView;

class FindBar : public QWidget {
    Q_OBJECT
public:
    FindBar(CListFacts& facts, GridView& acqGrid, GridView& sysGrid, QWidget* parent = nullptr);

    // Shows the bar with its text selected, ready for a new query.
    void Activate();
    void SetQuery(const QString& text);
    QString Query() const;
    // Moves the cursor to the next (previous) match, wrapping around; false when there is none.
    bool Next();
    bool Previous();
    // Hides the bar and drops the highlights.
    void Close();

    struct Match {
        CRLDoc::Table table;
        int row;
    };
    const std::vector<Match>& Matches() const { return matches_; }
    // "3 of 17 (2 acquisition, 15 system)", "No match" or why the query cannot be searched.
    QString StatusText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Search();
    bool Step(int direction);
    void Highlight();

    CListFacts& facts_;
    GridView& acqGrid_;
    GridView& sysGrid_;
    QLineEdit* edit_;
    QLabel* status_;
    std::vector<Match> matches_;
    int position_ = -1;
    QString error_;
};

}  // namespace Tarn
