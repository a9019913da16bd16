// The "Compare With" window over two open lists: the choice of the other list, the differences
// grouped by GEO, the rows shown in both grids, and a fresh comparison after either is edited.
#include <gtest/gtest.h>

#include <QAction>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

#include "app/CompareWindow.h"
#include "app/MainFrame.h"
#include "app/RLDoc.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

QColor RowColour(GridModel& grid, int row) {
    return grid.data(grid.index(row, 1), Qt::BackgroundRole).value<QColor>();
}

CompareWindow* TriggerCompare(AppFixture& f) {
    for (QAction* a : f.app->MainFrame()->findChildren<QAction*>())
        if (a->text() == "Co&mpare With...") a->trigger();
    auto windows = f.app->MainFrame()->findChildren<CompareWindow*>();
    return windows.empty() ? nullptr : windows.back();
}

QTreeWidgetItem* FindItem(QTreeWidget* tree, const QString& prefix) {
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        if ((*it)->text(0).startsWith(prefix)) return *it;
    return nullptr;
}

TEST(CompareWindow, ComparesTwoOpenListsAndFollowsTheirEdits) {
    AppFixture f;
    f.app->MainFrame()->show();
    const QString copy = f.Path("copy.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", copy));
    auto* first = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_NE(first, nullptr);

    // The choice offers every other open list (the untitled one the editor starts with), then
    // "A file...", which asks for a file and opens it beside the first.
    int others = 0;
    for (CDocument* d : f.app->Documents()) others += qobject_cast<CRLDoc*>(d) && d != first;
    f.prompts.chooseAnswer = others;
    f.prompts.fileAnswers.push_back(copy);
    CompareWindow* w = TriggerCompare(f);
    ASSERT_NE(w, nullptr);
    ASSERT_EQ(f.prompts.choices.size(), others ? 1u : 0u);
    EXPECT_EQ(f.prompts.openDialogs.size(), 1u);
    CRLDoc* second = w->Second();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(w->First(), first);
    EXPECT_TRUE(w->Diff() && w->Diff()->Same());
    EXPECT_EQ(w->Summary().toStdString(),
              "0 added, 0 removed, 0 changed systems; 0 added, 0 removed, 0 changed acquisition records; 0 header changes");

    // The second list is edited: SID 22 becomes SID 23 and record 1 turns negative. The window
    // compares again on its own, under GEO headings.
    GridModel& sysB = second->Grid(CRLDoc::Table::Sys);
    sysB.setData(sysB.index(6, 10), "23", Qt::EditRole);
    sysB.setData(sysB.index(1, 1), "Neg", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return w->Summary().startsWith("1 added, 1 removed, 2 changed"); }, 10000))
        << w->Summary().toStdString();
    QTreeWidget* tree = w->Differences();
    ASSERT_NE(FindItem(tree, "GEO 0"), nullptr);
    ASSERT_NE(FindItem(tree, "GEO 1"), nullptr);
    EXPECT_NE(FindItem(tree, "negPref: preferred -> negative"), nullptr);

    // Every difference is coloured in the grid it belongs to; choosing one moves both documents'
    // cursors to it and marks it apart from the rest.
    GridModel& sysA = first->Grid(CRLDoc::Table::Sys);
    EXPECT_TRUE(RowColour(sysA, 6).isValid());   // removed from the first
    EXPECT_TRUE(RowColour(sysB, 6).isValid());   // added to the second
    EXPECT_FALSE(RowColour(sysA, 0).isValid());  // unchanged
    QSignalSpy focusA(first, &CRLDoc::focusCell), focusB(second, &CRLDoc::focusCell);
    QTreeWidgetItem* changed = FindItem(tree, "~ 1\t");
    ASSERT_NE(changed, nullptr);
    const QColor before = RowColour(sysB, 1);
    tree->setCurrentItem(changed);
    ASSERT_EQ(focusA.count(), 1);
    ASSERT_EQ(focusB.count(), 1);
    EXPECT_EQ(focusA[0][2].toInt(), 1);
    EXPECT_EQ(focusB[0][2].toInt(), 1);
    EXPECT_NE(RowColour(sysB, 1), before);
    EXPECT_EQ(RowColour(sysA, 1), RowColour(sysB, 1));

    // Both documents stay editable: undoing the SID edit in the second list is compared again.
    EXPECT_FALSE(second->IsReadOnly());
    sysB.setData(sysB.index(6, 10), "22", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return w->Summary().startsWith("0 added, 0 removed, 2 changed"); }, 10000))
        << w->Summary().toStdString();

    // Asking again with two lists open offers the other one by name; closing the window takes
    // its colours with it.
    f.prompts.chooseAnswer = 0;
    f.prompts.choices.clear();
    CompareWindow* again = TriggerCompare(f);
    ASSERT_EQ(f.prompts.choices.size(), 1u);
    EXPECT_EQ(f.prompts.choices.back().size(), others + 2);  // the lists open and "A file..."
    ASSERT_NE(again, nullptr);
    ASSERT_NE(again, w);
    EXPECT_NE(again->First(), again->Second());
    delete again;
    delete w;
    EXPECT_FALSE(RowColour(sysA, 6).isValid());
    EXPECT_FALSE(RowColour(sysB, 6).isValid());
}

}  // namespace
}  // namespace Tarn
