// Mlpl::TextManager: the MLPL file as the editor's text view shows it.
#pragma once

#include <string>

#include "mmss/Mlpl/MlplData.h"

namespace Tarn::Mlpl {

class TextManager {
public:
    // Appends the text to `out`; each MLPL record is headed "Id : n" with its tab number (from 1).
    static bool Render(const Header& header, const Data& data, std::string& out);
};

}  // namespace Tarn::Mlpl
