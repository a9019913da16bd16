// Bst3Gpp::TextManager: the 3GPP BST file as the editor's text view shows it.
//
// Each entry is headed "Id : n" with its tab number (from 1) and "Mcc : " with its MCC (empty
// when it has none); its records follow, each record's block closed by a blank line.
#pragma once

#include <string>

#include "mmss/Bst3Gpp/Bst3GppData.h"

namespace Tarn::Bst3Gpp {

class TextManager {
public:
    static bool Render(const Header& header, const Data& data, std::string& out);
};

}  // namespace Tarn::Bst3Gpp
