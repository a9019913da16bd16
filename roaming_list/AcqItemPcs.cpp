#include "roaming_list/AcqItemPcs.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "roaming_list/AcqItemHelpers.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

using namespace AcqDetail;

namespace {

const CNameList& BlockNames() {
    return CRLNameTables::Instance().Block();
}

}  // namespace

size_t CAcqItemPcsCdmaBlocks::MaxBlocks() const {
    return std::min<size_t>(layout_.largest, FieldMax(layout_.countWidth));
}

bool CAcqItemPcsCdmaBlocks::IsValid() const {
    if (blocks_.empty() || blocks_.size() > MaxBlocks()) return false;
    return std::all_of(blocks_.begin(), blocks_.end(), [this](uint8_t b) {
        return b <= 7 && b != 6 && Fits(b, layout_.blockWidth);
    });
}

uint32_t CAcqItemPcsCdmaBlocks::ReadFields(CRLFile& file, int) {
    const uint32_t count = file.ReadBits(layout_.countWidth);
    std::vector<uint8_t> blocks;
    blocks.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
        blocks.push_back(static_cast<uint8_t>(file.ReadBits(layout_.blockWidth)));
    blocks_ = std::move(blocks);
    return static_cast<uint32_t>(layout_.countWidth) +
           count * static_cast<uint32_t>(layout_.blockWidth);
}

uint32_t CAcqItemPcsCdmaBlocks::WriteFields(CRLFile& file) const {
    uint32_t bits =
        Put(file, layout_.countWidth, static_cast<uint32_t>(blocks_.size()), "number of blocks");
    for (uint8_t b : blocks_) bits += Put(file, layout_.blockWidth, b, "block");
    return bits;
}

void CAcqItemPcsCdmaBlocks::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, static_cast<int>(layout_.largest));
    for (int c = 1; c < limit; ++c) {
        const size_t i = static_cast<size_t>(c - 1);
        SetDropDownCell(grid, c, row, BlockNames(),
                        i < blocks_.size() ? BlockNames().GetName(blocks_[i]) : std::string{});
    }
}

void CAcqItemPcsCdmaBlocks::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, static_cast<int>(layout_.largest));
    const size_t count = ScanEntries(grid, row, 1, 1, limit, Msg::ChannelGap, {true});
    const long long most = static_cast<long long>(MaxBlocks());
    if (static_cast<long long>(count) > most)
        throw GridError(Msg::OutOfRange, static_cast<int>(most) + 1, row, kAcqTableName, 1, most);
    std::vector<uint8_t> blocks;
    for (size_t i = 0; i < count; ++i)
        blocks.push_back(static_cast<uint8_t>(ReadNamedCell(
            grid, static_cast<int>(i) + 1, row, BlockNames(), FieldMax(layout_.blockWidth),
            i < blocks_.size() ? std::optional<uint32_t>(blocks_[i]) : std::nullopt)));
    blocks_ = std::move(blocks);
}

bool CAcqItemPcsCdmaBlocks::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) headings.push_back(Numbered("Block %d", n));
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemPcsCdmaBlocks::ToText() const {
    std::string text;
    for (uint8_t b : blocks_) text += BlockNames().GetName(b) + "\t";
    return text;
}

void CAcqItemPcsCdmaBlocks::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.empty() || t.size() > MaxBlocks())
        BadTokenCount(t.size(), ("1 to " + std::to_string(MaxBlocks())).c_str());
    std::vector<uint8_t> blocks;
    for (const auto& token : t)
        blocks.push_back(static_cast<uint8_t>(BlockNames().GetValue(token)));
    blocks_ = std::move(blocks);
}

void CAcqItemPcsCdmaBlocks::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (uint8_t b : blocks_)
        list.push_back({{"block", b}, {"blockName", BlockNames().GetName(b)}});
    out["blocks"] = std::move(list);
}

void CAcqItemPcsCdmaBlocks::FromJson(const nlohmann::json& in) {
    const auto& list = JsonArray(in, "blocks", MaxBlocks(), DataError::InvalidBlock);
    std::vector<uint8_t> blocks;
    for (const auto& v : list)
        blocks.push_back(static_cast<uint8_t>(
            JsonNumber(JsonObject(v, "blocks", DataError::InvalidBlock), "block",
                       FieldMax(layout_.blockWidth), DataError::InvalidBlock)));
    blocks_ = std::move(blocks);
}

}  // namespace Tarn
