#include <gtest/gtest.h>

#include <string>

#include "foundation/MessageTable.h"

namespace Tarn {
namespace {

TEST(FormatText, ConversionsWidthsAndWhatIsLeftAlone) {
    const struct {
        std::string out;
        std::string expected;
    } cases[] = {
        {FormatText("%d", {-5}), "-5"},
        {FormatText("%i|%u", {7, -1}), "7|4294967295"},  // %u of a negative int: its 32-bit form
        {FormatText("<%s>", {"abc"}), "<abc>"},
        {FormatText("%03u|%9d|%-3d|", {7, 5, 1}), "007|        5|1  |"},
        {FormatText("%02u", {123}), "123"},
        {FormatText("%X|%x|%04X", {0xBEEF, 0xBEEF, 0x1F}), "BEEF|beef|001F"},
        {FormatText("%X", {-1}), "FFFFFFFF"},
        {FormatText("%ld|%hd", {1234567890123LL, 3}), "1234567890123|3"},
        {FormatText("%d%%", {50}), "50%"},
        {FormatText("%s|%d", {42, "txt"}), "42|txt"},  // each argument as it is, whatever the conversion
        {FormatText("a %d b %s", {1}), "a 1 b %s"},    // missing arguments leave their conversion
        {FormatText("100%", {1}), "100%"},              // a stray percent at the end or before another
        {FormatText("%q %d", {1}), "%q 1"},             // letter is kept and takes no argument
    };
    for (const auto& c : cases) EXPECT_EQ(c.out, c.expected);
}

TEST(MessageTable, TextsByNumberFromTheFirstToTheLast) {
    EXPECT_EQ(MessageText(128), "Tarn Roaming List Editor");
    EXPECT_EQ(MessageText(Msg::VersionNotSupported), "Version input is not supported.");  // the last one
    EXPECT_EQ(FormatMessage(Msg::OutOfRange, {1, 4, "Acquisition Table", 0, 2047}),
              "The value in column 1, row 4 of the Acquisition Table is out of range.\n"
              "The range for this input is 0 - 2047");
    for (unsigned absent : {0u, 127u, 131u, 61462u}) {
        EXPECT_FALSE(HasMessage(absent)) << absent;
        EXPECT_EQ(MessageText(absent), "") << absent;
        EXPECT_EQ(FormatMessage(absent, {1}), "") << absent;
    }
    EXPECT_TRUE(HasMessage(Msg::VersionNotSupported));
}

}  // namespace
}  // namespace Tarn
