// Feeds arbitrary bytes to every MMSS reader. The first byte picks the kind (and, for the PLMN
// lists, the file name that decides the list kind); the rest is the file. A refusal must say why;
// whatever a reader accepts must render, export to JSON, and write back stably.
#include "fuzz/FuzzSupport.h"
#include "fuzz/MmssTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const Tarn::Fuzz::MmssTarget& target = Tarn::Fuzz::PickMmssTarget(data[0]);
    const Tarn::FileKindInfo& info = Tarn::Fuzz::MmssKindInfo(target.kind);
    std::string error;
    auto doc = info.read(std::vector<uint8_t>(data + 1, data + size), target.path, error);
    if (!doc) {
        if (error.empty()) Tarn::Fuzz::Fail("fuzz_mmss", "a refusal gives no reason", target.path);
        return 0;
    }
    Tarn::Fuzz::RoundTrip("fuzz_mmss", info, *doc, target.path);
    return 0;
}
