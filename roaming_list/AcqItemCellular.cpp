#include "roaming_list/AcqItemCellular.h"

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

const CRLNameTables& Names() {
    return CRLNameTables::Instance();
}

}  // namespace

// ---- analog and preferred

bool CAcqItemCellularAnalog::IsValid() const {
    return Fits(system_, systemWidth_);
}

uint32_t CAcqItemCellularAnalog::ReadFields(CRLFile& file, int) {
    system_ = static_cast<uint8_t>(file.ReadBits(systemWidth_));
    return static_cast<uint32_t>(systemWidth_);
}

uint32_t CAcqItemCellularAnalog::WriteFields(CRLFile& file) const {
    return Put(file, systemWidth_, system_, "system");
}

void CAcqItemCellularAnalog::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    if (ColumnLimit(grid, 1) > 1)
        SetDropDownCell(grid, 1, row, Names().CellularSystem(),
                        Names().CellularSystem().GetName(system_));
}

void CAcqItemCellularAnalog::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    system_ = static_cast<uint8_t>(
        ReadNamedCell(grid, 1, row, Names().CellularSystem(), FieldMax(systemWidth_), system_));
}

bool CAcqItemCellularAnalog::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) SetHeadings(grid, {"System"}, grid.GetColumnCount());
    return true;
}

std::string CAcqItemCellularAnalog::ToText() const {
    return Names().CellularSystem().GetName(system_) + "\t";
}

void CAcqItemCellularAnalog::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.size() != 1) BadTokenCount(t.size(), "1");
    system_ = static_cast<uint8_t>(Names().CellularSystem().GetValue(t[0]));
}

void CAcqItemCellularAnalog::ToJson(nlohmann::json& out) const {
    out["system"] = system_;
    out["systemName"] = Names().CellularSystem().GetName(system_);
}

void CAcqItemCellularAnalog::FromJson(const nlohmann::json& in) {
    system_ = static_cast<uint8_t>(
        JsonNumber(in, "system", FieldMax(systemWidth_), DataError::InvalidSystem));
}

// ---- standard

bool CAcqItemCellularCdmaStandard::IsValid() const {
    return (system_ == 0 || system_ == 1 || system_ == 3) && channel_ >= 1 && channel_ <= 3 &&
           Fits(system_, systemWidth_) && Fits(channel_, channelWidth_);
}

uint32_t CAcqItemCellularCdmaStandard::ReadFields(CRLFile& file, int) {
    system_ = static_cast<uint8_t>(file.ReadBits(systemWidth_));
    channel_ = static_cast<uint8_t>(file.ReadBits(channelWidth_));
    return static_cast<uint32_t>(systemWidth_ + channelWidth_);
}

uint32_t CAcqItemCellularCdmaStandard::WriteFields(CRLFile& file) const {
    return Put(file, systemWidth_, system_, "system") +
           Put(file, channelWidth_, channel_, "primary/secondary channel");
}

void CAcqItemCellularCdmaStandard::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, 2);
    if (limit > 1)
        SetDropDownCell(grid, 1, row, Names().CellularSystem(),
                        Names().CellularSystem().GetName(system_));
    if (limit > 2)
        SetDropDownCell(grid, 2, row, Names().Channel(), Names().Channel().GetName(channel_));
}

void CAcqItemCellularCdmaStandard::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const auto system =
        ReadNamedCell(grid, 1, row, Names().CellularSystem(), FieldMax(systemWidth_), system_);
    const auto channel =
        ReadNamedCell(grid, 2, row, Names().Channel(), FieldMax(channelWidth_), channel_);
    system_ = static_cast<uint8_t>(system);
    channel_ = static_cast<uint8_t>(channel);
}

bool CAcqItemCellularCdmaStandard::OnGridHeading(Grid& grid, int event) const {
    if (event == kGridHeadingEvent) SetHeadings(grid, {"System", "Channel"}, grid.GetColumnCount());
    return true;
}

std::string CAcqItemCellularCdmaStandard::ToText() const {
    return Names().CellularSystem().GetName(system_) + "\t" + Names().Channel().GetName(channel_) +
           "\t";
}

void CAcqItemCellularCdmaStandard::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.size() != 2) BadTokenCount(t.size(), "2");
    const int system = Names().CellularSystem().GetValue(t[0]);
    const int channel = Names().Channel().GetValue(t[1]);
    system_ = static_cast<uint8_t>(system);
    channel_ = static_cast<uint8_t>(channel);
}

void CAcqItemCellularCdmaStandard::ToJson(nlohmann::json& out) const {
    out["system"] = system_;
    out["systemName"] = Names().CellularSystem().GetName(system_);
    out["channel"] = channel_;
    out["channelName"] = Names().Channel().GetName(channel_);
}

void CAcqItemCellularCdmaStandard::FromJson(const nlohmann::json& in) {
    const auto system = JsonNumber(in, "system", FieldMax(systemWidth_), DataError::InvalidSystem);
    const auto channel =
        JsonNumber(in, "channel", FieldMax(channelWidth_), DataError::InvalidPriSecChannel);
    system_ = static_cast<uint8_t>(system);
    channel_ = static_cast<uint8_t>(channel);
}

// ---- channel lists

size_t CAcqItemCellularCdmaCustom::MaxChannels() const {
    return std::min<size_t>(layout_.largest, FieldMax(layout_.countWidth));
}

bool CAcqItemCellularCdmaCustom::ChannelAllowed(uint32_t c) const {
    return (c >= 1 && c <= 799) || (c >= 801 && c <= 1039) || (c >= 1041 && c <= 1199) ||
           (c >= 1201 && c <= 1600);
}

std::pair<long long, long long> CAcqItemCellularCdmaCustom::GridChannelRange() const {
    return {0, FieldMax(layout_.channelWidth)};
}

bool CAcqItemJtacsCdmaCustom::ChannelAllowed(uint32_t) const {
    return true;
}

bool CAcqItemCellularCdmaCustom::IsValid() const {
    if (channels_.empty() || channels_.size() > MaxChannels()) return false;
    return std::all_of(channels_.begin(), channels_.end(), [this](uint16_t c) {
        return Fits(c, layout_.channelWidth) && ChannelAllowed(c);
    });
}

uint32_t CAcqItemCellularCdmaCustom::ReadFields(CRLFile& file, int) {
    const uint32_t count = file.ReadBits(layout_.countWidth);
    std::vector<uint16_t> channels;
    channels.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
        channels.push_back(static_cast<uint16_t>(file.ReadBits(layout_.channelWidth)));
    channels_ = std::move(channels);
    return static_cast<uint32_t>(layout_.countWidth) +
           count * static_cast<uint32_t>(layout_.channelWidth);
}

uint32_t CAcqItemCellularCdmaCustom::WriteFields(CRLFile& file) const {
    uint32_t bits = Put(file, layout_.countWidth, static_cast<uint32_t>(channels_.size()),
                        "number of channels");
    for (uint16_t c : channels_) bits += Put(file, layout_.channelWidth, c, "channel");
    return bits;
}

void CAcqItemCellularCdmaCustom::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, static_cast<int>(layout_.largest));
    for (int c = 1; c < limit; ++c) {
        const size_t i = static_cast<size_t>(c - 1);
        SetEditCell(grid, c, row, "9999",
                    i < channels_.size() ? std::to_string(channels_[i]) : std::string{});
    }
}

void CAcqItemCellularCdmaCustom::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, static_cast<int>(layout_.largest));
    const size_t count = ScanEntries(grid, row, 1, 1, limit, Msg::ChannelGap, {true});
    const long long most = static_cast<long long>(MaxChannels());
    if (static_cast<long long>(count) > most)
        throw GridError(Msg::OutOfRange, static_cast<int>(most) + 1, row, kAcqTableName, 1, most);
    auto [low, high] = GridChannelRange();
    low = std::max(low, 0LL);
    high = std::min<long long>(high, FieldMax(layout_.channelWidth));
    std::vector<uint16_t> channels;
    for (size_t i = 0; i < count; ++i)
        channels.push_back(
            static_cast<uint16_t>(ReadNumberCell(grid, static_cast<int>(i) + 1, row, low, high)));
    channels_ = std::move(channels);
}

bool CAcqItemCellularCdmaCustom::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) headings.push_back(Numbered("Channel %d", n));
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemCellularCdmaCustom::ToText() const {
    std::string text;
    for (uint16_t c : channels_) text += std::to_string(c) + "\t";
    return text;
}

void CAcqItemCellularCdmaCustom::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.empty() || t.size() > MaxChannels())
        BadTokenCount(t.size(), ("1 to " + std::to_string(MaxChannels())).c_str());
    std::vector<uint16_t> channels;
    for (const auto& token : t)
        channels.push_back(static_cast<uint16_t>(TextNumber(
            token, FieldMax(layout_.channelWidth), DataError::InvalidAcqTable, "channel")));
    channels_ = std::move(channels);
}

void CAcqItemCellularCdmaCustom::ToJson(nlohmann::json& out) const {
    out["channels"] = channels_;
}

void CAcqItemCellularCdmaCustom::FromJson(const nlohmann::json& in) {
    const auto& list = JsonArray(in, "channels", MaxChannels(), DataError::InvalidAcqTable);
    std::vector<uint16_t> channels;
    for (const auto& v : list)
        channels.push_back(static_cast<uint16_t>(
            JsonValue(v, "channel", FieldMax(layout_.channelWidth), DataError::InvalidAcqTable)));
    channels_ = std::move(channels);
}

}  // namespace Tarn
