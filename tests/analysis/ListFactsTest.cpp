// Acquisition coverage and the observation rule: the facts every question asked of a list starts
// from. GEOs and levels are SelectionTest's; the keys records compare by, DiffTest's and LintRulesTest's.
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

TEST(ListFactsTest, CoverageOfEachAcquisitionType) {
    const std::pair<json, const char*> cases[] = {
        {{{"type", 1}, {"system", 0}}, "none"},  // analog scans nothing CDMA
        {{{"type", 2}, {"system", 0}, {"channel", 1}}, "band 0: 283"},
        {{{"type", 2}, {"system", 3}, {"channel", 3}}, "band 0: 283, 384, 691, 777"},
        {{{"type", 2}, {"system", 1}, {"channel", 2}}, "band 0: 777"},
        {{{"type", 4}, {"system", 0}}, "band 0: 283, 691"},
        {{{"type", 3}, {"channels", {1, 799}}}, "band 0: 1, 799"},
        {{{"type", 5}, {"blocks", {{{"block", 0}}, {{"block", 3}}, {{"block", 2}}}}}, "band 1: 0-399, 900-1199"},
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
    for (const auto& [record, text] : cases)
        EXPECT_EQ(ListFacts(*JsonList(json::array({record}), json::array(), 5)).AcqCoverage(0).ToText(), text)
            << record.dump();

    auto list = JsonList(json::array({PcsChannels({25, 50}), json{{"type", 7}, {"system", 0}, {"channel", 1}},
                                      json{{"type", 8}, {"channels", {640}}}, PcsChannels({51})}),
                         json::array());
    ListFacts facts(*list);
    EXPECT_TRUE(facts.AcqCoverage(0).Covers(1, 50));
    EXPECT_FALSE(facts.AcqCoverage(0).Covers(0, 50));
    EXPECT_FALSE(facts.AcqCoverage(0).Covers(1, 51));
    EXPECT_TRUE(facts.AcqCoverage(1).Covers(3, 2047));
    EXPECT_FALSE(facts.AcqCoverage(1).Covers(3, 2048));
    EXPECT_TRUE(facts.AcqCoverage(1).Overlaps(facts.AcqCoverage(2)));  // whole JTACS band
    EXPECT_FALSE(facts.AcqCoverage(0).Overlaps(facts.AcqCoverage(3)));
    EXPECT_TRUE(facts.AcqCoverage(99).Empty());
}

json Record(int type, json fields) {
    json r = Test::SysCommon(type, true, true, false, 0);
    r.update(fields);
    return r;
}

TEST(ObservationTest, WhichRecordsNameWhichSystems) {
    const json pairs = {{{"sid", 4140}, {"nid", 65535}}, {{"sid", 4141}, {"nid", 7}}};
    const json sidNids = Record(3, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}});
    const json mnc12 = Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "12"}});
    const std::tuple<json, ObservationFields, std::optional<int>> cases[] = {  // record, observation, specificity
        {Sid(4106, 65535, true, true, false, 0), {"4106", "3"}, 0},  // the wildcard NID
        {Sid(4106, 3, true, true, false, 0), {"4106", "3"}, 1},
        {Sid(4106, 4, true, true, false, 0), {"4106", "3"}, std::nullopt},
        {Sid(4106, 4, true, true, false, 0), {"4106"}, 1},  // no NID observed
        {Sid(4107, 65535, true, true, false, 0), {"4106"}, std::nullopt},
        {Sid(32767, 65534, true, true, false, 0), {"32767", "65534"}, 1},
        {sidNids, {"4141", "7"}, 1},
        {sidNids, {"4140", "9"}, 0},
        {Record(3, {{"subtype", 1}, {"mcc", "310"}, {"mnc", "00"}, {"sids", {4150}}}), {"4150", "9"}, 0},
        {Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "120"}}), {"", "", "310", "120"}, 3},
        {Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "1F0"}}), {"", "", "310", "190"}, 2},
        {Record(3, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "FFF"}}), {"", "", "310", "77"}, 0},
        {mnc12, {"", "", "310", "120"}, std::nullopt},  // two digits against three
        {mnc12, {"", "", "310", "12"}, 2},
        {Record(3, {{"subtype", 0}, {"mcc", "311"}, {"mnc", "120"}}), {"", "", "310", "120"}, std::nullopt},
        {Record(2, {{"plmnType", 1}, {"mcc", "311"}, {"mnc", "480"}, {"netSelMode", 1}}), {"", "", "311", "480"}, 3},
        {Record(2, {{"plmnType", 0}, {"plmnSelect", 0}}), {"", "", "311", "480"}, std::nullopt},  // select mode
        {Record(14, {{"mcc", 310}, {"imsi11_12", 12}}), {"", "", "310", "123"}, 3},
        {Record(14, {{"mcc", 310}, {"imsi11_12", 13}}), {"", "", "310", "123"}, std::nullopt},
        {Record(1, {{"subnet", "2001:db8::/32"}}), {"", "", "", "", "2001:db8:5::1/64"}, 32},
        {Record(1, {{"subnet", "2001:db8::/32"}}), {"", "", "", "", "2001:db8:8000::/64"}, 32},  // bit 32 is free
        {Record(1, {{"subnet", "2001:db8::/32"}}), {"", "", "", "", "2001:db9::1/64"}, std::nullopt},  // bit 31 not
        {Record(1, {{"subnet", "2001:db8::/127"}}), {"", "", "", "", "2001:db8::1/128"}, 127},
        {Record(1, {{"subnet", "2001:db8::/127"}}), {"", "", "", "", "2001:db8::2/128"}, std::nullopt},
        {Record(3, {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"}, {"subnets", {"2001:db8::/32", "2001:db8:5::/48"}}}),
         {"", "", "", "", "2001:db8:5::1/128"}, 48},
    };
    for (const auto& [record, fields, specificity] : cases) {
        auto list = JsonList(json::array({PcsChannels({25})}), json::array({record}), 5);
        Observation o;
        std::string error;
        ASSERT_TRUE(ParseObservation(fields, o, error)) << error;
        const auto& item = static_cast<const CSysItem&>(*list->GetSysTable().Items().GetAt(0));
        EXPECT_EQ(MatchSpecificity(item, o), specificity) << record.dump() << " " << o.Describe();
    }
}

TEST(ObservationTest, ReadsFieldsToTheirLimitsAndRefusesPastThem) {
    const std::pair<ObservationFields, const char*> cases[] = {  // the observation, or the error
        {{"32767", "65535", "", "", "", "31", "2047"}, "SID 32767 NID 65535 on band 31 channel 2047"},
        {{"0", "0", "", "", "", "0", "0"}, "SID 0 NID 0 on band 0 channel 0"},
        {{"", "", "001", "01"}, "MCC 001 MNC 01"},
        {{"", "", "999", "999"}, "MCC 999 MNC 999"},
        {{"", "", "", "", "::/0"}, "subnet ::/0"},
        {{"", "", "", "", "2001:db8::1/128"}, "subnet 2001:db8::1/128"},
        {{}, "no observation: give --sid, --mcc with --mnc, or --subnet"},
        {{"41x"}, "SID \"41x\" is not a number"},
        {{"32768"}, "SID 32768 is out of range (0 - 32767)"},
        {{"1", "65536"}, "NID 65536 is out of range (0 - 65535)"},
        {{"1", "", "", "", "", "32", "1"}, "band class 32 is out of range (0 - 31)"},
        {{"1", "", "", "", "", "1", "2048"}, "channel 2048 is out of range (0 - 2047)"},
        {{"1", "", "310", "12"}, "give only one of --sid, --mcc/--mnc and --subnet"},
        {{"", "5"}, "--nid needs --sid"},
        {{"", "", "310"}, "--mcc needs --mnc"},
        {{"", "", "", "01"}, "--mnc needs --mcc"},
        {{"", "", "31", "12"}, "MCC \"31\" must be three digits"},
        {{"", "", "3100", "12"}, "MCC \"3100\" must be three digits"},
        {{"", "", "310", "1"}, "MNC \"1\" must be two or three digits"},
        {{"", "", "310", "1234"}, "MNC \"1234\" must be two or three digits"},
        {{"", "", "", "", "2001:db8::1"}, "subnet \"2001:db8::1\" needs a length: ADDRESS/LENGTH"},
        {{"", "", "", "", "2001:zz8::1/64"}, "subnet \"2001:zz8::1/64\" is not an IPv6 address"},
        {{"", "", "", "", "2001:db8::1/129"}, "subnet length 129 is out of range (0 - 128)"},
        {{"1", "", "", "", "", "", "25"}, "--channel needs --band"},
        {{"1", "", "", "", "", "1"}, "--band needs --channel"},
    };
    for (const auto& [fields, expected] : cases) {
        Observation o;
        std::string error;
        EXPECT_EQ(ParseObservation(fields, o, error) ? o.Describe() : error, expected);
    }
}

}  // namespace
}  // namespace Tarn::Analysis
