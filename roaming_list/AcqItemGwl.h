// The multi-technology acquisition records of IS-683E: GWL Generic (GSM, WCDMA and LTE bands in
// one record) and 3GPP Generic (the same list behind a version number).
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "roaming_list/AcqItem.h"

namespace Tarn {

class CNameList;

struct GwlBand {
    uint8_t band = 0;
    std::optional<uint16_t> uarfcn;  // absent: not present in the record
    bool operator==(const GwlBand&) const = default;
};

struct GwlTechnology {
    uint8_t sysMode = 0;  // 3 GSM, 5 WCDMA, 9 LTE
    std::vector<GwlBand> bands;
    bool operator==(const GwlTechnology&) const = default;
};

struct GwlLayout {
    int ratCountWidth = 3;
    int sysModeWidth = 4;
    int bandCountWidth = 7;
    int bandWidth = 6;
    int includedWidth = 1;
    int uarfcnWidth = 16;
    size_t maxRats = 3;
    size_t maxBands = 66;  // per technology
};

// The technology list both records carry, with everything they do alike. A band is named from
// the GSM, UMTS or LTE list by its technology's system mode; the LTE list is the owner's.
//
// Grid, from `ratColumn`: "Num Rats" (1 to 3), then per technology "SysMode %d", "Num Bands"
// (1 to the owner's band limit), and per band "Band %d" and "Uarfcn %d" (an empty UARFCN cell is
// "not present"). The counts place every later cell, so the cells are checked as a layout:
//   - a missing count, system mode or band is 140; a count out of range is 139 with its range,
//     and a band count that would run past the grid or past the 255-octet record is 139 with the
//     number of bands that still fit;
//   - an empty band cell with anything filled further right, and anything filled right of the
//     last technology, is 61449 (a gap among the type-specific fields): nothing the user typed is
//     silently dropped.
class CGwlTechnologyList {
public:
    CGwlTechnologyList(const CNameList* lteBands, GwlLayout layout)
        : lteBands_(lteBands), layout_(layout) {}

    std::vector<GwlTechnology> technologies;

    const GwlLayout& Layout() const { return layout_; }
    void SetLayout(const GwlLayout& layout) { layout_ = layout; }
    size_t MaxRats() const;
    size_t MaxBands() const;
    // The band list of a system mode, or nothing for a mode with no list.
    const CNameList* BandList(uint8_t sysMode) const;

    uint32_t EncodedBits() const;
    bool IsValid(uint32_t headerBits) const;
    uint32_t Read(CRLFile& file);
    uint32_t Write(CRLFile& file) const;

    void WriteToGrid(Grid& grid, int row, int ratColumn, int limit) const;
    void ReadFromGrid(const Grid& grid, int row, int ratColumn, int limit, uint32_t headerBits);
    void AppendHeadings(std::vector<std::string>& headings) const;
    // Lays the row out anew after the cell at `column` changed from `oldText`: a new technology
    // count or band count adds empty columns or drops the last ones of that technology, a new
    // system mode offers its own bands; the cells already typed move with their technology.
    // False when the edited cell places nothing.
    bool RelayoutRow(Grid& grid, int row, int ratColumn, int limit, int column,
                     const std::string& oldText) const;
    // Takes the counts and modes of a row that does not read yet (bands left at 0).
    void AdoptRowLayout(const Grid& grid, int row, int ratColumn, int limit);

    std::string ToText() const;
    void FromText(const std::vector<std::string>& tokens, size_t first);
    void ToJson(nlohmann::json& out) const;
    void FromJson(const nlohmann::json& in);

private:
    // The counts and modes a row holds, read leniently, so headings and layout follow what the
    // user typed even before every band is filled in.
    std::vector<GwlTechnology> LayoutFromRow(const Grid& grid, int row, int ratColumn,
                                             int limit) const;
    void ReadCells(const Grid& grid, int row, int ratColumn, int limit, uint32_t headerBits);

    const CNameList* lteBands_;
    GwlLayout layout_;
};

// Type 15, "GWL Generic".
//
//   | field | bits |
//   |---|---|
//   | number of technologies (NUM_RATS) | 3 |
//   | system mode, per technology | 4 |
//   | number of bands, per technology | 7 |
//   | band, per band | 6 |
//   | UARFCN present, per band | 1 |
//   | UARFCN, per band when present | 16 |
//   | zero fill | to the next octet |
//
// Valid: 1 to 3 technologies, each with a system mode of the GWL list and 1 to 66 bands (the
// range applies to the "Num Bands" column), the whole record at most 255 octets. The 6-bit band
// holds every GSM, UMTS and GWL LTE band value (the LTE list reaches 62).
class AcqItemGenericGwl : public CAcqItem {
public:
    AcqItemGenericGwl();

    uint8_t GetAcqType() const override { return 15; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<AcqItemGenericGwl>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    bool OnCellEdited(Grid& grid, int row, int column, const std::string& oldText) const override;
    void AdoptRowLayout(const Grid& grid, int row) override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    CGwlTechnologyList& Technologies() { return list_; }
    const CGwlTechnologyList& Technologies() const { return list_; }
    void SetLayout(const GwlLayout& layout) { list_.SetLayout(layout); }

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    CGwlTechnologyList list_;
};

// Type 14, "3GPP Generic".
//
//   | field | bits |
//   |---|---|
//   | version | 8 |
//   | number of technologies (NUM_RATS) | 3 |
//   | system mode, per technology | 4 |
//   | number of bands, per technology | 8 |
//   | band, per band | 8 |
//   | UARFCN present, per band | 1 |
//   | UARFCN, per band when present | 16 |
//   | zero fill | to the next octet |
//
// Valid: version 1 (the only one the editor supports; another is message 61461 in the grid),
// 1 to 3 technologies with a GWL system mode and 1 to 255 bands each (the range of the
// "Num Bands" column), the whole record at most 255 octets. The 8-bit band holds the 3GPP LTE
// list, which reaches 249.
class AcqItem3GPPGeneric : public CAcqItem {
public:
    static constexpr uint8_t kSupportedVersion = 1;

    AcqItem3GPPGeneric();

    uint8_t GetAcqType() const override { return 14; }
    bool IsValid() const override;
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<AcqItem3GPPGeneric>(*this);
    }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;
    bool OnCellEdited(Grid& grid, int row, int column, const std::string& oldText) const override;
    void AdoptRowLayout(const Grid& grid, int row) override;
    std::string ToText() const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    uint8_t GetVersion() const { return version_; }
    void SetVersion(uint8_t version) { version_ = version; }
    CGwlTechnologyList& Technologies() { return list_; }
    const CGwlTechnologyList& Technologies() const { return list_; }
    void SetLayout(int versionWidth, const GwlLayout& layout) {
        versionWidth_ = versionWidth;
        list_.SetLayout(layout);
    }

protected:
    uint32_t ReadFields(CRLFile& file, int octetLength) override;
    uint32_t WriteFields(CRLFile& file) const override;

private:
    uint8_t version_ = kSupportedVersion;
    int versionWidth_ = 8;
    CGwlTechnologyList list_;
};

// The layouts the factory gives the two records.
GwlLayout GwlGenericLayout();
GwlLayout ThreeGppGenericLayout();

}  // namespace Tarn
