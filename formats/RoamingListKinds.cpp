#include "formats/FileKinds.h"

namespace Tarn {
void AddRoamingListFileKinds(std::vector<FileKindInfo>&) {}
}  // namespace Tarn
