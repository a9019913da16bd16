// MMSS files compare record by record in order; an MSPL compares per identifier.
#include <gtest/gtest.h>

#include "analysis/DiffMmss.h"
#include "analysis/DiffReport.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;

json Tot(int version, std::vector<int> rats) {
    json records = json::array();
    for (size_t i = 0; i < rats.size(); ++i)
        records.push_back({{"index", i}, {"ratId", rats[i]}, {"ratIdName", "RAT " + std::to_string(rats[i])}});
    return {{"fileType", "TOT"}, {"version", version}, {"records", records}};
}

TEST(DiffMmssTest, RecordsCompareInOrder) {
    struct Case {
        const char* name;
        json a, b;
        std::vector<size_t> added, removed, changed;
        size_t headerChanges;
    };
    const Case cases[] = {
        {"same", Tot(5, {9, 8}), Tot(5, {9, 8}), {}, {}, {}, 0},
        {"appended", Tot(5, {9}), Tot(5, {9, 8, 7}), {1, 2}, {}, {}, 0},
        {"cut", Tot(5, {9, 8}), Tot(5, {9}), {}, {1}, {}, 0},
        // Order is what a handset reads, so a swap changes both slots.
        {"swapped", Tot(5, {9, 8}), Tot(6, {8, 9}), {}, {}, {0, 1}, 1},
    };
    for (const auto& c : cases) {
        MmssDiff d = DiffMmss(c.a, c.b);
        ASSERT_EQ(d.tables.size(), 1u) << c.name;
        const TableDiff& t = d.tables[0];
        EXPECT_EQ(t.added, c.added) << c.name;
        EXPECT_EQ(t.removed, c.removed) << c.name;
        std::vector<size_t> changed;
        for (const auto& ch : t.changed) {
            changed.push_back(ch.a);
            EXPECT_EQ(ch.fields, std::vector<std::string>{"ratId"}) << c.name;  // never "ratIdName"
        }
        EXPECT_EQ(changed, c.changed) << c.name;
        EXPECT_EQ(d.header.size(), c.headerChanges) << c.name;
        EXPECT_EQ(d.Same(), c.added.empty() && c.removed.empty() && c.changed.empty() && !c.headerChanges);
    }
}

TEST(DiffMmssTest, MsplListsPairByIdentifier) {
    auto id = [](int msplId, std::vector<int> sysTypes) {
        json records = json::array();
        for (int t : sysTypes) records.push_back({{"sysType", t}});
        return json{{"msplId", msplId}, {"records", records}};
    };
    json a = {{"fileType", "MSPL"}, {"msplIds", {id(1, {7}), id(2, {7, 8})}}};
    json b = {{"fileType", "MSPL"}, {"msplIds", {id(2, {7, 9}), id(3, {1})}}};
    MmssDiff d = DiffMmss(a, b);
    ASSERT_EQ(d.tables.size(), 3u);
    EXPECT_EQ(d.tables[0].name, "MSPL ID 1");
    EXPECT_EQ(d.tables[0].removed, std::vector<size_t>{0});
    EXPECT_EQ(d.tables[1].name, "MSPL ID 2");
    ASSERT_EQ(d.tables[1].changed.size(), 1u);
    EXPECT_EQ(d.tables[1].changed[0].a, 1u);
    EXPECT_EQ(d.tables[2].name, "MSPL ID 3");
    EXPECT_EQ(d.tables[2].added, std::vector<size_t>{0});

    const std::string text = MmssDiffText(d);
    EXPECT_NE(text.find("MSPL ID 2\n  ~ [1] sysType=9\n      sysType: 8 -> 9\n"), std::string::npos) << text;
    EXPECT_NE(text.find("1 added, 1 removed, 1 changed records; 0 header changes\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace Tarn::Analysis
