// The MMSS documents in the editor: open, edit through the grid model, save and reopen each kind;
// the save checks with their messages, tab numbers and cursor; entries refused as they are typed;
// undo and redo of every kind of edit; and the command-line actions of the real program.
#include <gtest/gtest.h>

#include <QFile>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QProcess>
#include <QTabWidget>
#include <functional>
#include <nlohmann/json.hpp>

#include "app/MainFrame.h"
#include "app/mmss/MmssDocuments.h"
#include "app/mmss/MmssViews.h"
#include "foundation/MessageTable.h"
#include "mmss/TechOrder/TechOrderDocument.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;
using App::MmssDocument;
using App::MmssView;

const QString kData = QStringLiteral(TARN_EXAMPLES_DIR "/../tests/data/mmss/");

QString Text(unsigned id) {
    return QString::fromStdString(FormatMessage(id));
}

QByteArray FileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

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

struct Sample {
    const char* file;
    int tab, column, row;
    const char* edit;
};
const Sample kSamples[] = {
    {"sample.mspl", 0, 0, 1, "GERAN"},       {"sample.mlpl", 1, 3, 0, "7"},
    {"sample.ehplmn", 0, 1, 0, "26"},        {"sample.oplmn", 0, 2, 1, "1"},
    {"sample.Bst3Gpp", 0, 5, 0, "2176"},       {"sample.tot", 0, 0, 2, "HRPD"},
    {"sample.laf", 0, 0, 1, "65535"},
};

TEST(MmssDoc, OpenShowsTheTextOfTheFileAndSavesItUnchanged) {
    AppFixture f;
    for (const Sample& s : kSamples) {
        SCOPED_TRACE(s.file);
        const QString path = CopySample(f, s.file);
        MmssDocument* doc = Open(f, path);
        ASSERT_NE(doc, nullptr) << f.prompts.MessageTexts().join("|").toStdString();
        EXPECT_TRUE(f.prompts.messages.empty());
        QString text;
        ASSERT_TRUE(doc->GetPrintText(text));
        EXPECT_EQ(text, QString::fromUtf8(FileBytes(kData + s.file + ".txt")));
        ASSERT_TRUE(doc->DoFileSave()) << f.prompts.MessageTexts().join("|").toStdString();
        EXPECT_EQ(FileBytes(path), FileBytes(kData + s.file));
        Close(f, doc);
    }
}

TEST(MmssDoc, GridEditSurvivesSaveAndReopen) {
    AppFixture f;
    for (const Sample& s : kSamples) {
        SCOPED_TRACE(s.file);
        const QString path = CopySample(f, s.file);
        MmssDocument* doc = Open(f, path);
        ASSERT_NE(doc, nullptr);
        GridModel& grid = *doc->Tab(s.tab).grid;
        ASSERT_TRUE(grid.setData(grid.index(s.row, s.column), s.edit, Qt::EditRole));
        EXPECT_TRUE(doc->IsModified());
        ASSERT_TRUE(doc->DoFileSave()) << f.prompts.MessageTexts().join("|").toStdString();
        EXPECT_NE(FileBytes(path), FileBytes(kData + s.file));
        Close(f, doc);

        doc = Open(f, path);
        ASSERT_NE(doc, nullptr);
        EXPECT_EQ(doc->Tab(s.tab).grid->GetCellText(s.column, s.row), s.edit);
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
        ASSERT_GE(doc->TabCount(), 1);
        EXPECT_GE(doc->Tab(0).grid->GetRowCount(), 1) << "a new document starts with a row";
        ASSERT_TRUE(doc->DoSave(f.Path(k.name))) << f.prompts.MessageTexts().join("|").toStdString();
        QString before;
        doc->GetPrintText(before);
        Close(f, doc);
        doc = Open(f, f.Path(k.name));
        ASSERT_NE(doc, nullptr);
        QString after;
        doc->GetPrintText(after);
        EXPECT_EQ(after, before);
        Close(f, doc);
    }
    EXPECT_TRUE(f.prompts.messages.empty()) << f.prompts.MessageTexts().join("|").toStdString();
}

// Each check refuses the save with its own text, leaves the file alone and puts the cursor on
// the field (or the tab) it is about.
TEST(MmssDoc, SaveChecksShowTheirMessageAndTab) {
    using Setup = std::function<void(MmssDocument&)>;
    auto header = [](const char* key, const char* value) -> Setup {
        return [=](MmssDocument& d) { d.SetHeaderValue(key, value); };
    };
    // Adds a tab and sets one of its fields.
    auto newTab = [](const char* key, const char* value) -> Setup {
        return [=](MmssDocument& d) {
            d.AddTab();
            d.SetTabValue(d.TabCount() - 1, key, value);
        };
    };
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
        {"sample.mspl", header("revision", ""), "Mmss Revision Value is Missing", -1},
        {"sample.mspl", header("revision", "256"), "Invalid Mmss Revision Value. Range is 0 - 255", -1},
        {"sample.mspl", header("version", "65536"), "Invalid Mspl Version Value.Range is 0 - 65535", -1},
        {"sample.mspl", [](MmssDocument& d) { d.SetTabValue(1, "id", ""); }, "No Mspl Id entered in Tab 2", 1},
        {"sample.mspl", [](MmssDocument& d) { d.SetTabValue(1, "id", "300"); },
         "Invalid Mspl Id value in Tab 2The range is 0 - 255", 1},
        {"sample.mspl", emptyAllGrids, Text(Msg::NeedOneMsplRecord), -1},
        {"sample.mlpl", header("id", "256"), "Invalid Mlpl Id Value. Range is 0 - 255", -1},
        {"sample.mlpl", header("version", ""), "Mlpl Version Value is Missing", -1},
        {"sample.mlpl", [](MmssDocument& d) { d.SetTabValue(2, "mcc", "1000"); },
         "The value of MCC in Tab-3 is out of range.\nThe range for this input is 0 - 999", 2},
        {"sample.mlpl", [](MmssDocument& d) { d.SetTabValue(1, "mnc", "1"); },
         "Mnc value in Tab-2 is neither in 2-digit format nor in 3-digit format", 1},
        {"sample.mlpl", [](MmssDocument& d) { d.SetTabValue(2, "msplIndex", ""); },
         "MsplIndex field in Tab-3 is out of range or empty.\nThe range for this input is 0 - 255", 2},
        {"sample.Bst3Gpp", header("version", ""), "Bst3Gpp Version Value is missing", -1},
        {"sample.Bst3Gpp", [](MmssDocument& d) { d.SetTabValue(1, "mcc", "1000"); },
         "Invalid Mcc value in Tab 2The range is 0 - 999", 1},
        {"sample.Bst3Gpp", newTab("type", "2"), "Invalid Bst Type. Only Type1 is supported", 2},
        {"sample.Bst3Gpp", newTab("extension", "1"),
         "Invalid Bst ExtensionIncl. Only 0 is supported", 2},
        {"sample.Bst3Gpp", emptyAllGrids, Text(Msg::NeedOneBstRecord), -1},
        {"sample.tot", header("version", "70000"), "Invalid Version Value.Range is 0 - 65535", -1},
        {"sample.tot",
         [](MmssDocument& d) {
             GridModel& g = *d.Tab(0).grid;
             g.setData(g.index(1, 0), "EUTRAN", Qt::EditRole);
         },
         Text(231), -1},
        {"sample.tot", emptyAllGrids, Text(Msg::NeedOneTotRecord), -1},
        {"sample.oplmn", emptyAllGrids, Text(Msg::NeedOnePlmnRecord), -1},
        {"sample.laf", emptyAllGrids, Text(Msg::NeedOneLafRecord), -1},
        {"sample.mspl",
         [](MmssDocument& d) {
             GridModel& g = *d.Tab(1).grid;
             g.setData(g.index(0, 2), "", Qt::EditRole);
         },
         "A required value is missing in column 2, row 0 of the Mspl-Table.", 1},
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
        ASSERT_FALSE(f.prompts.messages.empty());
        EXPECT_EQ(f.prompts.messages.front().text, c.message);
        EXPECT_EQ(FileBytes(path), FileBytes(kData + c.file)) << "a refused save wrote the file";
        if (c.tab >= 0) {
            MmssView* view = ViewOf(*doc);
            ASSERT_NE(view, nullptr);
            ASSERT_NE(view->Tabs(), nullptr);
            EXPECT_EQ(view->Tabs()->currentIndex(), c.tab);
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
    } cases[] = {
        {"empty.tot", QByteArray::fromHex("00050000"), Msg::NoTotRecordsInFile},
        {"empty.mspl", QByteArray::fromHex("0007010007010500"), Msg::NoMsplRecordsInFile},
        {"empty.mlpl", QByteArray::fromHex("00070100030900"), Msg::NoMlplRecordsInFile},
        {"empty.Bst3Gpp", QByteArray::fromHex("00010000"), Msg::NoBstRecordsInFile},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QFile out(f.Path(c.name));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(c.bytes);
        out.close();
        f.prompts.Clear();
        MmssDocument* doc = Open(f, f.Path(c.name));
        ASSERT_NE(doc, nullptr) << f.prompts.MessageTexts().join("|").toStdString();
        EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(c.message)});
        Close(f, doc);
    }
    // A PLMN file too short for one record is not a PLMN list at all.
    QFile out(f.Path("short.ehplmn"));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(QByteArray::fromHex("13"));
    out.close();
    f.prompts.Clear();
    EXPECT_EQ(Open(f, f.Path("short.ehplmn")), nullptr);
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(Msg::NoPlmnRecordsInFile)});
}

TEST(MmssDoc, LteAvailableEntriesAreCheckedAsTheyAreTyped) {
    AppFixture f;
    MmssDocument* doc = Open(f, CopySample(f, "sample.laf"));
    ASSERT_NE(doc, nullptr);
    MmssView* view = ViewOf(*doc);
    ASSERT_NE(view, nullptr);
    GridView* grid = view->CurrentPage()->Grid();
    const QString hint16 = "\n" + Text(235), hint8 = "\n" + Text(240);
    const struct {
        int column;
        const char* text;
        QString refusal;  // empty: accepted
    } cases[] = {
        {0, "65535", ""},         {0, "65536", Text(236) + hint16},  {1, "abc", Text(237) + hint16},
        {2, "-1", Text(238) + hint16}, {3, "255", ""},              {3, "256", Text(239) + hint8},
        {1, "", Text(237) + hint16},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " in column " + std::to_string(c.column));
        f.prompts.Clear();
        const QModelIndex index = grid->model()->index(0, c.column);
        const QString before = index.data().toString();
        QLineEdit editor;
        editor.setText(c.text);
        grid->itemDelegate()->setModelData(&editor, grid->model(), index);
        if (c.refusal.isEmpty()) {
            EXPECT_TRUE(f.prompts.messages.empty());
            EXPECT_EQ(index.data().toString(), c.text);
        } else {
            EXPECT_EQ(f.prompts.MessageTexts(), QStringList{c.refusal});
            EXPECT_EQ(index.data().toString(), before);
        }
    }
    Close(f, doc);
}

TEST(MmssDoc, UndoAndRedoCoverCellsFieldsAndTabs) {
    AppFixture f;
    MmssDocument* doc = Open(f, CopySample(f, "sample.mspl"));
    ASSERT_NE(doc, nullptr);
    QString original;
    ASSERT_TRUE(doc->GetPrintText(original));

    GridModel& grid = *doc->Tab(0).grid;
    grid.setData(grid.index(0, 0), "WiMAX", Qt::EditRole);
    doc->SetHeaderValue("version", "9");
    doc->SetTabValue(1, "id", "44");
    doc->AddTab();
    doc->RemoveTab(0);
    ASSERT_EQ(doc->TabCount(), 2);
    QString edited;
    ASSERT_TRUE(doc->GetPrintText(edited));
    EXPECT_NE(edited, original);
    EXPECT_TRUE(edited.contains("Id : 44"));

    while (doc->UndoStack().canUndo()) doc->UndoStack().undo();
    QString undone;
    ASSERT_TRUE(doc->GetPrintText(undone));
    EXPECT_EQ(undone, original);
    EXPECT_FALSE(doc->IsModified());
    // The view follows: the header field shows the value back.
    MmssView* view = ViewOf(*doc);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->HeaderField(1)->text(), "7");
    EXPECT_EQ(view->Tabs()->count(), 2);

    while (doc->UndoStack().canRedo()) doc->UndoStack().redo();
    QString redone;
    ASSERT_TRUE(doc->GetPrintText(redone));
    EXPECT_EQ(redone, edited);

    // The main frame's Edit menu (Ctrl+Z) reaches an MMSS document as it does a roaming list.
    CMainFrame* frame = f.app->MainFrame();
    ASSERT_NE(frame, nullptr);
    frame->UpdateCommands();
    QAction* undoAction = frame->Action(Cmd::EditUndo);
    ASSERT_NE(undoAction, nullptr);
    ASSERT_TRUE(undoAction->isEnabled());
    undoAction->trigger();
    EXPECT_EQ(doc->TabCount(), 3);  // the last step, the removed tab, is back
    Close(f, doc);
}

TEST(MmssDoc, PlmnKindComesFromTheNameOrTheNewCommand) {
    AppFixture f;
    const QString path = f.Path("list.UPLMN.bak");
    QFile::copy(kData + "sample.oplmn", path);
    MmssDocument* doc = Open(f, path);
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->GridTitle(), "UPLMN Records");
    EXPECT_EQ(doc->Tab(0).grid->GetColumnHeading(2), "UMTS Present");
    Close(f, doc);

    f.app->OnNewPlmn(1);
    doc = qobject_cast<MmssDocument*>(f.app->Documents().back());
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->GridTitle(), "EHPLMN Records");
    EXPECT_EQ(doc->Tab(0).grid->columnCount(), 2);
    Close(f, doc);
}

// ---- The real program in command-line mode ------------------------------------------------------

struct ProgramRun {
    bool finished = false;
    int exitCode = -1;
    QString err;
};

ProgramRun RunTarn(const QStringList& args) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    p.setProcessEnvironment(env);
    p.start(TARN_APP_PATH, args);
    ProgramRun r;
    r.finished = p.waitForFinished(60000);
    if (!r.finished) p.kill();
    r.exitCode = p.exitCode();
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

TEST(MmssCommandLine, TextAndCheckActionsWriteWhatTheEditorWould) {
    QTemporaryDir dir;
    const struct {
        QString option, input, output;
        QString expected;  // the file whose bytes the output must match
    } cases[] = {
        {"-f", "sample.mspl", "out.txt", "sample.mspl.txt"},
        {"/f", "sample.oplmn", "oplmn.txt", "sample.oplmn.txt"},
        {"-f", "sample.laf", "laf.txt", "sample.laf.txt"},
        {"-c", "sample.tot", "copy.tot", "sample.tot"},
        {"-c", "sample.Bst3Gpp", "copy.Bst3Gpp", "sample.Bst3Gpp"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.option + " " + c.input).toStdString());
        const ProgramRun r = RunTarn({c.option, kData + c.input, dir.filePath(c.output)});
        ASSERT_TRUE(r.finished);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(FileBytes(dir.filePath(c.output)), FileBytes(kData + c.expected));
    }
}

TEST(MmssCommandLine, FailedCheckWritesNothingAndSaysWhy) {
    QTemporaryDir dir;
    const QString in = dir.filePath("repeat.tot");
    QFile f(in);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray::fromHex("0005000209 09"));
    f.close();
    const ProgramRun r = RunTarn({"-c", in, dir.filePath("out.tot")});
    ASSERT_TRUE(r.finished);
    EXPECT_NE(r.exitCode, 0);
    EXPECT_TRUE(r.err.contains(Text(231))) << r.err.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("out.tot")));
}

TEST(MmssCommandLine, JsonFormIsWrittenAsTheBinaryFile) {
    QTemporaryDir dir;
    const QByteArray bytes = FileBytes(kData + "sample.tot");
    auto doc = Mmss::FromBytes<TechOrder::Document>({bytes.begin(), bytes.end()});
    nlohmann::json json;
    doc->ToJson(json);
    QFile f(dir.filePath("in.json"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray::fromStdString(json.dump()));
    f.close();
    const ProgramRun r = RunTarn({"-u", dir.filePath("in.json"), dir.filePath("out.tot")});
    ASSERT_TRUE(r.finished);
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(FileBytes(dir.filePath("out.tot")), FileBytes(kData + "sample.tot"));
}

}  // namespace
}  // namespace Tarn
