// Telling the forms of a file apart by what it holds rather than by its name: a JSON document,
// the text form of a roaming list, or anything else (taken as binary); and the title of an MMSS
// file's text view, which no reader takes back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {

enum class ContentForm { Binary, Json, RoamingListText };

// A JSON object or array (after any UTF-8 BOM and white space) is Json; a text whose first
// non-blank line is the roaming list banner is RoamingListText; everything else is Binary. Only
// the first few hundred bytes are looked at.
ContentForm SniffContent(const std::vector<uint8_t>& bytes);
// The title inside the banner an MMSS text view starts with ("*********** MSPL Table
// ***********" gives "MSPL Table"); empty when the bytes do not start with one.
std::string MmssTextTitle(const std::vector<uint8_t>& bytes);

}  // namespace Tarn
