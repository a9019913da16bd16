#include "analysis/Optimize.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

#include "analysis/Behaviour.h"
#include "analysis/Lint.h"
#include "analysis/ListFacts.h"
#include "analysis/Selection.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"

namespace Tarn::Analysis {
namespace {

// The records that win at least one observation: a class's member decides for the whole class.
std::vector<bool> Winners(const Selector& selector) {
    std::vector<bool> wins(selector.Facts().SystemCount(), false);
    const Selector* lists[] = {&selector};
    for (const auto& cls : ObservationClasses(lists)) {
        SelectionResult decided = selector.Decide(cls.observation);
        if (decided.match) wins[decided.match->index] = true;
    }
    return wins;
}

std::string AcqKeyOf(const ListFacts& facts, size_t system) {
    return facts.Facts(system).acqInRange ? facts.AcqContentKey(facts.System(system).GetAcqIndex())
                                          : "-";
}

// What the winners of one GEO can see of the other records there.
struct GeoWinners {
    bool negative = false;  // a negative winner keeps looking for every preferred record
    int topLevel = -1;      // the lowest rank (highest level) of a preferred winner
    std::map<unsigned, std::set<std::string>> tags;  // association tag -> identities of winners
};

std::vector<GeoWinners> WinnersByGeo(const ListFacts& facts, const std::vector<bool>& wins) {
    std::vector<GeoWinners> geos(static_cast<size_t>(facts.GeoCount()));
    for (size_t i = 0; i < wins.size(); ++i) {
        if (!wins[i]) continue;
        const SystemFacts& f = facts.Facts(i);
        GeoWinners& g = geos[static_cast<size_t>(f.geo)];
        if (!f.preferred)
            g.negative = true;
        else
            g.topLevel = std::max(g.topLevel, f.level);
        if (facts.System(i).GetAssnIncluded() == 1)
            g.tags[facts.System(i).GetAssnTag()].insert(facts.IdentityKey(i));
    }
    return geos;
}

// Whether a winner of the GEO reads the associated sets that a record of `identity` with `tag`
// belongs to: one sharing the tag and naming another system.
bool TagSeen(const GeoWinners& g, unsigned tag, const std::string& identity) {
    auto it = g.tags.find(tag);
    if (it == g.tags.end()) return false;
    return it->second.size() > 1 || !it->second.count(identity);
}

// Takes the marked system records out. The GEO flag of a GEO's first record moves to its first
// record left, and a preferred record left takes the relation its next preferred record left
// had to it, so every GEO keeps its records' relative ranks.
void RemoveSystems(CRLData& data, const std::vector<bool>& drop) {
    std::vector<CSysItem*> records;
    for (auto& item : data.GetSysTable().Items())
        records.push_back(static_cast<CSysItem*>(item.get()));
    {
        ListFacts facts(data);
        for (int geo = 0; geo < facts.GeoCount(); ++geo) {
            const auto [first, last] = facts.GeoRange(geo);
            const unsigned opening = records[first]->GetGeography();
            bool opened = false;
            CSysItem* previous = nullptr;
            int previousLevel = 0;
            for (size_t i = first; i < last; ++i) {
                if (drop[i]) continue;
                if (!opened) {
                    records[i]->SetGeography(opening);
                    opened = true;
                }
                if (!facts.Facts(i).preferred) continue;
                if (previous) previous->SetPriority(facts.Facts(i).level > previousLevel ? 1 : 0);
                previous = records[i];
                previousLevel = facts.Facts(i).level;
            }
        }
    }
    auto& items = data.GetSysTable().Items();
    for (size_t i = drop.size(); i-- > 0;)
        if (drop[i]) items.RemoveAt(i);
}

// A system record that decides no observation may go when what it adds to its GEO's sets is
// seen by no winner there, or is added as well by an earlier record that stays.
size_t DropRedundantSystems(CRLData& data) {
    std::vector<bool> drop;
    {
        Selector selector(data);
        const ListFacts& facts = selector.Facts();
        const std::vector<bool> wins = Winners(selector);
        const std::vector<GeoWinners> geos = WinnersByGeo(facts, wins);
        drop.assign(facts.SystemCount(), false);
        for (int geo = 0; geo < facts.GeoCount(); ++geo) {
            const GeoWinners& g = geos[static_cast<size_t>(geo)];
            std::set<std::string> lookedFor, associated;  // what records kept so far add
            const auto [first, last] = facts.GeoRange(geo);
            for (size_t i = first; i < last; ++i) {
                const SystemFacts& f = facts.Facts(i);
                const CSysItem& r = facts.System(i);
                const std::string looked = facts.IdentityKey(i) + "\n" + AcqKeyOf(facts, i);
                const std::string assn = looked + "\n" + AssociationKey(r);
                bool redundant = !wins[i];
                // A winner keeps looking for it: a negative one, or a preferred one ranked lower.
                if (redundant && f.preferred && (g.negative || f.level < g.topLevel) &&
                    !lookedFor.count(looked))
                    redundant = false;
                if (redundant && r.GetAssnIncluded() == 1 &&
                    TagSeen(g, r.GetAssnTag(), facts.IdentityKey(i)) && !associated.count(assn))
                    redundant = false;
                if (redundant) {
                    drop[i] = true;
                    continue;
                }
                if (f.preferred) lookedFor.insert(looked);
                if (r.GetAssnIncluded() == 1) associated.insert(assn);
            }
        }
    }
    const size_t dropped = static_cast<size_t>(std::count(drop.begin(), drop.end(), true));
    if (dropped > 0) RemoveSystems(data, drop);
    return dropped;
}

// Association fields matter only in a set: a record's own (when it wins, the GEO's records sharing
// its tag for another system) and those of the winners sharing its tag. Where both are empty or
// unseen, the fields can go.
size_t ClearUnneededAssociations(CRLData& data) {
    Selector selector(data);
    const ListFacts& facts = selector.Facts();
    const std::vector<bool> wins = Winners(selector);
    const std::vector<GeoWinners> geos = WinnersByGeo(facts, wins);
    std::vector<CSysItem*> records;
    for (auto& item : data.GetSysTable().Items())
        records.push_back(static_cast<CSysItem*>(item.get()));
    size_t cleared = 0;
    for (int geo = 0; geo < facts.GeoCount(); ++geo) {
        const auto [first, last] = facts.GeoRange(geo);
        for (size_t i = first; i < last; ++i) {
            CSysItem& r = *records[i];
            if (r.GetAssnIncluded() != 1) continue;
            if (TagSeen(geos[static_cast<size_t>(geo)], r.GetAssnTag(), facts.IdentityKey(i)))
                continue;
            bool shared = false;
            for (size_t j = first; j < last && !shared; ++j)
                shared = j != i && records[j]->GetAssnIncluded() == 1 &&
                         records[j]->GetAssnTag() == r.GetAssnTag() &&
                         facts.IdentityKey(j) != facts.IdentityKey(i);
            if (wins[i] && shared) continue;
            r.SetAssnIncluded(0);
            r.SetAssnTag(0);
            r.SetPnAssn(0);
            r.SetDataAssn(0);
            ++cleared;
        }
    }
    return cleared;
}

// NID_INCL 0 stands for NID 65535 and 2 for NID 0 without the 16 bits of a stored NID.
size_t ShortenNids(CRLData& data) {
    size_t shortened = 0;
    for (auto& item : data.GetSysTable().Items()) {
        auto* record = static_cast<CSysItem*>(item.get());
        if (record->GetSysType() != 0) continue;
        auto& r = static_cast<CSysItemIS2000&>(*record);
        if (r.GetNidIncl() != 1 || (r.GetNid() != kWildcardNid && r.GetNid() != 0)) continue;
        r.SetNidIncl(r.GetNid() == 0 ? 2 : 0);
        ++shortened;
    }
    return shortened;
}

// Keeps the acquisition records `target` maps to themselves, points every system record at
// `target` of its index and renumbers. Indices out of the table stay as they are.
size_t RemapAcquisitions(CRLData& data, const std::vector<size_t>& target) {
    std::vector<size_t> newIndex(target.size(), 0);
    size_t kept = 0;
    for (size_t j = 0; j < target.size(); ++j)
        if (target[j] == j) newIndex[j] = kept++;
    for (auto& item : data.GetSysTable().Items()) {
        auto* r = static_cast<CSysItem*>(item.get());
        if (r->GetAcqIndex() < target.size())
            r->SetAcqIndex(static_cast<unsigned>(newIndex[target[r->GetAcqIndex()]]));
    }
    auto& acq = data.GetAcqTable().Items();
    for (size_t j = target.size(); j-- > 0;)
        if (target[j] != j) acq.RemoveAt(j);
    return target.size() - kept;
}

size_t DropUnusedAcquisitions(CRLData& data) {
    const size_t count = data.GetAcqTable().GetSize();
    std::vector<bool> used(count, false);
    for (const auto& item : data.GetSysTable().Items()) {
        const unsigned index = static_cast<const CSysItem&>(*item).GetAcqIndex();
        if (index < count) used[index] = true;
    }
    // An unused record points nowhere; nothing points at it, so any target is never read.
    std::vector<size_t> target(count);
    for (size_t j = 0; j < count; ++j) target[j] = used[j] ? j : count;
    if (std::all_of(used.begin(), used.end(), [](bool u) { return u; })) return 0;
    return RemapAcquisitions(data, target);
}

size_t MergeEqualAcquisitions(CRLData& data) {
    const size_t count = data.GetAcqTable().GetSize();
    ListFacts facts(data);
    std::unordered_map<std::string, size_t> firstOf;
    std::vector<size_t> target(count);
    bool any = false;
    for (size_t j = 0; j < count; ++j) {
        target[j] = firstOf.emplace(facts.AcqContentKey(j), j).first->second;
        any = any || target[j] != j;
    }
    return any ? RemapAcquisitions(data, target) : 0;
}

}  // namespace

OptimizeResult OptimizeList(const CRLData& original, int version) {
    OptimizeResult result;
    result.version = version;
    result.bytesBefore = WrittenListSize(original, version);
    if (result.bytesBefore == 0) {
        result.error = "the list cannot be written as it stands; fix what check reports first";
        return result;
    }
    result.data = std::make_unique<CRLData>(original);
    CRLData& data = *result.data;
    struct Step {
        const char* id;
        const char* title;
        size_t (*run)(CRLData&);
    };
    static constexpr Step kSteps[] = {
        {"redundant-systems", "system records that decide no observation", DropRedundantSystems},
        {"unused-association", "association fields no observation reads",
         ClearUnneededAssociations},
        {"short-nid", "NIDs 65535 and 0 stored as NID_INCL codes", ShortenNids},
        {"unused-acquisition", "acquisition records no system uses", DropUnusedAcquisitions},
        {"duplicate-acquisition", "acquisition records equal to an earlier one",
         MergeEqualAcquisitions},
    };
    size_t bytes = result.bytesBefore;
    for (const Step& step : kSteps) {
        OptimizeStep done{step.id, step.title, step.run(data), bytes, bytes};
        if (done.records > 0) {
            done.bytesAfter = WrittenListSize(data, version);
            if (done.bytesAfter == 0) {
                result.error = std::string("the list could not be written after step ") + step.id;
                result.data.reset();
                return result;
            }
            bytes = done.bytesAfter;
        }
        result.steps.push_back(done);
    }
    result.bytesAfter = bytes;

    auto proof = CompareBehaviour(original, data);
    result.classes = proof->classes;
    result.differences = proof->changes.size();
    result.proven = proof->Same();
    return result;
}

nlohmann::ordered_json OptimizeReportJson(const OptimizeResult& r) {
    nlohmann::ordered_json steps = nlohmann::ordered_json::array();
    for (const auto& s : r.steps)
        steps.push_back({{"id", s.id},
                         {"title", s.title},
                         {"records", s.records},
                         {"bytesBefore", s.bytesBefore},
                         {"bytesAfter", s.bytesAfter},
                         {"saved", s.Saved()}});
    return {{"bytesBefore", r.bytesBefore},
            {"bytesAfter", r.bytesAfter},
            {"saved", r.bytesBefore > r.bytesAfter ? r.bytesBefore - r.bytesAfter : 0},
            {"proven", r.proven},
            {"classes", r.classes},
            {"steps", steps}};
}

std::string OptimizeReportText(const OptimizeResult& r) {
    const size_t saved = r.bytesBefore > r.bytesAfter ? r.bytesBefore - r.bytesAfter : 0;
    char percent[32];
    std::snprintf(percent, sizeof percent, "%.1f%%",
                  r.bytesBefore ? 100.0 * saved / r.bytesBefore : 0.0);
    std::string out = std::to_string(r.bytesBefore) + " -> " + std::to_string(r.bytesAfter) +
                      " bytes (" + std::to_string(saved) + " saved, " + percent + ")\n";
    for (const auto& s : r.steps)
        out += "  " + s.id + ": " + std::to_string(s.records) +
               (s.records == 1 ? " record, " : " records, ") + std::to_string(s.Saved()) +
               " bytes saved (" + s.title + ")\n";
    if (r.proven)
        out += "  proof: every observation (" + std::to_string(r.classes) +
               " classes) gets the same behaviour from both lists\n";
    else
        out += "  proof FAILED: " + std::to_string(r.differences) + " of " +
               std::to_string(r.classes) + " observation classes behave differently\n";
    return out;
}

}  // namespace Tarn::Analysis
