// The roaming list document: opening, the checks and messages of a save, conversion between
// versions, the offer to split a concatenated file, and undo of grid edits.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include "app/MainFrame.h"
#include "app/RLDoc.h"
#include "app/RLViews.h"
#include "foundation/MessageTable.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

QString Msg(unsigned id) {
    return QString::fromUtf8(MessageText(id).data());
}

CRLDoc* Open(AppFixture& f, const QString& path) {
    return qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(path));
}

CRLView* ViewOf(CRLDoc& doc) {
    return doc.Windows().empty() ? nullptr
                                 : qobject_cast<CRLView*>(doc.Windows().front()->widget());
}

TEST(RLDocOpen, EmptyTablesAreReportedAndTheListStillOpens) {
    AppFixture f;
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        const QString path = f.Path(QString("empty%1.prl").arg(version));
        AppTest::WriteBytes(path, AppTest::EmptyListBytes(version, 1234, 3));
        f.prompts.Clear();
        CRLDoc* doc = Open(f, path);
        ASSERT_NE(doc, nullptr);
        // With no records the short forms (and the long forms) read alike: the first version wins.
        EXPECT_EQ(doc->Version(), version < 3 ? 1 : 3);
        EXPECT_EQ(f.prompts.MessageTexts(), (QStringList{Msg(132), Msg(146)}));
        EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Error);
        EXPECT_EQ(doc->Header().prefListId, "1234");
        EXPECT_EQ(doc->Header().defRoamInd, "3");
        EXPECT_FALSE(doc->IsModified());
        EXPECT_EQ(doc->Title(), QString("empty%1.prl").arg(version));
    }
}

TEST(RLDocOpen, UnreadableFilesOpenNothing) {
    AppFixture f;
    const size_t before = f.app->Documents().size();
    std::vector<uint8_t> broken = AppTest::EmptyListBytes(5);
    broken.back() ^= 0xFF;  // the CRC no longer matches
    AppTest::WriteBytes(f.Path("crc.prl"), broken);
    AppTest::WriteBytes(f.Path("short.prl"), {0x00});
    for (const char* name : {"crc.prl", "short.prl", "missing.prl"}) {
        SCOPED_TRACE(name);
        f.prompts.Clear();
        EXPECT_EQ(Open(f, f.Path(name)), nullptr);
        ASSERT_EQ(f.prompts.messages.size(), 1u);
        EXPECT_EQ(f.prompts.messages[0].text, Msg(61457));
        EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Error);
    }
    EXPECT_EQ(f.app->Documents().size(), before);
}

TEST(RLDocSave, HeaderFieldsAreCheckedFirstAndGetTheCursorBack) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().front());
    ASSERT_NE(doc, nullptr);
    CRLView* view = ViewOf(*doc);
    ASSERT_NE(view, nullptr);
    QApplication::setActiveWindow(f.app->MainFrame());

    view->PropView()->DefaultRoamIndEdit()->setText("");
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("out.prl")));
    EXPECT_EQ(f.prompts.MessageTexts(),
              QStringList{"The default roaming indicator value is out of range (0-255)."});
    EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Error);
    EXPECT_EQ(QApplication::focusWidget(), view->PropView()->DefaultRoamIndEdit());

    view->PropView()->DefaultRoamIndEdit()->setText("7");
    view->PropView()->PrefListIdEdit()->setText("");
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("out.prl")));
    EXPECT_EQ(f.prompts.MessageTexts(),
              QStringList{"The Preferred List ID value is out of range (0-65535)."});
    EXPECT_EQ(QApplication::focusWidget(), view->PropView()->PrefListIdEdit());
    EXPECT_FALSE(QFile::exists(f.Path("out.prl")));

    // The fields refuse what they could not hold.
    QLineEdit* dri = view->PropView()->DefaultRoamIndEdit();
    dri->setText("");
    QTest::keyClicks(dri, "2567");
    EXPECT_EQ(dri->text(), "25");
}

TEST(RLDocSave, AnEmptyRowIsRefused) {
    AppFixture f;
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().front());
    ASSERT_NE(doc, nullptr);
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("out.prl")));
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_EQ(f.prompts.messages[0].text, Msg(198));
    EXPECT_FALSE(QFile::exists(f.Path("out.prl")));
    EXPECT_TRUE(doc->PathName().isEmpty());
}

TEST(RLDocConvert, ReadOnlyListsAreNotConverted) {
    AppFixture f;
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().front());
    doc->SetReadOnly(true);
    f.prompts.Clear();
    EXPECT_FALSE(doc->ConvertTo(1));
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Msg(158)});
    EXPECT_TRUE(f.prompts.questions.empty());
    EXPECT_EQ(doc->Version(), 5);
}

TEST(RLDocUndo, HeaderAndCellEditsUndoThroughTheDocument) {
    AppFixture f;
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().front());
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    EXPECT_FALSE(doc->IsModified());
    sys.setData(sys.index(0, 5), "12", Qt::EditRole);
    EXPECT_TRUE(doc->IsModified());
    doc->SetHeader({"9", "0", true});
    EXPECT_EQ(doc->Header().defRoamInd, "9");
    doc->UndoStack().undo();
    EXPECT_EQ(doc->Header().defRoamInd, "0");
    EXPECT_FALSE(doc->Header().prefOnly);
    doc->UndoStack().undo();
    EXPECT_EQ(sys.GetCellText(5, 0), "");
    EXPECT_FALSE(doc->IsModified());
    doc->UndoStack().redo();
    EXPECT_EQ(sys.GetCellText(5, 0), "12");
}

// Raising a band count of a GWL row opens room for the band and moves the next technology,
// in one undoable step, and the headings follow.
TEST(RLDocUndo, BandCountEditsLayTheGwlRowOutAgain) {
    AppFixture f;
    CRLDoc* doc = Open(f, QStringLiteral(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_TRUE(doc);
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    const int row = 5;
    ASSERT_EQ(acq.GetCellText(0, row), "GWL Generic");
    ASSERT_EQ(acq.GetCellText(8, row), "WCDMA");
    acq.setData(acq.index(row, 3), "3", Qt::EditRole);
    EXPECT_EQ(acq.GetCellText(8, row), "");
    EXPECT_EQ(acq.GetCellText(10, row), "WCDMA");
    EXPECT_EQ(acq.GetColumnHeading(8), "Band 3");
    doc->UndoStack().undo();
    EXPECT_EQ(acq.GetCellText(3, row), "2");
    EXPECT_EQ(acq.GetCellText(8, row), "WCDMA");
}

// An open text view follows the grids; a row that cannot be rendered yet leaves the last text.
TEST(RLDocUndo, TheTextViewFollowsEdits) {
    AppFixture f;
    CRLDoc* doc = Open(f, QStringLiteral(TARN_EXAMPLES_DIR "/example-is683a.prl"));
    ASSERT_TRUE(doc);
    CRLViewText view(*doc);
    ASSERT_TRUE(view.Refresh());
    EXPECT_TRUE(view.toPlainText().contains("\t4139\t65535\t"));
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    sys.setData(sys.index(0, 10), "4140", Qt::EditRole);
    EXPECT_TRUE(view.toPlainText().contains("\t4140\t65535\t"));
    sys.setData(sys.index(0, 10), "", Qt::EditRole);  // not a list yet: the text stays
    EXPECT_TRUE(view.toPlainText().contains("\t4140\t65535\t"));
    EXPECT_TRUE(f.prompts.messages.empty());
    doc->UndoStack().undo();
    doc->UndoStack().undo();
    EXPECT_TRUE(view.toPlainText().contains("\t4139\t65535\t"));
}

}  // namespace
}  // namespace Tarn
