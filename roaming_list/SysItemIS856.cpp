#include "roaming_list/SysItemIS856.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"
#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItemHelpers.h"

namespace Tarn {

using namespace SysFields;

namespace {
constexpr int kColSubnet = CSysItem::kFirstTypeColumn;
constexpr unsigned kMaxCommonOffset = 0xFFF;
}  // namespace

std::unique_ptr<CRLItem> CSysItemIS856::Clone() const {
    return std::make_unique<CSysItemIS856>(*this);
}

uint32_t CSysItemIS856::ReadTypeFields(CRLFile& file) {
    file.ReadBits(3);  // reserved
    commonIncluded_ = file.ReadBits(1) == 1;
    uint32_t bits = 4;
    commonOffset_ = 0;
    if (commonIncluded_) {
        commonOffset_ = static_cast<uint16_t>(file.ReadBits(12));
        bits += 12;
    }
    const unsigned length = file.ReadBits(7);
    return bits + 7 + subnet_.ReadBits(file, length);
}

uint32_t CSysItemIS856::WriteTypeFields(CRLFile& file) const {
    file.WriteBits(3, 0);
    file.WriteBits(1, commonIncluded_ ? 1 : 0);
    uint32_t bits = 4;
    if (commonIncluded_) {
        file.WriteBits(12, commonOffset_ & kMaxCommonOffset);
        bits += 12;
    }
    file.WriteBits(7, subnet_.length);
    return bits + 7 + subnet_.WriteBits(file);
}

uint32_t CSysItemIS856::TypeFieldBits() const {
    return 3 + 1 + (commonIncluded_ ? 12u : 0u) + 7 + subnet_.length;
}

bool CSysItemIS856::TypeIsValid() const {
    return subnet_.length <= CSubnetId::kMaxLength && commonOffset_ <= kMaxCommonOffset;
}

void CSysItemIS856::WriteTypeToGrid(Grid& grid, int row) const {
    PutText(grid, kColSubnet, row, subnet_.ToText());
}

void CSysItemIS856::ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) {
    CheckAcqType(row, context);
    const std::string text = CellText(grid, kColSubnet, row);
    if (IsMissing(text)) ThrowGrid(Msg::RequiredValueMissing, kColSubnet, row);
    CSubnetId subnet;
    switch (CSubnetId::FromText(text, subnet)) {
        case CSubnetId::Parse::Ok:
            break;
        case CSubnetId::Parse::BadAddress:
            ThrowGrid(Msg::InvalidSubnetAddress, kColSubnet, row);
        case CSubnetId::Parse::BadLength:
            ThrowGrid(Msg::InvalidSubnetLength, kColSubnet, row);
        case CSubnetId::Parse::LengthTooLarge:
            ThrowRange(kColSubnet, row, 0, CSubnetId::kMaxLength);
    }
    subnet_ = subnet;
}

std::vector<std::string> CSysItemIS856::TypeHeadings() const {
    return {"SubnetId[Input format : IPv6 address/no of mask bits]"};
}

bool CSysItemIS856::AcceptsAcqType(int acqType, unsigned& refusal) const {
    refusal = Msg::AcqIndexIs856;
    return acqType == 11;
}

std::string CSysItemIS856::TypeToText() const {
    std::string text = Tab(subnet_.ToText());
    if (commonIncluded_) text += Tab(commonOffset_);
    return text;
}

void CSysItemIS856::TypeFromText(std::span<const std::string_view> tokens) {
    if (tokens.empty() || tokens.size() > 2)
        ThrowText("an IS-856 system record takes a subnet and an optional common subnet offset");
    CSubnetId subnet;
    const std::string text(tokens[0]);
    if (CSubnetId::FromText(text, subnet) != CSubnetId::Parse::Ok)
        throw CDataException(DataError::InvalidSubnetId, "(\"" + text + "\")");
    subnet_ = subnet;
    commonIncluded_ = tokens.size() == 2;
    commonOffset_ =
        commonIncluded_
            ? static_cast<uint16_t>(TextNumber(tokens[1], kMaxCommonOffset, "common subnet offset"))
            : 0;
}

void CSysItemIS856::TypeToJson(nlohmann::json& out) const {
    out["subnet"] = subnet_.ToText();
    out["subnetCommonIncluded"] = commonIncluded_;
    out["subnetCommonOffset"] = commonOffset_;
}

void CSysItemIS856::TypeFromJson(const nlohmann::json& in) {
    const std::string text = JsonString(in, "subnet", true);
    CSubnetId subnet;
    if (CSubnetId::FromText(text, subnet) != CSubnetId::Parse::Ok)
        ThrowJson("subnet", "\"" + text + "\" is not an IPv6 address/length up to 127");
    commonIncluded_ = JsonBool(in, "subnetCommonIncluded", false);
    commonOffset_ =
        static_cast<uint16_t>(JsonNumber(in, "subnetCommonOffset", kMaxCommonOffset, false));
    if (!commonIncluded_) commonOffset_ = 0;
    subnet_ = subnet;
}

}  // namespace Tarn
