#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSpecial.h"

namespace Tarn {

namespace {

std::unique_ptr<CSysItem> Make(int type, int version, int lengthOctets) {
    const bool fromFile = lengthOctets != 0;
    switch (type) {
        case 0:
            return std::make_unique<CSysItemIS2000>();
        case 14:
            // On file a 1x-MCC record is an IS-2000 record; a type 14 there is not ours.
            if (fromFile) return nullptr;
            return std::make_unique<CSysItemIS2000Mcc>();
        default:
            break;
    }
    if (version < 3) return nullptr;
    if (type == 1) return std::make_unique<CSysItemIS856>();
    if (type == 2 || type == 3) {
        if (version < 4) return nullptr;
        if (type == 2) return std::make_unique<CSysItemPlmn>();
        return std::make_unique<CSysItemMccMnc>();
    }
    if (type >= 4 && type <= 15)
        return std::make_unique<CSysItemSpecial>(static_cast<uint8_t>(type),
                                                 static_cast<unsigned>(lengthOctets));
    return nullptr;
}

}  // namespace

std::unique_ptr<CSysItem> CreateSysItem(int type, int version, int lengthOctets) {
    if (version < 1 || version > 5) version = 5;
    auto item = Make(type, version, lengthOctets);
    if (item) item->SetVersion(version);
    return item;
}

}  // namespace Tarn
