#include "analysis/LintRules.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <unordered_map>

#include "analysis/ListFacts.h"
#include "analysis/Observation.h"
#include "analysis/Policy.h"
#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemGeneric.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"

namespace Tarn::Analysis {
namespace {

constexpr unsigned kPriorityMore = 1;

std::string JoinNumbers(const std::vector<unsigned>& values) {
    std::string out;
    for (unsigned v : values) out += (out.empty() ? "" : ", ") + std::to_string(v);
    return out;
}

// An acquisition record nothing points at is dead weight in a list whose size is capped, and
// usually means a system record was pointed at the wrong index.
class UnusedAcquisition final : public LintRule {
public:
    const char* Id() const override { return "unused-acquisition"; }
    Severity DefaultSeverity() const override { return Severity::Warning; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        std::vector<bool> used(in.facts.AcquisitionCount(), false);
        for (size_t i = 0; i < in.facts.SystemCount(); ++i)
            if (in.facts.Facts(i).acqInRange) used[in.facts.System(i).GetAcqIndex()] = true;
        for (size_t a = 0; a < used.size(); ++a)
            if (!used[a]) {
                const Coverage& scans = in.facts.AcqCoverage(a);
                out.push_back(Make(LintTable::Acquisition, a,
                                   "no system record points at this type " +
                                       std::to_string(in.facts.Acquisition(a).GetAcqType()) + " record" +
                                       (scans.Empty() ? "" : " (it scans " + scans.ToText() + ")")));
            }
    }
};

// Two identical acquisition records cost bytes for nothing: the system records of the later one
// could point at the earlier. Harmless to the handset, hence only informational.
class DuplicateAcquisition final : public LintRule {
public:
    const char* Id() const override { return "duplicate-acquisition"; }
    Severity DefaultSeverity() const override { return Severity::Info; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        std::unordered_map<std::string, size_t> first;
        for (size_t a = 0; a < in.facts.AcquisitionCount(); ++a) {
            auto [it, inserted] = first.emplace(in.facts.AcqContentKey(a), a);
            if (!inserted)
                out.push_back(Make(LintTable::Acquisition, a,
                                   "same type " + std::to_string(in.facts.Acquisition(a).GetAcqType()) +
                                       " and fields as acquisition #" + std::to_string(it->second)));
        }
    }
};

// A channel number the band does not have sends the handset scanning a frequency that carries
// no CDMA system; the record is valid bit for bit, so only this rule sees it.
class ChannelOutOfBand final : public LintRule {
public:
    const char* Id() const override { return "channel-out-of-band"; }
    Severity DefaultSeverity() const override { return Severity::Error; }

    // Cellular (band 0) channels are 1-799 and 991-1023; PCS (band 1) channels stop at 1199.
    static bool Outside(unsigned band, unsigned channel) {
        if (band == 0) return !((channel >= 1 && channel <= 799) || (channel >= 991 && channel <= 1023));
        if (band == 1) return channel > 1199;
        return false;
    }

    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        for (size_t a = 0; a < in.facts.AcquisitionCount(); ++a) {
            const CAcqItem& item = in.facts.Acquisition(a);
            std::vector<std::string> bad;
            switch (item.GetAcqType()) {
                case 3:
                case 6: {
                    const unsigned band = item.GetAcqType() == 3 ? 0 : 1;
                    std::vector<unsigned> channels;
                    for (uint16_t ch : static_cast<const CAcqItemCellularCdmaCustom&>(item).GetChannels())
                        if (Outside(band, ch)) channels.push_back(ch);
                    if (!channels.empty())
                        bad.push_back((channels.size() == 1 ? "channel " : "channels ") +
                                      JoinNumbers(channels) + " outside band " + std::to_string(band) +
                                      (band == 0 ? " (1-799, 991-1023)" : " (0-1199)"));
                    break;
                }
                case 10:
                case 11:
                    for (const auto& p : static_cast<const CAcqItemGenericCdma&>(item).GetPairs())
                        if (Outside(p.bandClass, p.channel))
                            bad.push_back("band " + std::to_string(p.bandClass) + " channel " +
                                          std::to_string(p.channel) +
                                          (p.bandClass == 0 ? " (band 0 has 1-799, 991-1023)"
                                                            : " (band 1 has 0-1199)"));
                    break;
                default: break;
            }
            if (bad.empty()) continue;
            std::string message;
            for (const auto& b : bad) message += (message.empty() ? "" : "; ") + b;
            out.push_back(Make(LintTable::Acquisition, a, message));
        }
    }
};

// Two records of one GEO that say exactly the same thing: the later one can never change what
// the handset does, so it is clutter or a copy that was meant to be edited.
class DuplicateSystem final : public LintRule {
public:
    const char* Id() const override { return "duplicate-system"; }
    Severity DefaultSeverity() const override { return Severity::Warning; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        std::unordered_map<std::string, size_t> first;
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            auto [it, inserted] = first.emplace(
                std::to_string(in.facts.Facts(i).geo) + "|" + in.facts.SystemContentKey(i), i);
            if (!inserted) {
                Finding f = Make(LintTable::System, i,
                                 DescribeSystem(in.facts, i, in.providers) + " repeats system #" +
                                     std::to_string(it->second) + " of GEO " +
                                     std::to_string(in.facts.Facts(i).geo) + " field for field");
                f.namedSystem = i;
                out.push_back(std::move(f));
            }
        }
    }
};

// One GEO that both prefers and forbids the same system: the handset follows whichever record
// its search meets first, which is rarely what either author meant.
class ConflictingSystem final : public LintRule {
public:
    const char* Id() const override { return "conflicting-system"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        struct Seen {
            std::optional<size_t> preferred, negative;
        };
        std::unordered_map<std::string, Seen> seen;
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            const bool pref = in.facts.Facts(i).preferred;
            Seen& s = seen[std::to_string(in.facts.Facts(i).geo) + "|" + in.facts.IdentityKey(i)];
            const std::optional<size_t>& other = pref ? s.negative : s.preferred;
            if (other) {
                Finding f = Make(LintTable::System, i,
                                 DescribeSystem(in.facts, i, in.providers) + " is " +
                                     (pref ? "preferred" : "negative") + " here but " +
                                     (pref ? "negative" : "preferred") + " in system #" +
                                     std::to_string(*other) + " of the same GEO " +
                                     std::to_string(in.facts.Facts(i).geo));
                f.namedSystem = i;
                out.push_back(std::move(f));
            }
            (pref ? s.preferred : s.negative).emplace(i);
        }
    }
};

// Channel ranges merged per band, sorted: what several records scan together, with insertion and
// overlap queries in logarithmic time so one SID spread over many GEOs stays cheap.
class RangeUnion {
public:
    void Add(const ChannelRange& r) {
        unsigned first = r.first, last = r.last;
        auto it = ranges_.upper_bound({r.band, first});
        if (it != ranges_.begin()) {
            auto prev = std::prev(it);
            if (prev->first.first == r.band && prev->second + 1 >= first) it = prev;
        }
        while (it != ranges_.end() && it->first.first == r.band && it->first.second <= last + 1) {
            first = std::min(first, it->first.second);
            last = std::max(last, it->second);
            it = ranges_.erase(it);
        }
        ranges_.emplace(std::make_pair(r.band, first), last);
    }
    void Add(const std::vector<ChannelRange>& ranges) {
        for (const auto& r : ranges) Add(r);
    }
    bool Overlaps(const std::vector<ChannelRange>& ranges) const {
        for (const auto& r : ranges) {
            // Ranges are disjoint: only the last one starting at or before r.last can reach r.first.
            auto it = ranges_.upper_bound({r.band, r.last});
            if (it == ranges_.begin()) continue;
            --it;
            if (it->first.first == r.band && it->second >= r.first) return true;
        }
        return false;
    }

private:
    std::map<std::pair<unsigned, unsigned>, unsigned> ranges_;  // (band, first) -> last
};

using RangeSet = std::vector<ChannelRange>;

// What two sorted range lists have in common, as "band 1: 25, 40-49".
RangeSet Common(const RangeSet& a, const RangeSet& b) {
    RangeSet out;
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].band != b[j].band) {
            (a[i].band < b[j].band ? i : j)++;
            continue;
        }
        const unsigned first = std::max(a[i].first, b[j].first);
        const unsigned last = std::min(a[i].last, b[j].last);
        if (first <= last) out.push_back({a[i].band, first, last});
        (a[i].last < b[j].last ? i : j)++;
    }
    return out;
}

std::string RangesText(const RangeSet& ranges) {
    std::string text;
    for (size_t i = 0; i < ranges.size(); ++i) {
        const ChannelRange& r = ranges[i];
        if (i == 0 || ranges[i - 1].band != r.band)
            text += (i ? "; band " : "band ") + std::to_string(r.band) + ": ";
        else
            text += ", ";
        text += std::to_string(r.first);
        if (r.last != r.first) text.append("-").append(std::to_string(r.last));
    }
    return text;
}

// A handset that finds a SID/NID on a channel picks the GEO from the first record naming it. When
// two GEOs name the same SID/NID over a common channel, the channel cannot tell them apart and
// the handset may settle in the wrong GEO, with the wrong priorities for everything around it.
class AmbiguousGeo final : public LintRule {
public:
    const char* Id() const override { return "ambiguous-geo"; }
    Severity DefaultSeverity() const override { return Severity::Warning; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        // Records of one SID/NID by list order. GEOs are contiguous, so every earlier record of
        // another GEO lies in an earlier GEO: their union decides in one pass whether a record
        // can fire at all, and only a firing record looks for the one it collides with.
        struct Bucket {
            std::vector<size_t> records;
            RangeUnion earlierGeos;  // records of GEOs before `openGeo`
            std::vector<size_t> open;  // records of `openGeo`
            int openGeo = -1;
        };
        std::unordered_map<std::string, Bucket> buckets;
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            if (in.facts.System(i).GetSysType() != 0) continue;
            Bucket& b = buckets[in.facts.IdentityKey(i)];
            const int geo = in.facts.Facts(i).geo;
            if (geo != b.openGeo) {
                for (size_t j : b.open) b.earlierGeos.Add(in.facts.SystemCoverage(j).Ranges());
                b.open.clear();
                b.openGeo = geo;
            }
            const RangeSet& mine = in.facts.SystemCoverage(i).Ranges();
            if (b.earlierGeos.Overlaps(mine)) {
                for (size_t j : b.records) {
                    if (in.facts.Facts(j).geo == geo) break;
                    RangeSet common = Common(mine, in.facts.SystemCoverage(j).Ranges());
                    if (common.empty()) continue;
                    Finding f = Make(LintTable::System, i,
                                     DescribeSystem(in.facts, i, in.providers) + " in GEO " + std::to_string(geo) +
                                         " also stands in system #" + std::to_string(j) + " of GEO " +
                                         std::to_string(in.facts.Facts(j).geo) +
                                         ", and both scan " + RangesText(common));
                    f.namedSystem = i;
                    out.push_back(std::move(f));
                    break;
                }
            }
            b.open.push_back(i);
            b.records.push_back(i);
        }
    }
};

// A GEO of negative records only never lets the handset settle: everything it finds there is
// either forbidden or unknown, so it leaves for another GEO or keeps scanning.
class GeoWithoutPreferred final : public LintRule {
public:
    const char* Id() const override { return "geo-without-preferred"; }
    Severity DefaultSeverity() const override { return Severity::Warning; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        for (int g = 0; g < in.facts.GeoCount(); ++g) {
            auto [first, last] = in.facts.GeoRange(g);
            bool any = false;
            for (size_t i = first; i < last && !any; ++i) any = in.facts.Facts(i).preferred;
            if (!any)
                out.push_back(Make(LintTable::System, first,
                                   "GEO " + std::to_string(g) + " (systems #" + std::to_string(first) +
                                       " to #" + std::to_string(last - 1) +
                                       ") holds no preferred record"));
        }
    }
};

// "More" says the next record of the GEO ranks lower; on the GEO's last record there is no next,
// so the flag is meaningless and often marks a record that was moved or a GEO cut short.
class PriorityAtGeoEnd final : public LintRule {
public:
    const char* Id() const override { return "priority-at-geo-end"; }
    Severity DefaultSeverity() const override { return Severity::Info; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        for (int g = 0; g < in.facts.GeoCount(); ++g) {
            const size_t last = in.facts.GeoRange(g).second - 1;
            if (in.facts.Facts(last).preferred && in.facts.System(last).GetPriority() == kPriorityMore)
                out.push_back(Make(LintTable::System, last,
                                   "priority \"More\" on the last record of GEO " + std::to_string(g) +
                                       ": no record follows it to rank lower"));
        }
    }
};

// Roaming indicators 13 to 63 are kept for values the standards may still define; a handset may
// show anything, or nothing, for them.
class ReservedRoamingIndicator final : public LintRule {
public:
    const char* Id() const override { return "reserved-roaming-indicator"; }
    Severity DefaultSeverity() const override { return Severity::Warning; }
    static bool Reserved(unsigned value) { return value >= 13 && value <= 63; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        const unsigned def = in.data.GetProperties().defRoamInd;
        if (Reserved(def))
            out.push_back(Make(LintTable::Header, std::nullopt,
                               "default roaming indicator " + std::to_string(def) +
                                   " is reserved for standard values (13-63)"));
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            const unsigned ri = in.facts.System(i).GetRoamInd();
            if (in.facts.Facts(i).preferred && Reserved(ri)) {
                Finding f = Make(LintTable::System, i,
                                 DescribeSystem(in.facts, i, in.providers) + " has roaming indicator " +
                                     std::to_string(ri) + ", reserved for standard values (13-63)");
                f.namedSystem = i;
                out.push_back(std::move(f));
            }
        }
    }
};

// Policy rules: an operator's own requirements, silent unless the policy sets their key.

class PolicyPrefOnly final : public LintRule {
public:
    const char* Id() const override { return "policy-pref-only"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy || !in.policy->prefOnly) return;
        const bool actual = in.data.GetProperties().prefOnly;
        if (actual != *in.policy->prefOnly)
            out.push_back(Make(LintTable::Header, std::nullopt,
                               std::string("PREF_ONLY is ") + (actual ? "1" : "0") +
                                   ", the policy asks for " + (*in.policy->prefOnly ? "1" : "0")));
    }
};

class PolicyDefRoamInd final : public LintRule {
public:
    const char* Id() const override { return "policy-def-roam-ind"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy || !in.policy->defRoamInd) return;
        const unsigned actual = in.data.GetProperties().defRoamInd;
        if (actual != *in.policy->defRoamInd)
            out.push_back(Make(LintTable::Header, std::nullopt,
                               "default roaming indicator is " + std::to_string(actual) +
                                   ", the policy asks for " + std::to_string(*in.policy->defRoamInd)));
    }
};

class PolicyListSize final : public LintRule {
public:
    const char* Id() const override { return "policy-list-size"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy || !in.policy->maxListSize || in.listBytes == 0) return;
        if (in.listBytes > *in.policy->maxListSize)
            out.push_back(Make(LintTable::Header, std::nullopt,
                               "the list is " + std::to_string(in.listBytes) +
                                   " bytes, above the policy's " +
                                   std::to_string(*in.policy->maxListSize)));
    }
};

class PolicyRequiredSystem final : public LintRule {
public:
    const char* Id() const override { return "policy-required-system"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy) return;
        for (const auto& required : in.policy->requiredSystems) {
            bool named = false;
            for (size_t i = 0; i < in.facts.SystemCount() && !named; ++i)
                named = in.facts.Facts(i).preferred &&
                        MatchSpecificity(in.facts.System(i), required.observation).has_value();
            if (named) continue;
            const Observation& o = required.observation;
            std::vector<Operator> ops;
            if (in.providers && o.kind == Observation::Kind::Sid) ops = in.providers->ForSid(o.sid);
            if (in.providers && o.kind == Observation::Kind::MccMnc)
                ops = in.providers->ForMccMnc(o.mcc, o.mnc);
            const std::string label = OperatorLabel(ops);
            Finding f = Make(LintTable::Header, std::nullopt,
                             "no preferred record names " + required.text +
                                 (label.empty() ? "" : " (" + label + ")") +
                                 ", which the policy requires");
            f.operators = std::move(ops);
            out.push_back(std::move(f));
        }
    }
};

class PolicyForbiddenSystem final : public LintRule {
public:
    const char* Id() const override { return "policy-forbidden-system"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy || in.policy->forbiddenSystems.empty()) return;
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            if (!in.facts.Facts(i).preferred) continue;
            for (const auto& forbidden : in.policy->forbiddenSystems) {
                if (!MatchSpecificity(in.facts.System(i), forbidden.observation)) continue;
                Finding f = Make(LintTable::System, i,
                                 DescribeSystem(in.facts, i, in.providers) + " is preferred and names " +
                                     forbidden.text + ", which the policy forbids");
                f.namedSystem = i;
                out.push_back(std::move(f));
                break;
            }
        }
    }
};

class PolicyRoamingIndicator final : public LintRule {
public:
    const char* Id() const override { return "policy-roaming-indicator"; }
    Severity DefaultSeverity() const override { return Severity::Error; }
    void Check(const LintInput& in, std::vector<Finding>& out) const override {
        if (!in.policy || !in.policy->roamIndAllowed) return;
        const auto& allowed = *in.policy->roamIndAllowed;
        for (size_t i = 0; i < in.facts.SystemCount(); ++i) {
            const unsigned ri = in.facts.System(i).GetRoamInd();
            if (!in.facts.Facts(i).preferred ||
                std::find(allowed.begin(), allowed.end(), ri) != allowed.end())
                continue;
            Finding f = Make(LintTable::System, i,
                             DescribeSystem(in.facts, i, in.providers) + " has roaming indicator " +
                                 std::to_string(ri) + ", not one the policy allows (" +
                                 JoinNumbers(allowed) + ")");
            f.namedSystem = i;
            out.push_back(std::move(f));
        }
    }
};

}  // namespace

std::vector<const LintRule*> BuiltInRules() {
    static const UnusedAcquisition unusedAcquisition;
    static const DuplicateAcquisition duplicateAcquisition;
    static const ChannelOutOfBand channelOutOfBand;
    static const DuplicateSystem duplicateSystem;
    static const ConflictingSystem conflictingSystem;
    static const AmbiguousGeo ambiguousGeo;
    static const GeoWithoutPreferred geoWithoutPreferred;
    static const PriorityAtGeoEnd priorityAtGeoEnd;
    static const ReservedRoamingIndicator reservedRoamingIndicator;
    return {&unusedAcquisition, &duplicateAcquisition, &channelOutOfBand,
            &duplicateSystem,   &conflictingSystem,    &ambiguousGeo,
            &geoWithoutPreferred, &priorityAtGeoEnd,   &reservedRoamingIndicator};
}

std::vector<const LintRule*> PolicyRules() {
    static const PolicyPrefOnly prefOnly;
    static const PolicyDefRoamInd defRoamInd;
    static const PolicyListSize listSize;
    static const PolicyRequiredSystem requiredSystem;
    static const PolicyForbiddenSystem forbiddenSystem;
    static const PolicyRoamingIndicator roamingIndicator;
    return {&prefOnly, &defRoamInd, &listSize, &requiredSystem, &forbiddenSystem, &roamingIndicator};
}

}  // namespace Tarn::Analysis
