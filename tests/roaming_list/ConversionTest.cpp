#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/Conversion.h"
#include "roaming_list/RLData.h"

namespace Tarn {
namespace {

TEST(ConvertRoamingList, HeaderAcrossTheShortAndLongForms) {
    CRLData source;
    CPropData& p = source.GetProperties();
    p.prefListId = 321;
    p.prefOnly = true;
    p.defRoamInd = 7;
    p.ssprPRev = 3;
    p.reserved = 0x15;
    p.numCommonSubnet = 4;

    struct Case {
        int from, to;
        int sspr, reserved;
        std::vector<std::string> changes;
    } cases[] = {
        {5, 3, 3, 0x15, {}},
        {4, 2, 0, 0, {"header: reserved bits 21 dropped: IS-683B cannot carry them"}},
        {1, 5, 3, 0x15, {}},  // a version 1 list holds no reserved bits to lose
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.from) + " -> " + std::to_string(c.to));
        ConversionResult r = ConvertRoamingList(source, c.from, c.to);
        ASSERT_TRUE(r.data);
        const CPropData& q = r.data->GetProperties();
        EXPECT_EQ(q.prefListId, 321);
        EXPECT_TRUE(q.prefOnly);
        EXPECT_EQ(q.defRoamInd, 7);
        EXPECT_EQ(q.ssprPRev, c.sspr);
        EXPECT_EQ(q.reserved, c.reserved);
        EXPECT_EQ(q.numCommonSubnet, 0);
        EXPECT_EQ(r.changes, c.changes);
    }
}

}  // namespace
}  // namespace Tarn
