// Carrying a roaming list from one version into another. Going up keeps everything; going down
// drops what the target version cannot carry and keeps the rest of the list consistent. Every
// record dropped and every value changed is reported, one line each, so nothing is lost silently.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "roaming_list/RLData.h"

namespace Tarn {

// The question the editor asks before it carries a list into an older version.
inline constexpr const char* kDataLossQuestion =
    "Some data loss may occur when changing to an older Roaming List format. Continue?";

// True when converting from `fromVersion` to `toVersion` may lose data, so the user is asked.
inline bool IsDowngrade(int fromVersion, int toVersion) { return toVersion < fromVersion; }

struct ConversionResult {
    std::unique_ptr<CRLData> data;     // the list in the target version
    std::vector<std::string> changes;  // what was dropped or changed, one line each
};

// A copy of `source` (a list of `fromVersion`) made of records of `toVersion` (both 1..5):
// - each record is re-made by the target version's factory from its values, written in the
//   target's framing and read back, so what it holds is exactly what a saved file would hold;
//   a value that does not survive is reported as "<field> <old> -> <new>" (or "dropped");
// - a record whose type the target has no class for is dropped, e.g.
//   "acquisition record 4 (HDR Generic) dropped: IS-683B cannot carry it";
// - system records that point at a dropped acquisition record are dropped with it, the others
//   have their acquisition indices renumbered (each renumbering is a line too);
// - a system record whose region began with a dropped record starts a new region itself;
// - below version 3 the long header's SSPR_P_REV and reserved bits go (non-zero reserved bits
//   are reported); from version 3 on SSPR_P_REV is 3.
// Equal versions give an unchanged copy. Converting up and back down gives the original list.
ConversionResult ConvertRoamingList(const CRLData& source, int fromVersion, int toVersion);

}  // namespace Tarn
