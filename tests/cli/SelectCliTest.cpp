// Black-box runs of tarn-cli select on the shipped lists: one answer whatever form the list is in,
// the batch form line for line, and a clear message with the right status for every bad input.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

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

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(CliSelect, OneAnswerWhateverFormTheListIsIn) {
    TempDir dir;
    // An empty provider database keeps the answers free of the machine's operator names.
    const std::vector<std::string> obs = {"--sid", "4139", "--nid", "12", "--band", "1", "--channel", "25", "--json",
                                          "--providers", kData + "/providers-none.xml"};
    auto run = [&](std::vector<std::string> args) {
        args.insert(args.begin(), "select");
        args.insert(args.end(), obs.begin(), obs.end());
        return RunCli(args);
    };
    CliResult binary = run({kListE});
    ASSERT_EQ(binary.status, 0) << binary.err;
    // SID 4139 has a wildcard record on PCS blocks and a NID 12 record on cellular channels: the
    // channel decides, and the NID record is still listed as a match.
    EXPECT_EQ(binary.out,
              R"({"verdict":"preferred","match":{"index":0,"geo":0,"priority":0,"preferred":true,"roamInd":1,)"
              R"("acqIndex":0,"acqCovers":true},"candidates":[0,1],"morePreferred":[],"roamInd":1})" "\n");

    ASSERT_EQ(RunCli({"json", kListE, "-o", (dir / "e.json").string()}).status, 0);
    ASSERT_EQ(RunCli({"join", kListA, kListE, "-o", (dir / "ae.prl").string()}).status, 0);
    for (const auto& args : std::vector<std::vector<std::string>>{
             {kExamples + "/example-is683e.txt"}, {(dir / "e.json").string()},
             {(dir / "ae.prl").string(), "--part", "2"}}) {
        CliResult r = run(args);
        EXPECT_EQ(r.status, 0) << args[0] << ": " << r.err;
        EXPECT_EQ(r.out, binary.out) << args[0];
    }
    // The first list of the same file is the IS-683A one, where the NID 7 record is the one named.
    CliResult part1 = RunCli({"select", (dir / "ae.prl").string(), "--sid", "4139", "--nid", "7", "--json"});
    EXPECT_TRUE(Has(part1.out, R"("match":{"index":1,)")) << part1.out;
}

TEST(CliSelect, HumanAnswerOnARealList) {
    struct Case {
        std::vector<std::string> args;
        std::vector<std::string> parts;
    };
    const Case cases[] = {
        {{kListE, "--sid", "22"},
         {"SID 22: negative", "record: 6\t0\tNeg", "GEO 1, priority level 3, roaming indicator none",
          "more preferred systems (the handset keeps looking for these):", "[level 2; band 1: 25, 50, 75, 100, 125]"}},
        {{kListE, "--sid", "4139", "--nid", "12", "--band", "1", "--channel", "25"},
         {"preferred", "scans band 1 channel 25", "its acquisition record does not scan band 1 channel 25"}},
        {{kListE, "--sid", "4139", "--band", "1", "--channel", "2000"},
         {"no record naming this system scans the channel it was found on", "less specific"}},
        {{kListE, "--mcc", "310", "--mnc", "00"}, {"MCC 310 MNC 00: preferred", "record: 5\t14", "less specific (2"}},
        {{kListE, "--subnet", "2001:db8:ffff::1/128"}, {"record: 2\t1\tPref", "2001:db8::/32"}},
        {{kListE, "--sid", "9"}, {"SID 9: unlisted-forbidden", "preferred-only, so the handset may not use it"}},
        {{kListA, "--sid", "9"}, {"unlisted-allowed", "default roaming indicator"}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"select"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        CliResult r = RunCli(args);
        EXPECT_EQ(r.status, 0) << r.err;
        for (const auto& part : c.parts) EXPECT_TRUE(Has(r.out, part)) << part << "\n" << r.out;
    }
}

TEST(CliSelect, BatchGivesOneLineEachAsTheSingleFormDoes) {
    TempDir dir;
    const auto csv = dir / "obs.csv";
    std::ofstream(csv) << "sid,nid,mcc,mnc,subnet,band,channel\n4139,12,,,,1,25\n22,,,,,,\n\n"
                          ",,311,480,,,\n,,,,2001:db8::1/64,,\n9,,,,,,\n";
    CliResult json = RunCli({"select", kListE, "--observations", csv.string(), "--json"});
    ASSERT_EQ(json.status, 0) << json.err;
    const auto lines = Lines(json.out);
    ASSERT_EQ(lines.size(), 5u);
    const std::vector<std::vector<std::string>> singles = {{"--sid", "4139", "--nid", "12", "--band", "1", "--channel", "25"},
                                                           {"--sid", "22"}, {"--mcc", "311", "--mnc", "480"},
                                                           {"--subnet", "2001:db8::1/64"}, {"--sid", "9"}};
    for (size_t i = 0; i < singles.size(); ++i) {
        std::vector<std::string> args = {"select", kListE, "--json"};
        args.insert(args.end(), singles[i].begin(), singles[i].end());
        EXPECT_EQ(RunCli(args).out, lines[i] + "\n");
    }
    CliResult text = RunCli({"select", kListE, "--observations", csv.string()});
    EXPECT_EQ(text.status, 0);
    const auto textLines = Lines(text.out);
    ASSERT_EQ(textLines.size(), 5u);
    EXPECT_EQ(textLines[1], "SID 22: negative, record 6, GEO 1, level 3, roaming indicator none, more preferred: 3 4 5");
    EXPECT_EQ(textLines[4], "SID 9: unlisted-forbidden, roaming indicator none");
}

TEST(CliSelect, EveryVersionAnswersWithThePinnedKeys) {
    for (const char* folder : {"is683a-all-types", "is683a-prefixed", "is683b-all-types", "is683c-all-types",
                               "is683d-all-types", "is683e-all-types"}) {
        CliResult r = RunCli({"select", kData + "/roaming_list/" + folder + "/input.prl", "--sid", "4139", "--json"});
        ASSERT_EQ(r.status, 0) << folder << ": " << r.err;
        ASSERT_EQ(Lines(r.out).size(), 1u) << folder;
        auto j = nlohmann::json::parse(r.out);
        std::vector<std::string> keys;
        for (const auto& item : j.items()) keys.push_back(item.key());
        EXPECT_EQ(keys, (std::vector<std::string>{"candidates", "match", "morePreferred", "roamInd", "verdict"}))
            << folder;
        EXPECT_TRUE(j["candidates"].is_array() && j["morePreferred"].is_array()) << folder;
    }
}

TEST(CliSelect, BadInputGetsOneClearLineAndAStatus) {
    TempDir dir;
    std::ofstream(dir / "bad.csv") << "sid,nid\n1,\n2,x\n";
    std::ofstream(dir / "junk.prl") << "not a roaming list";
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string message;
    };
    const Case cases[] = {
        {{kListE, "--sid", "41x"}, 2, "select: SID \"41x\" is not a number"},
        {{kListE, "--sid", "32768"}, 2, "SID 32768 is out of range (0 - 32767)"},
        {{kListE, "--subnet", "2001:zz::1/64"}, 2, "is not an IPv6 address"},
        {{kListE, "--sid", "1", "--channel", "25"}, 2, "--channel needs --band"},
        {{kListE}, 2, "no observation"},
        {{kListE, "--sid", "1", "--observations", (dir / "bad.csv").string()}, 2, "not both"},
        {{kListE, "--observations", (dir / "bad.csv").string()}, 2, "bad.csv:3: NID \"x\" is not a number"},
        {{kListE, "--observations", (dir / "none.csv").string()}, 1, "none.csv: cannot be opened"},
        {{(dir / "junk.prl").string(), "--sid", "1"}, 1, "select: "},
        {{(dir / "missing.prl").string(), "--sid", "1"}, 1, "missing.prl"},
        {{kListE, "--sid", "1", "--part", "2"}, 1, "--part 2"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"select"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        CliResult r = RunCli(args);
        EXPECT_EQ(r.status, c.status) << c.message << ": " << r.err;
        EXPECT_TRUE(r.out.empty()) << c.message << ": " << r.out;
        EXPECT_TRUE(Has(r.err, c.message)) << r.err;
        EXPECT_EQ(Lines(r.err).size(), 1u) << r.err;
    }
}

}  // namespace
}  // namespace Tarn
