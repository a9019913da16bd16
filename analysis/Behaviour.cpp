#include "analysis/Behaviour.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <set>
#include <unordered_set>

#include "analysis/ListFacts.h"
#include "analysis/Providers.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"

namespace Tarn::Analysis {
namespace {

// The fields every system record carries beside the system it names.
constexpr const char* kCommonSystemFields[] = {"negPref",  "geography", "priority",
                                               "acqIndex", "roamInd",   "assnIncluded",
                                               "assnTag",  "pnAssn",    "dataAssn"};

nlohmann::json IdentityJsonOf(const CSysItem& record) {
    nlohmann::json j = nlohmann::json::object();
    try {
        record.ToJson(j);
    } catch (const std::exception&) {
        j = nlohmann::json::object();
    }
    for (const char* field : kCommonSystemFields) {
        j.erase(field);
        j.erase(std::string(field) + "Name");
    }
    j["type"] = record.GetSysType();
    if (record.GetSysType() == 0) {
        // The system is the SID and the NID it stands for, however NID_INCL spells it.
        const auto& r = static_cast<const CSysItemIS2000&>(record);
        j.erase("nidIncl");
        j["nid"] = EffectiveNid(r.GetNidIncl(), r.GetNid());
    } else if (record.GetSysType() == 14) {
        // Only MCC and IMSI_11_12 name the system; the SID and NID are how the file spells them.
        for (const char* field : {"sid", "nidIncl", "nid"}) j.erase(field);
    }
    return j;
}

std::string AcquisitionTextOf(const CAcqItem& record) {
    std::string fields;
    try {
        fields = record.ToText();
    } catch (const std::exception&) {
        fields = "cannot be shown as text";
    }
    for (char& c : fields)
        if (c == '\t') c = ' ';
    while (!fields.empty() && fields.back() == ' ') fields.pop_back();
    return "type " + std::to_string(record.GetAcqType()) +
           (fields.empty() ? "" : " (" + fields + ")");
}

nlohmann::json AcquisitionJsonOf(const CAcqItem& record) {
    nlohmann::json j = nlohmann::json::object();
    j["type"] = record.GetAcqType();
    try {
        record.ToJson(j);
    } catch (const std::exception&) {
        // The content key still tells it apart; the type alone is shown.
    }
    return j;
}

// splitmix64's finaliser: spreads every bit of the key over the whole word.
uint64_t Mix(uint64_t x) {
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

}  // namespace

void SetDigest::Add(uint64_t member) {
    ++size;
    h1 += Mix(member);
    h2 += Mix(member ^ 0xD6E8FEB86659FD93ull);
}

void SetDigest::Remove(uint64_t member) {
    --size;
    h1 -= Mix(member);
    h2 -= Mix(member ^ 0xD6E8FEB86659FD93ull);
}

uint64_t MemberKey(const LookedForSystem& m) {
    return static_cast<uint64_t>(m.first) << 32 | static_cast<uint32_t>(m.second + 1);
}

uint64_t MemberKey(const AssociatedSystem& m) {
    return static_cast<uint64_t>(m.identity) << 32 |
           static_cast<uint64_t>(static_cast<uint32_t>(m.acquisition + 1)) << 2 |
           (m.pnAssn & 1u) << 1 | (m.dataAssn & 1u);
}

template <typename T>
int BehaviourKeys::Sets<T>::Number(const SetDigest& digest,
                                   std::function<std::vector<T>()> members) {
    auto [it, inserted] = ids.emplace(digest, static_cast<int>(sources.size()));
    if (inserted) sources.push_back(std::move(members));
    return it->second;
}

template <typename T>
const std::vector<T>& BehaviourKeys::Sets<T>::Members(int set) const {
    auto it = listed.find(set);
    if (it == listed.end()) {
        std::vector<T> members = sources[static_cast<size_t>(set)]();
        std::sort(members.begin(), members.end());
        members.erase(std::unique(members.begin(), members.end()), members.end());
        it = listed.emplace(set, std::move(members)).first;
    }
    return it->second;
}

BehaviourKeys::BehaviourKeys() {
    // Set 0 is the empty set in both kinds.
    lookedFor_.Number({}, [] { return std::vector<LookedForSystem>{}; });
    associated_.Number({}, [] { return std::vector<AssociatedSystem>{}; });
}

int BehaviourKeys::Identity(const CSysItem& record, const std::string& key) {
    auto [it, inserted] = identities_.emplace(key, static_cast<int>(identityText_.size()));
    if (inserted) {
        identityText_.push_back(SystemIdentityText(record));
        identityJson_.push_back(IdentityJsonOf(record));
    }
    return it->second;
}

int BehaviourKeys::Acquisition(const CAcqItem& record, const std::string& key) {
    auto [it, inserted] = acquisitions_.emplace(key, static_cast<int>(acqText_.size()));
    if (inserted) {
        acqText_.push_back(AcquisitionTextOf(record));
        acqJson_.push_back(AcquisitionJsonOf(record));
    }
    return it->second;
}

int BehaviourKeys::LookedForSet(const SetDigest& digest,
                                std::function<std::vector<LookedForSystem>()> members) {
    return lookedFor_.Number(digest, std::move(members));
}

int BehaviourKeys::AssociatedSet(const SetDigest& digest,
                                 std::function<std::vector<AssociatedSystem>()> members) {
    return associated_.Number(digest, std::move(members));
}

const std::vector<LookedForSystem>& BehaviourKeys::LookedFor(int set) const {
    return lookedFor_.Members(set);
}

const std::vector<AssociatedSystem>& BehaviourKeys::Associated(int set) const {
    return associated_.Members(set);
}

std::string BehaviourKeys::AcquisitionText(int acquisition) const {
    return acquisition < 0 ? "none" : acqText_[static_cast<size_t>(acquisition)];
}

nlohmann::json BehaviourKeys::AcquisitionJson(int acquisition) const {
    return acquisition < 0 ? nlohmann::json() : acqJson_[static_cast<size_t>(acquisition)];
}

ListBehaviour::ListBehaviour(const CRLData& data, BehaviourKeys& keys)
    : selector_(data), keys_(keys) {
    const ListFacts& facts = selector_.Facts();
    std::vector<int> acqIds;
    acqIds.reserve(facts.AcquisitionCount());
    for (size_t j = 0; j < facts.AcquisitionCount(); ++j)
        acqIds.push_back(keys_.Acquisition(facts.Acquisition(j), facts.AcqContentKey(j)));
    identity_.reserve(facts.SystemCount());
    acquisition_.reserve(facts.SystemCount());
    for (size_t i = 0; i < facts.SystemCount(); ++i) {
        identity_.push_back(keys_.Identity(facts.System(i), facts.IdentityKey(i)));
        const size_t acq = facts.System(i).GetAcqIndex();
        acquisition_.push_back(acq < acqIds.size() ? acqIds[acq] : -1);
    }
}

Behaviour ListBehaviour::Of(const SelectionResult& decided) const {
    Behaviour b;
    b.verdict = decided.verdict;
    b.roamInd = decided.roamInd;
    if (!decided.match) return b;
    const SelectionMatch& m = *decided.match;
    b.acquisition = acquisition_[m.index];
    b.lookedFor = LookedForNumber(m.geo, m.preferred, m.level);
    if (selector_.Facts().System(m.index).GetAssnIncluded() == 1)
        b.associated = AssociatedNumber(m.geo, m.index);
    return b;
}

std::vector<LookedForSystem> ListBehaviour::LookedForMembers(int geo, bool preferred,
                                                             int level) const {
    const ListFacts& facts = selector_.Facts();
    std::vector<LookedForSystem> members;
    const auto [first, last] = facts.GeoRange(geo);
    for (size_t i = first; i < last; ++i)
        if (KeepsLookingFor(facts.Facts(i), preferred, level))
            members.emplace_back(identity_[i], acquisition_[i]);
    return members;
}

int ListBehaviour::LookedForNumber(int geo, bool preferred, int level) const {
    auto found = lookedFor_.find(geo);
    if (found == lookedFor_.end()) {
        // Levels rise along the GEO, so the set a preferred winner of level L looks for is what the
        // walk has gathered when it first meets level L; a negative winner looks for all of it.
        const ListFacts& facts = selector_.Facts();
        const auto [first, last] = facts.GeoRange(geo);
        std::vector<int> numbers;
        std::unordered_set<uint64_t> seen;
        SetDigest digest;
        const auto number = [&](bool pref, int lvl) {
            return keys_.LookedForSet(
                digest, [this, geo, pref, lvl] { return LookedForMembers(geo, pref, lvl); });
        };
        for (size_t i = first; i < last; ++i) {
            const SystemFacts& f = facts.Facts(i);
            while (static_cast<int>(numbers.size()) <= f.level)
                numbers.push_back(number(true, static_cast<int>(numbers.size())));
            if (!f.preferred) continue;
            const uint64_t key = MemberKey(LookedForSystem{identity_[i], acquisition_[i]});
            if (seen.insert(key).second) digest.Add(key);
        }
        numbers.push_back(number(false, 0));
        found = lookedFor_.emplace(geo, std::move(numbers)).first;
    }
    const std::vector<int>& numbers = found->second;
    return preferred ? numbers[static_cast<size_t>(level)] : numbers.back();
}

std::vector<AssociatedSystem> ListBehaviour::AssociatedMembers(int geo, size_t winner) const {
    const ListFacts& facts = selector_.Facts();
    const unsigned tag = facts.System(winner).GetAssnTag();
    std::vector<AssociatedSystem> members;
    const auto [first, last] = facts.GeoRange(geo);
    for (size_t i = first; i < last; ++i) {
        const CSysItem& r = facts.System(i);
        if (r.GetAssnIncluded() == 1 && r.GetAssnTag() == tag && identity_[i] != identity_[winner])
            members.push_back({identity_[i], acquisition_[i], r.GetPnAssn(), r.GetDataAssn()});
    }
    return members;
}

int ListBehaviour::AssociatedNumber(int geo, size_t winner) const {
    // The records of the GEO sharing the winner's tag that name another system: all the tag's
    // members but those of the winner's own identity.
    const ListFacts& facts = selector_.Facts();
    const unsigned tag = facts.System(winner).GetAssnTag();
    const long long key = static_cast<long long>(geo) << 32 | tag;
    auto found = tags_.find(key);
    if (found == tags_.end()) {
        TagSets sets;
        std::unordered_set<uint64_t> seen;
        const auto [first, last] = facts.GeoRange(geo);
        for (size_t i = first; i < last; ++i) {
            const CSysItem& r = facts.System(i);
            if (r.GetAssnIncluded() != 1 || r.GetAssnTag() != tag) continue;
            const uint64_t member = MemberKey(
                AssociatedSystem{identity_[i], acquisition_[i], r.GetPnAssn(), r.GetDataAssn()});
            if (!seen.insert(member).second) continue;
            sets.all.Add(member);
            sets.byIdentity[identity_[i]].Add(member);
        }
        found = tags_.emplace(key, std::move(sets)).first;
    }
    SetDigest digest = found->second.all;
    auto own = found->second.byIdentity.find(identity_[winner]);
    if (own != found->second.byIdentity.end()) {
        digest.size -= own->second.size;
        digest.h1 -= own->second.h1;
        digest.h2 -= own->second.h2;
    }
    return keys_.AssociatedSet(digest,
                               [this, geo, winner] { return AssociatedMembers(geo, winner); });
}

// ---- the classes of observations ----

namespace {

bool Bit(const std::array<uint16_t, 8>& words, unsigned bit) {
    return (words[bit / 16] >> (15 - bit % 16)) & 1;
}

void SetBit(std::array<uint16_t, 8>& words, unsigned bit, bool value) {
    const uint16_t mask = static_cast<uint16_t>(1u << (15 - bit % 16));
    words[bit / 16] =
        static_cast<uint16_t>(value ? words[bit / 16] | mask : words[bit / 16] & ~mask);
}

// Completes `address` from bit `depth` on so that none of `inner` (prefixes that agree with the
// address so far) covers it; false when they cover every completion.
bool FindUncovered(std::array<uint16_t, 8>& address, unsigned depth,
                   const std::vector<const CSubnetId*>& inner) {
    if (inner.empty()) return true;  // the bits left stay 0
    for (const CSubnetId* p : inner)
        if (p->length <= depth) return false;
    for (bool bit : {false, true}) {
        std::vector<const CSubnetId*> side;
        for (const CSubnetId* p : inner)
            if (Bit(p->words, depth) == bit) side.push_back(p);
        SetBit(address, depth, bit);
        if (FindUncovered(address, depth + 1, side)) return true;
    }
    SetBit(address, depth, false);
    return false;
}

// Whether `inner` lies inside `outer` (the same leading bits, longer).
bool Inside(const CSubnetId& inner, const CSubnetId& outer) {
    if (inner.length <= outer.length) return false;
    for (unsigned bit = 0; bit < outer.length; ++bit)
        if (Bit(inner.words, bit) != Bit(outer.words, bit)) return false;
    return true;
}

CSubnetId Normalised(CSubnetId prefix) {
    for (unsigned bit = prefix.length; bit < 128; ++bit) SetBit(prefix.words, bit, false);
    return prefix;
}

class ClassWalk {
public:
    explicit ClassWalk(std::span<const Selector* const> lists) : lists_(lists) {}

    // Keeps `cls` when no class before it matched the same records, then splits it by channel.
    void Consider(ObservationClass cls) {
        std::vector<std::vector<SelectionCandidate>> matches;
        // Classes are told apart within one system, so that every system whose behaviour changes
        // shows under its own name.
        std::string signature = cls.system;
        for (const Selector* list : lists_) {
            matches.push_back(list->Matches(cls.observation));
            signature += '|';
            for (const auto& c : matches.back())
                signature.append(std::to_string(c.index))
                    .append(":")
                    .append(std::to_string(c.specificity))
                    .append(",");
        }
        if (!seen_.insert(std::move(signature)).second) return;
        out_.push_back(cls);
        SplitByChannel(cls, matches);
    }

    std::vector<ObservationClass> Take() { return std::move(out_); }

private:
    // Where a list has two records or more naming the system, the channel decides between them
    // through what their acquisition records scan; elsewhere the channel changes nothing. A channel
    // none of them scans behaves as no channel, which the class itself stands for.
    void SplitByChannel(const ObservationClass& cls,
                        const std::vector<std::vector<SelectionCandidate>>& matches) {
        std::vector<const Coverage*> coverages;
        for (size_t l = 0; l < lists_.size(); ++l)
            if (matches[l].size() >= 2)
                for (const auto& c : matches[l])
                    coverages.push_back(&lists_[l]->Facts().SystemCoverage(c.index));
        if (coverages.empty()) return;
        std::map<unsigned, std::vector<unsigned>> cuts;
        for (const Coverage* coverage : coverages)
            for (const ChannelRange& r : coverage->Ranges()) {
                cuts[r.band].push_back(r.first);
                cuts[r.band].push_back(r.last + 1);
            }
        std::set<std::vector<bool>> masks;
        for (auto& [band, points] : cuts) {
            std::sort(points.begin(), points.end());
            points.erase(std::unique(points.begin(), points.end()), points.end());
            for (size_t k = 0; k + 1 < points.size() && points[k] <= kMaxCdmaChannel; ++k) {
                std::vector<bool> mask;
                bool any = false;
                for (const Coverage* coverage : coverages) {
                    mask.push_back(coverage->Covers(band, points[k]));
                    any = any || mask.back();
                }
                if (!any || !masks.insert(mask).second) continue;
                ObservationClass split = cls;
                split.observation.band = band;
                split.observation.channel = points[k];
                split.detail += std::string(split.detail.empty() ? "" : ", ") + "band " +
                                std::to_string(band) + " channel " + std::to_string(points[k]);
                out_.push_back(std::move(split));
            }
        }
    }

    std::span<const Selector* const> lists_;
    std::unordered_set<std::string> seen_;
    std::vector<ObservationClass> out_;
};

Observation SidObservation(unsigned sid, std::optional<unsigned> nid) {
    Observation o;
    o.kind = Observation::Kind::Sid;
    o.sid = sid;
    o.nid = nid;
    return o;
}

std::string ThreeDigits(unsigned value) {
    char text[8];
    std::snprintf(text, sizeof text, "%03u", value % 1000);
    return text;
}

void WalkSids(const NamedSystems& named, ClassWalk& walk) {
    std::map<unsigned, std::set<unsigned>> nids;  // stated NIDs per named SID
    for (const auto& s : named.sids) {
        auto& stated = nids[s.sid];
        if (s.nid != kWildcardNid) stated.insert(s.nid);
    }
    for (const auto& [sid, stated] : nids) {
        const std::string system = "SID " + std::to_string(sid);
        for (unsigned nid : stated)
            walk.Consider({SidObservation(sid, nid), system, "NID " + std::to_string(nid)});
        unsigned other = 0;
        while (stated.count(other)) ++other;
        walk.Consider({SidObservation(sid, other), system,
                       "NID " + std::to_string(other) + " (any NID no record names)"});
        walk.Consider({SidObservation(sid, std::nullopt), system, "NID unknown"});
    }
    for (unsigned sid = 0; sid <= CSysItemIS2000::kMaxSid; ++sid)
        if (!nids.count(sid)) {
            walk.Consider({SidObservation(sid, std::nullopt), "SIDs no record names",
                           "SID " + std::to_string(sid)});
            break;
        }
}

void WalkMccs(const NamedSystems& named, ClassWalk& walk) {
    std::map<unsigned, std::array<std::set<uint8_t>, 3>> digits;  // stated MNC digits per MCC
    for (const auto& m : named.mccs) {
        auto& stated = digits[m.mcc];
        for (size_t i = 0; i < 3; ++i)
            if (m.mnc[i] <= 9) stated[i].insert(m.mnc[i]);
    }
    auto observe = [&walk](unsigned mcc, const std::string& mnc, const std::string& system) {
        Observation o;
        o.kind = Observation::Kind::MccMnc;
        o.mcc = ThreeDigits(mcc);
        o.mnc = mnc;
        walk.Consider({o, system.empty() ? "MCC " + o.mcc : system,
                       (system.empty() ? "" : "MCC " + o.mcc + " ") + "MNC " + mnc});
    };
    for (auto& [mcc, stated] : digits) {
        // Per digit, the digits some record states and one that none does stand for all ten.
        std::array<std::vector<char>, 3> choices;
        for (size_t i = 0; i < 3; ++i) {
            for (uint8_t d : stated[i]) choices[i].push_back(static_cast<char>('0' + d));
            for (uint8_t d = 0; d <= 9; ++d)
                if (!stated[i].count(d)) {
                    choices[i].push_back(static_cast<char>('0' + d));
                    break;
                }
        }
        for (char a : choices[0])
            for (char b : choices[1]) {
                observe(mcc, std::string{a, b}, "");
                for (char c : choices[2]) observe(mcc, std::string{a, b, c}, "");
            }
    }
    for (unsigned mcc = 0; mcc <= 999; ++mcc)
        if (!digits.count(mcc)) {
            observe(mcc, "00", "MCCs no record names");
            break;
        }
}

void WalkSubnets(const NamedSystems& named, ClassWalk& walk) {
    std::vector<CSubnetId> prefixes;
    for (const auto& s : named.subnets) prefixes.push_back(Normalised(s));
    // In address order, with a prefix before the longer ones that share its address, the prefixes
    // inside one follow it.
    std::sort(prefixes.begin(), prefixes.end(), [](const CSubnetId& x, const CSubnetId& y) {
        return std::tie(x.words, x.length) < std::tie(y.words, y.length);
    });
    prefixes.erase(std::unique(prefixes.begin(), prefixes.end()), prefixes.end());
    auto observe = [&walk](const std::array<uint16_t, 8>& address, const std::string& system) {
        Observation o;
        o.kind = Observation::Kind::Subnet;
        o.address = address;
        o.addressLength = 128;
        walk.Consider({o, system, "address " + FormatIpv6(address)});
    };
    for (size_t p = 0; p < prefixes.size(); ++p) {
        std::vector<const CSubnetId*> inner;
        for (size_t q = p + 1; q < prefixes.size() && Inside(prefixes[q], prefixes[p]); ++q)
            inner.push_back(&prefixes[q]);
        std::array<uint16_t, 8> address = prefixes[p].words;
        if (FindUncovered(address, prefixes[p].length, inner))
            observe(address, "subnet " + prefixes[p].ToText());
    }
    std::vector<const CSubnetId*> all;
    for (const auto& p : prefixes) all.push_back(&p);
    std::array<uint16_t, 8> address{};
    if (FindUncovered(address, 0, all)) observe(address, "subnets no record names");
}

}  // namespace

std::vector<ObservationClass> ObservationClasses(std::span<const Selector* const> lists) {
    NamedSystems named;
    for (const Selector* list : lists)
        for (size_t i = 0; i < list->Facts().SystemCount(); ++i)
            AddNamedSystems(list->Facts().System(i), named);
    ClassWalk walk(lists);
    WalkSids(named, walk);
    WalkMccs(named, walk);
    WalkSubnets(named, walk);
    return walk.Take();
}

std::unique_ptr<BehaviourComparison> CompareBehaviour(const CRLData& a, const CRLData& b) {
    auto cmp = std::make_unique<BehaviourComparison>();
    cmp->a = std::make_unique<ListBehaviour>(a, cmp->keys);
    cmp->b = std::make_unique<ListBehaviour>(b, cmp->keys);
    const Selector* lists[] = {&cmp->a->Selection(), &cmp->b->Selection()};
    std::vector<ObservationClass> classes = ObservationClasses(lists);
    cmp->classes = classes.size();
    for (auto& cls : classes) {
        const SelectionResult da = cmp->a->Selection().Decide(cls.observation);
        const SelectionResult db = cmp->b->Selection().Decide(cls.observation);
        Behaviour ba = cmp->a->Of(da), bb = cmp->b->Of(db);
        if (ba == bb) continue;
        BehaviourChange change{std::move(cls), ba, bb, std::nullopt, std::nullopt};
        if (da.match) change.recordA = da.match->index;
        if (db.match) change.recordB = db.match->index;
        cmp->changes.push_back(std::move(change));
    }
    return cmp;
}

// ---- outputs ----

nlohmann::ordered_json ObservationJson(const Observation& o) {
    switch (o.kind) {
        case Observation::Kind::Sid:
            return {{"sid", o.sid},
                    {"nid", o.nid ? nlohmann::ordered_json(*o.nid) : nlohmann::ordered_json()}};
        case Observation::Kind::MccMnc:
            return {{"mcc", o.mcc}, {"mnc", o.mnc}};
        case Observation::Kind::Subnet:
            return {{"subnet", FormatIpv6(o.address) + "/" + std::to_string(o.addressLength)}};
    }
    return nullptr;
}

nlohmann::ordered_json BehaviourJson(const Behaviour& b, const BehaviourKeys& keys) {
    nlohmann::ordered_json j = nlohmann::ordered_json::object();
    j["verdict"] = VerdictName(b.verdict);
    j["roamInd"] = b.roamInd ? nlohmann::ordered_json(*b.roamInd) : nlohmann::ordered_json();
    j["acquisition"] = nlohmann::ordered_json(keys.AcquisitionJson(b.acquisition));
    j["morePreferred"] = nlohmann::ordered_json::array();
    for (const auto& [identity, acquisition] : keys.LookedFor(b.lookedFor))
        j["morePreferred"].push_back(
            {{"system", nlohmann::ordered_json(keys.IdentityJson(identity))},
             {"acquisition", nlohmann::ordered_json(keys.AcquisitionJson(acquisition))}});
    j["associated"] = nlohmann::ordered_json::array();
    for (const auto& s : keys.Associated(b.associated))
        j["associated"].push_back(
            {{"system", nlohmann::ordered_json(keys.IdentityJson(s.identity))},
             {"acquisition", nlohmann::ordered_json(keys.AcquisitionJson(s.acquisition))},
             {"pnAssn", s.pnAssn},
             {"dataAssn", s.dataAssn}});
    return j;
}

std::vector<BehaviourGroup> GroupBehaviourChanges(const BehaviourComparison& cmp) {
    std::vector<BehaviourGroup> groups;
    std::unordered_map<std::string, size_t> where;
    for (size_t i = 0; i < cmp.changes.size(); ++i) {
        const std::string& system = cmp.changes[i].observation.system;
        auto [it, inserted] = where.emplace(system, groups.size());
        if (inserted) groups.push_back({system, {}});
        groups[it->second].changes.push_back(i);
    }
    return groups;
}

nlohmann::ordered_json BehaviourDiffJson(const BehaviourComparison& cmp) {
    nlohmann::ordered_json j = nlohmann::ordered_json::object();
    j["same"] = cmp.Same();
    j["changes"] = nlohmann::ordered_json::array();
    for (const auto& c : cmp.changes) {
        const Observation& o = c.observation.observation;
        const bool channel = o.band && o.channel;
        j["changes"].push_back(
            {{"observation", ObservationJson(o)},
             {"band", channel ? nlohmann::ordered_json(*o.band) : nlohmann::ordered_json()},
             {"channel", channel ? nlohmann::ordered_json(*o.channel) : nlohmann::ordered_json()},
             {"a", BehaviourJson(c.a, cmp.keys)},
             {"b", BehaviourJson(c.b, cmp.keys)}});
    }
    j["counts"] = {{"observationClasses", cmp.classes},
                   {"changedClasses", cmp.changes.size()},
                   {"changedSystems", GroupBehaviourChanges(cmp).size()}};
    return j;
}

std::string ObservationOperators(const Observation& o, const ProviderDirectory& providers) {
    switch (o.kind) {
        case Observation::Kind::Sid:
            return OperatorLabel(providers.ForSid(o.sid));
        case Observation::Kind::MccMnc:
            return OperatorLabel(providers.ForMccMnc(o.mcc, o.mnc));
        case Observation::Kind::Subnet:
            return "";
    }
    return "";
}

std::string DescribeBehaviour(const Behaviour& b, const BehaviourKeys& keys) {
    std::string text = VerdictName(b.verdict);
    text +=
        b.roamInd ? ", roaming indicator " + std::to_string(*b.roamInd) : ", no roaming indicator";
    if (b.acquisition >= 0) text += ", acquired through " + keys.AcquisitionText(b.acquisition);
    const size_t lookedFor = keys.LookedFor(b.lookedFor).size();
    if (lookedFor > 0)
        text += ", keeps looking for " + std::to_string(lookedFor) +
                (lookedFor == 1 ? " system" : " systems");
    const size_t associated = keys.Associated(b.associated).size();
    if (associated > 0)
        text += ", " + std::to_string(associated) +
                (associated == 1 ? " associated system" : " associated systems");
    return text;
}

namespace {

// The members of `from` that `to` lacks, in words.
template <typename T, typename Describe>
std::string OnlyIn(const std::vector<T>& from, const std::vector<T>& to, Describe describe) {
    std::string text;
    for (const T& member : from)
        if (!std::binary_search(to.begin(), to.end(), member))
            text += (text.empty() ? "" : "; ") + describe(member);
    return text;
}

}  // namespace

std::vector<std::string> DescribeChange(const BehaviourChange& c, const BehaviourKeys& keys) {
    std::vector<std::string> lines;
    lines.push_back("first:  " + DescribeBehaviour(c.a, keys));
    lines.push_back("second: " + DescribeBehaviour(c.b, keys));
    const auto lookedFor = [&keys](const LookedForSystem& s) {
        return keys.IdentityText(s.first) + " [" + keys.AcquisitionText(s.second) + "]";
    };
    const auto associated = [&keys](const AssociatedSystem& s) {
        return keys.IdentityText(s.identity) + " [" + keys.AcquisitionText(s.acquisition) +
               "; PN " + (s.pnAssn ? "yes" : "no") + ", data " + (s.dataAssn ? "yes" : "no") + "]";
    };
    const auto& lfA = keys.LookedFor(c.a.lookedFor);
    const auto& lfB = keys.LookedFor(c.b.lookedFor);
    if (std::string t = OnlyIn(lfB, lfA, lookedFor); !t.empty())
        lines.push_back("now more preferred: " + t);
    if (std::string t = OnlyIn(lfA, lfB, lookedFor); !t.empty())
        lines.push_back("no longer more preferred: " + t);
    const auto& asA = keys.Associated(c.a.associated);
    const auto& asB = keys.Associated(c.b.associated);
    if (std::string t = OnlyIn(asB, asA, associated); !t.empty())
        lines.push_back("now associated: " + t);
    if (std::string t = OnlyIn(asA, asB, associated); !t.empty())
        lines.push_back("no longer associated: " + t);
    return lines;
}

std::string BehaviourDiffText(const BehaviourComparison& cmp, const ProviderDirectory* providers) {
    std::string out;
    const auto groups = GroupBehaviourChanges(cmp);
    for (const auto& group : groups) {
        const BehaviourChange& first = cmp.changes[group.changes.front()];
        out += group.system;
        if (providers) {
            const std::string label =
                ObservationOperators(first.observation.observation, *providers);
            if (!label.empty()) out += "  (" + label + ")";
        }
        out += "\n";
        for (size_t index : group.changes) {
            const BehaviourChange& c = cmp.changes[index];
            out += "  " +
                   (c.observation.detail.empty() ? std::string("every observation")
                                                 : c.observation.detail) +
                   "\n";
            for (const auto& line : DescribeChange(c, cmp.keys)) out += "    " + line + "\n";
        }
    }
    const auto plural = [](size_t n, const char* one, const char* many) {
        return std::to_string(n) + " " + (n == 1 ? one : many);
    };
    if (cmp.Same())
        out += "Same behaviour: every observation (" + plural(cmp.classes, "class", "classes") +
               ") gets the same answer from both lists.\n";
    else
        out +=
            plural(cmp.changes.size(), "observation class behaves", "observation classes behave") +
            " differently, in " + plural(groups.size(), "system", "systems") + " (" +
            plural(cmp.classes, "class", "classes") + " compared).\n";
    return out;
}

}  // namespace Tarn::Analysis
