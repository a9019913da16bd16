// CSysItemIS2000 ("95(A,B)/1x") and CSysItemIS2000Mcc ("1x-MCC"), the system records that name
// a CDMA system by SID and NID, or by MCC and IMSI_11_12 folded into a reserved SID and the NID.
#pragma once

#include "roaming_list/SysItem.h"

namespace Tarn {

// Short framing (versions 1 and 2), the whole record:
//   | SID | NID_INCL | NID            | pref | geo | priority  | acq index | roaming ind |
//   | 15  | 2        | 16 if INCL = 1 | 1    | 1   | 1 if pref | 9         | 8 if pref   |
// Long framing, the type's fields: reserved 1, NID_INCL 2, SID 15, NID 16 only if NID_INCL = 1.
// NID_INCL 0 means NID 65535 (any), 2 means NID 0; only 1 stores the NID.
// Grid: SID in column 10, NID in column 11. Text: SID, NID, NID_INCL. JSON: sid, nidIncl, nid.
class CSysItemIS2000 : public CSysItem {
public:
    static constexpr uint16_t kMccSid = 15904;      // 1x-MCC, MCC below 512
    static constexpr uint16_t kMccSidHigh = 15905;  // 1x-MCC, MCC from 512
    static constexpr uint16_t kMaxSid = 32767;

    uint8_t GetSysType() const override { return 0; }
    std::unique_ptr<CRLItem> Clone() const override;
    // A record read with one of the two reserved SIDs is kept as a 1x-MCC record.
    std::unique_ptr<CRLItem> GetReplacement() override;

    unsigned GetSid() const { return sid_; }
    void SetSid(unsigned sid) { sid_ = static_cast<uint16_t>(sid); }
    unsigned GetNidIncl() const { return nidIncl_; }
    void SetNidIncl(unsigned incl) { nidIncl_ = static_cast<uint8_t>(incl); }
    unsigned GetNid() const { return nid_; }
    void SetNid(unsigned nid) { nid_ = static_cast<uint16_t>(nid); }
    // Takes an NID typed by the user: a record that stores its NID keeps doing so; otherwise
    // 65535 and 0 use the short inclusion codes and anything else is stored.
    void TakeNid(unsigned nid);

protected:
    struct Ids {
        uint16_t sid;
        uint8_t nidIncl;
        uint16_t nid;
    };
    // The SID, NID_INCL and NID that go on file.
    virtual Ids FileIds() const { return {sid_, nidIncl_, nid_}; }

    uint32_t ReadShort(CRLFile& file) override;
    uint32_t WriteShort(CRLFile& file) const override;
    uint32_t ReadTypeFields(CRLFile& file) override;
    uint32_t WriteTypeFields(CRLFile& file) const override;
    uint32_t TypeFieldBits() const override;
    bool TypeIsValid() const override;

    void WriteTypeToGrid(Grid& grid, int row) const override;
    void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) override;
    std::vector<std::string> TypeHeadings() const override;
    bool AcceptsAcqType(int acqType, unsigned& refusal) const override;

    std::string TypeToText() const override;
    bool TypeAppendText(FieldBuffer& line) const override;
    void TypeFromText(std::span<const std::string_view> tokens) override;
    void TypeToJson(nlohmann::json& out) const override;
    void TypeFromJson(const nlohmann::json& in) override;

    uint32_t ReadIds(CRLFile& file, bool longFraming);
    void ReadNidJson(const nlohmann::json& in);

    // NID_INCL first: it fits the byte the common fields leave free (see CSysItem).
    uint8_t nidIncl_ = 0;
    uint16_t sid_ = 0;
    uint16_t nid_ = 65535;
};

// Lives on file as an IS-2000 record with SID 15904 or 15905 and the same widths in both
// framings:
//   MCC        = (512 if SID = 15905 else 0) | (NID >> 7), 0 when above 999
//   IMSI_11_12 = NID & 0x7F,                               0 when above 99
// Written back, an MCC and IMSI_11_12 that the stored SID and NID still give keep that SID,
// NID_INCL and NID, so files with unusual values are saved unchanged; edited ones are stored as
// SID 15904 + (MCC >= 512), NID_INCL 1, NID = (MCC & 511) << 7 | IMSI_11_12.
// Grid: MCC in column 10 ("%03u"), IMSI_11_12 in column 11 ("%02u"). Text: MCC, IMSI_11_12.
// JSON: mcc, imsi11_12, and the sid, nidIncl and nid they were read with.
class CSysItemIS2000Mcc : public CSysItemIS2000 {
public:
    CSysItemIS2000Mcc();
    explicit CSysItemIS2000Mcc(const CSysItemIS2000& from);

    uint8_t GetSysType() const override { return 14; }
    std::unique_ptr<CRLItem> Clone() const override;
    std::unique_ptr<CRLItem> GetReplacement() override { return nullptr; }

    unsigned GetMcc() const { return mcc_; }
    void SetMcc(unsigned mcc) { mcc_ = static_cast<uint16_t>(mcc); }
    unsigned GetImsi() const { return imsi_; }
    void SetImsi(unsigned imsi) { imsi_ = static_cast<uint8_t>(imsi); }

    static unsigned MccFromIds(unsigned sid, unsigned nid);
    static unsigned ImsiFromIds(unsigned nid);

protected:
    uint8_t GetFileType() const override { return 0; }
    Ids FileIds() const override;
    uint32_t ReadShort(CRLFile& file) override;
    uint32_t ReadTypeFields(CRLFile& file) override;
    bool TypeIsValid() const override;

    void WriteTypeToGrid(Grid& grid, int row) const override;
    void ReadTypeFromGrid(const Grid& grid, int row, const GridContext& context) override;
    std::vector<std::string> TypeHeadings() const override;

    std::string TypeToText() const override;
    bool TypeAppendText(FieldBuffer& line) const override;
    void TypeFromText(std::span<const std::string_view> tokens) override;
    void TypeToJson(nlohmann::json& out) const override;
    void TypeFromJson(const nlohmann::json& in) override;

private:
    void TakeIds();

    uint16_t mcc_ = 0;
    uint8_t imsi_ = 0;
};

}  // namespace Tarn
