#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "grid/MemoryGrid.h"
#include "roaming_list/RLData.h"
#include "roaming_list/Validation.h"

namespace Tarn {
namespace {

std::vector<unsigned> Ids(const ValidationResult& r) {
    std::vector<unsigned> ids;
    for (const auto& i : r.issues) ids.push_back(i.messageId);
    return ids;
}

TEST(CheckHeaderFields, RoamingIndicatorFirstThenListId) {
    struct Case {
        const char* roamInd;
        const char* listId;
        unsigned message;  // 0: accepted
        std::string text;
    } cases[] = {
        {"", "", 160, "The default roaming indicator value is out of range (0-255)."},
        {"", "7", 160, "The default roaming indicator value is out of range (0-255)."},
        {"256", "7", 160, "The default roaming indicator value is out of range (0-255)."},
        {"-1", "7", 160, "The default roaming indicator value is out of range (0-255)."},
        {"1", "", 161, "The Preferred List ID value is out of range (0-65535)."},
        {"1", "65536", 161, "The Preferred List ID value is out of range (0-65535)."},
        {"1", "12a", 161, "The Preferred List ID value is out of range (0-65535)."},
        {" 255 ", "65535", 0, ""},
        {"0", "0", 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.roamInd) + "/" + c.listId);
        CPropData prop;
        prop.defRoamInd = 9;
        prop.prefListId = 9;
        auto issue = CheckHeaderFields(c.roamInd, c.listId, &prop);
        if (c.message) {
            ASSERT_TRUE(issue);
            EXPECT_EQ(issue->messageId, c.message);
            EXPECT_EQ(issue->text, c.text);
            EXPECT_EQ(prop.defRoamInd, 9);  // nothing taken on failure
            EXPECT_EQ(prop.prefListId, 9);
        } else {
            EXPECT_FALSE(issue);
            EXPECT_EQ(prop.defRoamInd, std::stoi(c.roamInd));
            EXPECT_EQ(prop.prefListId, std::stoi(c.listId));
        }
    }
}

TEST(AcqTypeRefusal, WhichSystemTypesUseWhichAcquisitionTypes) {
    struct Case {
        int sysType, subtype;
        std::vector<int> accepted;
        unsigned refusal;
    } cases[] = {
        {0, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 253}, 163},
        {14, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 253}, 163},
        {1, 0, {11, 253}, 167},
        {2, 0, {12, 13, 14, 15, 253}, 196},
        {3, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 16, 253}, 204},
        {3, 3, {11, 253}, 205},
        {7, 0, {253}, 197},
    };
    for (const auto& c : cases) {
        for (int acq : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 253}) {
            SCOPED_TRACE("system type " + std::to_string(c.sysType) + "/" +
                         std::to_string(c.subtype) + ", acquisition type " + std::to_string(acq));
            const bool ok = std::find(c.accepted.begin(), c.accepted.end(), acq) != c.accepted.end();
            EXPECT_EQ(AcqTypeRefusal(c.sysType, c.subtype, acq), ok ? 0u : c.refusal);
        }
    }
}

TEST(CheckRoamingList, EmptyListNeedsOneRecordOfEachTable) {
    CRLData data;
    const ValidationResult r = CheckRoamingList(data, 5);
    EXPECT_EQ(Ids(r), (std::vector<unsigned>{155, 154}));
    EXPECT_EQ(r.issues[0].text, "A vallid Roaming List needs at least one acquisiiton record.");
    EXPECT_EQ(r.issues[1].Describe(), "154: A valid Roaming List needs at least one system record.");
}

TEST(ReadTableFromGrid, EveryEmptyTypeCellIsRefusedNotSkipped) {
    MemoryGrid grid("System Table", 12, 3);
    CRLItemList acq;
    CRLItemList out;
    const ValidationResult r = ReadSysTableFromGrid(grid, 3, acq, out);
    ASSERT_EQ(Ids(r), (std::vector<unsigned>{198, 198, 198}));
    EXPECT_EQ(r.issues[2].row, 2);
    EXPECT_EQ(r.issues[2].Describe(), "198 (System Table, row 2, column 0): Empty rows are not allowed.");
    EXPECT_TRUE(out.IsEmpty());
}

}  // namespace
}  // namespace Tarn
