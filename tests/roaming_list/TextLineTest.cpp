#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/RLManagerText.h"
#include "tests/roaming_list/ListSamples.h"

namespace Tarn {
namespace {

using ListSamples::Header;
using ListSamples::kAcqHead;
using ListSamples::kSysHead;
using ListSamples::Text;

// A record line may be spelled with any runs of tabs, blanks around its fields and blank pieces
// between them; a blank inside a field stays part of it.
TEST(TextLine, SpellingsOfOneRecordRead) {
    const std::string canonical =
        Text(3, {"5\tA\tF"}, {"0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1"});
    struct Case {
        const char* line;  // the whole system record line, without its CR LF
        const char* error;  // empty: reads as the canonical record
    };
    const std::vector<Case> cases = {
        {"\t0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1\t", ""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", ""},
        {"   0 \t 0 \t Pref \t New\t More\t0 \t7\tNo\t0\tNo\tNo\t4096\t12\t1", ""},
        {"\t\t0\t\t\t0\tPref\t\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t\t12\t1\t\t\t", ""},
        {"0\t \t0\t   \tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1\t \t  ", ""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1 \r", ""},
        {"0\t0\tPr ef\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", "\"Pr ef\""},
        {"0\t0\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t40 96\t12\t1", "SID \"40 96\""},
        {"0\t0 1\tPref\tNew\tMore\t0\t7\tNo\t0\tNo\tNo\t4096\t12\t1", "type \"0 1\""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const std::string text = Header("IS-683C") + kAcqHead + "\t0\t5\tA\tF\t\r\n" + kSysHead +
                                 c.line + "\r\n";
        const TextDetectResult r = DetectTextVersion(text);
        if (*c.error == '\0') {
            ASSERT_TRUE(r.data) << r.error;
            EXPECT_EQ(RenderRoamingListText(*r.data, 3), canonical);
        } else {
            EXPECT_FALSE(r.data);
            EXPECT_NE(r.error.find(c.error), std::string::npos) << r.error;
        }
    }
}

}  // namespace
}  // namespace Tarn
