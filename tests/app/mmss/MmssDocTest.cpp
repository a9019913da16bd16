// The MMSS documents in the editor: open, edit through the grid model, save and reopen each kind;
// every form field at its edges; the save checks with their messages and cursor; entries refused
// as they are typed; the notices after loading; and undo and redo of every kind of edit.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QTabWidget>
#include <functional>

#include "app/mmss/MmssDocuments.h"
#include "app/mmss/MmssViews.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;
using AppTest::Text;
using App::MmssDocument;
using App::MmssView;

const QString kData = QStringLiteral(TARN_EXAMPLES_DIR "/../tests/data/mmss/");

QString CopySample(AppFixture& f, const QString& name) {
    const QString path = f.Path(name);
    QFile::remove(path);
    QFile::copy(kData + name, path);
    QFile(path).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return path;
}

MmssDocument* Open(AppFixture& f, const QString& path) {
    return qobject_cast<MmssDocument*>(f.app->OpenDocumentFile(path));
}

MmssView* ViewOf(MmssDocument& doc) {
    const auto windows = doc.Windows();
    return windows.empty() ? nullptr : qobject_cast<MmssView*>(windows.front()->widget());
}

void Close(AppFixture& f, MmssDocument* doc) {
    doc->SetModifiedFlag(false);
    f.app->CloseDocument(doc);
}

QString Shown(const AppFixture& f) {
    return f.prompts.MessageTexts().join("|");
}

TEST(MmssDoc, EachKindOpensSavesUnchangedAndSavesAGridEdit) {
    const struct {
        const char* file;
        int tab, column, row;
        const char* edit;
    } samples[] = {
        {"sample.mspl", 0, 0, 1, "GERAN"},    {"sample.mlpl", 1, 3, 0, "7"},
        {"sample.ehplmn", 0, 1, 0, "26"},     {"sample.oplmn", 0, 2, 1, "1"},
        {"sample.Bst3Gpp", 0, 5, 0, "2176"},  {"sample.tot", 0, 0, 2, "HRPD"},
        {"sample.laf", 0, 0, 1, "65535"},
    };
    AppFixture f;
    for (const auto& s : samples) {
        SCOPED_TRACE(s.file);
        const QString path = CopySample(f, s.file);
        MmssDocument* doc = Open(f, path);
        ASSERT_NE(doc, nullptr) << Shown(f).toStdString();
        EXPECT_TRUE(f.prompts.messages.empty());
        QString text;
        ASSERT_TRUE(doc->GetPrintText(text));
        EXPECT_EQ(text, QString::fromStdString(Tarn::Test::Slurp((kData + s.file + ".txt").toStdString())));
        ASSERT_TRUE(doc->DoFileSave()) << Shown(f).toStdString();
        EXPECT_EQ(AppTest::ReadBytes(path), AppTest::ReadBytes(kData + s.file));

        GridModel& grid = *doc->Tab(s.tab).grid;
        ASSERT_TRUE(grid.setData(grid.index(s.row, s.column), s.edit, Qt::EditRole));
        EXPECT_TRUE(doc->IsModified());
        ASSERT_TRUE(doc->DoFileSave()) << Shown(f).toStdString();
        EXPECT_NE(AppTest::ReadBytes(path), AppTest::ReadBytes(kData + s.file));
        Close(f, doc);
    }
}

TEST(MmssDoc, EveryNewCommandMakesADocumentThatSavesAndReopens) {
    AppFixture f;
    const struct {
        int templateNumber;
        uint8_t plmnKind;
        const char* name;
        const char* title;
    } kinds[] = {{3, 0, "new.mspl", "MSPL"},          {5, 0, "new.mlpl", "MLPL"},
                 {6, 1, "new.ehplmn", "EHPLMN"},      {6, 2, "new.oplmn", "OPLMN"},
                 {6, 3, "new.uplmn", "UPLMN"},        {4, 0, "new.Bst3Gpp", "3GPP BST"},
                 {7, 0, "new.tot", "Technology Order"}, {8, 0, "new.laf", "LTE Available"}};
    for (const auto& k : kinds) {
        SCOPED_TRACE(k.name);
        if (k.plmnKind)
            f.app->OnNewPlmn(k.plmnKind);
        else
            f.app->OnNewOfTemplate(k.templateNumber);
        auto* doc = qobject_cast<MmssDocument*>(f.app->Documents().back());
        ASSERT_NE(doc, nullptr);
        EXPECT_EQ(doc->KindTitle(), k.title);
        EXPECT_GE(doc->Tab(0).grid->GetRowCount(), 1) << "a new document starts with a row";
        ASSERT_TRUE(doc->DoSave(f.Path(k.name))) << Shown(f).toStdString();
        Close(f, doc);
        EXPECT_NE(Open(f, f.Path(k.name)), nullptr);
    }
    EXPECT_TRUE(f.prompts.messages.empty()) << Shown(f).toStdString();
}

// Every field of the form saves at its largest value; one more is refused with the field's
// message, the file is left alone and the cursor goes to the field (on its tab).
TEST(MmssDoc, FormFieldsSaveUpToTheirLargestValue) {
    const struct {
        const char* file;
        int tab;  // -1: a header field
        const char* key;
        const char* largest;
        const char* onePast;
        QString message;
        int field;
    } cases[] = {
        {"sample.mspl", -1, "revision", "255", "256", "Invalid Mmss Revision Value. Range is 0 - 255", 0},
        {"sample.mspl", -1, "version", "65535", "65536", "Invalid Mspl Version Value.Range is 0 - 65535", 1},
        {"sample.mspl", 1, "id", "255", "256", "Invalid Mspl Id value in Tab 2The range is 0 - 255", 0},
        {"sample.mlpl", -1, "version", "65535", "65536", "Invalid Mlpl Version Value. Range is 0 - 65535", 1},
        {"sample.mlpl", -1, "id", "255", "256", "Invalid Mlpl Id Value. Range is 0 - 255", 2},
        {"sample.mlpl", 2, "mcc", "999", "1000", Text(Msg::MccTabRange, {3, 0, 999}), 0},
        {"sample.mlpl", 2, "mnc", "999", "1000", Text(Msg::MncTabRange, {3, 0, 999}), 1},
        {"sample.mlpl", 2, "msplIndex", "255", "256", Text(Msg::MsplIndexTabRange, {3, 0, 255}), 2},
        {"sample.Bst3Gpp", -1, "version", "65535", "65536", "Invalid Bst3Gpp Version Value.Range is 0 - 65535", 0},
        {"sample.Bst3Gpp", 1, "mcc", "999", "1000", "Invalid Mcc value in Tab 2The range is 0 - 999", 2},
        {"sample.tot", -1, "version", "65535", "65536", "Invalid Version Value.Range is 0 - 65535", 0},
    };
    AppFixture f;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.key);
        const QString path = CopySample(f, c.file);
        MmssDocument* doc = Open(f, path);
        ASSERT_NE(doc, nullptr);
        auto set = [&](const char* value) {
            c.tab < 0 ? doc->SetHeaderValue(c.key, value) : doc->SetTabValue(c.tab, c.key, value);
        };
        set(c.largest);
        f.prompts.Clear();
        ASSERT_TRUE(doc->DoFileSave()) << Shown(f).toStdString();
        const auto saved = AppTest::ReadBytes(path);

        set(c.onePast);
        QSignalSpy header(doc, &MmssDocument::focusHeaderField);
        QSignalSpy tab(doc, &MmssDocument::focusTabField);
        EXPECT_FALSE(doc->DoFileSave());
        EXPECT_EQ(f.prompts.MessageTexts(), QStringList{c.message});
        EXPECT_EQ(AppTest::ReadBytes(path), saved) << "a refused save wrote the file";
        if (c.tab < 0) {
            ASSERT_EQ(header.count(), 1);
            EXPECT_EQ(header[0][0].toInt(), c.field);
        } else {
            ASSERT_EQ(tab.count(), 1);
            EXPECT_EQ(tab[0][0].toInt(), c.tab);
            EXPECT_EQ(tab[0][1].toInt(), c.field);
            EXPECT_EQ(ViewOf(*doc)->Tabs()->currentIndex(), c.tab);
        }
        Close(f, doc);
    }
}

// The checks that are not about a range: each refuses the save with its own text, leaves the
// file alone and shows the tab it is about.
TEST(MmssDoc, SaveChecksShowTheirMessageAndTab) {
    using Setup = std::function<void(MmssDocument&)>;
    // A new tab whose message names no tab: the cursor still goes to it.
    auto newBstTab = [](MmssDocument& d) {
        d.AddTab();
        d.SetTabValue(d.TabCount() - 1, "type", "2");
    };
    auto cell = [](int tab, int row, int column, const char* text) -> Setup {
        return [=](MmssDocument& d) {
            GridModel& g = *d.Tab(tab).grid;
            g.setData(g.index(row, column), text, Qt::EditRole);
        };
    };
    // "Needs a record" waits until every grid has been read.
    auto emptyAllGrids = [](MmssDocument& d) {
        for (int t = 0; t < d.TabCount(); ++t) {
            GridModel& g = *d.Tab(t).grid;
            std::vector<int> rows;
            for (int r = 0; r < g.GetRowCount(); ++r) rows.push_back(r);
            g.RemoveRows(rows, "Delete");
        }
    };
    const struct {
        const char* file;
        Setup setup;
        QString message;
        int tab;  // the tab shown afterwards, -1 when it does not matter
    } cases[] = {
        {"sample.mspl", [](MmssDocument& d) { d.SetHeaderValue("revision", ""); }, "Mmss Revision Value is Missing", -1},
        {"sample.mspl", [](MmssDocument& d) { d.SetTabValue(1, "id", ""); }, "No Mspl Id entered in Tab 2", 1},
        {"sample.mspl", emptyAllGrids, Text(Msg::NeedOneMsplRecord), -1},
        {"sample.mspl", cell(1, 0, 2, ""), "A required value is missing in column 2, row 0 of the Mspl-Table.", 1},
        {"sample.Bst3Gpp", newBstTab, "Invalid Bst Type. Only Type1 is supported", 2},
        {"sample.tot", cell(0, 1, 0, "EUTRAN"), Text(Msg::RedundantRatIds), -1},
        {"sample.laf", emptyAllGrids, Text(Msg::NeedOneLafRecord), -1},
    };
    AppFixture f;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        const QString path = CopySample(f, c.file);
        MmssDocument* doc = Open(f, path);
        ASSERT_NE(doc, nullptr);
        c.setup(*doc);
        f.prompts.Clear();
        EXPECT_FALSE(doc->DoFileSave());
        EXPECT_EQ(f.prompts.MessageTexts(), QStringList{c.message});
        EXPECT_EQ(AppTest::ReadBytes(path), AppTest::ReadBytes(kData + c.file)) << "a refused save wrote the file";
        if (c.tab >= 0) {
            EXPECT_EQ(ViewOf(*doc)->Tabs()->currentIndex(), c.tab);
        }
        Close(f, doc);
    }
}

TEST(MmssDoc, EmptyFilesAreNoticedAfterLoading) {
    AppFixture f;
    const struct {
        const char* name;
        QByteArray bytes;
        unsigned message;
        bool opens;
    } cases[] = {
        {"empty.tot", QByteArray::fromHex("00050000"), Msg::NoTotRecordsInFile, true},
        {"empty.mlpl", QByteArray::fromHex("00070100030900"), Msg::NoMlplRecordsInFile, true},
        // A PLMN file too short for one record is not a PLMN list at all.
        {"short.ehplmn", QByteArray::fromHex("13"), Msg::NoPlmnRecordsInFile, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AppTest::WriteBytes(f.Path(c.name), {c.bytes.begin(), c.bytes.end()});
        f.prompts.Clear();
        MmssDocument* doc = Open(f, f.Path(c.name));
        EXPECT_EQ(doc != nullptr, c.opens) << Shown(f).toStdString();
        EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(c.message)});
        if (doc) Close(f, doc);
    }
}

// An LTE Available cell refuses, as it is typed, what its field cannot hold.
TEST(MmssDoc, LteAvailableEntriesAreCheckedAsTheyAreTyped) {
    AppFixture f;
    MmssDocument* doc = Open(f, CopySample(f, "sample.laf"));
    ASSERT_NE(doc, nullptr);
    GridView* grid = ViewOf(*doc)->CurrentPage()->Grid();
    const QString hint16 = "\n" + Text(Msg::HintDecimal65535), hint8 = "\n" + Text(Msg::HintDecimal255);
    const struct {
        int column;
        const char* text;
        QString refusal;  // empty: accepted
    } cases[] = {
        {0, "65535", ""}, {0, "65536", Text(Msg::SidNotNumeric) + hint16},
        {1, "65535", ""}, {1, "65536", Text(Msg::NidNotNumeric) + hint16},
        {2, "65535", ""}, {2, "65536", Text(Msg::BidNotNumeric) + hint16},
        {3, "255", ""},   {3, "256", Text(Msg::CntNotNumeric) + hint8},
        {0, "0", ""},     {1, "abc", Text(Msg::NidNotNumeric) + hint16},
        {2, "-1", Text(Msg::BidNotNumeric) + hint16}, {1, "", Text(Msg::NidNotNumeric) + hint16},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " in column " + std::to_string(c.column));
        f.prompts.Clear();
        const QModelIndex index = grid->model()->index(0, c.column);
        const QString before = index.data().toString();
        QLineEdit editor;
        editor.setText(c.text);
        grid->itemDelegate()->setModelData(&editor, grid->model(), index);
        EXPECT_EQ(f.prompts.MessageTexts(), c.refusal.isEmpty() ? QStringList{} : QStringList{c.refusal});
        EXPECT_EQ(index.data().toString(), c.refusal.isEmpty() ? QString(c.text) : before);
    }
    Close(f, doc);
}

TEST(MmssDoc, UndoAndRedoCoverCellsFieldsAndTabs) {
    AppFixture f;
    MmssDocument* doc = Open(f, CopySample(f, "sample.mspl"));
    ASSERT_NE(doc, nullptr);
    QString original, edited, undone, redone;
    ASSERT_TRUE(doc->GetPrintText(original));

    GridModel& grid = *doc->Tab(0).grid;
    grid.setData(grid.index(0, 0), "WiMAX", Qt::EditRole);
    doc->SetHeaderValue("version", "9");
    doc->SetTabValue(1, "id", "44");
    doc->AddTab();
    doc->RemoveTab(0);
    ASSERT_EQ(doc->TabCount(), 2);
    ASSERT_TRUE(doc->GetPrintText(edited));
    EXPECT_TRUE(edited.contains("Id : 44"));

    while (doc->UndoStack().canUndo()) doc->UndoStack().undo();
    ASSERT_TRUE(doc->GetPrintText(undone));
    EXPECT_EQ(undone, original);
    EXPECT_FALSE(doc->IsModified());
    EXPECT_EQ(ViewOf(*doc)->HeaderField(1)->text(), "7");  // the view follows

    while (doc->UndoStack().canRedo()) doc->UndoStack().redo();
    ASSERT_TRUE(doc->GetPrintText(redone));
    EXPECT_EQ(redone, edited);

    // The main frame's Edit menu (Ctrl+Z) reaches an MMSS document as it does a roaming list.
    f.app->MainFrame()->UpdateCommands();
    QAction* undoAction = f.app->MainFrame()->Action(Cmd::EditUndo);
    ASSERT_TRUE(undoAction->isEnabled());
    undoAction->trigger();
    EXPECT_EQ(doc->TabCount(), 3);  // the last step, the removed tab, is back
    Close(f, doc);
}

}  // namespace
}  // namespace Tarn
