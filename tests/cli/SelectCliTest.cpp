// Black-box runs of tarn-cli select on the shipped lists: one answer whatever form the list is in,
// the batch form line for line, every numeric option to its limit, and a clear message with the
// right status for every bad input.
#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;

std::vector<std::string> Select(std::vector<std::string> args) {
    args.insert(args.begin(), "select");
    return args;
}

TEST(CliSelect, OneAnswerWhateverFormTheListIsIn) {
    TempDir dir;
    // An empty provider database keeps the answers free of the machine's operator names.
    const std::vector<std::string> obs = {"--sid", "4139", "--nid", "12", "--band", "1", "--channel", "25", "--json",
                                          "--providers", kData + "/providers-none.xml"};
    const std::string joined = JoinedExamples(dir);
    for (const auto& list : std::vector<std::vector<std::string>>{
             {kListE}, {kExamples + "/example-is683e.txt"}, {kJsonE}, {joined, "--part", "2"}}) {
        std::vector<std::string> args = Select(list);
        args.insert(args.end(), obs.begin(), obs.end());
        // SID 4139 has a wildcard record on PCS blocks and a NID 12 record on cellular channels:
        // the channel decides, and the NID record is still listed as a match.
        EXPECT_EQ(Expect(args, 0).out,
                  R"({"verdict":"preferred","match":{"index":0,"geo":0,"priority":0,"preferred":true,"roamInd":1,)"
                  R"("acqIndex":0,"acqCovers":true},"candidates":[0,1],"morePreferred":[],"roamInd":1})"
                  "\n");
    }
    // The first list of the same file is the IS-683A one, where the NID 7 record is the one named.
    Expect(Select({joined, "--sid", "4139", "--nid", "7", "--json"}), 0, {R"("match":{"index":1,)"});
}

TEST(CliSelect, HumanAnswerOnARealList) {
    Expect(Select({kListE, "--sid", "22"}), 0,
           {"SID 22: negative", "record: 6\t0\tNeg", "GEO 1, priority level 3, roaming indicator none",
            "more preferred systems (the handset keeps looking for these):", "[level 2; band 1: 25, 50, 75, 100, 125]"});
}

TEST(CliSelect, BatchGivesOneLineEachAsTheSingleFormDoes) {
    TempDir dir;
    const std::string csv = dir.File("obs.csv");
    WriteText(csv, "sid,nid,mcc,mnc,subnet,band,channel\n4139,12,,,,1,25\n22,,,,,,\n\n"
                   ",,311,480,,,\n,,,,2001:db8::1/64,,\n9,,,,,,\n");
    const auto lines = Lines(Expect(Select({kListE, "--observations", csv, "--json"}), 0).out);
    ASSERT_EQ(lines.size(), 5u);
    const std::vector<std::vector<std::string>> singles = {
        {"--sid", "4139", "--nid", "12", "--band", "1", "--channel", "25"},
        {"--sid", "22"},
        {"--mcc", "311", "--mnc", "480"},
        {"--subnet", "2001:db8::1/64"},
        {"--sid", "9"}};
    for (size_t i = 0; i < singles.size(); ++i) {
        std::vector<std::string> args = Select({kListE, "--json"});
        args.insert(args.end(), singles[i].begin(), singles[i].end());
        EXPECT_EQ(RunCli(args).out, lines[i] + "\n");
    }
    const auto text = Lines(Expect(Select({kListE, "--observations", csv}), 0).out);
    ASSERT_EQ(text.size(), 5u);
    EXPECT_EQ(text[1], "SID 22: negative, record 6, GEO 1, level 3, roaming indicator none, more preferred: 3 4 5");
    EXPECT_EQ(text[4], "SID 9: unlisted-forbidden, roaming indicator none");
}

// The largest value of every numeric option is taken and one more is refused with its range (the
// list part is 1 or 2 for every verb that takes one); every bad input gets a clear line and a status.
TEST(CliSelect, OptionsTakeTheirWholeRangeAndBadInputIsRefused) {
    TempDir dir;
    const std::string joined = JoinedExamples(dir), out = dir.File("out");
    WriteText(dir / "bad.csv", "sid,nid\n1,\n2,x\n");
    WriteText(dir / "junk.prl", "not a roaming list");
    const struct {
        std::vector<std::string> args;
        int status;
        std::string message;
    } cases[] = {
        {Select({kListE, "--sid", "32767", "--nid", "65535", "--band", "31", "--channel", "2047"}), 0,
         "SID 32767 NID 65535 on band 31 channel 2047: unlisted-forbidden"},
        {Select({kListE, "--sid", "0", "--nid", "0", "--band", "0", "--channel", "0"}), 0,
         "SID 0 NID 0 on band 0 channel 0: "},
        {Select({kListE, "--sid", "32768"}), 2, "tarn-cli: select: SID 32768 is out of range (0 - 32767)\n"},
        {Select({kListE, "--sid", "1", "--nid", "65536"}), 2, "NID 65536 is out of range (0 - 65535)\n"},
        {Select({kListE, "--sid", "1", "--band", "32", "--channel", "0"}), 2,
         "band class 32 is out of range (0 - 31)\n"},
        {Select({kListE, "--sid", "1", "--band", "0", "--channel", "2048"}), 2,
         "channel 2048 is out of range (0 - 2047)\n"},
        {Select({kListE, "--subnet", "::/128"}), 0, "subnet ::/128: unlisted-forbidden"},
        {Select({kListE, "--subnet", "::/129"}), 2, "subnet length 129 is out of range (0 - 128)\n"},
        {Select({kListE, "--sid", "-1"}), 2, "SID \"-1\" is not a number\n"},
        {Select({kListE, "--sid", "99999999999999999999"}), 2, "SID \"99999999999999999999\" is not a number\n"},
        {Select({kListE, "--subnet", "2001:zz::1/64"}), 2, "is not an IPv6 address"},
        {Select({kListE, "--sid", "1", "--channel", "25"}), 2, "--channel needs --band"},
        {Select({kListE}), 2, "no observation"},
        {Select({kListE, "--sid", "1", "--observations", dir.File("bad.csv")}), 2, "not both"},
        {Select({kListE, "--observations", dir.File("bad.csv")}), 2, "bad.csv:3: NID \"x\" is not a number\n"},
        {Select({kListE, "--observations", dir.File("none.csv")}), 1, "none.csv: cannot be opened\n"},
        {Select({dir.File("junk.prl"), "--sid", "1"}), 1, "tarn-cli: select: "},
        {Select({dir.File("missing.prl"), "--sid", "1"}), 1, "missing.prl"},
        {Select({kListE, "--sid", "1", "--part", "2"}), 1, "--part 2"},
        {Select({joined, "--sid", "1", "--part", "2"}), 0, "SID 1: "},
        {Select({joined, "--sid", "1", "--part", "3"}), 2, "--part: Value 3 not in range 1 to 2"},
        {Select({joined, "--sid", "1", "--part", "0"}), 2, "--part: Value 0 not in range 1 to 2"},
        {{"lint", joined, "--part", "3"}, 2, "--part: Value 3 not in range 1 to 2"},
        {{"xlsx", joined, "-o", out + ".xlsx", "--part", "3"}, 2, "--part: Value 3 not in range 1 to 2"},
        {{"diff", joined, joined, "--part", "3"}, 2, "--part: Value 3 not in range 1 to 2"},
    };
    for (const auto& c : cases) {
        const CliResult r = Expect(c.args, c.status, {c.message});
        if (c.status != 0) {
            EXPECT_EQ(r.out, "");
        }
    }
}

}  // namespace
}  // namespace Tarn
