// Finding records by SID, NID, MCC-MNC, subnet, channel and operator name, and the system filter:
// what the editor's Find and filter bar show rests on these answers.
#include <gtest/gtest.h>

#include "analysis/RecordSearch.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;

json Record(int type, bool pref, bool geoNew, int acq, json fields) {
    json r = Test::SysCommon(type, pref, geoNew, false, acq);
    r.update(fields);
    return r;
}

// Acquisition: 0 PCS 25/50, 1 cellular custom 283, 2 JTACS standard (whole band 3), 3 PCS 51.
// Systems (GEO: 0 0 0 1 1 1 1 2):
//   0 SID 4106 NID any -> acq 0   1 SID 4106 NID 2 -> acq 1   2 SID 22 NID 4106 negative -> acq 0
//   3 PLMN 310-120 -> acq 3       4 MCC-MNC 311-4F0 -> acq 3   5 1x-MCC 310 IMSI 12 -> acq 1
//   6 subnet 2001:db8:5::/48      7 MCC-MNC SID/NID list (4107,7) (4108,any) -> acq 2
std::unique_ptr<CRLData> SampleList() {
    const json pairs = {{{"sid", 4107}, {"nid", 7}}, {{"sid", 4108}, {"nid", 65535}}};
    return JsonList(
        json::array({PcsChannels({25, 50}), Test::CellularCustom({283}),
                     json{{"type", 7}, {"system", 0}, {"channel", 1}}, PcsChannels({51})}),
        json::array({Sid(4106, 65535, true, true, true, 0), Sid(4106, 2, true, false, false, 1),
                     Sid(22, 4106, false, false, false, 0),
                     Record(2, true, true, 3, {{"plmnType", 1}, {"mcc", "310"}, {"mnc", "120"}, {"netSelMode", 1}}),
                     Record(3, true, false, 3, {{"subtype", 0}, {"mcc", "311"}, {"mnc", "4F0"}}),
                     Record(14, true, false, 1, {{"mcc", 310}, {"imsi11_12", 12}}),
                     Record(1, true, false, 0, {{"subnet", "2001:db8:5::/48"}}),
                     Record(3, false, true, 2, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}})}),
        5);
}

std::string Names(size_t i) {
    return i == 0 ? "Verizon Wireless (United States)" : i == 3 ? "AT&T Mobility (United States)" : "";
}

TEST(RecordSearchTest, FindsRecordsByWhatEngineersKnowThemBy) {
    auto list = SampleList();
    ListFacts facts(*list);
    RecordSearch search(facts, Names);
    struct Case {
        const char* query;
        std::vector<size_t> acquisitions, systems;
    };
    const Case cases[] = {
        // A bare number is a SID or NID of a system, a channel of an acquisition record.
        {"4106", {}, {0, 1, 2}},
        {"sid 4106", {}, {0, 1}},
        {"SID:4106", {}, {0, 1}},
        {"sid=4107", {}, {7}},
        {"sid 4106 nid 2", {}, {1}},
        {"sid 4108 nid 65535", {}, {7}},
        {"sid 4107 nid 8", {}, {}},
        {"nid 7", {}, {7}},
        {"310-120", {}, {3, 5}},  // the 1x-MCC record states only the first two MNC digits
        {"311-480", {}, {4}},     // F is a wildcard digit
        {"mcc 310", {}, {3, 5, 7}},
        {"mcc 310 mnc 00", {}, {7}},
        {"2001:db8::/32", {}, {6}},
        {"subnet 2001:db8:5::1", {}, {6}},
        {"2001:db8:6::/48", {}, {}},
        // Channels: what a record scans, custom lists included; systems through their record.
        {"283", {1, 2}, {}},  // a number that is no SID: channel 283, covered by JTACS too
        {"channel 283", {1, 2}, {1, 5, 7}},
        {"ch 25 band 1", {0}, {0, 2, 6}},
        {"band 0 channel 25", {}, {}},
        {"51", {2, 3}, {}},
        {"2047", {2}, {}},  // the last channel there is
        {"310-12", {}, {5}},  // a two-digit MNC is not the start of PLMN 310-120
        // Operator names and countries, any case, every word.
        {"verizon", {}, {0}},
        {"UNITED states", {}, {0, 3}},
        {"at&t 310-120", {}, {3}},
        {"sprint", {}, {}},
        {"", {}, {}},
    };
    for (const auto& c : cases) {
        SearchQuery q;
        std::string error;
        ASSERT_TRUE(ParseSearchQuery(c.query, q, error)) << c.query << ": " << error;
        const auto result = search.Find(q);
        EXPECT_EQ(result.acquisitions, c.acquisitions) << c.query;
        EXPECT_EQ(result.systems, c.systems) << c.query;
    }
    // Without a provider directory a name matches nothing rather than everything.
    RecordSearch unnamed(facts);
    SearchQuery q;
    std::string error;
    ASSERT_TRUE(ParseSearchQuery("verizon", q, error));
    EXPECT_TRUE(unnamed.Find(q).systems.empty());
}

TEST(RecordSearchTest, ReadsQueriesToTheirLimitsAndRefusesPastThem) {
    const std::pair<const char*, const char*> cases[] = {  // query, the error ("" reads)
        {"sid 32767 nid 65535 65535 channel 2047 band 31 ch 0 mcc 999 mnc 99 mnc 999 subnet ::/0 ::1/128", ""},
        {"sid 32768", "SID 32768 is out of range (0 - 32767)"},
        {"nid 65536", "NID 65536 is out of range (0 - 65535)"},
        {"sid four", "SID \"four\" is not a number"},
        {"sid", "\"sid\" needs a value after it"},
        {"65536", "65536 is larger than any SID, NID or channel"},
        {"channel 2048", "channel 2048 is out of range (0 - 2047)"},
        {"band 32 channel 1", "band class 32 is out of range (0 - 31)"},
        {"band 1", "a band needs a channel"},
        {"mcc 31", "MCC \"31\" must be three digits"},
        {"mnc 1", "MNC \"1\" must be two or three digits"},
        {"mnc 1234", "MNC \"1234\" must be two or three digits"},
        {"2001:zz::/32", "is not an IPv6 address"},
        {"subnet 2001:db8::/129", "subnet length 129 is out of range"},
    };
    for (const auto& [query, message] : cases) {
        SearchQuery q;
        std::string error;
        EXPECT_EQ(ParseSearchQuery(query, q, error), !*message) << query;
        EXPECT_NE(error.find(message), std::string::npos) << query << ": " << error;
    }
}

TEST(RecordSearchTest, FilterCombinesTextGeoPreferenceAndAcquisition) {
    auto list = SampleList();
    ListFacts facts(*list);
    RecordSearch search(facts, Names);
    auto filter = [&](const char* text, std::optional<int> geo, SystemFilter::Preference pref,
                      std::optional<size_t> acq) {
        SystemFilter f;
        std::string error;
        EXPECT_TRUE(ParseSearchQuery(text, f.query, error)) << error;
        f.geo = geo;
        f.preference = pref;
        f.acqIndex = acq;
        std::vector<size_t> kept;
        const auto keep = FilterSystems(search, f);
        EXPECT_EQ(keep.size(), facts.SystemCount());
        for (size_t i = 0; i < keep.size(); ++i)
            if (keep[i]) kept.push_back(i);
        return kept;
    };
    using P = SystemFilter::Preference;
    EXPECT_EQ(filter("", {}, P::Any, {}), (std::vector<size_t>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(filter("", 1, P::Any, {}), (std::vector<size_t>{3, 4, 5, 6}));
    EXPECT_EQ(filter("", {}, P::Negative, {}), (std::vector<size_t>{2, 7}));
    EXPECT_EQ(filter("4106", 0, P::Preferred, {}), (std::vector<size_t>{0, 1}));
    EXPECT_EQ(filter("", {}, P::Any, 3), (std::vector<size_t>{3, 4}));
    EXPECT_EQ(filter("mcc 310", 1, P::Any, 1), (std::vector<size_t>{5}));
    EXPECT_EQ(search.SystemsUsing(0), (std::vector<size_t>{0, 2, 6}));
    EXPECT_TRUE(search.SystemsUsing(9).empty());
}

}  // namespace
}  // namespace Tarn::Analysis
