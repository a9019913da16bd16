#include <gtest/gtest.h>

#include <string>

#include "foundation/MessageTable.h"
#include "grid/GridError.h"

namespace Tarn {
namespace {

// Each message takes the cell in its own order; a mix-up shows as a wrong number in the text.
TEST(GridError, ArgumentOrderPerMessage) {
    const struct {
        GridError error;
        std::string text;
    } cases[] = {
        {GridError(Msg::OutOfRange, 4, 7, "System Table", 0, 255),
         "The value in column 4, row 7 of the System Table is out of range.\n"
         "The range for this input is 0 - 255"},
        {GridError(Msg::RequiredValueMissing, 2, 3, "Acquisition Table"),
         "A required value is missing in column 2, row 3 of the Acquisition Table."},
        {GridError(Msg::ChannelGap, 5, 9, "Acquisition Table"),
         "At least one gap was detected between channels in record 9 of the ACQ table. "},
        {GridError(Msg::UmbGap, 5, 8, "Acquisition Table"),
         "At least one gap was detected between UMB records in row 8 of the ACQ table. "},
        {GridError(Msg::InvalidAssnTag, 5, 11, "System Table"),
         "Invalid Association Tag value (greater than 255) in row 11 of the System Table."},
        {GridError(Msg::InvalidAcqIndex, 6, 1, "System Table"),
         "An invalid ACQ Index is entered column 6, row 1 of the System Record Table."},
        {GridError(1, 5, 9, "T"), "Error 1 in column 5, row 9 of the T."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.error.Text(), c.text) << c.error.MessageId();
        EXPECT_STREQ(c.error.what(), c.text.c_str());
    }
}

TEST(GridError, KeepsItsCellAndRange) {
    const GridError ranged(Msg::OutOfRange, 4, 7, "System Table", -1, 32767);
    EXPECT_EQ(ranged.MessageId(), Msg::OutOfRange);
    EXPECT_EQ(ranged.Column(), 4);
    EXPECT_EQ(ranged.Row(), 7);
    EXPECT_EQ(ranged.TableName(), "System Table");
    EXPECT_TRUE(ranged.HasRange());
    EXPECT_EQ(ranged.Low(), -1);
    EXPECT_EQ(ranged.High(), 32767);

    const GridError plain(Msg::RequiredValueMissing, 0, 0, "T");
    EXPECT_FALSE(plain.HasRange());
    // 139 without a range still fills every conversion rather than leaving "%d" in the text.
    EXPECT_EQ(GridError(Msg::OutOfRange, 1, 2, "T").Text().find('%'), std::string::npos);
}

}  // namespace
}  // namespace Tarn
