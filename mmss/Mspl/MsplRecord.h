// Mspl::Record: one entry of an MSPL priority table (system type, priority class, search time,
// network capability).
//
// NetworkCap is one-way on purpose: a NETWORK_CAP read from a file is kept and shown by name (or
// "Invalid"), but only "Voice-And-Data" (0) is written with NETWORK_CAP; any other value is
// written as "no NETWORK_CAP" (indicator 0, 17 bits). A record is 23 bits with NETWORK_CAP and
// 17 without.
//
// JSON errors and unknown names in text fields raise CDataException(InvalidSysTable).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "roaming_list/RLItem.h"

namespace Tarn::Mspl {

class Record : public CRLItem {
public:
    static constexpr const char* kTableName = "Mspl-Table";
    // The grid's headings, data columns 0..4 (the view shows "Index" in front of them).
    static const std::vector<std::string>& GridHeadings();
    // The record's own titles of the same columns.
    static const std::vector<std::string>& ColumnTitles();

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<Record>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    // The record's line of the text view, "\r\n" included.
    std::string ToText() const override;
    // Fields 1-4 by name; field 5 "Network_Cap_Not_Present" or a NetworkCap name in field 6.

    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    uint8_t sysType = 0;
    uint8_t priorityClass = 0;
    uint8_t sysPri = 0;
    uint8_t searchTime = 0;
    uint8_t spare = 0;  // kept with the record, never read or written
    uint8_t networkCap = 1;
};

}  // namespace Tarn::Mspl
