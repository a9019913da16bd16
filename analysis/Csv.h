// RFC 4180 tables as spreadsheets write them: the writer quotes what must be quoted and ends
// lines with CRLF; the reader takes what common spreadsheets produce (a UTF-8 byte order mark,
// CRLF or LF line ends, quoted cells with doubled quotes and line breaks, a missing final line
// end) and refuses anything else with the row and column where it went wrong.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn::Analysis {

using CsvRow = std::vector<std::string>;

// Limits no roaming list export comes near; a file beyond them is refused rather than read.
inline constexpr size_t kMaxCsvRows = 100000;
inline constexpr size_t kMaxCsvColumns = 1024;
inline constexpr size_t kMaxCsvCellBytes = 65536;

// One table as CSV text: a UTF-8 byte order mark (so spreadsheets read the names right), then
// each row with CRLF.
std::string WriteCsv(const std::vector<CsvRow>& rows);

struct CsvFault {
    size_t row = 0;     // 1-based, as spreadsheets number them (a quoted line break stays in its row)
    size_t column = 0;  // 1-based
    std::string message;
};

// Reads `text` into rows. Rows may differ in length. False with `fault` set on the first thing
// that is not CSV: a quote inside an unquoted cell, text after a closing quote, a quote left
// open, a bare carriage return, bytes that are not UTF-8, or a table beyond the limits above.
bool ReadCsv(std::string_view text, std::vector<CsvRow>& rows, CsvFault& fault);

}  // namespace Tarn::Analysis
