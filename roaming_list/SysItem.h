// CSysItem: the common fields of every system record, and the per-version system record factory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "roaming_list/RLItem.h"

namespace Tarn {

class CSysItem : public CRLItem {
public:
    // The system record type: 0 IS-2000, 1 IS-856, 2 PLMN, 3 MCC-MNC, 14 1x-MCC, or the type
    // read for an undefined record.
    virtual uint8_t GetSysType() const = 0;
    virtual bool IsValid() const = 0;

    // Common fields the list-level code needs.
    virtual bool IsPreferred() const = 0;
    virtual unsigned GetAcqIndex() const = 0;
    virtual void SetAcqIndex(unsigned index) = 0;
};

// The system record class of `type` in version `version` (1..5); nothing when the version has no
// class for it. In versions 1 and 2 the read helper always asks for type 0. `lengthOctets` is the
// record's 5-bit length as read in front of it (versions 3..5), so a record the editor does not
// model can keep its opaque bytes; 0 when unknown.
std::unique_ptr<CSysItem> CreateSysItem(int type, int version, int lengthOctets = 0);

}  // namespace Tarn
