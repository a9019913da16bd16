#include <gtest/gtest.h>

#include "grid/MemoryGrid.h"
#include "mmss/TechOrder/TechOrderDocument.h"
#include "mmss/TechOrder/TechOrderRecord.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

std::vector<std::string> Names(const TechOrder::Document& doc) {
    std::vector<std::string> names;
    for (const auto& r : doc.data.records) names.push_back(r->ToText());
    return names;
}

TEST(TechOrder, AnEmptyTableOpensWithANoticeAndDoesNotSave) {
    auto empty = Mmss::FromBytes<TechOrder::Document>(Hex("00 05 00 00"));
    EXPECT_EQ(empty->header.version, "5");
    EXPECT_EQ(empty->LoadNotice(), "There are no Technology Order records in the file.");
    EXPECT_EQ(empty->Check().at(0).message,
              "A valid Technology Order List needs at least one Technology Order record.");
    EXPECT_EQ(empty->RenderText(),
              "\r\n\t\t*********** Tech Order Table ***********\r\n\r\nVersion : 5\r\n");
}

TEST(TechOrder, UnnamedEntryIsKeptThroughTextGridAndSave) {
    auto doc = Mmss::FromBytes<TechOrder::Document>(Hex("00 01 00 02 07 0D"));
    EXPECT_EQ(Names(*doc), (std::vector<std::string>{"Invalid\r\n", "LTE_NB1\r\n"}));
    MemoryGrid grid(TechOrder::Record::kTableName, 1, 2);
    for (int row = 0; row < 2; ++row) doc->data.records.GetAt(row)->WriteToGrid(grid, row);
    EXPECT_EQ(grid.GetCellText(0, 0), "Invalid");
    for (int row = 0; row < 2; ++row) doc->data.records.GetAt(row)->ReadFromGrid(grid, row, {});
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(doc->Write(bytes, error)) << error;
    EXPECT_EQ(bytes, Hex("00 01 00 02 07 0D"));
}

TEST(TechOrder, SaveChecks) {
    struct Case {
        const char* version;
        std::vector<uint8_t> ratIds;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"3", {2, 9}, {}},
        {"3", {0, 255}, {}},
        {"3", {9, 5, 9}, {"There are redundant entries. The Rat-Ids should not be repeated"}},
    };
    for (const auto& c : cases) {
        TechOrder::Document doc;
        doc.header.version = c.version;
        for (uint8_t id : c.ratIds) {
            doc.data.AddRecord();
            static_cast<TechOrder::Record&>(*doc.data.records.GetAt(doc.data.records.GetSize() - 1))
                .ratId = id;
        }
        std::vector<std::string> messages;
        for (const auto& p : doc.Check()) messages.push_back(p.message);
        EXPECT_EQ(messages, c.messages);
    }
    TechOrder::Data data;
    data.AddRecord();
    EXPECT_EQ(data.records.GetAt(0)->ToText(), "CDMA-1x\r\n") << "a new entry";
}

}  // namespace
}  // namespace Tarn
