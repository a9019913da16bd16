#include "mmss/Bst3Gpp/Bst3GppRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "mmss/MmssFrame.h"
#include "mmss/MmssNames.h"

namespace Tarn::Bst3Gpp {
namespace {

constexpr DataError kError = DataError::InvalidAcqTable;
constexpr const char* kBadBandChannelType = "Invalid Band Channel Type. Should be Type1 only";

const CNameList& RatIds() {
    return Mmss::NameTables::Instance().RatId();
}

bool ParseRatId(const std::string& text, uint8_t& ratId) {
    int value = 0;
    if (RatIds().FindValue(text, value)) {
        ratId = static_cast<uint8_t>(value);
        return true;
    }
    if (Mmss::IsDigits(text) && text.size() <= 3 && Mmss::ParseDecimal(text) <= 255) {
        ratId = static_cast<uint8_t>(Mmss::ParseDecimal(text));
        return true;
    }
    return false;
}

// Walks a flat list of cells in the grid row's order.
class RowReader {
public:
    virtual ~RowReader() = default;
    virtual std::string Text(int column) = 0;
    virtual uint32_t Number(int column, uint32_t high) = 0;
};

void ReadRow(RowReader& in, Record& r) {
    r.bandChannelType = static_cast<uint8_t>(in.Number(Record::kBandChannelType, 255));
    r.bands.clear();
    if (r.bandChannelType != 1) return;
    const uint32_t count = in.Number(Record::kNumBands, 255);
    int column = Record::kFirstBand;
    for (uint32_t b = 0; b < count; ++b) {
        Band band;
        band.bandId = static_cast<uint8_t>(in.Number(column++, 255));
        const uint32_t channels = in.Number(column++, 255);
        for (uint32_t c = 0; c < channels; ++c)
            band.channels.push_back(static_cast<uint16_t>(in.Number(column++, 65535)));
        r.bands.push_back(std::move(band));
    }
}

}  // namespace

uint32_t Record::BandListBytes() const {
    uint32_t bytes = 1;
    for (const auto& band : bands) bytes += 2 + 2 * static_cast<uint32_t>(band.channels.size());
    return bytes;
}

std::string Record::SizeProblem() const {
    if (bands.size() > 255)
        return "A record holds " + std::to_string(bands.size()) +
               " bands; at most 255 fit in the file.";
    for (const auto& band : bands)
        if (band.channels.size() > 255)
            return "Band " + std::to_string(band.bandId) + " holds " +
                   std::to_string(band.channels.size()) + " channels; at most 255 fit in the file.";
    if (BandListBytes() > Mmss::kMaxSizeWordBytes)
        return "A record's band list would be " + Mmss::GroupedNumber(BandListBytes()) +
               " bytes; its 16-bit length field holds at most " +
               Mmss::GroupedNumber(Mmss::kMaxSizeWordBytes) + ".";
    return {};
}

uint32_t Record::WrittenBits() const {
    return bandChannelType == 1 ? 32 + 8 * BandListBytes() : 8;
}

std::string Record::RatIdText() const {
    return RatIds().HasValue(ratId) ? RatIds().GetName(ratId) : std::to_string(ratId);
}

uint32_t Record::Read(CRLFile& file) {
    ratId = static_cast<uint8_t>(Mmss::Take(file, 8, "RAT id"));
    bandChannelType = static_cast<uint8_t>(Mmss::Take(file, 8, "band channel type"));
    bands.clear();
    if (bandChannelType != 1) throw Mmss::FormatError(kBadBandChannelType);
    Mmss::Take(file, 16, "band list length");
    const uint32_t count = Mmss::Take(file, 8, "number of bands");
    uint32_t bits = 40;
    for (uint32_t b = 0; b < count; ++b) {
        Band band;
        band.bandId = static_cast<uint8_t>(Mmss::Take(file, 8, "band id"));
        const uint32_t channels = Mmss::Take(file, 8, "number of channels");
        Mmss::Require(file, 16ull * channels, "channel");
        for (uint32_t c = 0; c < channels; ++c)
            band.channels.push_back(static_cast<uint16_t>(file.ReadBits(16)));
        bits += 16 + 16 * channels;
        bands.push_back(std::move(band));
    }
    return bits;
}

uint32_t Record::Write(CRLFile& file) const {
    // The counts and the length are stored in 8 and 16 bits; more would be written wrapped and
    // the handset would read a different list of bands.
    if (bandChannelType == 1) {
        if (std::string problem = SizeProblem(); !problem.empty()) throw Mmss::FormatError(problem);
    }
    file.WriteBits(8, ratId);
    if (bandChannelType != 1) return 8;
    file.WriteBits(8, 1);
    file.WriteBits(16, BandListBytes() & 0xFFFFu);
    file.WriteBits(8, static_cast<uint32_t>(bands.size()) & 0xFFu);
    for (const auto& band : bands) {
        file.WriteBits(8, band.bandId);
        file.WriteBits(8, static_cast<uint32_t>(band.channels.size()) & 0xFFu);
        for (uint16_t channel : band.channels) file.WriteBits(16, channel);
    }
    return WrittenBits();
}

void Record::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 0);
    int needed = kFirstBand;
    for (const auto& band : bands) needed += 2 + static_cast<int>(band.channels.size());
    if (grid.GetColumnCount() < needed) grid.SetColumnCount(needed);
    grid.SetCellDropDown(kRatId, row, RatIds().Choices());
    grid.SetCellText(kRatId, row, RatIdText());
    grid.SetCellText(kBandChannelType, row, std::to_string(bandChannelType));
    grid.SetCellText(kNumBands, row, std::to_string(bands.size()));
    int column = kFirstBand;
    for (const auto& band : bands) {
        grid.SetCellText(column++, row, std::to_string(band.bandId));
        grid.SetCellText(column++, row, std::to_string(band.channels.size()));
        for (uint16_t channel : band.channels)
            grid.SetCellText(column++, row, std::to_string(channel));
    }
}

void Record::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    struct Cells : RowReader {
        const Grid& grid;
        int row;
        Cells(const Grid& g, int r) : grid(g), row(r) {}
        std::string Text(int column) override { return Mmss::RequiredCell(grid, column, row); }
        uint32_t Number(int column, uint32_t high) override {
            return static_cast<uint32_t>(Mmss::NumberCell(grid, column, row, 0, high));
        }
    } cells(grid, row);
    Record r = *this;
    if (!ParseRatId(cells.Text(kRatId), r.ratId))
        throw GridError(Msg::OutOfRange, kRatId, row, grid.GetTableName(), 0, 255);
    ReadRow(cells, r);
    *this = r;
}

bool Record::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> titles = {"Rat Id", "Band Channel Type", "Num Band Channels"};
    for (size_t b = 0; b < bands.size(); ++b) {
        titles.push_back("BandId(" + std::to_string(b + 1) + ")");
        titles.push_back("Num Channels(" + std::to_string(b + 1) + ")");
        for (size_t c = 0; c < bands[b].channels.size(); ++c)
            titles.push_back("Channel " + std::to_string(c + 1));
    }
    Mmss::SetHeadings(grid, titles);
    return true;
}

std::string Record::ToText() const {
    std::string text = "Rat Id : " + RatIdText() + "\r\n";
    text += "Num Channel Records : " + std::to_string(bands.size()) + "\r\n";
    text += "Band Id\tNum Channels \t Channels \r\n";
    for (const auto& band : bands) {
        text += std::to_string(band.bandId) + " \t" + std::to_string(band.channels.size()) + " \t";
        for (uint16_t channel : band.channels) text += std::to_string(channel) + " \t";
        text += "\r\n";
    }
    return text;
}

void Record::ToJson(nlohmann::json& out) const {
    out["ratId"] = ratId;
    out["ratIdName"] = RatIds().GetName(ratId);
    out["bandChannelType"] = bandChannelType;
    auto list = nlohmann::json::array();
    for (const auto& band : bands)
        list.push_back({{"bandId", band.bandId}, {"channels", band.channels}});
    out["bands"] = std::move(list);
}

void Record::FromJson(const nlohmann::json& in) {
    Record r;
    r.ratId = static_cast<uint8_t>(Mmss::JsonUInt(in, "ratId", 255, kError));
    r.bandChannelType =
        static_cast<uint8_t>(Mmss::JsonUIntOr(in, "bandChannelType", 255, 1, kError));
    if (in.contains("bands")) {
        const auto& list = Mmss::JsonArray(in, "bands", kError);
        if (list.size() > 255) throw CDataException(kError, "(bands holds more than 255 bands)");
        for (const auto& b : list) {
            Band band;
            band.bandId = static_cast<uint8_t>(Mmss::JsonUInt(b, "bandId", 255, kError));
            const auto& channels = Mmss::JsonArray(b, "channels", kError);
            if (channels.size() > 255)
                throw CDataException(kError, "(channels holds more than 255 channels)");
            for (const auto& c : channels) {
                if (!c.is_number_unsigned() || c.get<uint64_t>() > 65535)
                    throw CDataException(kError, "(channels holds a value outside 0 - 65535)");
                band.channels.push_back(static_cast<uint16_t>(c.get<uint64_t>()));
            }
            r.bands.push_back(std::move(band));
        }
    }
    *this = r;
}

}  // namespace Tarn::Bst3Gpp
