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

using Where = std::vector<std::string>;

// Where `rule` fired, as "system #3", in the order reported.
Where Fired(const CRLData& list, const std::string& rule) {
    Where out;
    for (const auto& f : LintRoamingList(list, 0)) {
        if (f.rule != rule) continue;
        out.push_back(f.Where());
        EXPECT_FALSE(f.message.empty()) << rule;
    }
    return out;
}

// SID records of any NID, preferred (P) or negative (N), opening a GEO (kNew) or not (kSame).
constexpr bool kNew = true, kSame = false;
json P(unsigned sid, bool geoNew, int acq = 0, int roamInd = 1) { return Sid(sid, 65535, true, geoNew, false, acq, roamInd); }
json N(unsigned sid, bool geoNew, int acq = 0, int roamInd = 1) { return Sid(sid, 65535, false, geoNew, false, acq, roamInd); }
json More(json r) {
    r["priority"] = 1;
    return r;
}

json Subnet(bool geoNew, int assnTag) {
    json r = SysCommon(1, true, geoNew, false, 0);
    r.update({{"subnet", "2001:db8::/32"}, {"assnIncluded", 1}, {"assnTag", assnTag}});
    return r;
}

json SidIncl(unsigned nidIncl, unsigned nid) {
    json r = Sid(1, nid, true, true, false, 0);
    r["nidIncl"] = nidIncl;
    return r;
}

TEST(LintRulesTest, EachRuleFiresWhereItShouldAndNowhereElse) {
    const json P25 = PcsChannels({25}), P50 = PcsChannels({50});
    struct Case {
        const char* name;
        const char* rule;
        json acq, sys;
        Where expected;
        int defRoamInd = 1;
    };
    const Case cases[] = {
        {"acquisition nobody uses", "unused-acquisition", {P25, P50, P25}, {P(1, kNew), P(2, kSame, 2)}, {"acquisition #1"}},
        {"every acquisition used", "unused-acquisition", {P25, P50}, {P(1, kNew, 1), N(2, kSame)}, {}},

        {"same acquisition twice", "duplicate-acquisition", {P25, P50, P25, P25}, {P(1, kNew)},
         {"acquisition #2", "acquisition #3"}},
        {"same channels under another type", "duplicate-acquisition", {P25, CellularCustom({25})}, {P(1, kNew)}, {}},

        {"same system twice in a GEO", "duplicate-system", {P25}, {P(1, kNew), P(2, kSame), P(1, kSame)}, {"system #2"}},
        {"acquisition content counts, not its index", "duplicate-system", {P25, P25}, {P(1, kNew), P(1, kSame, 1)},
         {"system #1"}},
        {"same system in another GEO", "duplicate-system", {P25}, {P(1, kNew), P(1, kNew)}, {}},
        {"preferred with another roaming indicator", "duplicate-system", {P25}, {P(1, kNew, 0, 1), P(1, kSame, 0, 2)}, {}},
        {"negative records ignore the roaming indicator", "duplicate-system", {P25},
         {N(1, kNew, 0, 1), N(1, kSame, 0, 2)}, {"system #1"}},
        {"same subnet, other association tag", "duplicate-system", {P25}, {Subnet(kNew, 1), Subnet(kSame, 2)}, {}},
        {"same subnet, same association tag", "duplicate-system", {P25}, {Subnet(kNew, 1), Subnet(kSame, 1)}, {"system #1"}},

        {"preferred then negative", "conflicting-system", {P25}, {P(1, kNew), N(1, kSame)}, {"system #1"}},
        {"negative then preferred, then both again", "conflicting-system", {P25}, {N(1, kNew), P(1, kSame), N(1, kSame)},
         {"system #1", "system #2"}},
        {"other GEO", "conflicting-system", {P25}, {P(1, kNew), N(1, kNew)}, {}},
        {"other NID", "conflicting-system", {P25}, {Sid(1, 5, true, true, false, 0), Sid(1, 6, false, false, false, 0)}, {}},

        {"same SID/NID, same channel, two GEOs", "ambiguous-geo", {P25}, {P(1, kNew), P(1, kNew)}, {"system #1"}},
        {"same SID in two GEOs on different channels", "ambiguous-geo", {P25, P50}, {P(1, kNew), P(1, kNew, 1)}, {}},
        {"same SID twice in one GEO", "ambiguous-geo", {P25}, {P(1, kNew), P(1, kSame)}, {}},
        {"other NID on the same channel", "ambiguous-geo", {P25},
         {Sid(1, 5, true, true, false, 0), Sid(1, 6, true, true, false, 0)}, {}},
        {"NID 0 written two ways", "ambiguous-geo", {P25}, {SidIncl(2, 77), SidIncl(1, 0)}, {"system #1"}},
        {"wildcard written two ways", "ambiguous-geo", {P25}, {SidIncl(0, 12), SidIncl(1, 65535)}, {"system #1"}},
        {"whole-band JTACS meets its last channel", "ambiguous-geo",
         {{{"type", 7}, {"system", 0}, {"channel", 1}}, {{"type", 8}, {"channels", {2047}}}},
         {P(1, kNew), P(1, kNew, 1)}, {"system #1"}},
        {"a third GEO repeats only the second one's channel", "ambiguous-geo", {P25, P50},
         {P(1, kNew), P(1, kNew, 1), P(1, kSame), P(1, kNew, 1)}, {"system #2", "system #3"}},
        {"channels around but not on each other's", "ambiguous-geo",
         {PcsChannels({25, 27}), PcsChannels({26}), PcsChannels({24}), PcsChannels({24, 25, 26})},
         {P(1, kNew), P(1, kNew, 1), P(1, kNew, 2), P(1, kNew, 3)}, {"system #3"}},
        {"other record types are not compared", "ambiguous-geo", {P25}, {Subnet(kNew, 1), Subnet(kNew, 1)}, {}},

        {"GEO of negative records", "geo-without-preferred", {P25}, {P(1, kNew), N(2, kNew), N(3, kSame), P(4, kNew)},
         {"system #1"}},
        {"every GEO prefers something", "geo-without-preferred", {P25}, {N(1, kNew), P(2, kSame)}, {}},

        {"More on the last record of a GEO", "priority-at-geo-end", {P25},
         {More(P(1, kNew)), P(2, kSame), P(3, kNew), More(P(4, kSame)), More(P(5, kNew))}, {"system #3", "system #4"}},
        {"More inside a GEO, or on a negative last record", "priority-at-geo-end", {P25}, {More(P(1, kNew)), More(N(2, kSame))},
         {}},

        {"reserved indicators 13 to 63", "reserved-roaming-indicator", {P25},
         {P(1, kNew, 0, 13), P(2, kSame, 0, 63), N(3, kSame, 0, 40), P(4, kSame, 0, 12), P(5, kSame, 0, 64)},
         {"header", "system #0", "system #1"}, 13},
        {"standard and operator indicators", "reserved-roaming-indicator", {P25}, {P(1, kNew, 0, 0), P(2, kSame, 0, 255)},
         {}, 12},
        {"the default indicator past the reserved ones", "reserved-roaming-indicator", {P25}, {P(1, kNew)}, {}, 64},
        {"the default indicator at the last reserved one", "reserved-roaming-indicator", {P25}, {P(1, kNew)}, {"header"}, 63},
    };
    for (const auto& c : cases) EXPECT_EQ(Fired(*JsonList(c.acq, c.sys, 3, false, c.defRoamInd), c.rule), c.expected) << c.name;
}

// Each band's first and last channels pass, the ones just outside them fire, and the message
// names every channel at fault once per record.
TEST(LintRulesTest, ChannelOutOfBandAtEachBandsLimits) {
    auto pair = [](int type, int band, int channel) {
        return json{{"type", type}, {"pairs", {{{"bandClass", band}, {"channel", channel}}}}};
    };
    const std::pair<json, const char*> cases[] = {  // the record, the finding ("" none)
        {CellularCustom({1, 799, 991, 1023}), ""},
        {CellularCustom({0}), "channel 0 outside band 0 (1-799, 991-1023)"},
        {CellularCustom({0, 283, 800}), "channels 0, 800 outside band 0 (1-799, 991-1023)"},
        {CellularCustom({990, 1024}), "channels 990, 1024 outside band 0 (1-799, 991-1023)"},
        {PcsChannels({0, 1199}), ""},
        {PcsChannels({1200}), "channel 1200 outside band 1 (0-1199)"},
        {pair(10, 0, 799), ""},
        {pair(10, 0, 800), "band 0 channel 800 (band 0 has 1-799, 991-1023)"},
        {pair(10, 1, 1199), ""},
        {pair(10, 1, 1200), "band 1 channel 1200 (band 1 has 0-1199)"},
        {pair(10, 3, 1500), ""},  // other bands are not judged
        {pair(11, 0, 0), "band 0 channel 0 (band 0 has 1-799, 991-1023)"},
        {{{"type", 8}, {"channels", {1500}}}, ""},
    };
    for (const auto& [record, message] : cases) {
        auto list = JsonList(json::array({record}), json::array({Sid(1, 65535, true, true, false, 0)}), 5);
        std::vector<std::string> found;
        for (const auto& f : LintRoamingList(*list, 0))
            if (f.rule == "channel-out-of-band") found.push_back(f.Where() + ": " + f.message + " " + SeverityName(f.severity));
        EXPECT_EQ(found, *message ? Where{std::string("acquisition #0: ") + message + " error"} : Where{}) << record.dump();
    }
}

TEST(LintRulesTest, MessagesNameTheRecordsAndValues) {
    auto list = JsonList(json::array({PcsChannels({25, 26})}),
                         json::array({Sid(4106, 65535, true, true, false, 0), Sid(4106, 65535, true, true, false, 0)}));
    std::vector<std::string> messages;
    for (const auto& f : LintRoamingList(*list, 0))
        if (f.rule == "ambiguous-geo") messages.push_back(f.message);
    EXPECT_EQ(messages, Where{"SID 4106 NID 65535 in GEO 1 also stands in system #0 of GEO 0, and both scan band 1: 25-26"});
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
