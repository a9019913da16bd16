#include "roaming_list/AcqItemGwl.h"

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

constexpr int kLastColumn = 299;
constexpr uint32_t kMaxRecordBits = 255 * 8;
constexpr const char* kPresent = "UARFCN_PRESENT";
constexpr const char* kNotPresent = "UARFCN_NOT_PRESENT";

uint32_t Fill(uint32_t bits) {
    return (8 - bits % 8) % 8;
}

std::vector<GwlTechnology> DefaultTechnologies() {
    return {{9, {}}, {3, {}}, {5, {}}};
}

bool AnyFilled(const Grid& grid, int row, int from, int limit) {
    for (int c = from; c < limit; ++c)
        if (!IsBlankCell(grid, c, row)) return true;
    return false;
}

}  // namespace

GwlLayout GwlGenericLayout() {
    return GwlLayout{};
}

GwlLayout ThreeGppGenericLayout() {
    GwlLayout layout;
    layout.bandCountWidth = 8;
    layout.bandWidth = 8;
    layout.maxBands = 255;
    return layout;
}

// ---- the shared technology list

size_t CGwlTechnologyList::MaxRats() const {
    return std::min<size_t>(layout_.maxRats, FieldMax(layout_.ratCountWidth));
}

size_t CGwlTechnologyList::MaxBands() const {
    return std::min<size_t>(layout_.maxBands, FieldMax(layout_.bandCountWidth));
}

const CNameList* CGwlTechnologyList::BandList(uint8_t sysMode) const {
    switch (sysMode) {
        case 3:
            return &Names().GsmBand();
        case 5:
            return &Names().UmtsBand();
        case 9:
            return lteBands_;
        default:
            return nullptr;
    }
}

uint32_t CGwlTechnologyList::EncodedBits() const {
    uint32_t bits = static_cast<uint32_t>(layout_.ratCountWidth);
    for (const auto& t : technologies) {
        bits += static_cast<uint32_t>(layout_.sysModeWidth + layout_.bandCountWidth);
        for (const auto& b : t.bands)
            bits += static_cast<uint32_t>(layout_.bandWidth + layout_.includedWidth +
                                          (b.uarfcn ? layout_.uarfcnWidth : 0));
    }
    return bits;
}

bool CGwlTechnologyList::IsValid(uint32_t headerBits) const {
    if (technologies.empty() || technologies.size() > MaxRats()) return false;
    for (const auto& t : technologies) {
        if (!Names().GwlSysMode().HasValue(t.sysMode) || !Fits(t.sysMode, layout_.sysModeWidth))
            return false;
        if (t.bands.empty() || t.bands.size() > MaxBands()) return false;
        for (const auto& b : t.bands)
            if (!Fits(b.band, layout_.bandWidth) ||
                (b.uarfcn && !Fits(*b.uarfcn, layout_.uarfcnWidth)))
                return false;
    }
    const uint32_t bits = headerBits + EncodedBits();
    return bits + Fill(bits) <= kMaxRecordBits;
}

uint32_t CGwlTechnologyList::Read(CRLFile& file) {
    // Every count is bounded by its width, so a hostile record costs at most 7 x 255 bands.
    const uint32_t ratCount = file.ReadBits(layout_.ratCountWidth);
    uint32_t bits = static_cast<uint32_t>(layout_.ratCountWidth);
    std::vector<GwlTechnology> techs;
    for (uint32_t i = 0; i < ratCount; ++i) {
        GwlTechnology t;
        t.sysMode = static_cast<uint8_t>(file.ReadBits(layout_.sysModeWidth));
        const uint32_t bandCount = file.ReadBits(layout_.bandCountWidth);
        bits += static_cast<uint32_t>(layout_.sysModeWidth + layout_.bandCountWidth);
        for (uint32_t j = 0; j < bandCount; ++j) {
            GwlBand b;
            b.band = static_cast<uint8_t>(file.ReadBits(layout_.bandWidth));
            const bool present = file.ReadBits(layout_.includedWidth) != 0;
            bits += static_cast<uint32_t>(layout_.bandWidth + layout_.includedWidth);
            if (present) {
                b.uarfcn = static_cast<uint16_t>(file.ReadBits(layout_.uarfcnWidth));
                bits += static_cast<uint32_t>(layout_.uarfcnWidth);
            }
            t.bands.push_back(b);
        }
        techs.push_back(std::move(t));
    }
    technologies = std::move(techs);
    return bits;
}

uint32_t CGwlTechnologyList::Write(CRLFile& file) const {
    uint32_t bits = Put(file, layout_.ratCountWidth, static_cast<uint32_t>(technologies.size()),
                        "number of technologies");
    for (const auto& t : technologies) {
        bits += Put(file, layout_.sysModeWidth, t.sysMode, "system mode");
        bits += Put(file, layout_.bandCountWidth, static_cast<uint32_t>(t.bands.size()),
                    "number of bands");
        for (const auto& b : t.bands) {
            bits += Put(file, layout_.bandWidth, b.band, "band");
            bits += Put(file, layout_.includedWidth, b.uarfcn ? 1 : 0, "UARFCN present");
            if (b.uarfcn) bits += Put(file, layout_.uarfcnWidth, *b.uarfcn, "UARFCN");
        }
    }
    return bits;
}

void CGwlTechnologyList::WriteToGrid(Grid& grid, int row, int ratColumn, int limit) const {
    if (ratColumn < limit)
        SetEditCell(grid, ratColumn, row, "9", std::to_string(technologies.size()));
    int col = ratColumn + 1;
    const auto& modes = Names().GwlSysMode();
    for (const auto& t : technologies) {
        if (col < limit) SetDropDownCell(grid, col, row, modes, modes.GetName(t.sysMode));
        if (col + 1 < limit) SetEditCell(grid, col + 1, row, "999", std::to_string(t.bands.size()));
        col += 2;
        const CNameList* list = BandList(t.sysMode);
        for (const auto& b : t.bands) {
            if (col < limit) {
                if (list)
                    SetDropDownCell(grid, col, row, *list, list->GetName(b.band));
                else
                    SetEditCell(grid, col, row, "999", std::to_string(b.band));
            }
            if (col + 1 < limit)
                SetEditCell(grid, col + 1, row, "99999",
                            b.uarfcn ? std::to_string(*b.uarfcn) : std::string{});
            col += 2;
        }
    }
}

void CGwlTechnologyList::ReadFromGrid(const Grid& grid, int row, int ratColumn, int limit,
                                      uint32_t headerBits) {
    ReadCells(grid, row, ratColumn, limit, headerBits);
}

void CGwlTechnologyList::AdoptRowLayout(const Grid& grid, int row, int ratColumn, int limit) {
    technologies = LayoutFromRow(grid, row, ratColumn, limit);
}

namespace {

// A count cell read without complaint: 0 when it holds no number, never above `max`.
size_t LenientCount(const std::string& text, size_t max) {
    long long value = 0;
    if (!ParseNumber(text, value) || value < 0) return 0;
    return std::min(static_cast<size_t>(value), max);
}

struct TechCells {
    std::string mode;
    std::string count;
    std::vector<std::pair<std::string, std::string>> bands;  // band, UARFCN
};

}  // namespace

std::vector<GwlTechnology> CGwlTechnologyList::LayoutFromRow(const Grid& grid, int row,
                                                             int ratColumn, int limit) const {
    std::vector<GwlTechnology> techs;
    const size_t rats = LenientCount(grid.GetCellText(ratColumn, row), MaxRats());
    int col = ratColumn + 1;
    for (size_t i = 0; i < rats && col < limit; ++i) {
        GwlTechnology t;
        int mode = 0;
        if (Names().GwlSysMode().FindValue(grid.GetCellText(col, row), mode))
            t.sysMode = static_cast<uint8_t>(mode);
        const size_t bands = LenientCount(grid.GetCellText(col + 1, row), MaxBands());
        t.bands.resize(bands);
        col += 2 + 2 * static_cast<int>(bands);
        techs.push_back(std::move(t));
    }
    return techs;
}

bool CGwlTechnologyList::RelayoutRow(Grid& grid, int row, int ratColumn, int limit, int column,
                                     const std::string& oldText) const {
    auto text = [&](int c) { return c == column ? oldText : grid.GetCellText(c, row); };
    // The row as it was laid out before the edit.
    std::vector<TechCells> techs;
    const size_t rats = LenientCount(text(ratColumn), MaxRats());
    bool placesSomething = column == ratColumn;
    int col = ratColumn + 1;
    for (size_t i = 0; i < rats && col < limit; ++i) {
        TechCells t{text(col), text(col + 1), {}};
        placesSomething = placesSomething || column == col || column == col + 1;
        const size_t bands = LenientCount(t.count, MaxBands());
        for (size_t j = 0; j < bands; ++j) {
            const int c = col + 2 + 2 * static_cast<int>(j);
            t.bands.emplace_back(text(c), text(c + 1));
        }
        col += 2 + 2 * static_cast<int>(bands);
        techs.push_back(std::move(t));
    }
    if (!placesSomething) return false;

    // Apply the edit: the new technology count, band count or system mode.
    const std::string edited = grid.GetCellText(column, row);
    if (column == ratColumn) {
        const size_t wanted = LenientCount(edited, MaxRats());
        techs.resize(wanted, TechCells{"", "1", {{"", ""}}});
    } else {
        col = ratColumn + 1;
        for (auto& t : techs) {
            if (column == col) t.mode = edited;
            if (column == col + 1) {
                t.count = edited;
                t.bands.resize(LenientCount(edited, MaxBands()));
            }
            col += 2 + 2 * static_cast<int>(LenientCount(text(col + 1), MaxBands()));
        }
    }

    // Write the row again from the technology count on.
    const std::string ratText = grid.GetCellText(ratColumn, row);
    grid.ClearRow(row, ratColumn);
    if (ratColumn < limit) SetEditCell(grid, ratColumn, row, "9", ratText);
    const auto& modes = Names().GwlSysMode();
    col = ratColumn + 1;
    for (const auto& t : techs) {
        if (col < limit) SetDropDownCell(grid, col, row, modes, t.mode);
        if (col + 1 < limit) SetEditCell(grid, col + 1, row, "999", t.count);
        col += 2;
        int mode = 0;
        const CNameList* list =
            modes.FindValue(t.mode, mode) ? BandList(static_cast<uint8_t>(mode)) : nullptr;
        for (const auto& [band, uarfcn] : t.bands) {
            if (col < limit) {
                if (list)
                    SetDropDownCell(grid, col, row, *list, band);
                else
                    SetEditCell(grid, col, row, "999", band);
            }
            if (col + 1 < limit) SetEditCell(grid, col + 1, row, "99999", uarfcn);
            col += 2;
        }
    }
    return true;
}

void CGwlTechnologyList::ReadCells(const Grid& grid, int row, int ratColumn, int limit,
                                   uint32_t headerBits) {
    const auto ratCount =
        ReadNumberCell(grid, ratColumn, row, 1, static_cast<long long>(MaxRats()));
    uint32_t bits = headerBits + static_cast<uint32_t>(layout_.ratCountWidth);
    std::vector<GwlTechnology> techs;
    int col = ratColumn + 1;
    for (uint32_t i = 0; i < ratCount; ++i) {
        GwlTechnology t;
        const int modeColumn = col;
        const int countColumn = col + 1;
        t.sysMode = static_cast<uint8_t>(ReadNamedCell(grid, modeColumn, row, Names().GwlSysMode(),
                                                       FieldMax(layout_.sysModeWidth)));
        if (!Names().GwlSysMode().HasValue(t.sysMode))
            throw CDataException(DataError::InvalidGwlSysMode,
                                 "(\"" + grid.GetCellText(modeColumn, row) + "\")");
        const auto bandCount =
            ReadNumberCell(grid, countColumn, row, 1, static_cast<long long>(MaxBands()));
        const int firstBand = col + 2;
        const long long room = std::max(0, (limit - firstBand) / 2);
        if (bandCount > room)
            throw GridError(Msg::OutOfRange, countColumn, row, kAcqTableName, 1, room);
        bits += static_cast<uint32_t>(layout_.sysModeWidth + layout_.bandCountWidth);
        const CNameList* list = BandList(t.sysMode);
        for (uint32_t j = 0; j < bandCount; ++j) {
            const int bandColumn = firstBand + 2 * static_cast<int>(j);
            const int uarfcnColumn = bandColumn + 1;
            if (IsBlankCell(grid, bandColumn, row) && IsBlankCell(grid, uarfcnColumn, row) &&
                AnyFilled(grid, row, uarfcnColumn + 1, limit))
                throw GridError(Msg::TypeSpecificGap, bandColumn, row, kAcqTableName);
            GwlBand b;
            b.band = static_cast<uint8_t>(
                list ? ReadNamedCell(grid, bandColumn, row, *list, FieldMax(layout_.bandWidth))
                     : ReadNumberCell(grid, bandColumn, row, 0, FieldMax(layout_.bandWidth)));
            if (IsBadCell(grid, uarfcnColumn, row)) RequireCell(grid, uarfcnColumn, row);
            if (!IsBlankCell(grid, uarfcnColumn, row))
                b.uarfcn = static_cast<uint16_t>(
                    ReadNumberCell(grid, uarfcnColumn, row, 0, FieldMax(layout_.uarfcnWidth)));
            const uint32_t bandBits = static_cast<uint32_t>(
                layout_.bandWidth + layout_.includedWidth + (b.uarfcn ? layout_.uarfcnWidth : 0));
            // The octet length bounds the record; name how many of this technology's bands fit.
            if (bits + bandBits + Fill(bits + bandBits) > kMaxRecordBits)
                throw GridError(Msg::OutOfRange, countColumn, row, kAcqTableName, 1,
                                std::max<long long>(1, j));
            bits += bandBits;
            t.bands.push_back(b);
        }
        col = firstBand + 2 * static_cast<int>(bandCount);
        techs.push_back(std::move(t));
    }
    for (int c = col; c < limit; ++c)
        if (!IsBlankCell(grid, c, row))
            throw GridError(Msg::TypeSpecificGap, c, row, kAcqTableName);
    technologies = std::move(techs);
}

void CGwlTechnologyList::AppendHeadings(std::vector<std::string>& headings) const {
    headings.push_back("Num Rats");
    for (size_t i = 0; i < technologies.size(); ++i) {
        headings.push_back(Numbered("SysMode %d", i + 1));
        headings.push_back("Num Bands");
        for (size_t j = 0; j < technologies[i].bands.size(); ++j) {
            headings.push_back(Numbered("Band %d", j + 1));
            headings.push_back(Numbered("Uarfcn %d", j + 1));
        }
    }
}

std::string CGwlTechnologyList::ToText() const {
    std::string text;
    for (const auto& t : technologies) {
        text += std::to_string(t.sysMode) + "\t" + std::to_string(t.bands.size()) + "\t";
        for (const auto& b : t.bands) {
            text += std::to_string(b.band) + "\t";
            text += b.uarfcn ? std::string(kPresent) + "\t" + std::to_string(*b.uarfcn) + "\t"
                             : std::string(kNotPresent) + "\t";
        }
    }
    return text;
}

void CGwlTechnologyList::FromText(const std::vector<std::string>& tokens, size_t first) {
    const auto code = DataError::InvalidAcqTable;
    auto need = [&](size_t i) {
        if (i >= tokens.size()) BadTokenCount(tokens.size(), "whole technologies");
        return tokens[i];
    };
    std::vector<GwlTechnology> techs;
    size_t i = first;
    while (i < tokens.size()) {
        if (techs.size() == MaxRats()) BadTokenCount(tokens.size(), "at most 3 technologies");
        GwlTechnology t;
        t.sysMode = static_cast<uint8_t>(TextNumber(need(i), FieldMax(layout_.sysModeWidth),
                                                    DataError::InvalidGwlSysMode, "system mode"));
        const uint32_t bandCount =
            TextNumber(need(i + 1), static_cast<uint32_t>(MaxBands()), code, "number of bands");
        i += 2;
        for (uint32_t j = 0; j < bandCount; ++j) {
            GwlBand b;
            b.band = static_cast<uint8_t>(
                TextNumber(need(i), FieldMax(layout_.bandWidth), code, "band"));
            const std::string presence = need(i + 1);
            if (presence == kPresent) {
                b.uarfcn = static_cast<uint16_t>(
                    TextNumber(need(i + 2), FieldMax(layout_.uarfcnWidth), code, "UARFCN"));
                i += 3;
            } else if (presence == kNotPresent) {
                i += 2;
            } else {
                throw CDataException(code, "(\"" + presence + "\" where " + kPresent + " or " +
                                               kNotPresent + " is expected)");
            }
            t.bands.push_back(b);
        }
        techs.push_back(std::move(t));
    }
    if (techs.empty()) BadTokenCount(tokens.size() - first, "at least one technology");
    technologies = std::move(techs);
}

void CGwlTechnologyList::ToJson(nlohmann::json& out) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& t : technologies) {
        const CNameList* names = BandList(t.sysMode);
        nlohmann::json bands = nlohmann::json::array();
        for (const auto& b : t.bands) {
            nlohmann::json o = {{"band", b.band},
                                {"bandName", names ? names->GetName(b.band) : kInvalidName}};
            if (b.uarfcn) o["uarfcn"] = *b.uarfcn;
            bands.push_back(std::move(o));
        }
        list.push_back({{"sysMode", t.sysMode},
                        {"sysModeName", Names().GwlSysMode().GetName(t.sysMode)},
                        {"bands", std::move(bands)}});
    }
    out["technologies"] = std::move(list);
}

void CGwlTechnologyList::FromJson(const nlohmann::json& in) {
    const auto code = DataError::InvalidAcqTable;
    const auto& list = JsonArray(in, "technologies", MaxRats(), code);
    std::vector<GwlTechnology> techs;
    for (const auto& v : list) {
        const auto& o = JsonObject(v, "technologies", code);
        GwlTechnology t;
        t.sysMode = static_cast<uint8_t>(
            JsonNumber(o, "sysMode", FieldMax(layout_.sysModeWidth), DataError::InvalidGwlSysMode));
        for (const auto& bv : JsonArray(o, "bands", MaxBands(), code)) {
            const auto& bo = JsonObject(bv, "bands", code);
            GwlBand b;
            b.band =
                static_cast<uint8_t>(JsonNumber(bo, "band", FieldMax(layout_.bandWidth), code));
            if (bo.contains("uarfcn"))
                b.uarfcn = static_cast<uint16_t>(
                    JsonNumber(bo, "uarfcn", FieldMax(layout_.uarfcnWidth), code));
            t.bands.push_back(b);
        }
        techs.push_back(std::move(t));
    }
    technologies = std::move(techs);
}

// ---- GWL Generic

AcqItemGenericGwl::AcqItemGenericGwl() : list_(&Names().LteBandGwl(), GwlGenericLayout()) {
    list_.technologies = DefaultTechnologies();
}

bool AcqItemGenericGwl::IsValid() const {
    return list_.IsValid(0);
}

uint32_t AcqItemGenericGwl::ReadFields(CRLFile& file, int) {
    return list_.Read(file);
}

uint32_t AcqItemGenericGwl::WriteFields(CRLFile& file) const {
    return list_.Write(file);
}

void AcqItemGenericGwl::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    list_.WriteToGrid(grid, row, 1, ColumnLimit(grid, kLastColumn));
}

void AcqItemGenericGwl::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    list_.ReadFromGrid(grid, row, 1, ColumnLimit(grid, kLastColumn), 0);
}

bool AcqItemGenericGwl::OnCellEdited(Grid& grid, int row, int column,
                                     const std::string& oldText) const {
    return list_.RelayoutRow(grid, row, 1, ColumnLimit(grid, kLastColumn), column, oldText);
}

void AcqItemGenericGwl::AdoptRowLayout(const Grid& grid, int row) {
    list_.AdoptRowLayout(grid, row, 1, ColumnLimit(grid, kLastColumn));
}

bool AcqItemGenericGwl::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings;
    list_.AppendHeadings(headings);
    SetHeadings(grid, headings, ColumnLimit(grid, kLastColumn));
    return true;
}

std::string AcqItemGenericGwl::ToText() const {
    return list_.ToText();
}

void AcqItemGenericGwl::FromText(const std::vector<std::string>& tokens) {
    list_.FromText(TrimTokens(tokens), 0);
}

void AcqItemGenericGwl::ToJson(nlohmann::json& out) const {
    list_.ToJson(out);
}

void AcqItemGenericGwl::FromJson(const nlohmann::json& in) {
    list_.FromJson(in);
}

// ---- 3GPP Generic

AcqItem3GPPGeneric::AcqItem3GPPGeneric() : list_(&Names().LteBand3gpp(), ThreeGppGenericLayout()) {
    list_.technologies = DefaultTechnologies();
}

bool AcqItem3GPPGeneric::IsValid() const {
    return version_ == kSupportedVersion && Fits(version_, versionWidth_) &&
           list_.IsValid(static_cast<uint32_t>(versionWidth_));
}

uint32_t AcqItem3GPPGeneric::ReadFields(CRLFile& file, int) {
    version_ = static_cast<uint8_t>(file.ReadBits(versionWidth_));
    return static_cast<uint32_t>(versionWidth_) + list_.Read(file);
}

uint32_t AcqItem3GPPGeneric::WriteFields(CRLFile& file) const {
    const uint32_t bits = Put(file, versionWidth_, version_, "3GPP record version");
    return bits + list_.Write(file);
}

void AcqItem3GPPGeneric::WriteToGrid(Grid& grid, int row) const {
    grid.ClearRow(row, 1);
    const int limit = ColumnLimit(grid, kLastColumn);
    if (limit > 1) SetEditCell(grid, 1, row, "999", std::to_string(version_));
    list_.WriteToGrid(grid, row, 2, limit);
}

void AcqItem3GPPGeneric::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    RequireCell(grid, 1, row);
    long long version = 0;
    if (!ParseNumber(grid.GetCellText(1, row), version) || version != kSupportedVersion)
        throw GridError(Msg::VersionNotSupported, 1, row, kAcqTableName);
    list_.ReadFromGrid(grid, row, 2, ColumnLimit(grid, kLastColumn),
                       static_cast<uint32_t>(versionWidth_));
    version_ = static_cast<uint8_t>(version);
}

bool AcqItem3GPPGeneric::OnCellEdited(Grid& grid, int row, int column,
                                      const std::string& oldText) const {
    return list_.RelayoutRow(grid, row, 2, ColumnLimit(grid, kLastColumn), column, oldText);
}

void AcqItem3GPPGeneric::AdoptRowLayout(const Grid& grid, int row) {
    list_.AdoptRowLayout(grid, row, 2, ColumnLimit(grid, kLastColumn));
}

bool AcqItem3GPPGeneric::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    std::vector<std::string> headings{"Version"};
    list_.AppendHeadings(headings);
    SetHeadings(grid, headings, ColumnLimit(grid, kLastColumn));
    return true;
}

std::string AcqItem3GPPGeneric::ToText() const {
    return std::to_string(version_) + "\t" + list_.ToText();
}

void AcqItem3GPPGeneric::FromText(const std::vector<std::string>& tokens) {
    const auto t = TrimTokens(tokens);
    if (t.empty()) BadTokenCount(0, "a version and at least one technology");
    const auto version = TextNumber(t[0], FieldMax(versionWidth_), DataError::InvalidAcqTable,
                                    "3GPP record version");
    list_.FromText(t, 1);
    version_ = static_cast<uint8_t>(version);
}

void AcqItem3GPPGeneric::ToJson(nlohmann::json& out) const {
    out["version"] = version_;
    list_.ToJson(out);
}

void AcqItem3GPPGeneric::FromJson(const nlohmann::json& in) {
    const auto version =
        JsonNumber(in, "version", FieldMax(versionWidth_), DataError::InvalidAcqTable);
    list_.FromJson(in);
    version_ = static_cast<uint8_t>(version);
}

}  // namespace Tarn
