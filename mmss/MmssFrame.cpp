#include "mmss/MmssFrame.h"

// Standard library
#include <algorithm>
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "roaming_list/NameTables.h"

namespace Tarn::Mmss {

uint64_t BitsLeft(const CRLFile& file) {
    const uint64_t length = file.GetLength();
    const uint64_t position = file.GetPosition();
    if (position >= length) return 0;
    return (length - position) * 8 - file.GetBitOffset();
}

void Require(const CRLFile& file, uint64_t bits, const char* what) {
    if (BitsLeft(file) < bits)
        throw CDataException(DataError::PrematureEof, std::string("(") + what + " at byte " +
                                                          std::to_string(file.GetPosition()) +
                                                          " of " +
                                                          std::to_string(file.GetLength()) + ")");
}

uint32_t Take(CRLFile& file, int width, const char* what) {
    Require(file, static_cast<uint64_t>(width), what);
    return file.ReadBits(width);
}

uint32_t ReadRecordList(CRLFile& file, CRLItemList& list, const RecordMaker& make) {
    const uint32_t count = Take(file, 8, "record count");
    list.SetAnnouncedCount(count);
    uint32_t bits = 8;
    for (uint32_t i = 0; i < count; ++i) {
        std::unique_ptr<CRLItem> record = make();
        bits += record->Read(file);
        list.Add(std::move(record));
    }
    return bits;
}

uint32_t WriteRecordList(CRLFile& file, const CRLItemList& list) {
    // The count has eight bits; a longer list would silently lose records, so it is refused.
    if (list.GetSize() > kMaxListRecords)
        throw FormatError("A table holds " + std::to_string(list.GetSize()) +
                          " records; at most 255 fit in the file.");
    file.WriteBits(8, static_cast<uint32_t>(list.GetSize()));
    return 8 + list.Write(file);
}

uint32_t PadBody(CRLFile& file, uint64_t bodyBits) {
    return static_cast<uint32_t>(file.PadToByte(bodyBits));
}

void PatchSizeWord(CRLFile& file, uint64_t totalBits, const char* kind) {
    const uint64_t bytes = totalBits / 8;
    if (bytes > kMaxSizeWordBytes)
        throw FormatError(std::string("The ") + kind + " would be " + GroupedNumber(bytes) +
                          " bytes; its 16-bit size field holds at most " +
                          GroupedNumber(kMaxSizeWordBytes) + ".");
    file.Seek(0);
    file.SetBitOffset(0);
    file.WriteBits(16, static_cast<uint32_t>(bytes));
}

std::string GroupedNumber(uint64_t value) {
    // Built front to back by appending: inserting into the middle of the string makes GCC 12 at
    // -O3 report an overlapping copy that cannot happen.
    const std::string digits = std::to_string(value);
    std::string out;
    out.reserve(digits.size() + digits.size() / 3);
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return out;
}

long long ParseDecimal(const std::string& text) {
    constexpr long long kCeiling = 1'000'000'000'000'000LL;
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min(kCeiling, value * 10 + (text[i] - '0'));
    return negative ? -value : value;
}

bool IsDigits(const std::string& text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Decimal(long long value) {
    return std::to_string(value);
}

void CheckHeaderValue(const std::string& value, long long high, const std::string& missing,
                      const std::string& invalid, std::vector<std::string>& problems) {
    if (value.empty())
        problems.push_back(missing);
    else if (ParseDecimal(value) > high)
        problems.push_back(invalid);
}

int PlmnListKindFromPath(const std::string& path) {
    static const std::pair<const char*, int> kNeedles[] = {
        {".ehplmn", 1}, {".EHPLMN", 1}, {".uplmn", 3}, {".UPLMN", 3}, {".oplmn", 2}, {".OPLMN", 2},
    };
    for (const auto& [needle, kind] : kNeedles)
        if (path.find(needle) != std::string::npos) return kind;
    return 0;
}

// ---- PLMN codes ----

void ReadPlmnDigits(CRLFile& file, Digits& mcc, Digits& mnc) {
    Require(file, 24, "PLMN code");
    mcc[1] = static_cast<uint8_t>(file.ReadBits(4));
    mcc[0] = static_cast<uint8_t>(file.ReadBits(4));
    mnc[2] = static_cast<uint8_t>(file.ReadBits(4));
    mcc[2] = static_cast<uint8_t>(file.ReadBits(4));
    mnc[1] = static_cast<uint8_t>(file.ReadBits(4));
    mnc[0] = static_cast<uint8_t>(file.ReadBits(4));
}

void WritePlmnDigits(CRLFile& file, const Digits& mcc, const Digits& mnc) {
    file.WriteBits(4, mcc[1] & 0xFu);
    file.WriteBits(4, mcc[0] & 0xFu);
    file.WriteBits(4, mnc[2] & 0xFu);
    file.WriteBits(4, mcc[2] & 0xFu);
    file.WriteBits(4, mnc[1] & 0xFu);
    file.WriteBits(4, mnc[0] & 0xFu);
}

std::string ShowMcc(const Digits& mcc) {
    return std::to_string(mcc[0]) + std::to_string(mcc[1]) + std::to_string(mcc[2]);
}

std::string ShowMnc(const Digits& mnc) {
    static const char kHex[] = "0123456789ABCDEF";
    if (mnc[0] == 15 || mnc[1] == 15)
        return {kHex[mnc[0] & 0xF], kHex[mnc[1] & 0xF], kHex[mnc[2] & 0xF]};
    if (mnc[2] == 15) return std::to_string(mnc[0]) + std::to_string(mnc[1]);
    return std::to_string(mnc[0]) + std::to_string(mnc[1]) + std::to_string(mnc[2]);
}

bool ParseMcc(const std::string& text, Digits& mcc) {
    if (text.size() != 3 || !IsDigits(text)) return false;
    for (int i = 0; i < 3; ++i) mcc[i] = static_cast<uint8_t>(text[i] - '0');
    return true;
}

bool ParseMnc(const std::string& text, Digits& mnc) {
    if (text.size() != 2 && text.size() != 3) return false;
    Digits d = {15, 15, 15};
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9')
            d[i] = static_cast<uint8_t>(c - '0');
        else if (c != 'F' && c != 'f')
            return false;
    }
    mnc = d;
    return true;
}

std::string NibbleText(const Digits& digits, bool mnc) {
    static const char kHex[] = "0123456789ABCDEF";
    if (mnc && digits[2] == 15 && digits[0] <= 9 && digits[1] <= 9)
        return {kHex[digits[0]], kHex[digits[1]]};
    return {kHex[digits[0] & 0xF], kHex[digits[1] & 0xF], kHex[digits[2] & 0xF]};
}

bool ParseNibbleText(const std::string& text, bool mnc, Digits& digits) {
    if (text.size() != 3 && !(mnc && text.size() == 2)) return false;
    Digits d = {15, 15, 15};
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9')
            d[i] = static_cast<uint8_t>(c - '0');
        else if (c >= 'A' && c <= 'F')
            d[i] = static_cast<uint8_t>(c - 'A' + 10);
        else if (c >= 'a' && c <= 'f')
            d[i] = static_cast<uint8_t>(c - 'a' + 10);
        else
            return false;
    }
    digits = d;
    return true;
}

// ---- grid cells ----

std::string RequiredCell(const Grid& grid, int column, int row) {
    std::string text = grid.GetCellText(column, row);
    if (text.empty() || text == kBadValue)
        throw GridError(Msg::RequiredValueMissing, column, row, grid.GetTableName());
    return text;
}

long long NumberCell(const Grid& grid, int column, int row, long long low, long long high) {
    std::string text = RequiredCell(grid, column, row);
    const auto first = text.find_first_not_of(" \t");
    const auto last = text.find_last_not_of(" \t");
    text = first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
    const long long value = ParseDecimal(text);
    if (!IsDigits(text) || value < low || value > high)
        throw GridError(Msg::OutOfRange, column, row, grid.GetTableName(), low, high);
    return value;
}

int NameCell(const Grid& grid, int column, int row, const CNameList& names, int current) {
    const std::string text = RequiredCell(grid, column, row);
    if (text == kInvalidName) return current;
    int value = 0;
    if (names.FindValue(text, value)) return value;
    int low = 0, high = 0;
    if (!names.Entries().empty()) {
        const auto [lo, hi] =
            std::minmax_element(names.Entries().begin(), names.Entries().end(),
                                [](const auto& a, const auto& b) { return a.first < b.first; });
        low = lo->first;
        high = hi->first;
    }
    throw GridError(Msg::OutOfRange, column, row, grid.GetTableName(), low, high);
}

void SetNameCell(Grid& grid, int column, int row, const CNameList& names, int value) {
    grid.SetCellDropDown(column, row, names.Choices());
    grid.SetCellText(column, row, names.GetName(value));
}

void SetHeadings(Grid& grid, const std::vector<std::string>& titles) {
    if (grid.GetColumnCount() < static_cast<int>(titles.size()))
        grid.SetColumnCount(static_cast<int>(titles.size()));
    for (size_t i = 0; i < titles.size(); ++i)
        grid.SetColumnHeading(static_cast<int>(i), titles[i]);
}

// ---- JSON fields ----

namespace {

[[noreturn]] void JsonFail(DataError code, const char* key, const std::string& why) {
    throw CDataException(code, std::string("(") + key + " " + why + ")");
}

}  // namespace

uint32_t JsonUIntOr(const nlohmann::json& in, const char* key, uint32_t high, uint32_t fallback,
                    DataError code) {
    if (!in.is_object()) JsonFail(code, key, "belongs to an object, but the record is not one");
    const auto it = in.find(key);
    if (it == in.end()) return fallback;
    if (it->is_number_unsigned()) {
        const auto value = it->get<uint64_t>();
        if (value > high)
            JsonFail(code, key, std::to_string(value) + " is outside 0 - " + std::to_string(high));
        return static_cast<uint32_t>(value);
    }
    if (it->is_number_integer())
        JsonFail(code, key,
                 std::to_string(it->get<int64_t>()) + " is outside 0 - " + std::to_string(high));
    JsonFail(code, key, "must be a whole number");
}

uint32_t JsonUInt(const nlohmann::json& in, const char* key, uint32_t high, DataError code) {
    if (!in.is_object() || !in.contains(key)) JsonFail(code, key, "is missing");
    return JsonUIntOr(in, key, high, 0, code);
}

bool JsonBoolOr(const nlohmann::json& in, const char* key, bool fallback, DataError code) {
    if (!in.is_object()) JsonFail(code, key, "belongs to an object, but the record is not one");
    const auto it = in.find(key);
    if (it == in.end()) return fallback;
    if (!it->is_boolean()) JsonFail(code, key, "must be true or false");
    return it->get<bool>();
}

std::string JsonTextOr(const nlohmann::json& in, const char* key, const std::string& fallback,
                       DataError code) {
    if (!in.is_object()) JsonFail(code, key, "belongs to an object, but the record is not one");
    const auto it = in.find(key);
    if (it == in.end()) return fallback;
    if (!it->is_string()) JsonFail(code, key, "must be a text");
    return it->get<std::string>();
}

std::string JsonText(const nlohmann::json& in, const char* key, DataError code) {
    if (!in.is_object() || !in.contains(key)) JsonFail(code, key, "is missing");
    return JsonTextOr(in, key, {}, code);
}

const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, DataError code) {
    if (!in.is_object() || !in.contains(key)) JsonFail(code, key, "is missing");
    const auto& value = in.at(key);
    if (!value.is_array()) JsonFail(code, key, "must be a list");
    return value;
}

void PutFormValue(nlohmann::json& out, const char* key, const std::string& value) {
    if (IsDigits(value) && value.size() <= 15 && Decimal(ParseDecimal(value)) == value)
        out[key] = ParseDecimal(value);
    else
        out[key] = value;
}

void PutRecords(nlohmann::json& out, const char* key, const CRLItemList& records) {
    auto array = nlohmann::json::array();
    for (size_t i = 0; i < records.GetSize(); ++i) {
        nlohmann::json record = {{"index", i}};
        records.GetAt(i)->ToJson(record);
        array.push_back(std::move(record));
    }
    out[key] = std::move(array);
}

std::string GetFormValue(const nlohmann::json& in, const char* key, DataError code) {
    if (!in.is_object()) JsonFail(code, key, "belongs to an object, but the file is not one");
    const auto it = in.find(key);
    if (it == in.end()) return {};
    if (it->is_string()) return it->get<std::string>();
    if (it->is_number_unsigned()) return std::to_string(it->get<uint64_t>());
    if (it->is_number_integer()) return std::to_string(it->get<int64_t>());
    JsonFail(code, key, "must be a number or a text");
}

std::vector<std::string> SplitFields(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    while (start <= line.size()) {
        size_t end = line.find('\t', start);
        if (end == std::string::npos) end = line.size();
        std::string piece = line.substr(start, end - start);
        const auto first = piece.find_first_not_of(" \r\n");
        if (first != std::string::npos) {
            const auto last = piece.find_last_not_of(" \r\n");
            fields.push_back(piece.substr(first, last - first + 1));
        }
        start = end + 1;
    }
    return fields;
}

}  // namespace Tarn::Mmss
