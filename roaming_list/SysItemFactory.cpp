#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSpecial.h"

namespace Tarn {

namespace {

std::unique_ptr<CSysItem> Make(int type, int version, int lengthOctets, CItemArena* arena) {
    const bool fromFile = lengthOctets != 0;
    switch (type) {
        case 0:
            return MakeItem<CSysItemIS2000>(arena);
        case 14:
            // On file a 1x-MCC record is an IS-2000 record; a type 14 there is not ours.
            if (fromFile) return nullptr;
            return MakeItem<CSysItemIS2000Mcc>(arena);
        default:
            break;
    }
    if (version < 3) return nullptr;
    if (type == 1) return MakeItem<CSysItemIS856>(arena);
    if (type == 2 || type == 3) {
        if (version < 4) return nullptr;
        if (type == 2) return MakeItem<CSysItemPlmn>(arena);
        return MakeItem<CSysItemMccMnc>(arena);
    }
    if (type >= 4 && type <= 15)
        return MakeItem<CSysItemSpecial>(arena, static_cast<uint8_t>(type),
                                         static_cast<unsigned>(lengthOctets));
    return nullptr;
}

}  // namespace

std::unique_ptr<CSysItem> CreateSysItem(int type, int version, int lengthOctets,
                                        CItemArena* arena) {
    if (version < 1 || version > 5) version = 5;
    auto item = Make(type, version, lengthOctets, arena);
    if (item) item->SetVersion(version);
    return item;
}

}  // namespace Tarn
