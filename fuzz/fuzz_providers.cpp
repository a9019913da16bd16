// Feeds arbitrary bytes to the provider database reader. Whatever it makes of them, every lookup
// must answer without a fault, and a directory with operators must name them with a label.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/Providers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> warnings;
    // The same bytes serve as the country list too, so its reader is fed as well.
    const auto dir = Tarn::Analysis::ProviderDirectory::Parse(xml, xml, "fuzz.xml", warnings);
    for (unsigned sid : {0u, 1u, 22u, 4139u, 32767u}) {
        const auto ops = dir.ForSid(sid);
        if (!ops.empty() && Tarn::Analysis::OperatorLabel(ops).empty()) std::abort();
    }
    for (const char* mnc : {"0", "00", "000", "01", "001", "260", "99"})
        (void)dir.ForMccMnc("310", mnc);
    if (dir.Empty() && !dir.Warnings().empty() && warnings.empty()) std::abort();
    return 0;
}
