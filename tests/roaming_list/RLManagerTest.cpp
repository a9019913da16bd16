#include <gtest/gtest.h>

#include <stdexcept>

#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/roaming_list/SysItemSamples.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {

using Test::PackBits;
using Test::Prefix;
using Test::Seal;
using Test::WithWord;

// Header of an empty short-form list: ID 0x1234, preferred only, roaming indicator 0x55.
std::vector<uint8_t> EmptyShortList() {
    return Seal(PackBits({{16, 0}, {16, 0x1234}, {1, 1}, {8, 0x55}, {9, 0}, {14, 0}}));
}

// Header of an empty long-form list with chosen SSPR_P_REV, common subnet count and reserved bits.
std::vector<uint8_t> EmptyLongList(uint32_t sspr = 3, uint32_t commonSubnets = 0,
                                   uint32_t reserved = 0) {
    return Seal(PackBits({{16, 0},
                          {16, 0xBEEF},
                          {8, sspr},
                          {1, 0},
                          {8, 0},
                          {9, 0},
                          {9, commonSubnets},
                          {14, 0},
                          {7, reserved}}));
}

// A short-form list announcing `count` acquisition records, followed by `records`.
std::vector<uint8_t> ShortListOf(uint32_t count, std::vector<std::pair<int, uint32_t>> records) {
    records.insert(records.begin(), {{16, 0}, {16, 1}, {1, 0}, {8, 0}, {9, count}, {14, 0}});
    return Seal(PackBits(records));
}

TEST(ValidateFile, SizeAndCrcOfPlainAndPrefixedForms) {
    const std::vector<uint8_t> plain = EmptyShortList();
    std::vector<uint8_t> badCrc = plain;
    badCrc.back() ^= 0x01;
    std::vector<uint8_t> prefixedBadCount = Prefix(plain);
    prefixedBadCount[1] += 8;
    const std::vector<uint8_t> largest = ListSamples::Binary(*ListSamples::ListOfSize(0xFFFF), 3);
    ASSERT_EQ(largest.size(), 0xFFFFu);
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        int version;  // the one that reads it; 0: size or CRC refused
        bool prefixed;
    };
    const std::vector<Case> cases = {
        {"plain short header", plain, 1, false},
        {"plain long header", EmptyLongList(), 3, false},
        {"prefixed with 0x02", Prefix(plain, 0x02), 1, true},
        {"prefixed with 0x03", Prefix(plain, 0x03), 1, true},
        {"prefix with another first byte", Prefix(plain, 0x04), 0, false},
        {"prefix whose bit count is off", prefixedBadCount, 0, false},
        {"wrong CRC", badCrc, 0, false},
        {"size field one short", WithWord(plain, 0, 9), 0, false},
        {"size field one long", WithWord(plain, 0, 11), 0, false},
        {"the largest list", largest, 3, false},
        {"the largest list prefixed", Prefix(largest), 3, true},
        {"three bytes", {0x00, 0x03, 0x00}, 0, false},
        {"two bytes", {0x00, 0x02}, 0, false},
        {"empty", {}, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CRLFile file(c.bytes);
        CRLManagerA manager;
        ASSERT_EQ(manager.ValidateFile(file), c.version != 0);
        const DetectResult r = DetectVersion(file);
        EXPECT_EQ(r.manager ? r.manager->GetVersion() : 0, c.version) << r.error;
        if (c.version == 0) continue;
        EXPECT_EQ(manager.IsPrefixed(), c.prefixed);
    }
    // The short header's fields.
    CRLFile file(plain);
    const DetectResult read = DetectVersion(file);
    const CPropData& p = read.manager->GetData().GetProperties();
    EXPECT_EQ(p.listSize, 10);
    EXPECT_EQ(p.prefListId, 0x1234);
    EXPECT_TRUE(p.prefOnly);
    EXPECT_EQ(p.defRoamInd, 0x55);
    // A plain list of 0x0210 bytes starts with the byte 0x02, like a prefix would.
    CRLFile starts02(Seal(std::vector<uint8_t>(0x0210 - 2, 0)));
    CRLManagerA manager;
    EXPECT_TRUE(manager.ValidateFile(starts02));
    EXPECT_FALSE(manager.IsPrefixed());
}

// The announced count is read up to the last record that ends inside the list; one record more
// than the list holds is refused by every version.
TEST(ReadList, CountsMustEndWithTheList) {
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        bool read;
    };
    const std::vector<Case> cases = {
        {"an analog record, 2 bits of padding", ShortListOf(1, {{4, 1}, {2, 1}}), true},
        {"a standard record ending on the list's last bit",
         ShortListOf(1, {{4, 2}, {2, 1}, {2, 2}}), true},
        {"a second record past the end", ShortListOf(2, {{4, 2}, {2, 1}, {2, 2}}), false},
        {"a record announced and missing", ShortListOf(1, {}), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CRLFile file(c.bytes);
        DetectResult r = DetectVersion(file);
        EXPECT_TRUE(r.sizeAndCrcValid);
        ASSERT_EQ(r.manager != nullptr, c.read) << r.error;
        if (c.read) {
            EXPECT_EQ(r.manager->GetData().GetAcqTable().GetSize(), 1u);
        }
    }
}

// Every version writes an empty list of its own header form exactly, and canonical input comes
// back byte for byte.
TEST(WriteList, EmptyListOfEveryVersionRoundTripsExactly) {
    for (int version = 1; version <= 5; ++version) {
        SCOPED_TRACE(version);
        const std::vector<uint8_t> input = version <= 2 ? EmptyShortList() : EmptyLongList();
        auto manager = CreateClassFactory(version)->CreateManager();
        CRLFile in(input);
        ASSERT_TRUE(manager->ValidateFile(in));
        ASSERT_TRUE(manager->ReadList(in));
        CRLFile out;
        ASSERT_TRUE(manager->WriteList(out)) << manager->GetLastError();
        EXPECT_EQ(out.Bytes(), input);
    }
}

TEST(WriteList, LongFormIsCanonicalisedAndPrefixDropped) {
    // SSPR_P_REV 1 comes back as 3; a common subnet count is written as 0; reserved bits survive.
    CRLFile in(Prefix(EmptyLongList(1, 5, 0x2A)));
    CRLManagerD manager;
    ASSERT_TRUE(manager.ValidateFile(in));
    ASSERT_TRUE(manager.IsPrefixed());
    ASSERT_TRUE(manager.ReadList(in));
    EXPECT_EQ(manager.GetData().GetProperties().ssprPRev, 3);
    EXPECT_EQ(manager.GetData().GetProperties().numCommonSubnet, 5);
    CRLFile out;
    ASSERT_TRUE(manager.WriteList(out));
    EXPECT_EQ(out.Bytes(), EmptyLongList(3, 0, 0x2A));
    EXPECT_EQ(manager.GetData().GetProperties().numCommonSubnet, 0);

    // So is a list attached from elsewhere.
    auto data = std::make_unique<CRLData>();
    data->GetProperties().ssprPRev = 1;
    RLManagerE attached;
    attached.AttachData(data);
    EXPECT_EQ(attached.GetData().GetProperties().ssprPRev, 3);
}

// The largest table and the largest list the count and size fields hold are written and read
// back whole; one record or one byte more is refused with its message.
TEST(WriteList, LargestTablesAndListAndOneMore) {
    const auto acqTable = [](size_t n) {
        auto data = std::make_unique<CRLData>();
        for (size_t i = 0; i < n; ++i) data->GetAcqTable().Items().Add(CreateAcqItem(1, 1));
        return data;
    };
    const auto sysTable = [](size_t n) {
        auto data = std::make_unique<CRLData>();
        for (size_t i = 0; i < n; ++i) {
            auto item = CreateSysItem(0, 1);
            item->SetNegPref(0);  // 28 bits: 16383 of them fit the size field
            data->GetSysTable().Items().Add(std::move(item));
        }
        return data;
    };
    struct Case {
        const char* name;
        std::unique_ptr<CRLData> data;
        int version;
        const char* refusal;  // empty: written
    };
    std::vector<Case> cases;
    cases.push_back({"511 acquisition records", acqTable(511), 1, ""});
    cases.push_back({"512", acqTable(512), 1, "An acquisition table holds at most 511 records."});
    cases.push_back({"16383 system records", sysTable(16383), 1, ""});
    cases.push_back({"16384", sysTable(16384), 1, "A system table holds at most 16383 records."});
    cases.push_back({"65535 bytes", ListSamples::ListOfSize(0xFFFF), 3, ""});
    cases.push_back({"65536 bytes", ListSamples::ListOfSize(0x10000), 3,
                     "The list would be 65536 bytes; its 16-bit size field holds at most 65,535."});
    for (auto& c : cases) {
        SCOPED_TRACE(c.name);
        const size_t acq = c.data->GetAcqTable().GetSize();
        const size_t sys = c.data->GetSysTable().GetSize();
        auto writer = CreateClassFactory(c.version)->CreateManager();
        writer->AttachData(c.data);
        CRLFile file;
        ASSERT_EQ(writer->WriteList(file), *c.refusal == '\0') << writer->GetLastError();
        EXPECT_EQ(writer->GetLastError(), c.refusal);
        if (*c.refusal != '\0') continue;
        CRLFile again(file.Bytes());
        DetectResult r = DetectVersion(again);
        ASSERT_TRUE(r.manager) << r.error;
        EXPECT_EQ(r.manager->GetVersion(), c.version);
        EXPECT_EQ(r.manager->GetData().GetAcqTable().GetSize(), acq);
        EXPECT_EQ(r.manager->GetData().GetSysTable().GetSize(), sys);
    }
}

// Lists written by each version are detected as the lowest version that reads them whole, and
// every system record comes back with its bytes. Every list starts with two long-framing IS-2000
// records and a default roaming indicator of 0, which make the short-header reader see plausible
// counts; such a list must still not be taken for IS-683A.
TEST(DetectVersion, ListsAreTakenAsTheLowestVersionThatReadsThemWhole) {
    struct Case {
        int writtenAs;
        int acqType;
        std::vector<const char*> samples;
        int detected;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {1, 1, {"short preferred, NID not stored", "short negative, NID stored", "1x-MCC in the short framing"}, 1},
        {2, 1, {"short negative, NID stored"}, 1},
        {2, 7, {}, 2},
        {3, 1, {}, 3},
        {3, 10, {"long IS-2000, no association: length 6, no fill", "IS-856 subnet",
                 "1x-MCC with NID not stored keeps its odd identifiers", "undefined type 15 of two octets"}, 3},
        {4, 2, {}, 3},
        {4, 2, {"PLMN multi LAC, negative", "MCC-MNC SID/NID with association", "PLMN select mode"}, 4},
        {5, 6, {}, 3},
        {5, 6, {"MCC-MNC subnet", "undefined type 7 keeps its octets"}, 4},
    };
    // clang-format on
    const nlohmann::json sys = {{"type", 0},         {"negPref", 1},  {"geography", 0},
                                {"priority", 1},     {"acqIndex", 0}, {"roamInd", 0},
                                {"assnIncluded", 0}, {"sid", 4139}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.writtenAs) + "/" + std::to_string(c.acqType));
        const nlohmann::json acq = {{"type", c.acqType},
                                    {"system", 0},
                                    {"channel", 1},
                                    {"channels", {25}},
                                    {"pairs", {{{"bandClass", 1}, {"channel", 25}}}}};
        const nlohmann::json j = {
            {"version", c.writtenAs},
            {"header", {{"prefListId", 0}, {"prefOnly", false}, {"defRoamInd", 0}}},
            {"acquisitionTable", {acq}},
            {"systemTable", {sys, sys}}};
        int version = 0;
        auto data = ListFromJson(j, version);
        std::vector<std::vector<uint8_t>> expected;
        for (const char* name : c.samples) {
            auto item = SysSamples::ReadSample(SysSamples::Find(name));
            expected.push_back(SysSamples::WriteOne(*item, c.writtenAs));
            data->GetSysTable().Items().Add(std::move(item));
        }
        auto writer = CreateClassFactory(version)->CreateManager();
        writer->AttachData(data);
        CRLFile file;
        ASSERT_TRUE(writer->WriteList(file)) << writer->GetLastError();
        DetectResult r = DetectVersion(file);
        ASSERT_TRUE(r.manager) << r.error;
        EXPECT_EQ(r.manager->GetVersion(), c.detected);
        const CRLItemList& items = r.manager->GetData().GetSysTable().Items();
        ASSERT_EQ(items.GetSize(), 2 + expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            const auto& item = dynamic_cast<const CSysItem&>(*items.GetAt(2 + i));
            EXPECT_EQ(SysSamples::WriteOne(item, c.writtenAs), expected[i]) << i;
        }
    }
}

// Detection asks every version but the last to refuse a list by its result rather than by an
// exception: the text it reports must be the one the same version raises when asked alone, and
// a list no version reads is reported with the last version's fault.
TEST(ReadList, AFaultIsReportedWithTheTextItIsRaisedWith) {
    const std::vector<uint8_t> strayByte = ShortListOf(0, {{8, 0}});
    const std::vector<uint8_t> badPadding = ShortListOf(0, {{8, 0x08}});
    // An IS-683C list whose acquisition record is of type 6: read as a short-form list its type
    // field holds 0, a type no version has.
    const std::vector<uint8_t> longList =
        ListSamples::Binary(*ListSamples::List(3, {"6\t25"}, {}), 3);
    ASSERT_FALSE(longList.empty());
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        int version;
    };
    const std::vector<Case> cases = {
        {"records end before the list", strayByte, 1},
        {"padding not zero", badPadding, 2},
        {"acquisition type unknown", longList, 1},
        {"acquisition type unknown", longList, 2},
        {"records end before the list", strayByte, kMaxVersion},
        {"padding not zero", badPadding, kMaxVersion},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " in version " + std::to_string(c.version));
        CRLFile file(c.bytes);
        auto alone = CreateClassFactory(c.version)->CreateManager();
        ASSERT_TRUE(alone->ValidateFile(file));
        std::string raised;
        try {
            alone->ReadList(file);
        } catch (const std::exception& e) {
            raised = e.what();
        }
        ASSERT_FALSE(raised.empty());
        if (c.version == kMaxVersion) {
            const DetectResult r = DetectVersion(file);
            EXPECT_FALSE(r.manager);
            EXPECT_EQ(r.error, raised);
            continue;
        }
        auto asked = CreateClassFactory(c.version)->CreateManager();
        ASSERT_TRUE(asked->ValidateFile(file));
        asked->SetStopPastEnd(true);
        EXPECT_FALSE(asked->ReadList(file));
        EXPECT_EQ(asked->GetLastError(), raised);
    }
}

}  // namespace
}  // namespace Tarn
