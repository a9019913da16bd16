// CAcqItem: what every acquisition record offers beyond CRLItem, and the per-version record
// factory that makes the record class of a type code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "roaming_list/RLItem.h"

namespace Tarn {

class CAcqItem : public CRLItem {
public:
    // The type code: 1..16, or 253 for a record whose type the editor does not model.
    virtual uint8_t GetAcqType() const = 0;
    // True when the record obeys the limits of its type and every value fits its field.
    virtual bool IsValid() const = 0;
};

// The record class of acquisition type `code` in roaming list version `version` (1..5), with its
// field widths and largest entry counts set; nothing when that version has no class for the code.
std::unique_ptr<CAcqItem> CreateAcqItem(int code, int version);

}  // namespace Tarn
