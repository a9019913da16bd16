// Recovery copies: written after an edit and a pause, byte for byte what Save writes, gone after a
// save or a close without saving; left by a session that died, offered at the next start and
// restored as modified documents; never taken from a running editor, never opened when they do
// not read; and never written by the unattended conversions.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSettings>
#include <QTableWidget>
#include <QTest>

#include "app/RLDoc.h"
#include "app/Recovery.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

// Each test gets its own recovery folder and a one-second interval.
class Recovery : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_STATE_HOME", state_.path().toLocal8Bit());
        QSettings().setValue("Recovery/IntervalSeconds", 1);
    }
    void TearDown() override { QSettings().remove("Recovery/IntervalSeconds"); }

    static QStringList Files(const QString& folder = RecoveryManager::Folder()) {
        return QDir(folder).entryList(QDir::Files);
    }
    static QStringList Copies() { return Files().filter(QRegularExpression("\\.prl$")); }

    // A copy and its note as a session that is gone would have left them.
    static void LeaveCopy(const QString& name, const std::vector<uint8_t>& bytes,
                          const QString& original, const QString& session = "4242-1") {
        QDir().mkpath(RecoveryManager::Folder());
        AppTest::WriteBytes(RecoveryManager::Folder() + "/" + name, bytes);
        QJsonObject note{{"original", original},   {"title", QFileInfo(original).fileName()},
                         {"kind", "Roaming List"}, {"time", "2026-11-24T10:00:00Z"},
                         {"session", session},     {"copy", name}};
        QFile f(RecoveryManager::Folder() + "/" + name + ".json");
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QJsonDocument(note).toJson());
    }

    QTemporaryDir state_;
};

void EditSid(CRLDoc& doc, int row, const char* sid) {
    GridModel& grid = doc.Grid(CRLDoc::Table::Sys);
    grid.setData(grid.index(row, 10), sid, Qt::EditRole);
}

TEST_F(Recovery, CopyFollowsTheEditsAndGoesWithSaveOrClose) {
    AppFixture f;
    ASSERT_NE(f.app->Recovery(), nullptr);
    const QString path = f.Path("list.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", path));
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(path));
    ASSERT_NE(doc, nullptr);
    EXPECT_TRUE(Copies().isEmpty());

    EditSid(*doc, 6, "23");
    EXPECT_TRUE(Copies().isEmpty());  // never on the keystroke itself
    const QString copy = f.app->Recovery()->CopyPath(*doc);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(copy); }, 5000));
    EXPECT_TRUE(QFile::exists(copy + ".json"));
    const auto copied = AppTest::ReadBytes(copy);
    EXPECT_EQ(AppTest::ReadBytes(path),
              AppTest::ReadBytes(TARN_EXAMPLES_DIR "/example-is683e.prl"));  // untouched

    // The copy is what Save writes; saving takes it away.
    ASSERT_TRUE(doc->DoFileSave());
    EXPECT_EQ(copied, AppTest::ReadBytes(path));
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(QFile::exists(copy + ".json"));

    // Edited again and closed without saving: the copy goes too.
    EditSid(*doc, 6, "24");
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(copy); }, 5000));
    f.prompts.saveAnswer = Answer::No;
    doc->Windows().front()->close();
    EXPECT_FALSE(QFile::exists(copy));
}

TEST_F(Recovery, TwoFilesOfOneNameKeepTwoCopies) {
    AppFixture f;
    std::vector<CRLDoc*> docs;
    for (const QString sub : {"a", "b"}) {
        QDir(f.dir.path()).mkdir(sub);
        const QString path = f.Path(sub + "/list.prl");
        ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", path));
        docs.push_back(qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(path)));
        ASSERT_NE(docs.back(), nullptr);
    }
    EditSid(*docs[0], 6, "30");
    EditSid(*docs[1], 6, "31");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Copies().size() == 2; }, 5000))
        << Copies().join(", ").toStdString();
    EXPECT_NE(f.app->Recovery()->CopyPath(*docs[0]), f.app->Recovery()->CopyPath(*docs[1]));
}

TEST_F(Recovery, LeftOverCopiesAreOfferedAndRestored) {
    // A list whose SID 22 became 77, left by a session that died, and a truncated copy.
    const QString original = state_.filePath("work/list.prl");
    QDir().mkpath(state_.filePath("work"));
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", original));
    std::vector<uint8_t> edited;
    {
        AppFixture writer;
        auto* doc = qobject_cast<CRLDoc*>(writer.app->OpenDocumentFile(original));
        ASSERT_NE(doc, nullptr);
        EditSid(*doc, 6, "77");
        QString error;
        ASSERT_TRUE(doc->WriteRecoveryCopy(state_.filePath("edited.prl"), error))
            << error.toStdString();
        edited = AppTest::ReadBytes(state_.filePath("edited.prl"));
        writer.prompts.saveAnswer = Answer::No;
    }
    LeaveCopy("4242-1-1.prl", edited, original);
    std::vector<uint8_t> truncated(edited.begin(),
                                   edited.begin() + static_cast<long>(edited.size() / 2));
    LeaveCopy("4242-1-2.prl", truncated, state_.filePath("work/other.prl"));
    // A running editor's copy is not this start's to offer.
    QLockFile running(RecoveryManager::Folder() + "/live-1.lock");
    ASSERT_TRUE(running.tryLock(0));
    LeaveCopy("live-1-1.prl", edited, state_.filePath("work/live.prl"), "live-1");

    std::vector<QString> offered, problems;
    const auto onDialog = [&](QDialog& dialog) {
        auto* d = qobject_cast<RecoveryDialog*>(&dialog);
        if (!d) return int(QDialog::Rejected);
        for (int row = 0; row < d->Copies()->rowCount(); ++row) {
            offered.push_back(d->Copies()->item(row, 0)->text());
            problems.push_back(d->Copies()->item(row, 3)->text());
        }
        return int(QDialog::Accepted);
    };
    AppFixture f({}, [&](AppTest::FakePrompts& p) { p.onDialog = onDialog; });
    EXPECT_EQ(offered, (std::vector<QString>{"list.prl", "other.prl"}));
    ASSERT_EQ(problems.size(), 2u);
    EXPECT_TRUE(problems[1].startsWith("cannot be recovered")) << problems[1].toStdString();

    // The readable copy opens as a modified document of the original's name holding the edit;
    // the file on disk is untouched until the user saves.
    std::vector<CRLDoc*> lists;
    for (CDocument* d : f.app->Documents())
        if (auto* l = qobject_cast<CRLDoc*>(d)) lists.push_back(l);
    ASSERT_EQ(lists.size(), 1u);
    EXPECT_EQ(lists[0]->Title(), "list.prl");
    EXPECT_TRUE(lists[0]->IsModified());
    GridModel& grid = lists[0]->Grid(CRLDoc::Table::Sys);
    EXPECT_EQ(grid.data(grid.index(6, 10), Qt::DisplayRole).toString(), "77");
    EXPECT_EQ(AppTest::ReadBytes(original),
              AppTest::ReadBytes(TARN_EXAMPLES_DIR "/example-is683e.prl"));
    ASSERT_TRUE(lists[0]->DoFileSave());
    EXPECT_EQ(AppTest::ReadBytes(original), edited);

    // The offered copies are gone from the folder, the broken one set aside, the live one kept.
    EXPECT_FALSE(QFile::exists(RecoveryManager::Folder() + "/4242-1-1.prl"));
    EXPECT_TRUE(QFile::exists(RecoveryManager::Folder() + "/unreadable/4242-1-2.prl"));
    EXPECT_TRUE(QFile::exists(RecoveryManager::Folder() + "/live-1-1.prl"));
}

TEST_F(Recovery, LocksOfEndedSessionsAreCleared) {
    // A session killed before it wrote any copy leaves only its lock, held by a process that is
    // gone.
    QDir().mkpath(RecoveryManager::Folder());
    const QString stale = RecoveryManager::Folder() + "/77-1.lock";
    const pid_t child = ::fork();
    if (child == 0) {
        QLockFile lock(stale);
        ::_exit(lock.tryLock(0) ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(QFile::exists(stale));
    AppFixture f;
    EXPECT_FALSE(QFile::exists(stale));
}

TEST_F(Recovery, UnattendedConversionsKeepNoCopies) {
    AppFixture f({"-f", TARN_EXAMPLES_DIR "/example-is683e.prl",
                  QDir::temp().filePath("tarn-recovery-test.txt")});
    EXPECT_EQ(f.app->Recovery(), nullptr);
    EXPECT_TRUE(Files().isEmpty());
    QFile::remove(QDir::temp().filePath("tarn-recovery-test.txt"));
}

}  // namespace
}  // namespace Tarn
