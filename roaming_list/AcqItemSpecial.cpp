#include "roaming_list/AcqItemSpecial.h"

#include <nlohmann/json.hpp>

#include "grid/Grid.h"
#include "roaming_list/AcqItemHelpers.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

using namespace AcqDetail;

bool CAcqItemSpecial::IsValid() const {
    return Fits(data_.size(), lengthWidth_);
}

uint32_t CAcqItemSpecial::ReadFields(CRLFile& file, int octetLength) {
    const size_t length = octetLength > 0 ? static_cast<size_t>(octetLength) : 0;
    std::vector<uint8_t> data(length);
    for (auto& octet : data) octet = static_cast<uint8_t>(file.ReadBits(8));
    data_ = std::move(data);
    return static_cast<uint32_t>(8 * length);
}

uint32_t CAcqItemSpecial::WriteFields(CRLFile& file) const {
    // The framing writes the length from these bits; refuse a length its field cannot carry.
    if (!Fits(data_.size(), lengthWidth_))
        throw CDataException(DataError::InvalidAcqTable,
                             "(data length " + std::to_string(data_.size()) + " does not fit " +
                                 std::to_string(lengthWidth_) + " bits)");
    for (uint8_t octet : data_) file.WriteBits(8, octet);
    return static_cast<uint32_t>(8 * data_.size());
}

void CAcqItemSpecial::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    if (ColumnLimit(grid, 1) > 1) SetEditCell(grid, 1, row, "999", std::to_string(data_.size()));
}

void CAcqItemSpecial::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    data_.resize(ReadNumberCell(grid, 1, row, 0, FieldMax(lengthWidth_)), 0);
}

bool CAcqItemSpecial::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) SetHeadings(grid, {"Data Length"}, grid.GetColumnCount());
    return true;
}

std::string CAcqItemSpecial::ToText() const {
    return std::to_string(data_.size()) + "\t";
}

void CAcqItemSpecial::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.size() != 1) BadTokenCount(t.size(), "1");
    data_.resize(
        TextNumber(t[0], FieldMax(lengthWidth_), DataError::InvalidAcqTable, "data length"), 0);
}

void CAcqItemSpecial::ToJson(nlohmann::json& out) const {
    out["dataLength"] = data_.size();
    out["data"] = data_;
}

void CAcqItemSpecial::FromJson(const nlohmann::json& in) {
    const auto code = DataError::InvalidAcqTable;
    const uint32_t length = JsonNumber(in, "dataLength", FieldMax(lengthWidth_), code);
    std::vector<uint8_t> data(length, 0);
    if (in.contains("data")) {
        const auto& list = JsonArray(in, "data", length, code);
        if (list.size() != length)
            throw CDataException(code, "(data holds " + std::to_string(list.size()) +
                                           " octets, dataLength says " + std::to_string(length) +
                                           ")");
        for (size_t i = 0; i < length; ++i)
            data[i] = static_cast<uint8_t>(JsonValue(list[i], "data", 255, code));
    }
    data_ = std::move(data);
}

}  // namespace Tarn
