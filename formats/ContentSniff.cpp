#include "formats/ContentSniff.h"

#include <algorithm>
#include <string_view>

namespace Tarn {
namespace {

// The first few hundred bytes from the first non-blank character on (after any UTF-8 BOM);
// empty when they are all blank.
std::string_view Head(const std::vector<uint8_t>& bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                          std::min<size_t>(bytes.size(), 512));
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    const size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

constexpr std::string_view kMmssBanner = "***********";

}  // namespace

ContentForm SniffContent(const std::vector<uint8_t>& bytes) {
    const std::string_view text = Head(bytes);
    if (text.empty()) return ContentForm::Binary;
    // A binary list starts with its 16-bit size, so a list of 31,488 bytes or more may start
    // with '{' too: callers that get Json and fail to parse it try the binary form as well.
    if (text[0] == '{' || text[0] == '[') return ContentForm::Json;
    // The banner every rendered list starts with; binary bytes never spell it out this early.
    if (text.substr(0, 60).find("ROAMING LIST") != std::string_view::npos)
        return ContentForm::RoamingListText;
    return ContentForm::Binary;
}

std::string MmssTextTitle(const std::vector<uint8_t>& bytes) {
    std::string_view text = Head(bytes);
    if (text.substr(0, kMmssBanner.size()) != kMmssBanner) return {};
    text = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(kMmssBanner.size());
    const size_t close = text.find(kMmssBanner);
    if (close == std::string_view::npos) return {};
    text = text.substr(0, close);
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const size_t last = text.find_last_not_of(' ');
    const std::string_view title = text.substr(first, last - first + 1);
    if (title.size() < 6 || title.substr(title.size() - 6) != " Table") return {};
    return std::string(title);
}

}  // namespace Tarn
