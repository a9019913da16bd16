// The PCS acquisition records: a list of PCS blocks, and a list of PCS channels.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/AcqItemCellular.h"

namespace Tarn {

struct BlockListLayout {
    int countWidth = 3;
    int blockWidth = 3;
    size_t largest = 6;
};

// Type 5, "CDMA PCS (blocks)".
//
//   | field | bits |
//   |---|---|
//   | number of blocks | 3 |
//   | block, once per block | 3 |
//   | zero fill (long framing) | to the next octet |
//
// Valid: 1 to 6 blocks, each A..F (0..5) or Any (7); 6 is not a block.
class CAcqItemPcsCdmaBlocks : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 5; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemPcsCdmaBlocks>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<uint8_t>& GetBlocks() const { return blocks_; }
    void SetBlocks(std::vector<uint8_t> blocks) { blocks_ = std::move(blocks); }
    void SetLayout(const BlockListLayout& layout) { layout_ = layout; }
    size_t MaxBlocks() const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    std::vector<uint8_t> blocks_;
    BlockListLayout layout_;
};

// Type 6, "CDMA PCS (channels)": the custom channel layout; valid channels are below 1200.
class CAcqItemPcsCdmaChannels : public CAcqItemCellularCdmaCustom {
public:
    uint8_t GetAcqType() const override { return 6; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemPcsCdmaChannels>(*this);
    }

protected:
    bool ChannelAllowed(uint32_t channel) const override { return channel < 1200; }
};

}  // namespace Tarn
