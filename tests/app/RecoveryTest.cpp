// Recovery copies: written after an edit and a pause, byte for byte what Save writes, one per
// document, gone after a save or a close without saving; left by a session that died, offered at
// the next start and restored as modified documents; never taken from a running editor, never
// opened when they do not read.
#include <gtest/gtest.h>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSettings>
#include <QTableWidget>
#include <QTest>
#include <map>

#include "app/RLDoc.h"
#include "app/Recovery.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

const QString kExample = QStringLiteral(TARN_EXAMPLES_DIR "/example-is683e.prl");

// Each test gets its own recovery folder and a one-second interval.
class Recovery : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_STATE_HOME", state_.path().toLocal8Bit());
        QSettings().setValue("Recovery/IntervalSeconds", 1);
    }
    void TearDown() override { QSettings().remove("Recovery/IntervalSeconds"); }

    static QStringList Files() { return QDir(RecoveryManager::Folder()).entryList(QDir::Files); }
    static QStringList Copies() { return Files().filter(QRegularExpression("\\.prl$")); }

    // A copy and its note as a session that is gone would have left them; `noteSize` pads the
    // note with blanks to that many bytes.
    static void LeaveCopy(const QString& name, const std::vector<uint8_t>& bytes, const QString& original,
                          const QString& session = "4242-1", qsizetype noteSize = 0) {
        QDir().mkpath(RecoveryManager::Folder());
        AppTest::WriteBytes(RecoveryManager::Folder() + "/" + name, bytes);
        const QJsonObject note{{"original", original},   {"title", QFileInfo(original).fileName()},
                               {"kind", "Roaming List"}, {"time", "2026-11-24T10:00:00Z"},
                               {"session", session},     {"copy", name}};
        QByteArray text = QJsonDocument(note).toJson();
        if (noteSize > text.size()) text += QByteArray(noteSize - text.size(), ' ');
        QFile f(RecoveryManager::Folder() + "/" + name + ".json");
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
    }

    QTemporaryDir state_;
};

void EditSid(CRLDoc& doc, const char* sid) {
    GridModel& grid = doc.Grid(CRLDoc::Table::Sys);
    grid.setData(grid.index(6, 10), sid, Qt::EditRole);
}

TEST_F(Recovery, CopyFollowsTheEditsAndGoesWithSaveOrClose) {
    AppFixture f;
    ASSERT_NE(f.app->Recovery(), nullptr);
    // Two files of one name, in two folders, keep two copies.
    std::vector<CRLDoc*> docs;
    for (const QString sub : {"a", "b"}) {
        QDir(f.dir.path()).mkdir(sub);
        ASSERT_TRUE(QFile::copy(kExample, f.Path(sub + "/list.prl")));
        docs.push_back(qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(f.Path(sub + "/list.prl"))));
        ASSERT_NE(docs.back(), nullptr);
    }
    CRLDoc* doc = docs[0];
    const QString path = f.Path("a/list.prl");
    EXPECT_TRUE(Copies().isEmpty());
    EditSid(*doc, "23");
    EditSid(*docs[1], "31");
    EXPECT_TRUE(Copies().isEmpty());  // never on the keystroke itself
    const QString copy = f.app->Recovery()->CopyPath(*doc);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Copies().size() == 2; }, 5000)) << Copies().join(", ").toStdString();
    EXPECT_NE(copy, f.app->Recovery()->CopyPath(*docs[1]));
    EXPECT_TRUE(QFile::exists(copy + ".json"));
    const auto copied = AppTest::ReadBytes(copy);
    EXPECT_EQ(AppTest::ReadBytes(path), AppTest::ReadBytes(kExample));  // untouched

    // The copy is what Save writes; saving takes it away.
    ASSERT_TRUE(doc->DoFileSave());
    EXPECT_EQ(copied, AppTest::ReadBytes(path));
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(QFile::exists(copy + ".json"));

    // Edited again and closed without saving: the copy goes too.
    EditSid(*doc, "24");
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(copy); }, 5000));
    f.prompts.saveAnswer = Answer::No;
    doc->Windows().front()->close();
    EXPECT_FALSE(QFile::exists(copy));
}

TEST_F(Recovery, LeftOverCopiesAreOfferedAndRestored) {
    // A list whose SID 22 became 77, left by a session that died, and a truncated copy.
    const QString original = state_.filePath("work/list.prl");
    QDir().mkpath(state_.filePath("work"));
    ASSERT_TRUE(QFile::copy(kExample, original));
    std::vector<uint8_t> edited;
    {
        AppFixture writer;
        auto* doc = qobject_cast<CRLDoc*>(writer.app->OpenDocumentFile(original));
        ASSERT_NE(doc, nullptr);
        EditSid(*doc, "77");
        QString error;
        ASSERT_TRUE(doc->WriteRecoveryCopy(state_.filePath("edited.prl"), error)) << error.toStdString();
        edited = AppTest::ReadBytes(state_.filePath("edited.prl"));
        writer.prompts.saveAnswer = Answer::No;
    }
    LeaveCopy("4242-1-1.prl", edited, original);
    std::vector<uint8_t> truncated(edited.begin(), edited.begin() + static_cast<long>(edited.size() / 2));
    LeaveCopy("4242-1-2.prl", truncated, state_.filePath("work/other.prl"));
    // A note is read up to 65535 bytes; one byte more and it does not read.
    LeaveCopy("4242-1-3.prl", edited, state_.filePath("work/edge.prl"), "4242-1", 65535);
    LeaveCopy("4242-1-4.prl", edited, state_.filePath("work/past.prl"), "4242-1", 65536);
    // A running editor's copy is not this start's to offer.
    QLockFile running(RecoveryManager::Folder() + "/live-1.lock");
    ASSERT_TRUE(running.tryLock(0));
    LeaveCopy("live-1-1.prl", edited, state_.filePath("work/live.prl"), "live-1");

    std::map<QString, QString> offered;  // title -> where it belongs, or why it cannot be recovered
    const auto onDialog = [&](QDialog& dialog) {
        auto* d = qobject_cast<RecoveryDialog*>(&dialog);
        if (!d) return int(QDialog::Rejected);
        for (int row = 0; row < d->Copies()->rowCount(); ++row)
            offered[d->Copies()->item(row, 0)->text()] =
                d->Copies()->item(row, 3)->text() + "|" + d->Copies()->item(row, 3)->toolTip();
        return int(QDialog::Accepted);
    };
    AppFixture f({}, [&](AppTest::FakePrompts& p) { p.onDialog = onDialog; });
    ASSERT_EQ(offered.size(), 4u);
    EXPECT_EQ(offered["list.prl"], original + "|");
    EXPECT_EQ(offered["edge.prl"], state_.filePath("work/edge.prl") + "|");
    EXPECT_TRUE(offered["other.prl"].startsWith("cannot be recovered")) << offered["other.prl"].toStdString();
    EXPECT_TRUE(offered["4242-1-4.prl"].contains("|the note beside the copy does not read\n"))
        << offered["4242-1-4.prl"].toStdString();

    // The readable copies open as modified documents of the originals' names holding the edit;
    // the file on disk is untouched until the user saves.
    std::map<QString, CRLDoc*> lists;
    for (CDocument* d : f.app->Documents())
        if (auto* l = qobject_cast<CRLDoc*>(d)) lists[l->Title()] = l;
    ASSERT_EQ(lists.size(), 2u);
    ASSERT_TRUE(lists.count("edge.prl"));
    CRLDoc* restored = lists["list.prl"];
    ASSERT_NE(restored, nullptr);
    EXPECT_TRUE(restored->IsModified());
    GridModel& grid = restored->Grid(CRLDoc::Table::Sys);
    EXPECT_EQ(grid.data(grid.index(6, 10), Qt::DisplayRole).toString(), "77");
    EXPECT_EQ(AppTest::ReadBytes(original), AppTest::ReadBytes(kExample));
    ASSERT_TRUE(restored->DoFileSave());
    EXPECT_EQ(AppTest::ReadBytes(original), edited);

    // The offered copies are gone from the folder, the broken ones set aside, the live one kept.
    EXPECT_FALSE(QFile::exists(RecoveryManager::Folder() + "/4242-1-1.prl"));
    EXPECT_TRUE(QFile::exists(RecoveryManager::Folder() + "/unreadable/4242-1-2.prl"));
    EXPECT_TRUE(QFile::exists(RecoveryManager::Folder() + "/unreadable/4242-1-4.prl"));
    EXPECT_TRUE(QFile::exists(RecoveryManager::Folder() + "/live-1-1.prl"));
}

}  // namespace
}  // namespace Tarn
