// tarn-cli diff from the outside: exit statuses (0 same, 1 different, 2 trouble), the text and
// JSON forms, colour, and the files it refuses.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
using nlohmann::json;

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kData = TARN_TEST_DATA_DIR;
const std::string kListA = kExamples + "/example-is683a.prl";
const std::string kListE = kExamples + "/example-is683e.prl";

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(CliDiff, ExitStatusSaysSameDifferentOrTrouble) {
    TempDir dir;
    const std::string up = (dir / "up.prl").string();
    ASSERT_EQ(RunCli({"convert", kListA, "--to", "IS-683C", "-o", up}).status, 0);
    const std::string text = (dir / "a.txt").string();
    ASSERT_EQ(RunCli({"text", kListA, "-o", text}).status, 0);
    std::filesystem::create_directory(dir / "folder");
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string err;
    };
    const Case cases[] = {
        {{kListA, kListA}, 0, ""},
        {{kListA, text}, 0, ""},  // a list and its own text form say the same
        {{kListA, up}, 1, ""},
        {{kListA, kListE}, 1, ""},
        {{kListA, (dir / "missing.prl").string()}, 2, "missing.prl: no such file"},
        {{kListA, (dir / "folder").string()}, 2, "is a folder"},
        {{kListA, kData + "/mmss/sample.mspl"}, 2, "only files of one kind compare"},
        {{kData + "/mmss/sample.ehplmn", kData + "/mmss/sample.oplmn"}, 2, "only files of one kind compare"},
        {{kData + "/mmss/sample.tot", kData + "/mmss/sample.tot", "--part", "2"}, 2, "--part"},
        {{kListA, kListA, "--part", "2"}, 2, "--part 2"},
        {{kListA, kListA, "--part", "3"}, 2, "--part must be 1 or 2"},
        {{kData + "/mmss/sample.tot", kData + "/mmss/sample.tot"}, 0, ""},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"diff"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        CliResult r = RunCli(args);
        EXPECT_EQ(r.status, c.status) << testing::PrintToString(c.args) << "\n" << r.err;
        if (!c.err.empty()) {
            EXPECT_TRUE(Has(r.err, c.err)) << r.err;
            EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        }
    }
}

TEST(CliDiff, TextAndJsonOfAnUpConversion) {
    TempDir dir;
    // The text form names its version; a binary list of the long-header versions does not.
    const std::string up = (dir / "up.txt").string();
    ASSERT_EQ(RunCli({"convert", kListA, "--to", "IS-683E", "-o", up}).status, 0);
    CliResult text = RunCli({"diff", kListA, up});
    EXPECT_EQ(text.out,
              "header\n  ~ version: IS-683A -> IS-683E\n"
              "0 added, 0 removed, 0 changed systems; 0 added, 0 removed, 0 changed acquisition "
              "records; 1 header change\n");
    CliResult js = RunCli({"diff", kListA, up, "--json"});
    EXPECT_EQ(js.status, 1);
    json j = json::parse(js.out);
    EXPECT_EQ(j["header"], json::parse(R"([{"field": "version", "a": "IS-683A", "b": "IS-683E"}])"));
    EXPECT_EQ(j["system"]["changed"], json::array());
    EXPECT_EQ(j["same"], false);
}

TEST(CliDiff, AnEditedListShowsItsChangesAndColourOnRequest) {
    TempDir dir;
    // Turn the second system negative: it no longer ranks the third below it, so the third
    // moves up a level beside it and changes priority too.
    ASSERT_EQ(RunCli({"json", kListE, "-o", (dir / "e.json").string()}).status, 0);
    json list = json::parse(Slurp(dir / "e.json"));
    json& sys = list["systemTable"];
    ASSERT_GE(sys.size(), 3u);
    sys[1]["negPref"] = 0;
    std::ofstream(dir / "edited.json") << list.dump();
    CliResult r = RunCli({"diff", kListE, (dir / "edited.json").string(), "--json"});
    EXPECT_EQ(r.status, 1) << r.err;
    json j = json::parse(r.out);
    for (auto& change : j["system"]["changed"]) change.erase("operators");  // installed names vary
    EXPECT_EQ(j["system"]["changed"], json::parse(R"([{"a": 1, "b": 1, "fields": ["negPref"]},
                                                       {"a": 2, "b": 2, "fields": ["priority"]}])"));

    CliResult plain = RunCli({"diff", kListE, (dir / "edited.json").string()});
    EXPECT_TRUE(Has(plain.out, "      negPref: preferred -> negative\n")) << plain.out;
    EXPECT_TRUE(Has(plain.out, "      priority: level 2 -> level 1\n")) << plain.out;
    EXPECT_FALSE(Has(plain.out, "\033[")) << "no colour when stdout is not a terminal";
    CliResult colour = RunCli({"diff", kListE, (dir / "edited.json").string(), "--color", "always"});
    EXPECT_TRUE(Has(colour.out, "\033[33m~ 1\t")) << colour.out;
    EXPECT_EQ(RunCli({"diff", kListA, kListA, "--color", "sometimes"}).status, 2);

    // The operator behind a SID stands beside its line, and in the JSON beside its change.
    std::ofstream(dir / "p.xml") << R"(<?xml version="1.0"?><serviceproviders format="2.0">
        <country code="us"><provider><name>Test Carrier</name><cdma><sid value="4139"/></cdma>
        </provider></country></serviceproviders>)";
    const std::string providers = (dir / "p.xml").string();
    CliResult named = RunCli({"diff", kListE, (dir / "edited.json").string(), "--providers", providers});
    EXPECT_TRUE(Has(named.out, "\t4139\t12\t1\t# Test Carrier (United States)\n")) << named.out;
    json namedJson = json::parse(
        RunCli({"diff", kListE, (dir / "edited.json").string(), "--providers", providers, "--json"}).out);
    EXPECT_EQ(namedJson["system"]["changed"][0]["operators"][0]["name"], "Test Carrier");
}

TEST(CliDiff, MmssFilesCompareRecordByRecord) {
    TempDir dir;
    const std::string tot = kData + "/mmss/sample.tot";
    ASSERT_EQ(RunCli({"json", tot, "-o", (dir / "t.json").string()}).status, 0);
    json t = json::parse(Slurp(dir / "t.json"));
    ASSERT_FALSE(t["records"].empty());
    const size_t last = t["records"].size() - 1;
    t["records"].erase(last);
    std::ofstream(dir / "t2.json") << t.dump();
    ASSERT_EQ(RunCli({"build", (dir / "t2.json").string(), "-o", (dir / "less.tot").string()}).status, 0);
    CliResult r = RunCli({"diff", tot, (dir / "less.tot").string(), "--json"});
    EXPECT_EQ(r.status, 1) << r.err;
    json j = json::parse(r.out);
    EXPECT_EQ(j["kind"], "TOT");
    EXPECT_EQ(j["tables"][0]["removed"], json::array({last}));
    EXPECT_EQ(j["same"], false);
}

}  // namespace
}  // namespace Tarn
