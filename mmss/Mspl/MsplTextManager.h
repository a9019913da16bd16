// Mspl::TextManager: the MSPL file as the editor's text view shows it.
#pragma once

#include <string>

#include "mmss/Mspl/MsplData.h"

namespace Tarn::Mspl {

class TextManager {
public:
    // Appends the text to `out`. Renders nothing when the revision or the version is empty, and
    // stops after the "Num Ids" line when there is no identifier; both report false.
    static bool Render(const Header& header, const Data& data, std::string& out);
};

}  // namespace Tarn::Mspl
