// Feeds arbitrary JSON to the JSON reader of every MMSS kind; the first byte picks the kind as in
// fuzz_mmss. A refusal must say why; whatever builds a document must write stably.
#include "fuzz/FuzzSupport.h"
#include "fuzz/MmssTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const Tarn::Fuzz::MmssTarget& target = Tarn::Fuzz::PickMmssTarget(data[0]);
    nlohmann::json json = nlohmann::json::parse(data + 1, data + size, nullptr, false);
    if (json.is_discarded()) return 0;
    const Tarn::FileKindInfo& info = Tarn::Fuzz::MmssKindInfo(target.kind);
    std::string error;
    auto doc = info.fromJson(json, target.path, error);
    if (!doc) {
        if (error.empty())
            Tarn::Fuzz::Fail("fuzz_mmss_json", "a refusal gives no reason", target.path);
        return 0;
    }
    Tarn::Fuzz::RoundTrip("fuzz_mmss_json", info, *doc, target.path);
    return 0;
}
