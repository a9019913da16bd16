// The cellular and JTACS acquisition records: analog and preferred (a system selector), standard
// (system and primary/secondary channel selectors) and custom (a list of channel numbers).
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "roaming_list/AcqItem.h"

namespace Tarn {

// Type 1, "Analog Cellular".
//
//   | field | bits | default |
//   |---|---|---|
//   | system A/B selector | 2 | 0 (A) |
//
// Any value that fits is valid; one without a name (2) shows as "Invalid".
class CAcqItemCellularAnalog : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 1; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemCellularAnalog>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    uint8_t GetSystem() const { return system_; }
    void SetSystem(uint8_t system) { system_ = system; }
    void SetSystemWidth(int width) { systemWidth_ = width; }

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    uint8_t system_ = 0;
    int systemWidth_ = 2;
};

// Type 4, "CDMA Cellular (preferred)": the analog record's layout under its own type.
class CAcqItemCellularGeneric : public CAcqItemCellularAnalog {
public:
    uint8_t GetAcqType() const override { return 4; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemCellularGeneric>(*this);
    }
};

// Type 2, "CDMA Cellular (standard)".
//
//   | field | bits | default |
//   |---|---|---|
//   | system A/B selector | 2 | 0 (A) |
//   | primary/secondary channel selector | 2 | 1 (Pri) |
//
// Valid: system 0, 1 or 3; channel 1 to 3.
class CAcqItemCellularCdmaStandard : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 2; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemCellularCdmaStandard>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    uint8_t GetSystem() const { return system_; }
    void SetSystem(uint8_t system) { system_ = system; }
    uint8_t GetChannel() const { return channel_; }
    void SetChannel(uint8_t channel) { channel_ = channel; }
    void SetWidths(int systemWidth, int channelWidth) {
        systemWidth_ = systemWidth;
        channelWidth_ = channelWidth;
    }

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    uint8_t system_ = 0;
    uint8_t channel_ = 1;
    int systemWidth_ = 2;
    int channelWidth_ = 2;
};

// Type 7, "JTACS CDMA (standard)": the standard record's layout under its own type.
class CAcqItemJtacsCdmaStandard : public CAcqItemCellularCdmaStandard {
public:
    uint8_t GetAcqType() const override { return 7; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemJtacsCdmaStandard>(*this);
    }
};

struct ChannelListLayout {
    int countWidth = 5;
    int channelWidth = 11;
    size_t largest = 32;  // grid columns offered
};

// Type 3, "CDMA Cellular (custom)", and the base of every record that is a list of channels.
//
//   | field | bits |
//   |---|---|
//   | number of channels | 5 |
//   | channel, once per channel | 11 |
//   | zero fill (long framing) | to the next octet |
//
// The grid offers 32 channel columns, but the 5-bit count holds 31, so a 32nd channel is refused
// (message 139, range 1 - 31) rather than written with a wrapped count. Cellular channels are
// valid in 1-799, 801-1039, 1041-1199 and 1201-1600; the grid takes anything the field holds and
// leaves that rule to the check before a save.
class CAcqItemCellularCdmaCustom : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 3; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemCellularCdmaCustom>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<uint16_t>& GetChannels() const { return channels_; }
    void SetChannels(std::vector<uint16_t> channels) { channels_ = std::move(channels); }
    const ChannelListLayout& GetLayout() const { return layout_; }
    void SetLayout(const ChannelListLayout& layout) { layout_ = layout; }
    // The most channels a record can hold: the largest count, bounded by the count field.
    size_t MaxChannels() const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

    // The channels this kind of record may be saved with.
    virtual bool ChannelAllowed(uint32_t channel) const;
    // What a channel cell of the grid accepts, before it is narrowed to what the field holds.
    virtual std::pair<long long, long long> GridChannelRange() const;

private:
    std::vector<uint16_t> channels_;
    ChannelListLayout layout_;
};

// Type 8, "JTACS CDMA (custom)": any channel that fits; the grid takes 1 to 1600.
class CAcqItemJtacsCdmaCustom : public CAcqItemCellularCdmaCustom {
public:
    uint8_t GetAcqType() const override { return 8; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemJtacsCdmaCustom>(*this);
    }

protected:
    bool ChannelAllowed(uint32_t channel) const override;
    std::pair<long long, long long> GridChannelRange() const override { return {1, 1600}; }
};

// Type 9, "2GHz Band (channel)": as JTACS custom.
class CAcqItem2GHzBand : public CAcqItemJtacsCdmaCustom {
public:
    uint8_t GetAcqType() const override { return 9; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItem2GHzBand>(*this);
    }
};

}  // namespace Tarn
