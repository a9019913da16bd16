#include "mmss/Mlpl/MlplTextManager.h"

namespace Tarn::Mlpl {

bool TextManager::Render(const Header& header, const Data& data, std::string& out) {
    out += "\r\n\t\t*********** MLPL Table ***********\r\n\r\n";
    out += "RLType : " + header.revision + "\r\n";
    out += "MlplVersion : " + header.version + "\r\n";
    out += "MlplId : " + header.id + "\r\n";
    out += "Num Ids : " + std::to_string(data.records.size()) + " \r\n \r\n";
    for (size_t i = 0; i < data.records.size(); ++i) {
        const Location& record = data.records[i];
        out += "\r\n\r\n Id : " + std::to_string(i + 1) + " \r\n";
        out += "Mcc : " + record.mcc + " \r\n";
        out += "Mnc : " + record.mnc + " \r\n";
        out += "Mspl Index : " + record.msplIndex + " \r\n";
        out += "Num Records : " + std::to_string(record.tags.GetSize()) + " \r\n\r\n";
        out += "SysType\tDataCol1\tDataCol2\tDataCol3 \r\n";
        for (const auto& tag : record.tags) out += tag->ToText();
    }
    return true;
}

}  // namespace Tarn::Mlpl
