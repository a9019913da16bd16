// A roaming list as the three tables a spreadsheet holds (header, acquisition table, system
// table) and back. Every cell goes through the records' own grid code, so a cell reads exactly as
// the editor's grid shows it and a bad cell gets the grid's own message.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "analysis/Csv.h"
#include "roaming_list/RLData.h"

namespace Tarn::Analysis {

class ProviderDirectory;

// The file names of an export directory.
inline constexpr const char* kHeaderCsv = "header.csv";
inline constexpr const char* kAcquisitionCsv = "acquisition.csv";
inline constexpr const char* kSystemCsv = "system.csv";

// Columns of the system table that only inform and are ignored when read back.
inline constexpr const char* kGeoTitle = "GEO";
inline constexpr const char* kLevelTitle = "Priority level";
inline constexpr const char* kOperatorTitle = "Operator";
inline constexpr const char* kCountryTitle = "Country";
// The fields of a record that its grid row does not show (the octets of a record the editor does
// not model, an NID stored where a short code would do), as the record's JSON form. Present only
// on rows that need it; read back, the row's cells still win over it, as in the editor.
inline constexpr const char* kHiddenTitle = "Hidden fields";

struct ExchangeTable {
    std::string name;  // "Header", "Acquisition", "System"
    CsvRow titles;
    std::vector<CsvRow> rows;
    // Per row: the GEO a system record belongs to (for banding); empty for the other tables.
    std::vector<int> geos;
};

struct ListTables {
    ExchangeTable header;
    ExchangeTable acquisition;
    ExchangeTable system;
};

// The tables of `data`. `prefix` is the 5-byte prefix the list was read with (empty for none),
// carried so that a rebuilt list is the same file.
ListTables ListToTables(const CRLData& data, int version, const std::vector<uint8_t>& prefix,
                        const ProviderDirectory& providers);

// Writes header.csv, acquisition.csv and system.csv into `directory` (created when missing),
// each atomically. False with a reason on failure.
bool WriteListCsv(const ListTables& tables, const std::string& directory, std::string& error);

struct ImportedList {
    std::unique_ptr<CRLData> data;  // nothing when any error was found
    int version = 0;
    std::vector<uint8_t> prefix;    // 5 bytes, or empty
    // "FILE:ROW:COLUMN: message" (rows and columns counted from 1 as spreadsheets count them),
    // one line each, every fault found.
    std::vector<std::string> errors;
};

struct CsvSource {
    std::string name;  // what the messages call the file
    std::string text;
};

// Reads an export back. With `check` the list also passes the checks a save runs (an acquisition
// index beyond the table, a system type on an acquisition type it may not use), named by cell.
ImportedList ReadListCsv(const std::string& directory, bool check);
ImportedList ReadListTables(const CsvSource& header, const CsvSource& acquisition,
                            const CsvSource& system, bool check);

// The prefix of a prefixed binary list (its first 5 bytes), to hand to ListToTables.
std::vector<uint8_t> PrefixOf(const std::vector<uint8_t>& fileBytes);
// `list` behind `prefix`. The prefix's bit count is kept when it still describes the list and
// set to the list's size otherwise.
std::vector<uint8_t> WithPrefix(const std::vector<uint8_t>& prefix, std::vector<uint8_t> list);

}  // namespace Tarn::Analysis
