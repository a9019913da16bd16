#include "mmss/Mspl/MsplRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "grid/Grid.h"
#include "mmss/MmssFrame.h"
#include "mmss/MmssNames.h"

namespace Tarn::Mspl {
namespace {

constexpr DataError kError = DataError::InvalidSysTable;

const Mmss::NameTables& Names() {
    return Mmss::NameTables::Instance();
}

}  // namespace

const std::vector<std::string>& Record::GridHeadings() {
    // "Seach" is what the editor has always shown; users search the manual for it as spelled.
    static const std::vector<std::string> kTitles = {"Sys Type", "Priority Class", "Sys Priority",
                                                     "Higher Priority Seach", "Network Cap"};
    return kTitles;
}

const std::vector<std::string>& Record::ColumnTitles() {
    static const std::vector<std::string> kTitles = {"Sys Type", "Priority Class", "Sys Priority",
                                                     "High Pri Search Time", "Network Cap"};
    return kTitles;
}

uint32_t Record::Read(CRLFile& file) {
    sysType = static_cast<uint8_t>(Mmss::Take(file, 8, "MSPL SYS_TYPE"));
    priorityClass = static_cast<uint8_t>(Mmss::Take(file, 4, "MSPL PRI_CLASS"));
    sysPri = static_cast<uint8_t>(Mmss::Take(file, 1, "MSPL SYS_PRI"));
    searchTime = static_cast<uint8_t>(Mmss::Take(file, 3, "MSPL HIGHER_PRI_SRCH_TIME"));
    if (Mmss::Take(file, 1, "MSPL NETWORK_CAP_IND")) {
        networkCap = static_cast<uint8_t>(Mmss::Take(file, 6, "MSPL NETWORK_CAP"));
        return 23;
    }
    networkCap = 1;
    return 17;
}

uint32_t Record::Write(CRLFile& file) const {
    file.WriteBits(8, sysType);
    file.WriteBits(4, priorityClass & 0xFu);
    file.WriteBits(1, sysPri & 1u);
    file.WriteBits(3, searchTime & 7u);
    if (networkCap == 0) {
        file.WriteBits(1, 1);
        file.WriteBits(6, 0);
        return 23;
    }
    file.WriteBits(1, 0);
    return 17;
}

void Record::WriteToGrid(Grid& grid, int row) const {
    const auto& n = Names();
    Mmss::SetNameCell(grid, 0, row, n.SysType(), sysType);
    Mmss::SetNameCell(grid, 1, row, n.PriorityClass(), priorityClass);
    Mmss::SetNameCell(grid, 2, row, n.SysPri(), sysPri);
    Mmss::SetNameCell(grid, 3, row, n.SearchTime(), searchTime);
    Mmss::SetNameCell(grid, 4, row, n.NetworkCap(), networkCap);
}

void Record::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    // Column by column into a copy, so a refused row leaves the record as it was.
    const auto& n = Names();
    Record r = *this;
    r.sysType = static_cast<uint8_t>(Mmss::NameCell(grid, 0, row, n.SysType(), sysType));
    r.priorityClass =
        static_cast<uint8_t>(Mmss::NameCell(grid, 1, row, n.PriorityClass(), priorityClass));
    r.sysPri = static_cast<uint8_t>(Mmss::NameCell(grid, 2, row, n.SysPri(), sysPri));
    r.searchTime = static_cast<uint8_t>(Mmss::NameCell(grid, 3, row, n.SearchTime(), searchTime));
    r.networkCap = static_cast<uint8_t>(Mmss::NameCell(grid, 4, row, n.NetworkCap(), networkCap));
    *this = r;
}

bool Record::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) Mmss::SetHeadings(grid, GridHeadings());
    return true;
}

std::string Record::ToText() const {
    const auto& n = Names();
    std::string line =
        n.SysType().GetName(sysType) + "\t" + n.PriorityClass().GetName(priorityClass) + "\t\t" +
        n.SysPri().GetName(sysPri) + "\t" + n.SearchTime().GetName(searchTime) + "\t\t";
    if (networkCap != 0)
        line += "Network_Cap_Not_Present";
    else
        line += "Network_Cap_Present \t" + n.NetworkCap().GetName(networkCap);
    return line + "\r\n";
}

void Record::ToJson(nlohmann::json& out) const {
    const auto& n = Names();
    out["sysType"] = sysType;
    out["sysTypeName"] = n.SysType().GetName(sysType);
    out["priorityClass"] = priorityClass;
    out["priorityClassName"] = n.PriorityClass().GetName(priorityClass);
    out["sysPri"] = sysPri;
    out["sysPriName"] = n.SysPri().GetName(sysPri);
    out["higherPrioritySearchTime"] = searchTime;
    out["higherPrioritySearchTimeName"] = n.SearchTime().GetName(searchTime);
    out["networkCap"] = networkCap;
    out["networkCapName"] = n.NetworkCap().GetName(networkCap);
}

void Record::FromJson(const nlohmann::json& in) {
    Record r;
    r.sysType = static_cast<uint8_t>(Mmss::JsonUInt(in, "sysType", 255, kError));
    r.priorityClass = static_cast<uint8_t>(Mmss::JsonUInt(in, "priorityClass", 15, kError));
    r.sysPri = static_cast<uint8_t>(Mmss::JsonUInt(in, "sysPri", 1, kError));
    r.searchTime = static_cast<uint8_t>(Mmss::JsonUInt(in, "higherPrioritySearchTime", 7, kError));
    r.networkCap = static_cast<uint8_t>(Mmss::JsonUIntOr(in, "networkCap", 63, 1, kError));
    *this = r;
}

}  // namespace Tarn::Mspl
