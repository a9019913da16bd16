#include "formats/ContentSniff.h"

#include <algorithm>
#include <string_view>

namespace Tarn {

ContentForm SniffContent(const std::vector<uint8_t>& bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                          std::min<size_t>(bytes.size(), 512));
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return ContentForm::Binary;
    // A binary list starts with its 16-bit size, so a list of 31,488 bytes or more may start
    // with '{' too: callers that get Json and fail to parse it try the binary form as well.
    if (text[first] == '{' || text[first] == '[') return ContentForm::Json;
    // The banner every rendered list starts with; binary bytes never spell it out this early.
    if (text.substr(first, 60).find("ROAMING LIST") != std::string_view::npos)
        return ContentForm::RoamingListText;
    return ContentForm::Binary;
}

}  // namespace Tarn
