// TechOrder::Record: one radio access technology of the technology order table.
//
// A RatId without a name (7, say) is shown as "Invalid", kept, and written back unchanged; the
// grid cell reads "Invalid" back as "leave the value alone". Text fields take a name or a
// decimal value; JSON errors and bad text fields raise CDataException(InvalidAcqType).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "roaming_list/RLItem.h"

namespace Tarn::TechOrder {

class Record : public CRLItem {
public:
    static constexpr const char* kTableName = "Technology Order Table";

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<Record>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    std::string ToText() const override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    uint8_t ratId = 2;  // a new entry starts as "CDMA-1x"
};

}  // namespace Tarn::TechOrder
