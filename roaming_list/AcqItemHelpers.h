// Shared pieces of the acquisition record classes: bounded bit writes, the grid cell rules, and
// the token and JSON readers that refuse anything that would not fit its field.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "roaming_list/DataException.h"

namespace Tarn {

class CRLFile;
class CNameList;
class Grid;

namespace AcqDetail {

constexpr uint32_t FieldMax(int width) {
    return width >= 32 ? 0xFFFFFFFFu : (width <= 0 ? 0u : (1u << width) - 1u);
}
constexpr bool Fits(uint64_t value, int width) {
    return value <= FieldMax(width);
}

// Writes `value` in `width` bits, or throws CDataException(InvalidAcqTable) naming `what` when
// it does not fit. Returns `width`.
uint32_t Put(CRLFile& file, int width, uint32_t value, const char* what);

// ---- grid

// The columns a record of `maxColumn` columns may touch: min(grid columns, maxColumn + 1).
int ColumnLimit(const Grid& grid, int maxColumn);
// Empty (after trimming blanks).
bool IsBlankCell(const Grid& grid, int column, int row);
bool IsBadCell(const Grid& grid, int column, int row);
// A decimal number of at most 18 digits, blanks around it allowed.
bool ParseNumber(const std::string& text, long long& value);

// Grid errors name kAcqTableName.

// 140 when the cell is empty or holds the bad-value marker.
void RequireCell(const Grid& grid, int column, int row);
// A required number in [low, high]: 140 when missing, 139 with the range otherwise.
uint32_t ReadNumberCell(const Grid& grid, int column, int row, long long low, long long high);
// A required name of `list` (or a plain number of at most `high`): 140 when missing, the list's
// data error for an unknown name, 139 for a number out of range. `current` is the value the
// record holds: a cell still showing the name the grid gives a value the list does not name
// ("Invalid") keeps that value, so a row left as it was shown reads back what it came from.
uint32_t ReadNamedCell(const Grid& grid, int column, int row, const CNameList& list, long long high,
                       std::optional<uint32_t> current = std::nullopt);

// Scans entries of `width` cells laid side by side from `firstColumn`, while whole entries fit
// below `limit`. Entries stand contiguously: an empty first entry or any bad-value cell is 140,
// an entry after an empty one is `gapMessage`, and an empty required cell of a filled entry is
// 140. Returns the number of filled entries.
size_t ScanEntries(const Grid& grid, int row, int firstColumn, int width, int limit,
                   unsigned gapMessage, std::initializer_list<bool> required);

void SetDropDownCell(Grid& grid, int column, int row, const CNameList& list,
                     const std::string& text);
void SetEditCell(Grid& grid, int column, int row, const char* mask, const std::string& text);
// Headings from column 1 on, then empty headings up to (not including) `limit`.
void SetHeadings(Grid& grid, const std::vector<std::string>& headings, int limit);
std::string Numbered(const char* format, size_t n);

// ---- text

// The tokens without the empty ones a trailing tab leaves behind.
std::vector<std::string> TrimTokens(const std::vector<std::string>& tokens);
// A decimal token of at most `max`; anything else is a data error `code` naming `what`.
uint32_t TextNumber(const std::string& token, uint32_t max, DataError code, const char* what);
// Throws CDataException(InvalidAcqTable) naming the expected count.
[[noreturn]] void BadTokenCount(size_t got, const char* expected);

// ---- JSON

// A required unsigned number of at most `max` under `key`.
uint32_t JsonNumber(const nlohmann::json& in, const char* key, uint32_t max, DataError code);
// One value (an array element) that must be an unsigned number of at most `max`.
uint32_t JsonValue(const nlohmann::json& value, const char* what, uint32_t max, DataError code);
// The same, or `fallback` when the key is absent.
uint32_t JsonNumberOr(const nlohmann::json& in, const char* key, uint32_t max, DataError code,
                      uint32_t fallback);
// A required array under `key` with at most `maxSize` elements.
const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, size_t maxSize,
                                DataError code);
// An element of an array that must be an object.
const nlohmann::json& JsonObject(const nlohmann::json& in, const char* what, DataError code);

}  // namespace AcqDetail
}  // namespace Tarn
