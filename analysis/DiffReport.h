// The two faces of a diff: loading the two files it compares (of whatever kind), the text a
// reviewer reads top to bottom and the one JSON object scripts read.
#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "analysis/Diff.h"
#include "analysis/DiffMmss.h"
#include "analysis/ListSource.h"

namespace Tarn {
class CRLData;
class CSysItem;
}  // namespace Tarn

namespace Tarn::Analysis {

class ListFacts;

// Two files read and compared: two roaming lists (in any of their forms and versions) or two
// MMSS files of the same kind.
struct FileComparison {
    bool roamingLists = true;
    std::unique_ptr<LoadedList> listA, listB;
    ListDiff list;
    MmssDiff mmss;

    bool Same() const { return roamingLists ? list.Same() : mmss.Same(); }
};

// Reads two roaming lists to compare, in any of their forms: `part` (1 or 2) picks the list of
// each concatenated file, a plain list is taken whole, and part 2 needs one concatenated file.
// False, with one clear line in `error`, when a file is missing, unreadable or not a roaming list.
bool LoadListPair(const std::string& pathA, const std::string& pathB, int part,
                  std::unique_ptr<LoadedList>& listA, std::unique_ptr<LoadedList>& listB,
                  std::string& error);

// Reads and compares the files at `pathA` and `pathB`; `part` (1 or 2) picks the list of each
// concatenated roaming list (a plain list is taken whole; part 2 needs one concatenated file). Nothing, with one clear line in `error`, when a file is missing or
// unreadable, when the two are of different kinds, or when `part` does not apply.
std::unique_ptr<FileComparison> CompareFiles(const std::string& pathA, const std::string& pathB,
                                             int part, std::string& error);

// Optional JSON about a system record: the "operators" array naming who runs it; null for none.
using SystemJson = std::function<nlohmann::json(const CSysItem&)>;
// Optional words about a system record, such as the operators it names; empty for none.
using SystemLabel = std::function<std::string(const CSysItem&)>;

// One line of a diff as a reviewer reads it: a record added (an index of the second list), removed
// (of the first) or changed (both).
struct DiffEntry {
    enum class Kind { Added, Removed, Changed };
    Kind kind = Kind::Changed;
    bool system = true;  // false: an acquisition record
    size_t a = 0, b = 0;
    const SystemChange* change = nullptr;  // a changed system
};

// A heading and its entries: per GEO of the second list its added, removed and changed systems
// (a removed record goes where its GEO went), then the GEOs of the first list none of whose
// records stayed, then the acquisition records. Sections without entries are left out.
struct DiffSection {
    std::string title;  // "GEO 3", "GEO 4 (first list: GEO 2)", "acquisition records", ...
    std::vector<DiffEntry> entries;
};
std::vector<DiffSection> ListDiffSections(const ListDiff& diff);

// The lines of one entry: "+ <text-form line>" (with the label after a tab and "# " when there is
// one), then for a changed system one "field: old -> new" line per field, for a changed
// acquisition record "-> <new line>". The facts are those of the two lists compared.
std::vector<std::string> DiffEntryLines(const ListDiff& diff, const DiffEntry& entry,
                                        const ListFacts& a, const ListFacts& b,
                                        const SystemLabel& label = {});

struct TextStyle {
    bool color = false;  // ANSI colours: green added, red removed, yellow changed
    SystemLabel label;
};

// The header changes, then per GEO of the second list the added, removed and changed systems as
// their text-form lines (changed fields old -> new below them), then the acquisition changes,
// then one summary line. Lines end in "\n".
std::string ListDiffText(const ListDiff& diff, const CRLData& a, const CRLData& b,
                         const TextStyle& style = {});
// {"header": [{field, a, b}], "acquisition": {added, removed, changed: [{a, b}]},
//  "system": {added, removed, changed: [{a, b, fields}]}, "same": bool}. With `operators` (and
// both lists), a changed system it names gains "operators", and "system" gains "operators":
// {"added": {"<index>": [...]}, "removed": {"<index>": [...]}} for the added and removed ones.
nlohmann::json ListDiffJson(const ListDiff& diff, const CRLData* a = nullptr,
                            const CRLData* b = nullptr, const SystemJson& operators = {});

// The summary line alone ("2 added, 1 removed, 3 changed systems; ...").
std::string ListDiffSummary(const ListDiff& diff);

std::string MmssDiffText(const MmssDiff& diff, const TextStyle& style = {});
// {"kind", "header": [{field, a, b}], "tables": [{name, added, removed, changed: [{a, b,
//  fields}]}], "same": bool}.
nlohmann::json MmssDiffJson(const MmssDiff& diff);
std::string MmssDiffSummary(const MmssDiff& diff);

// What a record of an MMSS table says, as "field=value" pairs with names beside numbers.
std::string MmssRecordText(const nlohmann::json& record);

}  // namespace Tarn::Analysis
