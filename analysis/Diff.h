// What changed between two roaming lists, by what the records mean: acquisition records paired by
// content, system records by the system they name, GEOs and priorities by the records they hold.
// The pairing rules live in Diff.cpp and nowhere else; the outputs and the editor read the result.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Tarn {
class CRLData;
}

namespace Tarn::Analysis {

// One header value that differs: `field` is "version", "prefListId", "prefOnly" or "defRoamInd";
// the version is given by its name ("IS-683A"), the others as the numbers and booleans they are.
struct HeaderChange {
    std::string field;
    nlohmann::json a;
    nlohmann::json b;
};

struct RecordPair {
    size_t a = 0;
    size_t b = 0;
};

// A paired system record that says something different. `fields` come in this order, each at
// most once: negPref, roamInd, assnIncluded, assnTag, pnAssn, dataAssn, acquisition, geo, priority.
struct SystemChange {
    size_t a = 0;
    size_t b = 0;
    std::vector<std::string> fields;
};

struct ListDiff {
    std::vector<HeaderChange> header;
    // Indices of the second list (added) and of the first (removed), ascending.
    std::vector<size_t> acqAdded, acqRemoved;
    std::vector<RecordPair> acqChanged;  // by first-list index
    std::vector<size_t> sysAdded, sysRemoved;
    std::vector<SystemChange> sysChanged;  // by first-list index
    // Every system pair, changed or not, by first-list index: what the editor follows from a
    // record of one list to its counterpart.
    std::vector<RecordPair> sysPairs;
    // The second-list GEO each first-list GEO corresponds to; -1 when none of its records paired.
    std::vector<int> geoMap;
    // GEO and priority level of every record of each list, for the outputs.
    std::vector<int> geoA, geoB, levelA, levelB;

    bool Same() const {
        return header.empty() && acqAdded.empty() && acqRemoved.empty() && acqChanged.empty() &&
               sysAdded.empty() && sysRemoved.empty() && sysChanged.empty();
    }
};

// Compares list `a` (of version `versionA`, 1..5) with list `b`. Any two versions compare; sizes,
// CRC and the header fields that follow from the rest are not reported. Time is linear in the
// records apart from the priority comparison, which is O(n log n) in the size of each GEO.
ListDiff DiffLists(const CRLData& a, int versionA, const CRLData& b, int versionB);

// The largest set of records whose relative priorities agree in both lists, given each record's
// level in the first list and in the second (levels rise along the list). Returns, for each record
// in the order given, whether it is kept. Exposed for its tests.
std::vector<bool> KeepConsistentPriorities(const std::vector<int>& levelA,
                                           const std::vector<int>& levelB);

}  // namespace Tarn::Analysis
