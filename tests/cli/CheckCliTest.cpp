#include <gtest/gtest.h>

#include "tests/cli/CliRunner.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {

using namespace Test;

std::vector<uint8_t> EmptyLongList() {
    return Seal(PackBits({{16, 0}, {16, 7}, {8, 3}, {1, 1}, {8, 0}, {9, 0}, {9, 0}, {14, 0}, {7, 0}}));
}

TEST(CliCheck, ReportsVersionPrefixAndExitStatus) {
    TempDir dir;
    WriteBytes(dir / "good.prl", EmptyLongList());
    WriteBytes(dir / "prefixed.prl", Prefix(EmptyLongList()));
    std::vector<uint8_t> bad = EmptyLongList();
    bad[3] ^= 0x40;
    WriteBytes(dir / "bad.prl", bad);

    CliResult ok = RunCli({"check", (dir / "good.prl").string(), (dir / "prefixed.prl").string()});
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_NE(ok.out.find("good.prl: IS-683C, size and CRC valid, not prefixed"), std::string::npos)
        << ok.out;
    EXPECT_NE(ok.out.find("prefixed.prl: IS-683C, size and CRC valid, prefixed"), std::string::npos);
    // Sound files whose content a save would refuse stay valid but say why.
    EXPECT_NE(ok.out.find("  warning: 155"), std::string::npos) << ok.out;

    CliResult mixed = RunCli({"check", (dir / "good.prl").string(), (dir / "bad.prl").string()});
    EXPECT_EQ(mixed.status, 1);
    EXPECT_NE(mixed.out.find("bad.prl: The Roaming List file is not a recognized format."),
              std::string::npos)
        << mixed.out;

    CliResult missing = RunCli({"check", (dir / "nope.prl").string()});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.out.find("No such file"), std::string::npos) << missing.out;
}

TEST(CliCheck, UsageErrorsHelpAndVersion) {
    CliResult none = RunCli({"check"});
    EXPECT_EQ(none.status, 2);
    EXPECT_NE(none.err.find("FILE is required"), std::string::npos) << none.err;

    CliResult unknown = RunCli({"frobnicate"});
    EXPECT_EQ(unknown.status, 2);

    CliResult help = RunCli({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("check"), std::string::npos);

    CliResult version = RunCli({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_NE(version.out.find("tarn-cli 2.7"), std::string::npos);
}

}  // namespace
}  // namespace Tarn
