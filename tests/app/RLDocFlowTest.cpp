// Whole-document flows over real records: build a list in the grids, save, reopen and compare;
// convert between versions with the data-loss question; the concatenated-file offer; the join and
// split wizards end to end; and the command-line conversions of the real program.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QProcess>

#include "app/MainFrame.h"
#include "app/RLCoreOps.h"
#include "app/RLDoc.h"
#include "app/wizards/ConcatPrlWizards.h"
#include "foundation/MessageTable.h"
#include "roaming_list/NameTables.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

QString Msg(unsigned id) {
    return QString::fromUtf8(MessageText(id).data());
}

QString TypeName(bool acq, int version, int code) {
    const auto& names = CRLNameTables::Instance();
    return QString::fromStdString(
        (acq ? names.AcqTypes(version) : names.SysTypes(version)).GetName(code));
}

// A new list of `version` with one record per table, made by picking types in the type column
// (which writes a default record into the row) and typing a SID.
CRLDoc* NewSimpleList(AppFixture& f, int version, int acqType = 1, int sysType = 0) {
    f.app->OnNewRoamingList(version);
    auto* doc = qobject_cast<CRLDoc*>(f.app->Documents().back());
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    acq.setData(acq.index(0, 0), TypeName(true, version, acqType), Qt::EditRole);
    sys.setData(sys.index(0, 0), TypeName(false, version, sysType), Qt::EditRole);
    if (sysType == 0) sys.setData(sys.index(0, 10), "1234", Qt::EditRole);
    return doc;
}

std::vector<std::string> RowTexts(GridModel& grid, int row) {
    std::vector<std::string> out;
    for (int c = 0; c < grid.UsedColumns(); ++c) out.push_back(grid.GetCellText(c, row));
    while (!out.empty() && out.back().empty()) out.pop_back();
    return out;
}

TEST(RLDocFlow, EditSaveReopenKeepsEveryCell) {
    AppFixture f;
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        CRLDoc* doc = NewSimpleList(f, version);
        GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
        sys.setData(sys.index(0, 5), "42", Qt::EditRole);  // roaming indicator
        doc->SetHeader({"2", "4321", true});
        const QString path = f.Path(QString("list%1.prl").arg(version));
        f.prompts.Clear();
        ASSERT_TRUE(doc->DoSave(path)) << f.prompts.MessageTexts().join("|").toStdString();
        EXPECT_FALSE(doc->IsModified());
        const auto saved = AppTest::ReadBytes(path);
        ASSERT_FALSE(saved.empty());
        const auto acqRow = RowTexts(doc->Grid(CRLDoc::Table::Acq), 0);
        const auto sysRow = RowTexts(sys, 0);

        // A list made only of records an older version also has reads as that older version
        // (the first version that reads a file decides it): 2 reads as 1, 4 and 5 as 3.
        const int detected = version < 3 ? 1 : 3;
        ListReadResult read = ReadListFile(path.toStdString());
        ASSERT_TRUE(read.manager) << read.error;
        EXPECT_EQ(read.manager->GetVersion(), detected);

        // Reopened in a second document (the first one still holds the path).
        CRLDoc* again = qobject_cast<CRLDoc*>(f.app->OpenWithTemplate(f.app->Template(1), {}));
        ASSERT_NE(again, nullptr);
        ASSERT_TRUE(again->OnOpenDocument(path));
        EXPECT_EQ(again->Version(), detected);
        EXPECT_EQ(again->Header().prefListId, "4321");
        EXPECT_TRUE(again->Header().prefOnly);
        EXPECT_EQ(RowTexts(again->Grid(CRLDoc::Table::Acq), 0), acqRow);
        EXPECT_EQ(RowTexts(again->Grid(CRLDoc::Table::Sys), 0), sysRow);
        EXPECT_EQ(again->Grid(CRLDoc::Table::Sys).GetCellText(5, 0), "42");
        // Saving what was read writes the same bytes.
        ASSERT_TRUE(again->DoSave(f.Path("again.prl")));
        EXPECT_EQ(AppTest::ReadBytes(f.Path("again.prl")), saved);
    }
}

TEST(RLDocFlow, GridErrorsNameTheirCellAndMoveTheCursorThere) {
    AppFixture f;
    f.app->MainFrame()->show();
    CRLDoc* doc = NewSimpleList(f, 3);
    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    sys.setData(sys.index(0, 4), "5", Qt::EditRole);  // no acquisition record 5
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("bad.prl")));
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(
        f.prompts.messages[0].text.startsWith("An invalid ACQ Index is entered column 4, row 0"))
        << f.prompts.messages[0].text.toStdString();
    auto* view = qobject_cast<QMdiSubWindow*>(doc->Windows().front());
    ASSERT_NE(view, nullptr);
    EXPECT_FALSE(QFile::exists(f.Path("bad.prl")));
    // An empty row between filled ones is refused on that row.
    sys.setData(sys.index(0, 4), "0", Qt::EditRole);
    sys.InsertRows(1, 2, "Add");
    sys.setData(sys.index(2, 0), TypeName(false, 3, 0), Qt::EditRole);
    sys.setData(sys.index(2, 10), "7", Qt::EditRole);
    f.prompts.Clear();
    EXPECT_FALSE(doc->DoSave(f.Path("bad.prl")));
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Msg(198)});
    sys.RemoveRows({1}, "Delete");
    f.prompts.Clear();
    EXPECT_TRUE(doc->DoSave(f.Path("good.prl")))
        << f.prompts.MessageTexts().join("|").toStdString();
}

TEST(RLDocFlow, ConversionDownAsksAndUpDoesNot) {
    AppFixture f;
    // An HDR acquisition record and an IS-856 system record cannot live in IS-683A.
    CRLDoc* doc = NewSimpleList(f, 3);
    GridModel& acq = doc->Grid(CRLDoc::Table::Acq);
    acq.InsertRows(1, 1, "Add");
    acq.setData(acq.index(1, 0), TypeName(true, 3, 11), Qt::EditRole);
    acq.setData(acq.index(1, 1), "1:1900-MHz-PCS", Qt::EditRole);
    acq.setData(acq.index(1, 2), "25", Qt::EditRole);
    const QString before = QString::fromStdString(acq.GetCellText(0, 1));

    f.prompts.Clear();
    f.prompts.answers = {false};
    EXPECT_FALSE(doc->ConvertTo(1));
    EXPECT_EQ(f.prompts.questions.size(), 1u);
    if (!f.prompts.questions.empty()) {
        EXPECT_EQ(
            f.prompts.questions[0].text,
            "Some data loss may occur when changing to an older Roaming List format. Continue?");
    }
    EXPECT_EQ(doc->Version(), 3);
    EXPECT_EQ(QString::fromStdString(acq.GetCellText(0, 1)), before);

    f.prompts.Clear();
    f.prompts.answers = {true};
    ASSERT_TRUE(doc->ConvertTo(1)) << f.prompts.MessageTexts().join("|").toStdString();
    EXPECT_EQ(doc->Version(), 1);
    EXPECT_EQ(acq.GetRowCount(), 1);
    EXPECT_TRUE(doc->IsModified());
    ASSERT_EQ(f.prompts.messages.size(), 1u);  // the report of what was dropped
    EXPECT_TRUE(f.prompts.messages[0].text.contains("dropped"))
        << f.prompts.messages[0].text.toStdString();

    f.prompts.Clear();
    ASSERT_TRUE(doc->ConvertTo(3));
    EXPECT_TRUE(f.prompts.questions.empty());
    EXPECT_EQ(doc->Version(), 3);
    // Converting to the version it has does nothing at all.
    EXPECT_FALSE(doc->ConvertTo(3));
    EXPECT_TRUE(f.prompts.questions.empty());
}

TEST(RLDocFlow, ConcatenatedFileIsOfferedToTheSplitWizardAndNeverOpened) {
    AppFixture f;
    ASSERT_TRUE(NewSimpleList(f, 3)->DoSave(f.Path("a.prl")));
    ASSERT_TRUE(NewSimpleList(f, 5)->DoSave(f.Path("b.prl")));
    JoinListFiles(f.Path("a.prl").toStdString(), f.Path("b.prl").toStdString(),
                  f.Path("cat.prl").toStdString());
    const size_t docs = f.app->Documents().size();
    for (bool ok : {false, true}) {
        SCOPED_TRACE(ok);
        f.prompts.Clear();
        f.prompts.answers = {ok};
        QString wizardInput;
        f.prompts.onDialog = [&](QDialog& d) {
            if (auto* w = qobject_cast<ConcatPrlSplitWizard*>(&d)) wizardInput = w->inputPath;
            return 0;
        };
        EXPECT_EQ(f.app->OpenDocumentFile(f.Path("cat.prl")), nullptr);
        ASSERT_EQ(f.prompts.questions.size(), 1u);
        EXPECT_TRUE(f.prompts.questions[0].text.startsWith("This file is a Concatenated PRL file"));
        EXPECT_TRUE(f.prompts.messages.empty());
        EXPECT_EQ(f.prompts.dialogs, ok ? QStringList{"ConcatPrlSplitWizard"} : QStringList{});
        EXPECT_EQ(wizardInput, ok ? f.Path("cat.prl") : QString());
        EXPECT_EQ(f.app->Documents().size(), docs);
    }
}

TEST(RLDocFlow, WizardsJoinAndSplitAndOpenTheCheckedOutputs) {
    AppFixture f;
    ASSERT_TRUE(NewSimpleList(f, 2)->DoSave(f.Path("a.prl")));
    ASSERT_TRUE(NewSimpleList(f, 4)->DoSave(f.Path("b.prl")));

    ConcatPrlJoinWizard join;
    join.restart();
    join.InputPage()->FirstEdit()->setText(f.Path("a.prl"));
    join.InputPage()->SecondEdit()->setText(f.Path("b.prl"));
    join.next();
    join.OutputPage()->OutputEdit()->setText(f.Path("cat.prl"));
    join.next();
    EXPECT_EQ(join.currentId(), ConcatPrlJoinWizard::ResultsPageId);
    EXPECT_EQ(join.ResultsPage()->ResultText(), "Join was completed successfully.");

    struct Case {
        bool openFirst, openSecond;
        QString input;
        QString result;
        int opened;
    };
    const Case cases[] = {
        {true, true, f.Path("cat.prl"),
         "Split was completed successfully. Split file(s) are open for editing.", 2},
        {false, false, f.Path("cat.prl"), "Split was completed successfully.", 0},
        {true, true, f.Path("a.prl"), "Input file is not a valid Concatenated PRL file.", 0},
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.result.toStdString());
        const size_t docs = f.app->Documents().size();
        const QString first = f.Path(QString("first%1.prl").arg(n));
        const QString second = f.Path(QString("second%1.prl").arg(n++));
        f.prompts.onDialog = [&](QDialog& d) {
            auto* w = qobject_cast<ConcatPrlSplitWizard*>(&d);
            w->restart();
            w->next();
            w->OutputPage()->FirstEdit()->setText(first);
            w->OutputPage()->SecondEdit()->setText(second);
            w->OutputPage()->OpenFirstBox()->setChecked(c.openFirst);
            w->OutputPage()->OpenSecondBox()->setChecked(c.openSecond);
            w->next();
            EXPECT_EQ(w->ResultsPage()->ResultText(), c.result);
            return 1;
        };
        f.app->OnSplitWizard(c.input);
        EXPECT_EQ(f.app->Documents().size(), docs + static_cast<size_t>(c.opened));
    }
    EXPECT_EQ(AppTest::ReadBytes(f.Path("first0.prl")), AppTest::ReadBytes(f.Path("a.prl")));
    EXPECT_EQ(AppTest::ReadBytes(f.Path("second0.prl")), AppTest::ReadBytes(f.Path("b.prl")));
}

TEST(RLDocFlow, TextViewRendersTheGridsAndRefusesABrokenList) {
    AppFixture f;
    CRLDoc* doc = NewSimpleList(f, 4);
    QString text;
    ASSERT_TRUE(doc->RenderText(text));
    EXPECT_TRUE(text.startsWith("\r\n\t\t=============== ROAMING LIST ===============\r\n"));
    EXPECT_TRUE(text.contains("\tRoaming List Type:\t\tIS-683D\r\n"));
    f.app->MainFrame()->AddTextViewWindow(*doc);
    EXPECT_EQ(doc->Windows().size(), 2u);

    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    sys.setData(sys.index(0, 10), "", Qt::EditRole);
    f.prompts.Clear();
    EXPECT_FALSE(doc->RenderText(text));
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    // The refusal, then what the cell says is wrong.
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith(
        "The roaming list is invalid.  Could not be converted to text view.\n\nA required value is "
        "missing in column 10, row 0"))
        << f.prompts.messages[0].text.toStdString();
}

// ---- The real program, unattended --------------------------------------------------------------

int RunTarn(const QStringList& args, QString* err = nullptr) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    p.setProcessEnvironment(env);
    p.start(TARN_APP_PATH, args);
    if (!p.waitForFinished(60000)) {
        p.kill();
        return -1;
    }
    if (err) *err = QString::fromLocal8Bit(p.readAllStandardError());
    return p.exitCode();
}

TEST(RLDocFlow, CommandLineTurnsBinaryIntoTextAndBack) {
    AppFixture f;
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", f.Path("in.prl")));
    QString err;
    ASSERT_EQ(RunTarn({"-f", f.Path("in.prl"), f.Path("out.txt")}, &err), 0) << err.toStdString();
    const auto text = AppTest::ReadBytes(f.Path("out.txt"));
    const std::string s(text.begin(), text.end());
    EXPECT_EQ(s.rfind("\r\n\t\t=============== ROAMING LIST", 0), 0u);
    EXPECT_NE(s.find("\tRoaming List Type:\t\tIS-683E\r\n"), std::string::npos);

    ASSERT_EQ(RunTarn({"/u", f.Path("out.txt"), f.Path("back.prl")}, &err), 0) << err.toStdString();
    EXPECT_EQ(AppTest::ReadBytes(f.Path("back.prl")), AppTest::ReadBytes(f.Path("in.prl")));

    // A text list given to -f is not a binary list.
    EXPECT_EQ(RunTarn({"-f", f.Path("out.txt"), f.Path("x.txt")}, &err), 1);
    EXPECT_TRUE(err.contains(Msg(61457)));
}

}  // namespace
}  // namespace Tarn
