// What changed between two MMSS files of one kind, record by record in file order: the header
// values, then each table (an MSPL per identifier, the records or entries of the other kinds).
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "analysis/Diff.h"

namespace Tarn::Analysis {

// A record present in both files at `a` and `b` whose `fields` (JSON names) differ.
struct RecordChange {
    size_t a = 0;
    size_t b = 0;
    std::vector<std::string> fields;
};

struct TableDiff {
    std::string name;  // "records", "entries", "MSPL ID 3"
    // The table's records in each file (a JSON array, empty when the table is in one file only),
    // kept for the outputs.
    nlohmann::json recordsA = nlohmann::json::array();
    nlohmann::json recordsB = nlohmann::json::array();
    std::vector<size_t> added, removed;  // second-file and first-file indices
    std::vector<RecordChange> changed;

    bool Same() const { return added.empty() && removed.empty() && changed.empty(); }
};

struct MmssDiff {
    std::string kind;  // "MSPL", "EHPLMN", ...
    std::vector<HeaderChange> header;
    std::vector<TableDiff> tables;  // every table, changed or not, in file order

    bool Same() const;
};

// Compares two files of one kind given as their JSON forms (FileDocument::ToJson).
MmssDiff DiffMmss(const nlohmann::json& a, const nlohmann::json& b);

// The fields of two records that differ, by name; "index" and the informational "...Name" fields
// never count.
std::vector<std::string> ChangedFields(const nlohmann::json& a, const nlohmann::json& b);

}  // namespace Tarn::Analysis
