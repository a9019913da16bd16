#include "roaming_list/SysItemHelpers.h"

#include <charconv>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "grid/GridError.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/SysItem.h"

namespace Tarn::SysFields {

std::string CellText(const Grid& grid, int column, int row) {
    std::string text = grid.GetCellText(column, row);
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

bool IsMissing(const std::string& text) {
    return text.empty() || text == kBadValue;
}

bool ParseUnsigned(std::string_view text, uint32_t& value) {
    if (text.empty()) return false;
    uint64_t v = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        v = v * 10 + static_cast<uint64_t>(c - '0');
        if (v > 0xFFFFFFFFull) v = 0xFFFFFFFFull;
    }
    value = static_cast<uint32_t>(v);
    return true;
}

void ThrowGrid(unsigned messageId, int column, int row) {
    throw GridError(messageId, column, row, CSysItem::TableName());
}

void ThrowRange(int column, int row, long long low, long long high) {
    throw GridError(Msg::OutOfRange, column, row, CSysItem::TableName(), low, high);
}

uint32_t GridNumber(const Grid& grid, int column, int row, uint32_t low, uint32_t high) {
    const std::string text = CellText(grid, column, row);
    uint32_t value = 0;
    if (IsMissing(text) || !ParseUnsigned(text, value))
        ThrowGrid(Msg::RequiredValueMissing, column, row);
    if (value < low || value > high) ThrowRange(column, row, low, high);
    return value;
}

int GridName(const Grid& grid, int column, int row, const CNameList& list,
             std::optional<int> current) {
    const std::string text = CellText(grid, column, row);
    if (IsMissing(text)) ThrowGrid(Msg::RequiredValueMissing, column, row);
    int value = 0;
    if (list.FindValue(text, value)) return value;
    if (current && text == list.GetName(*current)) return *current;
    return list.GetValue(text);
}

void PutNumber(Grid& grid, int column, int row, uint32_t value, const char* mask) {
    grid.SetCellEdit(column, row, mask);
    grid.SetCellText(column, row, std::to_string(value));
}

void PutName(Grid& grid, int column, int row, const CNameList& list, int value) {
    grid.SetCellDropDown(column, row, list.Choices());
    grid.SetCellText(column, row, list.GetName(value));
}

void PutText(Grid& grid, int column, int row, const std::string& text, const char* mask) {
    grid.SetCellEdit(column, row, mask);
    grid.SetCellText(column, row, text);
}

void ThrowText(const std::string& detail) {
    throw CDataException(DataError::InvalidSysTable, "(" + detail + ")");
}

uint32_t TextNumber(std::string_view token, uint32_t max, const char* field) {
    uint32_t value = 0;
    if (!ParseUnsigned(token, value) || value > max) {
        std::string detail = field;
        detail += " \"";
        detail += token;
        detail += "\" is not a number from 0 to ";
        detail += std::to_string(max);
        ThrowText(detail);
    }
    return value;
}

int TextName(std::string_view token, const CNameList& list) {
    return list.GetValue(token);
}

std::string Tab(uint32_t value) {
    return std::to_string(value) + "\t";
}
std::string Tab(const std::string& text) {
    return text + "\t";
}

void AppendTab(std::string& out, uint32_t value) {
    char digits[12];
    char* end = std::to_chars(digits, digits + sizeof digits - 1, value).ptr;
    *end++ = '\t';
    out.append(digits, end);
}

void AppendTab(std::string& out, std::string_view text) {
    out += text;
    out += '\t';
}

void ThrowJson(const std::string& field, const std::string& problem) {
    throw CDataException(DataError::InvalidSysTable, "(" + field + " " + problem + ")");
}

bool JsonWhole(const nlohmann::json& value, uint64_t& out) {
    if (value.is_number_unsigned()) {
        out = value.get<uint64_t>();
        return true;
    }
    // Numbers built in code rather than parsed are signed even when they are not negative.
    if (value.is_number_integer() && value.get<int64_t>() >= 0) {
        out = static_cast<uint64_t>(value.get<int64_t>());
        return true;
    }
    return false;
}

uint32_t JsonNumber(const nlohmann::json& in, const char* key, uint32_t max, bool required,
                    uint32_t fallback) {
    auto it = in.find(key);
    if (it == in.end()) {
        if (required) ThrowJson(key, "is missing");
        return fallback;
    }
    uint64_t value = 0;
    if (!JsonWhole(*it, value)) ThrowJson(key, "is not a whole number from 0");
    if (value > max) ThrowJson(key, "does not fit 0.." + std::to_string(max));
    return static_cast<uint32_t>(value);
}

bool JsonBool(const nlohmann::json& in, const char* key, bool required, bool fallback) {
    auto it = in.find(key);
    if (it == in.end()) {
        if (required) ThrowJson(key, "is missing");
        return fallback;
    }
    if (!it->is_boolean()) ThrowJson(key, "is not true or false");
    return it->get<bool>();
}

std::string JsonString(const nlohmann::json& in, const char* key, bool required,
                       const std::string& fallback) {
    auto it = in.find(key);
    if (it == in.end()) {
        if (required) ThrowJson(key, "is missing");
        return fallback;
    }
    if (!it->is_string()) ThrowJson(key, "is not text");
    return it->get<std::string>();
}

const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, bool required) {
    static const nlohmann::json empty = nlohmann::json::array();
    auto it = in.find(key);
    if (it == in.end()) {
        if (required) ThrowJson(key, "is missing");
        return empty;
    }
    if (!it->is_array()) ThrowJson(key, "is not a list");
    return *it;
}

void PutJsonName(nlohmann::json& out, const char* key, const CNameList& list, int value) {
    out[key] = value;
    out[std::string(key) + "Name"] = list.GetName(value);
}

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool ParseDigits(std::string_view text, size_t minCount, Digits& digits, bool anyHex,
                 bool wildcard) {
    if (text.size() < minCount || text.size() > 3) return false;
    Digits out{0xF, 0xF, 0xF};
    for (size_t i = 0; i < text.size(); ++i) {
        const int d = HexDigit(text[i]);
        const bool ok = anyHex ? d >= 0 : (d >= 0 && d <= 9) || (wildcard && d == 0xF);
        if (!ok) return false;
        out[i] = static_cast<uint8_t>(d);
    }
    digits = out;
    return true;
}

char DigitChar(uint8_t d) {
    return "0123456789ABCDEF"[d & 0xF];
}

}  // namespace

bool ParseMcc(std::string_view text, Digits& digits) {
    return ParseDigits(text, 3, digits, false, false);
}
bool ParseMnc(std::string_view text, Digits& digits) {
    return ParseDigits(text, 2, digits, false, true);
}
bool ParseMccLoose(std::string_view text, Digits& digits) {
    return ParseDigits(text, 3, digits, true, true);
}
bool ParseMncLoose(std::string_view text, Digits& digits) {
    return ParseDigits(text, 2, digits, true, true);
}

std::string FormatMcc(const Digits& d) {
    return {DigitChar(d[0]), DigitChar(d[1]), DigitChar(d[2])};
}

std::string FormatMnc(const Digits& d) {
    if (d[2] == 0xF) return {DigitChar(d[0]), DigitChar(d[1])};
    return {DigitChar(d[0]), DigitChar(d[1]), DigitChar(d[2])};
}

uint32_t PackDigits(const Digits& d) {
    return (static_cast<uint32_t>(d[0] & 0xF) << 8) | (static_cast<uint32_t>(d[1] & 0xF) << 4) |
           (d[2] & 0xFu);
}

Digits UnpackDigits(uint32_t value) {
    return {static_cast<uint8_t>((value >> 8) & 0xF), static_cast<uint8_t>((value >> 4) & 0xF),
            static_cast<uint8_t>(value & 0xF)};
}

}  // namespace Tarn::SysFields
