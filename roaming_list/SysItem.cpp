#include "roaming_list/SysItem.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItemHelpers.h"

namespace Tarn {

using namespace SysFields;

namespace {

constexpr int kColNegPref = 1;
constexpr int kColGeo = 2;
constexpr int kColPriority = 3;
constexpr int kColAcqIndex = 4;
constexpr int kColRoamInd = 5;
constexpr int kColAssnIncl = 6;
constexpr int kColAssnTag = 7;
constexpr int kColPnAssn = 8;
constexpr int kColDataAssn = 9;

// The bits the read helper has already taken in front of a long-framing record.
constexpr uint32_t kLengthAndTypeBits = 9;

uint32_t FillBits(uint32_t bits) {
    return (8 - bits % 8) % 8;
}

}  // namespace

uint32_t CSysItem::Read(CRLFile& file) {
    const int fileVersion = file.GetVersion();
    if (fileVersion != 0) version_ = static_cast<int8_t>(fileVersion);
    if (version_ < 3) return ReadShort(file);
    uint32_t bits = ReadCommonHead(file);
    bits += ReadTypeFields(file);
    bits += ReadCommonTail(file);
    const uint32_t fill = FillBits(kLengthAndTypeBits + bits);
    if (fill != 0) file.ReadBits(static_cast<int>(fill));
    return bits + fill;
}

uint32_t CSysItem::Write(CRLFile& file) const {
    const int fileVersion = file.GetVersion() != 0 ? file.GetVersion() : version_;
    if (fileVersion < 3) return WriteShort(file);
    const uint32_t bits = LongFramingBits();
    const uint32_t fill = FillBits(bits);
    const uint32_t octets = (bits + fill) / 8;
    if (octets > kMaxRecordOctets)
        throw CDataException(DataError::InvalidSysTable,
                             "(a system record of " + std::to_string(octets) +
                                 " octets does not fit the 31 its length field allows)");
    // Neighbouring fields go out together: the same bits in fewer calls.
    file.WriteBits(9, (octets << 4) | (GetFileType() & 0xFu));
    uint32_t written = kLengthAndTypeBits + WriteCommonHead(file);
    written += WriteTypeFields(file);
    written += WriteCommonTail(file);
    if (fill != 0) file.WriteBits(static_cast<int>(fill), 0);
    return written + fill;
}

uint32_t CSysItem::ReadShort(CRLFile&) {
    throw CDataException(DataError::InvalidSysRecType,
                         "(a system record of type " + std::to_string(GetSysType()) +
                             " cannot stand in an IS-683A or IS-683B list)");
}

uint32_t CSysItem::WriteShort(CRLFile&) const {
    throw CDataException(DataError::InvalidSysRecType,
                         "(a system record of type " + std::to_string(GetSysType()) +
                             " cannot be written in an IS-683A or IS-683B list)");
}

// Neighbouring fields are read together and taken apart here, as they are written: the same
// bits in fewer calls.
uint32_t CSysItem::ReadCommonHead(CRLFile& file) {
    const uint32_t head = file.ReadBits(12);
    negPref_ = static_cast<uint8_t>(head >> 11);
    geo_ = static_cast<uint8_t>((head >> 10) & 1u);
    priority_ = static_cast<uint8_t>((head >> 9) & 1u);
    acqIndex_ = static_cast<uint16_t>(head & 0x1FFu);
    return 12;
}

uint32_t CSysItem::WriteCommonHead(CRLFile& file) const {
    file.WriteBits(12, ((negPref_ & 1u) << 11) | ((geo_ & 1u) << 10) | ((priority_ & 1u) << 9) |
                           (acqIndex_ & 0x1FFu));
    return 12;
}

uint32_t CSysItem::ReadCommonTail(CRLFile& file) {
    uint32_t bits = 1;
    roamInd_ = 0;
    if (IsPreferred()) {
        const uint32_t tail = file.ReadBits(9);
        roamInd_ = static_cast<uint8_t>(tail >> 1);
        assnIncl_ = static_cast<uint8_t>(tail & 1u);
        bits += 8;
    } else {
        assnIncl_ = static_cast<uint8_t>(file.ReadBits(1));
    }
    if (assnIncl_ == 1) {
        const uint32_t assn = file.ReadBits(10);
        assnTag_ = static_cast<uint8_t>(assn >> 2);
        pnAssn_ = static_cast<uint8_t>((assn >> 1) & 1u);
        dataAssn_ = static_cast<uint8_t>(assn & 1u);
        bits += 10;
    }
    return bits;
}

uint32_t CSysItem::WriteCommonTail(CRLFile& file) const {
    uint32_t bits = 1;
    if (IsPreferred()) {
        file.WriteBits(9, (static_cast<uint32_t>(roamInd_) << 1) | (assnIncl_ & 1u));
        bits += 8;
    } else {
        file.WriteBits(1, assnIncl_ & 1u);
    }
    if (assnIncl_ == 1) {
        file.WriteBits(10, (static_cast<uint32_t>(assnTag_) << 2) | ((pnAssn_ & 1u) << 1) |
                               (dataAssn_ & 1u));
        bits += 10;
    }
    return bits;
}

uint32_t CSysItem::CommonLongBits() const {
    return kLengthAndTypeBits + 12 + (IsPreferred() ? 8u : 0u) + 1 + (assnIncl_ == 1 ? 10u : 0u);
}

uint32_t CSysItem::LongFramingBits() const {
    return CommonLongBits() + TypeFieldBits();
}

bool CSysItem::CommonIsValid() const {
    return negPref_ <= 1 && geo_ <= 1 && priority_ <= 1 && acqIndex_ <= kMaxAcqIndex &&
           assnIncl_ <= 1 && pnAssn_ <= 1 && dataAssn_ <= 1;
}

bool CSysItem::IsValid() const {
    if (!CommonIsValid() || !TypeIsValid()) return false;
    return (LongFramingBits() + 7) / 8 <= kMaxRecordOctets;
}

// ---------------------------------------------------------------------------------------------
// Grid

void CSysItem::WriteToGrid(Grid& grid, int row) const {
    const auto& names = CRLNameTables::Instance();
    grid.ClearRow(row, 1);
    PutName(grid, kColNegPref, row, names.NegPref(), negPref_);
    PutName(grid, kColGeo, row, names.Geography(), geo_);
    PutName(grid, kColPriority, row, names.Priority(), priority_);
    PutNumber(grid, kColAcqIndex, row, acqIndex_, "999");
    PutNumber(grid, kColRoamInd, row, roamInd_, "999");
    if (version_ >= 3) {
        PutName(grid, kColAssnIncl, row, names.AssnIncluded(), assnIncl_);
        PutNumber(grid, kColAssnTag, row, assnTag_, "999");
        PutName(grid, kColPnAssn, row, names.PnAssn(), pnAssn_);
        PutName(grid, kColDataAssn, row, names.DataAssn(), dataAssn_);
    }
    WriteTypeToGrid(grid, row);
}

void CSysItem::ReadFromGrid(const Grid& grid, int row, const GridContext& context) {
    const auto& names = CRLNameTables::Instance();
    if (context.version != 0) version_ = static_cast<int8_t>(context.version);

    negPref_ = static_cast<uint8_t>(GridName(grid, kColNegPref, row, names.NegPref()));
    // The first record always opens a new region, whatever its cell holds.
    geo_ = row > 0 ? static_cast<uint8_t>(GridName(grid, kColGeo, row, names.Geography())) : 0;
    if (IsPreferred())
        priority_ = static_cast<uint8_t>(GridName(grid, kColPriority, row, names.Priority()));

    const std::string indexText = CellText(grid, kColAcqIndex, row);
    uint32_t index = 0;
    if (IsMissing(indexText) || !ParseUnsigned(indexText, index))
        ThrowGrid(Msg::RequiredValueMissing, kColAcqIndex, row);
    if (context.acqTable != nullptr) {
        if (index >= context.acqTable->GetSize())
            ThrowGrid(Msg::InvalidAcqIndex, kColAcqIndex, row);
    } else if (index > kMaxAcqIndex) {
        ThrowRange(kColAcqIndex, row, 0, kMaxAcqIndex);
    }
    acqIndex_ = static_cast<uint16_t>(index);

    if (IsPreferred()) roamInd_ = static_cast<uint8_t>(GridNumber(grid, kColRoamInd, row, 0, 255));

    if (version_ >= 3) {
        assnIncl_ = static_cast<uint8_t>(GridName(grid, kColAssnIncl, row, names.AssnIncluded()));
        if (assnIncl_ == 1) {
            const std::string tagText = CellText(grid, kColAssnTag, row);
            uint32_t tag = 0;
            if (IsMissing(tagText) || !ParseUnsigned(tagText, tag))
                ThrowGrid(Msg::RequiredValueMissing, kColAssnTag, row);
            if (tag > 255) ThrowGrid(Msg::InvalidAssnTag, kColAssnTag, row);
            assnTag_ = static_cast<uint8_t>(tag);
            pnAssn_ = static_cast<uint8_t>(GridName(grid, kColPnAssn, row, names.PnAssn()));
            dataAssn_ = static_cast<uint8_t>(GridName(grid, kColDataAssn, row, names.DataAssn()));
        }
    }
    ReadTypeFromGrid(grid, row, context);
}

void CSysItem::CheckAcqType(int row, const GridContext& context) const {
    if (context.acqTable == nullptr || acqIndex_ >= context.acqTable->GetSize()) return;
    const auto* acq = dynamic_cast<const CAcqItem*>(context.acqTable->GetAt(acqIndex_));
    if (acq == nullptr) return;
    const int acqType = acq->GetAcqType();
    // An undefined acquisition record may stand behind any system record.
    if (acqType == 253) return;
    unsigned refusal = 0;
    if (!AcceptsAcqType(acqType, refusal)) ThrowGrid(refusal, kColAcqIndex, row);
}

bool CSysItem::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    static const char* const kCommon[] = {"Neg/Pref",  "Geography",      "Priority",
                                          "Acq Index", "Roam Indicator", "Assn Incl",
                                          "Assn Tag",  "PN Assn",        "Data Assn"};
    for (int column = 1; column < kFirstTypeColumn; ++column)
        grid.SetColumnHeading(column,
                              version_ >= 3 || column < kColAssnIncl ? kCommon[column - 1] : "");
    const std::vector<std::string> own = TypeHeadings();
    const int last =
        std::max<int>(grid.GetColumnCount(), kFirstTypeColumn + static_cast<int>(own.size()));
    for (int column = kFirstTypeColumn; column < last; ++column) {
        const size_t i = static_cast<size_t>(column - kFirstTypeColumn);
        grid.SetColumnHeading(column, i < own.size() ? own[i] : std::string());
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Text

size_t CSysItem::CommonTokenCount() const {
    return version_ >= 3 ? 9 : 5;
}

std::string CSysItem::ToText() const {
    std::string text;
    FieldBuffer line(text);
    AppendText(line);
    line.Flush();
    return text;
}

bool CSysItem::AppendText(FieldBuffer& line) const {
    const auto& names = CRLNameTables::Instance();
    // Numbers always read back as they are; a name does when its table says it is plain.
    bool plain = true;
    const auto name = [&](const CNameList& list, int value) {
        if (const ShortText* text = list.PlainName(value)) return line.Add(*text);
        plain = false;
        line.Add(list.NameView(value));
    };
    name(names.NegPref(), negPref_);
    name(names.Geography(), geo_);
    name(names.Priority(), priority_);
    line.Add(acqIndex_);
    line.Add(roamInd_);
    if (version_ >= 3) {
        name(names.AssnIncluded(), assnIncl_);
        line.Add(assnTag_);
        name(names.PnAssn(), pnAssn_);
        name(names.DataAssn(), dataAssn_);
    }
    return TypeAppendText(line) && plain;
}

bool CSysItem::TypeAppendText(FieldBuffer& line) const {
    line.AddRaw(TypeToText());
    return false;
}

void CSysItem::FromText(const std::vector<std::string>& given) {
    const std::vector<std::string_view> views(given.begin(), given.end());
    FromTokens(views);
}

void CSysItem::FromTokens(std::span<const std::string_view> tokens) {
    // A line's closing tab may reach us as an empty last token.
    while (!tokens.empty() && tokens.back().empty()) tokens = tokens.first(tokens.size() - 1);
    const size_t common = CommonTokenCount();
    if (tokens.size() < common)
        ThrowText("a system record line needs at least " + std::to_string(common) + " fields");
    const auto& names = CRLNameTables::Instance();
    negPref_ = static_cast<uint8_t>(TextName(tokens[0], names.NegPref()));
    geo_ = static_cast<uint8_t>(TextName(tokens[1], names.Geography()));
    priority_ = static_cast<uint8_t>(TextName(tokens[2], names.Priority()));
    acqIndex_ = static_cast<uint16_t>(TextNumber(tokens[3], kMaxAcqIndex, "acquisition index"));
    roamInd_ = static_cast<uint8_t>(TextNumber(tokens[4], 255, "roaming indicator"));
    if (version_ >= 3) {
        assnIncl_ = static_cast<uint8_t>(TextName(tokens[5], names.AssnIncluded()));
        assnTag_ = static_cast<uint8_t>(TextNumber(tokens[6], 255, "association tag"));
        pnAssn_ = static_cast<uint8_t>(TextName(tokens[7], names.PnAssn()));
        dataAssn_ = static_cast<uint8_t>(TextName(tokens[8], names.DataAssn()));
    }
    TypeFromText(tokens.subspan(common));
}

// ---------------------------------------------------------------------------------------------
// JSON

void CSysItem::ToJson(nlohmann::json& out) const {
    const auto& names = CRLNameTables::Instance();
    PutJsonName(out, "negPref", names.NegPref(), negPref_);
    PutJsonName(out, "geography", names.Geography(), geo_);
    PutJsonName(out, "priority", names.Priority(), priority_);
    out["acqIndex"] = acqIndex_;
    out["roamInd"] = roamInd_;
    if (version_ >= 3) {
        PutJsonName(out, "assnIncluded", names.AssnIncluded(), assnIncl_);
        out["assnTag"] = assnTag_;
        PutJsonName(out, "pnAssn", names.PnAssn(), pnAssn_);
        PutJsonName(out, "dataAssn", names.DataAssn(), dataAssn_);
    }
    TypeToJson(out);
}

void CSysItem::FromJson(const nlohmann::json& in) {
    if (!in.is_object()) ThrowJson("system record", "is not an object");
    negPref_ = static_cast<uint8_t>(JsonNumber(in, "negPref", 1, true));
    geo_ = static_cast<uint8_t>(JsonNumber(in, "geography", 1, false));
    priority_ = static_cast<uint8_t>(JsonNumber(in, "priority", 1, false));
    acqIndex_ = static_cast<uint16_t>(JsonNumber(in, "acqIndex", kMaxAcqIndex, true));
    roamInd_ = static_cast<uint8_t>(JsonNumber(in, "roamInd", 255, false));
    assnIncl_ = static_cast<uint8_t>(JsonNumber(in, "assnIncluded", 1, false));
    assnTag_ = static_cast<uint8_t>(JsonNumber(in, "assnTag", 255, false));
    pnAssn_ = static_cast<uint8_t>(JsonNumber(in, "pnAssn", 1, false));
    dataAssn_ = static_cast<uint8_t>(JsonNumber(in, "dataAssn", 1, false));
    TypeFromJson(in);
}

}  // namespace Tarn
