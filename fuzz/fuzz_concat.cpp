// Arbitrary bytes as a concatenated roaming list: the structure check must never read outside the
// image, and when it accepts, both halves are whole lists that a version reads or refuses with a
// reason. The bytes are tried as they are, and cut in two (at the offset the first two bytes
// give) with each half and the whole sealed, so mutations get past the CRCs.
#include <cstdint>
#include <vector>

#include "fuzz/FuzzSupport.h"
#include "fuzz/Seal.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLFile.h"

namespace {

void Run(const std::vector<uint8_t>& bytes) {
    size_t first = 0;
    if (!Tarn::CheckConcatenatedPrl(bytes.data(), bytes.size(), first)) return;
    if (first == 0 || first + 2 > bytes.size())
        Tarn::Fuzz::Fail("fuzz_concat", "first list length outside the file",
                         std::to_string(first));
    // Each half through the binary reader: the check says they hold their own size and CRC.
    const std::vector<uint8_t> halves[] = {
        std::vector<uint8_t>(bytes.begin(), bytes.begin() + static_cast<long>(first)),
        std::vector<uint8_t>(bytes.begin() + static_cast<long>(first), bytes.end() - 2)};
    const Tarn::FileKindInfo* info = Tarn::FindFileKind(Tarn::FileKind::RoamingList);
    for (const auto& half : halves) {
        std::string error;
        auto doc = info->read(half, "f.prl", error);
        if (doc)
            Tarn::Fuzz::RoundTrip("fuzz_concat", *info, *doc, "f.prl");
        else if (error.empty())
            Tarn::Fuzz::Fail("fuzz_concat", "a refusal gives no reason", "");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2 * (0xFFFF + 2)) return 0;
    Run(std::vector<uint8_t>(data, data + size));
    if (size < 2) return 0;
    const size_t cut = 2 + ((size_t{data[0]} << 8 | data[1]) % (size - 1));
    if (cut - 2 + 2 > 0xFFFF || size - cut + 2 > 0xFFFF) return 0;
    std::vector<uint8_t> whole = Tarn::Fuzz::Sealed(std::vector<uint8_t>(data + 2, data + cut));
    const std::vector<uint8_t> second =
        Tarn::Fuzz::Sealed(std::vector<uint8_t>(data + cut, data + size));
    whole.insert(whole.end(), second.begin(), second.end());
    const uint16_t crc = Tarn::Crc16(whole.data(), whole.size());
    whole.push_back(static_cast<uint8_t>(crc >> 8));
    whole.push_back(static_cast<uint8_t>(crc & 0xFF));
    Run(whole);
    return 0;
}
