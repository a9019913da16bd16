// Start-up of the editor: the command line, the template chosen for a path, the New commands,
// help texts and the stored window placement.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPrinter>
#include <QProcess>
#include <QSettings>

#include "app/CommandLineInfoEx.h"
#include "app/MainFrame.h"
#include "app/RLDoc.h"
#include "foundation/MessageTable.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

TEST(CommandLine, ParsesFlagsArgumentsAndFileName) {
    struct Case {
        std::vector<std::string> params;
        std::string option;  // the option start-up picks ("" for none, "!" for a failure)
        std::string first;
        std::string second;
    };
    const Case cases[] = {
        {{"-f", "in.prl", "out.txt"}, "f", "in.prl", "out.txt"},
        {{"/u", "in.txt", "out.prl"}, "u", "in.txt", "out.prl"},
        // "f" wins over "u" whatever the order on the line.
        {{"-u", "a", "b", "-f", "c", "d"}, "f", "c", "d"},
        {{"-c", "a.mspl", "b.txt"}, "c", "a.mspl", "b.txt"},
        // Absolute paths are file names, not flags.
        {{"/tmp/list.prl"}, "", "/tmp/list.prl", ""},
        // The last plain parameter is the file to open.
        {{"one.prl", "two.prl"}, "", "two.prl", ""},
        // A later flag starts a new, empty list: -f keeps only what followed it.
        {{"-f", "a", "-x", "b", "c"}, "!", "", ""},
        {{"-f", "only.prl"}, "!", "", ""},
        {{"-u"}, "!", "", ""},
        {{}, "", "", ""},
    };
    for (const Case& c : cases) {
        CCommandLineInfoEx info;
        info.Parse(c.params);
        const StartupRequest req = DecideStartup(info);
        SCOPED_TRACE(c.params.empty() ? std::string("(none)") : c.params.front());
        if (c.option == "!") {
            EXPECT_EQ(req.mode, StartupRequest::Mode::Fail);
            EXPECT_FALSE(req.error.empty());
            continue;
        }
        EXPECT_EQ(req.mode, c.option.empty() ? StartupRequest::Mode::Interactive
                                             : StartupRequest::Mode::CommandLine);
        EXPECT_EQ(req.option, c.option);
        EXPECT_EQ(req.first, c.first);
        EXPECT_EQ(req.second, c.second);
    }
}

TEST(CommandLine, KindOfConversionFromEitherArgument) {
    EXPECT_EQ(CommandLineKind("a.prl", "b.txt"), FileKind::RoamingList);
    EXPECT_EQ(CommandLineKind("a.txt", "b.mspl"), FileKind::Mspl);
    EXPECT_EQ(CommandLineKind("a.Bst3Gpp", "b.txt"), FileKind::Bst3Gpp);
    // Only the spellings searched for count: upper-case BST is a roaming list here.
    EXPECT_EQ(CommandLineKind("a.BST3GPP", "b.txt"), FileKind::RoamingList);
    // ".tot" is looked for before ".mlpl", in either argument.
    EXPECT_EQ(CommandLineKind("a.mlpl", "b.tot"), FileKind::TechOrder);
    EXPECT_EQ(CommandLineKind("x.ehplmn", "y.txt"), FileKind::Plmn);
    EXPECT_EQ(CommandLineKind("x.txt", "y.laf"), FileKind::Laf);
}

// ---- The real program, with no display --------------------------------------------------------

struct ProcRun {
    int exitCode = -1;
    QString err;
    bool finished = false;
};

ProcRun RunTarn(const QStringList& args) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    env.insert("LC_ALL", "C");
    p.setProcessEnvironment(env);
    p.start(TARN_APP_PATH, args);
    ProcRun r;
    r.finished = p.waitForFinished(60000);
    if (!r.finished) p.kill();
    r.exitCode = p.exitCode();
    r.err = QString::fromLocal8Bit(p.readAllStandardError());
    return r;
}

TEST(CommandLineProgram, FailsWithoutAWindowOnBadCommandLines) {
    QTemporaryDir dir;
    const QString bad = dir.filePath("bad.prl");
    AppTest::WriteBytes(bad, {1, 2, 3, 4, 5, 6});
    const QString out = dir.filePath("out.txt");
    struct Case {
        QStringList args;
        int exitCode;
        QString stderrHas;
    };
    const Case cases[] = {
        {{"-f", "single.prl"}, 2, "two file arguments"},
        {{"-f", bad, out}, 1, "The Roaming List file is not a recognized format."},
        {{"-f", dir.filePath("missing.prl"), out},
         1,
         "The Roaming List file is not a recognized format."},
        {{"-c", dir.filePath("a.mspl"), out}, 1, "No such file"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const ProcRun r = RunTarn(c.args);
        ASSERT_TRUE(r.finished) << "the program waited instead of ending by itself";
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_TRUE(r.err.contains(c.stderrHas)) << r.err.toStdString();
        EXPECT_FALSE(QFile::exists(out));
    }
}

TEST(CommandLineProgram, OptionCDoesNothingForRoamingLists) {
    QTemporaryDir dir;
    const QString in = dir.filePath("in.prl");
    AppTest::WriteBytes(in, AppTest::EmptyListBytes(5));
    const ProcRun r = RunTarn({"/c", in, dir.filePath("out.txt")});
    ASSERT_TRUE(r.finished);
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_FALSE(QFile::exists(dir.filePath("out.txt")));
}

// ---- Templates and the choice of template -----------------------------------------------------

TEST(Templates, RegisteredInOrderWithTheirStrings) {
    AppFixture f;
    const unsigned ids[] = {129, 199, 207, 222, 209, 210, 224, 234};
    for (int n = 1; n <= 8; ++n) {
        ASSERT_NE(f.app->Template(n), nullptr);
        EXPECT_EQ(f.app->Template(n)->ResourceId(), ids[n - 1]);
    }
    EXPECT_EQ(f.app->Template(9), nullptr);
    EXPECT_EQ(f.app->Template(1)->GetDocString(DocString::DocName), "Untitled-Prl");
    EXPECT_EQ(f.app->Template(1)->GetDocString(DocString::FilterName), "Tessary Files(*.prl)");
    EXPECT_EQ(f.app->Template(2)->GetDocString(DocString::DocName), "Untitled ");
    EXPECT_EQ(f.app->Template(4)->GetDocString(DocString::DocName), "Untitled-Bst3Gpp ");
    EXPECT_EQ(f.app->Template(6)->GetDocString(DocString::FilterExt), ".ehplmn;.oplmn;.uplmn");
    EXPECT_EQ(f.app->Template(8)->GetDocString(DocString::RegFileTypeName), "Tessary LAF Document");
}

TEST(Templates, RuleAAndRuleBOnQuirkyPaths) {
    AppFixture f;
    struct Case {
        const char* path;
        int ruleA;
        int ruleB;
    };
    const Case cases[] = {
        {"", 1, 1},
        {"list.prl", 1, 1},
        {"list.PRL", 1, 1},
        {"list.rl5", 1, 1},
        {"list.bin", 1, 1},
        {"list.hin", 0, 0},
        {"list.hrl", 0, 0},
        {"noextension", 0, 0},
        {"list.txt", 2, 2},
        // Mixed case misses every substring of rule B and still opens as MSPL through rule A.
        {"x.MsPl", 3, 3},
        {"x.mspl", 3, 3},
        {"x.Bst3Gpp", 4, 4},
        {"x.BST3GPP", 4, 4},
        {"x.mlpl", 5, 5},
        {"x.UPLMN", 6, 6},
        {"x.tot", 7, 7},
        // "laf" is left out of rule A on purpose; rule B reaches it by its extension.
        {"x.laf", 0, 8},
        {"x.LAF", 0, 8},
        // Rule B searches the whole path, folders included.
        {"archive.tot/list.prl", 1, 7},
        {"dir.mspl/list.txt", 2, 3},
        {"a.mlpl.prl", 1, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(f.app->TemplateNumber(f.app->TemplateByExtension(c.path)), c.ruleA);
        EXPECT_EQ(f.app->TemplateNumber(f.app->TemplateForOpen(c.path)), c.ruleB);
    }
}

TEST(Templates, FileOpenUsesItsFilterAndFindsNoTemplateForHin) {
    AppFixture f;
    const QString hin = f.Path("list.hin");
    AppTest::WriteBytes(hin, AppTest::EmptyListBytes(5));
    f.prompts.Clear();
    f.prompts.fileAnswers.push_back(hin);
    const size_t before = f.app->Documents().size();
    f.app->OnFileOpen();
    ASSERT_EQ(f.prompts.openDialogs.size(), 1u);
    EXPECT_EQ(f.prompts.openDialogs[0].filter, CTessaryApp::OpenFilter());
    EXPECT_EQ(f.prompts.openDialogs[0].defaultSuffix, "prl");
    EXPECT_TRUE(f.prompts.openDialogs[0].fileMustExist);
    EXPECT_EQ(f.app->Documents().size(), before);
    EXPECT_EQ(f.prompts.MessageTexts(),
              QStringList{"The Roaming List file is not a recognized format."});
    EXPECT_TRUE(
        CTessaryApp::OpenFilter().startsWith("Roaming Lists (*.prl,*.rl*,*.bin,*.hin,*.hrl)|"));
    EXPECT_TRUE(CTessaryApp::OpenFilter().endsWith("|All Files (*.*)|*.*||"));
}

TEST(Templates, DroppedFilesOpenThroughRuleB) {
    AppFixture f;
    AppTest::WriteBytes(f.Path("dropped.prl"), AppTest::EmptyListBytes(3));
    AppTest::WriteBytes(f.Path("dropped.hin"), AppTest::EmptyListBytes(3));
    const size_t before = f.app->Documents().size();
    f.prompts.Clear();
    QMimeData mime;
    mime.setUrls(
        {QUrl::fromLocalFile(f.Path("dropped.prl")), QUrl::fromLocalFile(f.Path("dropped.hin"))});
    // A drop reaches the window a drag entered and was accepted by.
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(f.app->MainFrame(), &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(f.app->MainFrame(), &drop);
    ASSERT_EQ(f.app->Documents().size(), before + 1)
        << f.prompts.MessageTexts().join("|").toStdString();
    EXPECT_EQ(f.app->Documents().back()->Title(), "dropped.prl");
    // The list's own notices, then the refusal of the file no template takes.
    EXPECT_EQ(f.prompts.MessageTexts().back(), "The Roaming List file is not a recognized format.");
    EXPECT_EQ(f.app->RecentFiles().front(), f.Path("dropped.prl"));
}

TEST(Templates, MmssKindsMakeTheirDocuments) {
    AppFixture f;
    const size_t before = f.app->Documents().size();
    f.prompts.Clear();
    f.app->OnNewPlmn(2);
    EXPECT_EQ(f.app->PlmnKind(), 2);
    f.app->OnNewOfTemplate(3);
    EXPECT_EQ(f.app->Documents().size(), before + 2);
    EXPECT_TRUE(f.prompts.messages.empty());
}

// ---- New commands and the current version ------------------------------------------------------

TEST(NewCommands, SetTheVersionAndKeepTheCachedObjectOnlyForTheSameVersion) {
    AppFixture f;
    // The untitled list of start-up sees no chosen version and becomes IS-683E.
    auto* first = qobject_cast<CRLDoc*>(f.app->Documents().front());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->Version(), 5);
    EXPECT_EQ(first->Title(), "Untitled-Prl1");

    f.app->OnNewRoamingList(1);
    const CRLClassFactory* cached = CachedVersionFactory();
    ASSERT_NE(cached, nullptr);
    f.app->OnNewRoamingList(1);
    EXPECT_EQ(CachedVersionFactory(), cached);
    EXPECT_EQ(qobject_cast<CRLDoc*>(f.app->Documents().back())->Version(), 1);

    ChangeCurrentVersion(2);
    EXPECT_EQ(CachedVersionFactory(), nullptr);
    f.app->OnNewRoamingList(3);
    EXPECT_EQ(GetCurrentVersion(), 3);
    EXPECT_EQ(CurrentVersionFactory().GetVersion(), 3);
    EXPECT_EQ(qobject_cast<CRLDoc*>(f.app->Documents().back())->Version(), 3);

    // Ctrl+N is always a new IS-683E list, unless the text mode asks for the text form.
    f.app->OnFileNew();
    EXPECT_EQ(GetCurrentVersion(), 5);
    EXPECT_FALSE(qobject_cast<CRLDoc*>(f.app->Documents().back())->IsTextView());
    f.app->SetTextMode(true);
    f.app->OnFileNew();
    EXPECT_TRUE(qobject_cast<CRLDoc*>(f.app->Documents().back())->IsTextView());
}

TEST(NewCommands, MenuShortcutsAndPromptsFollowTheCommandTable) {
    AppFixture f;
    CMainFrame* frame = f.app->MainFrame();
    struct Case {
        int id;
        const char* key;
        const char* prompt;
    };
    const Case cases[] = {
        {Cmd::NewIS683E, "Ctrl+1", "Create a new IS-683E roaming list file."},
        {Cmd::NewIS683A, "Ctrl+5", "Create a new IS-683A roaming list file."},
        {Cmd::NewMspl, "Alt+S", "Creates a new MSPL File"},
        {Cmd::NewEhplmn, "Alt+E", "Creates a new EHPLMN File"},
        {Cmd::NewLteAvailable, "Alt+A", "Creates a new LTE Available File"},
        {Cmd::TextView, "Ctrl+T", "Get a text view of this roaming list"},
        {Cmd::FileNew, "Ctrl+N", nullptr},
        {Cmd::EditUndo, "Ctrl+Z", nullptr},
        {Cmd::EditRedo, "Ctrl+Y", nullptr},
        {Cmd::SplitConcatPrl, nullptr, "Split a Concatenated PRL file"},
    };
    for (const Case& c : cases) {
        QAction* a = frame->Action(c.id);
        ASSERT_NE(a, nullptr) << c.id;
        if (c.key) {
            EXPECT_EQ(a->shortcut().toString(), c.key) << c.id;
        }
        if (c.prompt) {
            EXPECT_EQ(a->statusTip(), c.prompt) << c.id;
        }
    }
}

// ---- Help ---------------------------------------------------------------------------------------

TEST(Help, TopicsVersionHistoryAndAbout) {
    AppFixture f;
    f.prompts.Clear();
    f.app->OnHelpTopics();
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith("Tarn User Guide can be downloaded at "));
    EXPECT_TRUE(f.prompts.messages[0].text.endsWith(" \n"));
    EXPECT_EQ(f.prompts.messages[0].icon, MsgIcon::Information);

    EXPECT_EQ(CTessaryApp::ReadmePath("/opt/tarn/bin/tarn"), "/opt/tarn/Documents/readme.txt");
    f.prompts.Clear();
    f.app->OnVersionHistory();
    ASSERT_EQ(f.prompts.messages.size(), 1u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith("Help File Launch Failed. "));
    EXPECT_TRUE(f.prompts.messages[0].text.endsWith("Documents/readme.txt could not be launched."));

    QString launched;
    f.app->SetFileLauncher([&](const QString& p) {
        launched = p;
        return true;
    });
    f.prompts.Clear();
    f.app->OnVersionHistory();
    EXPECT_TRUE(f.prompts.messages.empty());
    EXPECT_TRUE(launched.endsWith("/Documents/readme.txt"));

    QString aboutText;
    f.prompts.onDialog = [&](QDialog& d) {
        for (QLabel* l : d.findChildren<QLabel*>()) aboutText += l->text() + "\n";
        return 1;
    };
    f.app->OnAppAbout();
    EXPECT_TRUE(aboutText.startsWith("Tarn 2.7 Build 474\n"));
}

// ---- Window placement ---------------------------------------------------------------------------

TEST(WindowPlacement, RestoredRectangleIsClampedOnTheLeftAndTopOnly) {
    const QSize screen(1920, 1080);
    const QSize icon(32, 32);
    struct Case {
        WindowPlacement stored;
        std::optional<QRect> expected;
    };
    const Case cases[] = {
        {{}, std::nullopt},
        {{0, 1, 10, 20, -1, 600}, std::nullopt},
        {{0, 1, 100, 50, 900, 650}, QRect(QPoint(100, 50), QPoint(899, 649))},
        // Off-screen to the right: pulled back so an icon's width stays visible.
        {{0, 1, 5000, 50, 5800, 650}, QRect(QPoint(1888, 50), QPoint(5799, 649))},
        {{0, 1, 10, 3000, 800, 3600}, QRect(QPoint(10, 1048), QPoint(799, 3599))},
    };
    for (const Case& c : cases) {
        const auto got = RestoredRect(c.stored, screen, icon);
        ASSERT_EQ(got.has_value(), c.expected.has_value());
        if (got) {
            EXPECT_EQ(*got, *c.expected);
        }
    }
}

TEST(WindowPlacement, StoredUnderTheCompanyKey) {
    AppFixture f;
    QSettings().remove("Window Placement");
    const WindowPlacement none = LoadWindowPlacement();
    EXPECT_EQ(none.x1, -1);
    EXPECT_EQ(none.showCmd, -1);
    SaveWindowPlacement({0, 3, 10, 20, 810, 620});
    QSettings settings("Halvane", "Tarn");
    EXPECT_EQ(settings.value("Window Placement/showCmd").toInt(), 3);
    EXPECT_EQ(settings.value("Window Placement/x2").toInt(), 810);
    const WindowPlacement back = LoadWindowPlacement();
    EXPECT_EQ(back.y2, 620);
    EXPECT_EQ(back.flags, 0);
}

TEST(Printing, LongTextsRunOverSeveralPages) {
    QTemporaryDir dir;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath("out.pdf"));
    QString text;
    for (int i = 0; i < 300; ++i) text += QString("\t%1\t5\tA\t\r\n").arg(i);
    PrintTextPages(printer, "list.prl", text, QDateTime(QDate(2024, 1, 2), QTime(3, 4)));
    const QByteArray pdf = [&] {
        QFile f(dir.filePath("out.pdf"));
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }();
    EXPECT_GE(pdf.count("/Type /Page\n") + pdf.count("/Type /Page\r") + pdf.count("/Type /Page "),
              2)
        << "300 lines fit no single page";
}

TEST(Printing, HeaderDateAndTime) {
    EXPECT_EQ(PrintDateText(QDateTime(QDate(2024, 3, 7), QTime(9, 5))), "03/07/2024 09:05");
    EXPECT_EQ(PrintDateText(QDateTime(QDate(1999, 12, 31), QTime(23, 59))), "12/31/1999 23:59");
}

TEST(RecentFiles, KeepsTheLastFour) {
    AppFixture f;
    QSettings().remove("Recent File List");
    for (const char* p : {"/a.prl", "/b.prl", "/c.prl", "/d.prl", "/e.prl", "/c.prl"})
        f.app->AddToRecentFiles(p);
    EXPECT_EQ(f.app->RecentFiles(), (QStringList{"/c.prl", "/e.prl", "/d.prl", "/b.prl"}));
}

}  // namespace
}  // namespace Tarn
