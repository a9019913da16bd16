// Small shared pieces of the system record types: grid cell reading with the system table's
// messages, text tokens, JSON fields, and the MCC/MNC digit forms.
#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "grid/Grid.h"
#include "roaming_list/FieldBuffer.h"

namespace Tarn {

class CNameList;

namespace SysFields {

// Cell text with surrounding blanks removed.
std::string CellText(const Grid& grid, int column, int row);
// Empty, or holding the marker of a value that failed the cell's own check.
bool IsMissing(const std::string& text);
// Decimal digits only; values beyond 32 bits saturate, so they still read as out of range.
bool ParseUnsigned(std::string_view text, uint32_t& value);

// A number cell: missing or unreadable gives message 140, outside low..high message 139.
uint32_t GridNumber(const Grid& grid, int column, int row, uint32_t low, uint32_t high);
// A drop-down cell: missing gives message 140, an unknown name the list's data error. A cell
// still showing the name the grid gives `current` when the list does not name it ("Invalid")
// keeps `current`, so a row left as it was shown reads back what it came from.
int GridName(const Grid& grid, int column, int row, const CNameList& list,
             std::optional<int> current = std::nullopt);
void PutNumber(Grid& grid, int column, int row, uint32_t value, const char* mask);
void PutName(Grid& grid, int column, int row, const CNameList& list, int value);
void PutText(Grid& grid, int column, int row, const std::string& text, const char* mask = "");
[[noreturn]] void ThrowGrid(unsigned messageId, int column, int row);
[[noreturn]] void ThrowRange(int column, int row, long long low, long long high);

// Text tokens: a number no larger than `max`, or a name of `list`; a bad number raises the
// system table's data error naming `field`.
uint32_t TextNumber(std::string_view token, uint32_t max, const char* field);
int TextName(std::string_view token, const CNameList& list);
std::string Tab(uint32_t value);
std::string Tab(const std::string& text);
// The same appended to a text being rendered, without a string per field.
void AppendTab(std::string& out, uint32_t value);
void AppendTab(std::string& out, std::string_view text);

[[noreturn]] void ThrowText(const std::string& detail);

// JSON fields. A missing required field, a wrong JSON type or a value beyond `max` raises the
// system table's data error naming the field.
// A JSON value that is a whole number of at least 0.
bool JsonWhole(const nlohmann::json& value, uint64_t& out);
uint32_t JsonNumber(const nlohmann::json& in, const char* key, uint32_t max, bool required,
                    uint32_t fallback = 0);
bool JsonBool(const nlohmann::json& in, const char* key, bool required, bool fallback = false);
std::string JsonString(const nlohmann::json& in, const char* key, bool required,
                       const std::string& fallback = {});
const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, bool required);
[[noreturn]] void ThrowJson(const std::string& field, const std::string& problem);
// A number and, beside it, its name from `list` under "<key>Name".
void PutJsonName(nlohmann::json& out, const char* key, const CNameList& list, int value);

// MCC and MNC as three 4-bit digits, as they are stored on file. An MNC of two digits has 0xF as
// its third digit and is shown with two.
using Digits = std::array<uint8_t, 3>;
// Exactly three decimal digits (the grid's rule).
bool ParseMcc(std::string_view text, Digits& digits);
// Two or three digits, each decimal or the wildcard 'F' (the grid's rule).
bool ParseMnc(std::string_view text, Digits& digits);
// The same with any hexadecimal digit allowed, so that text and JSON carry every stored value.
bool ParseMccLoose(std::string_view text, Digits& digits);
bool ParseMncLoose(std::string_view text, Digits& digits);
std::string FormatMcc(const Digits& digits);
std::string FormatMnc(const Digits& digits);
uint32_t PackDigits(const Digits& digits);  // hundreds first, 12 bits
Digits UnpackDigits(uint32_t value);

}  // namespace SysFields
}  // namespace Tarn
