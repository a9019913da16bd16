// Plmn::TextManager: a PLMN list as the editor's text view shows it.
#pragma once

#include <string>

#include "mmss/Plmn/PlmnData.h"

namespace Tarn::Plmn {

class TextManager {
public:
    // Appends the text to `out`; stops after the banner (false) when the list kind is not set.
    // An empty list renders no record part.
    static bool Render(const Data& data, std::string& out);
};

}  // namespace Tarn::Plmn
