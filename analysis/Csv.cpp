#include "analysis/Csv.h"

namespace Tarn::Analysis {
namespace {

constexpr std::string_view kBom = "\xEF\xBB\xBF";

bool NeedsQuotes(const std::string& cell) {
    return cell.find_first_of(",\"\r\n") != std::string::npos ||
           (!cell.empty() && (cell.front() == ' ' || cell.back() == ' '));
}

// The length of the UTF-8 sequence starting at `i`, or 0 when it is not a valid one (overlong
// forms, surrogates and values beyond U+10FFFF included).
size_t Utf8Length(std::string_view s, size_t i) {
    const auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = b(i);
    if (c < 0x80) return 1;
    size_t n = 0;
    unsigned min = 0;
    unsigned value = 0;
    if (c >= 0xC2 && c <= 0xDF) n = 2, min = 0x80, value = c & 0x1F;
    else if (c >= 0xE0 && c <= 0xEF) n = 3, min = 0x800, value = c & 0x0F;
    else if (c >= 0xF0 && c <= 0xF4) n = 4, min = 0x10000, value = c & 0x07;
    else return 0;
    if (i + n > s.size()) return 0;
    for (size_t k = 1; k < n; ++k) {
        if ((b(i + k) & 0xC0) != 0x80) return 0;
        value = (value << 6) | (b(i + k) & 0x3F);
    }
    if (value < min || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
    return n;
}

}  // namespace

std::string WriteCsv(const std::vector<CsvRow>& rows) {
    std::string out(kBom);
    for (const auto& row : rows) {
        for (size_t c = 0; c < row.size(); ++c) {
            if (c) out += ',';
            if (!NeedsQuotes(row[c])) {
                out += row[c];
                continue;
            }
            out += '"';
            for (char ch : row[c]) {
                if (ch == '"') out += '"';
                out += ch;
            }
            out += '"';
        }
        out += "\r\n";
    }
    return out;
}

bool ReadCsv(std::string_view text, std::vector<CsvRow>& rows, CsvFault& fault) {
    rows.clear();
    if (text.substr(0, kBom.size()) == kBom) text.remove_prefix(kBom.size());
    CsvRow row;
    std::string cell;
    bool quoted = false;      // inside a quoted cell
    bool afterQuote = false;  // a quoted cell was closed; only a comma or a line end may follow
    bool rowStarted = false;
    const auto fail = [&](std::string message) {
        fault = {rows.size() + 1, row.size() + 1, std::move(message)};
        return false;
    };
    const auto endCell = [&]() {
        if (row.size() >= kMaxCsvColumns) return false;
        row.push_back(std::move(cell));
        cell.clear();
        afterQuote = false;
        return true;
    };
    const auto endRow = [&]() {
        if (!endCell()) return fail("more than " + std::to_string(kMaxCsvColumns) + " columns");
        if (rows.size() >= kMaxCsvRows) return fail("more than " + std::to_string(kMaxCsvRows) + " rows");
        rows.push_back(std::move(row));
        row.clear();
        rowStarted = false;
        return true;
    };
    for (size_t i = 0; i < text.size();) {
        const char ch = text[i];
        const size_t length = Utf8Length(text, i);
        if (length == 0) return fail("the file is not UTF-8 text");
        if (length > 1) {
            if (afterQuote) return fail("text after the closing quote of a cell");
            cell.append(text.substr(i, length));
            rowStarted = true;
            i += length;
        } else if (quoted) {
            if (ch == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                cell += '"';
                i += 2;
                continue;
            }
            if (ch == '"') quoted = false, afterQuote = true;
            else cell += ch;
            ++i;
        } else if (ch == ',') {
            if (!endCell()) return fail("more than " + std::to_string(kMaxCsvColumns) + " columns");
            rowStarted = true;
            ++i;
        } else if (ch == '\r' || ch == '\n') {
            if (ch == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n'))
                return fail("a carriage return that does not end a line");
            if (!endRow()) return false;
            i += ch == '\r' ? 2 : 1;
        } else if (ch == '"') {
            if (!cell.empty() || afterQuote) return fail("a quote inside a cell that is not quoted");
            quoted = true;
            rowStarted = true;
            ++i;
        } else {
            if (afterQuote) return fail("text after the closing quote of a cell");
            cell += ch;
            rowStarted = true;
            ++i;
        }
        if (cell.size() > kMaxCsvCellBytes)
            return fail("a cell longer than " + std::to_string(kMaxCsvCellBytes) + " bytes");
    }
    if (quoted) return fail("a quoted cell is never closed");
    if (rowStarted || !cell.empty() || !row.empty()) return endRow();
    return true;
}

}  // namespace Tarn::Analysis
