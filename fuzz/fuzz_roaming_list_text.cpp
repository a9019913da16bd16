// Arbitrary bytes as the text form of a roaming list: a refusal must say why, and whatever reads
// must render, export and write back stably.
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The largest list renders to a few megabytes; beyond that the text is refused before parsing.
    if (size > (1u << 20)) return 0;
    const Tarn::FileKindInfo* info = Tarn::FindFileKind(Tarn::FileKind::RoamingListText);
    std::string error;
    auto doc = info->read(std::vector<uint8_t>(data, data + size), "f.txt", error);
    if (!doc) {
        if (error.empty())
            Tarn::Fuzz::Fail("fuzz_roaming_list_text", "a refusal gives no reason", "");
        return 0;
    }
    Tarn::Fuzz::RoundTrip("fuzz_roaming_list_text", *info, *doc, "f.txt");
    return 0;
}
