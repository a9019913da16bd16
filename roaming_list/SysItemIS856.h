// CSysItemIS856 ("IS-856"): a system record naming an HDR subnet.
#pragma once

#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemSubnet.h"

namespace Tarn {

// Long framing only; the type's fields:
//   | reserved | subnet common included | subnet common offset | subnet length | subnet bits |
//   | 3        | 1                      | 12 if included       | 7             | length      |
// Grid: the subnet as "IPv6 address/mask bits" in column 10. The common subnet offset has no
// cell; it is kept as read. Text: the subnet, then the common offset when one is included.
// JSON: subnet (text), subnetCommonIncluded (flag), subnetCommonOffset.
class CSysItemIS856 : public CSysItem {
public:
    uint8_t GetSysType() const override { return 1; }
    std::unique_ptr<CRLItem> Clone() const override;

    const CSubnetId& GetSubnet() const { return subnet_; }
    void SetSubnet(const CSubnetId& subnet) { subnet_ = subnet; }
    bool GetCommonIncluded() const { return commonIncluded_; }
    unsigned GetCommonOffset() const { return commonOffset_; }
    void SetCommon(bool included, unsigned offset) {
        commonIncluded_ = included;
        commonOffset_ = static_cast<uint16_t>(offset);
    }

protected:
    uint32_t ReadTypeFields(CRLFile& file) override;
    uint32_t WriteTypeFields(CRLFile& file) const override;
    uint32_t TypeFieldBits() const override;
    bool TypeIsValid() const override;

    void WriteTypeToGrid(Grid& grid, int row) const override;
    void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) override;
    std::vector<std::string> TypeHeadings() const override;
    bool AcceptsAcqType(int acqType, unsigned& refusal) const override;

    std::string TypeToText() const override;
    void TypeFromText(std::span<const std::string_view> tokens) override;
    void TypeToJson(nlohmann::json& out) const override;
    void TypeFromJson(const nlohmann::json& in) override;

private:
    bool commonIncluded_ = false;
    uint16_t commonOffset_ = 0;
    CSubnetId subnet_;
};

}  // namespace Tarn
