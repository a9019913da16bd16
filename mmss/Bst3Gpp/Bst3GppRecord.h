// Bst3Gpp::Record: one radio access technology of a 3GPP BST entry with the bands and channels
// to search on it.
//
// Choices made where the format leaves room:
// - RatId is shown by the technology names of the technology order table ("EUTRAN" for 9, ...),
//   so both files speak of technologies the same way; a value without a name is shown as its
//   decimal number, and the grid and text fields take either form.
// - The grid row is "Rat Id", "Band Channel Type", "Num Band Channels" (the number of bands),
//   then for each band k (from 1) "BandId(k)", "Num Channels(k)" and its channels "Channel 1",
//   "Channel 2", ...; the heading event titles exactly the columns of the selected row.
// - The 16-bit band list length is skipped on reading and written as the band list's size in
//   bytes (the count byte included).
// A band-channel type other than 1 cannot be read (its layout is unknown) and is written as the
// RatId alone; the save check refuses it first.
//
// JSON errors and bad text fields raise CDataException(InvalidAcqTable).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "roaming_list/RLItem.h"

namespace Tarn::Bst3Gpp {

struct Band {
    uint8_t bandId = 0;
    std::vector<uint16_t> channels;  // at most 255
    bool operator==(const Band&) const = default;
};

class Record : public CRLItem {
public:
    static constexpr const char* kTableName = "Bst3Gpp Table";
    enum Column { kRatId, kBandChannelType, kNumBands, kFirstBand };

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;
    std::unique_ptr<CRLItem> Clone() const override { return std::make_unique<Record>(*this); }

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    // The record's block of the text view: "Rat Id : ", "Num Channel Records : ", the column
    // line and a line a band, each line ending in "\r\n".
    std::string ToText() const override;
    // The grid row's cells in order: Rat Id, Band Channel Type, Num Band Channels, then per band
    // its id, channel count and channels.
    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    // Bits that Write produces, and the band list length it stores.
    uint32_t WrittenBits() const;
    uint32_t BandListBytes() const;
    // Why Write would refuse this record (too many bands or channels, a band list longer than
    // its length field holds); empty when it fits.
    std::string SizeProblem() const;
    std::string RatIdText() const;

    uint8_t ratId = 9;
    uint8_t bandChannelType = 1;
    std::vector<Band> bands;  // at most 255
};

}  // namespace Tarn::Bst3Gpp
