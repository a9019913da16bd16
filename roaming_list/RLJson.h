// The JSON form of a whole roaming list, shared by `tarn-cli json`/`build` and scripts.
//
//   {
//     "kind": "roamingList",
//     "version": "IS-683C",            // or a number 1..5
//     "prefixed": false,               // informational: lists are always written without it
//     "header": {"prefListId": 1, "prefOnly": true, "defRoamInd": 0,
//                "ssprPRev": 3, "reserved": 0, "numCommonSubnet": 0, "listSize": 53},
//     "acquisitionTable": [{"index": 0, "type": 1, "typeName": "Analog Cellular", ...}],
//     "systemTable":      [{"index": 0, "type": 0, "typeName": "95(A,B)/1x", ...}]
//   }
//
// Each record object holds the record's own fields (see its class); "index" and "typeName" are
// informational on reading, "type" chooses the record class. listSize is recomputed on writing.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>

#include "roaming_list/RLData.h"

namespace Tarn {

nlohmann::json ListToJson(const CRLData& data, int version, bool prefixed);

// Builds a list from its JSON form. `version` receives the version named in the JSON unless
// `forcedVersion` (1..5) is given. Throws CDataException or std::runtime_error with a message that
// names the table, the index and the field when the JSON does not describe a valid list.
std::unique_ptr<CRLData> ListFromJson(const nlohmann::json& json, int& version,
                                      int forcedVersion = 0);

}  // namespace Tarn
