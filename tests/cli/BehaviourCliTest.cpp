// tarn-cli diff --behaviour and tarn-cli optimize from the outside: exit statuses, the JSON keys
// scripts read, and an optimised list that reads back and behaves as its input.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
using nlohmann::json;

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kListE = kExamples + "/example-is683e.prl";
const std::string kJsonE = kExamples + "/example-is683e.json";

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(CliBehaviour, DiffSaysWhatHandsetsDoDifferently) {
    TempDir dir;
    json list = json::parse(Slurp(kJsonE));
    list["systemTable"][0]["roamInd"] = 2;  // SID 4139, any NID
    const std::string changed = (dir / "changed.json").string();
    std::ofstream(changed) << list.dump();
    const std::string binary = (dir / "same.prl").string();
    std::filesystem::copy_file(kListE, binary);

    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out;
    };
    const Case cases[] = {
        // Another form and another name of the same list behave the same.
        {{"diff", "--behaviour", kListE, kJsonE}, 0, "Same behaviour"},
        {{"diff", "--behavior", kListE, binary}, 0, "Same behaviour"},
        {{"diff", "--behaviour", kListE, changed}, 1, "SID 4139"},
        {{"diff", "--behaviour", kListE, (dir / "missing.prl").string()}, 2, ""},
        {{"diff", "--behaviour", kListE, kListE, "--part", "2"}, 2, ""},
    };
    for (const auto& c : cases) {
        CliResult r = RunCli(c.args);
        EXPECT_EQ(r.status, c.status) << c.args.back() << "\n" << r.out << r.err;
        EXPECT_TRUE(Has(r.out, c.out)) << r.out;
        if (c.status == 2) {
            EXPECT_TRUE(Has(r.err, "tarn-cli: diff: ")) << r.err;
        }
    }

    CliResult r = RunCli({"diff", "--behaviour", "--json", kListE, changed});
    ASSERT_EQ(r.status, 1) << r.err;
    const json j = json::parse(r.out);
    EXPECT_FALSE(j["same"].get<bool>());
    ASSERT_FALSE(j["changes"].empty());
    for (const auto& c : j["changes"]) {
        EXPECT_EQ(c["observation"]["sid"], 4139);
        for (const char* key : {"band", "channel", "a", "b"}) EXPECT_TRUE(c.contains(key)) << key;
        for (const char* key : {"verdict", "roamInd", "acquisition", "morePreferred", "associated"})
            EXPECT_TRUE(c["a"].contains(key)) << key;
        EXPECT_EQ(c["a"]["roamInd"], 1);
        EXPECT_EQ(c["b"]["roamInd"], 2);
    }
    EXPECT_EQ(j["counts"]["changedClasses"], j["changes"].size());
}

TEST(CliBehaviour, OptimizeWritesAProvenSmallerList) {
    TempDir dir;
    // The example's list with a duplicate acquisition record in use and an unused one.
    json list = json::parse(Slurp(kJsonE));
    list["acquisitionTable"].push_back(list["acquisitionTable"][3]);
    list["systemTable"][6]["acqIndex"] = 7;
    const std::string in = (dir / "in.json").string();
    std::ofstream(in) << list.dump();
    const std::string out = (dir / "out.prl").string();

    CliResult r = RunCli({"optimize", in, "-o", out, "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    const json report = json::parse(r.out);
    EXPECT_TRUE(report["proven"].get<bool>());
    EXPECT_LT(report["bytesAfter"].get<int>(), report["bytesBefore"].get<int>());
    std::map<std::string, int> records;
    for (const auto& s : report["steps"]) records[s["id"]] = s["records"];
    EXPECT_EQ(records["unused-acquisition"], 1);  // the example's record 6 was never used
    EXPECT_EQ(records["duplicate-acquisition"], 1);
    EXPECT_EQ(SlurpBytes(out).size(), report["bytesAfter"].get<size_t>());

    // The written list reads, checks clean, keeps the header and behaves as the input.
    EXPECT_EQ(RunCli({"check", out}).status, 0);
    EXPECT_EQ(RunCli({"diff", "--behaviour", in, out}).status, 0);
    const json written = json::parse(RunCli({"json", out}).out);
    for (const char* field : {"prefListId", "prefOnly", "defRoamInd"})
        EXPECT_EQ(written["header"][field], list["header"][field]) << field;
    EXPECT_EQ(written["version"], "IS-683E");

    r = RunCli({"optimize", in, "-o", (dir / "report.prl").string(), "--report"});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(Has(r.out, "duplicate-acquisition: 1 record")) << r.out;
    EXPECT_TRUE(Has(r.out, "proof: every observation")) << r.out;

    // Nothing is written from a file that is not a list.
    const std::string bad = (dir / "bad.prl").string();
    std::ofstream(bad) << "not a list";
    r = RunCli({"optimize", bad, "-o", (dir / "never.prl").string()});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(Has(r.err, "tarn-cli: optimize: ")) << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "never.prl"));
}

}  // namespace
}  // namespace Tarn
