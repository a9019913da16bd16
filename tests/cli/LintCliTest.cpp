// tarn-cli lint from the outside: the finding lines and summaries, JSON, exit statuses, the
// policy option, MLPL files against their MSPL, and concatenated lists.
#include <nlohmann/json.hpp>

#include "tests/cli/CliRunner.h"
#include "tests/support/JsonList.h"

namespace Tarn {
namespace {

using nlohmann::json;
using namespace Test;

// Three roaming lists in their JSON form: clean, one warning, one error.
struct Lists {
    TempDir dir;
    std::string clean = dir.File("clean.json"), warning = dir.File("warning.json"), error = dir.File("error.json");
    Lists() {
        const json sid = Sid(4106, 65535, true, true, false, 0);
        Write(clean, json::array({PcsChannels({25})}), json::array({sid}));
        // Acquisition #1 is unused.
        Write(warning, json::array({PcsChannels({25}), PcsChannels({50})}), json::array({sid}));
        // SID 7 both preferred and negative in one GEO.
        Write(error, json::array({PcsChannels({25})}),
              json::array({Sid(7, 65535, true, true, false, 0), Sid(7, 65535, false, false, false, 0)}));
    }
    static void Write(const std::string& path, const json& acq, const json& sys) {
        WriteText(path, json{{"version", 3},
                             {"header", {{"prefListId", 1}, {"prefOnly", false}, {"defRoamInd", 1}}},
                             {"acquisitionTable", acq},
                             {"systemTable", sys}}
                            .dump());
    }
};

TEST(CliLint, LinesSummariesAndExitStatus) {
    Lists l;
    EXPECT_EQ(Expect({"lint", l.clean}, 0).out, l.clean + ": 0 errors, 0 warnings, 0 info\n");
    EXPECT_EQ(Expect({"lint", l.warning}, 0).out,
              l.warning + ": warning: unused-acquisition: acquisition #1: no system record points at this type 6 "
                          "record (it scans band 1: 50)\n" +
                  l.warning + ": 0 errors, 1 warning, 0 info\n");
    const struct {
        std::vector<std::string> args;
        int status;
    } cases[] = {
        {{l.warning, "--fail-on", "warning"}, 1},
        {{l.warning, "--fail-on", "info"}, 1},
        {{l.error}, 1},
        {{l.clean, l.warning, "--fail-on", "info"}, 1},
        {{l.clean, l.warning}, 0},
        {{l.clean, "--fail-on", "fatal"}, 2},
        {{l.clean, "--part", "2"}, 2},  // not a concatenated list
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"lint"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        Expect(args, c.status);
    }
    // An unreadable file is reported on stderr; the others are still checked.
    const CliResult missing = Expect({"lint", l.dir.File("nope.prl"), l.clean}, 2, {"tarn-cli: lint: No such file"});
    EXPECT_EQ(missing.out, l.clean + ": 0 errors, 0 warnings, 0 info\n");
}

TEST(CliLint, PolicyOption) {
    Lists l;
    const std::string policy = l.dir.File("policy.json");
    WriteText(policy, R"({"prefOnly": true, "rules": {"unused-acquisition": "error"}})");
    Expect({"lint", l.warning, "--policy", policy}, 1,
           {l.warning + ": error: policy-pref-only: header: PREF_ONLY is 0, the policy asks for 1\n" + l.warning +
            ": error: unused-acquisition: acquisition #1"});
    WriteText(policy, R"({"rules": {"conflicting-system": "off"}})");
    Expect({"lint", l.error, "--policy", policy}, 0);
    WriteText(policy, R"({"rules": {"no-such-rule": "off"}})");
    const CliResult bad = Expect({"lint", l.clean, "--policy", policy}, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err, "tarn-cli: lint: " + policy +
                           ": policy key \"rules.no-such-rule\": there is no rule \"no-such-rule\"\n");
    Expect({"lint", l.clean, "--policy", l.dir.File("none.json")}, 2, {"No such file"});
}

TEST(CliLint, JsonOneObjectOrOneLinePerFile) {
    Lists l;
    WriteText(l.dir / "policy.json", R"({"prefOnly": true})");
    const json j = json::parse(Expect({"lint", l.warning, "--json", "--policy", l.dir.File("policy.json")}, 1).out);
    EXPECT_EQ(j["file"], l.warning);
    EXPECT_EQ(j["counts"], (json{{"error", 1}, {"warning", 1}, {"info", 0}}));
    ASSERT_EQ(j["findings"].size(), 2u);
    EXPECT_EQ(j["findings"][0], (json{{"rule", "policy-pref-only"},
                                      {"severity", "error"},
                                      {"table", "header"},
                                      {"index", nullptr},
                                      {"message", "PREF_ONLY is 0, the policy asks for 1"}}));
    EXPECT_EQ(j["findings"][1]["index"], 1);

    const auto lines = Lines(Expect({"lint", l.clean, l.error, "--json"}, 1).out);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(json::parse(lines[0])["file"], l.clean);
    EXPECT_EQ(json::parse(lines[1])["counts"]["error"], 1);
}

TEST(CliLint, MlplAgainstItsMsplAndConcatenatedParts) {
    const std::string mlpl = kMmss + "sample.mlpl", mspl = kMmss + "sample.mspl";
    Expect({"lint", mlpl, "--mspl", mspl}, 1,
           {mlpl + ": error: mlpl-unknown-mspl: record #0: MSPL_INDEX 1 names no MSPL table of the MSPL file (it "
                   "holds MSPL_ID 5, 6)\n",
            mlpl + ": 3 errors, 0 warnings, 0 info\n"});
    Expect({"lint", mlpl}, 0);
    Expect({"lint", mlpl, "--mspl", mlpl}, 2, {"--mspl needs an MSPL file"});

    // The second part reads as the list it was joined from, finding for finding.
    TempDir dir;
    const std::string joined = JoinedExamples(dir);
    std::string expected = RunCli({"lint", kListE}).out;
    for (size_t at = expected.find(kListE); at != std::string::npos; at = expected.find(kListE, at))
        expected.replace(at, kListE.size(), joined);
    EXPECT_EQ(Expect({"lint", joined, "--part", "2"}, 0).out, expected);
    EXPECT_NE(RunCli({"lint", joined}).out, expected);
}

}  // namespace
}  // namespace Tarn
