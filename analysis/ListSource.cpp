#include "analysis/ListSource.h"

#include <nlohmann/json.hpp>

#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "formats/ContentSniff.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"

namespace Tarn::Analysis {
namespace {

std::unique_ptr<LoadedList> FromJson(const std::vector<uint8_t>& bytes, std::string& error) {
    try {
        auto out = std::make_unique<LoadedList>();
        nlohmann::json json = nlohmann::json::parse(bytes.begin(), bytes.end());
        if (json.is_object() && json.contains("fileType")) {
            error = "the JSON describes a " + json.at("fileType").dump() + " file, not a roaming list";
            return nullptr;
        }
        out->data = ListFromJson(json, out->version);
        out->prefixed = json.is_object() && json.value("prefixed", false);
        out->form = ListForm::Json;
        return out;
    } catch (const std::exception& e) {
        error = e.what();
        return nullptr;
    }
}

std::unique_ptr<LoadedList> FromText(const std::vector<uint8_t>& bytes, std::string& error) {
    TextDetectResult r = DetectTextVersion(std::string(bytes.begin(), bytes.end()));
    if (!r.data) {
        error = std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
        return nullptr;
    }
    auto out = std::make_unique<LoadedList>();
    out->data = std::move(r.data);
    out->version = r.version;
    out->is1xEV = r.is1xEV;
    out->form = ListForm::Text;
    return out;
}

std::unique_ptr<LoadedList> FromBinary(std::vector<uint8_t> bytes, int part, std::string& error) {
    ListForm form = ListForm::Binary;
    size_t firstLength = 0;
    if (CheckConcatenatedPrl(bytes.data(), bytes.size(), firstLength)) {
        form = ListForm::Concatenated;
        // The outer CRC closes the file; each part keeps its own size and CRC.
        std::vector<uint8_t> chosen =
            part == 2 ? std::vector<uint8_t>(bytes.begin() + static_cast<long>(firstLength),
                                             bytes.end() - 2)
                      : std::vector<uint8_t>(bytes.begin(),
                                             bytes.begin() + static_cast<long>(firstLength));
        bytes = std::move(chosen);
    } else if (part == 2) {
        error = "--part 2 asks for the second list of a concatenated roaming list, and this file "
                "is not one";
        return nullptr;
    }
    const size_t size = bytes.size();
    CRLFile file(std::move(bytes));
    DetectResult r = DetectVersion(file);
    if (!r.manager) {
        error = std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
        return nullptr;
    }
    auto out = std::make_unique<LoadedList>();
    out->version = r.manager->GetVersion();
    out->prefixed = r.manager->IsPrefixed();
    out->data = r.manager->DetachData();
    out->form = form;
    out->byteSize = size;
    return out;
}

}  // namespace

std::unique_ptr<LoadedList> LoadRoamingListBytes(std::vector<uint8_t> bytes,
                                                 const std::string& name, std::string& error,
                                                 int part) {
    if (part != 1 && part != 2) {
        error = "--part must be 1 or 2";
        return nullptr;
    }
    std::unique_ptr<LoadedList> out;
    switch (SniffContent(bytes)) {
        case ContentForm::Json:
            out = FromJson(bytes, error);
            if (!out) {
                // A large binary list may start with '{'; only when it is not one does the JSON
                // fault stand.
                std::string binaryError;
                out = FromBinary(bytes, part, binaryError);
            }
            break;
        case ContentForm::RoamingListText: out = FromText(bytes, error); break;
        case ContentForm::Binary: out = FromBinary(std::move(bytes), part, error); break;
    }
    if (out && part == 2 && out->form != ListForm::Concatenated) {
        error = "--part 2 asks for the second list of a concatenated roaming list, and this file "
                "is not one";
        return nullptr;
    }
    if (!out && !name.empty()) error = name + ": " + error;
    return out;
}

std::unique_ptr<LoadedList> LoadRoamingList(const std::string& path, std::string& error,
                                            int part) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, error)) return nullptr;
    return LoadRoamingListBytes(std::move(bytes), path, error, part);
}

}  // namespace Tarn::Analysis
