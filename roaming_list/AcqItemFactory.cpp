#include "roaming_list/AcqItem.h"

namespace Tarn {

std::unique_ptr<CAcqItem> CreateAcqItem(int, int) { return nullptr; }

}  // namespace Tarn
