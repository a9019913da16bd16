// The windows that look at an open list while it is edited: Compare With (differences by GEO and
// the "Behaviour" tab), Simulate Selection, the Problems panel with File > Check..., and
// Roaming List > Optimize..., previewed and applied as one undoable edit. Each follows the edits
// on its own, moves the documents' cursors on a double-click and takes its colours with it.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include "app/CompareWindow.h"
#include "app/OptimizeDialog.h"
#include "app/ProblemsPanel.h"
#include "app/RLDoc.h"
#include "app/SelectionWindow.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

const QString kExample = QStringLiteral(TARN_EXAMPLES_DIR "/example-is683e.prl");

QColor RowColour(GridModel& grid, int row) {
    return grid.data(grid.index(row, 1), Qt::BackgroundRole).value<QColor>();
}

QTreeWidgetItem* FindItem(QTreeWidget* tree, const QString& prefix, int column = 0) {
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        if ((*it)->text(column).startsWith(prefix)) return *it;
    return nullptr;
}

// The example list open beside a copy of itself in a Compare With window. The choice offers
// every other open list (the untitled one the editor starts with), then "A file...", which asks
// for a file and opens it beside the first.
struct Compared {
    AppFixture f;
    CRLDoc* first = nullptr;
    CompareWindow* w = nullptr;
    int others = 0;

    Compared() {
        f.app->MainFrame()->show();
        first = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(kExample));
        for (CDocument* d : f.app->Documents()) others += qobject_cast<CRLDoc*>(d) && d != first;
        f.prompts.chooseAnswer = others;
        f.prompts.fileAnswers.push_back(f.Example("example-is683e.prl"));
        w = Latest();
    }
    CompareWindow* Latest() {
        f.Trigger("Co&mpare With...");
        auto windows = f.app->MainFrame()->findChildren<CompareWindow*>();
        return windows.empty() ? nullptr : windows.back();
    }
};

TEST(CompareWindow, ComparesTwoOpenListsAndFollowsTheirEdits) {
    Compared c;
    ASSERT_NE(c.w, nullptr);
    EXPECT_EQ(c.f.prompts.openDialogs.size(), 1u);
    CRLDoc* second = c.w->Second();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(c.w->Summary().toStdString(),
              "0 added, 0 removed, 0 changed systems; 0 added, 0 removed, 0 changed acquisition records; 0 header changes");

    // SID 22 becomes SID 23 and record 1 turns negative: compared again under GEO headings.
    GridModel& sysA = c.first->Grid(CRLDoc::Table::Sys);
    GridModel& sysB = second->Grid(CRLDoc::Table::Sys);
    sysB.setData(sysB.index(6, 10), "23", Qt::EditRole);
    sysB.setData(sysB.index(1, 1), "Neg", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return c.w->Summary().startsWith("1 added, 1 removed, 2 changed"); }, 10000))
        << c.w->Summary().toStdString();
    QTreeWidget* tree = c.w->Differences();
    EXPECT_NE(FindItem(tree, "GEO 0"), nullptr);
    EXPECT_NE(FindItem(tree, "GEO 1"), nullptr);
    EXPECT_NE(FindItem(tree, "negPref: preferred -> negative"), nullptr);

    // Every difference is coloured in its grid; choosing one moves both cursors to it and marks it.
    EXPECT_TRUE(RowColour(sysA, 6).isValid());   // removed from the first
    EXPECT_TRUE(RowColour(sysB, 6).isValid());   // added to the second
    EXPECT_FALSE(RowColour(sysA, 0).isValid());  // unchanged
    QSignalSpy focusA(c.first, &CRLDoc::focusCell), focusB(second, &CRLDoc::focusCell);
    const QColor before = RowColour(sysB, 1);
    ASSERT_NE(FindItem(tree, "~ 1\t"), nullptr);
    tree->setCurrentItem(FindItem(tree, "~ 1\t"));
    ASSERT_EQ(focusA.count(), 1);
    ASSERT_EQ(focusB.count(), 1);
    EXPECT_EQ(focusA[0][2].toInt(), 1);
    EXPECT_EQ(focusB[0][2].toInt(), 1);
    EXPECT_NE(RowColour(sysB, 1), before);
    EXPECT_EQ(RowColour(sysA, 1), RowColour(sysB, 1));
    delete c.w;
    EXPECT_FALSE(RowColour(sysA, 6).isValid());
    EXPECT_FALSE(RowColour(sysB, 6).isValid());
}

TEST(CompareWindow, BehaviourTabShowsWhatHandsetsDoDifferently) {
    Compared c;
    ASSERT_NE(c.w, nullptr);
    EXPECT_EQ(c.w->Tabs()->tabText(1), "Behaviour: the same");
    // SID 22 turns from negative to preferred in the second list.
    GridModel& sysB = c.w->Second()->Grid(CRLDoc::Table::Sys);
    sysB.setData(sysB.index(6, 1), "Pref", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return c.w->Tabs()->tabText(1) == "Behaviour: 1 system differs"; }, 10000))
        << c.w->Tabs()->tabText(1).toStdString();
    QTreeWidget* tree = c.w->Behaviour();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    EXPECT_TRUE(tree->topLevelItem(0)->text(0).startsWith("SID 22"));
    QTreeWidgetItem* change = tree->topLevelItem(0)->child(0);
    ASSERT_GE(change->childCount(), 2);
    EXPECT_TRUE(change->child(0)->text(0).startsWith("first:  negative")) << change->child(0)->text(0).toStdString();
    EXPECT_TRUE(change->child(1)->text(0).startsWith("second: preferred")) << change->child(1)->text(0).toStdString();
    delete c.w;
}

TEST(SelectionWindow, AnswersHighlightsJumpsAndFollowsEdits) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(kExample));
    ASSERT_NE(doc, nullptr);
    auto open = [&] {
        f.Trigger("Simulate &Selection...");
        auto windows = f.app->MainFrame()->findChildren<SelectionWindow*>();
        return windows.size() == 1 ? windows.front() : nullptr;
    };
    SelectionWindow* w = open();
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(open(), w);  // asking again brings back the same window
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);

    // SID 22 meets the negative record 6 of GEO 1: it and the preferred records 3, 4 and 5 of its
    // GEO are coloured, GEO 0 is not.
    w->Field(0)->setText("22");
    w->Simulate();
    EXPECT_TRUE(w->Summary().startsWith("SID 22: negative, record 6 (GEO 1, level 3)")) << w->Summary().toStdString();
    std::vector<int> records;
    for (int r = 0; r < w->Records()->rowCount(); ++r) records.push_back(w->Records()->item(r, 0)->text().toInt());
    EXPECT_EQ(records, (std::vector<int>{6, 3, 4, 5}));
    const QColor negative = RowColour(sys, 6), more = RowColour(sys, 3);
    EXPECT_TRUE(negative.isValid());
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
    delete w;
    EXPECT_FALSE(RowColour(sys, 6).isValid());
}

std::vector<std::string> Rules(const ProblemsPanel& panel) {
    std::vector<std::string> out;
    for (const auto& f : panel.Findings()) out.push_back(f.rule + " " + f.Where());
    return out;
}

TEST(ProblemsPanel, ShowsJumpsFollowsEditsAndTakesAPolicy) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(kExample));
    ASSERT_NE(doc, nullptr);
    auto* panel = f.app->MainFrame()->findChild<ProblemsPanel*>();
    ASSERT_NE(panel, nullptr);
    EXPECT_FALSE(panel->isVisible());  // nothing is checked until the panel is asked for
    panel->toggleViewAction()->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !panel->Findings().empty(); }, 10000)) << panel->Summary().toStdString();
    EXPECT_EQ(panel->Document(), doc);
    EXPECT_EQ(Rules(*panel), (std::vector<std::string>{"unused-acquisition acquisition #6",
                                                       "priority-at-geo-end system #2"}));
    EXPECT_EQ(panel->Summary(), "1 warning, 1 info");

    QSignalSpy focus(doc, &CRLDoc::focusCell);
    emit panel->List()->itemDoubleClicked(FindItem(panel->List(), "acquisition #6", 2), 0);
    ASSERT_EQ(focus.count(), 1);
    EXPECT_EQ(focus[0][0].value<CRLDoc::Table>(), CRLDoc::Table::Acq);
    EXPECT_EQ(focus[0][2].toInt(), 6);

    // Record 2's priority set to "Same": the finding goes without asking; undo brings it back.
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    sys.setData(sys.index(2, 3), "Same", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().size() == 1; }, 10000)) << panel->Summary().toStdString();
    doc->UndoStack().undo();
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().size() == 2; }, 10000));

    // File > Check...: a policy that does not read is a message naming the key and changes
    // nothing; a good one is applied.
    auto write = [&](const QString& name, const std::string& text) {
        AppTest::WriteBytes(f.Path(name), {text.begin(), text.end()});
        return f.Path(name);
    };
    f.prompts.Clear();
    f.prompts.fileAnswers = {write("bad.json", R"({"rules": {"no-such-rule": "off"}})")};
    f.Trigger("Chec&k...");
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.contains("rules.no-such-rule")) << f.prompts.messages[0].text.toStdString();
    EXPECT_TRUE(panel->PolicyPath().isEmpty());
    const QString good = write("good.json", R"({"prefOnly": false, "rules": {"unused-acquisition": "off"}})");
    f.prompts.fileAnswers = {good};
    f.Trigger("Chec&k...");
    EXPECT_EQ(panel->PolicyPath(), good);
    EXPECT_EQ(Rules(*panel), (std::vector<std::string>{"policy-pref-only header", "priority-at-geo-end system #2"}));

    // Closing the list empties the panel.
    f.Trigger("&Close");
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().empty(); }, 10000));
    EXPECT_EQ(panel->Document(), nullptr);
}

TEST(Optimize, PreviewsAndAppliesOneUndoableEdit) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(kExample));
    ASSERT_NE(doc, nullptr);
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    const int rowsBefore = acq.rowCount();

    // Cancelled: the preview shows each step and nothing changes.
    int previewRows = 0;
    f.prompts.onDialog = [&previewRows](QDialog& dialog) {
        auto* preview = qobject_cast<OptimizeDialog*>(&dialog);
        previewRows = preview ? preview->Steps()->rowCount() : -1;
        return QDialog::Rejected;
    };
    f.Trigger("&Optimize...");
    EXPECT_EQ(f.prompts.dialogs, QStringList{"OptimizeDialog"});
    EXPECT_EQ(previewRows, 5);
    EXPECT_EQ(acq.rowCount(), rowsBefore);
    EXPECT_FALSE(doc->IsModified());

    // Applied: the unused acquisition record goes; one undo brings it back.
    f.prompts.onDialog = [](QDialog&) { return QDialog::Accepted; };
    f.Trigger("&Optimize...");
    EXPECT_EQ(acq.rowCount(), rowsBefore - 1);
    EXPECT_EQ(doc->UndoStack().count(), 1);
    doc->UndoStack().undo();
    EXPECT_EQ(acq.rowCount(), rowsBefore);
    EXPECT_FALSE(doc->IsModified());
    doc->UndoStack().redo();

    // Optimized once, the list has nothing left to give: the user is told, no preview is shown.
    f.prompts.Clear();
    f.Trigger("&Optimize...");
    EXPECT_TRUE(f.prompts.dialogs.isEmpty());
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith("Nothing to optimize")) << f.prompts.messages[0].text.toStdString();
}

}  // namespace
}  // namespace Tarn
