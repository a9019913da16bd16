// CSysItem: the common fields of every system record, and the per-version system record factory.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "roaming_list/RLItem.h"

namespace Tarn {

class CNameList;

// Common fields and their framing. Both framings are driven from here; a type only supplies the
// fields between the acquisition index and the roaming indicator.
//
// Long framing (versions 3..5), every type but the undefined one:
//   | field                          | bits | present                        |
//   | record length in octets        | 5    | always (whole record, fill in) |
//   | system record type             | 4    | always                         |
//   | preferred/negative (1 = pref)  | 1    | always                         |
//   | geography (1 = same region)    | 1    | always                         |
//   | priority (1 = more)            | 1    | always                         |
//   | acquisition index              | 9    | always                         |
//   | type-specific fields           | ...  | see each type                  |
//   | roaming indicator              | 8    | preferred records only         |
//   | association included           | 1    | always                         |
//   | association tag, PN, data      | 8+1+1| association included only      |
//   | zero fill to an octet boundary | 0..7 | always                         |
// A record can be at most 31 octets long, since its length field has 5 bits.
//
// The short framing (versions 1 and 2) has no type: only the IS-2000 record (and the 1x-MCC
// record, which is an IS-2000 record on file) can be written in it.
class CSysItem : public CRLItem {
public:
    const CSysItem* AsSysItem() const override { return this; }
    // Largest record the 5-bit length field can describe.
    static constexpr unsigned kMaxRecordOctets = 31;
    static constexpr unsigned kMaxAcqIndex = 511;

    // The system record type: 0 IS-2000, 1 IS-856, 2 PLMN, 3 MCC-MNC, 14 1x-MCC, or the type
    // read for an undefined record.
    virtual uint8_t GetSysType() const = 0;
    // True when the record obeys its limits and every value fits its field, the record's size
    // in the long framing included.
    virtual bool IsValid() const;

    bool IsPreferred() const { return negPref_ == 1; }
    unsigned GetAcqIndex() const { return acqIndex_; }
    void SetAcqIndex(unsigned index) { acqIndex_ = static_cast<uint16_t>(index); }

    // The version whose grid columns and text fields the record uses (set by the factory, by a
    // binary read and by a grid read; the binary framing always follows the file's version).
    int GetVersion() const { return version_; }
    void SetVersion(int version) { version_ = static_cast<int8_t>(version); }

    unsigned GetNegPref() const { return negPref_; }
    void SetNegPref(unsigned value) { negPref_ = static_cast<uint8_t>(value); }
    unsigned GetGeography() const { return geo_; }
    void SetGeography(unsigned value) { geo_ = static_cast<uint8_t>(value); }
    unsigned GetPriority() const { return priority_; }
    void SetPriority(unsigned value) { priority_ = static_cast<uint8_t>(value); }
    unsigned GetRoamInd() const { return roamInd_; }
    void SetRoamInd(unsigned value) { roamInd_ = static_cast<uint8_t>(value); }
    unsigned GetAssnIncluded() const { return assnIncl_; }
    void SetAssnIncluded(unsigned value) { assnIncl_ = static_cast<uint8_t>(value); }
    unsigned GetAssnTag() const { return assnTag_; }
    void SetAssnTag(unsigned value) { assnTag_ = static_cast<uint8_t>(value); }
    unsigned GetPnAssn() const { return pnAssn_; }
    void SetPnAssn(unsigned value) { pnAssn_ = static_cast<uint8_t>(value); }
    unsigned GetDataAssn() const { return dataAssn_; }
    void SetDataAssn(unsigned value) { dataAssn_ = static_cast<uint8_t>(value); }

    uint32_t Read(CRLFile& file) override;
    uint32_t Write(CRLFile& file) const override;

    // Record bits in the long framing, from the length field to the last field, before the fill.
    virtual uint32_t LongFramingBits() const;

    void WriteToGrid(Grid& grid, int row) const override;
    void ReadFromGrid(const Grid& grid, int row, const GridContext& context) override;
    bool OnGridHeading(Grid& grid, int event) const override;

    std::string ToText() const override;
    bool AppendText(FieldBuffer& line) const override;
    void FromText(const std::vector<std::string>& tokens) override;
    void FromTokens(std::span<const std::string_view> tokens) override;

    void ToJson(nlohmann::json& out) const override;
    void FromJson(const nlohmann::json& in) override;

    // First column of the type's own fields in a system grid row.
    static constexpr int kFirstTypeColumn = 10;
    static const char* TableName() { return "System Table"; }

protected:
    // The type field written on file (the 1x-MCC record is an IS-2000 record there).
    virtual uint8_t GetFileType() const { return GetSysType(); }

    // Short framing (versions 1 and 2): the whole record. Only the IS-2000 family has one.
    virtual uint32_t ReadShort(CRLFile& file);
    virtual uint32_t WriteShort(CRLFile& file) const;

    // Long framing: the type's fields between the acquisition index and the roaming indicator.
    virtual uint32_t ReadTypeFields(CRLFile& file) = 0;
    virtual uint32_t WriteTypeFields(CRLFile& file) const = 0;
    virtual uint32_t TypeFieldBits() const = 0;
    virtual bool TypeIsValid() const = 0;

    // Grid: the type's cells from column 10 on, their headings (index 0 = column 10), and the
    // reading of them. A type's read calls CheckAcqType once it knows enough of itself.
    virtual void WriteTypeToGrid(Grid& grid, int row) const = 0;
    virtual void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) = 0;
    virtual std::vector<std::string> TypeHeadings() const = 0;
    // Whether the record may point at an acquisition record of `acqType`; on refusal the
    // message to show. Type 253 is accepted before this is asked.
    virtual bool AcceptsAcqType(int acqType, unsigned& refusal) const = 0;
    void CheckAcqType(int row, const GridContext& context) const;

    // Text: the type's fields, each tab-terminated; and the tokens that follow the common ones.
    // TypeAppendText vouches for its fields as AppendText does; this default does not.
    virtual std::string TypeToText() const = 0;
    virtual bool TypeAppendText(FieldBuffer& line) const;
    virtual void TypeFromText(std::span<const std::string_view> tokens) = 0;

    virtual void TypeToJson(nlohmann::json& out) const = 0;
    virtual void TypeFromJson(const nlohmann::json& in) = 0;

    bool CommonIsValid() const;
    // Bits of the common fields of the long framing: type header, flags, index, roaming
    // indicator and association.
    uint32_t CommonLongBits() const;
    uint32_t ReadCommonHead(CRLFile& file);
    uint32_t WriteCommonHead(CRLFile& file) const;
    uint32_t ReadCommonTail(CRLFile& file);
    uint32_t WriteCommonTail(CRLFile& file) const;
    // Number of text tokens taken by the common fields in this record's version.
    size_t CommonTokenCount() const;

    // Packed without holes, the version in a byte, so that a derived record's own fields fill the
    // rest of its last word: an IS-2000 record is then 24 bytes, and the thousands of a large list
    // take a third fewer pages.
    uint16_t acqIndex_ = 0;
    uint8_t negPref_ = 1;
    uint8_t geo_ = 0;
    uint8_t priority_ = 0;
    uint8_t roamInd_ = 0;
    uint8_t assnIncl_ = 0;
    uint8_t assnTag_ = 0;
    uint8_t pnAssn_ = 0;
    uint8_t dataAssn_ = 0;
    int8_t version_ = 5;
};

// The system record class of `type` in version `version` (1..5); nothing when the version has no
// class for it. In versions 1 and 2 the read helper always asks for type 0. `lengthOctets` is the
// record's 5-bit length as read in front of it (versions 3..5), so a record the editor does not
// model can keep its opaque bytes; 0 when unknown, that is when the record is made for a grid
// row or a text line rather than read from a file. Type 14 (1x-MCC) is made only then: on file
// such a record is an IS-2000 record, so a type 14 read from a file has no class. With an
// `arena` the record is placed there (see CItemArena).
std::unique_ptr<CSysItem> CreateSysItem(int type, int version, int lengthOctets = 0,
                                        CItemArena* arena = nullptr);

}  // namespace Tarn
