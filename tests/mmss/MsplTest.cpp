#include <gtest/gtest.h>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

std::unique_ptr<Mspl::Record> MakeRecord(uint8_t sysType, uint8_t networkCap) {
    auto r = std::make_unique<Mspl::Record>();
    r->sysType = sysType;
    r->networkCap = networkCap;
    return r;
}

TEST(Mspl, RecordIs23BitsWithNetworkCapAnd17Without) {
    struct Case {
        uint8_t networkCap;
        uint32_t bits;
        std::vector<uint8_t> bytes;  // after a 1-bit marker that puts the record off a boundary
    };
    // SYS_TYPE 7, PRI_CLASS 15, SYS_PRI 1, SRCH 2, then the capability fields.
    const Case cases[] = {
        {0, 23, Hex("83 FD 40")},  // 1 | 00000111 1111 1 010 1 000000
        {1, 17, Hex("83 FD 00")},  // 1 | 00000111 1111 1 010 0
        {5, 17, Hex("83 FD 00")},  // an unnamed capability is written as "none"
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(int(c.networkCap));
        Mspl::Record r;
        r.sysType = 7;
        r.priorityClass = 15;
        r.sysPri = 1;
        r.searchTime = 2;
        r.networkCap = c.networkCap;
        CRLFile file;
        file.WriteBits(1, 1);
        EXPECT_EQ(r.Write(file), c.bits);
        EXPECT_EQ(file.Bytes(), c.bytes);

        file.Seek(0);
        file.SetBitOffset(0);
        file.ReadBits(1);
        Mspl::Record back;
        EXPECT_EQ(back.Read(file), c.bits);
        EXPECT_EQ(back.networkCap, c.networkCap == 0 ? 0 : 1);
        EXPECT_EQ(back.searchTime, 2);
    }
}

TEST(Mspl, UnnamedNetworkCapShowsInvalidAndIsSavedWithoutIt) {
    // One id with one record: SYS_TYPE 0, then IND 1 and NETWORK_CAP 3.
    const auto bytes = Hex("00 0B 01 00 01 01 04 01 00 00 86");
    std::string error;
    auto doc = Mmss::FromBytes<Mspl::Document>(bytes);
    const auto& record = static_cast<const Mspl::Record&>(*doc->data.lists[0].GetAt(0));
    EXPECT_EQ(record.networkCap, 3);

    MemoryGrid grid(Mspl::Record::kTableName, 5, 1);
    record.WriteToGrid(grid, 0);
    EXPECT_EQ(grid.GetCellText(4, 0), "Invalid");
    Mspl::Record fromGrid = record;
    fromGrid.ReadFromGrid(grid, 0, {});
    EXPECT_EQ(fromGrid.networkCap, 3) << "\"Invalid\" leaves the value alone";
    EXPECT_NE(record.ToText().find("Network_Cap_Not_Present"), std::string::npos);

    std::vector<uint8_t> saved;
    ASSERT_TRUE(doc->Write(saved, error)) << error;
    EXPECT_EQ(saved, Hex("00 0B 01 00 01 01 04 01 00 00 00")) << "indicator 0, no NETWORK_CAP";
}

TEST(Mspl, GridRowReadsByNameAndStopsAtTheFirstEmptyCell) {
    Mspl::Record r;
    MemoryGrid grid(Mspl::Record::kTableName, 5, 3);
    for (int col = 0; col < 5; ++col)
        grid.SetCellText(
            col, 2,
            std::vector<std::string>{"GERAN", "Any", "More", "8-minute", "Voice-And-Data"}[col]);
    r.ReadFromGrid(grid, 2, {});
    EXPECT_EQ(r.sysType, 5);
    EXPECT_EQ(r.priorityClass, 15);
    EXPECT_EQ(r.searchTime, 3);
    EXPECT_EQ(r.networkCap, 0);

    grid.SetCellText(2, 2, "");
    grid.SetCellText(0, 2, "EUTRAN");
    Mspl::Record unchanged = r;
    try {
        unchanged.ReadFromGrid(grid, 2, {});
        FAIL() << "an empty cell must be refused";
    } catch (const GridError& e) {
        EXPECT_EQ(e.MessageId(), 140u);
        EXPECT_EQ(e.Column(), 2);
        EXPECT_EQ(e.Text(), "A required value is missing in column 2, row 2 of the Mspl-Table.");
    }
    EXPECT_EQ(unchanged.sysType, 5) << "a refused row changes nothing";

    r.OnGridHeading(grid, kGridHeadingEvent);
    EXPECT_EQ(grid.GetColumnHeading(3), "Higher Priority Seach");
}

TEST(Mspl, SaveChecksNameTheFieldAndTheTab) {
    struct Case {
        std::vector<std::string> header;
        std::vector<std::string> ids;
        std::vector<std::string> messages;
    };
    // Header fields at their edges are checked once for every kind (MmssContract).
    const Case cases[] = {
        {{"256", "65536"},
         {"1"},
         {"Invalid Mmss Revision Value. Range is 0 - 255",
          "Invalid Mspl Version Value.Range is 0 - 65535"}},
        {{"1", "1"}, {"0", "255"}, {}},
        {{"1", "1"}, {"4", "256", ""}, {"Invalid Mspl Id value in Tab 2The range is 0 - 255"}},
        {{"1", "1"}, {"4", "", "300"}, {"No Mspl Id entered in Tab 2"}},
        {{"1", "1"}, {"-1", "abc"}, {}},  // signed comparison: passes, written as low bits
    };
    for (const auto& c : cases) {
        Mspl::Document doc;
        doc.header.SetValues(c.header);
        for (const auto& id : c.ids) doc.data.AddId(id).Add(MakeRecord(0, 1));
        std::vector<std::string> messages;
        for (const auto& p : doc.Check()) messages.push_back(p.message);
        EXPECT_EQ(messages, c.messages);
    }

    Mspl::Document empty;
    empty.header.SetValues({"1", "1"});
    empty.data.AddId("3");
    ASSERT_EQ(empty.Check().size(), 1u);
    EXPECT_EQ(empty.Check()[0].message, "A valid Roaming List needs at least one Mspl record.");
    EXPECT_EQ(empty.LoadNotice(), "There are no mspl records in the file.");
}

TEST(Mspl, NegativeIdIsWrittenAsItsLowBits) {
    Mspl::Document doc;
    doc.header.SetValues({"1", "1"});
    doc.data.AddId("-1").Add(MakeRecord(0, 1));
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(doc.Write(bytes, error)) << error;
    EXPECT_EQ(bytes[6], 0xFF);
}

}  // namespace
}  // namespace Tarn
