#include "analysis/XlsxExport.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "analysis/SharedLibrary.h"

namespace Tarn::Analysis {
namespace {

namespace fs = std::filesystem;

// libxlsxwriter is opened on the first export: it brings libcrypto and minizip with it, which no
// other verb needs.
struct XlsxLibrary {
    decltype(&::workbook_new) workbookNew = nullptr;
    decltype(&::workbook_add_format) addFormat = nullptr;
    decltype(&::workbook_add_worksheet) addWorksheet = nullptr;
    decltype(&::workbook_close) close = nullptr;
    decltype(&::format_set_bold) setBold = nullptr;
    decltype(&::format_set_bottom) setBottom = nullptr;
    decltype(&::format_set_bg_color) setBgColor = nullptr;
    decltype(&::worksheet_write_number) writeNumber = nullptr;
    decltype(&::worksheet_write_blank) writeBlank = nullptr;
    decltype(&::worksheet_write_string) writeString = nullptr;
    decltype(&::worksheet_freeze_panes) freezePanes = nullptr;
    decltype(&::worksheet_set_column) setColumn = nullptr;
    decltype(&::worksheet_autofilter) autofilter = nullptr;
    decltype(&::lxw_strerror) strerror = nullptr;
};

// The library, or nothing with the reason in `error`.
const XlsxLibrary* Xlsx(std::string& error) {
    static XlsxLibrary x;
    static std::string failure;
    static const bool loaded = SharedLibrary::Resolve(
        TARN_XLSXWRITER_SONAME,
        {Bind("workbook_new", x.workbookNew), Bind("workbook_add_format", x.addFormat),
         Bind("workbook_add_worksheet", x.addWorksheet), Bind("workbook_close", x.close),
         Bind("format_set_bold", x.setBold), Bind("format_set_bottom", x.setBottom),
         Bind("format_set_bg_color", x.setBgColor),
         Bind("worksheet_write_number", x.writeNumber),
         Bind("worksheet_write_blank", x.writeBlank),
         Bind("worksheet_write_string", x.writeString),
         Bind("worksheet_freeze_panes", x.freezePanes),
         Bind("worksheet_set_column", x.setColumn), Bind("worksheet_autofilter", x.autofilter),
         Bind("lxw_strerror", x.strerror)},
        failure);
    error = failure;
    return loaded ? &x : nullptr;
}

// A value a spreadsheet may hold as a number without changing how it reads: plain decimal, no
// leading zero (an MNC "01" or a channel "0010" stays text), small enough to stay exact.
bool IsPlainNumber(const std::string& s) {
    if (s.empty() || s.size() > 15) return false;
    if (!std::all_of(s.begin(), s.end(), [](unsigned char c) { return c >= '0' && c <= '9'; }))
        return false;
    return s == "0" || s[0] != '0';
}

lxw_error WriteCell(const XlsxLibrary& x, lxw_worksheet* sheet, size_t row, size_t column,
                    const std::string& text, lxw_format* format) {
    const auto r = static_cast<lxw_row_t>(row);
    const auto c = static_cast<lxw_col_t>(column);
    if (IsPlainNumber(text)) return x.writeNumber(sheet, r, c, std::stod(text), format);
    if (text.empty()) return format ? x.writeBlank(sheet, r, c, format) : LXW_NO_ERROR;
    return x.writeString(sheet, r, c, text.c_str(), format);
}

struct Formats {
    lxw_format* title;
    lxw_format* band;
};

lxw_error WriteSheet(const XlsxLibrary& x, lxw_workbook* book, const ExchangeTable& table,
                     const Formats& formats) {
    lxw_worksheet* sheet = x.addWorksheet(book, table.name.c_str());
    if (!sheet) return LXW_ERROR_MEMORY_MALLOC_FAILED;
    size_t width = table.titles.size();
    for (const auto& row : table.rows) width = std::max(width, row.size());
    if (width == 0) return LXW_NO_ERROR;
    if (width > LXW_COL_MAX || table.rows.size() + 1 > LXW_ROW_MAX)
        return LXW_ERROR_WORKSHEET_INDEX_OUT_OF_RANGE;
    for (size_t c = 0; c < table.titles.size(); ++c)
        if (lxw_error e = WriteCell(x, sheet, 0, c, table.titles[c], formats.title)) return e;
    for (size_t r = 0; r < table.rows.size(); ++r) {
        // Every other GEO is shaded across the whole row, so a GEO reads as one block.
        const bool shaded = r < table.geos.size() && table.geos[r] % 2 == 1;
        lxw_format* format = shaded ? formats.band : nullptr;
        const CsvRow& row = table.rows[r];
        for (size_t c = 0; c < width; ++c)
            if (lxw_error e =
                    WriteCell(x, sheet, r + 1, c, c < row.size() ? row[c] : std::string(), format))
                return e;
    }
    x.freezePanes(sheet, 1, 0);
    x.setColumn(sheet, 0, static_cast<lxw_col_t>(width - 1), 14, nullptr);
    return x.autofilter(sheet, 0, 0, static_cast<lxw_row_t>(table.rows.size()),
                        static_cast<lxw_col_t>(width - 1));
}

}  // namespace

bool WriteListXlsx(const ListTables& tables, const std::string& path, std::string& error) {
    std::string unavailable;
    const XlsxLibrary* x = Xlsx(unavailable);
    if (!x) {
        error = path + ": " + unavailable;
        return false;
    }
    const fs::path target(path);
    std::random_device random;
    std::string tempName = ".";
    tempName.append(target.filename().string()).append(".tmp").append(std::to_string(random()));
    const fs::path temp = target.parent_path() / tempName;
    lxw_workbook* book = x->workbookNew(temp.c_str());
    if (!book) {
        error = path + ": cannot create the workbook";
        return false;
    }
    Formats formats{x->addFormat(book), x->addFormat(book)};
    x->setBold(formats.title);
    x->setBottom(formats.title, LXW_BORDER_THIN);
    x->setBgColor(formats.band, 0xE8EEF7);

    lxw_error fault = LXW_NO_ERROR;
    for (const ExchangeTable* table : {&tables.header, &tables.acquisition, &tables.system})
        if (!fault) fault = WriteSheet(*x, book, *table, formats);
    // Closing writes the file and frees the workbook, whatever happened before.
    const lxw_error closed = x->close(book);
    if (!fault) fault = closed;
    std::error_code ec;
    if (!fault) fs::rename(temp, target, ec);
    if (fault || ec) {
        error = path + ": " + (fault ? x->strerror(fault) : ec.message());
        fs::remove(temp, ec);
        return false;
    }
    return true;
}

}  // namespace Tarn::Analysis
