#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>

#include "app/ExchangeActions.h"
#include "app/RLDoc.h"
#include "grid/qt/GridModel.h"
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

// The system grid names each record's operator in two read-only columns after the record's own,
// follows edits, and never lets a paste or an edit land there.
TEST(ExchangeActions, SystemGridShowsOperatorsReadOnly) {
    AppFixture f;
    QFile xml(f.Path("providers.xml"));
    ASSERT_TRUE(xml.open(QIODevice::WriteOnly));
    xml.write(R"(<serviceproviders><country code="us">
        <provider><name>Alpha Wireless</name><cdma><sid value="4139"/><sid value="4140"/></cdma></provider>
        </country></serviceproviders>)");
    xml.close();
    QSettings().setValue(kProviderDatabaseKey, f.Path("providers.xml"));
    const QString path = f.Path("list.prl");
    ASSERT_TRUE(QFile::copy(TARN_EXAMPLES_DIR "/example-is683e.prl", path));
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(path));
    ASSERT_NE(doc, nullptr);
    struct Forget {
        ~Forget() { QSettings().remove(kProviderDatabaseKey); }
    } forget;

    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    int operatorColumn = -1;
    for (int c = 0; c < sys.columnCount(); ++c)
        if (sys.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString() == "Operator") operatorColumn = c;
    ASSERT_GT(operatorColumn, 10);
    EXPECT_EQ(sys.headerData(operatorColumn + 1, Qt::Horizontal, Qt::DisplayRole).toString(), "Country");
    const QModelIndex op = sys.index(0, operatorColumn);
    EXPECT_EQ(sys.data(op, Qt::DisplayRole).toString().toStdString(), "Alpha Wireless");
    EXPECT_EQ(sys.data(sys.index(0, operatorColumn + 1), Qt::DisplayRole).toString().toStdString(), "United States");
    EXPECT_EQ(sys.data(sys.index(0, 3), Qt::ToolTipRole).toString().toStdString(), "Alpha Wireless (United States)");
    EXPECT_FALSE(sys.flags(op) & Qt::ItemIsEditable);
    EXPECT_FALSE(sys.setData(op, "typed", Qt::EditRole));
    sys.EditCells({{operatorColumn, 0, "pasted"}, {operatorColumn + 1, 1, "pasted"}}, "Paste");
    EXPECT_EQ(sys.GetCellText(operatorColumn, 0), "");
    EXPECT_EQ(sys.GetCellText(operatorColumn + 1, 1), "");
    EXPECT_FALSE(doc->IsModified());

    // Row 0 names SID 4139 in column 10; another SID nobody claims clears the names.
    ASSERT_EQ(sys.GetCellText(10, 0), "4139");
    ASSERT_TRUE(sys.setData(sys.index(0, 10), "77", Qt::EditRole));
    EXPECT_EQ(sys.data(op, Qt::DisplayRole).toString().toStdString(), "");
    ASSERT_TRUE(sys.setData(sys.index(0, 10), "4140", Qt::EditRole));
    EXPECT_EQ(sys.data(op, Qt::DisplayRole).toString().toStdString(), "Alpha Wireless");
}

}  // namespace
}  // namespace Tarn
