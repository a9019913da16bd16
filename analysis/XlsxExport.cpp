#include "analysis/XlsxExport.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <filesystem>
#include <random>

namespace Tarn::Analysis {
namespace {

namespace fs = std::filesystem;

// A value a spreadsheet may hold as a number without changing how it reads: plain decimal, no
// leading zero (an MNC "01" or a channel "0010" stays text), small enough to stay exact.
bool IsPlainNumber(const std::string& s) {
    if (s.empty() || s.size() > 15) return false;
    if (!std::all_of(s.begin(), s.end(), [](unsigned char c) { return c >= '0' && c <= '9'; }))
        return false;
    return s == "0" || s[0] != '0';
}

lxw_error WriteCell(lxw_worksheet* sheet, size_t row, size_t column, const std::string& text,
                    lxw_format* format) {
    const auto r = static_cast<lxw_row_t>(row);
    const auto c = static_cast<lxw_col_t>(column);
    if (IsPlainNumber(text)) return worksheet_write_number(sheet, r, c, std::stod(text), format);
    if (text.empty()) return format ? worksheet_write_blank(sheet, r, c, format) : LXW_NO_ERROR;
    return worksheet_write_string(sheet, r, c, text.c_str(), format);
}

struct Formats {
    lxw_format* title;
    lxw_format* band;
};

lxw_error WriteSheet(lxw_workbook* book, const ExchangeTable& table, const Formats& formats) {
    lxw_worksheet* sheet = workbook_add_worksheet(book, table.name.c_str());
    if (!sheet) return LXW_ERROR_MEMORY_MALLOC_FAILED;
    size_t width = table.titles.size();
    for (const auto& row : table.rows) width = std::max(width, row.size());
    if (width == 0) return LXW_NO_ERROR;
    if (width > LXW_COL_MAX || table.rows.size() + 1 > LXW_ROW_MAX)
        return LXW_ERROR_WORKSHEET_INDEX_OUT_OF_RANGE;
    for (size_t c = 0; c < table.titles.size(); ++c)
        if (lxw_error e = WriteCell(sheet, 0, c, table.titles[c], formats.title)) return e;
    for (size_t r = 0; r < table.rows.size(); ++r) {
        // Every other GEO is shaded across the whole row, so a GEO reads as one block.
        const bool shaded = r < table.geos.size() && table.geos[r] % 2 == 1;
        lxw_format* format = shaded ? formats.band : nullptr;
        const CsvRow& row = table.rows[r];
        for (size_t c = 0; c < width; ++c)
            if (lxw_error e = WriteCell(sheet, r + 1, c, c < row.size() ? row[c] : std::string(), format))
                return e;
    }
    worksheet_freeze_panes(sheet, 1, 0);
    worksheet_set_column(sheet, 0, static_cast<lxw_col_t>(width - 1), 14, nullptr);
    return worksheet_autofilter(sheet, 0, 0, static_cast<lxw_row_t>(table.rows.size()),
                                static_cast<lxw_col_t>(width - 1));
}

}  // namespace

bool WriteListXlsx(const ListTables& tables, const std::string& path, std::string& error) {
    const fs::path target(path);
    std::random_device random;
    std::string tempName = ".";
    tempName.append(target.filename().string()).append(".tmp").append(std::to_string(random()));
    const fs::path temp = target.parent_path() / tempName;
    lxw_workbook* book = workbook_new(temp.c_str());
    if (!book) {
        error = path + ": cannot create the workbook";
        return false;
    }
    Formats formats{workbook_add_format(book), workbook_add_format(book)};
    format_set_bold(formats.title);
    format_set_bottom(formats.title, LXW_BORDER_THIN);
    format_set_bg_color(formats.band, 0xE8EEF7);

    lxw_error fault = LXW_NO_ERROR;
    for (const ExchangeTable* table : {&tables.header, &tables.acquisition, &tables.system})
        if (!fault) fault = WriteSheet(book, *table, formats);
    // Closing writes the file and frees the workbook, whatever happened before.
    const lxw_error closed = workbook_close(book);
    if (!fault) fault = closed;
    std::error_code ec;
    if (!fault) fs::rename(temp, target, ec);
    if (fault || ec) {
        error = path + ": " + (fault ? lxw_strerror(fault) : ec.message());
        fs::remove(temp, ec);
        return false;
    }
    return true;
}

}  // namespace Tarn::Analysis
