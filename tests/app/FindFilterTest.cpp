// Finding, filtering and the GEO columns on a list of real size, driven through the models with no
// screen: the rows found and kept are the right records, edits through a filtered view reach
// their own record, and nothing shown beside the records ever reaches the saved bytes. What a
// query matches is the search's own business (tests/analysis); here it is how the editor steps,
// marks and filters.
#include <gtest/gtest.h>

#include <QLocale>

#include "analysis/ListFacts.h"
#include "app/FilterBar.h"
#include "app/FindBar.h"
#include "app/GoToDialog.h"
#include "app/RLDoc.h"
#include "app/RLViews.h"
#include "grid/qt/GridFilterModel.h"
#include "grid/qt/GridRoles.h"
#include "grid/qt/GridView.h"
#include "tests/app/TestSupport.h"
#include "tests/support/JsonList.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;
using nlohmann::json;

constexpr int kSystems = 3000;
constexpr int kPerGeo = 100;

// 3000 systems in 30 GEOs: SID 1000+i (4106 at row 2500), every tenth negative, every third
// raising the priority level, acquisition record i % 3 (PCS 25, cellular 283, PCS 50).
std::unique_ptr<CRLData> LargeList() {
    json sys = json::array();
    for (int i = 0; i < kSystems; ++i) {
        const unsigned sid = i == 2500 ? 4106 : 1000 + i;
        sys.push_back(Test::Sid(sid, 65535, i % 10 != 0, i % kPerGeo == 0, i % 3 == 0, i % 3));
    }
    return Test::JsonList(json::array({Test::PcsChannels({25}), Test::CellularCustom({283}),
                                       Test::PcsChannels({50})}),
                          sys);
}

struct OpenList {
    AppFixture f;
    std::vector<uint8_t> bytes;
    CRLDoc* doc = nullptr;
    CRLView* view = nullptr;

    OpenList() {
        bytes = AppTest::Binary(*LargeList(), 3);
        AppTest::WriteBytes(f.Path("large.prl"), bytes);
        doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(f.Path("large.prl")));
        if (doc && !doc->Windows().empty()) view = qobject_cast<CRLView*>(doc->Windows().front()->widget());
        if (view) view->Facts().Refresh();
    }
    GridView& SysGrid() const { return *view->SysView()->Grid(); }
    GridModel& Sys() const { return doc->Grid(CRLDoc::Table::Sys); }
    QStringList Info(int row) const { return Sys().headerData(row, Qt::Vertical, kRowInfoRole).toStringList(); }
    bool Marked(CRLDoc::Table table, int row) const {
        GridModel& grid = doc->Grid(table);
        return grid.data(grid.index(row, 0), Qt::BackgroundRole).isValid();
    }
};

TEST(FindFilter, GeoColumnsAndStatusFollowTheListAndNeverReachTheFile) {
    OpenList o;
    ASSERT_NE(o.view, nullptr);
    const Analysis::ListFacts facts(*LargeList());
    ASSERT_EQ(o.Sys().rowCount(), kSystems);
    for (int row = 0; row < kSystems; ++row) {
        const auto& f = facts.Facts(static_cast<size_t>(row));
        const QStringList wanted{QString::number(f.geo), f.preferred ? QString::number(f.level) : QStringLiteral("neg")};
        ASSERT_EQ(o.Info(row), wanted) << "row " << row;
        // Alternate GEOs are banded, under the cells and beside them, never as a highlight.
        const bool banded = f.geo % 2 == 1;
        ASSERT_EQ(o.Sys().headerData(row, Qt::Vertical, kRowBandRole).value<QColor>().isValid(), banded) << row;
        ASSERT_EQ(o.Sys().data(o.Sys().index(row, 1), kRowBandRole).isValid(), banded);
        ASSERT_FALSE(o.Marked(CRLDoc::Table::Sys, row));
    }
    EXPECT_EQ(o.Sys().RowInfoHeadings(), (QStringList{"GEO", "Level"}));

    const unsigned crc = (unsigned{o.bytes[o.bytes.size() - 2]} << 8) | o.bytes.back();
    const QString status = o.view->Facts().StatusText();
    EXPECT_TRUE(status.contains("3 acquisition, 3000 system records in 30 GEOs")) << status.toStdString();
    const QString size = QLocale(QLocale::English).toString(static_cast<qulonglong>(o.bytes.size()));
    EXPECT_TRUE(status.contains(QStringLiteral("List size: %1 / 65,535 bytes").arg(size))) << status.toStdString();
    EXPECT_TRUE(status.contains("CRC: 0x" + QString::number(crc, 16).toUpper().rightJustified(4, '0')));

    // Filtered, searched, annotated: the saved bytes are the bytes that were opened.
    o.view->SysView()->Filter()->SetGeo(7);
    o.view->ShowFind();
    o.view->Find()->SetQuery("channel 25");
    ASSERT_TRUE(o.doc->OnSaveDocument(o.f.Path("again.prl")));
    EXPECT_EQ(AppTest::ReadBytes(o.f.Path("again.prl")), o.bytes);
}

TEST(FindFilter, FindStepsThroughBothGridsAndGoToReachesRecordsAndGeos) {
    OpenList o;
    ASSERT_NE(o.view, nullptr);
    FindBar& find = *o.view->Find();
    o.view->ShowFind();
    find.SetQuery("sid 4106");
    ASSERT_EQ(find.Matches().size(), 1u);
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2500);
    EXPECT_TRUE(o.Marked(CRLDoc::Table::Sys, 2500));
    // The acquisition record of the system under the cursor is highlighted.
    EXPECT_TRUE(o.Marked(CRLDoc::Table::Acq, 2500 % 3));
    EXPECT_FALSE(o.Marked(CRLDoc::Table::Acq, 0));

    // Matches run acquisition grid first, then the system grid; both ways wrap around.
    find.SetQuery("channel 50");
    ASSERT_EQ(find.Matches().size(), 1001u);
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.view->AcqView()->Grid()->CurrentRow(), 2);
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2);
    ASSERT_TRUE(find.Previous());
    ASSERT_TRUE(find.Previous());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2999);
    EXPECT_TRUE(find.StatusText().startsWith("1001 of 1001"));
    find.SetQuery("sid 99999");
    EXPECT_FALSE(find.Next());
    EXPECT_TRUE(find.StatusText().contains("out of range"));
    find.Close();
    EXPECT_FALSE(o.Marked(CRLDoc::Table::Sys, 2500));

    // Go to: a GEO's first system, a record the filter hides (shown for the cursor), an acquisition.
    o.view->SysView()->Filter()->SetGeo(3);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::Geo), 5);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 500);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::System), 2999);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2999);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::Acquisition), 1);
    EXPECT_EQ(o.view->AcqView()->Grid()->CurrentRow(), 1);
}

// Go To takes numbers up to the last record of its table and holds larger ones to it; a table
// with no records takes none.
TEST(FindFilter, GoToNumbersAreHeldToTheTable) {
    const struct {
        int count, asked, reached;  // -1: nothing reached
    } cases[] = {{3, 2, 2}, {3, 3, 2}, {1, 0, 0}, {1, 1, 0}, {0, 0, -1}};
    for (const auto& c : cases) {
        GoToDialog dialog(kSystems, c.count, 30);
        int reached = -1;
        QObject::connect(&dialog, &GoToDialog::goTo, [&](GoToDialog::Target t, int n) {
            EXPECT_EQ(t, GoToDialog::Target::Acquisition);
            reached = n;
        });
        dialog.Set(GoToDialog::Target::Acquisition, c.asked);
        dialog.accept();
        EXPECT_EQ(reached, c.reached) << c.count << " records, " << c.asked << " asked";
    }
}

TEST(FindFilter, FilterHidesRowsAndEditsThroughItReachTheirRecord) {
    OpenList o;
    ASSERT_NE(o.view, nullptr);
    FilterBar& bar = *o.view->SysView()->Filter();
    GridFilterModel* filter = o.SysGrid().Filter();
    ASSERT_NE(filter, nullptr);
    ASSERT_EQ(o.SysGrid().model(), filter);

    bar.SetGeo(7);
    EXPECT_EQ(filter->rowCount(), kPerGeo);
    bar.SetPreference(FilterBar::Preference::Negative);
    ASSERT_EQ(filter->rowCount(), 10);
    for (int r = 0; r < 10; ++r) EXPECT_EQ(filter->mapToSource(filter->index(r, 0)).row(), 700 + 10 * r);
    EXPECT_EQ(bar.StatusText(), "Showing 10 of 3000 system records");

    // Edit the fourth row shown: record 730 takes the new SID, nothing else changes.
    const int column = 10;
    ASSERT_EQ(o.Sys().GetCellText(column, 730), "1730");
    const std::string before = o.Sys().GetCellText(column, 3);
    ASSERT_TRUE(filter->setData(filter->index(3, column), "777", Qt::EditRole));
    EXPECT_EQ(o.Sys().GetCellText(column, 730), "777");
    EXPECT_EQ(o.Sys().GetCellText(column, 3), before);
    o.view->Facts().Refresh();
    // The row stays in view though it was found by its old values; Find sees the new one.
    EXPECT_EQ(filter->rowCount(), 10);
    o.view->Find()->SetQuery("sid 777");
    ASSERT_EQ(o.view->Find()->Matches().size(), 1u);
    EXPECT_EQ(o.view->Find()->Matches()[0].row, 730);
    o.doc->UndoStack().undo();
    EXPECT_EQ(o.Sys().GetCellText(column, 730), "1730");

    // Rows inserted through the filtered view land where the cursor's record is, and show; the
    // hidden rows move down with their records, still hidden.
    o.SysGrid().setCurrentIndex(filter->index(2, 0));
    ASSERT_EQ(o.SysGrid().CurrentRow(), 720);
    o.SysGrid().InsertRowsAtSelection();
    EXPECT_EQ(o.Sys().rowCount(), kSystems + 1);
    EXPECT_EQ(filter->rowCount(), 11);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 720);
    EXPECT_EQ(filter->mapToSource(filter->index(3, 0)).row(), 721);  // record 720, moved down
    EXPECT_FALSE(filter->IsRowVisible(722));
    o.doc->UndoStack().undo();
    EXPECT_EQ(filter->rowCount(), 10);

    // Text, acquisition record, and back to everything.
    bar.Clear();
    EXPECT_EQ(filter->rowCount(), kSystems);
    EXPECT_FALSE(filter->IsFiltering());
    bar.SetAcquisition(2);
    EXPECT_EQ(filter->rowCount(), kSystems / 3);
    bar.SetText("sid 12345678");
    EXPECT_TRUE(bar.StatusText().contains("out of range"));
    EXPECT_EQ(filter->rowCount(), kSystems / 3);  // a query being typed keeps the last rows
    // The acquisition grid says who uses a record and offers to show them.
    o.view->AcqView()->Grid()->FocusCell(0, 1);
    EXPECT_TRUE(o.view->AcqView()->Note().contains("used by 1000 system records"));
}

}  // namespace
}  // namespace Tarn
