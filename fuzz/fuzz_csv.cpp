// Feeds arbitrary bytes to the spreadsheet reader: as a CSV table, and as the system table of a
// list export (with a fixed, valid header and acquisition table). Whatever reads must write back
// and read the same rows; whatever builds a list must be a list the writer accepts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/CsvExchange.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace Tarn::Analysis;
    const std::string text(reinterpret_cast<const char*>(data), size);

    std::vector<CsvRow> rows;
    CsvFault fault;
    if (ReadCsv(text, rows, fault)) {
        std::vector<CsvRow> again;
        if (!ReadCsv(WriteCsv(rows), again, fault)) std::abort();
        // A lone empty row reads back as nothing: the only difference writing may make.
        if (again != rows && !(rows.size() == 1 && rows[0] == CsvRow{""} && again.empty()))
            std::abort();
    } else if (fault.row == 0 || fault.column == 0 || fault.message.empty()) {
        std::abort();
    }

    const CsvSource header{"header.csv",
                           "Roaming List Type,Preferred Only,Default Roaming Indicator,"
                           "Preferred Roaming List ID\nIS-683E,FALSE,1,7\n"};
    const CsvSource acquisition{"acquisition.csv", "Acq Type,System\nAnalog Cellular,A\n"};
    const ImportedList list = ReadListTables(header, acquisition, {"system.csv", text}, true);
    if (list.data) {
        auto manager = Tarn::CreateClassFactory(list.version)->CreateManager();
        auto copy = std::make_unique<Tarn::CRLData>(*list.data);
        manager->AttachData(copy);
        Tarn::CRLFile file;
        if (!manager->WriteList(file)) std::abort();
    } else if (list.errors.empty()) {
        std::abort();
    }
    return 0;
}
