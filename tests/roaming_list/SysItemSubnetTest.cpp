#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/SysItemSubnet.h"

namespace Tarn {
namespace {

TEST(SysItemSubnet, TextIsParsedMaskedAndShownInItsShortestForm) {
    using Parse = CSubnetId::Parse;
    struct Case {
        const char* text;
        Parse result;
        const char* shown;  // for Ok
    };
    const std::vector<Case> cases = {
        {"2001:db8::1/64", Parse::Ok, "2001:db8::/64"},
        {"2001:0DB8:0000:0000:0000:0000:0000:0000/32", Parse::Ok, "2001:db8::/32"},
        {"::/0", Parse::Ok, "::/0"},
        {"1:0:0:2:0:0:0:3/127", Parse::Ok, "1:0:0:2::2/127"},
        {"1:0:0:1:0:0:1:0/112", Parse::Ok, "1::1:0:0:1:0/112"},
        {"0:1:2:3:4:5:6:0/127", Parse::Ok, "0:1:2:3:4:5:6:0/127"},
        {"::ffff:1.2.3.4/127", Parse::Ok, "::ffff:102:304/127"},
        {"fe80::/10", Parse::Ok, "fe80::/10"},
        {"ffff:ffff::/9", Parse::Ok, "ff80::/9"},
        {"1:2:3:4:5:6:7:8:9/16", Parse::BadAddress, ""},
        {"1:2:3:4:5:6:7/16", Parse::BadAddress, ""},
        {"1:2:3:4::5:6:7:8/16", Parse::BadAddress, ""},
        {"1::2::3/8", Parse::BadAddress, ""},
        {":1::/8", Parse::BadAddress, ""},
        {"12345::/16", Parse::BadAddress, ""},
        {"1.2.3.4::/16", Parse::BadAddress, ""},
        {"::1.2.3.256/16", Parse::BadAddress, ""},
        {"/8", Parse::BadAddress, ""},
        {"fe80::", Parse::BadLength, ""},
        {"fe80::/", Parse::BadLength, ""},
        {"fe80::/1a", Parse::BadLength, ""},
        {"fe80::/128", Parse::LengthTooLarge, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        CSubnetId subnet;
        ASSERT_EQ(CSubnetId::FromText(c.text, subnet), c.result);
        if (c.result != Parse::Ok) continue;
        EXPECT_EQ(subnet.ToText(), c.shown);
        CSubnetId again;
        ASSERT_EQ(CSubnetId::FromText(subnet.ToText(), again), Parse::Ok);
        EXPECT_EQ(again, subnet);
    }
}

}  // namespace
}  // namespace Tarn
