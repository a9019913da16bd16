// Arbitrary bytes as a binary roaming list, as they are and sealed with a size and CRC that hold
// (so mutations reach the record readers): version detection must never crash, and whatever a
// manager reads it must write back as a list that the same version validates, reads and writes
// again to the very same bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "fuzz/Seal.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

namespace {

[[noreturn]] void Fail(const char* what, int version, const std::string& detail) {
    std::fprintf(stderr, "fuzz_roaming_list: %s (version %d): %s\n", what, version, detail.c_str());
    std::abort();
}

void Run(std::vector<uint8_t> bytes) {
    Tarn::CRLFile input(std::move(bytes));
    Tarn::DetectResult detected = Tarn::DetectVersion(input);
    if (!detected.manager) return;

    Tarn::CRLManager& manager = *detected.manager;
    const int version = manager.GetVersion();
    Tarn::CRLFile written;
    // A list can read fine and still hold values the writer's checks refuse; that is a refusal
    // with a reason, not a fault.
    if (!manager.WriteList(written)) return;

    auto again = Tarn::CreateClassFactory(version)->CreateManager();
    if (!again->ValidateFile(written))
        Fail("written list does not validate", version, again->GetLastError());
    try {
        if (!again->ReadList(written))
            Fail("written list does not read", version, again->GetLastError());
    } catch (const std::exception& e) {
        Fail("written list does not read", version, e.what());
    }
    Tarn::CRLFile rewritten;
    if (!again->WriteList(rewritten))
        Fail("re-read list does not write", version, again->GetLastError());
    if (rewritten.Bytes() != written.Bytes())
        Fail("second write differs from the first", version, "");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A list's size field is 16 bits and a prefix adds 5 bytes: longer input is refused whole.
    if (size > 0xFFFF + 5) return 0;
    Run(std::vector<uint8_t>(data, data + size));
    if (size + 2 <= 0xFFFF) Run(Tarn::Fuzz::Sealed(std::vector<uint8_t>(data, data + size)));
    return 0;
}
