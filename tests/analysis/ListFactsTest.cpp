// GEO numbers, priority levels, acquisition coverage and the observation rule: the facts every
// question asked of a list starts from.
#include <gtest/gtest.h>

#include "analysis/ListFacts.h"
#include "analysis/Observation.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/SysItem.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;

TEST(ListFactsTest, GeosAndPriorityLevels) {
    // GEO 0: More, Same, negative (never raises), More, Same -> levels 0, 1, 1, 1, 2.
    // A first record flagged "Same" still opens GEO 0; GEO 1 starts at the next "New".
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(1, 65535, true, false, true, 0),
                                      Sid(2, 65535, true, false, false, 0),
                                      Sid(3, 65535, false, false, true, 0),
                                      Sid(4, 65535, true, false, true, 0),
                                      Sid(5, 65535, true, false, false, 0),
                                      Sid(6, 65535, true, true, false, 0),
                                      Sid(7, 65535, true, false, true, 0)}));
    ListFacts facts(*list);
    const int geos[] = {0, 0, 0, 0, 0, 1, 1};
    const int levels[] = {0, 1, 1, 1, 2, 0, 0};
    ASSERT_EQ(facts.SystemCount(), 7u);
    for (size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(facts.Facts(i).geo, geos[i]) << "record " << i;
        EXPECT_EQ(facts.Facts(i).level, levels[i]) << "record " << i;
    }
    EXPECT_EQ(facts.GeoCount(), 2);
    EXPECT_EQ(facts.GeoRange(1), std::make_pair(size_t{5}, size_t{7}));
}

TEST(ListFactsTest, CoverageOfEachAcquisitionType) {
    struct Case {
        json record;
        std::string text;
    };
    const Case cases[] = {
        {{{"type", 1}, {"system", 0}}, "none"},  // analog scans nothing CDMA
        {{{"type", 2}, {"system", 0}, {"channel", 1}}, "band 0: 283"},
        {{{"type", 2}, {"system", 3}, {"channel", 3}}, "band 0: 283, 384, 691, 777"},
        {{{"type", 2}, {"system", 1}, {"channel", 2}}, "band 0: 777"},
        {{{"type", 4}, {"system", 0}}, "band 0: 283, 691"},
        {{{"type", 3}, {"channels", {1, 799}}}, "band 0: 1, 799"},
        {{{"type", 5}, {"blocks", {{{"block", 0}}, {{"block", 3}}, {{"block", 2}}}}},
         "band 1: 0-399, 900-1199"},
        {{{"type", 5}, {"blocks", {{{"block", 7}}}}}, "band 1: 0-1199"},
        {{{"type", 6}, {"channels", {25, 26, 27}}}, "band 1: 25-27"},
        {{{"type", 7}, {"system", 0}, {"channel", 1}}, "band 3: 0-2047"},
        {{{"type", 8}, {"channels", {100}}}, "band 3: 100"},
        {{{"type", 9}, {"channels", {100}}}, "band 6: 100"},
        {{{"type", 10}, {"pairs", {{{"bandClass", 1}, {"channel", 25}}, {{"bandClass", 0}, {"channel", 283}}}}},
         "band 0: 283; band 1: 25"},
        {{{"type", 11}, {"pairs", {{{"bandClass", 1}, {"channel", 50}}}}}, "band 1: 50"},
        {{{"type", 12}, {"bands", {{{"band", 0}}}}}, "none"},
    };
    for (const auto& c : cases) {
        auto list = JsonList(json::array({c.record}), json::array(), 5);
        ListFacts facts(*list);
        EXPECT_EQ(facts.AcqCoverage(0).ToText(), c.text) << c.record.dump();
    }
}

TEST(ListFactsTest, CoverageQueries) {
    auto list = JsonList(json::array({PcsChannels({25, 50}), json{{"type", 7}, {"system", 0}, {"channel", 1}},
                                      json{{"type", 8}, {"channels", {640}}}, PcsChannels({51})}),
                         json::array());
    ListFacts facts(*list);
    EXPECT_TRUE(facts.AcqCoverage(0).Covers(1, 50));
    EXPECT_FALSE(facts.AcqCoverage(0).Covers(0, 50));
    EXPECT_FALSE(facts.AcqCoverage(0).Covers(1, 51));
    EXPECT_TRUE(facts.AcqCoverage(1).Overlaps(facts.AcqCoverage(2)));  // whole JTACS band
    EXPECT_FALSE(facts.AcqCoverage(0).Overlaps(facts.AcqCoverage(3)));
    EXPECT_TRUE(facts.AcqCoverage(99).Empty());
}

TEST(ListFactsTest, KeysIgnoreIndicesAndNameTheSystem) {
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({25}), PcsChannels({26})}),
                         json::array({Sid(10, 65535, true, true, false, 0), Sid(10, 65535, true, false, false, 1),
                                      Sid(10, 65535, true, false, false, 2), Sid(10, 3, true, false, false, 0),
                                      Sid(10, 65535, false, false, false, 0)}));
    ListFacts facts(*list);
    EXPECT_EQ(facts.AcqContentKey(0), facts.AcqContentKey(1));
    EXPECT_NE(facts.AcqContentKey(0), facts.AcqContentKey(2));
    EXPECT_EQ(facts.IdentityKey(0), facts.IdentityKey(2));
    EXPECT_NE(facts.IdentityKey(0), facts.IdentityKey(3));
    EXPECT_EQ(facts.SystemContentKey(0), facts.SystemContentKey(1));  // same content, other index
    EXPECT_NE(facts.SystemContentKey(0), facts.SystemContentKey(2));  // other channels
    EXPECT_NE(facts.SystemContentKey(0), facts.SystemContentKey(4));  // negative
    EXPECT_EQ(SystemLine(facts, 3).substr(0, 13), "3\t0\tPref\tSame");
    EXPECT_EQ(AcquisitionLine(facts, 2), "2\t6\t26");
}

struct MatchCase {
    const char* name;
    json record;
    ObservationFields observation;
    std::optional<int> specificity;
};

json Record(int type, json fields) {
    json r = Test::SysCommon(type, true, true, false, 0);
    r.update(fields);
    return r;
}

TEST(ObservationTest, WhichRecordsNameWhichSystems) {
    const json pairs = {{{"sid", 4140}, {"nid", 65535}}, {{"sid", 4141}, {"nid", 7}}};
    const MatchCase cases[] = {
        {"wildcard NID, NID given", Sid(4106, 65535, true, true, false, 0), {"4106", "3"}, 0},
        {"stated NID equal", Sid(4106, 3, true, true, false, 0), {"4106", "3"}, 1},
        {"stated NID other", Sid(4106, 4, true, true, false, 0), {"4106", "3"}, std::nullopt},
        {"no NID observed", Sid(4106, 4, true, true, false, 0), {"4106"}, 1},
        {"other SID", Sid(4107, 65535, true, true, false, 0), {"4106"}, std::nullopt},
        {"MCC-MNC SID/NID list", Record(3, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}}),
         {"4141", "7"}, 1},
        {"MCC-MNC SID/NID list, wildcard pair", Record(3, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}}),
         {"4140", "9"}, 0},
        {"MCC-MNC SID list", Record(3, {{"subtype", 1}, {"mcc", "310"}, {"mnc", "00"}, {"sids", {4150}}}),
         {"4150", "9"}, 0},
        {"MCC-MNC by MCC/MNC", Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "120"}}),
         {"", "", "310", "120"}, 3},
        {"F digit", Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "1F0"}}), {"", "", "310", "190"}, 2},
        {"all F", Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "FFF"}}), {"", "", "310", "77"}, 0},
        {"two digits against three", Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "12"}}),
         {"", "", "310", "120"}, std::nullopt},
        {"two digits", Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "12"}}), {"", "", "310", "12"}, 2},
        {"other MCC", Record(3, {{"subtype", 0}, {"mcc", "311"}, {"mnc", "120"}}),
         {"", "", "310", "120"}, std::nullopt},
        {"PLMN", Record(2, {{"plmnType", 1}, {"mcc", "311"}, {"mnc", "480"}, {"netSelMode", 1}}),
         {"", "", "311", "480"}, 3},
        {"PLMN select mode names nothing", Record(2, {{"plmnType", 0}, {"plmnSelect", 0}}),
         {"", "", "311", "480"}, std::nullopt},
        {"1x-MCC", Record(14, {{"mcc", 310}, {"imsi11_12", 12}}), {"", "", "310", "123"}, 3},
        {"1x-MCC other IMSI", Record(14, {{"mcc", 310}, {"imsi11_12", 13}}), {"", "", "310", "123"}, std::nullopt},
        {"subnet prefix covers", Record(1, {{"subnet", "2001:db8::/32"}}), {"", "", "", "", "2001:db8:5::1/64"}, 32},
        {"subnet prefix misses", Record(1, {{"subnet", "2001:db8::/32"}}), {"", "", "", "", "2001:db9::1/64"},
         std::nullopt},
        {"MCC-MNC subnet list", Record(3, {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"}, {"subnets", {"2001:db8::/32", "2001:db8:5::/48"}}}),
         {"", "", "", "", "2001:db8:5::1/128"}, 48},
    };
    for (const auto& c : cases) {
        auto list = JsonList(json::array({PcsChannels({25})}), json::array({c.record}), 5);
        Observation o;
        std::string error;
        ASSERT_TRUE(ParseObservation(c.observation, o, error)) << c.name << ": " << error;
        const auto& record = static_cast<const CSysItem&>(*list->GetSysTable().Items().GetAt(0));
        EXPECT_EQ(MatchSpecificity(record, o), c.specificity) << c.name;
    }
}

TEST(ObservationTest, RefusesWhatIsNotAnObservation) {
    struct Case {
        ObservationFields fields;
        const char* message;
    };
    const Case cases[] = {
        {{}, "no observation"},
        {{"41x"}, "SID \"41x\" is not a number"},
        {{"32768"}, "SID 32768 is out of range (0 - 32767)"},
        {{"1", "", "310", "12"}, "give only one"},
        {{"", "5"}, "--nid needs --sid"},
        {{"", "", "310"}, "--mcc needs --mnc"},
        {{"", "", "31", "12"}, "MCC \"31\" must be three digits"},
        {{"", "", "310", "1234"}, "MNC \"1234\" must be two or three digits"},
        {{"", "", "", "", "2001:db8::1"}, "needs a length"},
        {{"", "", "", "", "2001:zz8::1/64"}, "is not an IPv6 address"},
        {{"", "", "", "", "2001:db8::1/129"}, "subnet length 129 is out of range"},
        {{"1", "", "", "", "", "", "25"}, "--channel needs --band"},
        {{"1", "", "", "", "", "1"}, "--band needs --channel"},
    };
    for (const auto& c : cases) {
        Observation o;
        std::string error;
        EXPECT_FALSE(ParseObservation(c.fields, o, error)) << c.message;
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace Tarn::Analysis
