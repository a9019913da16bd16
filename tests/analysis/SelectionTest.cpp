// System selection: which record wins for a system a handset found (and why each other match
// lost), the verdict, the roaming indicator and the systems of the GEO it keeps looking for.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "analysis/Providers.h"
#include "analysis/Selection.h"
#include "roaming_list/SysItem.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;

Observation Obs(ObservationFields fields) {
    Observation o;
    std::string error;
    EXPECT_TRUE(ParseObservation(fields, o, error)) << error;
    return o;
}

json Record(int type, bool pref, bool geoNew, bool more, int acq, json fields) {
    json r = Test::SysCommon(type, pref, geoNew, more, acq);
    r.update(fields);
    return r;
}

// Every record naming the system in list order, each with how it fared: "*" won, "s" lost as less
// specific, "l" lost as later in the list, "c" lost as not scanning the channel.
std::string Fared(const SelectionResult& r) {
    std::string out;
    for (const auto& c : r.candidates) {
        if (!out.empty()) out += ' ';
        out += std::to_string(c.index);
        out += "*csl"[static_cast<int>(c.lost)];
    }
    return out;
}

struct WinnerCase {
    const char* name;
    ObservationFields observation;
    const char* fared;
    std::optional<bool> acqCovers = std::nullopt;
};

void ExpectWinners(const CRLData& list, const std::vector<WinnerCase>& cases) {
    Selector selector(list);
    for (const auto& c : cases) {
        SelectionResult r = selector.Select(Obs(c.observation));
        EXPECT_EQ(Fared(r), c.fared) << c.name;
        const auto won = std::find_if(r.candidates.begin(), r.candidates.end(),
                                      [](const SelectionCandidate& x) { return x.lost == LossReason::None; });
        ASSERT_EQ(r.match.has_value(), won != r.candidates.end()) << c.name;
        if (!r.match) continue;
        EXPECT_EQ(r.match->index, won->index) << c.name;
        EXPECT_EQ(r.match->acqCovers, c.acqCovers) << c.name;
    }
}

TEST(SelectionTest, IdentityAndSpecificityPickTheWinnerAndTiesGoToTheEarliest) {
    // 0: SID 100 any NID; 1: SID 100 NID 7; 2: SID 100 any NID again (a tie with 0);
    // 3: MCC-MNC record listing SID 100 NID 8 and SID 200 any NID; 4: SID 200 NID 9;
    // 5: SID 100 NID 7 again, in another GEO (a tie with 1).
    const json pairs = {{{"sid", 100}, {"nid", 8}}, {{"sid", 200}, {"nid", 65535}}};
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(100, 65535, true, true, false, 0), Sid(100, 7, true, false, false, 0),
                                      Sid(100, 65535, true, false, false, 0),
                                      Record(3, true, false, false, 0,
                                             {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}}),
                                      Sid(200, 9, true, false, false, 0), Sid(100, 7, false, true, false, 0)}),
                         5);
    ExpectWinners(*list, {
        {"stated NID beats the wildcard; of two stated, the earlier", {"100", "7"}, "0s 1* 2s 5l"},
        {"other NID: only wildcards, the earliest wins", {"100", "5"}, "0* 2l"},
        {"MCC-MNC pair with a stated NID beats the wildcards", {"100", "8"}, "0s 2s 3*"},
        {"no NID observed: every NID matches, the first stated one wins", {"100"}, "0s 1* 2s 3l 5l"},
        {"stated NID 9 beats the MCC-MNC wildcard pair", {"200", "9"}, "3s 4*"},
        {"MCC-MNC wildcard pair alone", {"200", "1"}, "3*"},
        {"unknown SID", {"300"}, ""},
    });
}

TEST(SelectionTest, MccMncAndSubnetSpecificity) {
    auto list = JsonList(
        json::array({PcsChannels({25})}),
        json::array({
            Record(3, true, true, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "FFF"}}),                   // 0
            Record(3, true, false, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "1F0"}}),                  // 1
            Record(2, true, false, false, 0, {{"plmnType", 1}, {"mcc", "310"}, {"mnc", "120"}, {"netSelMode", 1}}),  // 2
            Record(14, true, false, false, 0, {{"mcc", 310}, {"imsi11_12", 13}}),                                // 3
            Record(3, true, false, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "13"}}),                   // 4
            Record(1, true, false, false, 0, {{"subnet", "2001:db8::/32"}}),                                     // 5
            Record(3, true, false, false, 0,
                   {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"}, {"subnets", {"2001:db8:5::/48"}}}),           // 6
            Record(1, true, false, false, 0, {{"subnet", "2000::/3"}}),                                          // 7
            Record(2, true, false, false, 0, {{"plmnType", 0}, {"plmnSelect", 0}}),                              // 8
            Record(1, true, false, false, 0, {{"subnet", "2001:db8:5::/48"}}),                                   // 9
        }),
        5);
    ExpectWinners(*list, {
        {"all-F MNC is the last resort", {"", "", "310", "555"}, "0*"},
        {"F digit: two stated digits beat none", {"", "", "310", "190"}, "0s 1*"},
        {"three stated digits beat an F digit", {"", "", "310", "120"}, "0s 1s 2*"},
        {"1x-MCC counts as three digits, beating a two-digit MNC", {"", "", "310", "13"}, "0s 3* 4s"},
        {"two-digit record MNC does not match three digits", {"", "", "310", "135"}, "0s 3*"},
        {"other MCC", {"", "", "311", "120"}, ""},
        {"longest prefix wins; of two as long, the earlier", {"", "", "", "", "2001:db8:5::1/128"}, "5s 6* 7s 9l"},
        {"a shorter prefix when the longer misses", {"", "", "", "", "2001:db8:6::1/128"}, "5* 7s"},
        {"a prefix shorter than 16 bits", {"", "", "", "", "3fff::1/128"}, "7*"},
        {"no prefix covers", {"", "", "", "", "fe80::1/64"}, ""},
    });
}

TEST(SelectionTest, ChannelTellsTheSameSidInTwoGeosApart) {
    // GEO 0 reaches SID 500 on PCS 25, GEO 1 on PCS 50; GEO 1 also states NID 3 on PCS 75.
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50}), PcsChannels({75})}),
                         json::array({Sid(1, 65535, true, true, true, 0), Sid(500, 65535, true, false, false, 0),
                                      Sid(500, 65535, true, true, false, 1), Sid(500, 3, true, false, false, 2)}));
    ExpectWinners(*list, {
        {"channel of GEO 0", {"500", "", "", "", "", "1", "25"}, "1* 2c 3c", true},
        {"channel of GEO 1", {"500", "", "", "", "", "1", "50"}, "1c 2* 3c", true},
        {"coverage beats a stated NID", {"500", "3", "", "", "", "1", "50"}, "1c 2* 3c", true},
        {"the stated NID where it is covered", {"500", "3", "", "", "", "1", "75"}, "1c 2c 3*", true},
        {"no record covers: identity stands", {"500", "3", "", "", "", "1", "100"}, "1s 2s 3*", false},
        {"other band: identity alone, the stated NID", {"500", "", "", "", "", "0", "25"}, "1s 2s 3*", false},
        {"without a channel coverage is unknown", {"500", "3"}, "1s 2s 3*"},
    });
    EXPECT_EQ(Selector(*list).Select(Obs({"500", "", "", "", "", "1", "50"})).match->geo, 1);
}

TEST(SelectionTest, LevelsAndMorePreferredSystems) {
    // GEO 0: 0 More, 1 Same, 2 negative More (never raises), 3 More, 4 Same, 5 negative;
    // levels 0, 1, 1, 1, 2, 2. GEO 1: 6, 7. The first record opens GEO 0 though flagged "Same".
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50})}),
                         json::array({Sid(10, 65535, true, false, true, 0), Sid(11, 65535, true, false, false, 1),
                                      Sid(12, 65535, false, false, true, 0), Sid(13, 65535, true, false, true, 0),
                                      Sid(14, 65535, true, false, false, 1, 2), Sid(15, 65535, false, false, false, 0),
                                      Sid(16, 65535, true, true, true, 0), Sid(17, 65535, true, false, false, 0)}));
    struct Case {
        const char* sid;
        Verdict verdict;
        int level;
        std::vector<size_t> morePreferred;
    };
    const Case cases[] = {
        {"10", Verdict::Preferred, 0, {}},
        {"11", Verdict::Preferred, 1, {0}},
        {"13", Verdict::Preferred, 1, {0}},  // same level as 1: 1 is not more preferred
        {"14", Verdict::Preferred, 2, {0, 1, 3}},
        {"12", Verdict::Negative, 1, {0, 1, 3, 4}},  // every preferred record of the GEO
        {"15", Verdict::Negative, 2, {0, 1, 3, 4}},
        {"17", Verdict::Preferred, 1, {6}},  // GEO 1 only
    };
    Selector selector(*list);
    for (const auto& c : cases) {
        SelectionResult r = selector.Select(Obs({c.sid}));
        ASSERT_TRUE(r.match) << c.sid;
        EXPECT_EQ(r.verdict, c.verdict) << c.sid;
        EXPECT_EQ(r.match->level, c.level) << c.sid;
        std::vector<size_t> more;
        for (const auto& s : r.morePreferred) more.push_back(s.index);
        EXPECT_EQ(more, c.morePreferred) << c.sid;
    }
    EXPECT_EQ(selector.Facts().GeoCount(), 2);
    EXPECT_EQ(selector.Facts().GeoRange(1), std::make_pair(size_t{6}, size_t{8}));
    SelectionResult r = selector.Select(Obs({"14"}));
    EXPECT_EQ(r.roamInd, 2u);
    EXPECT_EQ(r.morePreferred[1].coverage.ToText(), "band 1: 50");
}

TEST(SelectionTest, IndexFindsWhatALinearScanFinds) {
    // Every kind of record, many sharing keys, against observations near and far from them: the
    // indexed candidates must be exactly the records the rule accepts, in list order.
    json sys = json::array();
    for (int i = 0; i < 60; ++i) {
        const bool g = i % 7 == 0;
        const json kinds[] = {
            Sid(static_cast<unsigned>(i % 5), i % 4 ? 65535u : static_cast<unsigned>(i % 3), true, g, i % 2, 0),
            Record(3, true, g, false, 0, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "0F"},
                                          {"sidNidPairs", {{{"sid", i % 5}, {"nid", i % 3}}}}}),
            Record(14, i % 4 != 0, g, true, 0, {{"mcc", 310 + i % 2}, {"imsi11_12", i % 3}}),
            Record(2, true, g, false, 0, {{"plmnType", 1}, {"mcc", i % 2 ? "311" : "310"},
                                          {"mnc", i % 3 ? "0F1" : "FFF"}, {"netSelMode", 1}}),
            Record(1, true, g, false, 0, {{"subnet", i % 4 ? "2001:db8::/32" : "2000::/4"}}),
            Record(3, false, g, false, 0, {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"},
                                           {"subnets", {"2001:db8:1::/48", "3000::/8"}}}),
        };
        sys.push_back(kinds[i % 6]);
    }
    auto list = JsonList(json::array({PcsChannels({25})}), sys, 5);
    Selector selector(*list);
    std::vector<ObservationFields> observations;
    for (int s = 0; s < 6; ++s) {
        observations.push_back({std::to_string(s)});
        for (int n = 0; n < 4; ++n) observations.push_back({std::to_string(s), std::to_string(n)});
    }
    for (const char* mcc : {"310", "311", "312"})
        for (const char* mnc : {"00", "01", "001", "011", "10", "111"}) observations.push_back({"", "", mcc, mnc});
    for (const char* subnet : {"2001:db8:1::5/128", "2001:db8::/32", "3000::1/128", "2fff::1/128", "::/0"})
        observations.push_back({"", "", "", "", subnet});
    for (const auto& fields : observations) {
        Observation o = Obs(fields);
        std::vector<size_t> expected, got;
        for (size_t i = 0; i < selector.Facts().SystemCount(); ++i)
            if (MatchSpecificity(selector.Facts().System(i), o)) expected.push_back(i);
        for (const auto& c : selector.Select(o).candidates) got.push_back(c.index);
        EXPECT_EQ(got, expected) << o.Describe();
    }
}

TEST(SelectionTest, JsonAndOperatorsBesideTheRecords) {
    std::vector<std::string> warnings;
    const auto providers = ProviderDirectory::Parse(
        R"(<serviceproviders format="2.0"><country code="us">)"
        R"(<provider><name>North Cell</name><cdma><sid value="1"/></cdma></provider>)"
        R"(<provider><name>Shared Net</name><cdma><sid value="1"/></cdma></provider>)"
        R"(</country></serviceproviders>)",
        R"({"3166-1": [{"alpha_2": "US", "name": "United States"}]})", "test.xml", warnings);
    ASSERT_TRUE(warnings.empty());
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(1, 65535, true, true, true, 0, 3), Sid(2, 65535, false, false, false, 0)}),
                         3, false, 9);
    Selector selector(*list);
    const std::pair<ObservationFields, const char*> cases[] = {
        {{"1", "", "", "", "", "1", "26"},
         R"({"verdict":"preferred","match":{"index":0,"geo":0,"priority":0,"preferred":true,"roamInd":3,)"
         R"("acqIndex":0,"acqCovers":false},"candidates":[0],"morePreferred":[],"roamInd":3})"},
        {{"2"},
         R"({"verdict":"negative","match":{"index":1,"geo":0,"priority":1,"preferred":false,"roamInd":null,)"
         R"("acqIndex":0,"acqCovers":null},"candidates":[1],"morePreferred":[0],"roamInd":null})"},
        {{"3"}, R"({"verdict":"unlisted-allowed","match":null,"candidates":[],"morePreferred":[],"roamInd":9})"},
    };
    for (const auto& [fields, text] : cases) EXPECT_EQ(FormatSelectionJson(selector.Select(Obs(fields))), text);
    // In a preferred-only list a negative record still decides; a system no record names is forbidden.
    auto prefOnly = JsonList(json::array({PcsChannels({25})}), json::array({Sid(2, 65535, false, true, false, 0)}), 3, true);
    EXPECT_EQ(FormatSelectionJson(Selector(*prefOnly).Select(Obs({"2"}))),
              R"({"verdict":"negative","match":{"index":0,"geo":0,"priority":0,"preferred":false,"roamInd":null,)"
              R"("acqIndex":0,"acqCovers":null},"candidates":[0],"morePreferred":[],"roamInd":null})");
    EXPECT_EQ(FormatSelectionJson(Selector(*prefOnly).Select(Obs({"3"}))),
              R"({"verdict":"unlisted-forbidden","match":null,"candidates":[],"morePreferred":[],"roamInd":null})");

    // The winner (SID 2) is nobody's; the more preferred SID 1 is claimed twice.
    const std::string text = FormatSelectionText(selector.Select(Obs({"2"})), selector.Facts(), &providers);
    EXPECT_NE(text.find("(North Cell / Shared Net (United States))"), std::string::npos) << text;
    const size_t record = text.find("  record: ");
    ASSERT_NE(record, std::string::npos);
    EXPECT_EQ(text.substr(record, text.find('\n', record) - record).find('('), std::string::npos) << text;
    const auto j = json::parse(FormatSelectionJson(selector.Select(Obs({"1"})), &selector.Facts(), &providers));
    EXPECT_EQ(j["match"]["operators"], json::parse(R"([{"name": "North Cell", "country": "US", "countryName":
        "United States"}, {"name": "Shared Net", "country": "US", "countryName": "United States"}])"));
    EXPECT_FALSE(json::parse(FormatSelectionJson(selector.Select(Obs({"2"})), &selector.Facts(), &providers))["match"]
                     .contains("operators"));
}

TEST(SelectionTest, ObservationCsvRowsAndErrors) {
    const size_t longest = ObservationCsvReader::kMaxLineLength;
    struct Case {
        std::string csv;
        std::vector<std::string> rows;  // Describe() of each row read
        std::string error;              // the start of the failing row's message, or empty
    };
    const Case cases[] = {
        {"sid,nid,mcc,mnc,subnet,band,channel\r\n4106,2,,,,1,25\r\n\r\n,,310,120,,,\n,,,,2001:db8::1/64,,\n",
         {"SID 4106 NID 2 on band 1 channel 25", "MCC 310 MNC 120", "subnet 2001:db8::1/64"}, ""},
        {"\xEF\xBB\xBF" "channel, band ,SID\n25,1,\"7\"\n,,8\n", {"SID 7 on band 1 channel 25", "SID 8"}, ""},
        {"sid\n1" + std::string(longest - 1, ' ') + "\n2" + std::string(longest, ' '), {"SID 1"},
         "x.csv:3: line longer than 4096 characters"},
        {"", {}, "x.csv:1: no header"},
        {"4106,,,,,,\n", {}, "x.csv:1: unknown column \"4106\""},
        {"sid,sid\n", {}, "x.csv:1: column \"sid\" named twice"},
        {"sid,nid\n1,2,3\n", {}, "x.csv:2: 3 cells, but the header names 2 columns"},
        {"sid,nid\n1,2\n\n40000,\n", {"SID 1 NID 2"}, "x.csv:4: SID 40000 is out of range"},
        {"sid,band,channel\n1,,25\n", {}, "x.csv:2: channel needs band"},
        {std::string("sid\n1\0\n", 7), {}, "x.csv:2: not a text file"},
    };
    for (const auto& c : cases) {
        std::istringstream in(c.csv);
        ObservationCsvReader reader(in, "x.csv");
        std::vector<std::string> rows;
        std::string error;
        Observation o;
        ObservationCsvReader::Status status;
        while ((status = reader.Next(o, error)) == ObservationCsvReader::Status::Row) rows.push_back(o.Describe());
        EXPECT_EQ(rows, c.rows) << c.csv.substr(0, 40);
        EXPECT_EQ(status, c.error.empty() ? ObservationCsvReader::Status::End : ObservationCsvReader::Status::Error);
        EXPECT_EQ(error.substr(0, c.error.size()), c.error) << error;
        EXPECT_EQ(reader.Next(o, error) == ObservationCsvReader::Status::Error, !c.error.empty());
    }
}

}  // namespace
}  // namespace Tarn::Analysis
