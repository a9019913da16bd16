// The "Simulate selection" window over an open list: the answer, the rows it colours in the system
// grid, the jump to a record, and a fresh answer after the list is edited.
#include <gtest/gtest.h>

#include <QAction>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

#include "app/MainFrame.h"
#include "app/RLDoc.h"
#include "analysis/Providers.h"
#include "app/SelectionWindow.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

QColor RowColour(GridModel& grid, int row) {
    return grid.data(grid.index(row, 1), Qt::BackgroundRole).value<QColor>();
}

std::vector<int> RecordColumn(QTableWidget* table) {
    std::vector<int> out;
    for (int r = 0; r < table->rowCount(); ++r) out.push_back(table->item(r, 0)->text().toInt());
    return out;
}

SelectionWindow* OpenWindow(AppFixture& f) {
    for (QAction* a : f.app->MainFrame()->findChildren<QAction*>())
        if (a->text() == "Simulate &Selection...") a->trigger();
    auto windows = f.app->MainFrame()->findChildren<SelectionWindow*>();
    return windows.size() == 1 ? windows.front() : nullptr;
}

TEST(SelectionWindow, AnswersHighlightsJumpsAndFollowsEdits) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_NE(doc, nullptr);
    SelectionWindow* w = OpenWindow(f);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(OpenWindow(f), w);  // asking again brings back the same window
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);

    // A typing mistake is a message, never a result.
    w->Field(0)->setText("41x");
    w->Simulate();
    EXPECT_EQ(w->Summary(), "SID \"41x\" is not a number.");
    EXPECT_FALSE(w->Result());

    // SID 22 meets the negative record 6 of GEO 1: it and the preferred records 3, 4 and 5 of its
    // GEO are coloured, GEO 0 is not.
    w->Field(0)->setText("22");
    w->Simulate();
    EXPECT_TRUE(w->Summary().startsWith("SID 22: negative, record 6 (GEO 1, level 3)")) << w->Summary().toStdString();
    EXPECT_TRUE(w->ResultText().contains("more preferred systems"));
    EXPECT_EQ(RecordColumn(w->Records()), (std::vector<int>{6, 3, 4, 5}));
    // Each listed record names its system and, as tarn-cli select does, the operator behind it;
    // the note says why the winner won.
    EXPECT_EQ(w->Records()->item(0, 2)->text(), "SID 22 NID 0");
    if (!Analysis::ProviderDirectory::Shared().Empty()) {
        EXPECT_TRUE(w->Records()->item(0, 3)->text().contains("United States"))
            << w->Records()->item(0, 3)->text().toStdString();
    }
    EXPECT_EQ(w->Records()->item(0, 6)->text(), "the only record naming the system");
    const QColor negative = RowColour(sys, 6), more = RowColour(sys, 3);
    EXPECT_TRUE(negative.isValid());
    EXPECT_TRUE(more.isValid());
    EXPECT_NE(negative, more);
    EXPECT_EQ(RowColour(sys, 5), more);
    EXPECT_FALSE(RowColour(sys, 0).isValid());

    QSignalSpy focus(doc, &CRLDoc::focusCell);
    emit w->Records()->cellDoubleClicked(2, 3);
    ASSERT_EQ(focus.count(), 1);
    EXPECT_EQ(focus[0][0].value<CRLDoc::Table>(), CRLDoc::Table::Sys);
    EXPECT_EQ(focus[0][2].toInt(), 4);

    // The user changes record 6's SID in the grid: the open window answers again on its own.
    sys.setData(sys.index(6, 10), "23", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return w->Summary().startsWith("SID 22: unlisted-forbidden"); }, 10000))
        << w->Summary().toStdString();
    EXPECT_EQ(w->Records()->rowCount(), 0);
    EXPECT_FALSE(RowColour(sys, 6).isValid());

    // Closing the window takes its colours with it.
    w->Field(0)->setText("23");
    w->Simulate();
    EXPECT_TRUE(RowColour(sys, 6).isValid());
    delete w;
    EXPECT_FALSE(RowColour(sys, 6).isValid());
}

}  // namespace
}  // namespace Tarn
