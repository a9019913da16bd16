// The editor's spreadsheet commands (File > Export as CSV / XLSX, File > Import CSV) and the
// provider database its operator names come from.
#pragma once

#include <QString>

#include "analysis/Providers.h"

class QWidget;

namespace Tarn {

class CRLDoc;
class CTessaryApp;

// Command ids of the spreadsheet and provider commands, clear of the message table's ones.
namespace Cmd {
inline constexpr int ExportCsv = 33000;
inline constexpr int ExportXlsx = 33001;
inline constexpr int ImportCsv = 33002;
inline constexpr int ProviderDatabase = 33003;
}  // namespace Cmd

// The settings key holding the provider database chosen by the user; empty or absent means the
// installed one.
inline constexpr const char* kProviderDatabaseKey = "Providers/Database";

// The directory in force, loaded once per path. A fault in it is shown once, as a warning, the
// first time it is used; names are then simply missing.
const Analysis::ProviderDirectory& EditorProviders(QWidget* parent);

// "Provider Database...": choose another serviceproviders.xml, or cancel to keep the current.
void ChooseProviderDatabase(QWidget* parent);

// Writes the list as the views hold it into the folder of the header.csv the user names.
bool ExportListCsv(CRLDoc& doc);
// Writes the list as the views hold it to a workbook the user names.
bool ExportListXlsx(CRLDoc& doc);
// Reads a folder a CSV export wrote (the user picks one of its files), asks where to save the
// list it holds, writes it and opens it. Every fault in the files is listed with its place.
bool ImportListCsv(CTessaryApp& app, QWidget* parent);

}  // namespace Tarn
