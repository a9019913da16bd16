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
        {"c:/data", "c:/", {"data"}},
        {"C:", "C:", {}},
        {"\\\\server\\share\\dir\\f", "\\\\server\\share", {"dir", "f"}},
        {"//server/share", "//server/share", {}},
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
        {"C:x", "Malformed Volume"},
        {"\\\\", "Malformed Volume"},
        {"\\\\server", "Malformed Volume"},
        {"\\\\server\\", "Malformed Volume"},
        {"\\\\\\share", "Malformed Volume"},
        {"a\\...\\b", "... is illegal"},
        {"...", "... is illegal"},
        {"..x", "..<anything> is illegal"},
        {"C:\\a\\....", "..<anything> is illegal"},
        {"ab:c", forbidden},
        {"C:\\a:b", forbidden},
        {"\\\\ser*ver\\share", forbidden},
        {"a*", forbidden},
        {"a?", forbidden},
        {"a\"b", forbidden},
        {"<", forbidden},
        {">", forbidden},
        {"a|b", forbidden},
        {"a\rb", forbidden},
        {"a\nb", forbidden},
        {"a\bb", forbidden},
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

TEST(Path, FindRootReportsHowMuchIsVolume) {
    using Parser = System::Private::PathStringParser<System::Win32::PathTraits>;
    std::string root;
    EXPECT_EQ(Parser::findRoot("\\\\srv\\sh\\x", root), 8u);
    EXPECT_EQ(root, "\\\\srv\\sh");
    EXPECT_EQ(Parser::findRoot("rel\\x", root), 0u);
    EXPECT_EQ(root, "");
    EXPECT_THROW(Parser::findRoot("\\\\srv", root), Lang::Exception);
}

}  // namespace
