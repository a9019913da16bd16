// Path texts as this library accepts them: split into a volume and segments, with the refusals
// users of the library know ("Malformed Volume", "... is illegal", forbidden characters).
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Exception.h"

namespace System {

namespace Win32 {

// Windows path rules, applied on every platform so a path accepted here is accepted wherever the
// files travel. "\" and "/" both separate. The volume (root) of a path is one of:
//   - a drive letter and a colon, alone or followed by a separator: "C:", "C:\data";
//   - a server share, two separators, a server name, a separator and a share name:
//     "\\server\share", "//server/share\dir";
//   - a single leading separator, the root of the current volume: "\data", "/data".
// A path with none of these is relative. A volume that starts like one of the first two but
// does not finish ("1:\x", "C:x", "\\", "\\server", "\\server\") is malformed.
struct PathTraits {
    static bool isSeparator(char c) { return c == '\\' || c == '/'; }
    static bool isDriveLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
    // Colon, asterisk, question mark, double quote, less-than, greater-than, vertical bar,
    // carriage return, line feed, backspace and NUL.
    static constexpr std::string_view forbidden{":*?\"<>|\r\n\b\0", 11};
    static constexpr std::string_view forbiddenMessage =
        "paths may not contain any of the following: :*?\"<>|\\r\\n\\b\\0";
};

}  // namespace Win32

template <class Traits>
class BasicPath {
public:
    // A refused path text: the reason and the text refused.
    class Exception : public Lang::Exception {
    public:
        Exception(std::string message, std::string path, std::string location)
            : Lang::Exception(std::move(message), std::move(location)), path_(std::move(path)) {}
        const std::string& path() const { return path_; }
        // The form used where the refusal is quoted inside a longer report.
        std::string inPathString() const { return std::string(what()) + ": in path string"; }

    private:
        std::string path_;
    };

    BasicPath() = default;
    // Parses and checks `text`; throws Exception when it is refused.
    explicit BasicPath(std::string_view text);

    const std::string& text() const { return text_; }
    // The volume as written ("C:", "C:\", "\\server\share", "\") or empty for a relative path.
    const std::string& root() const { return root_; }
    // The names between separators; empty names (doubled separators) are dropped.
    const std::vector<std::string>& segments() const { return segments_; }
    bool isAbsolute() const { return !root_.empty(); }

private:
    std::string text_;
    std::string root_;
    std::vector<std::string> segments_;
};

using Path = BasicPath<Win32::PathTraits>;

namespace Private {

template <class Traits>
class PathStringParser {
public:
    using Error = typename BasicPath<Traits>::Exception;

    struct Parsed {
        std::string root;
        std::vector<std::string> segments;
    };

    // Finds the volume, then checks every segment in order; the first refusal is thrown.
    static Parsed processPathString(std::string_view text) {
        Parsed parsed;
        const size_t rootLength = findRoot(text, parsed.root);
        // The drive colon is the only colon a path may hold.
        const size_t driveColon = rootLength >= 2 && text[1] == ':' ? 1 : std::string_view::npos;
        for (size_t i = 0; i < rootLength; ++i)
            if (i != driveColon && Traits::forbidden.find(text[i]) != std::string_view::npos)
                LANG_THROW(Error, std::string(Traits::forbiddenMessage), std::string(text));

        size_t begin = rootLength;
        while (begin <= text.size()) {
            size_t end = begin;
            while (end < text.size() && !Traits::isSeparator(text[end])) ++end;
            if (end > begin) {
                checkSegment(text.substr(begin, end - begin), text);
                parsed.segments.emplace_back(text.substr(begin, end - begin));
            }
            begin = end + 1;
        }
        return parsed;
    }

    // Stores the volume in `root` (empty for a relative path) and returns how many characters of
    // `text` it takes; throws "Malformed Volume".
    static size_t findRoot(std::string_view text, std::string& root) {
        root.clear();
        size_t length = 0;
        if (text.size() >= 2 && Traits::isSeparator(text[0]) && Traits::isSeparator(text[1])) {
            size_t server = 2;
            while (server < text.size() && !Traits::isSeparator(text[server])) ++server;
            size_t share = server + 1;
            while (share < text.size() && !Traits::isSeparator(text[share])) ++share;
            if (server == 2 || server >= text.size() || share == server + 1)
                LANG_THROW(Error, "Malformed Volume", std::string(text));
            length = share;
        } else if (text.size() >= 2 && text[1] == ':') {
            if (!Traits::isDriveLetter(text[0]) ||
                (text.size() > 2 && !Traits::isSeparator(text[2])))
                LANG_THROW(Error, "Malformed Volume", std::string(text));
            length = text.size() > 2 ? 3 : 2;
        } else if (!text.empty() && Traits::isSeparator(text[0])) {
            length = 1;
        }
        root.assign(text.substr(0, length));
        return length;
    }

private:
    static void checkSegment(std::string_view segment, std::string_view text) {
        if (segment == "...") LANG_THROW(Error, "... is illegal", std::string(text));
        if (segment.size() > 2 && segment.substr(0, 2) == "..")
            LANG_THROW(Error, "..<anything> is illegal", std::string(text));
        for (char c : segment)
            if (Traits::forbidden.find(c) != std::string_view::npos)
                LANG_THROW(Error, std::string(Traits::forbiddenMessage), std::string(text));
    }
};

}  // namespace Private

template <class Traits>
BasicPath<Traits>::BasicPath(std::string_view text) : text_(text) {
    auto parsed = Private::PathStringParser<Traits>::processPathString(text);
    root_ = std::move(parsed.root);
    segments_ = std::move(parsed.segments);
}

extern template class BasicPath<Win32::PathTraits>;
extern template class Private::PathStringParser<Win32::PathTraits>;

}  // namespace System
