// The acquisition record of a type the editor does not model: its octets are kept as they came.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "roaming_list/AcqItem.h"

namespace Tarn {

// Type 253, made for the type code 253 of the long framing.
//
//   | field | bits |
//   |---|---|
//   | type (253) | 8 |
//   | data length in octets | 8 |
//   | data | 8 per octet |
//
// The length is the record's own octet length, so the record carries no fill. The grid and the
// text show only the length; the octets themselves survive a read and a write unchanged, and a
// length edited in the grid keeps the leading octets and adds zeros.
class CAcqItemSpecial : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return kAcqTypeSpecial; }
    bool HasShortForm() const override { return false; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemSpecial>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    size_t GetDataLength() const { return data_.size(); }
    const std::vector<uint8_t>& GetData() const { return data_; }
    void SetData(std::vector<uint8_t> data) { data_ = std::move(data); }
    void SetLengthWidth(int width) { lengthWidth_ = width; }

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    std::vector<uint8_t> data_;
    int lengthWidth_ = 8;
};

}  // namespace Tarn
