// Feeds arbitrary bytes to every MMSS reader. The first byte picks the kind (and, for the PLMN
// lists, the file name that decides the list kind); the rest is the file. Whatever a reader
// accepts must render, export to JSON, and write back stably: written bytes read back and write
// the same bytes again, and the JSON form writes the same bytes too.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "formats/FileKinds.h"

namespace {

struct Target {
    Tarn::FileKind kind;
    const char* path;
};

constexpr Target kTargets[] = {
    {Tarn::FileKind::Mspl, "f.mspl"},     {Tarn::FileKind::Bst3Gpp, "f.Bst3Gpp"},
    {Tarn::FileKind::Mlpl, "f.mlpl"},     {Tarn::FileKind::Plmn, "f.ehplmn"},
    {Tarn::FileKind::Plmn, "f.oplmn"},    {Tarn::FileKind::Plmn, "f.uplmn"},
    {Tarn::FileKind::TechOrder, "f.tot"}, {Tarn::FileKind::Laf, "f.laf"},
};

const std::vector<Tarn::FileKindInfo>& Kinds() {
    static const std::vector<Tarn::FileKindInfo> kinds = [] {
        std::vector<Tarn::FileKindInfo> k;
        Tarn::AddMmssFileKinds(k);
        return k;
    }();
    return kinds;
}

const Tarn::FileKindInfo& Find(Tarn::FileKind kind) {
    for (const auto& info : Kinds())
        if (info.kind == kind) return info;
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const Target& target = kTargets[data[0] % (sizeof(kTargets) / sizeof(kTargets[0]))];
    const Tarn::FileKindInfo& info = Find(target.kind);
    const std::vector<uint8_t> bytes(data + 1, data + size);

    std::string error;
    auto doc = info.read(bytes, target.path, error);
    if (!doc) {
        if (error.empty()) std::abort();  // a refusal must say why
        return 0;
    }
    (void)doc->RenderText();
    (void)doc->Info();
    nlohmann::json json;
    doc->ToJson(json);

    std::vector<uint8_t> written;
    if (!doc->Write(written, error)) return 0;
    auto again = info.read(written, target.path, error);
    if (!again) std::abort();
    std::vector<uint8_t> rewritten;
    if (!again->Write(rewritten, error) || rewritten != written) std::abort();

    auto fromJson = info.fromJson(nlohmann::json::parse(json.dump()), target.path, error);
    if (!fromJson) std::abort();
    std::vector<uint8_t> viaJson;
    if (!fromJson->Write(viaJson, error) || viaJson != written) std::abort();
    return 0;
}
