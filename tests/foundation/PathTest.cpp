// Path texts: the volume and segments of what is accepted, and the refusal of what is not.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/Path.h"

namespace {

using PathError = System::BasicPath<System::Win32::PathTraits>::Exception;

TEST(Path, AcceptedPathsSplitIntoVolumeAndSegments) {
    const struct {
        std::string text;
        std::string root;
        std::vector<std::string> segments;
    } cases[] = {
        {"C:\\data\\list.prl", "C:\\", {"data", "list.prl"}},
        {"A:", "A:", {}},  // the drive letters from A to Z, in either case
        {"Z:/x", "Z:/", {"x"}},
        {"a:", "a:", {}},
        {"z:", "z:", {}},
        {"\\\\server\\share\\dir\\f", "\\\\server\\share", {"dir", "f"}},
        {"//s/share", "//s/share", {}},
        {"/a//b/", "/", {"a", "b"}},
        {"\\a", "\\", {"a"}},
        {"a\\..\\b\\.", "", {"a", "..", "b", "."}},
        {"a..b\\.hidden\\x..", "", {"a..b", ".hidden", "x.."}},
        {"", "", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const System::Path path(c.text);
        EXPECT_EQ(path.text(), c.text);
        EXPECT_EQ(path.root(), c.root);
        EXPECT_EQ(path.segments(), c.segments);
        EXPECT_EQ(path.isAbsolute(), !c.root.empty());
    }
}

TEST(Path, RefusalsCarryTheMessageAndThePath) {
    const std::string forbidden = R"(paths may not contain any of the following: :*?"<>|\r\n\b\0)";
    const struct {
        std::string text;
        std::string message;
    } cases[] = {
        {"1:\\x", "Malformed Volume"},
        {"@:", "Malformed Volume"},  // the characters either side of the letters
        {"[:", "Malformed Volume"},
        {"`:", "Malformed Volume"},
        {"{:", "Malformed Volume"},
        {"C:x", "Malformed Volume"},
        {"\\\\", "Malformed Volume"},
        {"\\\\server", "Malformed Volume"},
        {"\\\\server\\", "Malformed Volume"},
        {"\\\\\\share", "Malformed Volume"},
        {"a\\...\\b", "... is illegal"},
        {"..x", "..<anything> is illegal"},
        {"C:\\a\\....", "..<anything> is illegal"},
        {"ab:c", forbidden},
        {"C:\\a:b", forbidden},
        {"\\\\ser*ver\\share", forbidden},
        {std::string("a\0b", 3), forbidden},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            System::Path path(c.text);
            ADD_FAILURE() << "accepted";
        } catch (const PathError& e) {
            EXPECT_EQ(e.what(), c.message);
            EXPECT_EQ(e.path(), c.text);
            EXPECT_EQ(e.inPathString(), c.message + ": in path string");
        }
    }
}

}  // namespace
