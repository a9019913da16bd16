// The in-memory roaming list: header properties, acquisition table and system table.
#pragma once

#include <cstdint>
#include <memory>

#include "roaming_list/RLItem.h"

namespace Tarn {

class CRLFile;

class CPropData {
public:
    uint16_t listSize = 0;
    uint16_t prefListId = 0;
    bool prefOnly = false;
    uint8_t defRoamInd = 0;
    uint8_t ssprPRev = 0;         // long header only
    uint8_t reserved = 0;         // long header only, 7 bits, written back as read
    uint16_t numCommonSubnet = 0; // long header only, 9 bits, always written as 0

    // The header after the 16-bit list size: the short form for versions 1 and 2, the long form
    // for 3 and above (asked of the file). The record counts travel through the arguments.
    uint32_t Read(CRLFile& file, uint32_t& acqCount, uint32_t& sysCount);
    // Without counts (no tables attached) the two count fields are left out.
    uint32_t Write(CRLFile& file, const uint32_t* acqCount, const uint32_t* sysCount);
};

class CAcqData {
public:
    CRLItemList& Items() { return items_; }
    const CRLItemList& Items() const { return items_; }
    uint32_t Read(CRLFile& file, CReadHelper& helper, uint64_t stopBit = UINT64_MAX) {
        return items_.Read(file, helper, stopBit);
    }
    uint32_t Write(CRLFile& file) const { return items_.Write(file); }
    size_t GetSize() const { return items_.GetSize(); }

private:
    CRLItemList items_;
};

class CSysData {
public:
    CRLItemList& Items() { return items_; }
    const CRLItemList& Items() const { return items_; }
    uint32_t Read(CRLFile& file, CReadHelper& helper, uint64_t stopBit = UINT64_MAX) {
        return items_.Read(file, helper, stopBit);
    }
    uint32_t Write(CRLFile& file) const { return items_.Write(file); }
    size_t GetSize() const { return items_.GetSize(); }

private:
    CRLItemList items_;
};

class CRLData {
public:
    CRLData();
    CRLData(const CRLData& other);
    CRLData& operator=(const CRLData& other);
    virtual ~CRLData();

    virtual CPropData& GetProperties() { return *prop_; }
    virtual CAcqData& GetAcqTable() { return *acq_; }
    virtual CSysData& GetSysTable() { return *sys_; }
    const CPropData& GetProperties() const { return *prop_; }
    const CAcqData& GetAcqTable() const { return *acq_; }
    const CSysData& GetSysTable() const { return *sys_; }

private:
    std::unique_ptr<CPropData> prop_;
    std::unique_ptr<CAcqData> acq_;
    std::unique_ptr<CSysData> sys_;
};

}  // namespace Tarn
