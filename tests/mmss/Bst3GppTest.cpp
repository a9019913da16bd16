#include <gtest/gtest.h>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "mmss/Bst3Gpp/Bst3GppDocument.h"
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

std::string ReadError(const std::string& hex) {
    std::string error;
    EXPECT_FALSE(MmssKind(FileKind::Bst3Gpp).read(Hex(hex), "a.Bst3Gpp", error));
    return error;
}

TEST(Bst3Gpp, EntryLayouts) {
    CRLFile empty(Hex("01 00 00 00 00 00"));
    Bst3Gpp::Entry entry;
    EXPECT_EQ(entry.Read(empty), 48u);
    EXPECT_TRUE(entry.records.IsEmpty());
    EXPECT_TRUE(entry.mcc.empty());

    CRLFile withMcc(Hex("01 00 00 00 01 F3 10 00"));
    EXPECT_EQ(entry.Read(withMcc), 64u);
    EXPECT_EQ(entry.mcc, "310") << "the first nibble is ignored";

    // Written back: the length counts the bytes after it, the filler nibble is 0.
    CRLFile out;
    EXPECT_EQ(entry.Write(out), 64u);
    EXPECT_EQ(out.Bytes(), Hex("01 00 05 00 01 03 10 00"));
}

TEST(Bst3Gpp, UnsupportedTypesStopTheRead) {
    EXPECT_EQ(ReadError("00 01 00 01 02 00 00 00 00 00"),
              "Invalid Bst Type. Only Type1 is supported");
    EXPECT_EQ(ReadError("00 01 00 01 01 00 00 01 00 00"),
              "Invalid Extension Inclusion. Only 0 is supported");
    EXPECT_EQ(ReadError("00 01 00 01 01 00 00 00 00 01 09 02"),
              "Invalid Band Channel Type. Should be Type1 only");
    EXPECT_NE(ReadError("00 01 00 01 01 00 00 00 00 01 09 01 00 05 01 04 02 08 7F")
                  .find("Premature end of file."),
              std::string::npos)
        << "a channel count beyond the end of the file";
}

TEST(Bst3Gpp, GridRowCarriesBandsAndChannels) {
    Bst3Gpp::Record r;
    r.ratId = 42;  // no name: shown as its number
    r.bands = {{4, {2175, 2200}}, {13, {}}};
    MemoryGrid grid(Bst3Gpp::Record::kTableName, 3, 1);
    r.WriteToGrid(grid, 0);
    std::vector<std::string> cells;
    for (int c = 0; c < grid.GetColumnCount(); ++c) cells.push_back(grid.GetCellText(c, 0));
    EXPECT_EQ(cells,
              (std::vector<std::string>{"42", "1", "2", "4", "2", "2175", "2200", "13", "0"}));
    r.OnGridHeading(grid, kGridHeadingEvent);
    EXPECT_EQ(grid.GetColumnHeading(3), "BandId(1)");
    EXPECT_EQ(grid.GetColumnHeading(6), "Channel 2");
    EXPECT_EQ(grid.GetColumnHeading(8), "Num Channels(2)");

    Bst3Gpp::Record back;
    back.ReadFromGrid(grid, 0, {});
    EXPECT_EQ(back.ratId, 42);
    EXPECT_EQ(back.bands, r.bands);

    grid.SetCellText(0, 0, "EUTRAN");
    grid.SetCellText(6, 0, "65536");
    try {
        back.ReadFromGrid(grid, 0, {});
        FAIL();
    } catch (const GridError& e) {
        EXPECT_EQ(e.MessageId(), 139u);
        EXPECT_EQ(e.Column(), 6);
        EXPECT_EQ(e.High(), 65535);
    }
    grid.SetCellText(6, 0, "");
    EXPECT_THROW(back.ReadFromGrid(grid, 0, {}), GridError);
}

TEST(Bst3Gpp, SaveChecks) {
    struct Case {
        std::string version, type, extension, mcc;
        uint8_t bandChannelType;
        bool withRecord;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"1", "1", "0", "310", 1, true, {}},
        {"1", "1", "0", "999", 1, true, {}},
        {"1", "2", "0", "", 1, true, {"Invalid Bst Type. Only Type1 is supported"}},
        {"1", "1", "1", "", 1, true, {"Invalid Bst ExtensionIncl. Only 0 is supported"}},
        {"1", "1", "0", "1000", 1, true, {"Invalid Mcc value in Tab 2The range is 0 - 999"}},
        {"1", "1", "0", "", 3, true, {"Invalid Band Channel Type. Should be Type1 only"}},
        {"1",
         "1",
         "0",
         "",
         1,
         false,
         {"A valid Technology Order List needs at least one 3GPP BST record."}},
    };
    for (const auto& c : cases) {
        Bst3Gpp::Document doc;
        doc.header.version = c.version;
        doc.data.entries.resize(2);
        Bst3Gpp::Entry& tab2 = doc.data.entries[1];
        tab2.type = c.type;
        tab2.extension = c.extension;
        tab2.mcc = c.mcc;
        if (c.withRecord) {
            auto record = std::make_unique<Bst3Gpp::Record>();
            record->bandChannelType = c.bandChannelType;
            tab2.records.Add(std::move(record));
        }
        std::vector<std::string> messages;
        for (const auto& p : doc.Check()) messages.push_back(p.message);
        EXPECT_EQ(messages, c.messages);
    }
}

}  // namespace
}  // namespace Tarn
