// Builds in-memory roaming lists for tests from compact JSON, with shorthands for the records the
// analysis tests use most.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "roaming_list/RLData.h"
#include "roaming_list/RLJson.h"

namespace Tarn::Test {

// A list of `version` (1..5) from its acquisition and system tables as JSON arrays.
inline std::unique_ptr<CRLData> JsonList(const nlohmann::json& acq, const nlohmann::json& sys,
                                         int version = 3, bool prefOnly = false,
                                         int defRoamInd = 1) {
    nlohmann::json j = {{"version", version},
                        {"header", {{"prefListId", 1}, {"prefOnly", prefOnly}, {"defRoamInd", defRoamInd}}},
                        {"acquisitionTable", acq},
                        {"systemTable", sys}};
    int v = 0;
    return ListFromJson(j, v);
}

// Common fields of a system record: `geoNew` opens a GEO, `more` is priority "More".
inline nlohmann::json SysCommon(int type, bool pref, bool geoNew, bool more, int acq,
                                int roamInd = 1) {
    return {{"type", type},         {"negPref", pref ? 1 : 0}, {"geography", geoNew ? 0 : 1},
            {"priority", more ? 1 : 0}, {"acqIndex", acq},     {"roamInd", roamInd}};
}

// A "95(A,B)/1x" record; nid 65535 is the wildcard.
inline nlohmann::json Sid(unsigned sid, unsigned nid, bool pref, bool geoNew, bool more, int acq,
                          int roamInd = 1) {
    nlohmann::json r = SysCommon(0, pref, geoNew, more, acq, roamInd);
    r["sid"] = sid;
    r["nidIncl"] = nid == 65535 ? 0 : 1;
    r["nid"] = nid;
    return r;
}

inline nlohmann::json PcsChannels(std::initializer_list<int> channels) {
    return {{"type", 6}, {"channels", channels}};
}
inline nlohmann::json CellularCustom(std::initializer_list<int> channels) {
    return {{"type", 3}, {"channels", channels}};
}

}  // namespace Tarn::Test
