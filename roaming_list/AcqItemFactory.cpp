#include "roaming_list/AcqItem.h"
#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemGeneric.h"
#include "roaming_list/AcqItemGwl.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/AcqItemSpecial.h"

namespace Tarn {
namespace {

bool Offered(int code, int version) {
    if (code == kAcqTypeSpecial) return version >= 3;
    switch (version) {
        case 1:
            return code >= 1 && code <= 6;
        case 2:
            return code >= 1 && code <= 9;
        case 3:
        case 4:
            return (code >= 1 && code <= 13) || code == 16;
        default:
            return code >= 1 && code <= 16;
    }
}

template <typename T>
std::unique_ptr<CAcqItem> ChannelList() {
    auto item = std::make_unique<T>();
    item->SetLayout(ChannelListLayout{5, 11, 32});
    return item;
}

}  // namespace

std::unique_ptr<CAcqItem> CreateAcqItem(int code, int version) {
    if (version < 1 || version > 5) version = 5;
    if (!Offered(code, version)) return nullptr;
    switch (code) {
        case 1:
        case 4: {
            std::unique_ptr<CAcqItemCellularAnalog> item;
            if (code == 1)
                item = std::make_unique<CAcqItemCellularAnalog>();
            else
                item = std::make_unique<CAcqItemCellularGeneric>();
            item->SetSystemWidth(2);
            return item;
        }
        case 2:
        case 7: {
            std::unique_ptr<CAcqItemCellularCdmaStandard> item;
            if (code == 2)
                item = std::make_unique<CAcqItemCellularCdmaStandard>();
            else
                item = std::make_unique<CAcqItemJtacsCdmaStandard>();
            item->SetWidths(2, 2);
            return item;
        }
        case 3:
            return ChannelList<CAcqItemCellularCdmaCustom>();
        case 5: {
            auto item = std::make_unique<CAcqItemPcsCdmaBlocks>();
            item->SetLayout(BlockListLayout{3, 3, 6});
            return item;
        }
        case 6:
            return ChannelList<CAcqItemPcsCdmaChannels>();
        case 8:
            return ChannelList<CAcqItemJtacsCdmaCustom>();
        case 9:
            return ChannelList<CAcqItem2GHzBand>();
        case 10:
        case 11: {
            std::unique_ptr<CAcqItemGenericCdma> item;
            if (code == 10)
                item = std::make_unique<CAcqItemGenericCdma>();
            else
                item = std::make_unique<CAcqItemGenericHdr>();
            item->SetLayout(BandChannelLayout{5, 11, 128});
            return item;
        }
        case 12: {
            auto item = std::make_unique<CAcqItemGenericGsm>();
            item->SetLayout(BandListLayout{5, 5, 32});
            return item;
        }
        case 13: {
            auto item = std::make_unique<CAcqItemGenericUmts>();
            item->SetLayout(UmtsLayout{5, 5, 1, 14, 50});
            return item;
        }
        case 14: {
            auto item = std::make_unique<AcqItem3GPPGeneric>();
            item->SetLayout(8, ThreeGppGenericLayout());
            return item;
        }
        case 15: {
            auto item = std::make_unique<AcqItemGenericGwl>();
            item->SetLayout(GwlGenericLayout());
            return item;
        }
        case 16: {
            auto item = std::make_unique<CAcqItemGenericUmb>();
            item->SetLayout(UmbLayout{5, 5, 11, 3, 10, 3, 8, 16});
            return item;
        }
        case kAcqTypeSpecial: {
            auto item = std::make_unique<CAcqItemSpecial>();
            item->SetLengthWidth(8);
            return item;
        }
        default:
            return nullptr;
    }
}

}  // namespace Tarn
