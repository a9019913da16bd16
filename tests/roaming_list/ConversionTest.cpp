// Going up and back down is pinned by the golden lists of every version; here, what going down
// drops and how it says so.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/Conversion.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/Validation.h"
#include "tests/roaming_list/ListSamples.h"

namespace Tarn {
namespace {

const std::string kNoAssn = "\tNo\t0\tNo\tNo\t";

TEST(ConvertRoamingList, GoingDownDropsWhatTheTargetCannotCarryAndSaysSo) {
    auto source =
        ListSamples::List(5,
                          {"1\tBoth", "10\t1\t25", "15\t3\t1\t8\tUARFCN_PRESENT\t512",
                           "11\t17\t1459", "3\t25\t799", "5\tA\tF", "253\t2"},
                          {"0\tPref\tNew\tMore\t0\t7" + kNoAssn + "4096\t12\t1",
                           "0\tPref\tNew\tMore\t1\t7" + kNoAssn + "4097\t12\t1",
                           "0\tPref\tSame\tMore\t4\t7" + kNoAssn + "4098\t12\t1",
                           "2\tPref\tSame\tSame\t2\t7" + kNoAssn + "Select Mode\tAny PLMNs",
                           "1\tPref\tNew\tSame\t3\t7" + kNoAssn + "a00::/7",
                           "0\tPref\tNew\tMore\t5\t7\tYes\t9\tYes\tNo\t4099\t12\t1",
                           "14\tPref\tSame\tSame\t0\t7" + kNoAssn + "310\t26",
                           "3\tPref\tSame\tSame\t4\t7" + kNoAssn + "2\t310\t26\t1\t5\t6",
                           "0\tNeg\tSame\tMore\t0\t0" + kNoAssn + "4100\t12\t1",
                           "7\tPref\tNew\tSame\t6\t0" + kNoAssn + "5\t81245670"});
    source->GetProperties().reserved = 0x15;
    ConversionResult r = ConvertRoamingList(*source, 5, 2);
    const std::vector<std::string> expected = {
        "header: reserved bits 21 dropped: IS-683B cannot carry them",
        "acquisition record 1 (CDMA Generic) dropped: IS-683B cannot carry it",
        "acquisition record 2 (GWL Generic) dropped: IS-683B cannot carry it",
        "acquisition record 3 (HDR Generic) dropped: IS-683B cannot carry it",
        "acquisition record 6 (type 253) dropped: IS-683B cannot carry it",
        "system record 1 (95(A,B)/1x) dropped: its acquisition record 1 was dropped",
        "system record 2 (95(A,B)/1x): acquisition index 4 -> 1",
        "system record 2 (95(A,B)/1x): geography Same -> New (the record that began its region "
        "was dropped)",
        "system record 3 (PLMN-based) dropped: its acquisition record 2 was dropped",
        "system record 4 (IS-856) dropped: its acquisition record 3 was dropped",
        "system record 5 (95(A,B)/1x): assnIncluded Yes dropped in IS-683B",
        "system record 5 (95(A,B)/1x): assnTag 9 dropped in IS-683B",
        "system record 5 (95(A,B)/1x): pnAssn Yes dropped in IS-683B",
        "system record 5 (95(A,B)/1x): acquisition index 5 -> 2",
        "system record 7 (MCC-MNC-based) dropped: IS-683B cannot carry it",
        // The short form has a priority for preferred records only.
        "system record 8 (95(A,B)/1x): priority More -> Same in IS-683B",
        "system record 9 (type 7) dropped: its acquisition record 6 was dropped",
    };
    EXPECT_EQ(r.changes, expected);
    ASSERT_TRUE(r.data);
    EXPECT_EQ(r.data->GetProperties().reserved, 0);
    EXPECT_TRUE(CheckRoamingList(*r.data, 2).Ok());
    EXPECT_EQ(RenderRoamingListText(*r.data, 2),
              ListSamples::Text(
                  2, {"1\tBoth", "3\t25\t799", "5\tA\tF"},
                  {"0\tPref\tNew\tMore\t0\t7\t4096\t12\t1", "0\tPref\tNew\tMore\t1\t7\t4098\t12\t1",
                   "0\tPref\tNew\tMore\t2\t7\t4099\t12\t1", "14\tPref\tSame\tSame\t0\t7\t310\t26",
                   "0\tNeg\tSame\tSame\t0\t0\t4100\t12\t1"}));
}

}  // namespace
}  // namespace Tarn
