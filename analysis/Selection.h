// What a handset holding a roaming list does when it finds a system: which record names it, whether
// it may stay, with which roaming indicator, and which systems of the same GEO it keeps looking for.
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "analysis/Coverage.h"
#include "analysis/ListFacts.h"
#include "analysis/Observation.h"

namespace Tarn {
class CRLData;
}

namespace Tarn::Analysis {

class ProviderDirectory;

enum class Verdict { Preferred, Negative, UnlistedAllowed, UnlistedForbidden };
// "preferred", "negative", "unlisted-allowed", "unlisted-forbidden".
const char* VerdictName(Verdict verdict);

// Why a record that names the system did not win.
enum class LossReason {
    None,              // the winner
    ChannelNotCovered, // another match scans the observed channel, this one does not
    LessSpecific,      // a match names the system more specifically
    LaterInList,       // as specific as the winner, which comes first
};

// A system record that names the observed system.
struct SelectionCandidate {
    size_t index = 0;  // system table index
    int specificity = 0;
    std::optional<bool> covers;  // scans the observed channel; unknown without a channel
    int geo = 0;
    int level = 0;
    bool preferred = false;
    LossReason lost = LossReason::None;
};

// A preferred record of the winner's GEO that the handset keeps looking for.
struct MorePreferredSystem {
    size_t index = 0;
    int level = 0;
    Coverage coverage;  // what its acquisition record scans
};

struct SelectionMatch {
    size_t index = 0;
    int geo = 0;
    int level = 0;
    bool preferred = false;
    std::optional<unsigned> roamInd;  // none for a negative record
    size_t acqIndex = 0;
    std::optional<bool> acqCovers;    // unknown without a channel
};

struct SelectionResult {
    Observation observation;
    Verdict verdict = Verdict::UnlistedAllowed;
    std::optional<SelectionMatch> match;
    std::vector<SelectionCandidate> candidates;  // every record naming the system, list order
    std::vector<MorePreferredSystem> morePreferred;  // list order
    std::optional<unsigned> roamInd;
};

// Whether a handset that settled on a record of a GEO (preferred or negative, at `winnerLevel`)
// keeps looking for another record of that GEO: for a negative winner every preferred record,
// for a preferred one the preferred records of a lower level.
inline bool KeepsLookingFor(const SystemFacts& other, bool winnerPreferred, int winnerLevel) {
    return other.preferred && (!winnerPreferred || other.level < winnerLevel);
}

// Answers observations against one list. Built once per list: the system table is indexed by SID,
// by MCC and by subnet, so an observation touches only the records that could name it. Holds
// references into `data`, which must outlive the selector and not change while it is used.
class Selector {
public:
    explicit Selector(const CRLData& data);

    SelectionResult Select(const Observation& observation) const;
    // The verdict, the winner and every record naming the system, without the more preferred
    // systems: what a caller asking many observations needs, at the cost of the matches alone.
    SelectionResult Decide(const Observation& observation) const;
    // Every record that names the observed system, in list order, with its specificity and
    // whether it scans the observed channel; GEO, level and loss are left for Decide to fill.
    std::vector<SelectionCandidate> Matches(const Observation& observation) const;
    const ListFacts& Facts() const { return facts_; }

private:
    std::vector<size_t> Candidates(const Observation& observation) const;

    const CRLData& data_;
    ListFacts facts_;
    std::unordered_map<unsigned, std::vector<size_t>> bySid_;
    std::unordered_map<unsigned, std::vector<size_t>> byMcc_;
    // Subnet records by the first 16 bits of each prefix; prefixes shorter than that are few and
    // are tried for every subnet observation.
    std::unordered_map<unsigned, std::vector<size_t>> bySubnetWord_;
    std::vector<size_t> shortSubnets_;
};

// The human answer: verdict, the winning record as its text-form line, GEO, level, roaming
// indicator, the more preferred systems with their channels, and every other match with why it lost.
// With `providers`, each record line is followed by the operators it names.
std::string FormatSelectionText(const SelectionResult& result, const ListFacts& facts,
                                const ProviderDirectory* providers = nullptr);
// One line for the batch form.
std::string FormatSelectionLine(const SelectionResult& result);
// The result as one JSON object (compact, one line) with the keys verdict, match, candidates,
// morePreferred and roamInd; with `facts` and `providers`, a match that names operators also
// carries them as "operators".
std::string FormatSelectionJson(const SelectionResult& result, const ListFacts* facts = nullptr,
                                const ProviderDirectory* providers = nullptr);
std::string LossReasonText(const SelectionCandidate& candidate, const SelectionResult& result);

// Reads observations from CSV: a header naming the columns sid, nid, mcc, mnc, subnet, band and
// channel (any order, each at most once), then one observation a row with empty cells for what does
// not apply. Blank lines are skipped. Lines are read with a bounded buffer, so a hostile file costs
// no more memory than its longest allowed line.
class ObservationCsvReader {
public:
    enum class Status { Row, End, Error };
    static constexpr size_t kMaxLineLength = 4096;

    // `name` prefixes the messages: "NAME:ROW: message".
    ObservationCsvReader(std::istream& in, std::string name);

    // The next observation; Error leaves one clear line in `error` and every later call fails too.
    Status Next(Observation& out, std::string& error);
    // The line number of the last row read (the header is line 1).
    size_t Line() const { return line_; }

private:
    Status ReadLine(std::string& line, std::string& error);
    Status Fail(const std::string& message, std::string& error);

    std::istream& in_;
    std::string name_;
    size_t line_ = 0;
    bool failed_ = false;
    std::vector<int> columns_;  // per cell: which field it fills, -1 never
};

}  // namespace Tarn::Analysis
