// Arbitrary bytes as a concatenated roaming list: the structure check must never read outside the
// image, and when it accepts, both halves are whole lists that a version reads.
#include <cstdint>
#include <vector>

#include "fuzz/FuzzSupport.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    size_t first = 0;
    if (!Tarn::CheckConcatenatedPrl(data, size, first)) return 0;
    if (first == 0 || first + 2 > size)
        Tarn::Fuzz::Fail("fuzz_concat", "first list length outside the file",
                         std::to_string(first));
    // Each half through the binary reader: the check says they hold their own size and CRC.
    const std::vector<uint8_t> halves[] = {std::vector<uint8_t>(data, data + first),
                                           std::vector<uint8_t>(data + first, data + size - 2)};
    const Tarn::FileKindInfo* info = Tarn::FindFileKind(Tarn::FileKind::RoamingList);
    for (const auto& half : halves) {
        std::string error;
        auto doc = info->read(half, "f.prl", error);
        if (doc)
            Tarn::Fuzz::RoundTrip("fuzz_concat", *info, *doc, "f.prl");
        else if (error.empty())
            Tarn::Fuzz::Fail("fuzz_concat", "a refusal gives no reason", "");
    }
    return 0;
}
