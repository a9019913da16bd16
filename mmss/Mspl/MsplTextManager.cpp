#include "mmss/Mspl/MsplTextManager.h"

#include "mmss/MmssFrame.h"

namespace Tarn::Mspl {

bool TextManager::Render(const Header& header, const Data& data, std::string& out) {
    if (header.revision.empty() || header.version.empty()) return false;
    out += "\r\n\t\t*********** MSPL Table ***********\r\n\r\n";
    out += "RLType : " + header.revision + "\r\n";
    out += "MsplVersion : " + header.version + "\r\n";
    out += "Num Ids : " + std::to_string(data.ids.size()) + " \r\n \r\n";
    if (data.ids.empty()) return false;
    for (size_t i = 0; i < data.ids.size() && i < data.lists.size(); ++i) {
        const CRLItemList& list = data.lists[i];
        out += "\r\n\r\n Id : " + Mmss::Decimal(Mmss::ParseDecimal(data.ids[i])) + " \r\n";
        out += "Num Records : " + std::to_string(list.GetSize()) + " \r\n\r\n";
        out += "SysType\tPriorityClass\tSysPri\tSearchTime\tNetworkCap \r\n";
        for (const auto& record : list) out += record->ToText();
    }
    return true;
}

}  // namespace Tarn::Mspl
