#include "formats/FileKinds.h"

namespace Tarn {
// Stand-in until the MMSS kinds register themselves; replaced by their definition at link time.
__attribute__((weak)) void AddMmssFileKinds(std::vector<FileKindInfo>&) {}
}  // namespace Tarn
