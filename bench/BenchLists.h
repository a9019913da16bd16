// Pairs of lists near the 65,535-byte limit for the comparison benchmarks: a list and the same
// list rebuilt the way operators rebuild theirs.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "roaming_list/RLData.h"
#include "roaming_list/RLJson.h"

namespace Tarn::Bench {

// `records` IS-2000 systems in GEOs of `geoSize`; the rebuild reverses the acquisition table,
// moves the head of every GEO to its bottom, drops every 50th system and adds as many new ones.
inline std::unique_ptr<CRLData> MakeList(int records, int geoSize, bool rebuilt) {
    using nlohmann::json;
    json acq = json::array();
    for (int i = 0; i < 8; ++i) {
        const int k = rebuilt ? 7 - i : i;
        acq.push_back({{"type", 6}, {"channels", {25 + k, 50 + k, 75 + k, 100 + k}}});
    }
    json sys = json::array();
    for (int g = 0; g * geoSize < records; ++g) {
        std::vector<int> members;
        for (int i = g * geoSize; i < std::min(records, (g + 1) * geoSize); ++i)
            members.push_back(i);
        if (rebuilt) std::rotate(members.begin(), members.begin() + 1, members.end());
        bool first = true;
        for (int i : members) {
            int sid = 1 + i % 32000, nid = i % 65535;
            if (rebuilt && i % 50 == 7) nid = (nid + 1) % 65535;
            const int acqIndex = rebuilt ? 7 - i % 8 : i % 8;
            sys.push_back({{"type", 0},
                           {"negPref", 1},
                           {"geography", first ? 0 : 1},
                           {"priority", 1},
                           {"acqIndex", acqIndex},
                           {"roamInd", i % 3},
                           {"assnIncluded", 0},
                           {"sid", sid},
                           {"nidIncl", 1},
                           {"nid", nid}});
            first = false;
        }
    }
    json j = {{"version", "IS-683C"},
              {"header", {{"prefListId", 1}, {"prefOnly", true}, {"defRoamInd", 1}}},
              {"acquisitionTable", acq},
              {"systemTable", sys}};
    int version = 0;
    return ListFromJson(j, version);
}

struct Pair {
    std::unique_ptr<CRLData> a, b;
};

inline const Pair& Lists(int records, int geoSize) {
    static std::map<std::pair<int, int>, Pair> cache;
    auto& p = cache[{records, geoSize}];
    if (!p.a) p = {MakeList(records, geoSize, false), MakeList(records, geoSize, true)};
    return p;
}

}  // namespace Tarn::Bench
