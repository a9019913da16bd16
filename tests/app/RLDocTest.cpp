// The roaming list document: opening; a list built in the grids, saved, reopened and compared;
// the header fields and grid cells at their edges as a save refuses them; conversion between
// versions; the concatenated-file offer and the join and split wizards end to end; the text view;
// and the undo of grid edits it follows.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QStyleOptionViewItem>
#include <QValidator>

#include "app/RLDoc.h"
#include "app/RLViews.h"
#include "app/wizards/ConcatPrlWizards.h"
#include "grid/qt/GridView.h"
#include "roaming_list/NameTables.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;
using AppTest::Text;

CRLDoc* Open(AppFixture& f, const QString& path) {
    return qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(path));
}

CRLView* ViewOf(CRLDoc& doc) {
    return doc.Windows().empty() ? nullptr
                                 : qobject_cast<CRLView*>(doc.Windows().front()->widget());
}

QString TypeName(bool acq, int version, int code) {
    const auto& names = CRLNameTables::Instance();
    return QString::fromStdString(
        (acq ? names.AcqTypes(version) : names.SysTypes(version)).GetName(code));
}

void SetCell(GridModel& grid, int row, int column, const QString& text) {
    grid.setData(grid.index(row, column), text, Qt::EditRole);
}

// A new list of `version` with one record per table, made by picking types in the type column
// (which writes a default record into the row) and typing a SID.
CRLDoc* NewSimpleList(AppFixture& f, int version) {
    f.app->OnNewRoamingList(version);
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().back());
    SetCell(doc->Grid(CRLDoc::Table::Acq), 0, 0, TypeName(true, version, 1));
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    SetCell(sys, 0, 0, TypeName(false, version, 0));
    SetCell(sys, 0, 10, "1234");
    return doc;
}

// An HDR acquisition record (which IS-683A cannot hold) after the first, on PCS channel 25.
void AddHdrRecord(GridModel& acq) {
    acq.InsertRows(1, 1, "Add");
    SetCell(acq, 1, 0, TypeName(true, 3, 11));
    SetCell(acq, 1, 1, "1:1900-MHz-PCS");
    SetCell(acq, 1, 2, "25");
}

std::vector<std::string> RowTexts(GridModel& grid, int row) {
    std::vector<std::string> out;
    for (int c = 0; c < grid.UsedColumns(); ++c) out.push_back(grid.GetCellText(c, row));
    while (!out.empty() && out.back().empty()) out.pop_back();
    return out;
}

QString Shown(const AppFixture& f) {
    return f.prompts.MessageTexts().join("|");
}

// A list without records opens with a notice for each empty table; a file that does not read
// opens nothing and says so.
TEST(RLDocOpen, ListsOpenWithTheirNoticesAndUnreadableFilesOpenNothing) {
    AppFixture f;
    for (int version = 1; version <= 5; ++version)
        AppTest::WriteBytes(f.Path(QString("empty%1.prl").arg(version)), AppTest::EmptyListBytes(version, 1234, 3));
    std::vector<uint8_t> broken = AppTest::EmptyListBytes(5);
    broken.back() ^= 0xFF;  // the CRC no longer matches
    AppTest::WriteBytes(f.Path("crc.prl"), broken);
    AppTest::WriteBytes(f.Path("short.prl"), {0x00});
    const QStringList empty{Text(Msg::NoAcqRecordsInFile), Text(Msg::NoSysRecordsInFile)};
    const QStringList unreadable{Text(Msg::NotRecognizedFormat)};
    // With no records the short forms (and the long forms) read alike: the first version wins.
    const struct {
        const char* name;
        int version;  // 0: nothing opens
        QStringList shown;
    } cases[] = {
        {"empty1.prl", 1, empty}, {"empty2.prl", 1, empty}, {"empty3.prl", 3, empty},
        {"empty4.prl", 3, empty}, {"empty5.prl", 3, empty}, {"crc.prl", 0, unreadable},
        {"short.prl", 0, unreadable}, {"missing.prl", 0, unreadable},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        f.prompts.Clear();
        const size_t before = f.app->Documents().size();
        CRLDoc* doc = Open(f, f.Path(c.name));
        ASSERT_EQ(f.prompts.MessageTexts(), c.shown);
        EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Error);
        if (!c.version) {
            EXPECT_EQ(doc, nullptr);
            EXPECT_EQ(f.app->Documents().size(), before);
            continue;
        }
        ASSERT_NE(doc, nullptr);
        EXPECT_EQ(doc->Version(), c.version);
        EXPECT_EQ(doc->Header().prefListId, "1234");
        EXPECT_EQ(doc->Header().defRoamInd, "3");
        EXPECT_FALSE(doc->IsModified());
    }
}

TEST(RLDocFlow, EditSaveReopenKeepsEveryCell) {
    AppFixture f;
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLDoc* doc = NewSimpleList(f, version);
        GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
        SetCell(sys, 0, 5, "42");  // roaming indicator
        doc->SetHeader({"2", "4321", true});
        const QString path = f.Path(QString("list%1.prl").arg(version));
        ASSERT_TRUE(doc->DoSave(path)) << Shown(f).toStdString();
        EXPECT_FALSE(doc->IsModified());
        const auto saved = AppTest::ReadBytes(path);

        // Reopened in a second document (the first one still holds the path). A list made only
        // of records an older version also has reads as that older version: 2 as 1, 4 and 5 as 3.
        CRLDoc* again = qobject_cast<CRLDoc*>(f.app->OpenWithTemplate(f.app->Template(1), {}));
        ASSERT_NE(again, nullptr);
        ASSERT_TRUE(again->OnOpenDocument(path));
        EXPECT_EQ(again->Version(), version < 3 ? 1 : 3);
        EXPECT_EQ(again->Header().prefListId, "4321");
        EXPECT_TRUE(again->Header().prefOnly);
        EXPECT_EQ(RowTexts(again->Grid(CRLDoc::Table::Acq), 0), RowTexts(doc->Grid(CRLDoc::Table::Acq), 0));
        EXPECT_EQ(RowTexts(again->Grid(CRLDoc::Table::Sys), 0), RowTexts(sys, 0));
        // Saving what was read writes the same bytes.
        ASSERT_TRUE(again->DoSave(f.Path("again.prl")));
        EXPECT_EQ(AppTest::ReadBytes(f.Path("again.prl")), saved);
    }
}

// The header fields take every value up to their largest as it is typed and refuse one more;
// only an empty field is left for the save, which names it and puts the cursor back in it.
TEST(RLDocSave, HeaderFieldsAtTheirEdges) {
    AppFixture f;
    f.app->MainFrame()->show();
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().front());
    CRLView* view = ViewOf(*doc);
    ASSERT_NE(view, nullptr);
    QApplication::setActiveWindow(f.app->MainFrame());
    const struct {
        QLineEdit* edit;
        QString largest, onePast, emptyMessage;
    } cases[] = {
        {view->PropView()->DefaultRoamIndEdit(), "255", "256",
         "The default roaming indicator value is out of range (0-255)."},
        {view->PropView()->PrefListIdEdit(), "65535", "65536",
         "The Preferred List ID value is out of range (0-65535)."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.largest.toStdString());
        int pos = 0;
        QString largest = c.largest, onePast = c.onePast;
        EXPECT_EQ(c.edit->validator()->validate(largest, pos), QValidator::Acceptable);
        EXPECT_EQ(c.edit->validator()->validate(onePast, pos), QValidator::Invalid);

        c.edit->setText("");
        f.prompts.Clear();
        EXPECT_FALSE(doc->DoSave(f.Path("out.prl")));
        EXPECT_EQ(f.prompts.MessageTexts(), QStringList{c.emptyMessage});
        EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Error);
        EXPECT_EQ(QApplication::focusWidget(), c.edit);
        EXPECT_FALSE(QFile::exists(f.Path("out.prl")));
        c.edit->setText(c.largest);
    }
}

// Each grid cell saves at its largest value; one more is refused with a message naming the cell,
// the cursor goes there and nothing is written. The cell's editor takes no more digits than
// its mask holds.
TEST(RLDocSave, GridCellsAtTheirEdges) {
    AppFixture f;
    CRLDoc* doc = NewSimpleList(f, 3);
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    AddHdrRecord(acq);
    SetCell(sys, 0, 6, "Yes");  // an association tag follows
    const auto range = [](const char* table, int column, int high) {
        return Text(Msg::OutOfRange, {column, 0, table, 0, high});
    };
    const auto sysTable = CRLDoc::Table::Sys, acqTable = CRLDoc::Table::Acq;
    const struct {
        CRLDoc::Table table;
        int row, column;
        QString largest, onePast, message;
    } cases[] = {
        {sysTable, 0, 10, "32767", "32768", range("System Table", 10, 32767)},
        {sysTable, 0, 11, "65535", "65536", range("System Table", 11, 65535)},
        {sysTable, 0, 5, "255", "256", range("System Table", 5, 255)},
        {sysTable, 0, 7, "255", "256", Text(Msg::InvalidAssnTag, {0, "System Table"})},
        {sysTable, 0, 4, "0", "2", Text(Msg::InvalidAcqIndex, {4, 0, "System Table"})},
        {acqTable, 1, 2, "2047", "2048", Text(Msg::OutOfRange, {2, 1, "Acquisition Table", 0, 2047})},
        {sysTable, 0, 10, "1234", "", Text(Msg::RequiredValueMissing, {10, 0, "System Table"})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        GridModel& grid = doc->Grid(c.table);
        SetCell(grid, c.row, c.column, c.largest);
        f.prompts.Clear();
        ASSERT_TRUE(doc->DoSave(f.Path("good.prl"))) << Shown(f).toStdString();
        SetCell(grid, c.row, c.column, c.onePast);
        QSignalSpy focus(doc, &CRLDoc::focusCell);
        EXPECT_FALSE(doc->DoSave(f.Path("bad.prl")));
        EXPECT_EQ(Shown(f), c.message);
        ASSERT_EQ(focus.count(), 1);
        EXPECT_EQ(focus[0][0].value<CRLDoc::Table>(), c.table);
        EXPECT_EQ(focus[0][1].toInt(), c.column);
        EXPECT_EQ(focus[0][2].toInt(), c.row);
        EXPECT_FALSE(QFile::exists(f.Path("bad.prl")));
        SetCell(grid, c.row, c.column, c.largest);
    }
    // A SID cell's editor takes five digits and refuses a sixth.
    GridView* grid = ViewOf(*doc)->SysView()->Grid();
    std::unique_ptr<QWidget> editor(grid->itemDelegate()->createEditor(
        grid, QStyleOptionViewItem(), grid->model()->index(0, 10)));
    auto* edit = qobject_cast<QLineEdit*>(editor.get());
    ASSERT_NE(edit, nullptr);
    ASSERT_NE(edit->validator(), nullptr);
    int pos = 0;
    QString text = "99999";
    EXPECT_EQ(edit->validator()->validate(text, pos), QValidator::Acceptable);
    text = "999999";
    EXPECT_EQ(edit->validator()->validate(text, pos), QValidator::Invalid);
    EXPECT_EQ(edit->maxLength(), 5);

    // An empty row between filled ones is refused on that row.
    sys.InsertRows(1, 2, "Add");
    SetCell(sys, 2, 0, TypeName(false, 3, 0));
    SetCell(sys, 2, 10, "7");
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("bad.prl")));
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(Msg::EmptyRows)});
}

TEST(RLDocConvert, DownAsksUpDoesNotAndReadOnlyRefuses) {
    AppFixture f;
    CRLDoc* doc = NewSimpleList(f, 3);
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    AddHdrRecord(acq);

    f.prompts.Clear();
    f.prompts.answers = {false};
    EXPECT_FALSE(doc->ConvertTo(1));
    ASSERT_EQ(f.prompts.questions.size(), 1u);
    EXPECT_EQ(f.prompts.questions[0].text,
              "Some data loss may occur when changing to an older Roaming List format. Continue?");
    EXPECT_EQ(acq.GetRowCount(), 2);

    f.prompts.Clear();
    f.prompts.answers = {true};
    ASSERT_TRUE(doc->ConvertTo(1)) << Shown(f).toStdString();
    EXPECT_EQ(doc->Version(), 1);
    EXPECT_EQ(acq.GetRowCount(), 1);
    EXPECT_TRUE(doc->IsModified());
    ASSERT_EQ(f.prompts.messages.size(), 1u);  // the report of what was dropped
    EXPECT_TRUE(f.prompts.messages[0].text.contains("dropped"));

    f.prompts.Clear();
    ASSERT_TRUE(doc->ConvertTo(3));
    EXPECT_TRUE(f.prompts.questions.empty());
    EXPECT_EQ(doc->Version(), 3);

    doc->SetReadOnly(true);
    EXPECT_FALSE(doc->ConvertTo(1));
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(Msg::ReadOnlyNoConvert)});
    EXPECT_TRUE(f.prompts.questions.empty());
    EXPECT_EQ(doc->Version(), 3);
}

// A joined file is never opened as a list: opening it offers the split wizard, which splits it
// and opens the outputs the user checked.
TEST(RLDocFlow, WizardsJoinAndSplitAndOpenTheCheckedOutputs) {
    AppFixture f;
    ASSERT_TRUE(NewSimpleList(f, 2)->DoSave(f.Path("a.prl")));
    ASSERT_TRUE(NewSimpleList(f, 4)->DoSave(f.Path("b.prl")));

    // Next stays on a refused page and says why.
    ConcatPrlJoinWizard join;
    join.restart();
    f.prompts.Clear();
    join.next();
    EXPECT_EQ(join.currentId(), ConcatPrlJoinWizard::InputPageId);
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{"Please enter a first path."});
    EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Warning);
    join.InputPage()->FirstEdit()->setText(f.Path("a.prl"));
    join.InputPage()->SecondEdit()->setText(f.Path("b.prl"));
    join.next();
    join.OutputPage()->OutputEdit()->setText(f.Path("cat.prl"));
    join.next();
    EXPECT_EQ(join.currentId(), ConcatPrlJoinWizard::ResultsPageId);
    EXPECT_EQ(join.ResultsPage()->ResultText(), "Join was completed successfully.");

    const struct {
        bool split, open;
        QString result;
        int opened;
    } cases[] = {
        {false, false, "", 0},
        {true, true, "Split was completed successfully. Split file(s) are open for editing.", 2},
        {true, false, "Split was completed successfully.", 0},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(n);
        const size_t docs = f.app->Documents().size();
        const QString first = f.Path(QString("first%1.prl").arg(n));
        const QString second = f.Path(QString("second%1.prl").arg(n++));
        f.prompts.Clear();
        f.prompts.answers = {c.split};
        f.prompts.onDialog = [&](QDialog& d) {
            auto* w = qobject_cast<ConcatPrlSplitWizard*>(&d);
            w->restart();
            EXPECT_EQ(w->InputPage()->InputEdit()->text(), f.Path("cat.prl"));
            w->next();
            w->OutputPage()->FirstEdit()->setText(first);
            w->OutputPage()->SecondEdit()->setText(second);
            w->OutputPage()->OpenFirstBox()->setChecked(c.open);
            w->OutputPage()->OpenSecondBox()->setChecked(c.open);
            w->next();
            EXPECT_EQ(w->ResultsPage()->ResultText(), c.result);
            return 1;
        };
        EXPECT_EQ(f.app->OpenDocumentFile(f.Path("cat.prl")), nullptr);
        ASSERT_EQ(f.prompts.questions.size(), 1u);
        EXPECT_TRUE(f.prompts.questions[0].text.startsWith("This file is a Concatenated PRL file"));
        EXPECT_EQ(f.prompts.dialogs.size(), c.split ? 1u : 0u);
        EXPECT_EQ(f.app->Documents().size(), docs + static_cast<size_t>(c.opened));
    }
    EXPECT_EQ(AppTest::ReadBytes(f.Path("first1.prl")), AppTest::ReadBytes(f.Path("a.prl")));
    EXPECT_EQ(AppTest::ReadBytes(f.Path("second1.prl")), AppTest::ReadBytes(f.Path("b.prl")));
}

// The text view renders the grids and follows their edits; a row that cannot be rendered yet
// leaves the last text, and asking for the text then names the cell.
TEST(RLDocFlow, TextViewFollowsTheGridsAndRefusesABrokenList) {
    AppFixture f;
    CRLDoc* doc = Open(f, QStringLiteral(TARN_EXAMPLES_DIR "/example-is683a.prl"));
    ASSERT_TRUE(doc);
    QString text;
    ASSERT_TRUE(doc->RenderText(text));
    EXPECT_TRUE(text.startsWith("\r\n\t\t=============== ROAMING LIST ===============\r\n"));

    CRLViewText view(*doc);
    ASSERT_TRUE(view.Refresh());
    EXPECT_TRUE(view.toPlainText().contains("\t4139\t65535\t"));
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    SetCell(sys, 0, 10, "4140");
    EXPECT_TRUE(view.toPlainText().contains("\t4140\t65535\t"));
    SetCell(sys, 0, 10, "");
    EXPECT_TRUE(view.toPlainText().contains("\t4140\t65535\t"));
    EXPECT_TRUE(f.prompts.messages.empty());
    EXPECT_FALSE(doc->RenderText(text));
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith(
        "The roaming list is invalid.  Could not be converted to text view.\n\nA required value is "
        "missing in column 10, row 0"))
        << f.prompts.messages[0].text.toStdString();
    doc->UndoStack().undo();
    doc->UndoStack().undo();
    EXPECT_TRUE(view.toPlainText().contains("\t4139\t65535\t"));
}

}  // namespace
}  // namespace Tarn
