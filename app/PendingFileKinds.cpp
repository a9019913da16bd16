// Stand-in for the file kind registry until it lands; removed then.
#include <algorithm>
#include <cctype>

#include "formats/FileKinds.h"

namespace Tarn {

static std::string LowerExt(const std::string& path) {
    const auto dot = path.find_last_of('.');
    const auto slash = path.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {};
    std::string e = path.substr(dot + 1);
    std::transform(e.begin(), e.end(), e.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return e;
}

FileKind KindByExtension(const std::string& path) {
    if (path.empty()) return FileKind::RoamingList;
    const std::string e = LowerExt(path);
    if (e == "prl" || e == "bin" || e.rfind("rl", 0) == 0) return FileKind::RoamingList;
    if (e == "txt") return FileKind::RoamingListText;
    if (e == "mspl") return FileKind::Mspl;
    if (e == "mlpl") return FileKind::Mlpl;
    if (e == "tot") return FileKind::TechOrder;
    if (e == "ehplmn" || e == "oplmn" || e == "uplmn") return FileKind::Plmn;
    if (e == "bst3gpp") return FileKind::Bst3Gpp;
    return FileKind::None;
}

FileKind KindForOpen(const std::string& path) {
    auto has = [&](const char* s) { return path.find(s) != std::string::npos; };
    if (has(".mspl") || has(".MSPL")) return FileKind::Mspl;
    if (has(".mlpl") || has(".MLPL")) return FileKind::Mlpl;
    if (has(".ehplmn") || has(".EHPLMN") || has(".uplmn") || has(".UPLMN") || has(".oplmn") || has(".OPLMN"))
        return FileKind::Plmn;
    if (has(".Bst3Gpp")) return FileKind::Bst3Gpp;
    if (has(".tot") || has(".TOT")) return FileKind::TechOrder;
    if (LowerExt(path) == "laf") return FileKind::Laf;
    return KindByExtension(path);
}

}  // namespace Tarn
