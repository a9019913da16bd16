// Arbitrary JSON as the JSON form of a binary roaming list: a refusal must say why, and whatever
// builds a list must write bytes that read back as the same list.
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    nlohmann::json json = nlohmann::json::parse(data, data + size, nullptr, false);
    if (json.is_discarded()) return 0;
    const Tarn::FileKindInfo* info = Tarn::FindFileKind(Tarn::FileKind::RoamingList);
    std::string error;
    auto doc = info->fromJson(json, "f.prl", error);
    if (!doc) {
        if (error.empty())
            Tarn::Fuzz::Fail("fuzz_roaming_list_json", "a refusal gives no reason", "");
        return 0;
    }
    Tarn::Fuzz::RoundTrip("fuzz_roaming_list_json", *info, *doc, "f.prl");
    return 0;
}
