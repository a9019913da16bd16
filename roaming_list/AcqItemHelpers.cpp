#include "roaming_list/AcqItemHelpers.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"

namespace Tarn::AcqDetail {
namespace {

std::string Trim(const std::string& text) {
    size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return {};
    size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

}  // namespace

uint32_t Put(CRLFile& file, int width, uint32_t value, const char* what) {
    if (!Fits(value, width))
        throw CDataException(DataError::InvalidAcqTable,
                             "(" + std::string(what) + " " + std::to_string(value) +
                                 " does not fit " + std::to_string(width) + " bits)");
    file.WriteBits(width, value);
    return static_cast<uint32_t>(width);
}

int ColumnLimit(const Grid& grid, int maxColumn) {
    return std::min(grid.GetColumnCount(), maxColumn + 1);
}

bool IsBlankCell(const Grid& grid, int column, int row) {
    return Trim(grid.GetCellText(column, row)).empty();
}

bool IsBadCell(const Grid& grid, int column, int row) {
    return Trim(grid.GetCellText(column, row)) == kBadValue;
}

bool ParseNumber(const std::string& text, long long& value) {
    std::string t = Trim(text);
    if (t.empty() || t.size() > 18) return false;
    long long v = 0;
    for (char c : t) {
        if (c < '0' || c > '9') return false;
        v = v * 10 + (c - '0');
    }
    value = v;
    return true;
}

void RequireCell(const Grid& grid, int column, int row) {
    if (IsBlankCell(grid, column, row) || IsBadCell(grid, column, row))
        throw GridError(Msg::RequiredValueMissing, column, row, kAcqTableName);
}

uint32_t ReadNumberCell(const Grid& grid, int column, int row, long long low, long long high) {
    RequireCell(grid, column, row);
    long long value = 0;
    if (!ParseNumber(grid.GetCellText(column, row), value) || value < low || value > high)
        throw GridError(Msg::OutOfRange, column, row, kAcqTableName, low, high);
    return static_cast<uint32_t>(value);
}

uint32_t ReadNamedCell(const Grid& grid, int column, int row, const CNameList& list, long long high,
                       std::optional<uint32_t> current) {
    RequireCell(grid, column, row);
    const std::string text = Trim(grid.GetCellText(column, row));
    int value = 0;
    if (list.FindValue(text, value)) return static_cast<uint32_t>(value);
    if (current && text == list.GetName(static_cast<int>(*current))) return *current;
    long long number = 0;
    if (!ParseNumber(text, number)) {
        list.GetValue(text);  // raises the list's data error with the name
        throw CDataException(list.Error());
    }
    if (number > high) throw GridError(Msg::OutOfRange, column, row, kAcqTableName, 0, high);
    return static_cast<uint32_t>(number);
}

size_t ScanEntries(const Grid& grid, int row, int firstColumn, int width, int limit,
                   unsigned gapMessage, std::initializer_list<bool> required) {
    // A grid too narrow for even one entry has its first cell missing.
    if (firstColumn + width > limit)
        throw GridError(Msg::RequiredValueMissing, firstColumn, row, kAcqTableName);
    size_t filled = 0;
    bool gap = false;
    for (int first = firstColumn; first + width <= limit; first += width) {
        bool blank = true;
        for (int c = first; c < first + width; ++c) {
            if (IsBadCell(grid, c, row))
                throw GridError(Msg::RequiredValueMissing, c, row, kAcqTableName);
            if (!IsBlankCell(grid, c, row)) blank = false;
        }
        if (blank) {
            if (first == firstColumn)
                throw GridError(Msg::RequiredValueMissing, first, row, kAcqTableName);
            gap = true;
            continue;
        }
        if (gap) throw GridError(gapMessage, first, row, kAcqTableName);
        int c = first;
        for (bool need : required) {
            if (need && IsBlankCell(grid, c, row))
                throw GridError(Msg::RequiredValueMissing, c, row, kAcqTableName);
            ++c;
        }
        ++filled;
    }
    return filled;
}

void SetDropDownCell(Grid& grid, int column, int row, const CNameList& list,
                     const std::string& text) {
    grid.SetCellDropDown(column, row, list.Choices());
    grid.SetCellText(column, row, text);
}

void SetEditCell(Grid& grid, int column, int row, const char* mask, const std::string& text) {
    grid.SetCellEdit(column, row, mask);
    grid.SetCellText(column, row, text);
}

void SetHeadings(Grid& grid, const std::vector<std::string>& headings, int limit) {
    for (int c = 1; c < limit; ++c) {
        size_t i = static_cast<size_t>(c - 1);
        grid.SetColumnHeading(c, i < headings.size() ? headings[i] : std::string{});
    }
}

std::string Numbered(const char* format, size_t n) {
    return FormatText(format, {n});
}

std::vector<std::string> TrimTokens(const std::vector<std::string>& tokens) {
    std::vector<std::string> out(tokens);
    while (!out.empty() && Trim(out.back()).empty()) out.pop_back();
    return out;
}

uint32_t TextNumber(const std::string& token, uint32_t max, DataError code, const char* what) {
    long long value = 0;
    if (!ParseNumber(token, value) || value > static_cast<long long>(max))
        throw CDataException(code, "(" + std::string(what) + " \"" + token +
                                       "\" is not a number from 0 to " + std::to_string(max) + ")");
    return static_cast<uint32_t>(value);
}

void BadTokenCount(size_t got, const char* expected) {
    throw CDataException(DataError::InvalidAcqTable, "(" + std::to_string(got) + " fields where " +
                                                         expected + " are expected)");
}

uint32_t JsonNumber(const nlohmann::json& in, const char* key, uint32_t max, DataError code) {
    if (!in.is_object() || !in.contains(key))
        throw CDataException(code, "(" + std::string(key) + " is missing)");
    return JsonValue(in.at(key), key, max, code);
}

uint32_t JsonValue(const nlohmann::json& v, const char* key, uint32_t max, DataError code) {
    if (!v.is_number_integer() || (!v.is_number_unsigned() && v.get<long long>() < 0))
        throw CDataException(code, "(" + std::string(key) + " is not an unsigned number)");
    uint64_t value = v.get<uint64_t>();
    if (value > max)
        throw CDataException(code, "(" + std::string(key) + " " + std::to_string(value) +
                                       " is above " + std::to_string(max) + ")");
    return static_cast<uint32_t>(value);
}

uint32_t JsonNumberOr(const nlohmann::json& in, const char* key, uint32_t max, DataError code,
                      uint32_t fallback) {
    if (in.is_object() && !in.contains(key)) return fallback;
    return JsonNumber(in, key, max, code);
}

const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, size_t maxSize,
                                DataError code) {
    if (!in.is_object() || !in.contains(key))
        throw CDataException(code, "(" + std::string(key) + " is missing)");
    const nlohmann::json& v = in.at(key);
    if (!v.is_array()) throw CDataException(code, "(" + std::string(key) + " is not a list)");
    if (v.size() > maxSize)
        throw CDataException(code, "(" + std::string(key) + " holds " + std::to_string(v.size()) +
                                       " entries, at most " + std::to_string(maxSize) + " fit)");
    return v;
}

const nlohmann::json& JsonObject(const nlohmann::json& in, const char* what, DataError code) {
    if (!in.is_object())
        throw CDataException(code, "(" + std::string(what) + " entry is not an object)");
    return in;
}

}  // namespace Tarn::AcqDetail
