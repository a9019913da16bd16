// A roaming list as a workbook: one sheet per table (header, acquisition, system) with a frozen
// title row and an auto-filter, the system table's GEOs shaded in alternating bands.
#pragma once

#include <string>

#include "analysis/CsvExchange.h"

namespace Tarn::Analysis {

// Writes the workbook to `path` atomically (a temporary file beside it renamed over it). False
// with a reason on failure.
bool WriteListXlsx(const ListTables& tables, const std::string& path, std::string& error);

}  // namespace Tarn::Analysis
