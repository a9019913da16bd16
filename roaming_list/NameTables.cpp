#include "roaming_list/NameTables.h"

#include <cstring>

namespace Tarn {

CNameList::CNameList(std::string title, std::vector<Entry> entries, DataError error)
    : title_(std::move(title)), entries_(std::move(entries)), error_(error) {
    std::vector<std::string> names;
    names.reserve(entries_.size());
    for (const auto& e : entries_) names.push_back(e.second);
    choices_ = MakeChoices(std::move(names));

    // The first entry of a value is the one NameView finds.
    std::vector<bool> seen;
    for (const auto& [value, name] : entries_) {
        if (value < 0 || value >= kPlainValues) continue;
        const auto at = static_cast<size_t>(value);
        if (seen.size() <= at) seen.resize(at + 1);
        if (seen[at]) continue;
        seen[at] = true;
        if (name.empty() || name.size() >= ShortText::kRoom || name == kInvalidName ||
            name.find_first_of(" \t\r\n") != std::string::npos)
            continue;
        if (plain_.size() <= at) plain_.resize(at + 1);
        std::memcpy(plain_[at].bytes, name.data(), name.size());
        plain_[at].size = static_cast<uint8_t>(name.size());
    }
}

std::string CNameList::GetName(int value) const {
    for (const auto& e : entries_)
        if (e.first == value) return e.second;
    return kInvalidName;
}

std::string_view CNameList::NameView(int value) const {
    for (const auto& e : entries_)
        if (e.first == value) return e.second;
    return kInvalidName;
}

bool CNameList::HasValue(int value) const {
    for (const auto& e : entries_)
        if (e.first == value) return true;
    return false;
}

bool CNameList::FindValue(std::string_view name, int& value) const {
    // Most names differ in length or first letter, which is cheaper to see than a comparison.
    for (const auto& e : entries_)
        if (e.second.size() == name.size() && (name.empty() || e.second[0] == name[0]) &&
            e.second == name) {
            value = e.first;
            return true;
        }
    return false;
}

int CNameList::GetValue(std::string_view name) const {
    int value = 0;
    if (!FindValue(name, value)) {
        std::string detail = "(\"";
        detail += name;
        detail += "\")";
        throw CDataException(error_, detail);
    }
    return value;
}

const CRLNameTables& CRLNameTables::Instance() {
    // Built on first use and kept until the program ends.
    static const CRLNameTables* tables = new CRLNameTables();
    return *tables;
}

namespace {

using E = std::vector<CNameList::Entry>;

E Append(E base, const E& more) {
    base.insert(base.end(), more.begin(), more.end());
    return base;
}

E CdmaBands() {
    return {{0, "0:800-MHz-Cellular"},       {1, "1:1900-MHz-PCS"},
            {2, "2:900-MHz-TACS"},           {3, "3:850-MHz-JTACS"},
            {4, "4:1800-MHz-Korean-PCS"},    {5, "5:450-MHz-NMT"},
            {6, "6:2-GHz-IMT"},              {7, "7:700-MHz-Cellular"},
            {8, "8:1800-MHz"},               {9, "9:900-MHz"},
            {10, "10:800-MHz-Secondary"},    {11, "11:400-MHz-European-PAMR"},
            {12, "12:800-MHz-PAMR"},         {14, "14:1900-MHz-PCS"},
            {15, "15:1700/2100MHZ-AWS"},     {16, "16:US2.5G"},
            {18, "18:700-MHz-Public-Safety"}, {19, "19:700-MHz-Lower"}};
}

E InsertAfter(E list, int afterValue, CNameList::Entry entry) {
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i].first == afterValue) {
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(entry));
            return list;
        }
    list.push_back(std::move(entry));
    return list;
}

E LteBandsGwl() {
    E list;
    auto add = [&](int n) { list.emplace_back(n - 1, "EUTRAN-" + std::to_string(n)); };
    for (int n = 1; n <= 14; ++n) add(n);
    for (int n = 17; n <= 21; ++n) add(n);
    for (int n = 23; n <= 43; ++n) add(n);
    add(45);
    add(47);
    add(48);
    list.emplace_back(50, "EUTRAN-66");
    list.emplace_back(51, "EUTRAN-67");
    list.emplace_back(52, "EUTRAN-68");
    list.emplace_back(54, "EUTRAN-71");
    list.emplace_back(60, "EUTRAN-125");
    list.emplace_back(61, "EUTRAN-126");
    list.emplace_back(62, "EUTRAN-127");
    return list;
}

}  // namespace

CRLNameTables::CRLNameTables()
    : versions_("Roaming List Type",
                {{1, "IS-683A"}, {2, "IS-683B"}, {3, "IS-683C"}, {4, "IS-683D"}, {5, "IS-683E"}},
                DataError::InvalidRlType),
      cellularSystem_("Cellular System", {{0, "A"}, {1, "B"}, {3, "Both"}}, DataError::InvalidSystem),
      channel_("Channel", {{1, "Pri"}, {2, "Sec"}, {3, "Both"}}, DataError::InvalidPriSecChannel),
      block_("Block",
             {{0, "A"}, {1, "B"}, {2, "C"}, {3, "D"}, {4, "E"}, {5, "F"}, {7, "Any"}},
             DataError::InvalidBlock),
      cdmaBand_("CDMA Band Class", CdmaBands(), DataError::InvalidGenericCdmaBand),
      hdrBand_("HDR Band Class", InsertAfter(CdmaBands(), 16, {17, "17:US2.5G-Forward-Link"}),
               DataError::InvalidGenericHdrBand),
      gsmBand_("GSM Band",
               {{0, "0:GSM-450"}, {1, "1:GSM-480"}, {2, "2:GSM-750"}, {3, "3:GSM-850"},
                {4, "4:P-GSM-900"}, {5, "5:E-GSM-900"}, {6, "6:R-GSM-900"}, {7, "7:DCS-1800"},
                {8, "8:PCS-1900"}},
               DataError::InvalidGenericGsmBand),
      umtsBand_("UMTS Band",
                {{0, "BC1-IMT2G"}, {1, "BC2-PCS1.9G"}, {2, "BC3-1.7G"}, {3, "BC4-1.7G"},
                 {4, "BC5-850M"}, {5, "BC6-800M"}, {6, "BC7-2.6G"}, {7, "BC8-900M"},
                 {8, "BC9-1.7G"}, {9, "BC10-1.7G"}, {10, "BC11-1.5G"}, {11, "BC19-850M"}},
                DataError::InvalidGenericUmtsBand),
      umbBand_("UMB Band Class",
               InsertAfter(InsertAfter(CdmaBands(), 12, {13, "13:2.5-GHz-IMT-Ext"}), 16,
                           {17, "17:US2.5G-Forward-Link"}),
               DataError::InvalidAcqTable),
      umbFft_("UMB FFT Size",
              {{0, "Unknown"}, {1, "128"}, {2, "256"}, {3, "512"}, {4, "1024"}, {5, "2048"}},
              DataError::InvalidAcqTable),
      umbCp_("UMB Cyclic Prefix Length",
             {{0, "Unknown"}, {1, "6.51us"}, {2, "13.02us"}, {3, "19.53us"}, {4, "26.04us"}},
             DataError::InvalidAcqTable),
      gwlSysMode_("GWL System Mode", {{3, "GSM"}, {5, "WCDMA"}, {9, "LTE"}},
                  DataError::InvalidGwlSysMode),
      lteGwl_("LTE Band", LteBandsGwl(), DataError::InvalidAcqTable),
      lte3gpp_("LTE Band",
               Append(InsertAfter(LteBandsGwl(), 44, {45, "EUTRAN-46"}), {{249, "EUTRAN-250"}}),
               DataError::InvalidAcqTable),
      negPref_("Neg/Pref", {{0, "Neg"}, {1, "Pref"}}, DataError::InvalidNegPref),
      geo_("Geography", {{0, "New"}, {1, "Same"}}, DataError::InvalidGeoRegion),
      priority_("Priority", {{0, "Same"}, {1, "More"}}, DataError::InvalidPriority),
      assnIncl_("Association Included", {{0, "No"}, {1, "Yes"}}, DataError::InvalidAssnIncl),
      pnAssn_("PN Association", {{0, "No"}, {1, "Yes"}}, DataError::InvalidPnAssn),
      dataAssn_("Data Association", {{0, "No"}, {1, "Yes"}}, DataError::InvalidDataAssn),
      plmnType_("PLMN Type",
                {{0, "Select Mode"}, {1, "PLMN Only"}, {2, "PLMN+Single LAC"}, {3, "PLMN+Multi LAC"}},
                DataError::InvalidPlmnType),
      plmnSelect_("PLMN Select", {{0, "Any PLMNs"}, {1, "Allowed PLMNs"}, {2, "Home PLMN"}},
                  DataError::InvalidPlmnSelectMode),
      netSelMode_("Network Selection Mode", {{0, "Manual"}, {1, "Automatic"}},
                  DataError::InvalidNetworkSelectionMode),
      mccMncSubtype_("MCC-MNC Subtype", {{2, "MCC-MNC SID/NID"}, {3, "MCC-MNC Subnet-Id"}},
                     DataError::InvalidSysRecType) {
    E acqA = {{1, "Analog Cellular"},         {2, "CDMA Cellular (standard)"},
              {3, "CDMA Cellular (custom)"},  {4, "CDMA Cellular (preferred)"},
              {5, "CDMA PCS (blocks)"},       {6, "CDMA PCS (channels)"}};
    E acqB = Append(acqA, {{7, "JTACS CDMA (standard)"}, {8, "JTACS CDMA (custom)"},
                           {9, "2GHz Band (channel)"}});
    E acqC = Append(acqB, {{10, "CDMA Generic"}, {11, "HDR Generic"}});
    E acqE = Append(acqC, {{14, "3GPP Generic"}, {15, "GWL Generic"}});
    acqTypes_.emplace_back("Acquisition Type", acqA, DataError::InvalidAcqType);
    acqTypes_.emplace_back("Acquisition Type", acqB, DataError::InvalidAcqType);
    acqTypes_.emplace_back("Acquisition Type", acqC, DataError::InvalidAcqType);
    acqTypes_.emplace_back("Acquisition Type", acqC, DataError::InvalidAcqType);
    acqTypes_.emplace_back("Acquisition Type", acqE, DataError::InvalidAcqType);

    E sysA = {{0, "95(A,B)/1x"}, {14, "1x-MCC"}};
    E sysC = Append(sysA, {{1, "IS-856"}});
    E sysD = Append(sysC, {{2, "PLMN-based"}, {3, "MCC-MNC-based"}});
    sysTypes_.emplace_back("System Type", sysA, DataError::InvalidSysRecType);
    sysTypes_.emplace_back("System Type", sysA, DataError::InvalidSysRecType);
    sysTypes_.emplace_back("System Type", sysC, DataError::InvalidSysRecType);
    sysTypes_.emplace_back("System Type", sysD, DataError::InvalidSysRecType);
    sysTypes_.emplace_back("System Type", sysD, DataError::InvalidSysRecType);
}

const CNameList& CRLNameTables::AcqTypes(int version) const {
    return acqTypes_[(version >= 1 && version <= 5) ? version - 1 : 4];
}

const CNameList& CRLNameTables::SysTypes(int version) const {
    return sysTypes_[(version >= 1 && version <= 5) ? version - 1 : 4];
}

}  // namespace Tarn
