#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/SharedLibrary.h"

namespace Tarn::Analysis {
namespace {

// A library that cannot be had is a one-line reason naming it, never a crash; one that can is
// opened once and its symbols are the real ones.
TEST(SharedLibrary, ResolvesOrSaysWhyNot) {
    using Strlen = size_t (*)(const char*);
    struct Case {
        const char* soname;
        const char* symbol;
        const char* reasonHas;  // empty: resolves
    };
    const std::vector<Case> cases = {
        {"libc.so.6", "strlen", ""},
        {"libc.so.6", "strlen", ""},  // the second time from the opened library
        {"libtarn-no-such-library.so.9", "strlen", "libtarn-no-such-library.so.9 cannot be loaded"},
        {"libc.so.6", "tarn_no_such_symbol", "libc.so.6 has no tarn_no_such_symbol"},
    };
    for (const Case& c : cases) {
        Strlen function = nullptr;
        std::string error;
        const bool resolved = SharedLibrary::Resolve(c.soname, {Bind(c.symbol, function)}, error);
        if (*c.reasonHas == '\0') {
            ASSERT_TRUE(resolved) << error;
            EXPECT_EQ(function("roaming"), 7u);
        } else {
            EXPECT_FALSE(resolved);
            EXPECT_NE(error.find(c.reasonHas), std::string::npos) << error;
            EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        }
    }
}

}  // namespace
}  // namespace Tarn::Analysis
