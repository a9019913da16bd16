// Finding, filtering and the GEO columns on a list of real size, driven through the models with no
// screen: the rows found and kept are the right records, edits through a filtered view reach
// their own record, and nothing shown beside the records ever reaches the saved bytes.
#include <gtest/gtest.h>

#include <QBrush>
#include <QLocale>
#include <QUndoStack>

#include "analysis/ListFacts.h"
#include "app/FilterBar.h"
#include "app/FindBar.h"
#include "app/GoToDialog.h"
#include "app/RLDoc.h"
#include "app/RLViews.h"
#include "grid/qt/GridFilterModel.h"
#include "grid/qt/GridModel.h"
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
        auto data = LargeList();
        bytes = AppTest::ListBytes(3, *data);
        AppTest::WriteBytes(f.Path("large.prl"), bytes);
        doc = qobject_cast<CRLDoc*>(f.app->OpenDocumentFile(f.Path("large.prl")));
        if (doc && !doc->Windows().empty())
            view = qobject_cast<CRLView*>(doc->Windows().front()->widget());
        if (view) view->Facts().Refresh();
    }
    GridView& SysGrid() const { return *view->SysView()->Grid(); }
    GridModel& Sys() const { return doc->Grid(CRLDoc::Table::Sys); }
    // The column that shows a system row's SID.
    int SidColumn(int row, const std::string& sid) const {
        for (int c = 1; c < Sys().UsedColumns(); ++c)
            if (Sys().GetCellText(c, row) == sid) return c;
        return -1;
    }
};

TEST(FindFilter, GeoColumnsAndStatusFollowTheListAndNeverReachTheFile) {
    OpenList o;
    ASSERT_NE(o.view, nullptr);
    const Analysis::ListFacts facts(*LargeList());
    ASSERT_EQ(o.Sys().rowCount(), kSystems);
    for (int row = 0; row < kSystems; ++row) {
        const auto& f = facts.Facts(static_cast<size_t>(row));
        const QStringList info =
            o.Sys().headerData(row, Qt::Vertical, kRowInfoRole).toStringList();
        const QStringList wanted{QString::number(f.geo),
                                 f.preferred ? QString::number(f.level) : QStringLiteral("neg")};
        ASSERT_EQ(info, wanted) << "row " << row;
        // Alternate GEOs are banded, under the cells and beside them.
        const bool banded = f.geo % 2 == 1;
        ASSERT_EQ(o.Sys().headerData(row, Qt::Vertical, kRowBandRole).value<QColor>().isValid(), banded)
            << "row " << row;
        ASSERT_EQ(o.Sys().data(o.Sys().index(row, 1), kRowBandRole).isValid(), banded);
        ASSERT_FALSE(o.Sys().data(o.Sys().index(row, 1), Qt::BackgroundRole).isValid());
    }
    EXPECT_EQ(o.Sys().RowInfoHeadings(), (QStringList{"GEO", "Level"}));

    const unsigned crc = (unsigned{o.bytes[o.bytes.size() - 2]} << 8) | o.bytes.back();
    const QString status = o.view->Facts().StatusText();
    EXPECT_TRUE(status.contains(QStringLiteral("3 acquisition, 3000 system records in 30 GEOs"))) << status.toStdString();
    const QString size = QLocale(QLocale::English).toString(static_cast<qulonglong>(o.bytes.size()));
    EXPECT_TRUE(status.contains(QStringLiteral("List size: %1 / 65,535 bytes").arg(size))) << status.toStdString();
    EXPECT_TRUE(status.contains("CRC: 0x" + QString::number(crc, 16).toUpper().rightJustified(4, '0')))
        << status.toStdString();

    // Filtered, searched, annotated: the saved bytes are the bytes that were opened.
    o.view->SysView()->Filter()->SetGeo(7);
    o.view->ShowFind();
    o.view->Find()->SetQuery("channel 25");
    ASSERT_TRUE(o.doc->OnSaveDocument(o.f.Path("again.prl")));
    EXPECT_EQ(AppTest::ReadBytes(o.f.Path("again.prl")), o.bytes);

    // A row being typed leaves the list unwritable: the status says so instead of old figures.
    o.Sys().InsertRows(0, 1, "Insert");
    o.view->Facts().Refresh();
    EXPECT_TRUE(o.view->Facts().StatusText().contains("Not writable as it stands"));
    // ...and the GEO fields moved down with their rows.
    EXPECT_TRUE(o.Sys().headerData(0, Qt::Vertical, kRowInfoRole).toStringList().isEmpty());
    EXPECT_EQ(o.Sys().headerData(151, Qt::Vertical, kRowInfoRole).toStringList().front(), "1");
}

TEST(FindFilter, FindStepsThroughBothGridsAndGoToReachesRecordsAndGeos) {
    OpenList o;
    ASSERT_NE(o.view, nullptr);
    FindBar& find = *o.view->Find();
    o.view->ShowFind();
    struct Case {
        const char* query;
        size_t acq, sys;  // matches in each grid
    };
    const Case cases[] = {
        {"sid 4106", 0, 1}, {"4106", 0, 1}, {"283", 1, 0}, {"channel 283", 1, 1000},
        {"sid 1007 nid 3", 0, 0}, {"no such operator anywhere", 0, 0},
    };
    for (const auto& c : cases) {
        find.SetQuery(c.query);
        size_t acq = 0, sys = 0;
        for (const auto& m : find.Matches()) ++(m.table == CRLDoc::Table::Acq ? acq : sys);
        EXPECT_EQ(acq, c.acq) << c.query;
        EXPECT_EQ(sys, c.sys) << c.query;
    }

    find.SetQuery("sid 4106");
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2500);
    EXPECT_TRUE(o.Sys().data(o.Sys().index(2500, 0), Qt::BackgroundRole).isValid());
    // The acquisition record of the system under the cursor is highlighted.
    GridModel& acq = o.doc->Grid(CRLDoc::Table::Acq);
    EXPECT_TRUE(acq.data(acq.index(2500 % 3, 0), Qt::BackgroundRole).isValid());
    EXPECT_FALSE(acq.data(acq.index(0, 0), Qt::BackgroundRole).isValid());

    // Matches run acquisition grid first, then the system grid; both ways wrap around.
    find.SetQuery("channel 50");
    ASSERT_EQ(find.Matches().size(), 1001u);
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.view->AcqView()->Grid()->CurrentRow(), 2);
    ASSERT_TRUE(find.Next());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2);
    find.SetQuery("channel 50");
    ASSERT_TRUE(find.Previous());
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2999);
    EXPECT_TRUE(find.StatusText().startsWith("1001 of 1001"));
    find.SetQuery("sid 99999");
    EXPECT_FALSE(find.Next());
    EXPECT_TRUE(find.StatusText().contains("out of range"));
    find.Close();
    EXPECT_FALSE(o.Sys().data(o.Sys().index(2500, 0), Qt::BackgroundRole).isValid());

    // Go to: a GEO's first system, a record the filter hides (shown for the cursor), an acquisition.
    o.view->SysView()->Filter()->SetGeo(3);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::Geo), 5);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 500);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::System), 2999);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 2999);
    o.view->GoTo(static_cast<int>(GoToDialog::Target::Acquisition), 1);
    EXPECT_EQ(o.view->AcqView()->Grid()->CurrentRow(), 1);

    GoToDialog dialog(kSystems, 3, 30);
    int target = -1, number = -1;
    QObject::connect(&dialog, &GoToDialog::goTo, [&](GoToDialog::Target t, int n) {
        target = static_cast<int>(t);
        number = n;
    });
    dialog.Set(GoToDialog::Target::Acquisition, 7);  // beyond the table: held to its last record
    dialog.accept();
    EXPECT_EQ(target, static_cast<int>(GoToDialog::Target::Acquisition));
    EXPECT_EQ(number, 2);
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
    const int column = o.SidColumn(730, "1730");
    ASSERT_GT(column, 0);
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

    // Rows inserted through the filtered view land where the cursor's record is, and show.
    o.SysGrid().setCurrentIndex(filter->index(2, 0));
    ASSERT_EQ(o.SysGrid().CurrentRow(), 720);
    o.SysGrid().InsertRowsAtSelection();
    EXPECT_EQ(o.Sys().rowCount(), kSystems + 1);
    EXPECT_EQ(filter->rowCount(), 11);
    EXPECT_EQ(o.SysGrid().CurrentRow(), 720);
    EXPECT_EQ(filter->mapToSource(filter->index(3, 0)).row(), 721);  // record 720, moved down
    o.doc->UndoStack().undo();
    EXPECT_EQ(filter->rowCount(), 10);

    // Text, acquisition record, and back to everything.
    bar.Clear();
    EXPECT_EQ(filter->rowCount(), kSystems);
    EXPECT_FALSE(filter->IsFiltering());
    bar.SetText("sid 4106");
    EXPECT_EQ(filter->rowCount(), 1);
    bar.SetText("");
    bar.SetAcquisition(2);
    EXPECT_EQ(filter->rowCount(), kSystems / 3);
    bar.SetText("sid 12345678");
    EXPECT_TRUE(bar.StatusText().contains("out of range"));
    EXPECT_EQ(filter->rowCount(), kSystems / 3);  // a query being typed keeps the last rows
    // The acquisition grid says who uses a record and offers to show them.
    o.view->AcqView()->Grid()->FocusCell(0, 1);
    EXPECT_TRUE(o.view->AcqView()->Note().contains("used by 1000 system records"));
}

TEST(FindFilter, BandsStayOutOfHighlightsAndMoveWithTheirRows) {
    GridModel grid("test", 4, 4);
    grid.SetRowCount(4);
    const QColor band(1, 2, 3), mark(9, 9, 9);
    std::vector<GridModel::RowAnnotation> rows(4);
    for (int r = 0; r < 4; ++r) rows[static_cast<size_t>(r)] = {r % 2 ? band : QColor(), {QString::number(r)}};
    grid.SetRowAnnotations({"GEO"}, rows);
    grid.SetRowHighlights("find", {{1, mark}});
    auto background = [&](int row) {
        return grid.data(grid.index(row, 0), Qt::BackgroundRole).value<QBrush>().color();
    };
    EXPECT_EQ(background(1), mark);
    EXPECT_EQ(grid.data(grid.index(1, 0), kRowBandRole).value<QColor>(), band);
    EXPECT_EQ(grid.data(grid.index(3, 2), kRowBandRole).value<QColor>(), band);
    EXPECT_FALSE(grid.data(grid.index(3, 0), Qt::BackgroundRole).isValid());
    EXPECT_FALSE(grid.data(grid.index(2, 0), kRowBandRole).isValid());

    GridFilterModel filter(grid);
    filter.SetVisibleRows({true, false, true, false});
    ASSERT_EQ(filter.rowCount(), 2);
    grid.InsertRows(1, 1, "Insert");  // a new row shows; the hidden ones move down, still hidden
    EXPECT_EQ(filter.rowCount(), 3);
    EXPECT_FALSE(filter.IsRowVisible(2));
    EXPECT_TRUE(grid.headerData(1, Qt::Vertical, kRowInfoRole).toStringList().isEmpty());
    EXPECT_EQ(grid.headerData(2, Qt::Vertical, kRowInfoRole).toStringList(), QStringList{"1"});
    grid.RemoveRows({0}, "Delete");
    EXPECT_EQ(grid.headerData(1, Qt::Vertical, kRowInfoRole).toStringList(), QStringList{"1"});
    EXPECT_FALSE(filter.IsRowVisible(1));
    filter.Reveal(1);
    EXPECT_EQ(filter.rowCount(), 3);
}

}  // namespace
}  // namespace Tarn
