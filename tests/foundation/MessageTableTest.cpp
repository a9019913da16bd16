#include <gtest/gtest.h>

#include <string>

#include "foundation/MessageTable.h"

namespace Tarn {
namespace {

TEST(FormatText, Conversions) {
    const struct {
        const char* format;
        std::string out;
        std::string expected;
    } cases[] = {
        {"%d", FormatText("%d", {-5}), "-5"},
        {"%u of -1", FormatText("%u", {-1}), "4294967295"},
        {"%u", FormatText("%u", {7u}), "7"},
        {"%s", FormatText("<%s>", {"abc"}), "<abc>"},
        {"%03u", FormatText("%03u", {7}), "007"},
        {"%02u", FormatText("%02u", {5}), "05"},
        {"%02u wider", FormatText("%02u", {123}), "123"},
        {"%X", FormatText("%X", {0xBEEF}), "BEEF"},
        {"%X of -1", FormatText("%X", {-1}), "FFFFFFFF"},
        {"%04X", FormatText("%04X", {0x1F}), "001F"},
        {"%ld", FormatText("%ld", {1234567890123LL}), "1234567890123"},
        {"%%", FormatText("%d%%", {50}), "50%"},
        {"number as %s", FormatText("%s", {42}), "42"},
        {"text as %d", FormatText("%d", {"txt"}), "txt"},
        {"in order", FormatText("%s=%d, %s=%d", {"a", 1, "b", 2}), "a=1, b=2"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.out, c.expected) << c.format;
}

TEST(FormatText, MissingArgumentsAndStrayPercentsAreKept) {
    EXPECT_EQ(FormatText("a %d b %s", {1}), "a 1 b %s");
    EXPECT_EQ(FormatText("%d - %d", {}), "%d - %d");
    EXPECT_EQ(FormatText("100%", {1}), "100%");
    EXPECT_EQ(FormatText("%q", {1}), "%q");
}

TEST(MessageTable, TextsByNumber) {
    EXPECT_EQ(MessageText(Msg::FileInvalid), "The Roaming List file is invalid.");
    EXPECT_EQ(MessageText(Msg::NeedOneAcqRecord),
              "A vallid Roaming List needs at least one acquisiiton record.");
    EXPECT_EQ(FormatMessage(Msg::RequiredValueMissing, {2, 3, "System Table"}),
              "A required value is missing in column 2, row 3 of the System Table.");
    EXPECT_EQ(FormatMessage(Msg::OutOfRange, {1, 4, "Acquisition Table", 0, 2047}),
              "The value in column 1, row 4 of the Acquisition Table is out of range.\n"
              "The range for this input is 0 - 2047");
    EXPECT_EQ(FormatMessage(Msg::ChannelGap, {6}),
              "At least one gap was detected between channels in record 6 of the ACQ table. ");
    EXPECT_EQ(
        FormatMessage(Msg::MncTabRange, {2, 0, 999}),
        "The value of MNC in Tab-2 is out of range.\nThe range for this input is 0 - 999 or FFF");
    EXPECT_TRUE(HasMessage(Msg::VersionNotSupported));
    EXPECT_FALSE(HasMessage(131));
    EXPECT_EQ(MessageText(131), "");
    EXPECT_EQ(FormatMessage(131, {1}), "");
}

}  // namespace
}  // namespace Tarn
