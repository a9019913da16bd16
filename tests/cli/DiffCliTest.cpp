// tarn-cli diff from the outside: exit statuses (0 same, 1 different, 2 trouble), the text and
// JSON forms, colour, and what handsets do differently (--behaviour).
#include <nlohmann/json.hpp>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
using nlohmann::json;

const std::string kNoProviders = kData + "/providers-none.xml";

TEST(CliDiff, ExitStatusSaysSameDifferentOrTrouble) {
    TempDir dir;
    // The text form names its version; a binary list of the long-header versions does not.
    const std::string up = dir.File("up.txt"), text = dir.File("a.txt"), copy = dir.File("a.prl");
    Expect({"convert", kListA, "--to", "IS-683E", "-o", up}, 0);
    Expect({"text", kListA, "-o", text}, 0);
    std::filesystem::create_directory(dir / "folder");
    std::filesystem::copy_file(kListA, copy);
    // Two concatenated lists that share their first list and differ in the second.
    const std::string joinedE = JoinedExamples(dir), joinedA = dir.File("aa.prl");
    Expect({"join", kListA, copy, "-o", joinedA}, 0);
    // A Tech Order Table short of its last record.
    const std::string tot = kMmss + "sample.tot";
    json t = json::parse(RunCli({"json", tot}).out);
    t["records"].erase(t["records"].size() - 1);
    WriteText(dir / "t.json", t.dump());
    Expect({"build", dir.File("t.json"), "-o", dir.File("less.tot")}, 0);
    const struct {
        std::vector<std::string> args;
        int status;
        std::string part;
    } cases[] = {
        {{kListA, kListA}, 0, ""},
        {{kListA, text}, 0, ""},  // a list and its own text form say the same
        {{kListA, up},
         1,
         "header\n  ~ version: IS-683A -> IS-683E\n0 added, 0 removed, 0 changed systems; 0 added, 0 removed, 0 "
         "changed acquisition records; 1 header change\n"},
        {{kListA, up, "--json"},
         1,
         "  \"header\": [\n    {\n      \"a\": \"IS-683A\",\n      \"b\": \"IS-683E\",\n      \"field\": "
         "\"version\"\n    }\n  ],\n  \"same\": false,\n"},
        {{kListA, kListE}, 1, ""},
        {{tot, tot}, 0, ""},
        {{tot, dir.File("less.tot")}, 1, ""},
        {{joinedE, joinedA}, 0, ""},
        {{joinedE, joinedA, "--part", "2"}, 1, ""},
        {{joinedE, kListE, "--part", "2"}, 0, ""},  // a plain list beside a concatenated one
        {{"--behaviour", kListE, kJsonE}, 0, "Same behaviour"},
        {{"--behavior", kListA, copy}, 0, "Same behaviour"},
        {{"--behaviour", kListE, kListA}, 1, ""},
        {{kListA, dir.File("missing.prl")}, 2, "tarn-cli: diff: " + dir.File("missing.prl") + ": no such file\n"},
        {{"--behaviour", kListA, dir.File("missing.prl")}, 2, "tarn-cli: diff: "},
        {{kListA, dir.File("folder")}, 2, "is a folder"},
        {{kListA, kMmss + "sample.mspl"}, 2, "only files of one kind compare"},
        {{kMmss + "sample.ehplmn", kMmss + "sample.oplmn"}, 2, "only files of one kind compare"},
        {{tot, tot, "--part", "2"}, 2, "--part"},
        {{kListA, kListA, "--part", "2"}, 2, "neither"},
        {{kListA, kListA, "--color", "sometimes"}, 2, "--color"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"diff"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const CliResult r = Expect(args, c.status, {c.part});
        if (c.status == 2) {
            EXPECT_EQ(r.out, "");
        }
    }
}

TEST(CliDiff, ChangedFieldsColourOnRequestAndOperatorNames) {
    TempDir dir;
    // Turn the second system negative: it no longer ranks the third below it, so the third
    // moves up a level beside it and changes priority too.
    json list = json::parse(Slurp(kJsonE));
    list["systemTable"][1]["negPref"] = 0;
    const std::string edited = dir.File("edited.json");
    WriteText(edited, list.dump());
    const CliResult plain = Expect({"diff", kListE, edited, "--providers", kNoProviders}, 1,
                                   {"      negPref: preferred -> negative\n", "      priority: level 2 -> level 1\n"});
    EXPECT_FALSE(Has(plain.out, "\033[")) << "no colour when stdout is not a terminal";
    Expect({"diff", kListE, edited, "--color", "always"}, 1, {"\033[33m~ 1\t"});

    // The operator behind a SID stands beside its line, and in the JSON beside its change.
    WriteText(dir / "p.xml", R"(<?xml version="1.0"?><serviceproviders format="2.0">
        <country code="us"><provider><name>Test Carrier</name><cdma><sid value="4139"/></cdma>
        </provider></country></serviceproviders>)");
    Expect({"diff", kListE, edited, "--providers", dir.File("p.xml")}, 1,
           {"\t4139\t12\t1\t# Test Carrier (United States)\n"});
    const json named = json::parse(RunCli({"diff", kListE, edited, "--providers", dir.File("p.xml"), "--json"}).out);
    EXPECT_EQ(named["system"]["changed"][0]["operators"][0]["name"], "Test Carrier");
}

TEST(CliDiff, BehaviourNamesEachObservationAndBothAnswers) {
    TempDir dir;
    json list = json::parse(Slurp(kJsonE));
    list["systemTable"][0]["roamInd"] = 2;  // SID 4139, any NID
    WriteText(dir / "changed.json", list.dump());
    const std::string first = "    first:  preferred, roaming indicator 1, acquired through type 5 (A D B)\n";
    const std::string second = "    second: preferred, roaming indicator 2, acquired through type 5 (A D B)\n";
    EXPECT_EQ(Expect({"diff", "--behaviour", kListE, dir.File("changed.json"), "--providers", kNoProviders}, 1).out,
              "SID 4139\n  NID 12, band 1 channel 0\n" + first + second + "  NID 0 (any NID no record names)\n" +
                  first + second +
                  "2 observation classes behave differently, in 1 system (21 classes compared).\n");
    const json j = json::parse(Expect({"diff", "--behaviour", "--json", kListE, dir.File("changed.json")}, 1).out);
    EXPECT_FALSE(j["same"].get<bool>());
    EXPECT_EQ(j["counts"]["changedClasses"], 2);
}

}  // namespace
}  // namespace Tarn
