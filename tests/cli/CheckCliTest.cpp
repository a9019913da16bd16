// tarn-cli check and the usage every verb shares: one line a file with its version or why it is
// refused, the warnings a save would give, and the notices opening the file gives.
#include "tests/cli/CliRunner.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {

using namespace Test;

// An IS-683C list with empty tables.
std::vector<uint8_t> EmptyLongList() {
    return Seal(PackBits({{16, 0}, {16, 7}, {8, 3}, {1, 1}, {8, 0}, {9, 0}, {9, 0}, {14, 0}, {7, 0}}));
}

TEST(CliCheck, OneLineAFileThenItsWarningsAndNotices) {
    TempDir dir;
    const std::string good = dir.File("good.prl"), prefixed = dir.File("prefixed.prl");
    const std::string bad = dir.File("bad.prl"), missing = dir.File("nope.prl");
    WriteBytes(good, EmptyLongList());
    WriteBytes(prefixed, Prefix(EmptyLongList()));
    std::vector<uint8_t> broken = EmptyLongList();
    broken[3] ^= 0x40;
    WriteBytes(bad, broken);
    const auto sound = [](const std::string& path, const std::string& prefix) {
        return path + ": IS-683C, size and CRC valid, " + prefix + ", 0 acquisition and 0 system records\n" +
               "  warning: 155: A vallid Roaming List needs at least one acquisiiton record.\n"
               "  warning: 154: A valid Roaming List needs at least one system record.\n" +
               path + ": notice: There are no acquisition records in the file.\n" + path +
               ": notice: There are no system records in the file.\n";
    };
    EXPECT_EQ(Expect({"check", good, prefixed}, 0).out, sound(good, "not prefixed") + sound(prefixed, "prefixed"));
    const CliResult r = Expect({"check", good, bad, missing}, 1);
    EXPECT_EQ(r.out, sound(good, "not prefixed") + bad +
                         ": The Roaming List file is not a recognized format. (The size or CRC of the list "
                         "does not match.)\n" +
                         missing + ": No such file: " + missing + "\n");
    EXPECT_EQ(r.err, "");
}

// check, info and text read a JSON or text form by its content, whatever the file is called, and
// say so; what cannot be read says what it is.
TEST(CliCheck, NoticesSayWhatOpeningTheFileTells) {
    TempDir dir;
    WriteBytes(dir / "list.prl", SlurpBytes(kExamples + "/example-is683e.txt"));
    const std::string mspl = kMmss + "sample.mspl.txt", tot = kMmss + "sample.tot.txt";
    const struct {
        std::vector<std::string> args;
        int status;
        std::vector<std::string> lines;
    } cases[] = {
        {{"check", kJsonE},
         0,
         {kJsonE + ": IS-683E, valid\n" + kJsonE + ": notice: Read from the JSON form of IS-683E.\n"}},
        {{"check", dir.File("list.prl")},
         0,
         {"list.prl: IS-683E (text), valid\n" + dir.File("list.prl") +
          ": notice: The file holds the text form of a roaming list and was read as such.\n"}},
        {{"check", mspl}, 1, {mspl + ": This is the text view of an MMSS file (MSPL Table), which Tarn writes but"}},
        {{"info", kJsonE}, 0, {kJsonE + ": IS-683E\n", "  notice: Read from the JSON form of IS-683E.\n"}},
        {{"text", kJsonE}, 0, {"=============== ROAMING LIST ==============="}},
        {{"text", tot}, 1, {"tarn-cli: text: " + tot + ": This is the text view of an MMSS file (Tech Order Table)"}},
    };
    for (const auto& c : cases) Expect(c.args, c.status, c.lines);
}

TEST(CliCheck, UsageHelpAndVersion) {
    Expect({"check"}, 2, {"FILE is required"});
    Expect({"frobnicate"}, 2, {"tarn-cli: \"frobnicate\" is not a command; \"tarn-cli --help\" lists them.\n"});
    Expect({}, 2, {"A subcommand is required"});
    Expect({"--help"}, 0, {"check", "select", "optimize"});
    Expect({"--version"}, 0, {"tarn-cli 2.7"});
}

}  // namespace
}  // namespace Tarn
