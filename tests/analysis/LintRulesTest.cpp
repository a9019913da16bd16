// Each built-in lint rule on lists built to make it fire, and on the near misses it must let pass.
#include <gtest/gtest.h>

#include "analysis/Lint.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::CellularCustom;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;
using Test::SysCommon;

// Where `rule` fired, as "system #3", in the order reported.
std::vector<std::string> Fired(const CRLData& list, const std::string& rule) {
    std::vector<std::string> out;
    for (const auto& f : LintRoamingList(list, 0)) {
        if (f.rule != rule) continue;
        out.push_back(f.Where());
        EXPECT_FALSE(f.message.empty()) << rule;
    }
    return out;
}

using Where = std::vector<std::string>;

struct RuleCase {
    const char* name;
    const char* rule;
    json acq, sys;
    Where expected;
    int version = 3;
    int defRoamInd = 1;
};

json Subnet(const char* subnet, bool geoNew, int assnTag) {
    json r = SysCommon(1, true, geoNew, false, 0);
    r["subnet"] = subnet;
    r["assnIncluded"] = 1;
    r["assnTag"] = assnTag;
    return r;
}

json SidIncl(unsigned sid, unsigned nidIncl, unsigned nid, bool geoNew) {
    json r = Sid(sid, nid, true, geoNew, false, 0);
    r["nidIncl"] = nidIncl;
    return r;
}

const json kJtacsStandard = {{"type", 7}, {"system", 0}, {"channel", 1}};

TEST(LintRulesTest, EachRuleFiresWhereItShouldAndNowhereElse) {
    const json P25 = PcsChannels({25}), P50 = PcsChannels({50});
    const RuleCase cases[] = {
        {"acquisition nobody uses", "unused-acquisition", {P25, P50, P25},
         {Sid(1, 65535, true, true, false, 0), Sid(2, 65535, true, false, false, 2)},
         {"acquisition #1"}},
        {"every acquisition used", "unused-acquisition", {P25, P50},
         {Sid(1, 65535, true, true, false, 1), Sid(2, 65535, false, false, false, 0)}, {}},

        {"same acquisition twice", "duplicate-acquisition", {P25, P50, P25, P25},
         {Sid(1, 65535, true, true, false, 0)}, {"acquisition #2", "acquisition #3"}},
        {"same channels under another type", "duplicate-acquisition",
         {P25, CellularCustom({25})}, {Sid(1, 65535, true, true, false, 0)}, {}},

        {"same system twice in a GEO", "duplicate-system", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(2, 65535, true, false, false, 0),
          Sid(1, 65535, true, false, false, 0)},
         {"system #2"}},
        {"acquisition content counts, not its index", "duplicate-system", {P25, P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, false, false, 1)}, {"system #1"}},
        {"same system in another GEO", "duplicate-system", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 0)}, {}},
        {"preferred with another roaming indicator", "duplicate-system", {P25},
         {Sid(1, 65535, true, true, false, 0, 1), Sid(1, 65535, true, false, false, 0, 2)}, {}},
        {"negative records ignore the roaming indicator", "duplicate-system", {P25},
         {Sid(1, 65535, false, true, false, 0, 1), Sid(1, 65535, false, false, false, 0, 2)},
         {"system #1"}},
        {"same subnet, other association tag", "duplicate-system", {P25},
         {Subnet("2001:db8::/32", true, 1), Subnet("2001:db8::/32", false, 2)}, {}},
        {"same subnet, same association tag", "duplicate-system", {P25},
         {Subnet("2001:db8::/32", true, 1), Subnet("2001:db8::/32", false, 1)}, {"system #1"}},

        {"preferred then negative", "conflicting-system", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, false, false, false, 0)}, {"system #1"}},
        {"negative then preferred, then both again", "conflicting-system", {P25},
         {Sid(1, 65535, false, true, false, 0), Sid(1, 65535, true, false, false, 0),
          Sid(1, 65535, false, false, false, 0)},
         {"system #1", "system #2"}},
        {"other GEO", "conflicting-system", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, false, true, false, 0)}, {}},
        {"other NID", "conflicting-system", {P25},
         {Sid(1, 5, true, true, false, 0), Sid(1, 6, false, false, false, 0)}, {}},

        {"same SID/NID, same channel, two GEOs", "ambiguous-geo", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 0)}, {"system #1"}},
        {"same SID in two GEOs on different channels", "ambiguous-geo", {P25, P50},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 1)}, {}},
        {"same SID twice in one GEO", "ambiguous-geo", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, false, false, 0)}, {}},
        {"other NID on the same channel", "ambiguous-geo", {P25},
         {Sid(1, 5, true, true, false, 0), Sid(1, 6, true, true, false, 0)}, {}},
        {"NID 0 written two ways", "ambiguous-geo", {P25},
         {SidIncl(1, 2, 77, true), SidIncl(1, 1, 0, true)}, {"system #1"}},
        {"wildcard written two ways", "ambiguous-geo", {P25},
         {SidIncl(1, 0, 12, true), SidIncl(1, 1, 65535, true)}, {"system #1"}},
        {"whole-band JTACS meets one JTACS channel", "ambiguous-geo",
         {kJtacsStandard, {{"type", 8}, {"channels", {100}}}},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 1)}, {"system #1"}},
        {"a third GEO repeats only the second one's channel", "ambiguous-geo", {P25, P50},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 1),
          Sid(1, 65535, true, false, false, 0), Sid(1, 65535, true, true, false, 1)},
         {"system #2", "system #3"}},
        {"channels around but not on each other's", "ambiguous-geo",
         {PcsChannels({25, 27}), PcsChannels({26}), PcsChannels({24}), PcsChannels({24, 25, 26})},
         {Sid(1, 65535, true, true, false, 0), Sid(1, 65535, true, true, false, 1),
          Sid(1, 65535, true, true, false, 2), Sid(1, 65535, true, true, false, 3)},
         {"system #3"}},
        {"other record types are not compared", "ambiguous-geo", {P25},
         {Subnet("2001:db8::/32", true, 1), Subnet("2001:db8::/32", true, 1)}, {}},

        {"GEO of negative records", "geo-without-preferred", {P25},
         {Sid(1, 65535, true, true, false, 0), Sid(2, 65535, false, true, false, 0),
          Sid(3, 65535, false, false, false, 0), Sid(4, 65535, true, true, false, 0)},
         {"system #1"}},
        {"every GEO prefers something", "geo-without-preferred", {P25},
         {Sid(1, 65535, false, true, false, 0), Sid(2, 65535, true, false, false, 0)}, {}},

        {"More on the last record of a GEO", "priority-at-geo-end", {P25},
         {Sid(1, 65535, true, true, true, 0), Sid(2, 65535, true, false, false, 0),
          Sid(3, 65535, true, true, false, 0), Sid(4, 65535, true, false, true, 0),
          Sid(5, 65535, true, true, true, 0)},
         {"system #3", "system #4"}},
        {"More inside a GEO, or on a negative last record", "priority-at-geo-end", {P25},
         {Sid(1, 65535, true, true, true, 0), Sid(2, 65535, false, false, true, 0)}, {}},

        {"reserved indicators", "reserved-roaming-indicator", {P25},
         {Sid(1, 65535, true, true, false, 0, 13), Sid(2, 65535, true, false, false, 0, 63),
          Sid(3, 65535, false, false, false, 0, 40), Sid(4, 65535, true, false, false, 0, 12),
          Sid(5, 65535, true, false, false, 0, 64)},
         {"header", "system #0", "system #1"}, 3, 20},
        {"standard and operator indicators", "reserved-roaming-indicator", {P25},
         {Sid(1, 65535, true, true, false, 0, 0), Sid(2, 65535, true, false, false, 0, 255)}, {}, 3, 64},
    };
    for (const auto& c : cases) {
        auto list = JsonList(c.acq, c.sys, c.version, false, c.defRoamInd);
        EXPECT_EQ(Fired(*list, c.rule), c.expected) << c.name;
    }
}

TEST(LintRulesTest, ChannelOutOfBandByBandLimits) {
    struct Case {
        json record;
        bool fires;
    };
    auto pair = [](int band, int channel) {
        return json{{"type", 10}, {"pairs", {{{"bandClass", band}, {"channel", channel}}}}};
    };
    const Case cases[] = {
        {CellularCustom({1, 799, 991, 1023}), false},
        {CellularCustom({0}), true},
        {CellularCustom({283, 800}), true},
        {CellularCustom({990}), true},
        {CellularCustom({1024}), true},
        {PcsChannels({0, 1199}), false},
        {PcsChannels({1200}), true},
        {pair(0, 799), false},
        {pair(0, 800), true},
        {pair(1, 1200), true},
        {pair(3, 1500), false},  // other bands are not judged
        {{{"type", 11}, {"pairs", {{{"bandClass", 0}, {"channel", 0}}}}}, true},
        {{{"type", 8}, {"channels", {1500}}}, false},
    };
    for (const auto& c : cases) {
        auto list = JsonList(json::array({c.record}), json::array({Sid(1, 65535, true, true, false, 0)}), 5);
        EXPECT_EQ(Fired(*list, "channel-out-of-band"), c.fires ? Where{"acquisition #0"} : Where{})
            << c.record.dump();
    }
    // The message names every channel at fault, once per record.
    auto list = JsonList(json::array({CellularCustom({0, 283, 800})}),
                         json::array({Sid(1, 65535, true, true, false, 0)}));
    auto findings = LintRoamingList(*list, 0);
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0].message, "channels 0, 800 outside band 0 (1-799, 991-1023)");
    EXPECT_EQ(findings[0].severity, Severity::Error);
}

TEST(LintRulesTest, MessagesNameTheRecordsAndValues) {
    auto list = JsonList(json::array({PcsChannels({25, 26})}),
                         json::array({Sid(4106, 65535, true, true, false, 0),
                                      Sid(4106, 65535, true, true, false, 0)}));
    std::vector<std::string> messages;
    for (const auto& f : LintRoamingList(*list, 0))
        if (f.rule == "ambiguous-geo") messages.push_back(f.message);
    EXPECT_EQ(messages, std::vector<std::string>{
                            "SID 4106 NID 65535 in GEO 1 also stands in system #0 of GEO 0, and "
                            "both scan band 1: 25-26"});
}

TEST(LintRulesTest, FindingsSortedByTableThenIndexThenRule) {
    // Header (reserved default indicator), acquisition #0 twice (unused, out of band), then
    // systems; within system #1 the rules keep their registry order.
    auto list = JsonList(json::array({CellularCustom({900}), PcsChannels({25})}),
                         json::array({Sid(1, 65535, true, true, false, 1),
                                      Sid(1, 65535, false, false, true, 1, 40)}),
                         3, false, 20);
    std::vector<std::string> order;
    for (const auto& f : LintRoamingList(*list, 0)) order.push_back(f.Where() + " " + f.rule);
    const std::vector<std::string> expected = {
        "header reserved-roaming-indicator",     "acquisition #0 unused-acquisition",
        "acquisition #0 channel-out-of-band",    "system #1 conflicting-system",
    };
    EXPECT_EQ(order, expected);
}

}  // namespace
}  // namespace Tarn::Analysis
