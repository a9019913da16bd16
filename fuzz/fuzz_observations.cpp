// Feeds arbitrary bytes to the observations CSV reader and answers every row it accepts against a
// small list holding each kind of system record: a hostile file must end in rows or one error
// line, never a crash, and a reader that failed must keep failing.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "analysis/Selection.h"
#include "roaming_list/RLJson.h"

namespace {

const Tarn::Analysis::Selector& Shared() {
    static const std::unique_ptr<Tarn::CRLData> list = [] {
        const nlohmann::json j = nlohmann::json::parse(R"({
          "version": 5, "header": {"prefListId": 1, "prefOnly": false, "defRoamInd": 1},
          "acquisitionTable": [{"type": 6, "channels": [25, 50]}, {"type": 5, "blocks": [{"block": 0}]}],
          "systemTable": [
            {"type": 0, "negPref": 1, "geography": 0, "priority": 1, "acqIndex": 0, "roamInd": 1, "sid": 1, "nidIncl": 0, "nid": 65535},
            {"type": 0, "negPref": 0, "geography": 1, "priority": 0, "acqIndex": 1, "roamInd": 0, "sid": 1, "nidIncl": 1, "nid": 2},
            {"type": 14, "negPref": 1, "geography": 1, "priority": 1, "acqIndex": 1, "roamInd": 1, "mcc": 310, "imsi11_12": 12},
            {"type": 1, "negPref": 1, "geography": 0, "priority": 0, "acqIndex": 0, "roamInd": 1, "subnet": "2001:db8::/32"},
            {"type": 3, "negPref": 1, "geography": 1, "priority": 0, "acqIndex": 3, "roamInd": 2, "subtype": 3,
             "mcc": "310", "mnc": "1F", "subnets": ["::/0", "2001:db8:5::/48"]},
            {"type": 2, "negPref": 1, "geography": 1, "priority": 0, "acqIndex": 0, "roamInd": 1, "plmnType": 1,
             "mcc": "311", "mnc": "FFF", "netSelMode": 1}
          ]})");
        int version = 0;
        return Tarn::ListFromJson(j, version);
    }();
    static const Tarn::Analysis::Selector selector(*list);
    return selector;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using Tarn::Analysis::ObservationCsvReader;
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    ObservationCsvReader reader(in, "fuzz.csv");
    Tarn::Analysis::Observation o;
    std::string error;
    for (;;) {
        const auto status = reader.Next(o, error);
        if (status == ObservationCsvReader::Status::End) break;
        if (status == ObservationCsvReader::Status::Error) {
            if (error.empty() || error.find('\n') != std::string::npos) std::abort();
            if (reader.Next(o, error) != ObservationCsvReader::Status::Error) std::abort();
            break;
        }
        const auto result = Shared().Select(o);
        if (Tarn::Analysis::FormatSelectionJson(result).empty()) std::abort();
        Tarn::Analysis::FormatSelectionText(result, Shared().Facts());
        Tarn::Analysis::FormatSelectionLine(result);
    }
    return 0;
}
