// The exception classes: their texts, the errno texts users know, the location of a throw and the
// trace record it leaves.
#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/File.h"
#include "foundation/Trace.h"

namespace {

TEST(ErrnoException, JoinsContextAndTheErrnoText) {
    const struct {
        int errnum;
        const char* text;
    } cases[] = {
        {0, "No Error"},
        {EDOM, "Math argument."},
        {EILSEQ, "Illegal sequence of bytes (for example, in an MBCS string)."},
        {1, "Unknown Errno"},  // numbers without a text of their own
        {-1, "Unknown Errno"},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(Lang::errnoText(c.errnum), c.text) << c.errnum;
        const Lang::ErrnoException e("fwrite failed", c.errnum);
        EXPECT_EQ(e.what(), std::string("fwrite failed: ") + c.text);
        EXPECT_EQ(e.errnum(), c.errnum);
        EXPECT_STREQ(e.location(), "Unknown Location");
    }
    EXPECT_STREQ(Lang::ErrnoException("x", ENOENT, "File(9) : f").location(), "File(9) : f");
}

TEST(Location, QualifiedFunctionNameFromDecoratedSignatures) {
    const struct {
        const char* pretty;
        const char* name;
    } cases[] = {
        {"std::string System::Io::buildModeString(const std::filesystem::__cxx11::path&, int, unsigned int, int)",
         "System::Io::buildModeString"},
        {"virtual const char* Lang::Exception::what() const", "Lang::Exception::what"},
        {"const char *Lang::Exception::what() const", "Lang::Exception::what"},
        {"std::map<int, std::basic_string<char> > A::B::f(int)", "A::B::f"},
        {"T* Rc::Pointer<T>::operator->() const [with T = System::Io::File]", "Rc::Pointer<T>::operator->"},
        {"bool Less::operator()(int, int) const", "Less::operator()"},
        {"bool operator<(const A&, const A&)", "operator<"},
        {"Widget::operator bool() const", "Widget::operator bool"},
        // "operator" inside a longer name is no operator.
        {"void Cooperator::(anonymous namespace)::run()", "Cooperator::(anonymous namespace)::run"},
        {"void operatorKit::(anonymous namespace)::run()", "operatorKit::(anonymous namespace)::run"},
        {"void {anonymous}::helper()", "{anonymous}::helper"},
        {"void (anonymous namespace)::helper()", "(anonymous namespace)::helper"},
        {"System::Io::File::open(const path&, int)::<lambda(int)>", "System::Io::File::open"},
        {"void f(T) [with T = int]", "f"},
        {"main", "main"},
    };
    for (const auto& c : cases) EXPECT_EQ(Lang::qualifiedFunctionName(c.pretty), c.name) << c.pretty;
}

TEST(Location, SourceNameIsRelativeToTheLibraryWithoutExtension) {
    EXPECT_EQ(Lang::sourceName(__FILE__), "foundation/ExceptionTest");
    EXPECT_EQ(Lang::sourceName("/somewhere/else/File.cpp"), "File");
    EXPECT_EQ(Lang::sourceName("C:\\src\\Io\\File.cpp"), "File");
    EXPECT_EQ(Lang::sourceName("noext"), "noext");
    const std::string here = __FILE__;  // a dot in a folder name is no extension
    EXPECT_EQ(Lang::sourceName(here.substr(0, here.rfind('/') + 1) + "a.b/noext"), "foundation/a.b/noext");
    EXPECT_EQ(Lang::makeLocation("/x/File.cpp", 122, "std::string System::Io::buildModeString(int)"),
              "File(122) : System::Io::buildModeString");
}

TEST(ThrowConvention, TracesLocationAndExpressionBeforeThrowing) {
    std::vector<std::string> records;
    {
        Lang::ScopedTraceSink sink([&](std::string_view r) { records.emplace_back(r); });
        std::string location;
        try {
            System::Io::buildModeString("x", 9, 0, System::Io::Disposition::OpenAlways);
            FAIL() << "no throw";
        } catch (const Lang::Exception& e) {
            EXPECT_STREQ(e.what(), "Illegal Open Mode");
            location = e.location();
        }
        EXPECT_TRUE(std::regex_match(location, std::regex(R"(File\(\d+\) : System::Io::buildModeString)"))) << location;
        const auto throwErrno = [] { LANG_THROW(Lang::ErrnoException, "fwrite failed", EBADF); };
        EXPECT_THROW(throwErrno(), Lang::ErrnoException);
        ASSERT_EQ(records.size(), 2u);
        EXPECT_EQ(records[0], location + ": Throwing Lang::Exception(\"Illegal Open Mode\")\r\n");
        EXPECT_NE(records[1].find(": Throwing Lang::ErrnoException(\"fwrite failed\", EBADF)\r\n"), std::string::npos)
            << records[1];
    }
    // Without a sink the records are dropped, and a sink that throws does not replace the exception.
    Lang::ScopedTraceSink none(nullptr);
    EXPECT_THROW(System::Io::buildModeString("x", 0, 0, 0), Lang::Exception);
    Lang::ScopedTraceSink failing([](std::string_view) { throw std::runtime_error("sink"); });
    EXPECT_THROW(System::Io::buildModeString("x", 0, 0, 0), Lang::Exception);
    EXPECT_EQ(records.size(), 2u);
}

}  // namespace
