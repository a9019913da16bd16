#include "analysis/DiffReport.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "analysis/ListFacts.h"
#include "formats/FileKinds.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItem.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;

const char* const kGreen = "\033[32m";
const char* const kRed = "\033[31m";
const char* const kYellow = "\033[33m";
const char* const kBold = "\033[1m";
const char* const kReset = "\033[0m";

class Painter {
public:
    explicit Painter(bool on) : on_(on) {}
    std::string operator()(const char* colour, const std::string& text) const {
        return on_ ? colour + text + kReset : text;
    }

private:
    bool on_;
};

bool IsMmss(FileKind kind) {
    switch (kind) {
        case FileKind::Mspl:
        case FileKind::Bst3Gpp:
        case FileKind::Mlpl:
        case FileKind::Plmn:
        case FileKind::TechOrder:
        case FileKind::Laf: return true;
        default: return false;
    }
}

// A missing path or a folder gets its own plain message before any reader guesses at a kind.
bool Readable(const std::string& path, std::string& error) {
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (!std::filesystem::exists(status)) {
        error = path + ": no such file";
        return false;
    }
    if (std::filesystem::is_directory(status)) {
        error = path + ": is a folder, not a file";
        return false;
    }
    return true;
}

std::string Value(const json& v) { return v.is_string() ? v.get<std::string>() : v.dump(); }

std::string HeaderText(const std::vector<HeaderChange>& header, const Painter& paint) {
    if (header.empty()) return {};
    std::string out = paint(kBold, "header") + "\n";
    for (const auto& h : header)
        out += "  " + paint(kYellow, "~ " + h.field + ": " + Value(h.a) + " -> " + Value(h.b)) + "\n";
    return out;
}

std::string Plural(size_t n, const std::string& one, const std::string& many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string Spaced(std::string line) {
    std::replace(line.begin(), line.end(), '\t', ' ');
    return line;
}

// "[3] 6 25 26": an acquisition record by index and content, for one field of a system change.
std::string AcqRef(const ListFacts& f, size_t sys) {
    const size_t acq = f.System(sys).GetAcqIndex();
    if (acq >= f.AcquisitionCount()) return "[" + std::to_string(acq) + "] (no such record)";
    std::string line = AcquisitionLine(f, acq);
    const size_t tab = line.find('\t');
    return "[" + std::to_string(acq) + "] " + Spaced(tab == std::string::npos ? line : line.substr(tab + 1));
}

std::string FieldChange(const std::string& field, const ListDiff& d, const ListFacts& fa,
                        const ListFacts& fb, size_t a, size_t b) {
    const CSysItem& x = fa.System(a);
    const CSysItem& y = fb.System(b);
    auto pair = [](const std::string& p, const std::string& q) { return p + " -> " + q; };
    auto num = [&](unsigned p, unsigned q) { return pair(std::to_string(p), std::to_string(q)); };
    std::string change;
    if (field == "negPref")
        change = pair(x.IsPreferred() ? "preferred" : "negative", y.IsPreferred() ? "preferred" : "negative");
    else if (field == "roamInd") change = num(x.GetRoamInd(), y.GetRoamInd());
    else if (field == "assnIncluded") change = num(x.GetAssnIncluded(), y.GetAssnIncluded());
    else if (field == "assnTag") change = num(x.GetAssnTag(), y.GetAssnTag());
    else if (field == "pnAssn") change = num(x.GetPnAssn(), y.GetPnAssn());
    else if (field == "dataAssn") change = num(x.GetDataAssn(), y.GetDataAssn());
    else if (field == "acquisition") change = pair(AcqRef(fa, a), AcqRef(fb, b));
    else if (field == "geo")
        change = pair("GEO " + std::to_string(d.geoA[a]), "GEO " + std::to_string(d.geoB[b]));
    else if (field == "priority")
        change = pair("level " + std::to_string(d.levelA[a]), "level " + std::to_string(d.levelB[b]));
    return field + ": " + change;
}

json Indices(const std::vector<size_t>& v) {
    json out = json::array();
    for (size_t i : v) out.push_back(i);
    return out;
}

json HeaderJson(const std::vector<HeaderChange>& header) {
    json out = json::array();
    for (const auto& h : header) out.push_back({{"field", h.field}, {"a", h.a}, {"b", h.b}});
    return out;
}

}  // namespace

bool LoadListPair(const std::string& pathA, const std::string& pathB, int part,
                  std::unique_ptr<LoadedList>& listA, std::unique_ptr<LoadedList>& listB,
                  std::string& error) {
    if (!Readable(pathA, error) || !Readable(pathB, error)) return false;
    if (part != 1 && part != 2) {
        error = "--part must be 1 or 2";
        return false;
    }
    for (const std::string* path : {&pathA, &pathB})
        if (IsMmss(KindForOpen(*path))) {
            const FileKindInfo* info = FindFileKind(KindForOpen(*path));
            error = *path + " is an " + (info ? info->name : std::string("MMSS")) +
                    " file: only roaming lists have a behaviour to compare";
            return false;
        }
    // The part picks a list of each concatenated file; a plain list beside it is taken whole,
    // so the second list of a release can be checked against the list it was built from.
    auto load = [part, &error](const std::string& path) {
        auto list = LoadRoamingList(path, error, 1);
        if (list && part == 2 && list->form == ListForm::Concatenated) list = LoadRoamingList(path, error, 2);
        return list;
    };
    listA = load(pathA);
    if (!listA) return false;
    listB = load(pathB);
    if (!listB) return false;
    if (part == 2 && listA->form != ListForm::Concatenated && listB->form != ListForm::Concatenated) {
        error = "--part 2 asks for the second list of a concatenated roaming list, and neither " + pathA +
                " nor " + pathB + " is one";
        return false;
    }
    return true;
}

std::unique_ptr<FileComparison> CompareFiles(const std::string& pathA, const std::string& pathB,
                                             int part, std::string& error) {
    if (!Readable(pathA, error) || !Readable(pathB, error)) return nullptr;
    if (part != 1 && part != 2) {
        error = "--part must be 1 or 2";
        return nullptr;
    }
    const FileKind kindA = KindForOpen(pathA), kindB = KindForOpen(pathB);
    auto result = std::make_unique<FileComparison>();
    if (!IsMmss(kindA) && !IsMmss(kindB)) {
        if (!LoadListPair(pathA, pathB, part, result->listA, result->listB, error)) return nullptr;
        result->list = DiffLists(*result->listA->data, result->listA->version,
                                 *result->listB->data, result->listB->version);
        return result;
    }
    auto kindName = [](FileKind k) {
        const FileKindInfo* info = FindFileKind(k);
        return IsMmss(k) && info ? info->name + " file" : std::string("roaming list");
    };
    if (IsMmss(kindA) != IsMmss(kindB) || kindA != kindB) {
        error = pathA + " is " + (IsMmss(kindA) ? "an " : "a ") + kindName(kindA) + " and " + pathB +
                " is " + (IsMmss(kindB) ? "an " : "a ") + kindName(kindB) +
                ": only files of one kind compare";
        return nullptr;
    }
    if (part != 1) {
        error = "--part picks a list of a concatenated roaming list; " + pathA + " is an " +
                kindName(kindA);
        return nullptr;
    }
    auto docA = ReadFileDocument(pathA, error);
    if (!docA) return nullptr;
    auto docB = ReadFileDocument(pathB, error);
    if (!docB) return nullptr;
    // EHPLMN, OPLMN and UPLMN lists share a file kind but not a layout or a purpose.
    if (docA->KindName() != docB->KindName()) {
        error = pathA + " is an " + docA->KindName() + " file and " + pathB + " is an " +
                docB->KindName() + " file: only files of one kind compare";
        return nullptr;
    }
    json ja, jb;
    docA->ToJson(ja);
    docB->ToJson(jb);
    result->roamingLists = false;
    result->mmss = DiffMmss(ja, jb);
    return result;
}

std::string ListDiffSummary(const ListDiff& d) {
    return std::to_string(d.sysAdded.size()) + " added, " + std::to_string(d.sysRemoved.size()) +
           " removed, " + std::to_string(d.sysChanged.size()) + " changed systems; " +
           std::to_string(d.acqAdded.size()) + " added, " + std::to_string(d.acqRemoved.size()) +
           " removed, " + std::to_string(d.acqChanged.size()) + " changed acquisition records; " +
           Plural(d.header.size(), "header change", "header changes");
}

std::vector<DiffSection> ListDiffSections(const ListDiff& d) {
    using Kind = DiffEntry::Kind;
    const size_t geosB = d.geoB.empty() ? 0 : static_cast<size_t>(d.geoB.back()) + 1;
    std::vector<DiffSection> geos(geosB);
    std::map<int, DiffSection> orphans;  // first-list GEO -> its removed records
    for (size_t j : d.sysAdded) geos[static_cast<size_t>(d.geoB[j])].entries.push_back({Kind::Added, true, 0, j, nullptr});
    for (size_t i : d.sysRemoved) {
        const int g = d.geoMap[static_cast<size_t>(d.geoA[i])];
        DiffSection& s = g < 0 ? orphans[d.geoA[i]] : geos[static_cast<size_t>(g)];
        s.entries.push_back({Kind::Removed, true, i, 0, nullptr});
    }
    // Added and removed entries arrive in index order above; moving the removed ones behind the
    // added ones of each GEO keeps both in order.
    for (auto& s : geos)
        std::stable_partition(s.entries.begin(), s.entries.end(),
                              [](const DiffEntry& e) { return e.kind == Kind::Added; });
    std::vector<std::vector<DiffEntry>> changed(geosB);
    for (const auto& c : d.sysChanged) changed[static_cast<size_t>(d.geoB[c.b])].push_back({Kind::Changed, true, c.a, c.b, &c});
    for (size_t g = 0; g < geosB; ++g) {
        std::sort(changed[g].begin(), changed[g].end(), [](const DiffEntry& x, const DiffEntry& y) { return x.b < y.b; });
        geos[g].entries.insert(geos[g].entries.end(), changed[g].begin(), changed[g].end());
    }

    std::vector<std::vector<int>> fromA(geosB);
    for (size_t g = 0; g < d.geoMap.size(); ++g)
        if (d.geoMap[g] >= 0) fromA[static_cast<size_t>(d.geoMap[g])].push_back(static_cast<int>(g));
    std::vector<DiffSection> out;
    for (size_t g = 0; g < geosB; ++g) {
        if (geos[g].entries.empty()) continue;
        // The heading says where a GEO came from when its number is not the whole story.
        std::string title = "GEO " + std::to_string(g);
        const auto& origins = fromA[g];
        if (origins.empty()) {
            title += " (new)";
        } else if (origins.size() > 1 || origins[0] != static_cast<int>(g)) {
            title += origins.size() > 1 ? " (first list: GEOs " : " (first list: GEO ";
            for (size_t k = 0; k < origins.size(); ++k) title += (k ? ", " : "") + std::to_string(origins[k]);
            title += ")";
        }
        geos[g].title = std::move(title);
        out.push_back(std::move(geos[g]));
    }
    for (auto& [g, s] : orphans) {
        s.title = "GEO " + std::to_string(g) + " of the first list (gone)";
        out.push_back(std::move(s));
    }
    DiffSection acq{"acquisition records", {}};
    for (size_t j : d.acqAdded) acq.entries.push_back({Kind::Added, false, 0, j, nullptr});
    for (size_t i : d.acqRemoved) acq.entries.push_back({Kind::Removed, false, i, 0, nullptr});
    for (const auto& c : d.acqChanged) acq.entries.push_back({Kind::Changed, false, c.a, c.b, nullptr});
    if (!acq.entries.empty()) out.push_back(std::move(acq));
    return out;
}

std::vector<std::string> DiffEntryLines(const ListDiff& d, const DiffEntry& e, const ListFacts& fa,
                                        const ListFacts& fb, const SystemLabel& label) {
    using Kind = DiffEntry::Kind;
    const char* sign = e.kind == Kind::Added ? "+ " : e.kind == Kind::Removed ? "- " : "~ ";
    std::vector<std::string> lines;
    if (!e.system) {
        // A changed acquisition record shows both contents: its index alone says nothing.
        const bool first = e.kind != Kind::Added;
        lines.push_back(sign + AcquisitionLine(first ? fa : fb, first ? e.a : e.b));
        if (e.kind == Kind::Changed) lines.push_back("  -> " + AcquisitionLine(fb, e.b));
        return lines;
    }
    const ListFacts& f = e.kind == Kind::Removed ? fa : fb;
    const size_t index = e.kind == Kind::Removed ? e.a : e.b;
    std::string line = sign + SystemLine(f, index);
    if (label) {
        const std::string words = label(f.System(index));
        if (!words.empty()) line += "\t# " + words;
    }
    if (e.kind == Kind::Changed && e.a != e.b) line += "\t(was " + std::to_string(e.a) + ")";
    lines.push_back(std::move(line));
    if (e.change)
        for (const auto& field : e.change->fields) lines.push_back("    " + FieldChange(field, d, fa, fb, e.a, e.b));
    return lines;
}

std::string ListDiffText(const ListDiff& d, const CRLData& a, const CRLData& b, const TextStyle& style) {
    const Painter paint(style.color);
    ListFacts fa(a), fb(b);
    std::string out = HeaderText(d.header, paint);
    for (const auto& section : ListDiffSections(d)) {
        out += paint(kBold, section.title) + "\n";
        for (const auto& e : section.entries) {
            const char* colour = e.kind == DiffEntry::Kind::Added     ? kGreen
                                 : e.kind == DiffEntry::Kind::Removed ? kRed
                                                                      : kYellow;
            const auto lines = DiffEntryLines(d, e, fa, fb, style.label);
            out += "  " + paint(colour, lines[0]) + "\n";
            for (size_t k = 1; k < lines.size(); ++k)
                out += "  " + (e.system ? lines[k] : paint(colour, lines[k])) + "\n";
        }
    }
    out += ListDiffSummary(d) + "\n";
    return out;
}

json ListDiffJson(const ListDiff& d, const CRLData* a, const CRLData* b, const SystemJson& operators) {
    json acqChanged = json::array();
    for (const auto& c : d.acqChanged) acqChanged.push_back({{"a", c.a}, {"b", c.b}});
    std::unique_ptr<ListFacts> fa, fb;
    const bool named = operators && a && b;
    if (named) {
        fa = std::make_unique<ListFacts>(*a);
        fb = std::make_unique<ListFacts>(*b);
    }
    json sysChanged = json::array();
    for (const auto& c : d.sysChanged) {
        json item = {{"a", c.a}, {"b", c.b}, {"fields", c.fields}};
        if (named) {
            json ops = operators(fb->System(c.b));
            if (!ops.is_null() && !ops.empty()) item["operators"] = std::move(ops);
        }
        sysChanged.push_back(std::move(item));
    }
    json system = {{"added", Indices(d.sysAdded)}, {"removed", Indices(d.sysRemoved)}, {"changed", sysChanged}};
    if (named) {
        json added = json::object(), removed = json::object();
        for (size_t j : d.sysAdded) {
            json ops = operators(fb->System(j));
            if (!ops.is_null() && !ops.empty()) added[std::to_string(j)] = std::move(ops);
        }
        for (size_t i : d.sysRemoved) {
            json ops = operators(fa->System(i));
            if (!ops.is_null() && !ops.empty()) removed[std::to_string(i)] = std::move(ops);
        }
        system["operators"] = {{"added", added}, {"removed", removed}};
    }
    return {{"header", HeaderJson(d.header)},
            {"acquisition",
             {{"added", Indices(d.acqAdded)}, {"removed", Indices(d.acqRemoved)}, {"changed", acqChanged}}},
            {"system", system},
            {"same", d.Same()}};
}

std::string MmssRecordText(const json& record) {
    if (!record.is_object()) return Value(record);
    std::string out;
    for (const auto& [key, value] : record.items()) {
        if (key == "index") continue;
        const bool isName = key.size() > 4 && key.compare(key.size() - 4, 4, "Name") == 0;
        if (isName && record.contains(key.substr(0, key.size() - 4))) continue;
        if (!out.empty()) out += " ";
        // Inner records are compared in tables of their own; here their count is enough.
        if (value.is_array() && !value.empty() && value.front().is_object()) {
            out += key + "=(" + std::to_string(value.size()) + ")";
            continue;
        }
        out += key + "=" + Value(value);
        auto name = record.find(key + "Name");
        if (name != record.end()) out += " (" + Value(*name) + ")";
    }
    return out;
}

std::string MmssDiffSummary(const MmssDiff& d) {
    size_t added = 0, removed = 0, changed = 0;
    for (const auto& t : d.tables) {
        added += t.added.size();
        removed += t.removed.size();
        changed += t.changed.size();
    }
    return std::to_string(added) + " added, " + std::to_string(removed) + " removed, " +
           std::to_string(changed) + " changed records; " +
           Plural(d.header.size(), "header change", "header changes");
}

std::string MmssDiffText(const MmssDiff& d, const TextStyle& style) {
    const Painter paint(style.color);
    std::string out = HeaderText(d.header, paint);
    for (const auto& t : d.tables) {
        if (t.Same()) continue;
        out += paint(kBold, t.name) + "\n";
        for (size_t j : t.added)
            out += "  " + paint(kGreen, "+ [" + std::to_string(j) + "] " + MmssRecordText(t.recordsB[j])) + "\n";
        for (size_t i : t.removed)
            out += "  " + paint(kRed, "- [" + std::to_string(i) + "] " + MmssRecordText(t.recordsA[i])) + "\n";
        for (const auto& c : t.changed) {
            out += "  " + paint(kYellow, "~ [" + std::to_string(c.b) + "] " + MmssRecordText(t.recordsB[c.b])) + "\n";
            const json& ra = t.recordsA[c.a];
            const json& rb = t.recordsB[c.b];
            for (const auto& field : c.fields) {
                auto side = [&](const json& r) {
                    if (!r.is_object()) return Value(r);
                    auto v = r.find(field);
                    if (v == r.end()) return std::string("(none)");
                    std::string text = Value(*v);
                    auto name = r.find(field + "Name");
                    if (name != r.end()) text += " (" + Value(*name) + ")";
                    return text;
                };
                out += "      " + field + ": " + side(ra) + " -> " + side(rb) + "\n";
            }
        }
    }
    out += MmssDiffSummary(d) + "\n";
    return out;
}

json MmssDiffJson(const MmssDiff& d) {
    json tables = json::array();
    for (const auto& t : d.tables) {
        json changed = json::array();
        for (const auto& c : t.changed) changed.push_back({{"a", c.a}, {"b", c.b}, {"fields", c.fields}});
        tables.push_back({{"name", t.name},
                          {"added", Indices(t.added)},
                          {"removed", Indices(t.removed)},
                          {"changed", changed}});
    }
    return {{"kind", d.kind}, {"header", HeaderJson(d.header)}, {"tables", tables}, {"same", d.Same()}};
}

}  // namespace Tarn::Analysis
