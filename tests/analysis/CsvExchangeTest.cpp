// A roaming list as three CSV tables and back: the CSV reader at its limits, the header's fields
// at theirs, what spreadsheets do to a file, and every bad cell named at its place with the
// editor's own message. The byte-for-byte round trip of every shipped list is the command line's
// test (CliExchange).
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <iterator>

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

std::vector<uint8_t> ExampleBytes(const char* name) {
    std::ifstream in(std::string(TARN_EXAMPLES_DIR) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::unique_ptr<CRLManager> ReadList(const std::vector<uint8_t>& bytes) {
    CRLFile file(bytes);
    DetectResult r = DetectVersion(file);
    EXPECT_TRUE(r.manager) << r.error;
    return std::move(r.manager);
}

std::vector<uint8_t> Write(const CRLData& data, int version) {
    auto manager = CreateClassFactory(version)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    CRLFile out;
    EXPECT_TRUE(manager->WriteList(out)) << manager->GetLastError();
    return out.Bytes();
}

const ProviderDirectory kNoProviders;

ListTables Tables(const CRLData& data, int version) { return ListToTables(data, version, {}, kNoProviders); }

std::string Csv(const ExchangeTable& table) {
    std::vector<CsvRow> rows{table.titles};
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());
    return WriteCsv(rows);
}

ImportedList Import(const std::string& header, const std::string& acq, const std::string& sys, bool check = true) {
    return ReadListTables({"header.csv", header}, {"acquisition.csv", acq}, {"system.csv", sys}, check);
}

ImportedList Import(const ListTables& t) { return Import(Csv(t.header), Csv(t.acquisition), Csv(t.system)); }

std::string Joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& l : lines) out += l + "\n";
    return out;
}

TEST(CsvExchange, ReadsCsvToItsLimitsAndRefusesPastThemAtItsRowAndColumn) {
    const std::string cell(kMaxCsvCellBytes, 'x');
    struct Case {
        std::string text;
        std::vector<CsvRow> rows;  // when it reads
        size_t row = 0, column = 0;  // of the fault (column 0: not checked)
        std::string message = "";
    };
    const Case cases[] = {
        {"\xEF\xBB\xBFx,\"a\"\"b,\r\nc\",\xC3\xA9\r\n,\n", {{"x", "a\"b,\r\nc", "\xC3\xA9"}, {"", ""}}},
        {"\"\",\"\"\"\",a\n\"\"", {{"", "\"", "a"}, {""}}},  // empty quoted cells, a lone doubled quote
        {"\xC2\x80,\xE0\xA0\x80,\xED\x9F\xBF,\xEE\x80\x80,\xF4\x8F\xBF\xBF",  // UTF-8's edges
         {{"\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"}}},
        {"a,\xC1\xBF", {}, 1, 2, "the file is not UTF-8 text"},  // overlong
        {"a,\xE0\x9F\xBF", {}, 1, 2, "the file is not UTF-8 text"},  // overlong
        {"a,\xED\xA0\x80", {}, 1, 2, "the file is not UTF-8 text"},  // a surrogate
        {"a,\xF4\x90\x80\x80", {}, 1, 2, "the file is not UTF-8 text"},  // past U+10FFFF
        {"a,\xC3\x28", {}, 1, 2, "the file is not UTF-8 text"},
        {"a,b\r\nc,\"d\r\n", {}, 2, 2, "a quoted cell is never closed"},
        {"a,b\r\nc,d\"e\r\n", {}, 2, 2, "a quote inside a cell that is not quoted"},
        {"a,\"b\"x\r\n", {}, 1, 2, "text after the closing quote of a cell"},
        {"a,b\rc\r\n", {}, 1, 2, "a carriage return that does not end a line"},
        {cell + "\n\"" + cell + "\"", {{cell}, {cell}}},
        {cell + "x", {}, 1, 1, "a cell longer than 65536 bytes"},
        {"a,\"" + cell + "x\"", {}, 1, 2, "a cell longer than 65536 bytes"},
        {std::string(kMaxCsvColumns - 1, ',') + "\n", {CsvRow(kMaxCsvColumns)}},
        {std::string(kMaxCsvColumns, ',') + "\n", {}, 1, 1025, "more than 1024 columns"},
        {std::string(kMaxCsvColumns + 1, ','), {}, 1, 1025, "more than 1024 columns"},
        {std::string(kMaxCsvRows, '\n'), std::vector<CsvRow>(kMaxCsvRows, CsvRow(1))},
        {std::string(kMaxCsvRows, '\n') + "a", {}, 100001, 0, "more than 100000 rows"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 40));
        std::vector<CsvRow> rows;
        CsvFault fault;
        ASSERT_EQ(ReadCsv(c.text, rows, fault), c.message.empty()) << fault.message;
        if (c.message.empty()) {
            EXPECT_TRUE(rows == c.rows) << rows.size() << " rows";
            continue;
        }
        EXPECT_EQ(fault.row, c.row);
        EXPECT_EQ(fault.column, c.column ? c.column : fault.column);
        EXPECT_EQ(fault.message, c.message);
    }
    EXPECT_EQ(WriteCsv({{"a\"b", " x", "c,d", "plain", ""}, {}}),
              "\xEF\xBB\xBF\"a\"\"b\",\" x\",\"c,d\",plain,\r\n\r\n");
}

// A value its field can hold but its name list does not name is exported as "Invalid"; left as
// exported, the cell gives back the value it came from. Every such value of each named field,
// in every list that is valid with it, rebuilds byte for byte; typed into a fresh row, "Invalid"
// is still refused.
TEST(CsvExchange, ValuesWithoutANameComeBackAsTheyWere) {
    using nlohmann::json;
    const json base = json::parse(std::ifstream(TARN_EXAMPLES_DIR "/example-is683e.json"));
    const std::vector<std::pair<int, std::function<void(json&, int)>>> fields = {  // largest value, field
        {31, [](json& l, int v) { l["acquisitionTable"][3]["pairs"][1]["bandClass"] = v; }},
        {3, [](json& l, int v) { l["acquisitionTable"][1]["system"] = v; }},
        {7, [](json& l, int v) { l["acquisitionTable"][0]["blocks"][1]["block"] = v; }},
        {1, [](json& l, int v) { l["systemTable"][4]["netSelMode"] = v; }},
    };
    int exercised = 0;
    for (const auto& [maxValue, set] : fields)
        for (int value = 0; value <= maxValue; ++value) {
            json list = base;
            set(list, value);
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
            const ListTables tables = Tables(*data, version);
            if ((Csv(tables.acquisition) + Csv(tables.system)).find("Invalid") == std::string::npos)
                continue;  // a named value
            SCOPED_TRACE(list.dump());
            const ImportedList back = Import(tables);
            ASSERT_TRUE(back.data) << Joined(back.errors);
            EXPECT_EQ(Write(*back.data, back.version), file.Bytes());
            ++exercised;
        }
    EXPECT_GE(exercised, 3);

    // "Invalid" typed over a value that has a name is refused as the grid refuses it.
    int version = 0;
    const auto named = ListFromJson(base, version);
    ListTables typed = Tables(*named, version);
    ASSERT_EQ(typed.acquisition.rows[1][1], "A");
    typed.acquisition.rows[1][1] = "Invalid";
    const ImportedList refused = Import(typed);
    EXPECT_FALSE(refused.data);
    EXPECT_EQ(Joined(refused.errors).rfind("acquisition.csv:3:2:", 0), 0u) << Joined(refused.errors);
}

// What spreadsheets do to a file on saving it must not change what it reads as.
TEST(CsvExchange, AcceptsWhatSpreadsheetsWrite) {
    const auto original = ExampleBytes("example-is683e.prl");
    const ListTables t = Tables(ReadList(original)->GetData(), 5);
    const auto replaceAll = [](std::string s, const std::string& from, const std::string& to) {
        for (size_t at = 0; (at = s.find(from, at)) != std::string::npos; at += to.size())
            s.replace(at, from.size(), to);
        return s;
    };
    const auto quoteEverything = [&](const ExchangeTable& table) {  // empty cells as "" too
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
    const std::function<std::string(const ExchangeTable&)> renders[] = {
        [&](const ExchangeTable& x) { return replaceAll(Csv(x).substr(3), "\r\n", "\n"); },  // no BOM, LF
        quoteEverything,
        [&](const ExchangeTable& x) { return replaceAll(Csv(x), "\r\n", ",,,\r\n") + ",,,,\r\n\r\n"; },
        [&](const ExchangeTable& x) { return Csv(x).substr(0, Csv(x).size() - 2); },  // no final line end
    };
    for (const auto& render : renders) {
        const ImportedList back = Import(render(t.header), render(t.acquisition), render(t.system));
        ASSERT_TRUE(back.data) << Joined(back.errors);
        EXPECT_EQ(Write(*back.data, back.version), original);
    }
}

// A bad cell gets the message the editor's grid gives for the same cell, placed at its row and
// column of the file.
TEST(CsvExchange, CellFaultsCarryTheGridsMessageAndTheirPlace) {
    const auto read = ReadList(ExampleBytes("example-is683e.prl"));
    const ListTables clean = Tables(read->GetData(), 5);
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
        size_t col = 0;
        while (col < table.titles.size() && table.titles[col].rfind(c.title, 0) != 0) ++col;
        ASSERT_LT(col, table.titles.size());
        table.rows[c.record][col] = c.value;
        const ImportedList back = Import(t);
        ASSERT_FALSE(back.data);
        ASSERT_FALSE(back.errors.empty());

        // The same cell typed into a grid the way the editor fills it.
        MemoryGrid acqGrid(kAcqTableName, 300, static_cast<int>(t.acquisition.rows.size()));
        MemoryGrid sysGrid(CSysItem::TableName(), 300, static_cast<int>(t.system.rows.size()));
        for (auto [grid, x] : {std::pair{&acqGrid, &t.acquisition}, std::pair{&sysGrid, &t.system}})
            for (size_t r = 0; r < x->rows.size(); ++r)
                for (size_t g = 0; g < x->rows[r].size() && x->titles[g] != kHiddenTitle && x->titles[g] != kGeoTitle; ++g)
                    grid->SetCellText(static_cast<int>(g), static_cast<int>(r), x->rows[r][g]);
        CRLData editor(read->GetData());
        const ValidationResult grid = TakeListFromEditor("1", "1", acqGrid, sysGrid, 5, editor);
        ASSERT_FALSE(grid.Ok());
        std::string text = grid.issues[0].text;
        for (auto& ch : text) ch = ch == '\n' ? ' ' : ch;
        EXPECT_EQ(back.errors[0], std::string(c.system ? "system.csv:" : "acquisition.csv:") +
                                      std::to_string(c.record + 2) + ":" + std::to_string(col + 1) + ": " + text);
    }
}

// Version 1's tables: the header's fields at their limits, and what is not a table of this list.
TEST(CsvExchange, HeaderFieldsToTheirLimitsAndSheetsThatAreNotTheList) {
    const ListTables clean = Tables(ReadList(ExampleBytes("example-is683a.prl"))->GetData(), 1);
    ASSERT_EQ(clean.system.titles[16], kCountryTitle);  // grid column g >= 12 stands in CSV column g + 5
    const auto header = [](size_t column, const char* value) {
        return [=](ListTables& t) { t.header.rows[0][column] = value; };
    };
    const auto gridColumn = [](size_t g) {  // a value in grid column g of the first system row
        return [=](ListTables& t) {
            t.system.titles.resize(g + 6, "x");
            t.system.rows[0].resize(g + 6);
            t.system.rows[0][g + 5] = "1";
        };
    };
    const auto beyondTitles = [](size_t cells) {
        return [=](ListTables& t) { t.system.rows[1].resize(t.system.titles.size() + cells, "x"); };
    };
    struct Case {
        std::function<void(ListTables&)> edit;
        std::string error;  // the start of the first error line; empty when the tables read
    } cases[] = {
        {header(0, "F"), "header.csv:2:1: unknown roaming list type \"F\" (use IS-683A .. IS-683E)"},
        {header(0, "IS-683Z"), "header.csv:2:1: unknown roaming list type \"IS-683Z\""},
        {header(1, "yes"), "header.csv:2:2: Preferred Only is TRUE or FALSE"},
        {header(2, "256"), "header.csv:2:3: "},
        {header(3, "65536"), "header.csv:2:4: "},
        {header(4, "256"), "header.csv:2:5: SSPR_P_REV is a number from 0 to 255"},
        {header(5, "128"), "header.csv:2:6: Reserved is a number from 0 to 127"},
        {header(6, "04FFFFFFFF"), "header.csv:2:7: the prefix is 5 bytes in hexadecimal, starting with 02 or 03"},
        {header(6, "01FFFFFFFF"), "header.csv:2:7: the prefix is 5 bytes"},
        {header(6, "03FFFFFF"), "header.csv:2:7: the prefix is 5 bytes"},
        {header(6, "03FFFFFFFFFF"), "header.csv:2:7: the prefix is 5 bytes"},
        {[](ListTables& t) { t.header.titles[2] = "Roaming"; }, "header.csv:1:3: unknown header field \"Roaming\""},
        {[](ListTables& t) { t.header.titles[5] = t.header.titles[1]; }, "header.csv:1:6: \"Preferred Only\" appears twice"},
        {[](ListTables& t) { t.header.titles[2] = ""; t.header.rows[0][2] = ""; },
         "header.csv:1: the column \"Default Roaming Indicator\" is missing"},
        {[](ListTables& t) { t.header.rows.push_back(t.header.rows[0]); }, "header.csv:3:1: the header holds one row"},
        {[](ListTables& t) { std::swap(t.acquisition, t.system); },
         "acquisition.csv:1:1: the first column must be \"Acq Type\""},
        {gridColumn(299), "system.csv:2:305: this cell is not a field of the"},
        {gridColumn(300), "system.csv:2:306: a value beyond the grid's last column (300)"},
        {beyondTitles(1), "system.csv:3:18: a value beyond the last titled column"},
        {[](ListTables& t) {  // versions 1 and 2 have no association columns; column 7 holds nothing
             t.system.rows[0][6] = "1";
             t.system.titles[6] = "";
         },
         "system.csv:2:7: this cell is not a field of the"},
        {[](ListTables& t) { t.acquisition.rows.resize(1); }, "system.csv:"},  // index beyond the table
    };
    for (const auto& c : cases) {
        ListTables t = clean;
        c.edit(t);
        const ImportedList back = Import(t);
        SCOPED_TRACE(c.error + " | " + Joined(back.errors));
        EXPECT_EQ(!back.data, !c.error.empty());
        EXPECT_EQ(back.errors.empty() ? c.error : back.errors[0].substr(0, c.error.size()), c.error);
    }

    // Every header field at its largest, then its smallest: {version, PREF_ONLY, default roaming
    // indicator, list id, SSPR_P_REV, reserved}, and the prefix.
    const ListTables cleanE = Tables(ReadList(ExampleBytes("example-is683e.prl"))->GetData(), 5);
    const std::tuple<const ListTables*, CsvRow, std::vector<unsigned>, std::vector<uint8_t>> limits[] = {
        {&cleanE, {"e", "1", "255", "65535", "255", "127", "03FFFFFFFF"}, {5, 1, 255, 65535, 255, 127}, {3, 255, 255, 255, 255}},
        {&clean, {"A", "0", "0", "0", "0", "0", "0200000000"}, {1, 0, 0, 0, 0, 0}, {2, 0, 0, 0, 0}},
    };
    for (const auto& [base, values, fields, prefix] : limits) {
        ListTables t = *base;
        t.header.rows[0] = values;
        const ImportedList back = Import(t);
        ASSERT_TRUE(back.data) << Joined(back.errors);
        const CPropData& p = back.data->GetProperties();
        EXPECT_EQ(std::vector<unsigned>({unsigned(back.version), p.prefOnly, p.defRoamInd, p.prefListId, p.ssprPRev,
                                         p.reserved}),
                  fields);
        EXPECT_EQ(back.prefix, prefix);
    }
    // Fifty faults are listed; past that the rest are counted.
    for (const size_t cells : {50, 51}) {
        ListTables t = clean;
        beyondTitles(cells)(t);
        const ImportedList back = Import(t);
        EXPECT_EQ(back.errors.size(), cells);
        EXPECT_EQ(back.errors.back() == "... and 1 more", cells == 51) << back.errors.back();
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
    const std::pair<uint8_t, uint8_t> cases[] = {{73, 73}, {80, 80}, {72, 80}, {81, 80}};  // bits given, kept
    for (const auto& [given, kept] : cases) {
        const auto out = WithPrefix({0x03, given, 0, 0, 0}, list);
        EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + 5), (std::vector<uint8_t>{0x03, kept, 0, 0, 0}));
        EXPECT_EQ(out.size(), 15u);
    }
    EXPECT_EQ(WithPrefix({0x03, 80, 0, 0}, list), list);
    EXPECT_EQ(PrefixOf({2, 80, 0, 0}), std::vector<uint8_t>{});
    EXPECT_EQ(PrefixOf({2, 80, 0, 0, 0, 9}), (std::vector<uint8_t>{2, 80, 0, 0, 0}));
}

}  // namespace
}  // namespace Tarn::Analysis
