// What a handset does with a roaming list for every system it could find, in terms free of record
// indices and GEO numbers, and the comparison of two lists by it. The verdict and the winning
// record are the selection engine's; the sets of systems the handset keeps looking for follow its
// rule. The space of observations is walked by classes, exactly: see ObservationClasses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "analysis/Observation.h"
#include "analysis/Selection.h"

namespace Tarn {
class CRLData;
class CAcqItem;
class CSysItem;
}  // namespace Tarn

namespace Tarn::Analysis {

class ProviderDirectory;

// A system of an associated set: the system, its acquisition record and the two flags.
struct AssociatedSystem {
    int identity = 0;
    int acquisition = -1;
    unsigned pnAssn = 0;
    unsigned dataAssn = 0;
    auto operator<=>(const AssociatedSystem&) const = default;
};
// A system the handset keeps looking for: the system and its acquisition record.
using LookedForSystem = std::pair<int, int>;  // identity, acquisition (-1: none)

// A set known by its size and two independent sums of its members' 64-bit hashes: sets built in
// any order compare in constant time, and two different sets agree on all three with a chance
// of about 2^-128.
struct SetDigest {
    size_t size = 0;
    uint64_t h1 = 0, h2 = 0;
    void Add(uint64_t member);
    void Remove(uint64_t member);
    auto operator<=>(const SetDigest&) const = default;
};

// Numbers for system identities, acquisition record contents and the sets made of them, shared by
// the lists compared so that equal numbers mean equal contents in any of them. Also keeps, for
// each number, the words and JSON the outputs show; a set's members are listed only when asked.
class BehaviourKeys {
public:
    BehaviourKeys();
    int Identity(const CSysItem& record, const std::string& key);
    int Acquisition(const CAcqItem& record, const std::string& key);
    // The set's number (0 is the empty set); `members` lists it, sorted, when an output asks.
    int LookedForSet(const SetDigest& digest,
                     std::function<std::vector<LookedForSystem>()> members);
    int AssociatedSet(const SetDigest& digest,
                      std::function<std::vector<AssociatedSystem>()> members);

    const std::string& IdentityText(int identity) const {
        return identityText_[static_cast<size_t>(identity)];
    }
    const nlohmann::json& IdentityJson(int identity) const {
        return identityJson_[static_cast<size_t>(identity)];
    }
    // "none" and null for -1.
    std::string AcquisitionText(int acquisition) const;
    nlohmann::json AcquisitionJson(int acquisition) const;
    const std::vector<LookedForSystem>& LookedFor(int set) const;
    const std::vector<AssociatedSystem>& Associated(int set) const;

private:
    template <typename T>
    struct Sets {
        std::map<SetDigest, int> ids;
        std::vector<std::function<std::vector<T>()>> sources;
        mutable std::map<int, std::vector<T>> listed;
        int Number(const SetDigest& digest, std::function<std::vector<T>()> members);
        const std::vector<T>& Members(int set) const;
    };
    std::unordered_map<std::string, int> identities_, acquisitions_;
    std::vector<std::string> identityText_, acqText_;
    std::vector<nlohmann::json> identityJson_, acqJson_;
    Sets<LookedForSystem> lookedFor_;
    Sets<AssociatedSystem> associated_;
};

// The hashes the digests sum, one member each.
uint64_t MemberKey(const LookedForSystem& member);
uint64_t MemberKey(const AssociatedSystem& member);

// What a handset does for one observation: the verdict, the roaming indicator it shows, the
// acquisition record of the winning record by content, the set of more preferred systems it keeps
// looking for, and the systems associated with the winner. Numbers are those of BehaviourKeys.
struct Behaviour {
    Verdict verdict = Verdict::UnlistedAllowed;
    std::optional<unsigned> roamInd;
    int acquisition = -1;  // -1: none
    int lookedFor = 0;     // set number; 0 the empty set
    int associated = 0;
    bool operator==(const Behaviour&) const = default;
};

// One list's behaviour. Holds references into `data` and `keys`, which must outlive it.
class ListBehaviour {
public:
    ListBehaviour(const CRLData& data, BehaviourKeys& keys);

    const Selector& Selection() const { return selector_; }
    Behaviour Of(const Observation& observation) const { return Of(selector_.Decide(observation)); }
    // The behaviour of an observation the selector has decided.
    Behaviour Of(const SelectionResult& decided) const;

private:
    int LookedForNumber(int geo, bool preferred, int level) const;
    int AssociatedNumber(int geo, size_t winner) const;
    std::vector<LookedForSystem> LookedForMembers(int geo, bool preferred, int level) const;
    std::vector<AssociatedSystem> AssociatedMembers(int geo, size_t winner) const;

    Selector selector_;
    BehaviourKeys& keys_;
    std::vector<int> identity_;     // per system record
    std::vector<int> acquisition_;  // per system record: its acquisition content, -1 none
    // Per GEO, the number of the set a preferred winner of each level looks for, and (last) the
    // set a negative winner looks for: built in one pass over the GEO when first asked.
    mutable std::unordered_map<int, std::vector<int>> lookedFor_;
    // Per GEO and association tag, the digest of every member and of each identity's members.
    struct TagSets {
        SetDigest all;
        std::unordered_map<int, SetDigest> byIdentity;
    };
    mutable std::unordered_map<long long, TagSets> tags_;
};

// One observation class: every observation in it gets the same behaviour from each list given.
struct ObservationClass {
    Observation observation;  // a concrete member
    std::string system;       // "SID 4106", "MCC 310 MNC 120", "subnet 2001:db8::/32", ...
    std::string detail;       // "NID 12", "NID unknown", "any other NID", "" ...
};

// One member of every class of observations the lists can tell apart. An observation's behaviour
// depends only on which records match it, with what specificity, and which of them scan its
// channel; so the SIDs, NIDs, MCCs, MNC digits and subnet prefixes the records name (plus one of
// each that none names), and the channel ranges their acquisition records scan, cut the whole space
// into these classes. A class whose channel no list tells apart appears once, without a channel.
std::vector<ObservationClass> ObservationClasses(std::span<const Selector* const> lists);

// An observation class whose behaviour differs between the two lists.
struct BehaviourChange {
    ObservationClass observation;
    Behaviour a, b;
    std::optional<size_t> recordA, recordB;  // the deciding (winning) records
};

struct BehaviourComparison {
    BehaviourKeys keys;
    std::unique_ptr<ListBehaviour> a, b;
    size_t classes = 0;
    std::vector<BehaviourChange> changes;
    bool Same() const { return changes.empty(); }
};

// Compares what handsets do with list `a` and with list `b`, over every observation.
std::unique_ptr<BehaviourComparison> CompareBehaviour(const CRLData& a, const CRLData& b);

// The observation as the JSON key "observation" holds it: {"sid", "nid"}, {"mcc", "mnc"} or
// {"subnet"}.
nlohmann::ordered_json ObservationJson(const Observation& observation);
// {"verdict", "roamInd", "acquisition", "morePreferred", "associated"}.
nlohmann::ordered_json BehaviourJson(const Behaviour& behaviour, const BehaviourKeys& keys);
// {"same", "changes": [{"observation", "band", "channel", "a", "b"}], "counts"}.
nlohmann::ordered_json BehaviourDiffJson(const BehaviourComparison& comparison);

// The changes grouped by system, in the order they were found.
struct BehaviourGroup {
    std::string system;
    std::vector<size_t> changes;  // indices into BehaviourComparison::changes
};
std::vector<BehaviourGroup> GroupBehaviourChanges(const BehaviourComparison& comparison);
// The operators and country behind a system of an observation ("Sprint (United States)"), or "".
std::string ObservationOperators(const Observation& observation,
                                 const ProviderDirectory& providers);
// A behaviour in words: "preferred, roaming indicator 1, acquired through type 6 (25 50)".
std::string DescribeBehaviour(const Behaviour& behaviour, const BehaviourKeys& keys);
// What one change means, a line each: both behaviours, then what is looked for or associated in
// one list only.
std::vector<std::string> DescribeChange(const BehaviourChange& change, const BehaviourKeys& keys);
// Per system the changes in words, then a summary line. With `providers`, systems are followed by
// their operators.
std::string BehaviourDiffText(const BehaviourComparison& comparison,
                              const ProviderDirectory* providers = nullptr);

}  // namespace Tarn::Analysis
