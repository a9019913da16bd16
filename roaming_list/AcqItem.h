// CAcqItem: what every acquisition record offers beyond CRLItem (type code, validity, the two
// record framings), and the per-version record factory that makes the record class of a type code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "roaming_list/RLItem.h"

namespace Tarn {

// The table name every acquisition grid message carries.
inline constexpr const char* kAcqTableName = "Acquisition Table";

// The type code of a record whose type the editor does not model (the 8-bit form of -3).
inline constexpr uint8_t kAcqTypeSpecial = 253;

// Framing. Versions 1 and 2 write the 4-bit type and the fields, nothing else; types 10 and up
// have no such form and refuse it. Versions 3..5 write
//
//   | type | 8 |
//   | length of what follows, in octets | 8 |
//   | fields | as the type says |
//   | zero fill | to the next octet boundary |
//
// Read returns the bits after the type; Write returns every bit including the type. A record reads
// its fields with its own widths and does not use the length to skip, so a record whose length
// disagrees with its widths leaves the reader out of step (and the list fails its later checks).
class CAcqItem : public CRLItem {
public:
    const CAcqItem* AsAcqItem() const override { return this; }
    // The type code: 1..16, or 253 for a record whose type the editor does not model.
    virtual uint8_t GetAcqType() const = 0;
    // True when the record obeys the limits of its type and every value fits its field, so a
    // write can never truncate anything.
    virtual bool IsValid() const = 0;

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;

    // Whether the record has a form in versions 1 and 2 (types 1..9 only).
    virtual bool HasShortForm() const { return GetAcqType() <= 9; }

    // Called after the cell at `column` of the record's grid row changed from `oldText`: a record
    // whose counts place its later cells moves them to fit and returns true (the row's headings
    // then need renewing). Others need nothing and return false.
    virtual bool OnCellEdited(Grid& grid, int row, int column, const std::string& oldText) const {
        (void)grid, (void)row, (void)column, (void)oldText;
        return false;
    }
    // Takes the shape of a grid row that does not read yet (a band still to be chosen), so that
    // OnGridHeading titles the columns the row really has. Records whose columns are fixed
    // ignore it.
    virtual void AdoptRowLayout(const Grid& grid, int row) { (void)grid, (void)row; }

protected:
    // The type-specific fields alone. `octetLength` is the length read in the long framing, or -1
    // in the short one; only the records that carry no count of their own look at it.
    virtual uint32_t ReadFields(CRLFile& file, int octetLength) = 0;
    // Raises CDataException rather than let a value wider than its field reach the stream.
    virtual uint32_t WriteFields(CRLFile& file) const = 0;
};

// The record class of acquisition type `code` in roaming list version `version`, with its field
// widths and largest entry counts set; nothing when that version has no class for the code.
// Version 1 knows types 1..6, version 2 types 1..9, versions 3 and 4 types 1..13, 16 and 253,
// version 5 types 1..16 and 253; any other version number is taken as version 5.
std::unique_ptr<CAcqItem> CreateAcqItem(int code, int version);

}  // namespace Tarn
