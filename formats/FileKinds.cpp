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

#include "foundation/AtomicFile.h"

namespace Tarn {

std::unique_ptr<FileDocument> ReadFileDocument(const std::string& path, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, error)) return nullptr;
    FileKind kind = KindForOpen(path);
    if (kind == FileKind::None) kind = FileKind::RoamingList;
    const FileKindInfo* info = FindFileKind(kind);
    if (!info || !info->read) {
        error = "No reader for this kind of file.";
        return nullptr;
    }
    return info->read(bytes, path, error);
}

}  // namespace Tarn
