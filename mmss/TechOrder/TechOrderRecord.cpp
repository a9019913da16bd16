#include "mmss/TechOrder/TechOrderRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "grid/Grid.h"
#include "mmss/MmssFrame.h"
#include "mmss/MmssNames.h"

namespace Tarn::TechOrder {
namespace {

constexpr DataError kError = DataError::InvalidAcqType;

const CNameList& RatIds() {
    return Mmss::NameTables::Instance().RatId();
}

}  // namespace

uint32_t Record::Read(CRLFile& file) {
    ratId = static_cast<uint8_t>(Mmss::Take(file, 8, "RAT id"));
    return 8;
}

uint32_t Record::Write(CRLFile& file) const {
    file.WriteBits(8, ratId);
    return 8;
}

void Record::WriteToGrid(Grid& grid, int row) const {
    Mmss::SetNameCell(grid, 0, row, RatIds(), ratId);
}

void Record::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    ratId = static_cast<uint8_t>(Mmss::NameCell(grid, 0, row, RatIds(), ratId));
}

bool Record::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) Mmss::SetHeadings(grid, {"Rat Id"});
    return true;
}

std::string Record::ToText() const {
    return RatIds().GetName(ratId) + "\r\n";
}

void Record::ToJson(nlohmann::json& out) const {
    out["ratId"] = ratId;
    out["ratIdName"] = RatIds().GetName(ratId);
}

void Record::FromJson(const nlohmann::json& in) {
    ratId = static_cast<uint8_t>(Mmss::JsonUInt(in, "ratId", 255, kError));
}

}  // namespace Tarn::TechOrder
