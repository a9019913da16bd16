#include "analysis/Diff.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

#include "analysis/ListFacts.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

namespace Tarn::Analysis {
namespace {

// Records of the second list waiting to be paired, by key, consumed front to back so that equal
// records pair in list order.
class Queues {
public:
    void Add(const std::string& key, size_t index) { map_[key].items.push_back(index); }
    // The next unpaired index under `key`, or false.
    bool Take(const std::string& key, size_t& index) {
        auto it = map_.find(key);
        if (it == map_.end() || it->second.next == it->second.items.size()) return false;
        index = it->second.items[it->second.next++];
        return true;
    }

private:
    struct Queue {
        std::vector<size_t> items;
        size_t next = 0;
    };
    std::unordered_map<std::string, Queue> map_;
};

void CompareHeader(const CRLData& a, int versionA, const CRLData& b, int versionB, ListDiff& out) {
    // Sizes, CRC and SSPR_P_REV follow from the version and the records, so a reviewer learns
    // nothing from them that the rest of the diff does not already say.
    if (versionA != versionB)
        out.header.push_back({"version", VersionName(versionA), VersionName(versionB)});
    const CPropData& pa = a.GetProperties();
    const CPropData& pb = b.GetProperties();
    if (pa.prefListId != pb.prefListId)
        out.header.push_back({"prefListId", pa.prefListId, pb.prefListId});
    if (pa.prefOnly != pb.prefOnly) out.header.push_back({"prefOnly", pa.prefOnly, pb.prefOnly});
    if (pa.defRoamInd != pb.defRoamInd)
        out.header.push_back({"defRoamInd", pa.defRoamInd, pb.defRoamInd});
}

// Acquisition records are known by what they scan, not where they stand: a rebuild that only
// renumbers the table changes nothing a handset does, so it must report nothing.
void CompareAcquisitions(const ListFacts& fa, const ListFacts& fb, ListDiff& out) {
    const size_t na = fa.AcquisitionCount(), nb = fb.AcquisitionCount();
    Queues byContent;
    for (size_t j = 0; j < nb; ++j) byContent.Add(fb.AcqContentKey(j), j);
    std::vector<bool> pairedA(na, false), pairedB(nb, false);
    for (size_t i = 0; i < na; ++i) {
        size_t j = 0;
        if (byContent.Take(fa.AcqContentKey(i), j)) pairedA[i] = pairedB[j] = true;
    }
    // A record edited in place keeps its index; showing it as one change reads better than a
    // removal and an addition of the same slot.
    for (size_t i = 0; i < na; ++i) {
        if (pairedA[i]) continue;
        if (i < nb && !pairedB[i]) {
            out.acqChanged.push_back({i, i});
            pairedB[i] = true;
        } else {
            out.acqRemoved.push_back(i);
        }
    }
    for (size_t j = 0; j < nb; ++j)
        if (!pairedB[j]) out.acqAdded.push_back(j);
}

// System records pair by the system they name. Within one identity (a SID listed twice, say,
// once per band) the records that say exactly the same pair first, so two duplicates that were
// swapped are no change; whatever is left of the identity then pairs in list order, and only
// what is still left was added or removed.
std::vector<RecordPair> PairSystems(const ListFacts& fa, const ListFacts& fb) {
    const size_t na = fa.SystemCount(), nb = fb.SystemCount();
    std::unordered_map<std::string, std::vector<size_t>> groupA, groupB;
    std::vector<std::string> order;  // identities in first-list order, for a stable walk
    for (size_t i = 0; i < na; ++i) {
        auto& g = groupA[fa.IdentityKey(i)];
        if (g.empty()) order.push_back(fa.IdentityKey(i));
        g.push_back(i);
    }
    for (size_t j = 0; j < nb; ++j) groupB[fb.IdentityKey(j)].push_back(j);

    std::vector<RecordPair> pairs;
    for (const auto& identity : order) {
        auto itB = groupB.find(identity);
        if (itB == groupB.end()) continue;
        const auto& as = groupA[identity];
        const auto& bs = itB->second;
        std::vector<bool> usedA(as.size(), false), usedB(bs.size(), false);
        if (as.size() == 1 && bs.size() == 1) {
            pairs.push_back({as[0], bs[0]});
            continue;
        }
        Queues byContent;
        for (size_t k = 0; k < bs.size(); ++k) byContent.Add(fb.SystemContentKey(bs[k]), k);
        for (size_t k = 0; k < as.size(); ++k) {
            size_t m = 0;
            if (byContent.Take(fa.SystemContentKey(as[k]), m)) {
                pairs.push_back({as[k], bs[m]});
                usedA[k] = usedB[m] = true;
            }
        }
        size_t m = 0;
        for (size_t k = 0; k < as.size(); ++k) {
            if (usedA[k]) continue;
            while (m < bs.size() && usedB[m]) ++m;
            if (m == bs.size()) break;
            pairs.push_back({as[k], bs[m]});
            usedB[m++] = true;
        }
    }
    std::sort(pairs.begin(), pairs.end(), [](const RecordPair& x, const RecordPair& y) { return x.a < y.a; });
    return pairs;
}

// Each first-list GEO corresponds to the second-list GEO that holds most of its paired records
// (the lower number on a tie): a GEO split in two or merged into another still maps to where
// the bulk of it went, and only the records that went elsewhere report a changed GEO.
std::vector<int> MapGeos(const std::vector<RecordPair>& pairs, const ListDiff& d, int geoCountA) {
    std::vector<std::pair<int, int>> geoPairs;
    geoPairs.reserve(pairs.size());
    for (const auto& p : pairs) geoPairs.push_back({d.geoA[p.a], d.geoB[p.b]});
    std::sort(geoPairs.begin(), geoPairs.end());
    std::vector<int> map(static_cast<size_t>(geoCountA), -1);
    std::vector<size_t> best(static_cast<size_t>(geoCountA), 0);
    for (size_t i = 0; i < geoPairs.size();) {
        size_t k = i;
        while (k < geoPairs.size() && geoPairs[k] == geoPairs[i]) ++k;
        const auto g = static_cast<size_t>(geoPairs[i].first);
        // Runs come in ascending second-list GEO, so a strict ">" keeps the lower one on a tie.
        if (k - i > best[g]) {
            best[g] = k - i;
            map[g] = geoPairs[i].second;
        }
        i = k;
    }
    return map;
}

// A prefix maximum over positions 0..n-1 (Fenwick tree), for the priority chain below.
class PrefixMax {
public:
    explicit PrefixMax(size_t n) : tree_(n + 1, 0) {}
    void Raise(size_t pos, size_t value) {
        for (size_t i = pos + 1; i < tree_.size(); i += i & (~i + 1)) tree_[i] = std::max(tree_[i], value);
    }
    // The maximum over positions [0, count).
    size_t Max(size_t count) const {
        size_t m = 0;
        for (size_t i = count; i > 0; i -= i & (~i + 1)) m = std::max(m, tree_[i]);
        return m;
    }

private:
    std::vector<size_t> tree_;
};

}  // namespace

// Two records keep their relation when one is more, equally or less preferred than the other in
// both lists. A consistent set is then a chain of (first-list level, second-list level) buckets in
// which both levels strictly rise: records that tie in one list must tie in the other. The largest
// chain, by records held, is found by a DP over the buckets from the last level up, with a prefix
// maximum over second-list levels: O(n log n). Among chains of the same size the one that keeps
// the earliest record (in the order given) wins, then the next earliest, and so on: the records
// higher in the GEO are taken as the reference and the ones that moved relative to them are
// reported, so moving one system to the bottom names that system and nothing else.
std::vector<bool> KeepConsistentPriorities(const std::vector<int>& levelA,
                                           const std::vector<int>& levelB) {
    const size_t n = std::min(levelA.size(), levelB.size());
    std::vector<bool> keep(n, false);
    if (n == 0) return keep;

    std::vector<int> bLevels(levelB.begin(), levelB.begin() + static_cast<std::ptrdiff_t>(n));
    std::sort(bLevels.begin(), bLevels.end());
    bLevels.erase(std::unique(bLevels.begin(), bLevels.end()), bLevels.end());
    auto rankB = [&](size_t i) {
        return static_cast<size_t>(std::lower_bound(bLevels.begin(), bLevels.end(), levelB[i]) - bLevels.begin());
    };

    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t x, size_t y) {
        if (levelA[x] != levelA[y]) return levelA[x] < levelA[y];
        if (levelB[x] != levelB[y]) return levelB[x] < levelB[y];
        return x < y;
    });
    struct Bucket {
        int a;
        size_t b;       // rank of the second-list level
        size_t first;   // position in `order` of its first record
        size_t count;
        size_t earliest;  // smallest record index it holds
        size_t best = 0;  // records in the largest chain starting here
    };
    std::vector<Bucket> buckets;
    for (size_t k = 0; k < n;) {
        size_t e = k;
        size_t earliest = order[k];
        while (e < n && levelA[order[e]] == levelA[order[k]] && levelB[order[e]] == levelB[order[k]]) {
            earliest = std::min(earliest, order[e]);
            ++e;
        }
        buckets.push_back({levelA[order[k]], rankB(order[k]), k, e - k, earliest});
        k = e;
    }

    // From the last first-list level up: a bucket extends the best chain among buckets of strictly
    // later levels and strictly larger second-list levels. Updates wait until a whole level is
    // done so that buckets of one level never chain to each other.
    const size_t m = bLevels.size();
    PrefixMax after(m);  // indexed by reversed rank, so "larger rank" becomes a prefix
    size_t top = 0;
    for (size_t end = buckets.size(); end > 0;) {
        size_t begin = end;
        while (begin > 0 && buckets[begin - 1].a == buckets[end - 1].a) --begin;
        for (size_t k = begin; k < end; ++k) {
            Bucket& bk = buckets[k];
            bk.best = bk.count + after.Max(m - 1 - bk.b);
            top = std::max(top, bk.best);
        }
        for (size_t k = begin; k < end; ++k) after.Raise(m - 1 - buckets[k].b, buckets[k].best);
        end = begin;
    }

    // Walk the levels in order, taking at each the bucket that continues a largest chain and holds
    // the earliest record. A lower level always holds earlier records than a higher one, so taking
    // the first level that can continue is what keeps the earliest records.
    size_t need = top;
    bool haveLast = false;
    size_t lastB = 0;
    for (size_t k = 0; k < buckets.size() && need > 0;) {
        size_t e = k;
        const Bucket* pick = nullptr;
        while (e < buckets.size() && buckets[e].a == buckets[k].a) {
            const Bucket& bk = buckets[e];
            if (bk.best == need && (!haveLast || bk.b > lastB) &&
                (!pick || bk.earliest < pick->earliest))
                pick = &bk;
            ++e;
        }
        if (pick) {
            for (size_t r = pick->first; r < pick->first + pick->count; ++r) keep[order[r]] = true;
            need -= pick->count;
            lastB = pick->b;
            haveLast = true;
        }
        k = e;
    }
    return keep;
}

ListDiff DiffLists(const CRLData& a, int versionA, const CRLData& b, int versionB) {
    ListDiff d;
    ListFacts fa(a), fb(b);
    CompareHeader(a, versionA, b, versionB, d);
    CompareAcquisitions(fa, fb, d);

    for (size_t i = 0; i < fa.SystemCount(); ++i) {
        d.geoA.push_back(fa.Facts(i).geo);
        d.levelA.push_back(fa.Facts(i).level);
    }
    for (size_t j = 0; j < fb.SystemCount(); ++j) {
        d.geoB.push_back(fb.Facts(j).geo);
        d.levelB.push_back(fb.Facts(j).level);
    }

    d.sysPairs = PairSystems(fa, fb);
    std::vector<bool> pairedA(fa.SystemCount(), false), pairedB(fb.SystemCount(), false);
    for (const auto& p : d.sysPairs) pairedA[p.a] = pairedB[p.b] = true;
    for (size_t i = 0; i < pairedA.size(); ++i)
        if (!pairedA[i]) d.sysRemoved.push_back(i);
    for (size_t j = 0; j < pairedB.size(); ++j)
        if (!pairedB[j]) d.sysAdded.push_back(j);

    d.geoMap = MapGeos(d.sysPairs, d, fa.GeoCount());

    // Priority only means something between records that stayed together: per first-list GEO,
    // the pairs that landed in its corresponding GEO. Pairs are ordered by first-list index and
    // GEOs rise along the list, so each GEO's pairs are one run.
    std::vector<bool> priorityMoved(d.sysPairs.size(), false);
    for (size_t k = 0; k < d.sysPairs.size();) {
        const int g = d.geoA[d.sysPairs[k].a];
        size_t e = k;
        std::vector<size_t> members;
        std::vector<int> la, lb;
        while (e < d.sysPairs.size() && d.geoA[d.sysPairs[e].a] == g) {
            const RecordPair& p = d.sysPairs[e];
            if (d.geoB[p.b] == d.geoMap[static_cast<size_t>(g)]) {
                members.push_back(e);
                la.push_back(d.levelA[p.a]);
                lb.push_back(d.levelB[p.b]);
            }
            ++e;
        }
        const std::vector<bool> keep = KeepConsistentPriorities(la, lb);
        for (size_t r = 0; r < members.size(); ++r)
            if (!keep[r]) priorityMoved[members[r]] = true;
        k = e;
    }

    auto acqContent = [](const ListFacts& f, size_t sys) {
        const size_t acq = f.System(sys).GetAcqIndex();
        return acq < f.AcquisitionCount() ? f.AcqContentKey(acq) : "missing " + std::to_string(acq);
    };
    for (size_t k = 0; k < d.sysPairs.size(); ++k) {
        const RecordPair& p = d.sysPairs[k];
        const CSysItem& x = fa.System(p.a);
        const CSysItem& y = fb.System(p.b);
        SystemChange c{p.a, p.b, {}};
        if (x.GetNegPref() != y.GetNegPref()) c.fields.push_back("negPref");
        // A negative record's roaming indicator is never shown to the user, so it cannot change.
        if (x.IsPreferred() && y.IsPreferred() && x.GetRoamInd() != y.GetRoamInd())
            c.fields.push_back("roamInd");
        if (x.GetAssnIncluded() != y.GetAssnIncluded()) c.fields.push_back("assnIncluded");
        if (x.GetAssnTag() != y.GetAssnTag()) c.fields.push_back("assnTag");
        if (x.GetPnAssn() != y.GetPnAssn()) c.fields.push_back("pnAssn");
        if (x.GetDataAssn() != y.GetDataAssn()) c.fields.push_back("dataAssn");
        if (acqContent(fa, p.a) != acqContent(fb, p.b)) c.fields.push_back("acquisition");
        if (d.geoB[p.b] != d.geoMap[static_cast<size_t>(d.geoA[p.a])]) c.fields.push_back("geo");
        if (priorityMoved[k]) c.fields.push_back("priority");
        if (!c.fields.empty()) d.sysChanged.push_back(std::move(c));
    }
    return d;
}

}  // namespace Tarn::Analysis
