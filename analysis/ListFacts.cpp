#include "analysis/ListFacts.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "analysis/Observation.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSpecial.h"

namespace Tarn::Analysis {
namespace {

const Coverage& NoCoverage() {
    static const Coverage none;
    return none;
}

std::string Digits(const std::array<uint8_t, 3>& digits) {
    std::string out;
    for (uint8_t d : digits) out += "0123456789ABCDEF"[d & 0xF];
    return out;
}

}  // namespace

std::string SystemIdentityKey(const CSysItem& record) {
    switch (record.GetSysType()) {
        case 0: {
            const auto& r = static_cast<const CSysItemIS2000&>(record);
            return "sid " + std::to_string(r.GetSid()) + " nid " +
                   std::to_string(EffectiveNid(r.GetNidIncl(), r.GetNid()));
        }
        case 14: {
            const auto& r = static_cast<const CSysItemIS2000Mcc&>(record);
            return "mcc " + std::to_string(r.GetMcc()) + " imsi " + std::to_string(r.GetImsi());
        }
        case 1: return "subnet " + static_cast<const CSysItemIS856&>(record).GetSubnet().ToText();
        case 2: {
            const auto& r = static_cast<const CSysItemPlmn&>(record);
            // "Select Mode" records carry only the selection; the others a PLMN and LACs.
            if (r.GetPlmnType() == 0) return "plmn 0 select " + std::to_string(r.GetPlmnSelect());
            std::string key = "plmn " + std::to_string(r.GetPlmnType()) + " " + Digits(r.GetMcc()) +
                              " " + Digits(r.GetMnc()) + " lacs";
            if (r.GetPlmnType() >= 2)
                for (uint16_t lac : r.GetLacs()) key += " " + std::to_string(lac);
            return key;
        }
        case 3: {
            const auto& r = static_cast<const CSysItemMccMnc&>(record);
            std::string key = "mccmnc " + std::to_string(r.GetSubtype()) + " " + Digits(r.GetMcc()) +
                              " " + Digits(r.GetMnc());
            if (r.GetSubtype() == CSysItemMccMnc::kSid || r.GetSubtype() == CSysItemMccMnc::kSidNid) {
                const auto& sids = r.GetSids();
                const auto& nids = r.GetNids();
                for (size_t i = 0; i < sids.size(); ++i) {
                    key += " " + std::to_string(sids[i]);
                    if (r.GetSubtype() == CSysItemMccMnc::kSidNid && i < nids.size())
                        key += "/" + std::to_string(nids[i]);
                }
            } else if (r.GetSubtype() == CSysItemMccMnc::kSubnet) {
                for (const auto& subnet : r.GetSubnets()) key += " " + subnet.ToText();
            }
            return key;
        }
        default: {
            // A type the editor does not model is known only by its bytes.
            const auto& r = static_cast<const CSysItemSpecial&>(record);
            std::string key = "type " + std::to_string(r.GetSysType()) + " bytes";
            for (uint8_t b : r.GetData()) key.append(" ").append(std::to_string(b));
            return key;
        }
    }
}

std::string SystemIdentityText(const CSysItem& record) {
    switch (record.GetSysType()) {
        case 0: {
            const auto& r = static_cast<const CSysItemIS2000&>(record);
            return "SID " + std::to_string(r.GetSid()) + " NID " +
                   std::to_string(EffectiveNid(r.GetNidIncl(), r.GetNid()));
        }
        case 14: {
            const auto& r = static_cast<const CSysItemIS2000Mcc&>(record);
            char text[40];
            std::snprintf(text, sizeof text, "MCC %03u IMSI_11_12 %02u", r.GetMcc(), r.GetImsi());
            return text;
        }
        case 1: return "subnet " + static_cast<const CSysItemIS856&>(record).GetSubnet().ToText();
        default:
            return "type " + std::to_string(record.GetSysType()) + " record (" + SystemIdentityKey(record) + ")";
    }
}

std::string AcqContentKey(const CAcqItem& record) {
    nlohmann::json fields = nlohmann::json::object();
    record.ToJson(fields);
    return std::to_string(record.GetAcqType()) + " " + fields.dump();
}

namespace {

std::string Line(const CRLItem& item, size_t index, int type) {
    std::string fields;
    try {
        fields = item.ToText();
    } catch (const std::exception&) {
        fields = "(cannot be shown as text)";
    }
    while (!fields.empty() && fields.back() == '\t') fields.pop_back();
    return std::to_string(index) + "\t" + std::to_string(type) + "\t" + fields;
}

}  // namespace

std::string SystemLine(const ListFacts& facts, size_t i) {
    return Line(facts.System(i), i, facts.System(i).GetSysType());
}

std::string AcquisitionLine(const ListFacts& facts, size_t i) {
    return Line(facts.Acquisition(i), i, facts.Acquisition(i).GetAcqType());
}

std::string AssociationKey(const CSysItem& record) {
    if (!record.GetAssnIncluded()) return "none";
    return std::to_string(record.GetAssnTag()) + "/" + std::to_string(record.GetPnAssn()) + "/" +
           std::to_string(record.GetDataAssn());
}

ListFacts::ListFacts(const CRLData& data) {
    for (const auto& item : data.GetAcqTable().Items()) {
        const auto& acq = static_cast<const CAcqItem&>(*item);
        acqItems_.push_back(&acq);
        acqCoverage_.push_back(Coverage::Of(acq));
        acqContent_.push_back(Analysis::AcqContentKey(acq));
    }
    int geo = -1, level = 0;
    for (const auto& item : data.GetSysTable().Items()) {
        const auto& sys = static_cast<const CSysItem&>(*item);
        // The first record opens GEO 0 whatever its flag says; after it, "New" opens the next.
        if (systems_.empty() || sys.GetGeography() == 0) {
            ++geo;
            level = 0;
            geoStarts_.push_back(systems_.size());
        }
        SystemFacts facts;
        facts.geo = geo;
        facts.level = level;
        facts.preferred = sys.IsPreferred();
        facts.acqInRange = sys.GetAcqIndex() < acqItems_.size();
        // Only a preferred record with priority "More" puts the records after it a level lower;
        // negative records never rank anything.
        if (sys.IsPreferred() && sys.GetPriority() == 1) ++level;
        systems_.push_back(facts);
        systemItems_.push_back(&sys);
        identity_.push_back(SystemIdentityKey(sys));
    }
}

std::pair<size_t, size_t> ListFacts::GeoRange(int geo) const {
    const size_t g = static_cast<size_t>(geo);
    return {geoStarts_.at(g), g + 1 < geoStarts_.size() ? geoStarts_[g + 1] : systems_.size()};
}

const Coverage& ListFacts::AcqCoverage(size_t acqIndex) const {
    return acqIndex < acqCoverage_.size() ? acqCoverage_[acqIndex] : NoCoverage();
}

const Coverage& ListFacts::SystemCoverage(size_t systemIndex) const {
    return AcqCoverage(systemItems_[systemIndex]->GetAcqIndex());
}

std::string ListFacts::SystemContentKey(size_t i) const {
    const CSysItem& sys = *systemItems_[i];
    const size_t acq = sys.GetAcqIndex();
    return identity_[i] + " | " + (sys.IsPreferred() ? "pref " + std::to_string(sys.GetRoamInd())
                                                     : std::string("neg")) +
           " | assn " + AssociationKey(sys) + " | acq " +
           (acq < acqContent_.size() ? acqContent_[acq] : "missing " + std::to_string(acq));
}

}  // namespace Tarn::Analysis
