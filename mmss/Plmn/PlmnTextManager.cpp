#include "mmss/Plmn/PlmnTextManager.h"

namespace Tarn::Plmn {

bool TextManager::Render(const Data& data, std::string& out) {
    out += "\r\n\t\t*********** PLMN Table ***********\r\n\r\n";
    const std::string kind = data.KindName();
    if (kind.empty()) return false;
    out += "FileType : " + kind + " \r\n";
    if (data.records.IsEmpty()) return true;
    out += "Num Records : " + std::to_string(data.records.GetSize()) + " \r\n\r\n";
    // EHPLMN lines have no access columns although the column line names them.
    out += "Mcc\tMnc\tUmts\tLte\tGsm \r\n";
    for (const auto& record : data.records) out += record->ToText();
    return true;
}

}  // namespace Tarn::Plmn
