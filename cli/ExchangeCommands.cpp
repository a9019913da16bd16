// The spreadsheet verbs: csv (a roaming list as header.csv, acquisition.csv and system.csv) and
// xlsx (the same tables as one workbook). `build DIR` reads a csv directory back.
#include <iostream>

#include "analysis/CsvExchange.h"
#include "analysis/ListSource.h"
#include "analysis/XlsxExport.h"
#include "cli/Command.h"
#include "cli/ProviderOption.h"
#include "foundation/AtomicFile.h"

namespace Tarn::Cli {
namespace {

struct ExchangeArgs {
    std::string in, out;
    int part = 1;
    ProviderOption providers;
};

// The tables of the list in `in`, with the prefix it was read with; false after an error line.
bool Tables(const std::string& verb, const ExchangeArgs& a, Analysis::ListTables& tables) {
    std::string error;
    auto list = Analysis::LoadRoamingList(a.in, error, a.part);
    if (!list) {
        PrintError(verb, error);
        return false;
    }
    std::vector<uint8_t> prefix;
    if (list->prefixed) {
        std::vector<uint8_t> bytes;
        if (!ReadWholeFile(a.in, bytes, error)) {
            PrintError(verb, error);
            return false;
        }
        prefix = Analysis::PrefixOf(bytes);
    }
    tables = Analysis::ListToTables(*list->data, list->version, prefix,
                                    a.providers.Directory(verb));
    return true;
}

CLI::App* AddExchangeVerb(CLI::App& app, const char* name, const char* help, const char* outHelp,
                          ExchangeArgs& a) {
    CLI::App* sub = app.add_subcommand(name, help);
    sub->add_option("FILE", a.in, "A roaming list: binary, text or JSON form")->required();
    sub->add_option("-o,--output", a.out, outHelp)->required();
    sub->add_option("--part", a.part, "The list of a concatenated file to take (1 or 2)")
        ->check(CLI::Range(1, 2));
    a.providers.AddTo(sub);
    return sub;
}

const CommandRegistrar kCsv(90, "csv", [](CLI::App& app) {
    auto a = std::make_shared<ExchangeArgs>();
    AddExchangeVerb(app, "csv",
                    "Write a roaming list as header.csv, acquisition.csv and system.csv for a "
                    "spreadsheet; build DIR reads them back",
                    "The directory to write the three files into (created when missing)", *a);
    return std::function<int()>([a] {
        Analysis::ListTables tables;
        if (!Tables("csv", *a, tables)) return kExitFailure;
        std::string error;
        if (!Analysis::WriteListCsv(tables, a->out, error)) {
            PrintError("csv", error);
            return kExitFailure;
        }
        return kExitOk;
    });
});

const CommandRegistrar kXlsx(91, "xlsx", [](CLI::App& app) {
    auto a = std::make_shared<ExchangeArgs>();
    AddExchangeVerb(app, "xlsx",
                    "Write a roaming list as a workbook: a sheet per table, GEOs banded",
                    "The .xlsx file to write", *a);
    return std::function<int()>([a] {
        Analysis::ListTables tables;
        if (!Tables("xlsx", *a, tables)) return kExitFailure;
        std::string error;
        if (!Analysis::WriteListXlsx(tables, a->out, error)) {
            PrintError("xlsx", error);
            return kExitFailure;
        }
        return kExitOk;
    });
});

}  // namespace
}  // namespace Tarn::Cli
