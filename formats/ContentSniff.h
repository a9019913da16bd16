// Telling the forms of a file apart by what it holds rather than by its name: a JSON document,
// the text form of a roaming list, or anything else (taken as binary).
#pragma once

#include <cstdint>
#include <vector>

namespace Tarn {

enum class ContentForm { Binary, Json, RoamingListText };

// A JSON object or array (after any UTF-8 BOM and white space) is Json; a text whose first
// non-blank line is the roaming list banner is RoamingListText; everything else is Binary. Only
// the first few hundred bytes are looked at.
ContentForm SniffContent(const std::vector<uint8_t>& bytes);

}  // namespace Tarn
