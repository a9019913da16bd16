#include <gtest/gtest.h>

#include <QFile>

#include "app/ExchangeActions.h"
#include "app/RLDoc.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using namespace AppTest;

TEST(ExchangeActions, ExportThenImportGivesTheSameListAndOpensIt) {
    AppFixture f;
    const QString original = f.Path("list.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", original));
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(original));
    ASSERT_NE(doc, nullptr);

    f.prompts.fileAnswers = {f.Path("sheets/header.csv")};
    ASSERT_TRUE(ExportListCsv(*doc)) << f.prompts.MessageTexts().join("|").toStdString();
    for (const char* name : {"header.csv", "acquisition.csv", "system.csv"})
        EXPECT_TRUE(QFile::exists(f.Path("sheets/") + name)) << name;

    f.prompts.fileAnswers = {f.Path("list.xlsx")};
    EXPECT_TRUE(ExportListXlsx(*doc));
    EXPECT_GT(QFile(f.Path("list.xlsx")).size(), 1000);

    f.prompts.fileAnswers = {f.Path("sheets/system.csv"), f.Path("imported.prl")};
    ASSERT_TRUE(ImportListCsv(*f.app, nullptr)) << f.prompts.MessageTexts().join("|").toStdString();
    EXPECT_EQ(ReadBytes(f.Path("imported.prl")), ReadBytes(original));
}

TEST(ExchangeActions, ImportNamesTheBadCellAndWritesNothing) {
    AppFixture f;
    const QString original = f.Path("list.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683a.prl", original));
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(original));
    ASSERT_NE(doc, nullptr);
    f.prompts.fileAnswers = {f.Path("sheets/header.csv")};
    ASSERT_TRUE(ExportListCsv(*doc));

    QFile header(f.Path("sheets/header.csv"));
    ASSERT_TRUE(header.open(QIODevice::ReadOnly));
    QByteArray text = header.readAll();
    header.close();
    text.replace("IS-683A,", "IS-683Q,");
    ASSERT_TRUE(header.open(QIODevice::WriteOnly | QIODevice::Truncate));
    header.write(text);
    header.close();

    f.prompts.Clear();
    f.prompts.fileAnswers = {f.Path("sheets/header.csv"), f.Path("never.prl")};
    EXPECT_FALSE(ImportListCsv(*f.app, nullptr));
    const QString shown = f.prompts.MessageTexts().join("|");
    EXPECT_TRUE(shown.contains("header.csv:2:1: unknown roaming list type \"IS-683Q\"")) << shown.toStdString();
    EXPECT_FALSE(QFile::exists(f.Path("never.prl")));
}

}  // namespace
}  // namespace Tarn
