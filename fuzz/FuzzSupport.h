// What the fuzz programs share: a fatal report that names the program and what broke, and the
// round trip every registry kind must survive once its reader has accepted something.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "formats/FileKinds.h"

namespace Tarn::Fuzz {

[[noreturn]] inline void Fail(const char* program, const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s: %s\n", program, what, detail.c_str());
    std::abort();
}

// A document that was read must render, describe itself and export JSON without throwing; what
// it writes must read back and write the very same bytes, and its JSON must build a document that
// writes them too. A refusal to write is fine as long as it says why.
inline void RoundTrip(const char* program, const FileKindInfo& info, const FileDocument& doc,
                      const std::string& path) {
    try {
        (void)doc.RenderText();
    } catch (const std::exception& e) {
        // Some values have no text form; that is a refusal, and it must say why.
        if (std::string(e.what()).empty()) Fail(program, "a refused rendering gives no reason", "");
    }
    (void)doc.Info();
    (void)doc.Check();
    nlohmann::json json;
    doc.ToJson(json);

    std::string error;
    std::vector<uint8_t> written;
    if (!doc.Write(written, error)) {
        if (error.empty()) Fail(program, "a refused write gives no reason", "");
        return;
    }
    auto again = info.read(written, path, error);
    if (!again) Fail(program, "written bytes do not read back", error);
    std::vector<uint8_t> rewritten;
    if (!again->Write(rewritten, error)) Fail(program, "re-read document does not write", error);
    if (rewritten != written) Fail(program, "second write differs from the first", "");

    auto fromJson = info.fromJson(nlohmann::json::parse(json.dump()), path, error);
    if (!fromJson) Fail(program, "exported JSON does not read back", error);
    std::vector<uint8_t> viaJson;
    if (!fromJson->Write(viaJson, error)) Fail(program, "JSON document does not write", error);
    if (viaJson != written) Fail(program, "JSON document writes other bytes", "");
}

}  // namespace Tarn::Fuzz
