#include "roaming_list/RLData.h"

#include "roaming_list/RLFile.h"

namespace Tarn {

uint32_t CPropData::Read(CRLFile& file, uint32_t& acqCount, uint32_t& sysCount) {
    if (file.GetVersion() >= 3) {
        prefListId = static_cast<uint16_t>(file.ReadBits(16));
        ssprPRev = static_cast<uint8_t>(file.ReadBits(8));
        prefOnly = file.ReadBits(1) != 0;
        defRoamInd = static_cast<uint8_t>(file.ReadBits(8));
        acqCount = file.ReadBits(9);
        numCommonSubnet = static_cast<uint16_t>(file.ReadBits(9));
        sysCount = file.ReadBits(14);
        reserved = static_cast<uint8_t>(file.ReadBits(7));
        return 72;
    }
    prefListId = static_cast<uint16_t>(file.ReadBits(16));
    prefOnly = file.ReadBits(1) != 0;
    defRoamInd = static_cast<uint8_t>(file.ReadBits(8));
    acqCount = file.ReadBits(9);
    sysCount = file.ReadBits(14);
    return 48;
}

uint32_t CPropData::Write(CRLFile& file, const uint32_t* acqCount, const uint32_t* sysCount) {
    uint32_t bits = 0;
    auto put = [&](int width, uint32_t value) {
        file.WriteBits(width, value);
        bits += static_cast<uint32_t>(width);
    };
    put(16, prefListId);
    if (file.GetVersion() >= 3) {
        put(8, ssprPRev);
        put(1, prefOnly ? 1 : 0);
        put(8, defRoamInd);
        if (acqCount) put(9, *acqCount);
        // No common subnet table is ever written, so its count is 0 on every write.
        numCommonSubnet = 0;
        put(9, 0);
        if (sysCount) put(14, *sysCount);
        put(7, reserved & 0x7F);
    } else {
        put(1, prefOnly ? 1 : 0);
        put(8, defRoamInd);
        if (acqCount) put(9, *acqCount);
        if (sysCount) put(14, *sysCount);
    }
    return bits;
}

CRLData::CRLData()
    : prop_(std::make_unique<CPropData>()),
      acq_(std::make_unique<CAcqData>()),
      sys_(std::make_unique<CSysData>()) {}

CRLData::CRLData(const CRLData& other)
    : prop_(std::make_unique<CPropData>(*other.prop_)),
      acq_(std::make_unique<CAcqData>(*other.acq_)),
      sys_(std::make_unique<CSysData>(*other.sys_)) {}

CRLData& CRLData::operator=(const CRLData& other) {
    if (this != &other) {
        *prop_ = *other.prop_;
        *acq_ = *other.acq_;
        *sys_ = *other.sys_;
    }
    return *this;
}

CRLData::~CRLData() = default;

}  // namespace Tarn
