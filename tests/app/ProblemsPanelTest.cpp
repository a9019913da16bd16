// The Problems panel over an open list: its findings, the jump to a record, a fresh check after
// an edit, and "File > Check..." with a policy file.
#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

#include "app/MainFrame.h"
#include "app/ProblemsPanel.h"
#include "app/RLDoc.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

std::vector<std::string> Rules(const ProblemsPanel& panel) {
    std::vector<std::string> out;
    for (const auto& f : panel.Findings()) out.push_back(f.rule + " " + f.Where());
    return out;
}

QTreeWidgetItem* ItemFor(ProblemsPanel& panel, const QString& where) {
    for (int i = 0; i < panel.List()->topLevelItemCount(); ++i)
        if (panel.List()->topLevelItem(i)->text(2) == where) return panel.List()->topLevelItem(i);
    return nullptr;
}

void TriggerMenu(AppFixture& f, const QString& text) {
    for (QAction* a : f.app->MainFrame()->findChildren<QAction*>())
        if (a->text() == text) a->trigger();
}

TEST(ProblemsPanel, ShowsJumpsAndFollowsEdits) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
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
    EXPECT_FALSE(ItemFor(*panel, "acquisition #6")->icon(0).isNull());

    QSignalSpy focus(doc, &CRLDoc::focusCell);
    emit panel->List()->itemDoubleClicked(ItemFor(*panel, "system #2"), 3);
    emit panel->List()->itemDoubleClicked(ItemFor(*panel, "acquisition #6"), 0);
    ASSERT_EQ(focus.count(), 2);
    EXPECT_EQ(focus[0][0].value<CRLDoc::Table>(), CRLDoc::Table::Sys);
    EXPECT_EQ(focus[0][2].toInt(), 2);
    EXPECT_EQ(focus[1][0].value<CRLDoc::Table>(), CRLDoc::Table::Acq);
    EXPECT_EQ(focus[1][2].toInt(), 6);

    // The user sets record 2's priority to "Same": the finding goes without asking.
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    sys.setData(sys.index(2, 3), "Same", Qt::EditRole);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().size() == 1; }, 10000))
        << panel->Summary().toStdString();
    EXPECT_EQ(Rules(*panel), std::vector<std::string>{"unused-acquisition acquisition #6"});

    // Undo brings it back.
    doc->UndoStack().undo();
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().size() == 2; }, 10000));

    // Closing the list empties the panel.
    TriggerMenu(f, "&Close");
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->Findings().empty(); }, 10000));
    EXPECT_EQ(panel->Document(), nullptr);
}

TEST(ProblemsPanel, CheckWithAPolicyFile) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_NE(doc, nullptr);
    auto* panel = f.app->MainFrame()->findChild<ProblemsPanel*>();
    ASSERT_NE(panel, nullptr);

    auto write = [&](const QString& name, const QByteArray& text) {
        QFile file(f.Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return f.Path(name);
    };
    const QString bad = write("bad.json", R"({"rules": {"no-such-rule": "off"}})");
    const QString good = write("good.json", R"({"prefOnly": false, "rules": {"unused-acquisition": "off"}})");

    // A policy that does not read is a message naming the key; the panel keeps what it had.
    f.prompts.fileAnswers = {bad};
    TriggerMenu(f, "Chec&k...");
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.contains("rules.no-such-rule")) << f.prompts.messages[0].text.toStdString();
    EXPECT_TRUE(panel->PolicyPath().isEmpty());

    // Cancelling the dialog changes nothing.
    TriggerMenu(f, "Chec&k...");
    EXPECT_TRUE(panel->PolicyPath().isEmpty());
    EXPECT_FALSE(panel->isVisible());

    f.prompts.fileAnswers = {good};
    TriggerMenu(f, "Chec&k...");
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->PolicyPath(), good);
    EXPECT_EQ(Rules(*panel), (std::vector<std::string>{"policy-pref-only header", "priority-at-geo-end system #2"}));

    QSignalSpy header(doc, &CRLDoc::focusHeaderField);
    emit panel->List()->itemDoubleClicked(ItemFor(*panel, "header"), 0);
    EXPECT_EQ(header.count(), 0);  // PREF_ONLY has no field to go to; nothing moves
}

}  // namespace
}  // namespace Tarn
