#include "mmss/TechOrder/TechOrderTextManager.h"

namespace Tarn::TechOrder {

bool TextManager::Render(const Header& header, const Data& data, std::string& out) {
    out += "\r\n\t\t*********** Tech Order Table ***********\r\n\r\n";
    out += "Version : " + header.version + "\r\n";
    if (data.records.IsEmpty()) return true;
    out += "Num Records : " + std::to_string(data.records.GetSize()) + " \r\n\r\n";
    out += "RatId \r\n";
    for (const auto& record : data.records) out += record->ToText();
    return true;
}

}  // namespace Tarn::TechOrder
