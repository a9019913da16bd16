// Whole roaming lists for the list-level tests, written the way a user reads them: as the text
// form, one "<type code>\t<fields>" string per record (the index is added).
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "roaming_list/AcqItemSpecial.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"

namespace Tarn::ListSamples {

inline std::string Header(const std::string& type, const std::string& prefOnly = "TRUE",
                          const std::string& id = "100", const std::string& roamInd = "1") {
    return "\r\n\t\t=============== ROAMING LIST ===============\r\n\r\n\tRoaming List Type:\t\t" +
           type + "\r\n\tPreferred Only:\t\t" + prefOnly + "\r\n\tPreferred List ID:\t\t" + id +
           "\r\n\tDefault Roaming Indicator:\t" + roamInd + "\r\n";
}

inline const std::string kAcqHead =
    "\r\n\t\t*********** Acquisition Table ***********\r\n\r\n"
    "\tINDEX\tACQ TYPE\tCH1\tCH2\tCH3\tCH4\tCH5\tCH6\tCH7 - - CH31\r\n";
inline const std::string kSysHead =
    "\r\n\t\t*********** System Table ***********\r\n\r\n"
    "INDEX\tSYS TYPE\tNEG/PREF\tGEO\tPRI\tACQ IND\tROAM IND\tASSN INC\tASSN TAG\tPN ASSN\t"
    "DATA ASSN\tSID, NID / MCC, IMSI_11_12 / SUBNETID / PLMN TYPE, PLMN, LAC\r\n";

// Appends piece by piece: GCC 12 at -O3 misreads `"\t" + std::string&&` as an overlapping copy.
inline std::string Lines(const std::vector<std::string>& records) {
    std::string out;
    for (size_t i = 0; i < records.size(); ++i) {
        out += '\t';
        out += std::to_string(i);
        out += '\t';
        out += records[i];
        out += "\t\r\n";
    }
    return out;
}

// The text exactly as the renderer writes it (every record's fields end in a tab).
inline std::string Text(int version, const std::vector<std::string>& acq,
                        const std::vector<std::string>& sys) {
    return Header(VersionName(version)) + kAcqHead + Lines(acq) + kSysHead + Lines(sys);
}

inline std::unique_ptr<CRLData> List(int version, const std::vector<std::string>& acq,
                                     const std::vector<std::string>& sys) {
    TextDetectResult r = DetectTextVersion(Text(version, acq, sys));
    if (!r.data) throw std::runtime_error("sample text does not read: " + r.error);
    return std::move(r.data);
}

// The bytes a save in `version` writes; empty when the manager refuses the list.
inline std::vector<uint8_t> Binary(const CRLData& data, int version) {
    std::unique_ptr<CRLManager> manager = CreateClassFactory(version)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    CRLFile file;
    if (!manager->WriteList(file)) return {};
    return file.Bytes();
}

// An IS-683C list whose binary is exactly `bytes` long (at least 15): undefined acquisition
// records of up to 255 octets after the 11 header bytes, and the CRC.
inline std::unique_ptr<CRLData> ListOfSize(size_t bytes) {
    auto data = std::make_unique<CRLData>();
    for (size_t left = bytes - 13; left > 0;) {
        const size_t take = left >= 259 ? 257 : left == 258 ? 256 : left;  // 2 octets of framing
        auto item = CreateAcqItem(kAcqTypeSpecial, 3);
        dynamic_cast<CAcqItemSpecial&>(*item).SetData(std::vector<uint8_t>(take - 2, 0x5A));
        data->GetAcqTable().Items().Add(std::move(item));
        left -= take;
    }
    return data;
}

}  // namespace Tarn::ListSamples
