// The pairing rules of the list diff: each test is a rebuild a reviewer would recognise, and
// what the diff must (and must not) report about it.
#include <gtest/gtest.h>

#include <random>

#include "analysis/Diff.h"
#include "analysis/DiffReport.h"
#include "analysis/ListSource.h"
#include "roaming_list/Conversion.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;

ListDiff Diff(const json& acqA, const json& sysA, const json& acqB, const json& sysB, int version = 3) {
    auto a = JsonList(acqA, sysA, version);
    auto b = JsonList(acqB, sysB, version);
    return DiffLists(*a, version, *b, version);
}

// "a->b:field,field" for each changed system, for compact expectations.
std::vector<std::string> Changes(const ListDiff& d) {
    std::vector<std::string> out;
    for (const auto& c : d.sysChanged) {
        std::string s = std::to_string(c.a) + "->" + std::to_string(c.b) + ":";
        for (size_t k = 0; k < c.fields.size(); ++k) s += (k ? "," : "") + c.fields[k];
        out.push_back(s);
    }
    return out;
}

using V = std::vector<std::string>;
using I = std::vector<size_t>;

// A preferred record of any NID, opening a GEO (kNew) or not, with priority "More" or not.
constexpr bool kNew = true, kSame = false, kMore = true;
json P(unsigned sid, bool geoNew, bool more = false, int acq = 0) { return Sid(sid, 65535, true, geoNew, more, acq); }

TEST(DiffTest, RenumberingTheAcquisitionTableIsNoChange) {
    const json acqA = {PcsChannels({25}), PcsChannels({50}), PcsChannels({75})};
    const json acqB = {PcsChannels({75}), PcsChannels({25}), PcsChannels({50})};
    ListDiff d = Diff(acqA, {P(1, kNew, kMore), P(2, kSame, false, 2)}, acqB, {P(1, kNew, kMore, 1), P(2, kSame)});
    EXPECT_TRUE(d.Same()) << testing::PrintToString(Changes(d));
}

TEST(DiffTest, AcquisitionRecordsPairByContentThenBySlot) {
    struct Case {
        const char* name;
        json a, b;
        I added, removed;
        std::vector<std::pair<size_t, size_t>> changed;
    };
    const json x = PcsChannels({1}), y = PcsChannels({2}), z = PcsChannels({3}), w = PcsChannels({4});
    const Case cases[] = {
        {"edited in place", {x, y}, {w, y}, {}, {}, {{0, 0}}},
        {"slot taken by a moved record", {x, y, z}, {y, w}, {1}, {0, 2}, {}},
        {"duplicates pair in order", {x, x}, {x}, {}, {1}, {}},
        {"appended", {x}, {x, z}, {1}, {}, {}},
        {"edited in the last slot both have, removed past it", {x, y, z}, {x, w}, {}, {2}, {{1, 1}}},
    };
    for (const auto& c : cases) {
        ListDiff d = Diff(c.a, json::array(), c.b, json::array());
        EXPECT_EQ(d.acqAdded, c.added) << c.name;
        EXPECT_EQ(d.acqRemoved, c.removed) << c.name;
        std::vector<std::pair<size_t, size_t>> changed;
        for (const auto& p : d.acqChanged) changed.push_back({p.a, p.b});
        EXPECT_EQ(changed, c.changed) << c.name;
    }
}

TEST(DiffTest, SystemChangesNameTheFieldsThatMoved) {
    const json acq = {PcsChannels({25}), PcsChannels({50})};
    struct Case {
        const char* name;
        json a, b;
        V changes;
        I added, removed;
        size_t pairs;
    };
    const Case cases[] = {
        // GEO 0 holds 1, 2, 3 and GEO 1 holds 4, 5; system 3 moves to the head of GEO 1. The
        // levels of 4 and 5 shift, their order does not: only 3 is reported.
        {"moved to another GEO",
         {P(1, kNew, kMore), P(2, kSame, kMore), P(3, kSame, kMore), P(4, kNew, kMore), P(5, kSame, kMore)},
         {P(1, kNew, kMore), P(2, kSame, kMore), P(3, kNew, kMore), P(4, kSame, kMore), P(5, kSame, kMore)},
         {"2->2:geo"}, {}, {}, 5},
        {"moved to the bottom of its GEO",
         {P(1, kNew, kMore), P(2, kSame, kMore), P(3, kSame, kMore), P(4, kSame)},
         {P(2, kNew, kMore), P(3, kSame, kMore), P(4, kSame, kMore), P(1, kSame)},
         {"0->3:priority"}, {}, {}, 4},
        // A negative record's roaming indicator is not compared; once preferred, it would be.
        {"negative turned preferred",
         {Sid(7, 3, false, true, false, 0, 0)}, {Sid(7, 3, true, true, false, 0, 1)},
         {"0->0:negPref"}, {}, {}, 1},
        {"roaming indicator and acquisition of a preferred record",
         {Sid(7, 3, true, true, false, 0, 0)}, {Sid(7, 3, true, true, false, 1, 1)},
         {"0->0:roamInd,acquisition"}, {}, {}, 1},
        // Two records for SID 9 (one per channel) swapped: pairing by content finds no change.
        {"duplicate identities pair by content", {P(9, kNew), P(9, kSame, false, 1)}, {P(9, kNew, false, 1), P(9, kSame)},
         {}, {}, {}, 2},
        // Only the second keeps its content; the first pairs with what is left of SID 9.
        {"duplicate identities, one edited",
         {P(9, kNew), P(9, kSame, false, 1), Sid(9, 65535, false, false, false, 1)},
         {P(9, kNew, false, 1), Sid(9, 65535, false, false, false, 0)},
         {"0->1:negPref"}, {}, {2}, 2},
        {"NID wildcard is another system", {P(4, kNew)}, {Sid(4, 1, true, true, false, 0)}, {}, {0}, {0}, 0},
    };
    for (const auto& c : cases) {
        ListDiff d = Diff(acq, c.a, acq, c.b);
        EXPECT_EQ(Changes(d), c.changes) << c.name;
        EXPECT_EQ(d.sysAdded, c.added) << c.name;
        EXPECT_EQ(d.sysRemoved, c.removed) << c.name;
        EXPECT_EQ(d.sysPairs.size(), c.pairs) << c.name;
    }
}

TEST(DiffTest, GeoGoesWhereMostOfItsRecordsWent) {
    const json acq = {PcsChannels({25})};
    // GEO 0 (1, 2) is split evenly: the tie goes to the lower GEO, so 2 moved. GEO 1 (3, 4, 5)
    // lost one record to GEO 0 and still corresponds to GEO 1.
    ListDiff d = Diff(acq,
                      {P(1, kNew), P(2, kSame), P(3, kNew), P(4, kSame), P(5, kSame)},
                      acq,
                      {P(1, kNew), P(3, kSame), P(2, kNew), P(4, kSame), P(5, kSame)});
    EXPECT_EQ(d.geoMap, (std::vector<int>{0, 1}));
    EXPECT_EQ(Changes(d), (V{"1->2:geo", "2->1:geo"}));
}

// The text files each difference under the GEO of the second list it belongs to: a removed record
// under the GEO its own went to, and a GEO that vanished on its own.
TEST(DiffTest, TextGroupsByGeoOfTheSecondList) {
    const json acq = {PcsChannels({25}), PcsChannels({50})};
    auto a = JsonList(acq, {P(1, kNew), P(2, kSame), P(3, kNew), P(4, kNew)});
    auto b = JsonList(acq, {P(1, kNew, false, 1), P(5, kSame), P(3, kNew)});
    ListDiff d = DiffLists(*a, 3, *b, 3);
    EXPECT_EQ(ListDiffText(d, *a, *b),
              "GEO 0\n"
              "  + 1\t0\tPref\tSame\tSame\t0\t1\tNo\t0\tNo\tNo\t5\t65535\t0\n"
              "  - 1\t0\tPref\tSame\tSame\t0\t1\tNo\t0\tNo\tNo\t2\t65535\t0\n"
              "  ~ 0\t0\tPref\tNew\tSame\t1\t1\tNo\t0\tNo\tNo\t1\t65535\t0\n"
              "      acquisition: [0] 6 25 -> [1] 6 50\n"
              "GEO 2 of the first list (gone)\n"
              "  - 3\t0\tPref\tNew\tSame\t0\t1\tNo\t0\tNo\tNo\t4\t65535\t0\n"
              "1 added, 2 removed, 1 changed systems; 0 added, 0 removed, 0 changed acquisition records; "
              "0 header changes\n");
}

TEST(DiffTest, HeaderFieldsThatAUserSets) {
    auto a = JsonList(json::array(), json::array(), 3, false, 1);
    auto b = JsonList(json::array(), json::array(), 5, true, 0);
    ListDiff d = DiffLists(*a, 3, *b, 5);
    std::vector<std::string> fields;
    for (const auto& h : d.header) fields.push_back(h.field + "=" + h.a.dump() + "/" + h.b.dump());
    EXPECT_EQ(fields, (V{"version=\"IS-683C\"/\"IS-683E\"", "prefOnly=false/true", "defRoamInd=1/0"}));
}

TEST(DiffTest, AListDiffersFromItsUpConversionOnlyInVersion) {
    std::string error;
    auto loaded = LoadRoamingList(std::string(TARN_EXAMPLES_DIR) + "/example-is683a.prl", error);
    ASSERT_TRUE(loaded) << error;
    for (int target = 2; target <= 5; ++target) {
        ConversionResult up = ConvertRoamingList(*loaded->data, loaded->version, target);
        ListDiff d = DiffLists(*loaded->data, loaded->version, *up.data, target);
        ASSERT_EQ(d.header.size(), 1u) << target;
        EXPECT_EQ(d.header[0].field, "version");
        d.header.clear();
        EXPECT_TRUE(d.Same()) << "to version " << target << ": " << testing::PrintToString(Changes(d));
        EXPECT_EQ(d.sysPairs.size(), loaded->data->GetSysTable().GetSize());
    }
}

// Every subset of small random GEOs: the kept set must be consistent, as large as any
// consistent set, and the one that keeps the earliest records among those.
TEST(KeepConsistentPrioritiesTest, AgreesWithExhaustiveSearch) {
    std::mt19937 rng(1234);
    for (int round = 0; round < 300; ++round) {
        const size_t n = 1 + rng() % 8;
        std::vector<int> a(n), b(n);
        for (size_t i = 0; i < n; ++i) {
            a[i] = (i ? a[i - 1] : 0) + static_cast<int>(rng() % 2);
            b[i] = static_cast<int>(rng() % 4);
        }
        auto sign = [](int x) { return (x > 0) - (x < 0); };
        std::vector<bool> best;
        size_t bestSize = 0;
        // Masks counted so that bit i set means record i kept; a larger mask with the same size
        // keeps an earlier record first when records are read from bit 0, so compare explicitly.
        for (uint32_t mask = 0; mask < (1u << n); ++mask) {
            bool ok = true;
            for (size_t i = 0; i < n && ok; ++i)
                for (size_t j = i + 1; j < n && ok; ++j)
                    if ((mask >> i & 1) && (mask >> j & 1) && sign(a[i] - a[j]) != sign(b[i] - b[j])) ok = false;
            if (!ok) continue;
            std::vector<bool> keep(n);
            for (size_t i = 0; i < n; ++i) keep[i] = mask >> i & 1;
            const size_t size = static_cast<size_t>(__builtin_popcount(mask));
            // Lexicographically larger "keep" (true before false) keeps the earlier record.
            if (size > bestSize || (size == bestSize && keep > best)) {
                best = keep;
                bestSize = size;
            }
        }
        EXPECT_EQ(KeepConsistentPriorities(a, b), best)
            << "a=" << testing::PrintToString(a) << " b=" << testing::PrintToString(b);
    }
    EXPECT_TRUE(KeepConsistentPriorities({}, {}).empty());
}

}  // namespace
}  // namespace Tarn::Analysis
