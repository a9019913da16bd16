#include "roaming_list/SysItem.h"

namespace Tarn {

std::unique_ptr<CSysItem> CreateSysItem(int, int, int) { return nullptr; }

}  // namespace Tarn
