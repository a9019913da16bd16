#include "analysis/CsvExchange.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "analysis/ListFacts.h"
#include "analysis/Providers.h"
#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/MemoryGrid.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/Validation.h"

namespace Tarn::Analysis {
namespace {

namespace fs = std::filesystem;

using Creator = std::function<std::unique_ptr<CRLItem>(int)>;

// As wide as the editor's grids: a GWL row reaches column 299.
constexpr int kGridColumns = 300;
constexpr size_t kPrefixLength = 5;

const char* const kTypeTitle = "Roaming List Type";
const char* const kPrefOnlyTitle = "Preferred Only";
const char* const kDefRoamIndTitle = "Default Roaming Indicator";
const char* const kPrefListIdTitle = "Preferred Roaming List ID";
const char* const kSsprTitle = "SSPR_P_REV";
const char* const kReservedTitle = "Reserved";
const char* const kPrefixTitle = "Prefix";
const char* const kAcqTypeTitle = "Acq Type";
const char* const kSysTypeTitle = "Sys Type";

std::string Trim(const std::string& s) {
    const auto b = s.find_first_not_of(" \t");
    if (b == std::string::npos) return {};
    return s.substr(b, s.find_last_not_of(" \t") - b + 1);
}

std::string Upper(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

// Grid messages may span two lines in a message box; a report line holds one.
std::string OneLine(std::string text) {
    std::string out;
    for (char c : text) {
        if (c == '\r') continue;
        if (c == '\n') {
            while (!out.empty() && out.back() == ' ') out.pop_back();
            out += ' ';
            continue;
        }
        if (c == ' ' && !out.empty() && out.back() == ' ') continue;
        out += c;
    }
    return out;
}

std::string At(const std::string& file, size_t row, size_t column, const std::string& message) {
    std::string where = file;
    if (row) where += ":" + std::to_string(row);
    if (row && column) where += ":" + std::to_string(column);
    return where + ": " + OneLine(message);
}

std::string Hex(const std::vector<uint8_t>& bytes) {
    static const char* const kDigits = "0123456789ABCDEF";
    std::string out;
    for (uint8_t b : bytes) out += {kDigits[b >> 4], kDigits[b & 0xF]};
    return out;
}

// One record as its grid row shows it, the titles its row gives the columns, and what the row
// cannot carry.
struct RecordRow {
    CsvRow cells;
    std::vector<std::string> headings;
    std::string hidden;
};

// The record is written at its own row, since a row may read differently by its place (the
// first system record always starts a new GEO).
RecordRow MakeRecordRow(const CRLItem& item, int row, int type, const CNameList& types,
                        const std::string& tableName,
                        const std::function<std::unique_ptr<CRLItem>()>& fresh,
                        const GridContext& context) {
    RecordRow out;
    MemoryGrid grid(tableName, kGridColumns, row + 1);
    grid.SetCellText(0, row, types.GetName(type));
    item.WriteToGrid(grid, row);
    int used = 1;
    for (int c = 0; c < kGridColumns; ++c)
        if (!grid.GetCellText(c, row).empty()) used = c + 1;
    for (int c = 0; c < used; ++c) out.cells.push_back(grid.GetCellText(c, row));

    MemoryGrid titles(tableName, kGridColumns, 0);
    item.OnGridHeading(titles, kGridHeadingEvent);
    for (int c = 0; c < used; ++c) out.headings.push_back(titles.GetColumnHeading(c));

    // A record the grid alone rebuilds into the same fields needs nothing more. A type no list
    // names ("Invalid") can only come back through its hidden fields.
    int named = -1;
    std::unique_ptr<CRLItem> rebuilt =
        types.FindValue(types.GetName(type), named) && named == type ? fresh() : nullptr;
    try {
        if (rebuilt) rebuilt->ReadFromGrid(grid, row, context);
    } catch (const std::exception&) {
        rebuilt.reset();
    }
    nlohmann::json mine, theirs;
    item.ToJson(mine);
    if (rebuilt) rebuilt->ToJson(theirs);
    if (!rebuilt || mine != theirs) {
        // The names beside numbers only inform, and reading ignores them.
        nlohmann::json kept = nlohmann::json::object();
        for (const auto& [key, value] : mine.items())
            if (key.size() < 4 || key.compare(key.size() - 4, 4, "Name") != 0) kept[key] = value;
        kept["type"] = type;
        out.hidden = kept.dump();
    }
    return out;
}

// Column titles over rows of differing record types: each column names every title the rows
// give it, in order of first appearance ("SID / Subnet Length").
CsvRow MergeTitles(const std::vector<RecordRow>& rows, const char* typeTitle) {
    std::vector<std::vector<std::string>> seen;
    for (const auto& row : rows) {
        if (seen.size() < row.headings.size()) seen.resize(row.headings.size());
        for (size_t c = 1; c < row.headings.size(); ++c) {
            const std::string& h = row.headings[c];
            if (!h.empty() && std::find(seen[c].begin(), seen[c].end(), h) == seen[c].end())
                seen[c].push_back(h);
        }
    }
    CsvRow titles{typeTitle};
    for (size_t c = 1; c < seen.size(); ++c) {
        std::string title;
        for (const auto& h : seen[c]) title += (title.empty() ? "" : " / ") + h;
        titles.push_back(title);
    }
    return titles;
}

ExchangeTable MakeGridTable(const char* name, const char* typeTitle,
                            std::vector<RecordRow>& records,
                            const std::vector<CsvRow>& informational,
                            const CsvRow& informationalTitles) {
    ExchangeTable table;
    table.name = name;
    table.titles = MergeTitles(records, typeTitle);
    const size_t width = table.titles.size();
    const bool anyHidden = std::any_of(records.begin(), records.end(),
                                       [](const RecordRow& r) { return !r.hidden.empty(); });
    if (anyHidden) table.titles.push_back(kHiddenTitle);
    table.titles.insert(table.titles.end(), informationalTitles.begin(), informationalTitles.end());
    for (size_t i = 0; i < records.size(); ++i) {
        CsvRow row = std::move(records[i].cells);
        row.resize(width);
        if (anyHidden) row.push_back(records[i].hidden);
        if (i < informational.size())
            row.insert(row.end(), informational[i].begin(), informational[i].end());
        table.rows.push_back(std::move(row));
    }
    return table;
}

// ---- Reading -------------------------------------------------------------------------------

bool IsBlankRow(const CsvRow& row) {
    return std::all_of(row.begin(), row.end(), [](const std::string& c) { return Trim(c).empty(); });
}

// The rows of one CSV file with trailing blank rows dropped; nothing with an error on a fault.
std::optional<std::vector<CsvRow>> ReadRows(const CsvSource& source,
                                            std::vector<std::string>& errors) {
    std::vector<CsvRow> rows;
    CsvFault fault;
    if (!ReadCsv(source.text, rows, fault)) {
        errors.push_back(At(source.name, fault.row, fault.column, fault.message));
        return std::nullopt;
    }
    while (!rows.empty() && IsBlankRow(rows.back())) rows.pop_back();
    if (rows.empty()) {
        errors.push_back(At(source.name, 0, 0, "the file is empty; its first row names the columns"));
        return std::nullopt;
    }
    return rows;
}

bool ParseNumber(const std::string& text, unsigned max, unsigned& value) {
    const std::string t = Trim(text);
    if (t.empty() || t.size() > 10 ||
        !std::all_of(t.begin(), t.end(), [](unsigned char c) { return c >= '0' && c <= '9'; }))
        return false;
    const unsigned long long v = std::stoull(t);
    if (v > max) return false;
    value = static_cast<unsigned>(v);
    return true;
}

int ParseVersion(const std::string& text) {
    const std::string t = Trim(text);
    int v = VersionFromName(t);
    if (v == 0 && t.size() == 1) {
        const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(t[0])));
        if (c >= 'A' && c <= 'E') v = c - 'A' + 1;
    }
    return v;
}

bool ParseHex(const std::string& text, std::vector<uint8_t>& bytes) {
    bytes.clear();
    const std::string t = Trim(text);
    if (t.size() % 2) return false;
    for (size_t i = 0; i < t.size(); i += 2) {
        const auto digit = [](char c) {
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            return -1;
        };
        const int hi = digit(t[i]), lo = digit(t[i + 1]);
        if (hi < 0 || lo < 0) return false;
        bytes.push_back(static_cast<uint8_t>(hi << 4 | lo));
    }
    return true;
}

bool ReadHeader(const CsvSource& source, ImportedList& out, CPropData& prop) {
    auto rows = ReadRows(source, out.errors);
    if (!rows) return false;
    const CsvRow& titles = (*rows)[0];
    if (rows->size() < 2) {
        out.errors.push_back(At(source.name, 2, 1, "the second row must hold the header's values"));
        return false;
    }
    for (size_t r = 2; r < rows->size(); ++r)
        if (!IsBlankRow((*rows)[r])) {
            out.errors.push_back(At(source.name, r + 1, 1, "the header holds one row of values"));
            return false;
        }
    const CsvRow& values = (*rows)[1];
    std::map<std::string, size_t> column;  // title -> 0-based column
    const size_t errorsBefore = out.errors.size();
    for (size_t c = 0; c < titles.size(); ++c) {
        const std::string title = Trim(titles[c]);
        const std::string value = c < values.size() ? Trim(values[c]) : std::string();
        if (title.empty()) {
            if (!value.empty())
                out.errors.push_back(At(source.name, 2, c + 1, "a value under no column title"));
            continue;
        }
        static const char* const kKnown[] = {kTypeTitle,       kPrefOnlyTitle, kDefRoamIndTitle,
                                             kPrefListIdTitle, kSsprTitle,     kReservedTitle,
                                             kPrefixTitle};
        if (std::none_of(std::begin(kKnown), std::end(kKnown),
                         [&](const char* k) { return title == k; })) {
            out.errors.push_back(At(source.name, 1, c + 1, "unknown header field \"" + title + "\""));
            continue;
        }
        if (!column.emplace(title, c).second)
            out.errors.push_back(At(source.name, 1, c + 1, "\"" + title + "\" appears twice"));
    }
    for (size_t c = titles.size(); c < values.size(); ++c)
        if (!Trim(values[c]).empty())
            out.errors.push_back(At(source.name, 2, c + 1, "a value under no column title"));
    for (const char* required : {kTypeTitle, kPrefOnlyTitle, kDefRoamIndTitle, kPrefListIdTitle})
        if (!column.count(required))
            out.errors.push_back(At(source.name, 1, 0, "the column \"" + std::string(required) +
                                                           "\" is missing"));
    if (out.errors.size() != errorsBefore) return false;

    const auto value = [&](const char* title) -> std::string {
        const auto it = column.find(title);
        if (it == column.end() || it->second >= values.size()) return {};
        return Trim(values[it->second]);
    };
    const auto fail = [&](const char* title, const std::string& message) {
        out.errors.push_back(At(source.name, 2, column.at(title) + 1, message));
    };

    out.version = ParseVersion(value(kTypeTitle));
    if (out.version == 0)
        fail(kTypeTitle, "unknown roaming list type \"" + value(kTypeTitle) +
                             "\" (use IS-683A .. IS-683E)");
    const std::string prefOnly = Upper(value(kPrefOnlyTitle));
    if (prefOnly == "TRUE" || prefOnly == "1")
        prop.prefOnly = true;
    else if (prefOnly == "FALSE" || prefOnly == "0")
        prop.prefOnly = false;
    else
        fail(kPrefOnlyTitle, "Preferred Only is TRUE or FALSE");
    // The property view's own checks and messages.
    if (auto issue = CheckHeaderFields(value(kDefRoamIndTitle), value(kPrefListIdTitle), &prop))
        fail(issue->messageId == Msg::DefaultRoamIndRange ? kDefRoamIndTitle : kPrefListIdTitle,
             issue->text);
    unsigned number = 0;
    prop.ssprPRev = 3;
    if (!value(kSsprTitle).empty()) {
        if (ParseNumber(value(kSsprTitle), 255, number))
            prop.ssprPRev = static_cast<uint8_t>(number);
        else
            fail(kSsprTitle, "SSPR_P_REV is a number from 0 to 255");
    }
    if (!value(kReservedTitle).empty()) {
        if (ParseNumber(value(kReservedTitle), 127, number))
            prop.reserved = static_cast<uint8_t>(number);
        else
            fail(kReservedTitle, "Reserved is a number from 0 to 127");
    }
    if (!value(kPrefixTitle).empty() &&
        (!ParseHex(value(kPrefixTitle), out.prefix) || out.prefix.size() != kPrefixLength ||
         (out.prefix[0] != 0x02 && out.prefix[0] != 0x03)))
        fail(kPrefixTitle, "the prefix is 5 bytes in hexadecimal, starting with 02 or 03");
    return out.errors.size() == errorsBefore;
}

// Where each grid column of a table sits in its CSV file, and the hidden fields column.
struct TableLayout {
    std::vector<size_t> gridColumns;  // grid column -> 0-based CSV column
    std::optional<size_t> hidden;
};

struct GridTable {
    std::string file;
    TableLayout layout;
    MemoryGrid grid;
    CRLItemList previous;  // per row: the record its hidden fields describe, or nothing
    std::vector<CsvRow> rows;
};

bool LoadGridTable(const CsvSource& source, const char* typeTitle, const char* tableName,
                   const Creator& create,
                   std::vector<std::string>& errors, GridTable& table) {
    auto rows = ReadRows(source, errors);
    if (!rows) return false;
    table.file = source.name;
    const CsvRow& titles = (*rows)[0];
    if (titles.empty() || Trim(titles[0]) != typeTitle) {
        errors.push_back(At(source.name, 1, 1,
                            "the first column must be \"" + std::string(typeTitle) +
                                "\": this is not a " + tableName + " export"));
        return false;
    }
    static const char* const kInformational[] = {kGeoTitle, kLevelTitle, kOperatorTitle,
                                                 kCountryTitle};
    for (size_t c = 0; c < titles.size(); ++c) {
        const std::string title = Trim(titles[c]);
        if (title == kHiddenTitle)
            table.layout.hidden = c;
        else if (std::none_of(std::begin(kInformational), std::end(kInformational),
                              [&](const char* k) { return title == k; }))
            table.layout.gridColumns.push_back(c);
    }
    const size_t errorsBefore = errors.size();
    table.rows.assign(rows->begin() + 1, rows->end());
    table.grid = MemoryGrid(tableName, kGridColumns, static_cast<int>(table.rows.size()));
    for (size_t r = 0; r < table.rows.size(); ++r) {
        const CsvRow& row = table.rows[r];
        const int gridRow = static_cast<int>(r);
        for (size_t c = titles.size(); c < row.size(); ++c)
            if (!Trim(row[c]).empty())
                errors.push_back(At(source.name, r + 2, c + 1, "a value beyond the last titled column"));
        for (size_t g = 0; g < table.layout.gridColumns.size(); ++g) {
            const size_t c = table.layout.gridColumns[g];
            if (c >= row.size() || row[c].empty()) continue;
            if (g >= static_cast<size_t>(kGridColumns)) {
                errors.push_back(At(source.name, r + 2, c + 1,
                                    "a value beyond the grid's last column (" +
                                        std::to_string(kGridColumns) + ")"));
                break;
            }
            table.grid.SetCellText(static_cast<int>(g), gridRow, row[c]);
        }
        std::unique_ptr<CRLItem> previous;
        if (table.layout.hidden && *table.layout.hidden < row.size() &&
            !Trim(row[*table.layout.hidden]).empty()) {
            const size_t c = *table.layout.hidden;
            const nlohmann::json json = nlohmann::json::parse(row[c], nullptr, false);
            const auto type = json.is_object() ? json.find("type") : json.end();
            if (json.is_discarded() || type == json.end() || !type->is_number_integer()) {
                errors.push_back(At(source.name, r + 2, c + 1,
                                    "the hidden fields are not a record's JSON form with its type"));
            } else if (previous = create(type->get<int>()); !previous) {
                errors.push_back(At(source.name, r + 2, c + 1,
                                    "the hidden fields name a record type this version lacks"));
            } else {
                try {
                    previous->FromJson(json);
                } catch (const std::exception& e) {
                    errors.push_back(At(source.name, r + 2, c + 1,
                                        std::string("the hidden fields do not read: ") + e.what()));
                    previous.reset();
                }
            }
        }
        table.previous.Add(std::move(previous));
    }
    return errors.size() == errorsBefore;
}

// The grid column of a name a drop-down list does not hold: the type cell when the type is not
// known, else the first drop-down cell of a fresh record of the row's type whose text is not
// one of its choices. Data errors name no column of their own; the user needs one.
int UnlistedNameColumn(const GridTable& table, int row, const CNameList& types,
                       const Creator& create) {
    int type = 0;
    if (!types.FindValue(Trim(table.grid.GetCellText(0, row)), type)) return 0;
    std::unique_ptr<CRLItem> fresh = create(type);
    if (!fresh) return 0;
    MemoryGrid shape(table.grid.GetTableName(), kGridColumns, row + 1);
    fresh->WriteToGrid(shape, row);
    for (int g = 1; g < kGridColumns; ++g) {
        const std::string text = Trim(table.grid.GetCellText(g, row));
        const ChoiceList choices = shape.GetCellChoices(g, row);
        if (text.empty() || shape.GetCellKind(g, row) != CellKind::DropDown || !choices) continue;
        if (std::find(choices->begin(), choices->end(), text) == choices->end()) return g;
    }
    return 0;
}

// A validation issue of a table, placed at its cell: grid row r is CSV row r + 2.
std::string Locate(const GridTable& table, const ValidationIssue& issue, const CNameList& types,
                   const Creator& create) {
    if (issue.row < 0) return At(table.file, 0, 0, issue.text);
    int gridColumn = issue.column;
    if (gridColumn < 0) gridColumn = UnlistedNameColumn(table, issue.row, types, create);
    size_t column = table.layout.gridColumns.empty() ? 1 : table.layout.gridColumns[0] + 1;
    if (static_cast<size_t>(gridColumn) < table.layout.gridColumns.size())
        column = table.layout.gridColumns[static_cast<size_t>(gridColumn)] + 1;
    return At(table.file, static_cast<size_t>(issue.row) + 2, column, issue.text);
}

// A cell the record read from its row does not own is a mistake in the sheet (a value shifted
// one column along, a count too small), never something to drop without a word.
void CheckStrayCells(const GridTable& table, const CRLItemList& items, const CNameList& types,
                     const std::function<int(const CRLItem&)>& typeOf,
                     std::vector<std::string>& errors) {
    for (size_t r = 0; r < items.GetSize() && r < table.rows.size(); ++r) {
        const CRLItem& item = *items.GetAt(r);
        const int row = static_cast<int>(r);
        MemoryGrid written(table.grid.GetTableName(), kGridColumns, row + 1);
        written.SetCellText(0, row, types.GetName(typeOf(item)));
        item.WriteToGrid(written, row);
        for (int g = 1; g < kGridColumns; ++g) {
            if (Trim(table.grid.GetCellText(g, row)).empty() ||
                !written.GetCellText(g, row).empty())
                continue;
            const size_t c = table.layout.gridColumns[static_cast<size_t>(g)];
            errors.push_back(At(table.file, r + 2, c + 1,
                                "this cell is not a field of the " + types.GetName(typeOf(item)) +
                                    " record of this row"));
        }
    }
}

int AcqTypeOf(const CRLItem& item) {
    const auto* acq = dynamic_cast<const CAcqItem*>(&item);
    return acq ? acq->GetAcqType() : -1;
}

int SysTypeOf(const CRLItem& item) {
    const auto* sys = dynamic_cast<const CSysItem*>(&item);
    return sys ? sys->GetSysType() : -1;
}

std::string ReadText(const fs::path& path, std::vector<std::string>& errors) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) {
        errors.push_back(error);  // the message names the file
        return {};
    }
    return std::string(bytes.begin(), bytes.end());
}

}  // namespace

ListTables ListToTables(const CRLData& data, int version, const std::vector<uint8_t>& prefix,
                        const ProviderDirectory& providers) {
    ListTables tables;
    const CPropData& prop = data.GetProperties();
    const bool longHeader = version >= 3;
    tables.header.name = "Header";
    tables.header.titles = {kTypeTitle,       kPrefOnlyTitle, kDefRoamIndTitle,
                            kPrefListIdTitle, kSsprTitle,     kReservedTitle,
                            kPrefixTitle};
    tables.header.rows.push_back(
        {VersionName(version), prop.prefOnly ? "TRUE" : "FALSE", std::to_string(prop.defRoamInd),
         std::to_string(prop.prefListId), longHeader ? std::to_string(prop.ssprPRev) : "",
         longHeader ? std::to_string(prop.reserved) : "", Hex(prefix)});

    const auto& names = CRLNameTables::Instance();
    const CRLItemList& acqItems = data.GetAcqTable().Items();
    const CRLItemList& sysItems = data.GetSysTable().Items();
    GridContext context{version, &acqItems};

    std::vector<RecordRow> acqRows;
    for (size_t i = 0; i < acqItems.GetSize(); ++i) {
        const CRLItem& item = *acqItems.GetAt(i);
        const int type = AcqTypeOf(item);
        acqRows.push_back(MakeRecordRow(item, static_cast<int>(i), type, names.AcqTypes(version), kAcqTableName,
                                        [&] { return std::unique_ptr<CRLItem>(CreateAcqItem(type, version)); },
                                        context));
    }
    tables.acquisition = MakeGridTable("Acquisition", kAcqTypeTitle, acqRows, {}, {});

    const ListFacts facts(data);
    std::vector<RecordRow> sysRows;
    std::vector<CsvRow> informational;
    for (size_t i = 0; i < sysItems.GetSize(); ++i) {
        const auto& item = static_cast<const CSysItem&>(*sysItems.GetAt(i));
        const int type = item.GetSysType();
        sysRows.push_back(MakeRecordRow(item, static_cast<int>(i), type, names.SysTypes(version), CSysItem::TableName(),
                                        [&] { return std::unique_ptr<CRLItem>(CreateSysItem(type, version)); },
                                        context));
        const auto operators = OperatorsForRecord(providers, item);
        const SystemFacts& f = facts.Facts(i);
        informational.push_back({std::to_string(f.geo), std::to_string(f.level),
                                 OperatorNames(operators), CountryLabel(operators)});
        tables.system.geos.push_back(f.geo);
    }
    std::vector<int> geos = std::move(tables.system.geos);
    tables.system = MakeGridTable("System", kSysTypeTitle, sysRows, informational,
                                  {kGeoTitle, kLevelTitle, kOperatorTitle, kCountryTitle});
    tables.system.geos = std::move(geos);
    return tables;
}

bool WriteListCsv(const ListTables& tables, const std::string& directory, std::string& error) {
    std::error_code ec;
    fs::create_directories(directory, ec);
    if (ec || !fs::is_directory(directory)) {
        error = directory + ": cannot create the directory" + (ec ? ": " + ec.message() : "");
        return false;
    }
    const std::pair<const ExchangeTable*, const char*> files[] = {
        {&tables.header, kHeaderCsv},
        {&tables.acquisition, kAcquisitionCsv},
        {&tables.system, kSystemCsv}};
    for (const auto& [table, name] : files) {
        std::vector<CsvRow> rows{table->titles};
        rows.insert(rows.end(), table->rows.begin(), table->rows.end());
        if (!WriteFileAtomically(fs::path(directory) / name, WriteCsv(rows), error)) return false;
    }
    return true;
}

namespace {

ImportedList ReadAllFaults(const CsvSource& header, const CsvSource& acquisition,
                           const CsvSource& system, bool check) {
    ImportedList out;
    CPropData prop;
    if (!ReadHeader(header, out, prop)) return out;
    const int version = out.version;
    const auto& names = CRLNameTables::Instance();

    const Creator createAcq = [version](int type) -> std::unique_ptr<CRLItem> {
        return CreateAcqItem(type, version);
    };
    const Creator createSys = [version](int type) -> std::unique_ptr<CRLItem> {
        return CreateSysItem(type, version);
    };
    const CNameList& acqTypes = names.AcqTypes(version);
    const CNameList& sysTypes = names.SysTypes(version);
    GridTable acq, sys;
    const bool acqLoaded =
        LoadGridTable(acquisition, kAcqTypeTitle, kAcqTableName, createAcq, out.errors, acq);
    const bool sysLoaded =
        LoadGridTable(system, kSysTypeTitle, CSysItem::TableName(), createSys, out.errors, sys);
    if (!acqLoaded || !sysLoaded) return out;

    auto data = std::make_unique<CRLData>();
    data->GetProperties() = prop;
    CRLItemList& acqItems = data->GetAcqTable().Items();
    CRLItemList& sysItems = data->GetSysTable().Items();
    ValidationResult read = ReadAcqTableFromGrid(acq.grid, version, acqItems, &acq.previous);
    for (const auto& issue : read.issues) out.errors.push_back(Locate(acq, issue, acqTypes, createAcq));
    // System rows point into the acquisition table, so they are read only when it read cleanly.
    if (!read.Ok()) return out;
    read = ReadSysTableFromGrid(sys.grid, version, acqItems, sysItems, &sys.previous);
    for (const auto& issue : read.issues) out.errors.push_back(Locate(sys, issue, sysTypes, createSys));
    if (!read.Ok()) return out;

    CheckStrayCells(acq, acqItems, acqTypes, AcqTypeOf, out.errors);
    CheckStrayCells(sys, sysItems, sysTypes, SysTypeOf, out.errors);
    if (check)
        for (const auto& issue : CheckRoamingList(*data, version).issues) {
            if (issue.table == kAcqTableName || issue.messageId == Msg::NeedOneAcqRecord)
                out.errors.push_back(Locate(acq, issue, acqTypes, createAcq));
            else
                out.errors.push_back(Locate(sys, issue, sysTypes, createSys));
        }
    if (!out.errors.empty()) return out;
    acqItems.SetAnnouncedCount(static_cast<uint32_t>(acqItems.GetSize()));
    sysItems.SetAnnouncedCount(static_cast<uint32_t>(sysItems.GetSize()));
    out.data = std::move(data);
    return out;
}

}  // namespace

ImportedList ReadListTables(const CsvSource& header, const CsvSource& acquisition,
                            const CsvSource& system, bool check) {
    ImportedList out = ReadAllFaults(header, acquisition, system, check);
    // A sheet shifted one column along faults on every row; the first ones tell the story.
    constexpr size_t kMaxErrors = 50;
    if (out.errors.size() > kMaxErrors) {
        const size_t more = out.errors.size() - kMaxErrors;
        out.errors.resize(kMaxErrors);
        out.errors.push_back("... and " + std::to_string(more) + " more");
    }
    return out;
}

ImportedList ReadListCsv(const std::string& directory, bool check) {
    ImportedList out;
    CsvSource sources[3];
    const char* const files[] = {kHeaderCsv, kAcquisitionCsv, kSystemCsv};
    for (int i = 0; i < 3; ++i) {
        const fs::path path = fs::path(directory) / files[i];
        sources[i] = {path.string(), ReadText(path, out.errors)};
    }
    if (!out.errors.empty()) return out;
    return ReadListTables(sources[0], sources[1], sources[2], check);
}

std::vector<uint8_t> PrefixOf(const std::vector<uint8_t>& fileBytes) {
    if (fileBytes.size() < kPrefixLength) return {};
    return {fileBytes.begin(), fileBytes.begin() + kPrefixLength};
}

std::vector<uint8_t> WithPrefix(const std::vector<uint8_t>& prefix, std::vector<uint8_t> list) {
    if (prefix.size() != kPrefixLength) return list;
    std::vector<uint8_t> out = prefix;
    uint64_t bits = static_cast<uint64_t>(prefix[1]) | static_cast<uint64_t>(prefix[2]) << 8 |
                    static_cast<uint64_t>(prefix[3]) << 16 | static_cast<uint64_t>(prefix[4]) << 24;
    if ((bits + 7) / 8 != list.size()) {
        bits = static_cast<uint64_t>(list.size()) * 8;
        for (int i = 0; i < 4; ++i) out[1 + static_cast<size_t>(i)] = static_cast<uint8_t>(bits >> (8 * i));
    }
    out.insert(out.end(), list.begin(), list.end());
    return out;
}

}  // namespace Tarn::Analysis
