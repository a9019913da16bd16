// System selection: which record wins for a system a handset found, the verdict, the roaming
// indicator and the systems of the GEO it keeps looking for; lists are built for each rule.
#include <gtest/gtest.h>

#include <sstream>

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

std::vector<size_t> Indices(const std::vector<SelectionCandidate>& candidates) {
    std::vector<size_t> out;
    for (const auto& c : candidates) out.push_back(c.index);
    return out;
}

struct WinnerCase {
    const char* name;
    ObservationFields observation;
    std::optional<size_t> winner;
    std::vector<size_t> candidates;
    std::optional<bool> acqCovers = std::nullopt;
};

void ExpectWinners(const CRLData& list, const std::vector<WinnerCase>& cases) {
    Selector selector(list);
    for (const auto& c : cases) {
        SelectionResult r = selector.Select(Obs(c.observation));
        EXPECT_EQ(Indices(r.candidates), c.candidates) << c.name;
        ASSERT_EQ(r.match.has_value(), c.winner.has_value()) << c.name;
        if (!c.winner) continue;
        EXPECT_EQ(r.match->index, *c.winner) << c.name;
        EXPECT_EQ(r.match->acqCovers, c.acqCovers) << c.name;
    }
}

TEST(SelectionTest, IdentityAndSpecificityPickTheWinner) {
    // 0: SID 100 any NID; 1: SID 100 NID 7; 2: SID 100 any NID again (a tie with 0);
    // 3: MCC-MNC record listing SID 100 NID 8 and SID 200 any NID; 4: SID 200 NID 9.
    const json pairs = {{{"sid", 100}, {"nid", 8}}, {{"sid", 200}, {"nid", 65535}}};
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(100, 65535, true, true, false, 0), Sid(100, 7, true, false, false, 0),
                                      Sid(100, 65535, true, false, false, 0),
                                      Record(3, true, false, false, 0,
                                             {{"subtype", 2}, {"mcc", "310"}, {"mnc", "00"}, {"sidNidPairs", pairs}}),
                                      Sid(200, 9, true, false, false, 0)}),
                         5);
    ExpectWinners(*list, {
        {"stated NID beats the wildcard", {"100", "7"}, 1, {0, 1, 2}},
        {"other NID: only wildcards, the earliest wins", {"100", "5"}, 0, {0, 2}},
        {"MCC-MNC pair with a stated NID beats the wildcards", {"100", "8"}, 3, {0, 2, 3}},
        {"no NID observed: every NID matches, a stated one wins", {"100"}, 1, {0, 1, 2, 3}},
        {"stated NID 9 beats the MCC-MNC wildcard pair", {"200", "9"}, 4, {3, 4}},
        {"MCC-MNC wildcard pair alone", {"200", "1"}, 3, {3}},
        {"unknown SID", {"300"}, std::nullopt, {}},
    });
    // Why each other match lost.
    Selector selector(*list);
    SelectionResult r = selector.Select(Obs({"100", "7"}));
    ASSERT_EQ(r.candidates.size(), 3u);
    EXPECT_EQ(r.candidates[0].lost, LossReason::LessSpecific);
    EXPECT_EQ(r.candidates[1].lost, LossReason::None);
    EXPECT_EQ(r.candidates[2].lost, LossReason::LessSpecific);
    r = selector.Select(Obs({"100", "5"}));
    EXPECT_EQ(r.candidates[1].lost, LossReason::LaterInList);
}

TEST(SelectionTest, MccMncAndSubnetSpecificity) {
    auto list = JsonList(
        json::array({PcsChannels({25})}),
        json::array({
            Record(3, true, true, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "FFF"}}),   // 0
            Record(3, true, false, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "1F0"}}),  // 1
            Record(2, true, false, false, 0,
                   {{"plmnType", 1}, {"mcc", "310"}, {"mnc", "120"}, {"netSelMode", 1}}),         // 2
            Record(14, true, false, false, 0, {{"mcc", 310}, {"imsi11_12", 13}}),                // 3
            Record(3, true, false, false, 0, {{"subtype", 0}, {"mcc", "310"}, {"mnc", "13"}}),   // 4
            Record(1, true, false, false, 0, {{"subnet", "2001:db8::/32"}}),                     // 5
            Record(3, true, false, false, 0,
                   {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"}, {"subnets", {"2001:db8:5::/48"}}}),  // 6
            Record(1, true, false, false, 0, {{"subnet", "2000::/3"}}),                         // 7
            Record(2, true, false, false, 0, {{"plmnType", 0}, {"plmnSelect", 0}}),              // 8
        }),
        5);
    ExpectWinners(*list, {
        {"all-F MNC is the last resort", {"", "", "310", "555"}, 0, {0}},
        {"F digit: two stated digits beat none", {"", "", "310", "190"}, 1, {0, 1}},
        {"three stated digits beat an F digit", {"", "", "310", "120"}, 2, {0, 1, 2}},
        {"1x-MCC counts as three digits, beating a two-digit MNC that comes later", {"", "", "310", "13"},
         3, {0, 3, 4}},
        {"two-digit record MNC does not match three digits", {"", "", "310", "135"}, 3, {0, 3}},
        {"other MCC", {"", "", "311", "120"}, std::nullopt, {}},
        {"longest prefix wins", {"", "", "", "", "2001:db8:5::1/128"}, 6, {5, 6, 7}},
        {"a shorter prefix when the longer misses", {"", "", "", "", "2001:db8:6::1/128"}, 5, {5, 7}},
        {"a prefix shorter than 16 bits", {"", "", "", "", "3fff::1/128"}, 7, {7}},
        {"no prefix covers", {"", "", "", "", "fe80::1/64"}, std::nullopt, {}},
    });
}

TEST(SelectionTest, ChannelTellsTheSameSidInTwoGeosApart) {
    // GEO 0 reaches SID 500 on PCS 25, GEO 1 on PCS 50; GEO 1 also states NID 3 on PCS 75.
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50}), PcsChannels({75})}),
                         json::array({Sid(1, 65535, true, true, true, 0), Sid(500, 65535, true, false, false, 0),
                                      Sid(500, 65535, true, true, false, 1), Sid(500, 3, true, false, false, 2)}));
    ExpectWinners(*list, {
        {"channel of GEO 0", {"500", "", "", "", "", "1", "25"}, 1, {1, 2, 3}, true},
        {"channel of GEO 1", {"500", "", "", "", "", "1", "50"}, 2, {1, 2, 3}, true},
        {"coverage beats a stated NID", {"500", "3", "", "", "", "1", "50"}, 2, {1, 2, 3}, true},
        {"the stated NID where it is covered", {"500", "3", "", "", "", "1", "75"}, 3, {1, 2, 3}, true},
        {"no record covers: identity stands", {"500", "3", "", "", "", "1", "100"}, 3, {1, 2, 3}, false},
        {"other band: identity alone, the stated NID", {"500", "", "", "", "", "0", "25"}, 3, {1, 2, 3}, false},
        {"without a channel coverage is unknown", {"500", "3"}, 3, {1, 2, 3}},
    });
    Selector selector(*list);
    SelectionResult r = selector.Select(Obs({"500", "", "", "", "", "1", "50"}));
    EXPECT_EQ(r.candidates[0].lost, LossReason::ChannelNotCovered);
    EXPECT_EQ(r.candidates[2].lost, LossReason::ChannelNotCovered);
    EXPECT_EQ(r.match->geo, 1);
}

TEST(SelectionTest, LevelsAndMorePreferredSystems) {
    // GEO 0: 0 More, 1 Same, 2 negative More (never raises), 3 More, 4 Same, 5 negative;
    // levels 0, 1, 1, 1, 2, 2. GEO 1: 6, 7.
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50})}),
                         json::array({Sid(10, 65535, true, true, true, 0), Sid(11, 65535, true, false, false, 1),
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
        {"13", Verdict::Preferred, 1, {0}},   // same level as 1: 1 is not more preferred
        {"14", Verdict::Preferred, 2, {0, 1, 3}},
        {"12", Verdict::Negative, 1, {0, 1, 3, 4}},  // every preferred record of the GEO
        {"15", Verdict::Negative, 2, {0, 1, 3, 4}},
        {"17", Verdict::Preferred, 1, {6}},   // GEO 1 only
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
    SelectionResult r = selector.Select(Obs({"14"}));
    EXPECT_EQ(r.roamInd, 2u);
    EXPECT_EQ(r.morePreferred[1].coverage.ToText(), "band 1: 50");
}

TEST(SelectionTest, VerdictAndRoamingIndicator) {
    struct Case {
        const char* name;
        bool prefOnly;
        const char* sid;
        Verdict verdict;
        std::optional<unsigned> roamInd;
    };
    const Case cases[] = {
        {"preferred: the record's indicator", false, "20", Verdict::Preferred, 4u},
        {"negative: none", false, "21", Verdict::Negative, std::nullopt},
        {"negative in a preferred-only list", true, "21", Verdict::Negative, std::nullopt},
        {"unlisted, preferred-only off: the default", false, "22", Verdict::UnlistedAllowed, 9u},
        {"unlisted, preferred-only on: forbidden", true, "22", Verdict::UnlistedForbidden, std::nullopt},
    };
    for (const auto& c : cases) {
        auto list = JsonList(json::array({PcsChannels({25})}),
                             json::array({Sid(20, 65535, true, true, false, 0, 4),
                                          Sid(21, 65535, false, false, false, 0, 5)}),
                             3, c.prefOnly, 9);
        SelectionResult r = Selector(*list).Select(Obs({c.sid}));
        EXPECT_EQ(r.verdict, c.verdict) << c.name;
        EXPECT_EQ(r.roamInd, c.roamInd) << c.name;
        if (r.match) {
            EXPECT_EQ(r.match->roamInd, c.roamInd) << c.name;
        }
    }
}

TEST(SelectionTest, IndexFindsWhatALinearScanFinds) {
    // Every kind of record, many sharing keys, against observations near and far from them: the
    // indexed candidates must be exactly the records the rule accepts, in list order.
    json sys = json::array();
    for (int i = 0; i < 60; ++i) {
        const bool geoNew = i % 7 == 0;
        switch (i % 6) {
            case 0: sys.push_back(Sid(static_cast<unsigned>(i % 5), i % 4 ? 65535u : static_cast<unsigned>(i % 3), true, geoNew, i % 2, 0)); break;
            case 1: sys.push_back(Record(3, true, geoNew, false, 0, {{"subtype", 2}, {"mcc", "310"}, {"mnc", "0F"},
                                                                   {"sidNidPairs", {{{"sid", i % 5}, {"nid", i % 3}}}}})); break;
            case 2: sys.push_back(Record(14, i % 4 != 0, geoNew, true, 0, {{"mcc", 310 + i % 2}, {"imsi11_12", i % 3}})); break;
            case 3: sys.push_back(Record(2, true, geoNew, false, 0, {{"plmnType", 1}, {"mcc", i % 2 ? "311" : "310"},
                                                                   {"mnc", i % 3 ? "0F1" : "FFF"}, {"netSelMode", 1}})); break;
            case 4: sys.push_back(Record(1, true, geoNew, false, 0, {{"subnet", i % 4 ? "2001:db8::/32" : "2000::/4"}})); break;
            default: sys.push_back(Record(3, false, geoNew, false, 0, {{"subtype", 3}, {"mcc", "310"}, {"mnc", "00"},
                                                                     {"subnets", {"2001:db8:1::/48", "3000::/8"}}})); break;
        }
    }
    auto list = JsonList(json::array({PcsChannels({25})}), sys, 5);
    Selector selector(*list);
    std::vector<ObservationFields> observations;
    for (int s = 0; s < 6; ++s) {
        observations.push_back({std::to_string(s)});
        for (int n = 0; n < 4; ++n) observations.push_back({std::to_string(s), std::to_string(n)});
    }
    for (const char* mcc : {"310", "311", "312"})
        for (const char* mnc : {"00", "01", "001", "011", "10", "111"})
            observations.push_back({"", "", mcc, mnc});
    for (const char* subnet : {"2001:db8:1::5/128", "2001:db8::/32", "3000::1/128", "2fff::1/128", "::/0"})
        observations.push_back({"", "", "", "", subnet});
    for (const auto& fields : observations) {
        Observation o = Obs(fields);
        std::vector<size_t> expected;
        for (size_t i = 0; i < selector.Facts().SystemCount(); ++i)
            if (MatchSpecificity(selector.Facts().System(i), o)) expected.push_back(i);
        EXPECT_EQ(Indices(selector.Select(o).candidates), expected) << o.Describe();
    }
}

TEST(SelectionTest, JsonKeepsItsKeysAndNulls) {
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(1, 65535, true, true, true, 0, 3), Sid(2, 65535, false, false, false, 0)}));
    Selector selector(*list);
    struct Case {
        ObservationFields fields;
        const char* json;
    };
    const Case cases[] = {
        {{"1", "", "", "", "", "1", "26"},
         R"({"verdict":"preferred","match":{"index":0,"geo":0,"priority":0,"preferred":true,"roamInd":3,)"
         R"("acqIndex":0,"acqCovers":false},"candidates":[0],"morePreferred":[],"roamInd":3})"},
        {{"2"},
         R"({"verdict":"negative","match":{"index":1,"geo":0,"priority":1,"preferred":false,"roamInd":null,)"
         R"("acqIndex":0,"acqCovers":null},"candidates":[1],"morePreferred":[0],"roamInd":null})"},
        {{"3"}, R"({"verdict":"unlisted-allowed","match":null,"candidates":[],"morePreferred":[],"roamInd":1})"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatSelectionJson(selector.Select(Obs(c.fields))), c.json);
}

TEST(SelectionTest, ObservationCsvRowsAndErrors) {
    struct Case {
        const char* name;
        std::string csv;
        std::vector<std::string> rows;  // Describe() of each row read
        std::string error;              // expected in the message of the failing row, or empty
    };
    const Case cases[] = {
        {"every kind, blank lines and CRLF",
         "sid,nid,mcc,mnc,subnet,band,channel\r\n4106,2,,,,1,25\r\n\r\n,,310,120,,,\n,,,,2001:db8::1/64,,\n",
         {"SID 4106 NID 2 on band 1 channel 25", "MCC 310 MNC 120", "subnet 2001:db8::1/64"}, ""},
        {"columns in any order, short rows, quotes, BOM",
         "\xEF\xBB\xBF" "channel, band ,SID\n25,1,\"7\"\n,,8\n", {"SID 7 on band 1 channel 25", "SID 8"}, ""},
        {"empty file", "", {}, "x.csv:1: no header"},
        {"data where the header belongs", "4106,,,,,,\n", {}, "x.csv:1: unknown column \"4106\""},
        {"column twice", "sid,sid\n", {}, "x.csv:1: column \"sid\" named twice"},
        {"too many cells", "sid,nid\n1,2,3\n", {}, "x.csv:2: 3 cells, but the header names 2 columns"},
        {"bad row after good ones", "sid,nid\n1,2\n\n40000,\n", {"SID 1 NID 2"},
         "x.csv:4: SID 40000 is out of range"},
        {"channel without band", "sid,band,channel\n1,,25\n", {}, "x.csv:2: channel needs band"},
        {"NUL byte", std::string("sid\n1\0\n", 7), {}, "x.csv:2: not a text file"},
        {"overlong line", "sid\n" + std::string(ObservationCsvReader::kMaxLineLength + 1, '1') + "\n", {},
         "x.csv:2: line longer than"},
    };
    for (const auto& c : cases) {
        std::istringstream in(c.csv);
        ObservationCsvReader reader(in, "x.csv");
        std::vector<std::string> rows;
        std::string error;
        Observation o;
        ObservationCsvReader::Status status;
        while ((status = reader.Next(o, error)) == ObservationCsvReader::Status::Row)
            rows.push_back(o.Describe());
        EXPECT_EQ(rows, c.rows) << c.name;
        if (c.error.empty()) {
            EXPECT_EQ(status, ObservationCsvReader::Status::End) << c.name << ": " << error;
        } else {
            EXPECT_EQ(status, ObservationCsvReader::Status::Error) << c.name;
            EXPECT_EQ(error.rfind(c.error, 0), 0u) << c.name << ": " << error;
            EXPECT_EQ(reader.Next(o, error), ObservationCsvReader::Status::Error) << c.name;
        }
    }
}

}  // namespace
}  // namespace Tarn::Analysis
