#include <gtest/gtest.h>

#include <string>
#include <tuple>

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
        {GridError(Msg::OutOfRange, 4, 7, "System Table", -1, 32767),
         "The value in column 4, row 7 of the System Table is out of range.\nThe range for this input is -1 - 32767"},
        {GridError(Msg::OutOfRange, 1, 2, "T"),  // no range given: every conversion is still filled
         "The value in column 1, row 2 of the T is out of range.\nThe range for this input is 0 - 0"},
        {GridError(Msg::RequiredValueMissing, 2, 3, "Acquisition Table"),
         "A required value is missing in column 2, row 3 of the Acquisition Table."},
        {GridError(Msg::ChannelGap, 5, 9, "Acquisition Table"),
         "At least one gap was detected between channels in record 9 of the ACQ table. "},
        {GridError(Msg::UmbGap, 5, 8, "Acquisition Table"),
         "At least one gap was detected between UMB records in row 8 of the ACQ table. "},
        {GridError(Msg::TypeSpecificGap, 5, 6, "Acquisition Table"),
         "At least one gap was detected between type specific fields in record 6 of the ACQ table. "},
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
    const GridError& ranged = cases[0].error;
    EXPECT_EQ(std::make_tuple(ranged.Column(), ranged.Row(), ranged.TableName(), ranged.HasRange(),
                              ranged.Low(), ranged.High()),
              std::make_tuple(4, 7, std::string("System Table"), true, -1LL, 32767LL));
    EXPECT_FALSE(cases[1].error.HasRange());
}

}  // namespace
}  // namespace Tarn
