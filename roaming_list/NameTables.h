// CRLNameTables: every value-to-name list of the roaming list editor, created once on first use.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "grid/Grid.h"
#include "roaming_list/DataException.h"
#include "roaming_list/FieldBuffer.h"

namespace Tarn {

inline constexpr const char* kInvalidName = "Invalid";

// A titled list of (value, name) pairs in insertion order. Gaps in the values are deliberate.
class CNameList {
public:
    using Entry = std::pair<int, std::string>;
    CNameList(std::string title, std::vector<Entry> entries, DataError error);

    const std::string& Title() const { return title_; }
    const std::vector<Entry>& Entries() const { return entries_; }
    DataError Error() const { return error_; }

    // The name of a value, or "Invalid" when the list has none.
    std::string GetName(int value) const;
    // The same without a copy, for the text renderer.
    std::string_view NameView(int value) const;
    // The name of a value when it can stand in a record line as it is (not empty, not "Invalid",
    // without blanks, tabs or line breaks) and is short; nothing otherwise, and for a value
    // without a name.
    const ShortText* PlainName(int value) const {
        if (static_cast<unsigned>(value) >= plain_.size()) return nullptr;
        const ShortText& name = plain_[static_cast<unsigned>(value)];
        return name.size != 0 ? &name : nullptr;
    }
    bool HasValue(int value) const;
    // The value of a name; an unknown name raises the list's data error.
    int GetValue(std::string_view name) const;
    bool FindValue(std::string_view name, int& value) const;
    // The names in insertion order, for a drop-down cell (built once, shared by every cell).
    const ChoiceList& Choices() const { return choices_; }

private:
    // The plain names of the small values by value (size 0 where there is none): the names of a
    // record's flags are looked up for every line of a long table.
    static constexpr int kPlainValues = 64;

    std::string title_;
    std::vector<Entry> entries_;
    std::vector<ShortText> plain_;
    DataError error_;
    ChoiceList choices_;
};

class CRLNameTables {
public:
    static const CRLNameTables& Instance();

    // Version names "IS-683A" = 1 .. "IS-683E" = 5.
    const CNameList& Versions() const { return versions_; }
    // The name of a version 1..5, "IS-683A+1xEV" is not among them (it is version 3 in the model).
    std::string VersionName(int version) const { return versions_.GetName(version); }

    // Acquisition and system record types offered by a version (1..5; other values: IS-683E).
    const CNameList& AcqTypes(int version) const;
    const CNameList& SysTypes(int version) const;

    const CNameList& CellularSystem() const { return cellularSystem_; }
    const CNameList& Channel() const { return channel_; }
    const CNameList& Block() const { return block_; }
    const CNameList& CdmaBand() const { return cdmaBand_; }
    const CNameList& HdrBand() const { return hdrBand_; }
    const CNameList& GsmBand() const { return gsmBand_; }
    const CNameList& UmtsBand() const { return umtsBand_; }
    const CNameList& UmbBand() const { return umbBand_; }
    const CNameList& UmbFftSize() const { return umbFft_; }
    const CNameList& UmbCyclicPrefix() const { return umbCp_; }
    const CNameList& GwlSysMode() const { return gwlSysMode_; }
    const CNameList& LteBandGwl() const { return lteGwl_; }
    const CNameList& LteBand3gpp() const { return lte3gpp_; }

    const CNameList& NegPref() const { return negPref_; }
    const CNameList& Geography() const { return geo_; }
    const CNameList& Priority() const { return priority_; }
    const CNameList& AssnIncluded() const { return assnIncl_; }
    const CNameList& PnAssn() const { return pnAssn_; }
    const CNameList& DataAssn() const { return dataAssn_; }
    const CNameList& PlmnType() const { return plmnType_; }
    const CNameList& PlmnSelect() const { return plmnSelect_; }
    const CNameList& NetSelMode() const { return netSelMode_; }
    const CNameList& MccMncSubtype() const { return mccMncSubtype_; }

private:
    CRLNameTables();

    CNameList versions_;
    std::vector<CNameList> acqTypes_;  // index 0..4 = IS-683A..IS-683E
    std::vector<CNameList> sysTypes_;
    CNameList cellularSystem_, channel_, block_, cdmaBand_, hdrBand_, gsmBand_, umtsBand_,
        umbBand_, umbFft_, umbCp_, gwlSysMode_, lteGwl_, lte3gpp_;
    CNameList negPref_, geo_, priority_, assnIncl_, pnAssn_, dataAssn_, plmnType_, plmnSelect_,
        netSelMode_, mccMncSubtype_;
};

}  // namespace Tarn
