#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "analysis/CsvExchange.h"
#include "analysis/Providers.h"
#include "grid/MemoryGrid.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/Validation.h"

namespace Tarn::Analysis {
namespace {

namespace fs = std::filesystem;

std::vector<uint8_t> Bytes(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    const std::string text = s.str();
    return {text.begin(), text.end()};
}

// Every list the suite ships: each version, the prefixed one, and the examples.
std::vector<fs::path> AllLists() {
    std::vector<fs::path> lists;
    for (const auto& entry : fs::directory_iterator(fs::path(TARN_TEST_DATA_DIR) / "roaming_list"))
        lists.push_back(entry.path() / "input.prl");
    for (const auto& entry : fs::directory_iterator(TARN_EXAMPLES_DIR))
        if (entry.path().extension() == ".prl") lists.push_back(entry.path());
    std::sort(lists.begin(), lists.end());
    return lists;
}

struct Read {
    std::unique_ptr<CRLManager> manager;
    std::vector<uint8_t> prefix;
};

Read ReadList(const std::vector<uint8_t>& bytes) {
    CRLFile file(bytes);
    DetectResult r = DetectVersion(file);
    EXPECT_TRUE(r.manager) << r.error;
    std::vector<uint8_t> prefix =
        r.manager && r.manager->IsPrefixed() ? PrefixOf(bytes) : std::vector<uint8_t>{};
    return {std::move(r.manager), std::move(prefix)};
}

std::vector<uint8_t> Write(const ImportedList& list) {
    auto manager = CreateClassFactory(list.version)->CreateManager();
    auto copy = std::make_unique<CRLData>(*list.data);
    manager->AttachData(copy);
    CRLFile out;
    EXPECT_TRUE(manager->WriteList(out)) << manager->GetLastError();
    return WithPrefix(list.prefix, out.Bytes());
}

std::string Csv(const ExchangeTable& table) {
    std::vector<CsvRow> rows{table.titles};
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());
    return WriteCsv(rows);
}

ImportedList Import(const std::string& header, const std::string& acq, const std::string& sys,
                    bool check = true) {
    return ReadListTables({"header.csv", header}, {"acquisition.csv", acq}, {"system.csv", sys},
                          check);
}

ImportedList Import(const ListTables& t) {
    return Import(Csv(t.header), Csv(t.acquisition), Csv(t.system));
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& l : lines) out += l + "\n";
    return out;
}

const ProviderDirectory& NoProviders() {
    static const ProviderDirectory none;
    return none;
}

TEST(CsvExchange, EveryListRebuildsByteForByte) {
    const auto lists = AllLists();
    ASSERT_GE(lists.size(), 8u);
    for (const auto& path : lists) {
        SCOPED_TRACE(path.string());
        const auto original = Bytes(path);
        Read read = ReadList(original);
        ASSERT_TRUE(read.manager);
        const ListTables tables = ListToTables(read.manager->GetData(), read.manager->GetVersion(),
                                               read.prefix, NoProviders());
        const ImportedList back = Import(tables);
        ASSERT_TRUE(back.data) << Joined(back.errors);
        EXPECT_EQ(back.version, read.manager->GetVersion());
        EXPECT_EQ(Write(back), original);
    }
}

// A value its field can hold but its name list does not name is exported as "Invalid"; left as
// exported, the cell gives back the value it came from. Every such value of each named field,
// in every list that is valid with it, rebuilds byte for byte; typed into a fresh row, "Invalid"
// is still refused.
TEST(CsvExchange, ValuesWithoutANameComeBackAsTheyWere) {
    using nlohmann::json;
    const json base = json::parse(std::ifstream(TARN_EXAMPLES_DIR "/example-is683e.json"));
    struct Field {
        const char* what;
        int maxValue;
        std::function<void(json&, int)> set;
    };
    const std::vector<Field> fields = {
        {"band class of a generic CDMA pair", 31,
         [](json& l, int v) { l["acquisitionTable"][3]["pairs"][1]["bandClass"] = v; }},
        {"cellular system", 3, [](json& l, int v) { l["acquisitionTable"][1]["system"] = v; }},
        {"PCS block", 7,
         [](json& l, int v) { l["acquisitionTable"][0]["blocks"][1]["block"] = v; }},
        {"network selection mode", 1,
         [](json& l, int v) { l["systemTable"][4]["netSelMode"] = v; }},
    };
    int exercised = 0;
    for (const auto& field : fields)
        for (int value = 0; value <= field.maxValue; ++value) {
            json list = base;
            field.set(list, value);
            int version = 0;
            std::unique_ptr<CRLData> data;
            try {
                data = ListFromJson(list, version);
            } catch (const std::exception&) {
                continue;  // a value the field itself refuses
            }
            auto manager = CreateClassFactory(version)->CreateManager();
            auto copy = std::make_unique<CRLData>(*data);
            manager->AttachData(copy);
            CRLFile file;
            if (!manager->WriteList(file)) continue;  // a list no check lets through
            const ListTables tables = ListToTables(*data, version, {}, NoProviders());
            if (Csv(tables.acquisition).find("Invalid") == std::string::npos &&
                Csv(tables.system).find("Invalid") == std::string::npos)
                continue;  // a named value
            SCOPED_TRACE(std::string(field.what) + " " + std::to_string(value));
            const ImportedList back = Import(tables);
            ASSERT_TRUE(back.data) << Joined(back.errors);
            EXPECT_EQ(Write(back), file.Bytes());
            ++exercised;
        }
    EXPECT_GE(exercised, 3);

    // "Invalid" typed over a value that has a name is refused as the grid refuses it.
    int version = 0;
    const auto named = ListFromJson(base, version);
    ListTables typed = ListToTables(*named, version, {}, NoProviders());
    ASSERT_EQ(typed.acquisition.rows[1][1], "A");
    typed.acquisition.rows[1][1] = "Invalid";
    const ImportedList refused = Import(typed);
    EXPECT_FALSE(refused.data);
    EXPECT_NE(Joined(refused.errors).find("acquisition.csv:3:2:"), std::string::npos) << Joined(refused.errors);
}

// Records whose grid row cannot show everything (a type 253 acquisition record's octets, an
// undefined system record) carry it in the hidden column, and only those rows do.
TEST(CsvExchange, OnlyRowsTheGridCannotCarryHaveHiddenFields) {
    const auto original =
        Bytes(fs::path(TARN_TEST_DATA_DIR) / "roaming_list/is683e-all-types/input.prl");
    Read read = ReadList(original);
    const ListTables t = ListToTables(read.manager->GetData(), 5, {}, NoProviders());
    const auto hiddenColumn = [](const ExchangeTable& table) {
        const auto it = std::find(table.titles.begin(), table.titles.end(), kHiddenTitle);
        return it == table.titles.end() ? -1 : static_cast<int>(it - table.titles.begin());
    };
    for (const ExchangeTable* table : {&t.acquisition, &t.system}) {
        SCOPED_TRACE(table->name);
        const int column = hiddenColumn(*table);
        ASSERT_GE(column, 0);
        size_t hidden = 0;
        for (const auto& row : table->rows) hidden += !row[static_cast<size_t>(column)].empty();
        EXPECT_GE(hidden, 1u);
        EXPECT_LT(hidden, table->rows.size() / 2);
    }
    EXPECT_EQ(t.system.titles.back(), kCountryTitle);
    EXPECT_EQ(t.system.geos.size(), t.system.rows.size());
}

// What spreadsheets do to a file on saving it must not change what it reads as.
TEST(CsvExchange, AcceptsWhatSpreadsheetsWrite) {
    const auto original = Bytes(fs::path(TARN_EXAMPLES_DIR) / "example-is683e.prl");
    Read read = ReadList(original);
    const ListTables t = ListToTables(read.manager->GetData(), 5, {}, NoProviders());

    const auto replaceAll = [](std::string s, const std::string& from, const std::string& to) {
        for (size_t at = 0; (at = s.find(from, at)) != std::string::npos; at += to.size())
            s.replace(at, from.size(), to);
        return s;
    };
    const auto quoteEverything = [&](const ExchangeTable& table) {
        std::string out;
        std::vector<CsvRow> rows{table.titles};
        rows.insert(rows.end(), table.rows.begin(), table.rows.end());
        for (const auto& row : rows) {
            for (size_t c = 0; c < row.size(); ++c)
                out += (c ? ",\"" : "\"") + replaceAll(row[c], "\"", "\"\"") + "\"";
            out += "\n";
        }
        return out;
    };
    struct Case {
        const char* what;
        std::function<std::string(const ExchangeTable&)> render;
    } cases[] = {
        {"no byte order mark, LF",
         [&](const ExchangeTable& x) { return replaceAll(Csv(x).substr(3), "\r\n", "\n"); }},
        {"every cell quoted", quoteEverything},
        {"trailing empty columns and rows",
         [&](const ExchangeTable& x) {
             return replaceAll(Csv(x), "\r\n", ",,,\r\n") + ",,,,\r\n\r\n";
         }},
        {"no final line end",
         [&](const ExchangeTable& x) {
             std::string s = Csv(x);
             return s.substr(0, s.size() - 2);
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const ImportedList back =
            Import(c.render(t.header), c.render(t.acquisition), c.render(t.system));
        ASSERT_TRUE(back.data) << Joined(back.errors);
        EXPECT_EQ(Write(back), original);
    }
}

TEST(CsvExchange, RefusesWhatIsNotCsvAtItsRowAndColumn) {
    struct Case {
        const char* text;
        size_t row, column;
        const char* message;
    } cases[] = {
        {"a,b\r\nc,\"d\r\n", 2, 2, "a quoted cell is never closed"},
        {"a,b\r\nc,d\"e\r\n", 2, 2, "a quote inside a cell that is not quoted"},
        {"a,\"b\"x\r\n", 1, 2, "text after the closing quote of a cell"},
        {"a,b\rc\r\n", 1, 2, "a carriage return that does not end a line"},
        {"a,\xC3\x28\r\n", 1, 2, "the file is not UTF-8 text"},
        {"a,\xED\xA0\x80\r\n", 1, 2, "the file is not UTF-8 text"},  // a surrogate
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::vector<CsvRow> rows;
        CsvFault fault;
        ASSERT_FALSE(ReadCsv(c.text, rows, fault));
        EXPECT_EQ(fault.row, c.row);
        EXPECT_EQ(fault.column, c.column);
        EXPECT_EQ(fault.message, c.message);
    }
    std::vector<CsvRow> rows;
    CsvFault fault;
    ASSERT_TRUE(ReadCsv("\xEF\xBB\xBFx,\"a\"\"b,\r\nc\",\xC3\xA9\r\n,\n", rows, fault));
    EXPECT_EQ(rows, (std::vector<CsvRow>{{"x", "a\"b,\r\nc", "\xC3\xA9"}, {"", ""}}));
    EXPECT_EQ(WriteCsv({{"a\"b", " x", "c,d", "plain"}}),
              "\xEF\xBB\xBF\"a\"\"b\",\" x\",\"c,d\",plain\r\n");
}

// A bad cell gets the message the editor's grid gives for the same cell, placed at its row and
// column of the file.
TEST(CsvExchange, CellFaultsCarryTheGridsMessageAndTheirPlace) {
    const auto original = Bytes(fs::path(TARN_EXAMPLES_DIR) / "example-is683e.prl");
    Read read = ReadList(original);
    const ListTables clean = ListToTables(read.manager->GetData(), 5, {}, NoProviders());
    const auto column = [](const ExchangeTable& table, const std::string& title) {
        for (size_t c = 0; c < table.titles.size(); ++c)
            if (table.titles[c].rfind(title, 0) == 0) return c;
        ADD_FAILURE() << "no column " << title;
        return size_t{0};
    };
    struct Case {
        bool system;
        size_t record;
        const char* title;  // the start of the column's title
        const char* value;
    } cases[] = {
        {true, 1, "Acq Index", "999"},   {true, 0, "Roam Indicator", "256"},
        {true, 2, "Sys Type", "Bogus"},  {true, 0, "Sys Type", ""},
        {false, 0, "Acq Type", "Bogus"}, {true, 0, "Neg/Pref", "Maybe"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.title) + " = " + c.value);
        ListTables t = clean;
        ExchangeTable& table = c.system ? t.system : t.acquisition;
        const size_t col = column(table, c.title);
        ASSERT_LT(c.record, table.rows.size());
        table.rows[c.record][col] = c.value;
        const ImportedList back = Import(t);
        ASSERT_FALSE(back.data);
        ASSERT_FALSE(back.errors.empty());

        // The same cell typed into a grid the way the editor fills it.
        MemoryGrid acqGrid(kAcqTableName, 300, static_cast<int>(t.acquisition.rows.size()));
        MemoryGrid sysGrid(CSysItem::TableName(), 300, static_cast<int>(t.system.rows.size()));
        for (auto [grid, x] : {std::pair{&acqGrid, &t.acquisition}, std::pair{&sysGrid, &t.system}})
            for (size_t r = 0; r < x->rows.size(); ++r)
                for (size_t g = 0; g < x->rows[r].size() && x->titles[g] != kHiddenTitle &&
                                   x->titles[g] != kGeoTitle;
                     ++g)
                    grid->SetCellText(static_cast<int>(g), static_cast<int>(r), x->rows[r][g]);
        CRLData editor(read.manager->GetData());
        const ValidationResult grid = TakeListFromEditor("1", "1", acqGrid, sysGrid, 5, editor);
        ASSERT_FALSE(grid.Ok());
        std::string text = grid.issues[0].text;
        for (auto& ch : text) ch = ch == '\n' ? ' ' : ch;
        const std::string where = std::string(c.system ? "system.csv:" : "acquisition.csv:") +
                                  std::to_string(c.record + 2) + ":" + std::to_string(col + 1) +
                                  ": ";
        EXPECT_EQ(back.errors[0], where + text);
    }
}

TEST(CsvExchange, RefusesBadHeadersAndStrayCells) {
    const auto original = Bytes(fs::path(TARN_EXAMPLES_DIR) / "example-is683a.prl");
    Read read = ReadList(original);
    const ListTables clean = ListToTables(read.manager->GetData(), 1, {}, NoProviders());
    struct Case {
        const char* what;
        std::function<void(ListTables&)> edit;
        const char* error;  // the first error line, or its start
    } cases[] = {
        {"unknown version", [](ListTables& t) { t.header.rows[0][0] = "IS-683Z"; },
         "header.csv:2:1: unknown roaming list type \"IS-683Z\""},
        {"preferred only", [](ListTables& t) { t.header.rows[0][1] = "yes"; },
         "header.csv:2:2: Preferred Only is TRUE or FALSE"},
        {"list id range", [](ListTables& t) { t.header.rows[0][3] = "65536"; }, "header.csv:2:4: "},
        {"missing column", [](ListTables& t) { t.header.titles[2] = "Roaming"; },
         "header.csv:1:3: unknown header field \"Roaming\""},
        {"bad prefix", [](ListTables& t) { t.header.rows[0][6] = "0102"; },
         "header.csv:2:7: the prefix is 5 bytes"},
        {"files swapped", [](ListTables& t) { std::swap(t.acquisition, t.system); },
         "acquisition.csv:1:1: the first column must be \"Acq Type\""},
        {"a value past the titled columns",
         [](ListTables& t) { t.system.rows[1].resize(t.system.titles.size() + 2, "x"); },
         "system.csv:3:"},
        {"a stray cell",
         [](ListTables& t) {
             // Versions 1 and 2 have no association columns; column 7 holds nothing.
             t.system.rows[0][6] = "1";
             t.system.titles[6] = "";
         },
         "system.csv:2:7: this cell is not a field of the"},
        {"acquisition index beyond the table", [](ListTables& t) { t.acquisition.rows.resize(1); },
         "system.csv:"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ListTables t = clean;
        c.edit(t);
        const ImportedList back = Import(t);
        EXPECT_FALSE(back.data);
        ASSERT_FALSE(back.errors.empty());
        EXPECT_EQ(back.errors[0].rfind(c.error, 0), 0u) << back.errors[0];
    }
    // Without the save checks a list with no system records reads, to be written on request.
    ListTables t = clean;
    t.system.rows.clear();
    const ImportedList checked = Import(t);
    ASSERT_EQ(checked.errors.size(), 1u);
    EXPECT_EQ(checked.errors[0].rfind("system.csv: ", 0), 0u) << checked.errors[0];
    EXPECT_TRUE(Import(Csv(t.header), Csv(t.acquisition), Csv(t.system), false).data);
}

TEST(CsvExchange, PrefixKeepsItsBitCountOnlyWhileItFits) {
    const std::vector<uint8_t> list(10, 0xAB);
    EXPECT_EQ(WithPrefix({0x03, 76, 0, 0, 0}, list)[1], 76);  // 76 bits round up to 10 bytes
    EXPECT_EQ(WithPrefix({0x03, 8, 0, 0, 0}, list)[1], 80);   // no longer the list's size
    EXPECT_EQ(WithPrefix({0x03, 8, 0, 0, 0}, list)[0], 0x03);
    EXPECT_EQ(WithPrefix({}, list), list);
}

}  // namespace
}  // namespace Tarn::Analysis
