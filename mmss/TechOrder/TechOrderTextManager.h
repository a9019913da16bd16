// TechOrder::TextManager: the technology order table as the editor's text view shows it.
#pragma once

#include <string>

#include "mmss/TechOrder/TechOrderData.h"

namespace Tarn::TechOrder {

class TextManager {
public:
    // Appends the text to `out`; with no entry only the banner and the version are rendered.
    static bool Render(const Header& header, const Data& data, std::string& out);
};

}  // namespace Tarn::TechOrder
