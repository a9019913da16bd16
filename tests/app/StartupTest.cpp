// Start-up of the editor: the command line and the real program run unattended, the template
// chosen for a path, the New commands, help, the stored window placement, printing and the
// recent files.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPrinter>
#include <QSettings>

#include "app/CommandLineInfoEx.h"
#include "app/RLDoc.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;
using AppTest::Text;

TEST(CommandLine, ParsesFlagsArgumentsAndFileName) {
    struct Case {
        std::vector<std::string> params;
        std::string option;  // the option start-up picks ("" for none, "!" for a failure)
        std::string first, second;
    };
    const Case cases[] = {
        {{"-f", "in.prl", "out.txt"}, "f", "in.prl", "out.txt"},
        {{"/u", "in.txt", "out.prl"}, "u", "in.txt", "out.prl"},
        // "f" wins over "u" whatever the order on the line.
        {{"-u", "a", "b", "-f", "c", "d"}, "f", "c", "d"},
        // Absolute paths are file names, not flags, and so is a lone dash.
        {{"/tmp/list.prl"}, "", "/tmp/list.prl", ""},
        {{"-"}, "", "-", ""},
        // The last plain parameter is the file to open.
        {{"one.prl", "two.prl"}, "", "two.prl", ""},
        // A later flag starts a new, empty list: -f keeps only what followed it.
        {{"-f", "a", "-x", "b", "c"}, "!", "", ""},
        {{"-f", "only.prl"}, "!", "", ""},
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
    EXPECT_EQ(CommandLineKind("a.txt", "b.mspl"), FileKind::Mspl);
    // Only the spellings searched for count: upper-case BST is a roaming list here.
    EXPECT_EQ(CommandLineKind("a.Bst3Gpp", "b.txt"), FileKind::Bst3Gpp);
    EXPECT_EQ(CommandLineKind("a.BST3GPP", "b.txt"), FileKind::RoamingList);
    // ".tot" is looked for before ".mlpl", in either argument.
    EXPECT_EQ(CommandLineKind("a.mlpl", "b.tot"), FileKind::TechOrder);
}

// The real program, each run in turn (a later run may read what an earlier one wrote): it does
// the conversion and ends, or fails on stderr and writes nothing, but never waits for a window.
TEST(CommandLineProgram, RunsUnattended) {
    QTemporaryDir dir;
    const QString data = TARN_EXAMPLES_DIR "/../tests/data/mmss/";
    const QString examples = TARN_EXAMPLES_DIR "/";
    AppTest::WriteBytes(dir.filePath("bad.prl"), {1, 2, 3, 4, 5, 6});
    AppTest::WriteBytes(dir.filePath("empty.prl"), AppTest::EmptyListBytes(5));
    QFile repeat(dir.filePath("repeat.tot"));  // one technology twice
    ASSERT_TRUE(repeat.open(QIODevice::WriteOnly));
    repeat.write(QByteArray::fromHex("000500020909"));
    repeat.close();
    const struct {
        QStringList args;
        int exitCode;
        QString output;    // in `dir`; written only when the run succeeds
        QString expected;  // the file it must equal, or what stderr must say on failure
    } cases[] = {
        {{"-f", "single.prl"}, 2, "", "two file arguments"},
        {{"-f", "bad.prl", "out.txt"}, 1, "out.txt", Text(Msg::NotRecognizedFormat)},
        {{"-c", "missing.mspl", "out.txt"}, 1, "out.txt", "No such file"},
        // -c does nothing for a roaming list.
        {{"/c", "empty.prl", "out.txt"}, 0, "out.txt", ""},
        {{"-f", examples + "example-is683e.prl", "e.txt"}, 0, "e.txt", examples + "example-is683e.txt"},
        {{"/u", "e.txt", "e.prl"}, 0, "e.prl", examples + "example-is683e.prl"},
        // A text list given to -f is not a binary list.
        {{"-f", "e.txt", "x.txt"}, 1, "x.txt", Text(Msg::NotRecognizedFormat)},
        {{"-f", data + "sample.mspl", "mspl.txt"}, 0, "mspl.txt", data + "sample.mspl.txt"},
        {{"-c", data + "sample.Bst3Gpp", "c.Bst3Gpp"}, 0, "c.Bst3Gpp", data + "sample.Bst3Gpp"},
        {{"-c", "repeat.tot", "r.tot"}, 1, "r.tot", Text(231)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        QStringList args;
        for (const QString& a : c.args) args << (a.startsWith('/') || a.startsWith('-') ? a : dir.filePath(a));
        const AppTest::ProgramRun r = AppTest::RunTarn(args);
        ASSERT_TRUE(r.finished) << "the program waited instead of ending by itself";
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        if (c.exitCode == 0 && !c.expected.isEmpty()) {
            EXPECT_EQ(AppTest::ReadBytes(dir.filePath(c.output)), AppTest::ReadBytes(c.expected));
        } else {
            EXPECT_TRUE(r.err.contains(c.expected)) << r.err.toStdString();
            if (!c.output.isEmpty()) {
                EXPECT_FALSE(QFile::exists(dir.filePath(c.output)));
            }
        }
    }
}

// ---- Templates and the choice of template -----------------------------------------------------

TEST(Templates, FileOpenAndDropRefuseWhatNoTemplateTakes) {
    AppFixture f;
    AppTest::WriteBytes(f.Path("dropped.prl"), AppTest::EmptyListBytes(3));
    AppTest::WriteBytes(f.Path("list.hin"), AppTest::EmptyListBytes(3));
    const size_t before = f.app->Documents().size();
    f.prompts.Clear();
    f.prompts.fileAnswers.push_back(f.Path("list.hin"));
    f.app->OnFileOpen();
    ASSERT_EQ(f.prompts.openDialogs.size(), 1u);
    EXPECT_EQ(f.prompts.openDialogs[0].filter, CTessaryApp::OpenFilter());
    EXPECT_TRUE(f.prompts.openDialogs[0].fileMustExist);
    EXPECT_EQ(f.prompts.MessageTexts(), QStringList{Text(Msg::NotRecognizedFormat)});
    EXPECT_EQ(f.app->Documents().size(), before);

    // A drop reaches the window a drag entered and was accepted by; files open through rule B.
    f.prompts.Clear();
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(f.Path("dropped.prl")), QUrl::fromLocalFile(f.Path("list.hin"))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(f.app->MainFrame(), &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(f.app->MainFrame(), &drop);
    ASSERT_EQ(f.app->Documents().size(), before + 1);
    EXPECT_EQ(f.app->Documents().back()->Title(), "dropped.prl");
    EXPECT_EQ(f.prompts.MessageTexts().back(), Text(Msg::NotRecognizedFormat));
    EXPECT_EQ(f.app->RecentFiles().front(), f.Path("dropped.prl"));
}

// ---- New commands and the current version ------------------------------------------------------

TEST(NewCommands, SetTheVersionOfTheNewList) {
    AppFixture f;
    // The untitled list of start-up sees no chosen version and becomes IS-683E.
    auto* first = qobject_cast<CRLDoc*>(f.app->Documents().front());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->Version(), 5);
    EXPECT_EQ(first->Title(), "Untitled-Prl1");
    for (int version : {1, 3}) {
        f.app->OnNewRoamingList(version);
        EXPECT_EQ(GetCurrentVersion(), version);
        EXPECT_EQ(qobject_cast<CRLDoc*>(f.app->Documents().back())->Version(), version);
    }
    // Ctrl+N is always a new IS-683E list, unless the text mode asks for the text form.
    f.app->OnFileNew();
    EXPECT_EQ(GetCurrentVersion(), 5);
    EXPECT_FALSE(qobject_cast<CRLDoc*>(f.app->Documents().back())->IsTextView());
    f.app->SetTextMode(true);
    f.app->OnFileNew();
    EXPECT_TRUE(qobject_cast<CRLDoc*>(f.app->Documents().back())->IsTextView());
}

// ---- Help, window placement, printing, recent files --------------------------------------------

TEST(Help, TopicsVersionHistoryAndAbout) {
    AppFixture f;
    f.prompts.Clear();
    f.app->OnHelpTopics();
    f.app->OnVersionHistory();  // the launcher of the fixture opens nothing
    ASSERT_EQ(f.prompts.messages.size(), 2u);
    EXPECT_TRUE(f.prompts.messages[0].text.startsWith("Tarn User Guide can be downloaded at "));
    EXPECT_TRUE(f.prompts.messages[1].text.startsWith("Help File Launch Failed. "));

    QString aboutText;
    f.prompts.onDialog = [&](QDialog& d) {
        for (QLabel* l : d.findChildren<QLabel*>()) aboutText += l->text() + "\n";
        return 1;
    };
    f.app->OnAppAbout();
    EXPECT_TRUE(aboutText.startsWith("Tarn 2.7 Build 474\n"));
}

TEST(WindowPlacement, RestoredRectangleIsClampedOnTheLeftAndTopOnly) {
    struct Case {
        WindowPlacement stored;
        std::optional<QRect> expected;
    };
    const Case cases[] = {
        {{}, std::nullopt},
        {{0, 1, 10, 20, -1, 600}, std::nullopt},
        {{0, 1, 100, 50, 900, 650}, QRect(QPoint(100, 50), QPoint(899, 649))},
        // An icon's width and height stay on screen: 1888 = 1920 - 32 is the last left edge kept.
        {{0, 1, 1888, 1048, 2000, 1100}, QRect(QPoint(1888, 1048), QPoint(1999, 1099))},
        {{0, 1, 1889, 1049, 2000, 1100}, QRect(QPoint(1888, 1048), QPoint(1999, 1099))},
        {{0, 1, 5000, 50, 5800, 650}, QRect(QPoint(1888, 50), QPoint(5799, 649))},
    };
    for (const Case& c : cases) {
        const auto got = RestoredRect(c.stored, QSize(1920, 1080), QSize(32, 32));
        ASSERT_EQ(got.has_value(), c.expected.has_value());
        if (got) {
            EXPECT_EQ(*got, *c.expected);
        }
    }
    AppFixture f;
    QSettings().remove("Window Placement");
    EXPECT_EQ(LoadWindowPlacement().x1, -1);
    SaveWindowPlacement({0, 3, 10, 20, 810, 620});
    EXPECT_EQ(QSettings("Halvane", "Tarn").value("Window Placement/x2").toInt(), 810);
    EXPECT_EQ(LoadWindowPlacement().y2, 620);
}

TEST(Printing, LongTextsRunOverSeveralPagesUnderADatedHeader) {
    EXPECT_EQ(PrintDateText(QDateTime(QDate(2024, 3, 7), QTime(9, 5))), "03/07/2024 09:05");
    QTemporaryDir dir;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath("out.pdf"));
    QString text;
    for (int i = 0; i < 300; ++i) text += QString("\t%1\t5\tA\t\r\n").arg(i);
    PrintTextPages(printer, "list.prl", text, QDateTime(QDate(2024, 1, 2), QTime(3, 4)));
    QFile pdf(dir.filePath("out.pdf"));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QByteArray bytes = pdf.readAll();
    EXPECT_GE(bytes.count("/Type /Page\n") + bytes.count("/Type /Page\r") + bytes.count("/Type /Page "), 2)
        << "300 lines fit no single page";
}

TEST(RecentFiles, KeepsTheLastFour) {
    AppFixture f;
    QSettings().remove("Recent File List");
    for (const char* p : {"/a.prl", "/b.prl", "/c.prl", "/d.prl"}) f.app->AddToRecentFiles(p);
    EXPECT_EQ(f.app->RecentFiles(), (QStringList{"/d.prl", "/c.prl", "/b.prl", "/a.prl"}));
    for (const char* p : {"/e.prl", "/c.prl"}) f.app->AddToRecentFiles(p);
    EXPECT_EQ(f.app->RecentFiles(), (QStringList{"/c.prl", "/e.prl", "/d.prl", "/b.prl"}));
}

}  // namespace
}  // namespace Tarn
