#include "mmss/Bst3Gpp/Bst3GppTextManager.h"

namespace Tarn::Bst3Gpp {

bool TextManager::Render(const Header& header, const Data& data, std::string& out) {
    out += "\r\n\t\t*********** 3GPP BST Table ***********\r\n\r\n";
    out += "Version : " + header.version + "\r\n";
    out += "Num Ids : " + std::to_string(data.entries.size()) + " \r\n \r\n \r\n";
    for (size_t i = 0; i < data.entries.size(); ++i) {
        const Entry& entry = data.entries[i];
        out += "Id : " + std::to_string(i + 1) + " \r\n";
        out += "Mcc : " + entry.mcc + " \r\n\r\n";
        for (const auto& record : entry.records) out += record->ToText() + "\r\n\r\n";
    }
    return true;
}

}  // namespace Tarn::Bst3Gpp
