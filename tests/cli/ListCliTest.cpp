// Black-box runs of the real tarn-cli on real files: every verb, its output and its exit status.
#include <gtest/gtest.h>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kData = TARN_TEST_DATA_DIR;
const std::string kListA = kExamples + "/example-is683a.prl";
const std::string kListE = kExamples + "/example-is683e.prl";

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(CliRoamingList, TextAndJsonGoToStdoutOrAFile) {
    TempDir dir;
    CliResult text = RunCli({"text", kListE});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out, Slurp(kExamples + "/example-is683e.txt"));
    EXPECT_TRUE(text.err.empty());

    CliResult toFile = RunCli({"text", kListE, "-o", (dir / "out.txt").string()});
    EXPECT_EQ(toFile.status, 0);
    EXPECT_TRUE(toFile.out.empty());
    EXPECT_EQ(Slurp(dir / "out.txt"), text.out);

    CliResult json = RunCli({"json", kListA});
    EXPECT_EQ(json.status, 0);
    EXPECT_TRUE(Has(json.out, "\"version\": \"IS-683A\"")) << json.out;
    EXPECT_TRUE(Has(json.out, "\"typeName\": \"Analog Cellular\""));
}

TEST(CliRoamingList, BuildFromTextAndJsonGivesTheSameBytes) {
    TempDir dir;
    for (const std::string& list : {kListA, kListE}) {
        SCOPED_TRACE(list);
        ASSERT_EQ(RunCli({"text", list, "-o", (dir / "l.txt").string()}).status, 0);
        ASSERT_EQ(RunCli({"json", list, "-o", (dir / "l.json").string()}).status, 0);
        CliResult fromText = RunCli({"build", (dir / "l.txt").string(), "-o", (dir / "t.prl").string()});
        EXPECT_EQ(fromText.status, 0) << fromText.err;
        CliResult fromJson = RunCli({"build", (dir / "l.json").string(), "-o", (dir / "j.prl").string()});
        EXPECT_EQ(fromJson.status, 0) << fromJson.err;
        EXPECT_EQ(SlurpBytes(dir / "t.prl"), SlurpBytes(list));
        EXPECT_EQ(SlurpBytes(dir / "j.prl"), SlurpBytes(list));
    }
}

TEST(CliRoamingList, ConvertDownReportsWhatWasDroppedAndUpAgainKeepsTheRest) {
    TempDir dir;
    CliResult down = RunCli({"convert", kListE, "--to", "IS-683B", "-o", (dir / "b.prl").string()});
    EXPECT_EQ(down.status, 0) << down.err;
    EXPECT_TRUE(Has(down.err, "IS-683E -> IS-683B")) << down.err;
    EXPECT_TRUE(Has(down.err, "acquisition record 3 (CDMA Generic) dropped")) << down.err;
    CliResult check = RunCli({"check", (dir / "b.prl").string()});
    // What is left uses only IS-683A record types, and a file does not name its version: the
    // lowest version that reads it wins.
    EXPECT_TRUE(Has(check.out, "IS-683A, size and CRC valid")) << check.out;

    CliResult up = RunCli({"convert", kListA, "--to", "E", "-o", (dir / "e.prl").string()});
    EXPECT_EQ(up.status, 0);
    EXPECT_TRUE(up.err.empty()) << up.err;
    CliResult back = RunCli({"convert", (dir / "e.prl").string(), "--to", "IS-683A", "-o",
                             (dir / "a.prl").string()});
    EXPECT_EQ(back.status, 0);
    EXPECT_EQ(SlurpBytes(dir / "a.prl"), SlurpBytes(kListA));
}

TEST(CliRoamingList, JoinAndSplitRoundTripAndAChangedByteIsRefused) {
    TempDir dir;
    const auto joined = (dir / "joined.prl").string();
    ASSERT_EQ(RunCli({"join", kListA, kListE, "-o", joined}).status, 0);
    EXPECT_EQ(SlurpBytes(joined).size(), SlurpBytes(kListA).size() + SlurpBytes(kListE).size() + 2);
    CliResult check = RunCli({"check", joined});
    EXPECT_EQ(check.status, 0);
    EXPECT_TRUE(Has(check.out, "Concatenated PRL file")) << check.out;
    CliResult text = RunCli({"text", joined});
    EXPECT_EQ(text.status, 1);
    EXPECT_TRUE(Has(text.err, "Concatenated PRL file")) << text.err;

    ASSERT_EQ(RunCli({"split", joined, "-o", (dir / "1.prl").string(), (dir / "2.prl").string()}).status, 0);
    EXPECT_EQ(SlurpBytes(dir / "1.prl"), SlurpBytes(kListA));
    EXPECT_EQ(SlurpBytes(dir / "2.prl"), SlurpBytes(kListE));

    std::vector<uint8_t> bytes = SlurpBytes(joined);
    bytes[bytes.size() / 2] ^= 0x10;
    WriteBytes(dir / "bad.prl", bytes);
    CliResult bad = RunCli({"split", (dir / "bad.prl").string(), "-o", (dir / "x.prl").string(),
                            (dir / "y.prl").string()});
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.err, "tarn-cli: split: Input file is not a valid Concatenated PRL file.\n");
}

// One clear line on stderr and the status of its class for each kind of failure.
TEST(CliRoamingList, FailuresAreOneLineWithTheirExitStatus) {
    TempDir dir;
    WriteBytes(dir / "garbage.prl", {1, 2, 3, 4, 5, 6});
    WriteBytes(dir / "text.txt", {'h', 'i'});
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string err;
    } cases[] = {
        {{"text", (dir / "missing.prl").string()}, 1, "No such file"},
        {{"text", (dir / "garbage.prl").string()}, 1, "The Roaming List file is not a recognized format."},
        {{"build", (dir / "text.txt").string(), "-o", (dir / "o.prl").string()}, 1,
         "The Roaming List file is not a recognized format."},
        {{"convert", kListA, "--to", "IS-683Z", "-o", (dir / "o.prl").string()}, 2, "unknown version"},
        {{"join", kListA, kListA, "-o", (dir / "o.prl").string()}, 2, "Two different files"},
        {{"join", kListA, (dir / "text.txt").string(), "-o", (dir / "o.prl").string()}, 1,
         "Second input file is not a valid roaming list file."},
        {{"split", kListA, "-o", (dir / "1.prl").string(), (dir / "2.prl").string()}, 1,
         "Input file is not a valid Concatenated PRL file."},
        {{"text"}, 2, "FILE is required"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + (c.args.size() > 1 ? c.args[1] : ""));
        CliResult r = RunCli(c.args);
        EXPECT_EQ(r.status, c.status) << r.err;
        EXPECT_TRUE(Has(r.err, c.err)) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "o.prl"));  // nothing half-written is left
}

TEST(CliMmss, EveryKindChecksRendersAndRebuildsFromJson) {
    TempDir dir;
    for (const char* name : {"sample.mspl", "sample.mlpl", "sample.ehplmn", "sample.oplmn",
                             "sample.Bst3Gpp", "sample.tot", "sample.laf"}) {
        SCOPED_TRACE(name);
        const std::string path = kData + "/mmss/" + name;
        CliResult check = RunCli({"check", path});
        EXPECT_EQ(check.status, 0) << check.out << check.err;
        EXPECT_TRUE(Has(check.out, ", valid")) << check.out;
        EXPECT_EQ(RunCli({"info", path}).status, 0);
        CliResult text = RunCli({"text", path});
        EXPECT_EQ(text.status, 0);
        EXPECT_EQ(text.out, Slurp(path + ".txt"));
        const auto json = (dir / (std::string(name) + ".json")).string();
        ASSERT_EQ(RunCli({"json", path, "-o", json}).status, 0);
        const auto rebuilt = (dir / name).string();
        CliResult build = RunCli({"build", json, "-o", rebuilt});
        EXPECT_EQ(build.status, 0) << build.err;
        EXPECT_EQ(SlurpBytes(rebuilt), SlurpBytes(path));
    }
}

TEST(CliMmss, TruncatedFilesAreRefusedWithAMessage) {
    TempDir dir;
    for (const char* name : {"sample.mspl", "sample.mlpl", "sample.Bst3Gpp", "sample.tot"}) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> bytes = SlurpBytes(kData + "/mmss/" + name);
        bytes.resize(3);
        WriteBytes(dir / name, bytes);
        CliResult r = RunCli({"text", (dir / name).string()});
        EXPECT_EQ(r.status, 1);
        EXPECT_FALSE(r.err.empty());
        EXPECT_TRUE(r.out.empty());
    }
}

}  // namespace
}  // namespace Tarn
