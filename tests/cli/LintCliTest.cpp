// tarn-cli lint from the outside: the finding lines and summaries, JSON, exit statuses, the
// policy option, MLPL files against their MSPL, and concatenated lists.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/JsonList.h"

namespace Tarn {
namespace {

using nlohmann::json;
using namespace Test;

void WriteText(const std::filesystem::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

// A roaming list in its JSON form.
std::string ListJson(const json& acq, const json& sys, bool prefOnly = false) {
    return json{{"version", 3},
                {"header", {{"prefListId", 1}, {"prefOnly", prefOnly}, {"defRoamInd", 1}}},
                {"acquisitionTable", acq},
                {"systemTable", sys}}
        .dump();
}

struct Lists {
    TempDir dir;
    std::string clean, warning, error;
    Lists() {
        clean = (dir / "clean.json").string();
        warning = (dir / "warning.json").string();
        error = (dir / "error.json").string();
        WriteText(clean, ListJson(json::array({PcsChannels({25})}),
                                  json::array({Sid(4106, 65535, true, true, false, 0)})));
        // Acquisition #1 is unused.
        WriteText(warning, ListJson(json::array({PcsChannels({25}), PcsChannels({50})}),
                                    json::array({Sid(4106, 65535, true, true, false, 0)})));
        // SID 7 both preferred and negative in one GEO.
        WriteText(error, ListJson(json::array({PcsChannels({25})}),
                                  json::array({Sid(7, 65535, true, true, false, 0),
                                               Sid(7, 65535, false, false, false, 0)})));
    }
};

TEST(CliLint, LinesSummariesAndExitStatus) {
    Lists l;
    CliResult clean = RunCli({"lint", l.clean});
    EXPECT_EQ(clean.status, 0) << clean.err;
    EXPECT_EQ(clean.out, l.clean + ": 0 errors, 0 warnings, 0 info\n");

    CliResult warning = RunCli({"lint", l.warning});
    EXPECT_EQ(warning.status, 0);
    EXPECT_EQ(warning.out, l.warning + ": warning: unused-acquisition: acquisition #1: no system record "
                                       "points at this type 6 record (it scans band 1: 50)\n" +
                               l.warning + ": 0 errors, 1 warning, 0 info\n");

    struct Case {
        std::vector<std::string> args;
        int status;
    };
    const Case cases[] = {
        {{"lint", l.warning, "--fail-on", "warning"}, 1},
        {{"lint", l.warning, "--fail-on", "info"}, 1},
        {{"lint", l.error}, 1},
        {{"lint", l.clean, l.warning, "--fail-on", "info"}, 1},
        {{"lint", l.clean, l.warning}, 0},
        {{"lint", l.clean, "--fail-on", "fatal"}, 2},
        {{"lint", l.clean, "--part", "3"}, 2},
        {{"lint", l.clean, "--part", "2"}, 2},  // not a concatenated list
    };
    for (const auto& c : cases) {
        CliResult r = RunCli(c.args);
        std::string line;
        for (const auto& a : c.args) line += a + " ";
        EXPECT_EQ(r.status, c.status) << line << "\n" << r.out << r.err;
    }

    // An unreadable file is reported on stderr; the others are still checked.
    CliResult missing = RunCli({"lint", (l.dir / "nope.prl").string(), l.clean});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("tarn-cli: lint: No such file"), std::string::npos) << missing.err;
    EXPECT_NE(missing.out.find(l.clean + ": 0 errors"), std::string::npos);
}

TEST(CliLint, PolicyOption) {
    Lists l;
    const std::string policy = (l.dir / "policy.json").string();
    WriteText(policy, R"({"prefOnly": true, "rules": {"unused-acquisition": "error"}})");
    CliResult r = RunCli({"lint", l.warning, "--policy", policy});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find(l.warning + ": error: policy-pref-only: header: PREF_ONLY is 0, the policy asks for 1\n" +
                         l.warning + ": error: unused-acquisition: acquisition #1"),
              std::string::npos)
        << r.out;

    WriteText(policy, R"({"rules": {"conflicting-system": "off"}})");
    EXPECT_EQ(RunCli({"lint", l.error, "--policy", policy}).status, 0);

    WriteText(policy, R"({"rules": {"no-such-rule": "off"}})");
    CliResult bad = RunCli({"lint", l.clean, "--policy", policy});
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err, "tarn-cli: lint: " + policy +
                           ": policy key \"rules.no-such-rule\": there is no rule \"no-such-rule\"\n");

    CliResult missing = RunCli({"lint", l.clean, "--policy", (l.dir / "none.json").string()});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("No such file"), std::string::npos);
}

TEST(CliLint, NamesOperatorsBesideSystems) {
    Lists l;
    const std::string xml = (l.dir / "providers.xml").string();
    WriteText(xml, R"(<?xml version="1.0"?><serviceproviders format="2.0"><country code="us">
        <provider><name>Seven Mobile</name><cdma><sid value="7"/></cdma></provider>
        </country></serviceproviders>)");
    CliResult text = RunCli({"lint", l.error, "--providers", xml});
    EXPECT_NE(text.out.find("system #1: SID 7 NID 65535 (Seven Mobile (United States)) is negative"),
              std::string::npos)
        << text.out << text.err;
    json j = json::parse(RunCli({"lint", l.error, "--providers", xml, "--json"}).out);
    EXPECT_EQ(j["findings"][0]["operators"],
              json::parse(R"([{"name": "Seven Mobile", "country": "US", "countryName": "United States"}])"));
}

TEST(CliLint, JsonOneObjectOrOneLinePerFile) {
    Lists l;
    const std::string policy = (l.dir / "policy.json").string();
    WriteText(policy, R"({"prefOnly": true})");
    CliResult one = RunCli({"lint", l.warning, "--json", "--policy", policy});
    EXPECT_EQ(one.status, 1);
    json j = json::parse(one.out);
    EXPECT_EQ(j["file"], l.warning);
    EXPECT_EQ(j["counts"], (json{{"error", 1}, {"warning", 1}, {"info", 0}}));
    ASSERT_EQ(j["findings"].size(), 2u);
    EXPECT_EQ(j["findings"][0], (json{{"rule", "policy-pref-only"},
                                      {"severity", "error"},
                                      {"table", "header"},
                                      {"index", nullptr},
                                      {"message", "PREF_ONLY is 0, the policy asks for 1"}}));
    EXPECT_EQ(j["findings"][1]["table"], "acquisition");
    EXPECT_EQ(j["findings"][1]["index"], 1);

    CliResult two = RunCli({"lint", l.clean, l.error, "--json"});
    std::istringstream lines(two.out);
    std::string line;
    std::vector<json> objects;
    while (std::getline(lines, line)) objects.push_back(json::parse(line));
    ASSERT_EQ(objects.size(), 2u) << two.out;
    EXPECT_EQ(objects[0]["file"], l.clean);
    EXPECT_EQ(objects[1]["counts"]["error"], 1);
}

TEST(CliLint, MlplAgainstItsMsplAndConcatenatedParts) {
    TempDir dir;
    Mspl::Document mspl;
    mspl.header.SetValues({"1", "7"});
    for (const char* id : {"1", "2"}) mspl.data.AddId(id).Add(std::make_unique<Mspl::Record>());
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(mspl.Write(bytes, error)) << error;
    WriteBytes(dir / "list.mspl", bytes);

    Mlpl::Document mlpl;
    mlpl.header.SetValues({"1", "3", "9"});
    for (const char* index : {"2", "5"}) {
        Mlpl::Location l;
        l.mcc = "310";
        l.msplIndex = index;
        mlpl.data.records.push_back(std::move(l));
    }
    ASSERT_TRUE(mlpl.Write(bytes, error)) << error;
    WriteBytes(dir / "list.mlpl", bytes);

    CliResult r = RunCli({"lint", (dir / "list.mlpl").string(), "--mspl", (dir / "list.mspl").string()});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_NE(r.out.find("list.mlpl: error: mlpl-unknown-mspl: record #1: MSPL_INDEX 5 names no MSPL "
                         "table of the MSPL file (it holds MSPL_ID 1, 2)"),
              std::string::npos)
        << r.out;
    EXPECT_EQ(RunCli({"lint", (dir / "list.mlpl").string()}).status, 0);
    CliResult notMspl = RunCli({"lint", (dir / "list.mlpl").string(), "--mspl", (dir / "list.mlpl").string()});
    EXPECT_EQ(notMspl.status, 2);
    EXPECT_NE(notMspl.err.find("--mspl needs an MSPL file"), std::string::npos) << notMspl.err;

    const std::string joined = (dir / "joined.prl").string();
    ASSERT_EQ(RunCli({"join", TARN_EXAMPLES_DIR "/example-is683a.prl", TARN_EXAMPLES_DIR "/example-is683e.prl",
                      "-o", joined})
                  .status,
              0);
    CliResult part2 = RunCli({"lint", joined, "--part", "2"});
    EXPECT_EQ(part2.status, 0) << part2.err;
    CliResult part1 = RunCli({"lint", joined});
    EXPECT_NE(part1.out, part2.out);
    // The second part reads as the list it was joined from, finding for finding.
    const std::string alone = TARN_EXAMPLES_DIR "/example-is683e.prl";
    std::string expected = RunCli({"lint", alone}).out;
    for (size_t at = expected.find(alone); at != std::string::npos; at = expected.find(alone, at))
        expected.replace(at, alone.size(), joined);
    EXPECT_EQ(part2.out, expected);
}

}  // namespace
}  // namespace Tarn
