// The generic acquisition records of IS-683C and later: CDMA and HDR (band class and channel
// pairs), GSM (bands), UMTS (bands with an optional UARFCN) and UMB (band, channel and OFDM
// parameters). None of them has a form in IS-683A or IS-683B.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "grid/Grid.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"

namespace Tarn {

class CNameList;

struct BandChannelLayout {
    int bandWidth = 5;
    int channelWidth = 11;
    size_t largest = 128;  // pairs offered by the grid
};

struct BandChannel {
    uint16_t bandClass = 0;
    uint16_t channel = 0;
    bool operator==(const BandChannel&) const = default;
};

// Type 10, "CDMA Generic", and the base of type 11.
//
//   | field | bits |
//   |---|---|
//   | band class, once per pair | 5 |
//   | channel, once per pair | 11 |
//
// There is no count: the octet length is twice the number of pairs, so at most 127 pairs fit
// although the grid offers 128 (a 128th pair is refused with message 139, range 1 - 127). In the
// grid a channel must suit its band class: class 3 takes even channels 1 to 1600 (message 153 for
// an odd one), 17 takes 140 to 1459, 18 takes 0 to 240, 19 takes 0 to 360, and every other class
// any channel the 11-bit field holds.
class CAcqItemGenericCdma : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 10; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemGenericCdma>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<BandChannel>& GetPairs() const { return pairs_; }
    void SetPairs(std::vector<BandChannel> pairs) { pairs_ = std::move(pairs); }
    void SetLayout(const BandChannelLayout& layout) { layout_ = layout; }
    size_t MaxPairs() const;

    // The band class list of the record: drop-down names, value to name, name to value.
    virtual const CNameList& GetBandList() const;
    ChoiceList GetBandChoices() const;
    std::string GetBandName(int value) const;
    int GetBandValue(const std::string& name) const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;
    // The data error of a bad pair in text or JSON.
    virtual DataError PairError() const;

private:
    uint32_t PairBits() const {
        return static_cast<uint32_t>(layout_.bandWidth + layout_.channelWidth);
    }

    std::vector<BandChannel> pairs_;
    BandChannelLayout layout_;
};

// Type 11, "HDR Generic": the CDMA generic layout over the HDR band class list.
class CAcqItemGenericHdr : public CAcqItemGenericCdma {
public:
    uint8_t GetAcqType() const override { return 11; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemGenericHdr>(*this);
    }
    const CNameList& GetBandList() const override;

protected:
    DataError PairError() const override;
};

struct BandListLayout {
    int countWidth = 5;
    int bandWidth = 5;
    size_t largest = 32;
};

// Type 12, generic GSM.
//
//   | field | bits |
//   |---|---|
//   | number of bands | 5 |
//   | GSM band, once per band | 5 |
//   | zero fill | to the next octet |
//
// Valid: 1 to 31 bands (the count field bounds the 32 the grid offers).
class CAcqItemGenericGsm : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 12; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemGenericGsm>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<uint8_t>& GetBands() const { return bands_; }
    void SetBands(std::vector<uint8_t> bands) { bands_ = std::move(bands); }
    void SetLayout(const BandListLayout& layout) { layout_ = layout; }
    size_t MaxBands() const;

    const CNameList& GetBandList() const;
    ChoiceList GetBandChoices() const;
    std::string GetBandName(int value) const;
    int GetBandValue(const std::string& name) const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    std::vector<uint8_t> bands_;
    BandListLayout layout_;
};

struct UmtsLayout {
    int countWidth = 5;
    int bandWidth = 5;
    int includedWidth = 1;
    int uarfcnWidth = 14;
    size_t largest = 50;
};

struct UmtsEntry {
    uint8_t band = 0;
    std::optional<uint16_t> uarfcn;  // absent: not included
    bool operator==(const UmtsEntry&) const = default;
};

// Type 13, generic UMTS.
//
//   | field | bits |
//   |---|---|
//   | number of entries | 5 |
//   | UMTS band, per entry | 5 |
//   | UARFCN included, per entry | 1 |
//   | UARFCN, per entry when included | 14 |
//   | zero fill | to the next octet |
//
// Valid: 1 to 31 entries (the count field bounds the 50 the grid offers). An empty UARFCN cell
// means "not included"; entries are contiguous by their band cells.
class CAcqItemGenericUmts : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 13; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemGenericUmts>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<UmtsEntry>& GetEntries() const { return entries_; }
    void SetEntries(std::vector<UmtsEntry> entries) { entries_ = std::move(entries); }
    void SetLayout(const UmtsLayout& layout) { layout_ = layout; }
    size_t MaxEntries() const;

    const CNameList& GetBandList() const;
    ChoiceList GetBandChoices() const;
    std::string GetBandName(int value) const;
    int GetBandValue(const std::string& name) const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    std::vector<UmtsEntry> entries_;
    UmtsLayout layout_;
};

struct UmbLayout {
    int countWidth = 5;
    int bandWidth = 5;
    int channelWidth = 11;
    int fftSizeWidth = 3;
    int guardWidth = 10;
    int cyclicPrefixWidth = 3;
    int spareWidth = 8;
    size_t largest = 16;
};

struct UmbEntry {
    uint16_t bandClass = 0;
    uint16_t channel = 0;
    uint16_t fftSize = 0;
    uint16_t numGuardCarriers = 0;
    uint16_t cyclicPrefix = 0;
    uint16_t spare = 0;  // not shown in the grid; kept through grid edits by entry position
    bool operator==(const UmbEntry&) const = default;
};

// Type 16, generic UMB.
//
//   | field | bits |
//   |---|---|
//   | number of entries | 5 |
//   | band class, per entry | 5 |
//   | channel, per entry | 11 |
//   | FFT size, per entry | 3 |
//   | number of guard carriers, per entry | 10 |
//   | cyclic prefix length, per entry | 3 |
//   | spare, per entry | 8 |
//   | zero fill | to the next octet |
//
// Each entry is five octets. Valid: at most 16 entries, every value fitting its field. Gaps
// between entries in the grid are message 202.
class CAcqItemGenericUmb : public CAcqItem {
public:
    uint8_t GetAcqType() const override { return 16; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<CAcqItemGenericUmb>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    const std::vector<UmbEntry>& GetEntries() const { return entries_; }
    void SetEntries(std::vector<UmbEntry> entries) { entries_ = std::move(entries); }
    void SetLayout(const UmbLayout& layout) { layout_ = layout; }
    size_t MaxEntries() const;

    const CNameList& GetBandList() const;
    ChoiceList GetBandChoices() const;
    std::string GetBandName(int value) const;
    int GetBandValue(const std::string& name) const;

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    bool EntryFits(const UmbEntry& e) const;

    std::vector<UmbEntry> entries_;
    UmbLayout layout_;
};

}  // namespace Tarn
