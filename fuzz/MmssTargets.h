// The MMSS kinds the fuzz programs pick from with their first input byte, each with a file name
// (the PLMN list kind comes from the name).
#pragma once

#include <cstdlib>

#include "formats/FileKinds.h"

namespace Tarn::Fuzz {

struct MmssTarget {
    FileKind kind;
    const char* path;
};

inline constexpr MmssTarget kMmssTargets[] = {
    {FileKind::Mspl, "f.mspl"},     {FileKind::Bst3Gpp, "f.Bst3Gpp"}, {FileKind::Mlpl, "f.mlpl"},
    {FileKind::Plmn, "f.ehplmn"},   {FileKind::Plmn, "f.oplmn"},      {FileKind::Plmn, "f.uplmn"},
    {FileKind::TechOrder, "f.tot"}, {FileKind::Laf, "f.laf"},
};

inline const MmssTarget& PickMmssTarget(uint8_t selector) {
    return kMmssTargets[selector % (sizeof(kMmssTargets) / sizeof(kMmssTargets[0]))];
}

inline const FileKindInfo& MmssKindInfo(FileKind kind) {
    const FileKindInfo* info = FindFileKind(kind);
    if (!info) std::abort();
    return *info;
}

}  // namespace Tarn::Fuzz
