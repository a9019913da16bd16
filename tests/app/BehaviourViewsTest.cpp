// The editor's two faces of behaviour: the "Behaviour" tab of Compare With, whose double-click
// shows the deciding record in both lists, and Roaming List > Optimize..., previewed and applied
// as one undoable edit.
#include <gtest/gtest.h>

#include <QAction>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include "app/CompareWindow.h"
#include "app/MainFrame.h"
#include "app/OptimizeDialog.h"
#include "app/RLDoc.h"
#include "roaming_list/RLData.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

void Trigger(AppFixture& f, const QString& text) {
    for (QAction* a : f.app->MainFrame()->findChildren<QAction*>())
        if (a->text() == text) a->trigger();
}

TEST(BehaviourViews, CompareShowsWhatHandsetsDoDifferently) {
    AppFixture f;
    f.app->MainFrame()->show();
    const QString copy = f.Path("copy.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", copy));
    auto* first =
        qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_NE(first, nullptr);
    int others = 0;
    for (CDocument* d : f.app->Documents()) others += qobject_cast<CRLDoc*>(d) && d != first;
    f.prompts.chooseAnswer = others;
    f.prompts.fileAnswers.push_back(copy);
    Trigger(f, "Co&mpare With...");
    auto windows = f.app->MainFrame()->findChildren<CompareWindow*>();
    ASSERT_FALSE(windows.empty());
    CompareWindow* w = windows.back();
    EXPECT_EQ(w->Tabs()->tabText(1), "Behaviour: the same");

    // SID 22 turns from negative to preferred in the second list.
    CRLDoc* second = w->Second();
    GridModel& sysB = second->Grid(CRLDoc::Table::Sys);
    sysB.setData(sysB.index(6, 1), "Pref", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return w->Tabs()->tabText(1) == "Behaviour: 1 system differs"; }, 10000))
        << w->Tabs()->tabText(1).toStdString();
    QTreeWidget* tree = w->Behaviour();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    QTreeWidgetItem* system = tree->topLevelItem(0);
    EXPECT_TRUE(system->text(0).startsWith("SID 22")) << system->text(0).toStdString();
    ASSERT_GT(system->childCount(), 0);
    QTreeWidgetItem* change = system->child(0);
    ASSERT_GE(change->childCount(), 2);
    EXPECT_TRUE(change->child(0)->text(0).startsWith("first:  negative"))
        << change->child(0)->text(0).toStdString();
    EXPECT_TRUE(change->child(1)->text(0).startsWith("second: preferred"))
        << change->child(1)->text(0).toStdString();

    // A double-click moves both documents' cursors to the record that decides.
    QSignalSpy focusA(first, &CRLDoc::focusCell), focusB(second, &CRLDoc::focusCell);
    emit tree->itemDoubleClicked(change, 0);
    ASSERT_EQ(focusA.count(), 1);
    ASSERT_EQ(focusB.count(), 1);
    EXPECT_EQ(focusA[0][2].toInt(), 6);
    EXPECT_EQ(focusB[0][2].toInt(), 6);
    delete w;
}

TEST(BehaviourViews, OptimizePreviewsAndAppliesOneUndoableEdit) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc =
        qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
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
    Trigger(f, "&Optimize...");
    EXPECT_EQ(f.prompts.dialogs, QStringList{"OptimizeDialog"});
    EXPECT_EQ(previewRows, 5);
    EXPECT_EQ(acq.rowCount(), rowsBefore);
    EXPECT_FALSE(doc->IsModified());

    // Applied: the unused acquisition record goes; one undo brings it back.
    f.prompts.onDialog = [](QDialog&) { return QDialog::Accepted; };
    Trigger(f, "&Optimize...");
    EXPECT_EQ(acq.rowCount(), rowsBefore - 1);
    EXPECT_TRUE(doc->IsModified());
    EXPECT_EQ(doc->UndoStack().count(), 1);
    doc->UndoStack().undo();
    EXPECT_EQ(acq.rowCount(), rowsBefore);
    EXPECT_FALSE(doc->IsModified());
    doc->UndoStack().redo();

    // Optimized once, the list has nothing left to give: the user is told, no preview is shown.
    f.prompts.Clear();
    Trigger(f, "&Optimize...");
    EXPECT_TRUE(f.prompts.dialogs.isEmpty());
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith("Nothing to optimize"))
        << f.prompts.messages[0].text.toStdString();
}

}  // namespace
}  // namespace Tarn
