#include "formats/FileKinds.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Tarn {
namespace {

std::string Lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

// The extension of the last path component, without its dot; empty when there is none.
std::string Extension(const std::string& path) {
    size_t slash = path.find_last_of("/\\");
    size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {};
    return path.substr(dot + 1);
}

bool Contains(const std::string& text, const char* needle) {
    return text.find(needle) != std::string::npos;
}

}  // namespace

FileKind KindByExtension(const std::string& path) {
    if (path.empty()) return FileKind::RoamingList;
    const std::string ext = Lower(Extension(path));
    if (ext == "prl" || ext == "bin" || ext.rfind("rl", 0) == 0) return FileKind::RoamingList;
    if (ext == "txt") return FileKind::RoamingListText;
    if (ext == "mspl") return FileKind::Mspl;
    if (ext == "mlpl") return FileKind::Mlpl;
    if (ext == "tot") return FileKind::TechOrder;
    if (ext == "ehplmn" || ext == "oplmn" || ext == "uplmn") return FileKind::Plmn;
    if (ext == "bst3gpp") return FileKind::Bst3Gpp;
    // "hin", "hrl" and "laf" reach no kind here on purpose: only the open rule routes "laf".
    return FileKind::None;
}

FileKind KindForOpen(const std::string& path) {
    // A substring search over the whole path, case-sensitive, so a folder or a second extension
    // can decide the kind; only the spellings listed count.
    if (Contains(path, ".mspl") || Contains(path, ".MSPL")) return FileKind::Mspl;
    if (Contains(path, ".mlpl") || Contains(path, ".MLPL")) return FileKind::Mlpl;
    for (const char* s : {".ehplmn", ".EHPLMN", ".uplmn", ".UPLMN", ".oplmn", ".OPLMN"})
        if (Contains(path, s)) return FileKind::Plmn;
    if (Contains(path, ".Bst3Gpp")) return FileKind::Bst3Gpp;
    if (Contains(path, ".tot") || Contains(path, ".TOT")) return FileKind::TechOrder;
    if (Lower(Extension(path)) == "laf") return FileKind::Laf;
    return KindByExtension(path);
}

const std::vector<FileKindInfo>& FileKinds() {
    static const std::vector<FileKindInfo> kinds = [] {
        std::vector<FileKindInfo> all;
        AddRoamingListFileKinds(all);
        AddMmssFileKinds(all);
        return all;
    }();
    return kinds;
}

const FileKindInfo* FindFileKind(FileKind kind) {
    for (const auto& info : FileKinds())
        if (info.kind == kind) return &info;
    return nullptr;
}

}  // namespace Tarn

#include <nlohmann/json.hpp>

#include "formats/ContentSniff.h"
#include "foundation/AtomicFile.h"

namespace Tarn {

std::unique_ptr<FileDocument> ReadJsonDocument(const nlohmann::json& json, const std::string& path,
                                               std::string& error) {
    if (!json.is_object()) {
        error = "The JSON holds no file description: a JSON object is expected.";
        return nullptr;
    }
    const FileKindInfo* info = nullptr;
    if (const auto type = json.find("fileType"); type != json.end()) {
        if (!type->is_string()) {
            error = "\"fileType\" must be a text.";
            return nullptr;
        }
        for (const auto& kind : FileKinds())
            for (const auto& name : kind.jsonTypes)
                if (*type == name) info = &kind;
        if (!info) {
            error = "The JSON describes a " + type->get<std::string>() +
                    " file, a kind Tarn does not read.";
            return nullptr;
        }
    } else {
        info =
            FindFileKind(KindForOpen(path) == FileKind::RoamingListText ? FileKind::RoamingListText
                                                                        : FileKind::RoamingList);
    }
    // No path: a PLMN list would take its kind from the name before the JSON, and the name of a
    // JSON file is not what decides which list it describes.
    return info->fromJson(json, std::string(), error);
}

std::unique_ptr<FileDocument> ReadFileDocumentBytes(const std::vector<uint8_t>& bytes,
                                                    const std::string& path, std::string& error) {
    FileKind kind = KindForOpen(path);
    if (kind == FileKind::None) kind = FileKind::RoamingList;
    if (const std::string title = MmssTextTitle(bytes); !title.empty()) {
        error = "This is the text view of an MMSS file (" + title +
                "), which Tarn writes but does not read back: open the file itself or its JSON "
                "form.";
        return nullptr;
    }
    std::string jsonError;
    switch (SniffContent(bytes)) {
        case ContentForm::Json: {
            nlohmann::json json;
            try {
                json = nlohmann::json::parse(bytes.begin(), bytes.end());
            } catch (const nlohmann::json::exception& e) {
                // A binary file can start with a brace too (a size word from 0x7B00 up): it
                // gets its own reader, and this reason only if that refuses it as well.
                const std::string what = e.what();
                const auto close = what.find("] ");
                jsonError = close == std::string::npos ? what : what.substr(close + 2);
                break;
            }
            auto doc = ReadJsonDocument(json, path, error);
            if (doc) doc->AddNotice("Read from the JSON form of " + doc->KindName() + ".");
            return doc;
        }
        case ContentForm::RoamingListText:
            if (kind != FileKind::RoamingListText) {
                auto doc = FindFileKind(FileKind::RoamingListText)->read(bytes, path, error);
                if (doc)
                    doc->AddNotice(
                        "The file holds the text form of a roaming list and was read as such.");
                return doc;
            }
            break;
        case ContentForm::Binary:
            break;
    }
    const FileKindInfo* info = FindFileKind(kind);
    if (!info || !info->read) {
        error = "No reader for this kind of file.";
        return nullptr;
    }
    auto doc = info->read(bytes, path, error);
    if (!doc && !jsonError.empty())
        error = "The file starts like JSON but is not valid JSON: " + jsonError;
    return doc;
}

std::unique_ptr<FileDocument> ReadFileDocument(const std::string& path, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, error)) return nullptr;
    return ReadFileDocumentBytes(bytes, path, error);
}

}  // namespace Tarn
