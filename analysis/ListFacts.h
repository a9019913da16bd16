// What every question asked of a roaming list starts from: the GEO and priority level of each
// system record, what each acquisition record scans, and the keys that say when two records name
// the same system or hold the same content. Selection, diff, lint and the editor all read these,
// so the rules are written once, here.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "analysis/Coverage.h"

namespace Tarn {
class CRLData;
class CAcqItem;
class CSysItem;
}  // namespace Tarn

namespace Tarn::Analysis {

struct SystemFacts {
    int geo = 0;     // GEOs are numbered from 0 in list order
    int level = 0;   // priority level inside the GEO, from 0 (most preferred)
    bool preferred = false;
    bool acqInRange = false;  // the acquisition index names a record of the table
};

// Facts of one list, computed once in O(records). Holds references into `data`, which must
// outlive it and not change while it is used.
class ListFacts {
public:
    explicit ListFacts(const CRLData& data);

    size_t SystemCount() const { return systems_.size(); }
    size_t AcquisitionCount() const { return acqCoverage_.size(); }
    const CSysItem& System(size_t index) const { return *systemItems_[index]; }
    const CAcqItem& Acquisition(size_t index) const { return *acqItems_[index]; }
    const SystemFacts& Facts(size_t systemIndex) const { return systems_[systemIndex]; }

    int GeoCount() const { return static_cast<int>(geoStarts_.size()); }
    // The system indices [first, last) of a GEO.
    std::pair<size_t, size_t> GeoRange(int geo) const;

    // What the acquisition record at `acqIndex` scans (empty for an index out of range).
    const Coverage& AcqCoverage(size_t acqIndex) const;
    // The coverage of the acquisition record a system record points at.
    const Coverage& SystemCoverage(size_t systemIndex) const;

    // Equal for two system records that name the same system: SID and NID; MCC and IMSI_11_12;
    // subnet and length; PLMN type, select mode, MCC, MNC and LACs; subtype, MCC, MNC and its list;
    // the bytes of an undefined type. Comparable across lists and versions.
    const std::string& IdentityKey(size_t systemIndex) const { return identity_[systemIndex]; }
    // Equal for two acquisition records of the same type and fields, whatever their index.
    const std::string& AcqContentKey(size_t acqIndex) const { return acqContent_[acqIndex]; }
    // Equal for two system records with the same identity, preference, roaming indicator (when
    // preferred), association fields and acquisition record content: records that say the same.
    std::string SystemContentKey(size_t systemIndex) const;

private:
    std::vector<const CSysItem*> systemItems_;
    std::vector<const CAcqItem*> acqItems_;
    std::vector<SystemFacts> systems_;
    std::vector<size_t> geoStarts_;
    std::vector<Coverage> acqCoverage_;
    std::vector<std::string> identity_;
    std::vector<std::string> acqContent_;
};

// A record as its line of the text form shows it ("12\t0\t4106\t..."), without the leading tab,
// the trailing tab and the line end; what the human outputs quote.
std::string SystemLine(const ListFacts& facts, size_t systemIndex);
std::string AcquisitionLine(const ListFacts& facts, size_t acqIndex);

// The identity and content keys of single records, for callers holding records without a list.
std::string SystemIdentityKey(const CSysItem& record);
std::string AcqContentKey(const CAcqItem& record);
// The system a record names, as a reviewer reads it: "SID 4106 NID 65535", "MCC 310 IMSI_11_12 00",
// "subnet 2001:db8::/32", or the type and identity key for the other types.
std::string SystemIdentityText(const CSysItem& record);
// The association fields as one comparable text: nothing when not included, else tag, PN and data.
std::string AssociationKey(const CSysItem& record);

}  // namespace Tarn::Analysis
