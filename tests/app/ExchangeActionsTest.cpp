// Exchange with spreadsheets: export to CSV and XLSX and import back, the bad cell named on import;
// and the operator columns the system grid shows from a provider database.
#include <gtest/gtest.h>

#include <algorithm>

#include <QFile>
#include <QSettings>

#include "app/ExchangeActions.h"
#include "app/RLDoc.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using namespace AppTest;

QString Shown(const AppFixture& f) {
    return f.prompts.MessageTexts().join("|");
}

TEST(ExchangeActions, ExportThenImportGivesTheSameListAndABadCellIsNamed) {
    AppFixture f;
    const QString original = f.Example("example-is683e.prl");
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(original));
    ASSERT_NE(doc, nullptr);

    f.prompts.fileAnswers = {f.Path("sheets/header.csv")};
    ASSERT_TRUE(ExportListCsv(*doc)) << Shown(f).toStdString();
    for (const char* name : {"header.csv", "acquisition.csv", "system.csv"})
        EXPECT_TRUE(QFile::exists(f.Path("sheets/") + name)) << name;
    f.prompts.fileAnswers = {f.Path("list.xlsx")};
    EXPECT_TRUE(ExportListXlsx(*doc));
    EXPECT_GT(QFile(f.Path("list.xlsx")).size(), 1000);

    f.prompts.fileAnswers = {f.Path("sheets/system.csv"), f.Path("imported.prl")};
    ASSERT_TRUE(ImportListCsv(*f.app, nullptr)) << Shown(f).toStdString();
    EXPECT_EQ(ReadBytes(f.Path("imported.prl")), ReadBytes(original));

    auto header = ReadBytes(f.Path("sheets/header.csv"));
    const auto type = std::search(header.begin(), header.end(), std::begin("IS-683E,"), std::end("IS-683E,") - 1);
    ASSERT_NE(type, header.end());
    type[6] = 'Q';
    WriteBytes(f.Path("sheets/header.csv"), header);
    f.prompts.Clear();
    f.prompts.fileAnswers = {f.Path("sheets/header.csv"), f.Path("never.prl")};
    EXPECT_FALSE(ImportListCsv(*f.app, nullptr));
    EXPECT_TRUE(Shown(f).contains("header.csv:2:1: unknown roaming list type \"IS-683Q\"")) << Shown(f).toStdString();
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
    struct Forget {
        ~Forget() { QSettings().remove(kProviderDatabaseKey); }
    } forget;
    auto* doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(f.Example("example-is683e.prl")));
    ASSERT_NE(doc, nullptr);

    GridModel& sys = doc->Grid(CRLDoc::Table::Sys);
    auto heading = [&](int c) { return sys.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(); };
    auto cell = [&](int r, int c, int role = Qt::DisplayRole) { return sys.data(sys.index(r, c), role).toString(); };
    int op = -1;
    for (int c = 0; c < sys.columnCount(); ++c)
        if (heading(c) == "Operator") op = c;
    ASSERT_GT(op, 10);
    EXPECT_EQ(cell(0, op), "Alpha Wireless");
    EXPECT_EQ(cell(0, op + 1), "United States");
    EXPECT_EQ(cell(0, 3, Qt::ToolTipRole), "Alpha Wireless (United States)");
    EXPECT_FALSE(sys.flags(sys.index(0, op)) & Qt::ItemIsEditable);
    EXPECT_FALSE(sys.setData(sys.index(0, op), "typed", Qt::EditRole));
    sys.EditCells({{op, 0, "pasted"}, {op + 1, 1, "pasted"}}, "Paste");
    EXPECT_EQ(sys.GetCellText(op, 0), "");
    EXPECT_EQ(sys.GetCellText(op + 1, 1), "");
    EXPECT_FALSE(doc->IsModified());

    // Row 0 names SID 4139 in column 10; another SID nobody claims clears the names.
    ASSERT_EQ(sys.GetCellText(10, 0), "4139");
    ASSERT_TRUE(sys.setData(sys.index(0, 10), "77", Qt::EditRole));
    EXPECT_EQ(cell(0, op), "");
    ASSERT_TRUE(sys.setData(sys.index(0, 10), "4140", Qt::EditRole));
    EXPECT_EQ(cell(0, op), "Alpha Wireless");
}

}  // namespace
}  // namespace Tarn
