#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/File.h"
#include "foundation/Trace.h"

namespace {

TEST(ErrnoText, KeepsTheLibraryTextsWordForWord) {
    const struct {
        int errnum;
        const char* text;
    } cases[] = {
        {0, "No Error"},
        {E2BIG, "Argument list too long."},
        {ECHILD, "No spawned processes."},
        {EEXIST,
         "Files exist. An attempt has been made to create a file that already exists. For "
         "example, the _O_CREAT and _O_EXCL flags are specified in an _open call, but the named "
         "file already exists."},
        {EDEADLK,
         "Resource deadlock would occur. The argument to a math function is not in the domain of "
         "the function."},
        {EILSEQ, "Illegal sequence of bytes (for example, in an MBCS string)."},
        {EDOM, "Math argument."},
        {1, "Unknown Errno"},
        {-1, "Unknown Errno"},
        {100000, "Unknown Errno"},
    };
    for (const auto& c : cases) EXPECT_STREQ(Lang::errnoText(c.errnum), c.text) << c.errnum;
    EXPECT_NE(std::string(Lang::errnoText(ENOMEM)).find("for the attempted operator."),
              std::string::npos);
}

TEST(ErrnoException, JoinsContextAndTextAndStartsAtTheDefaultLocation) {
    Lang::ErrnoException plain("fwrite failed", 1);
    EXPECT_STREQ(plain.what(), "fwrite failed: Unknown Errno");
    EXPECT_EQ(plain.errnum(), 1);
    EXPECT_STREQ(plain.location(), "Unknown Location");

    Lang::ErrnoException placed("Failed to Open File \"x\"", ENOENT, "File(9) : f");
    EXPECT_EQ(std::string(placed.what())
                  .rfind("Failed to Open File \"x\": No such file or directory.", 0),
              0u);
    EXPECT_STREQ(placed.location(), "File(9) : f");
}

TEST(LangException, MessageRules) {
    Lang::Exception e("first", "here");
    EXPECT_STREQ(e.what(), "first");
    EXPECT_STREQ(e.location(), "here");
    e.setMessage("");
    EXPECT_STREQ(e.what(), "(null message)");
    e.setMessage("second");
    e.setLocation("there");
    EXPECT_STREQ(e.what(), "second");
    EXPECT_STREQ(e.location(), "there");
    // Only setMessage substitutes; a constructed empty message stays empty.
    EXPECT_STREQ(Lang::Exception("", "x").what(), "");
    EXPECT_EQ(&Lang::Exception::defaultLocation(), &Lang::Exception::defaultLocation());
}

TEST(LangException, CopiesOfDerivedExceptionsKeepMessageAndLocation) {
    const Lang::ErrnoException errnoError("ctx", 1, "loc");
    const Lang::Exception copy(errnoError);
    EXPECT_STREQ(copy.what(), "ctx: Unknown Errno");
    EXPECT_STREQ(copy.location(), "loc");

    Lang::Exception assigned("x", "y");
    assigned = errnoError;
    EXPECT_STREQ(assigned.what(), "ctx: Unknown Errno");
    EXPECT_STREQ(assigned.location(), "loc");
}

TEST(Win32Exception, HasNoSystemTextAndNeverThrows) {
    const Win32::Exception e(0x80070002u);
    EXPECT_EQ(e.code(), 0x80070002u);
    EXPECT_TRUE(noexcept(e.what()));
    EXPECT_STREQ(e.what(), "");
    EXPECT_STREQ(e.what(), "");
    EXPECT_STREQ(e.location(), "Unknown Location");
    const Lang::Exception copy(e);
    EXPECT_STREQ(copy.what(), "");
}

namespace Probe {
class Widget {};
enum Colour { Red };
}  // namespace Probe

TEST(NullPointerException, NamesThePointeeType) {
    EXPECT_STREQ(Lang::NullPointerException(typeid(System::Io::File), "l").what(),
                 "NULL class System::Io::File pointer");
    EXPECT_STREQ(Lang::NullPointerException(typeid(Probe::Widget), "l").what(),
                 "NULL class (anonymous namespace)::Probe::Widget pointer");
    EXPECT_STREQ(Lang::NullPointerException(typeid(Probe::Colour), "l").what(),
                 "NULL enum (anonymous namespace)::Probe::Colour pointer");
    EXPECT_STREQ(Lang::NullPointerException(typeid(int), "l").what(), "NULL int pointer");
}

TEST(Location, QualifiedFunctionNameFromDecoratedSignatures) {
    const struct {
        const char* pretty;
        const char* name;
    } cases[] = {
        {"std::string System::Io::buildModeString(const std::filesystem::__cxx11::path&, int, "
         "unsigned int, int)",
         "System::Io::buildModeString"},
        {"virtual const char* Lang::Exception::what() const", "Lang::Exception::what"},
        {"const char *Lang::Exception::what() const", "Lang::Exception::what"},
        {"std::map<int, std::basic_string<char> > A::B::f(int)", "A::B::f"},
        {"T* Rc::Pointer<T>::operator->() const [with T = System::Io::File]",
         "Rc::Pointer<T>::operator->"},
        {"bool Less::operator()(int, int) const", "Less::operator()"},
        {"bool operator<(const A&, const A&)", "operator<"},
        {"Widget::operator bool() const", "Widget::operator bool"},
        {"void {anonymous}::helper()", "{anonymous}::helper"},
        {"void (anonymous namespace)::helper()", "(anonymous namespace)::helper"},
        {"System::Io::File::open(const path&, int)::<lambda(int)>", "System::Io::File::open"},
        {"void f(T) [with T = int]", "f"},
        {"main", "main"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Lang::qualifiedFunctionName(c.pretty), c.name) << c.pretty;
}

TEST(Location, SourceNameIsRelativeToTheLibraryWithoutExtension) {
    EXPECT_EQ(Lang::sourceName(__FILE__), "foundation/ExceptionTest");
    EXPECT_EQ(Lang::sourceName("/somewhere/else/File.cpp"), "File");
    EXPECT_EQ(Lang::sourceName("C:\\src\\Io\\File.cpp"), "File");
    EXPECT_EQ(Lang::sourceName("noext"), "noext");
    EXPECT_EQ(
        Lang::makeLocation("/x/File.cpp", 122, "std::string System::Io::buildModeString(int)"),
        "File(122) : System::Io::buildModeString");
}

TEST(ThrowConvention, TracesLocationAndExpressionBeforeThrowing) {
    std::vector<std::string> records;
    Lang::ScopedTraceSink sink([&](std::string_view r) { records.emplace_back(r); });

    std::string location;
    try {
        System::Io::buildModeString("x", 9, 0, System::Io::Disposition::OpenAlways);
        FAIL() << "no throw";
    } catch (const Lang::Exception& e) {
        EXPECT_STREQ(e.what(), "Illegal Open Mode");
        location = e.location();
    }
    EXPECT_TRUE(
        std::regex_match(location, std::regex(R"(File\(\d+\) : System::Io::buildModeString)")))
        << location;
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0], location + ": Throwing Lang::Exception(\"Illegal Open Mode\")\r\n");

    records.clear();
    const auto throwErrno = [] { LANG_THROW(Lang::ErrnoException, "fwrite failed", EBADF); };
    EXPECT_THROW(throwErrno(), Lang::ErrnoException);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_NE(records[0].find(": Throwing Lang::ErrnoException(\"fwrite failed\", EBADF)\r\n"),
              std::string::npos)
        << records[0];
}

TEST(ThrowConvention, WithoutASinkRecordsAreDropped) {
    Lang::ScopedTraceSink none(nullptr);
    EXPECT_THROW(System::Io::buildModeString("x", 0, 0, 0), Lang::Exception);
    // A sink that throws must not replace the exception on its way out.
    Lang::ScopedTraceSink failing([](std::string_view) { throw std::runtime_error("sink"); });
    EXPECT_THROW(System::Io::buildModeString("x", 0, 0, 0), Lang::Exception);
}

}  // namespace
