#include "roaming_list/AcqItemGeneric.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "grid/GridError.h"
#include "roaming_list/AcqItemHelpers.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"

namespace Tarn {
namespace {

// The value entry `i` of a record held before its row was read, for a cell still showing it.
template <typename Entry, typename Field>
std::optional<uint32_t> Held(const std::vector<Entry>& entries, size_t i, Field field) {
    if (i >= entries.size()) return std::nullopt;
    return static_cast<uint32_t>(field(entries[i]));
}

}  // namespace

using namespace AcqDetail;

namespace {

const CRLNameTables& Names() {
    return CRLNameTables::Instance();
}

int Col(size_t index) {
    return static_cast<int>(index);
}

// A list that the grid offers more entries of than its count field can hold stops at the field.
void RefuseExcess(size_t count, size_t most, int firstExcessColumn, int row) {
    if (count > most)
        throw GridError(Msg::OutOfRange, firstExcessColumn, row, kAcqTableName, 1,
                        static_cast<long long>(most));
}

}  // namespace

// ---- CDMA and HDR generic

const CNameList& CAcqItemGenericCdma::GetBandList() const {
    return Names().CdmaBand();
}
const CNameList& CAcqItemGenericHdr::GetBandList() const {
    return Names().HdrBand();
}
ChoiceList CAcqItemGenericCdma::GetBandChoices() const {
    return GetBandList().Choices();
}
std::string CAcqItemGenericCdma::GetBandName(int v) const {
    return GetBandList().GetName(v);
}
int CAcqItemGenericCdma::GetBandValue(const std::string& n) const {
    return GetBandList().GetValue(n);
}
DataError CAcqItemGenericCdma::PairError() const {
    return DataError::InvalidCdmaChannelPairs;
}
DataError CAcqItemGenericHdr::PairError() const {
    return DataError::InvalidHdrChannelPairs;
}

size_t CAcqItemGenericCdma::MaxPairs() const {
    return std::min<size_t>(layout_.largest, 255u * 8u / PairBits());
}

bool CAcqItemGenericCdma::IsValid() const {
    if (pairs_.empty() || pairs_.size() > MaxPairs()) return false;
    return std::all_of(pairs_.begin(), pairs_.end(), [this](const BandChannel& p) {
        return Fits(p.bandClass, layout_.bandWidth) && Fits(p.channel, layout_.channelWidth);
    });
}

uint32_t CAcqItemGenericCdma::ReadFields(CRLFile& file, int octetLength) {
    const uint32_t count =
        octetLength > 0 ? static_cast<uint32_t>(octetLength) * 8 / PairBits() : 0;
    std::vector<BandChannel> pairs;
    pairs.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        BandChannel p;
        p.bandClass = static_cast<uint16_t>(file.ReadBits(layout_.bandWidth));
        p.channel = static_cast<uint16_t>(file.ReadBits(layout_.channelWidth));
        pairs.push_back(p);
    }
    pairs_ = std::move(pairs);
    return count * PairBits();
}

uint32_t CAcqItemGenericCdma::WriteFields(CRLFile& file) const {
    uint32_t bits = 0;
    for (const auto& p : pairs_)
        bits += Put(file, layout_.bandWidth, p.bandClass, "band class") +
                Put(file, layout_.channelWidth, p.channel, "channel");
    return bits;
}

void CAcqItemGenericCdma::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, Col(2 * layout_.largest));
    for (int c = 1; c < limit; c += 2) {
        const size_t i = static_cast<size_t>(c - 1) / 2;
        const bool has = i < pairs_.size();
        SetDropDownCell(grid, c, row, GetBandList(),
                        has ? GetBandName(pairs_[i].bandClass) : std::string{});
        if (c + 1 < limit)
            SetEditCell(grid, c + 1, row, "9999",
                        has ? std::to_string(pairs_[i].channel) : std::string{});
    }
}

void CAcqItemGenericCdma::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, Col(2 * layout_.largest));
    const size_t count = ScanEntries(grid, row, 1, 2, limit, Msg::ChannelGap, {true, true});
    RefuseExcess(count, MaxPairs(), Col(2 * MaxPairs() + 1), row);
    const long long channelMax = FieldMax(layout_.channelWidth);
    std::vector<BandChannel> pairs;
    for (size_t i = 0; i < count; ++i) {
        const int bandColumn = Col(2 * i + 1);
        const int channelColumn = bandColumn + 1;
        BandChannel p;
        p.bandClass = static_cast<uint16_t>(
            ReadNamedCell(grid, bandColumn, row, GetBandList(), FieldMax(layout_.bandWidth),
                          Held(pairs_, i, [](const BandChannel& x) { return x.bandClass; })));
        long long low = 0;
        long long high = channelMax;
        switch (p.bandClass) {
            case 3:
                low = 1, high = 1600;
                break;
            case 17:
                low = 140, high = 1459;
                break;
            case 18:
                high = 240;
                break;
            case 19:
                high = 360;
                break;
            default:
                break;
        }
        p.channel = static_cast<uint16_t>(
            ReadNumberCell(grid, channelColumn, row, low, std::min(high, channelMax)));
        // Band class 3 uses only every other channel number.
        if (p.bandClass == 3 && p.channel % 2 != 0)
            throw GridError(Msg::MustBeEven, channelColumn, row, kAcqTableName);
        pairs.push_back(p);
    }
    pairs_ = std::move(pairs);
}

bool CAcqItemGenericCdma::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) {
        headings.push_back(Numbered("Band %d", n));
        headings.push_back(Numbered("Channel %d", n));
    }
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemGenericCdma::ToText() const {
    std::string text;
    for (const auto& p : pairs_)
        text += std::to_string(p.bandClass) + "\t" + std::to_string(p.channel) + "\t";
    return text;
}

void CAcqItemGenericCdma::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.empty() || t.size() % 2 != 0 || t.size() / 2 > MaxPairs())
        BadTokenCount(t.size(), ("an even 2 to " + std::to_string(2 * MaxPairs())).c_str());
    std::vector<BandChannel> pairs;
    for (size_t i = 0; i < t.size(); i += 2) {
        BandChannel p;
        p.bandClass = static_cast<uint16_t>(
            TextNumber(t[i], FieldMax(layout_.bandWidth), PairError(), "band class"));
        p.channel = static_cast<uint16_t>(
            TextNumber(t[i + 1], FieldMax(layout_.channelWidth), PairError(), "channel"));
        pairs.push_back(p);
    }
    pairs_ = std::move(pairs);
}

void CAcqItemGenericCdma::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& p : pairs_)
        list.push_back({{"bandClass", p.bandClass},
                        {"bandClassName", GetBandName(p.bandClass)},
                        {"channel", p.channel}});
    out["pairs"] = std::move(list);
}

void CAcqItemGenericCdma::FromJson(const nlohmann::json& in) {
    const auto& list = JsonArray(in, "pairs", MaxPairs(), PairError());
    std::vector<BandChannel> pairs;
    for (const auto& v : list) {
        const auto& o = JsonObject(v, "pairs", PairError());
        BandChannel p;
        p.bandClass = static_cast<uint16_t>(
            JsonNumber(o, "bandClass", FieldMax(layout_.bandWidth), PairError()));
        p.channel = static_cast<uint16_t>(
            JsonNumber(o, "channel", FieldMax(layout_.channelWidth), PairError()));
        pairs.push_back(p);
    }
    pairs_ = std::move(pairs);
}

// ---- GSM generic

const CNameList& CAcqItemGenericGsm::GetBandList() const {
    return Names().GsmBand();
}
ChoiceList CAcqItemGenericGsm::GetBandChoices() const {
    return GetBandList().Choices();
}
std::string CAcqItemGenericGsm::GetBandName(int v) const {
    return GetBandList().GetName(v);
}
int CAcqItemGenericGsm::GetBandValue(const std::string& n) const {
    return GetBandList().GetValue(n);
}

size_t CAcqItemGenericGsm::MaxBands() const {
    return std::min<size_t>(layout_.largest, FieldMax(layout_.countWidth));
}

bool CAcqItemGenericGsm::IsValid() const {
    if (bands_.empty() || bands_.size() > MaxBands()) return false;
    return std::all_of(bands_.begin(), bands_.end(),
                       [this](uint8_t b) { return Fits(b, layout_.bandWidth); });
}

uint32_t CAcqItemGenericGsm::ReadFields(CRLFile& file, int) {
    const uint32_t count = file.ReadBits(layout_.countWidth);
    std::vector<uint8_t> bands;
    bands.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
        bands.push_back(static_cast<uint8_t>(file.ReadBits(layout_.bandWidth)));
    bands_ = std::move(bands);
    return static_cast<uint32_t>(layout_.countWidth) +
           count * static_cast<uint32_t>(layout_.bandWidth);
}

uint32_t CAcqItemGenericGsm::WriteFields(CRLFile& file) const {
    uint32_t bits =
        Put(file, layout_.countWidth, static_cast<uint32_t>(bands_.size()), "number of bands");
    for (uint8_t b : bands_) bits += Put(file, layout_.bandWidth, b, "GSM band");
    return bits;
}

void CAcqItemGenericGsm::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, Col(layout_.largest));
    for (int c = 1; c < limit; ++c) {
        const size_t i = static_cast<size_t>(c - 1);
        SetDropDownCell(grid, c, row, GetBandList(),
                        i < bands_.size() ? GetBandName(bands_[i]) : std::string{});
    }
}

void CAcqItemGenericGsm::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, Col(layout_.largest));
    const size_t count = ScanEntries(grid, row, 1, 1, limit, Msg::ChannelGap, {true});
    RefuseExcess(count, MaxBands(), Col(MaxBands() + 1), row);
    std::vector<uint8_t> bands;
    for (size_t i = 0; i < count; ++i)
        bands.push_back(static_cast<uint8_t>(
            ReadNamedCell(grid, Col(i + 1), row, GetBandList(), FieldMax(layout_.bandWidth),
                          Held(bands_, i, [](uint8_t x) { return x; }))));
    bands_ = std::move(bands);
}

bool CAcqItemGenericGsm::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) headings.push_back(Numbered("Band %d", n));
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemGenericGsm::ToText() const {
    std::string text;
    for (uint8_t b : bands_) text += std::to_string(b) + "\t";
    return text;
}

void CAcqItemGenericGsm::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.empty() || t.size() > MaxBands())
        BadTokenCount(t.size(), ("1 to " + std::to_string(MaxBands())).c_str());
    std::vector<uint8_t> bands;
    for (const auto& token : t)
        bands.push_back(static_cast<uint8_t>(TextNumber(
            token, FieldMax(layout_.bandWidth), DataError::InvalidGenericGsmBand, "GSM band")));
    bands_ = std::move(bands);
}

void CAcqItemGenericGsm::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (uint8_t b : bands_) list.push_back({{"band", b}, {"bandName", GetBandName(b)}});
    out["bands"] = std::move(list);
}

void CAcqItemGenericGsm::FromJson(const nlohmann::json& in) {
    const auto code = DataError::InvalidGenericGsmBand;
    const auto& list = JsonArray(in, "bands", MaxBands(), code);
    std::vector<uint8_t> bands;
    for (const auto& v : list)
        bands.push_back(static_cast<uint8_t>(
            JsonNumber(JsonObject(v, "bands", code), "band", FieldMax(layout_.bandWidth), code)));
    bands_ = std::move(bands);
}

// ---- UMTS generic

namespace {
constexpr const char* kUarfcnYes = "UARFCN_INCL_YES";
constexpr const char* kUarfcnNo = "UARFCN_INCL_NO";
}  // namespace

const CNameList& CAcqItemGenericUmts::GetBandList() const {
    return Names().UmtsBand();
}
ChoiceList CAcqItemGenericUmts::GetBandChoices() const {
    return GetBandList().Choices();
}
std::string CAcqItemGenericUmts::GetBandName(int v) const {
    return GetBandList().GetName(v);
}
int CAcqItemGenericUmts::GetBandValue(const std::string& n) const {
    return GetBandList().GetValue(n);
}

size_t CAcqItemGenericUmts::MaxEntries() const {
    return std::min<size_t>(layout_.largest, FieldMax(layout_.countWidth));
}

bool CAcqItemGenericUmts::IsValid() const {
    if (entries_.empty() || entries_.size() > MaxEntries()) return false;
    return std::all_of(entries_.begin(), entries_.end(), [this](const UmtsEntry& e) {
        return Fits(e.band, layout_.bandWidth) &&
               (!e.uarfcn || Fits(*e.uarfcn, layout_.uarfcnWidth));
    });
}

uint32_t CAcqItemGenericUmts::ReadFields(CRLFile& file, int) {
    const uint32_t count = file.ReadBits(layout_.countWidth);
    uint32_t bits = static_cast<uint32_t>(layout_.countWidth);
    std::vector<UmtsEntry> entries;
    entries.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        UmtsEntry e;
        e.band = static_cast<uint8_t>(file.ReadBits(layout_.bandWidth));
        const bool included = file.ReadBits(layout_.includedWidth) != 0;
        bits += static_cast<uint32_t>(layout_.bandWidth + layout_.includedWidth);
        if (included) {
            e.uarfcn = static_cast<uint16_t>(file.ReadBits(layout_.uarfcnWidth));
            bits += static_cast<uint32_t>(layout_.uarfcnWidth);
        }
        entries.push_back(e);
    }
    entries_ = std::move(entries);
    return bits;
}

uint32_t CAcqItemGenericUmts::WriteFields(CRLFile& file) const {
    uint32_t bits = Put(file, layout_.countWidth, static_cast<uint32_t>(entries_.size()),
                        "number of UMTS entries");
    for (const auto& e : entries_) {
        bits += Put(file, layout_.bandWidth, e.band, "UMTS band");
        bits += Put(file, layout_.includedWidth, e.uarfcn ? 1 : 0, "UARFCN included");
        if (e.uarfcn) bits += Put(file, layout_.uarfcnWidth, *e.uarfcn, "UARFCN");
    }
    return bits;
}

void CAcqItemGenericUmts::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, Col(2 * layout_.largest));
    for (int c = 1; c < limit; c += 2) {
        const size_t i = static_cast<size_t>(c - 1) / 2;
        const bool has = i < entries_.size();
        SetDropDownCell(grid, c, row, GetBandList(),
                        has ? GetBandName(entries_[i].band) : std::string{});
        if (c + 1 < limit)
            SetEditCell(
                grid, c + 1, row, "99999",
                has && entries_[i].uarfcn ? std::to_string(*entries_[i].uarfcn) : std::string{});
    }
}

void CAcqItemGenericUmts::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, Col(2 * layout_.largest));
    const size_t count = ScanEntries(grid, row, 1, 2, limit, Msg::ChannelGap, {true, false});
    RefuseExcess(count, MaxEntries(), Col(2 * MaxEntries() + 1), row);
    std::vector<UmtsEntry> entries;
    for (size_t i = 0; i < count; ++i) {
        const int bandColumn = Col(2 * i + 1);
        UmtsEntry e;
        e.band = static_cast<uint8_t>(
            ReadNamedCell(grid, bandColumn, row, GetBandList(), FieldMax(layout_.bandWidth),
                          Held(entries_, i, [](const UmtsEntry& x) { return x.band; })));
        if (!IsBlankCell(grid, bandColumn + 1, row))
            e.uarfcn = static_cast<uint16_t>(
                ReadNumberCell(grid, bandColumn + 1, row, 0, FieldMax(layout_.uarfcnWidth)));
        entries.push_back(e);
    }
    entries_ = std::move(entries);
}

bool CAcqItemGenericUmts::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) {
        headings.push_back(Numbered("Band %d", n));
        headings.push_back(Numbered("UARFCN %d", n));
    }
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemGenericUmts::ToText() const {
    std::string text;
    for (const auto& e : entries_) {
        text += std::to_string(e.band) + "\t";
        text += e.uarfcn ? std::string(kUarfcnYes) + "\t" + std::to_string(*e.uarfcn) + "\t"
                         : std::string(kUarfcnNo) + "\t";
    }
    return text;
}

void CAcqItemGenericUmts::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    const auto code = DataError::InvalidGenericUmtsBand;
    std::vector<UmtsEntry> entries;
    for (size_t i = 0; i < t.size();) {
        if (entries.size() == MaxEntries() || i + 1 >= t.size())
            BadTokenCount(t.size(), "whole entries");
        UmtsEntry e;
        e.band =
            static_cast<uint8_t>(TextNumber(t[i], FieldMax(layout_.bandWidth), code, "UMTS band"));
        if (t[i + 1] == kUarfcnYes) {
            if (i + 2 >= t.size()) BadTokenCount(t.size(), "whole entries");
            e.uarfcn = static_cast<uint16_t>(
                TextNumber(t[i + 2], FieldMax(layout_.uarfcnWidth), code, "UARFCN"));
            i += 3;
        } else if (t[i + 1] == kUarfcnNo) {
            i += 2;
        } else {
            throw CDataException(code, "(\"" + t[i + 1] + "\" where " + kUarfcnYes + " or " +
                                           kUarfcnNo + " is expected)");
        }
        entries.push_back(e);
    }
    if (entries.empty()) BadTokenCount(0, "at least 2");
    entries_ = std::move(entries);
}

void CAcqItemGenericUmts::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& e : entries_) {
        nlohmann::json o = {{"band", e.band}, {"bandName", GetBandName(e.band)}};
        if (e.uarfcn) o["uarfcn"] = *e.uarfcn;
        list.push_back(std::move(o));
    }
    out["entries"] = std::move(list);
}

void CAcqItemGenericUmts::FromJson(const nlohmann::json& in) {
    const auto code = DataError::InvalidGenericUmtsBand;
    const auto& list = JsonArray(in, "entries", MaxEntries(), code);
    std::vector<UmtsEntry> entries;
    for (const auto& v : list) {
        const auto& o = JsonObject(v, "entries", code);
        UmtsEntry e;
        e.band = static_cast<uint8_t>(JsonNumber(o, "band", FieldMax(layout_.bandWidth), code));
        if (o.contains("uarfcn"))
            e.uarfcn =
                static_cast<uint16_t>(JsonNumber(o, "uarfcn", FieldMax(layout_.uarfcnWidth), code));
        entries.push_back(e);
    }
    entries_ = std::move(entries);
}

// ---- UMB generic

namespace {
constexpr int kUmbColumns = 5;  // band, channel, FFT size, guard carriers, cyclic prefix
}  // namespace

const CNameList& CAcqItemGenericUmb::GetBandList() const {
    return Names().UmbBand();
}
ChoiceList CAcqItemGenericUmb::GetBandChoices() const {
    return GetBandList().Choices();
}
std::string CAcqItemGenericUmb::GetBandName(int v) const {
    return GetBandList().GetName(v);
}
int CAcqItemGenericUmb::GetBandValue(const std::string& n) const {
    return GetBandList().GetValue(n);
}

size_t CAcqItemGenericUmb::MaxEntries() const {
    return std::min<size_t>(layout_.largest, FieldMax(layout_.countWidth));
}

bool CAcqItemGenericUmb::EntryFits(const UmbEntry& e) const {
    return Fits(e.bandClass, layout_.bandWidth) && Fits(e.channel, layout_.channelWidth) &&
           Fits(e.fftSize, layout_.fftSizeWidth) && Fits(e.numGuardCarriers, layout_.guardWidth) &&
           Fits(e.cyclicPrefix, layout_.cyclicPrefixWidth) && Fits(e.spare, layout_.spareWidth);
}

bool CAcqItemGenericUmb::IsValid() const {
    return entries_.size() <= MaxEntries() &&
           std::all_of(entries_.begin(), entries_.end(),
                       [this](const UmbEntry& e) { return EntryFits(e); });
}

uint32_t CAcqItemGenericUmb::ReadFields(CRLFile& file, int) {
    const uint32_t count = file.ReadBits(layout_.countWidth);
    std::vector<UmbEntry> entries;
    entries.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        UmbEntry e;
        e.bandClass = static_cast<uint16_t>(file.ReadBits(layout_.bandWidth));
        e.channel = static_cast<uint16_t>(file.ReadBits(layout_.channelWidth));
        e.fftSize = static_cast<uint16_t>(file.ReadBits(layout_.fftSizeWidth));
        e.numGuardCarriers = static_cast<uint16_t>(file.ReadBits(layout_.guardWidth));
        e.cyclicPrefix = static_cast<uint16_t>(file.ReadBits(layout_.cyclicPrefixWidth));
        e.spare = static_cast<uint16_t>(file.ReadBits(layout_.spareWidth));
        entries.push_back(e);
    }
    entries_ = std::move(entries);
    const int entryBits = layout_.bandWidth + layout_.channelWidth + layout_.fftSizeWidth +
                          layout_.guardWidth + layout_.cyclicPrefixWidth + layout_.spareWidth;
    return static_cast<uint32_t>(layout_.countWidth) + count * static_cast<uint32_t>(entryBits);
}

uint32_t CAcqItemGenericUmb::WriteFields(CRLFile& file) const {
    uint32_t bits = Put(file, layout_.countWidth, static_cast<uint32_t>(entries_.size()),
                        "number of UMB entries");
    for (const auto& e : entries_) {
        bits += Put(file, layout_.bandWidth, e.bandClass, "UMB band class");
        bits += Put(file, layout_.channelWidth, e.channel, "UMB channel");
        bits += Put(file, layout_.fftSizeWidth, e.fftSize, "FFT size");
        bits += Put(file, layout_.guardWidth, e.numGuardCarriers, "number of guard carriers");
        bits += Put(file, layout_.cyclicPrefixWidth, e.cyclicPrefix, "cyclic prefix length");
        bits += Put(file, layout_.spareWidth, e.spare, "UMB spare field");
    }
    return bits;
}

void CAcqItemGenericUmb::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, Col(kUmbColumns * layout_.largest));
    const auto& fft = Names().UmbFftSize();
    const auto& prefix = Names().UmbCyclicPrefix();
    for (size_t i = 0; i < layout_.largest; ++i) {
        const int first = Col(kUmbColumns * i + 1);
        if (first >= limit) break;
        const bool has = i < entries_.size();
        const UmbEntry e = has ? entries_[i] : UmbEntry{};
        auto text = [has](const std::string& s) { return has ? s : std::string{}; };
        SetDropDownCell(grid, first, row, GetBandList(), text(GetBandName(e.bandClass)));
        if (first + 1 < limit)
            SetEditCell(grid, first + 1, row, "9999", text(std::to_string(e.channel)));
        if (first + 2 < limit)
            SetDropDownCell(grid, first + 2, row, fft, text(fft.GetName(e.fftSize)));
        if (first + 3 < limit)
            SetEditCell(grid, first + 3, row, "9999", text(std::to_string(e.numGuardCarriers)));
        if (first + 4 < limit)
            SetDropDownCell(grid, first + 4, row, prefix, text(prefix.GetName(e.cyclicPrefix)));
    }
}

void CAcqItemGenericUmb::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    const int limit = ColumnLimit(grid, Col(kUmbColumns * layout_.largest));
    const size_t count =
        ScanEntries(grid, row, 1, kUmbColumns, limit, Msg::UmbGap, {true, true, true, true, true});
    RefuseExcess(count, MaxEntries(), Col(kUmbColumns * MaxEntries() + 1), row);
    std::vector<UmbEntry> entries;
    for (size_t i = 0; i < count; ++i) {
        const int first = Col(kUmbColumns * i + 1);
        UmbEntry e;
        e.bandClass = static_cast<uint16_t>(
            ReadNamedCell(grid, first, row, GetBandList(), FieldMax(layout_.bandWidth),
                          Held(entries_, i, [](const UmbEntry& x) { return x.bandClass; })));
        e.channel = static_cast<uint16_t>(
            ReadNumberCell(grid, first + 1, row, 0, FieldMax(layout_.channelWidth)));
        e.fftSize = static_cast<uint16_t>(ReadNamedCell(
            grid, first + 2, row, Names().UmbFftSize(), FieldMax(layout_.fftSizeWidth),
            Held(entries_, i, [](const UmbEntry& x) { return x.fftSize; })));
        e.numGuardCarriers = static_cast<uint16_t>(
            ReadNumberCell(grid, first + 3, row, 0, FieldMax(layout_.guardWidth)));
        e.cyclicPrefix = static_cast<uint16_t>(ReadNamedCell(
            grid, first + 4, row, Names().UmbCyclicPrefix(), FieldMax(layout_.cyclicPrefixWidth),
            Held(entries_, i, [](const UmbEntry& x) { return x.cyclicPrefix; })));
        // The grid does not show the spare field; an entry keeps the one it had at its place.
        if (i < entries_.size()) e.spare = entries_[i].spare;
        entries.push_back(e);
    }
    entries_ = std::move(entries);
}

bool CAcqItemGenericUmb::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    for (size_t n = 1; n <= layout_.largest; ++n) {
        headings.push_back(Numbered("Band %d", n));
        headings.push_back(Numbered("Channel %d", n));
        headings.push_back(Numbered("FFT Size %d", n));
        headings.push_back(Numbered("Num Guard %d", n));
        headings.push_back(Numbered("Cyclic Prefix %d", n));
    }
    SetHeadings(grid, headings, grid.GetColumnCount());
    return true;
}

std::string CAcqItemGenericUmb::ToText() const {
    std::string text;
    for (const auto& e : entries_)
        for (uint16_t v :
             {e.bandClass, e.channel, e.fftSize, e.numGuardCarriers, e.cyclicPrefix, e.spare})
            text += std::to_string(v) + "\t";
    return text;
}

void CAcqItemGenericUmb::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.size() % 6 != 0 || t.size() / 6 > MaxEntries())
        BadTokenCount(t.size(),
                      ("a multiple of 6 up to " + std::to_string(6 * MaxEntries())).c_str());
    const auto code = DataError::InvalidAcqTable;
    std::vector<UmbEntry> entries;
    for (size_t i = 0; i < t.size(); i += 6) {
        UmbEntry e;
        e.bandClass = static_cast<uint16_t>(
            TextNumber(t[i], FieldMax(layout_.bandWidth), code, "UMB band class"));
        e.channel = static_cast<uint16_t>(
            TextNumber(t[i + 1], FieldMax(layout_.channelWidth), code, "UMB channel"));
        e.fftSize = static_cast<uint16_t>(
            TextNumber(t[i + 2], FieldMax(layout_.fftSizeWidth), code, "FFT size"));
        e.numGuardCarriers = static_cast<uint16_t>(
            TextNumber(t[i + 3], FieldMax(layout_.guardWidth), code, "number of guard carriers"));
        e.cyclicPrefix = static_cast<uint16_t>(TextNumber(
            t[i + 4], FieldMax(layout_.cyclicPrefixWidth), code, "cyclic prefix length"));
        e.spare = static_cast<uint16_t>(
            TextNumber(t[i + 5], FieldMax(layout_.spareWidth), code, "UMB spare field"));
        entries.push_back(e);
    }
    entries_ = std::move(entries);
}

void CAcqItemGenericUmb::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& e : entries_)
        list.push_back({{"bandClass", e.bandClass},
                        {"bandClassName", GetBandName(e.bandClass)},
                        {"channel", e.channel},
                        {"fftSize", e.fftSize},
                        {"fftSizeName", Names().UmbFftSize().GetName(e.fftSize)},
                        {"numGuardCarriers", e.numGuardCarriers},
                        {"cyclicPrefix", e.cyclicPrefix},
                        {"cyclicPrefixName", Names().UmbCyclicPrefix().GetName(e.cyclicPrefix)},
                        {"spare", e.spare}});
    out["entries"] = std::move(list);
}

void CAcqItemGenericUmb::FromJson(const nlohmann::json& in) {
    const auto code = DataError::InvalidAcqTable;
    const auto& list = JsonArray(in, "entries", MaxEntries(), code);
    std::vector<UmbEntry> entries;
    for (const auto& v : list) {
        const auto& o = JsonObject(v, "entries", code);
        UmbEntry e;
        e.bandClass =
            static_cast<uint16_t>(JsonNumber(o, "bandClass", FieldMax(layout_.bandWidth), code));
        e.channel =
            static_cast<uint16_t>(JsonNumber(o, "channel", FieldMax(layout_.channelWidth), code));
        e.fftSize =
            static_cast<uint16_t>(JsonNumber(o, "fftSize", FieldMax(layout_.fftSizeWidth), code));
        e.numGuardCarriers = static_cast<uint16_t>(
            JsonNumber(o, "numGuardCarriers", FieldMax(layout_.guardWidth), code));
        e.cyclicPrefix = static_cast<uint16_t>(
            JsonNumber(o, "cyclicPrefix", FieldMax(layout_.cyclicPrefixWidth), code));
        e.spare =
            static_cast<uint16_t>(JsonNumberOr(o, "spare", FieldMax(layout_.spareWidth), code, 0));
        entries.push_back(e);
    }
    entries_ = std::move(entries);
}

}  // namespace Tarn
