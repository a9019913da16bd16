// Making a roaming list smaller without changing what any handset does with it. Each step keeps
// the behaviour of every observation by its own argument; the result is then proven with the
// behaviour comparison over the whole observation space before anyone may write it.
#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Tarn {
class CRLData;
}

namespace Tarn::Analysis {

struct OptimizeStep {
    std::string id;      // "redundant-systems", "unused-association", "short-nid",
                         // "unused-acquisition", "duplicate-acquisition"
    std::string title;   // what the step does, in words
    size_t records = 0;  // records dropped, merged or rewritten
    size_t bytesBefore = 0, bytesAfter = 0;
    size_t Saved() const { return bytesBefore > bytesAfter ? bytesBefore - bytesAfter : 0; }
};

struct OptimizeResult {
    std::unique_ptr<CRLData> data;  // the smaller list, of the same version and header
    int version = 0;
    size_t bytesBefore = 0, bytesAfter = 0;  // as the list writer writes them
    std::vector<OptimizeStep> steps;
    bool proven = false;     // the behaviour comparison found no difference
    size_t classes = 0;      // observation classes the proof compared
    size_t differences = 0;  // classes that behave differently (0 when proven)
    std::string error;       // why the list could not be optimised (nothing else is set then)
};

// The smallest list the steps make from `data` (of `version`, 1..5) that behaves the same: drops
// system records that decide no observation and whose place in their GEO's sets no winner sees,
// clears association fields no observation reads, stores NIDs 65535 and 0 as NID_INCL codes,
// drops acquisition records no system uses and merges those of equal content. PR_LIST_ID,
// PREF_ONLY, DEF_ROAM_IND and the version are kept.
OptimizeResult OptimizeList(const CRLData& data, int version);

// {"bytesBefore", "bytesAfter", "saved", "proven", "classes", "steps": [{"id", "title",
// "records", "bytesBefore", "bytesAfter", "saved"}]}.
nlohmann::ordered_json OptimizeReportJson(const OptimizeResult& result);
// A line for the totals, a line per step and a line for the proof.
std::string OptimizeReportText(const OptimizeResult& result);

}  // namespace Tarn::Analysis
