#include <gtest/gtest.h>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "roaming_list/DataException.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

std::vector<uint8_t> WriteLocation(const Mlpl::Location& location, uint32_t& bits) {
    CRLFile file;
    bits = location.Write(file);
    return file.Bytes();
}

std::unique_ptr<Mlpl::Record> Tag(uint8_t sysType) {
    auto tag = std::make_unique<Mlpl::Record>();
    tag->sysType = sysType;
    return tag;
}

TEST(Mlpl, LocationFieldsAreWrittenInPlainDigitOrder) {
    struct Case {
        const char* name;
        const char* mcc;
        const char* mnc;
        uint32_t bits;
        std::vector<uint8_t> bytes;
    };
    const Case cases[] = {
        {"MCC 310, wildcard MNC", "310", "FFF", 40, Hex("03 31 0F FF 01")},
        {"lower-case wildcard", "310", "fff", 40, Hex("03 31 0F FF 01")},
        {"two-digit MNC 26 -> 2, 6, F", "", "26", 28, Hex("02 26 F0 10")},
        {"three-digit MNC 001", "", "001", 28, Hex("02 00 10 10")},
        {"no MCC, no MNC", "", "", 16, Hex("00 01")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Mlpl::Location location;
        location.mcc = c.mcc;
        location.mnc = c.mnc;
        location.msplIndex = "1";
        uint32_t bits = 0;
        EXPECT_EQ(WriteLocation(location, bits), c.bytes);
        EXPECT_EQ(bits, c.bits);

        CRLFile file(c.bytes);
        Mlpl::Location back;
        EXPECT_EQ(back.Read(file), c.bits);
        EXPECT_EQ(back.mcc, c.mcc);
        EXPECT_EQ(back.mnc, std::string(c.mnc) == "fff" ? "FFF" : c.mnc);
        EXPECT_EQ(back.msplIndex, "1");
    }
}

TEST(Mlpl, TagBodiesAndTagSizes) {
    struct Case {
        const char* name;
        Mlpl::Record tag;
        const char* subnet;  // set by text when not null
        uint8_t tagSize;
        std::vector<uint8_t> bytes;
    };
    Mlpl::Record sidNid, plmn, subnet, wimax;
    sidNid.sysType = 3, sidNid.sidStart = 0x7FFF, sidNid.nidStart = 0x1234, sidNid.nidRange = 9;
    plmn.sysType = 7, plmn.mcc = {3, 1, 1}, plmn.mnc = {4, 8, 0}, plmn.plmnRange = 2;
    subnet.sysType = 4;
    wimax.sysType = 2;
    const Case cases[] = {
        {"SID/NID", sidNid, nullptr, 40, Hex("03 28 7F FF 12 34 09")},
        {"PLMN 311-480 in 3GPP nibble order", plmn, nullptr, 32, Hex("07 20 13 01 84 02")},
        {"20-bit subnet: 8 + 20 + 4 bits", subnet, "abcd:e000::/20", 32, Hex("04 20 14 AB CD E0")},
        {"WiMAX has no body", wimax, nullptr, 0, Hex("02 00")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Mlpl::Record tag = c.tag;
        bool bad = false;
        if (c.subnet) {
            ASSERT_TRUE(tag.SetSubnetText(c.subnet, bad));
        }
        EXPECT_EQ(tag.ComputeTagSize(), c.tagSize);
        CRLFile file;
        EXPECT_EQ(tag.Write(file), c.bytes.size() * 8);
        EXPECT_EQ(file.Bytes(), c.bytes);

        CRLFile in(c.bytes);
        Mlpl::Record back;
        EXPECT_EQ(back.Read(in), c.bytes.size() * 8);
        EXPECT_EQ(back.ToText(), tag.ToText());
    }
}

TEST(Mlpl, ALoneWimaxTagMeansNoTags) {
    Mlpl::Location lone;
    lone.msplIndex = "4";
    lone.tags.Add(Tag(2));
    uint32_t bits = 0;
    EXPECT_EQ(WriteLocation(lone, bits), Hex("00 04"));
    CRLFile file(Hex("00 04"));
    Mlpl::Location back;
    back.Read(file);
    EXPECT_TRUE(back.tags.IsEmpty());

    Mlpl::Location two;
    two.msplIndex = "4";
    two.tags.Add(Tag(2));
    two.tags.Add(Tag(2));
    EXPECT_EQ(WriteLocation(two, bits), Hex("04 02 02 00 02 00 04")) << "two tags are kept";
}

TEST(Mlpl, SubnetTextIsIpv6WithMaskLength) {
    struct Case {
        const char* text;
        bool ok;
        bool lengthBad;
        const char* shown;
    };
    const Case cases[] = {
        {"2001:db8::/32", true, false, "2001:db8::/32"},
        {"2001:0DB8:0000::1/32", true, false, "2001:db8::/32"},  // bits past the mask dropped
        {"::/0", true, false, "::/0"},
        {"1:2:3:4:5:6:7:8/128", true, false, "1:2:3:4:5:6:7:8/128"},
        {"1:0:0:2:0:0:0:3/128", true, false, "1:0:0:2::3/128"},
        {"2001:db8::/129", false, true, nullptr},
        {"2001:db8::", false, true, nullptr},
        {"2001:db8:::1/64", false, false, nullptr},
        {"1:2:3:4:5:6:7:8:9/64", false, false, nullptr},
        {"12345::/64", false, false, nullptr},
        {"1::2::3/64", false, false, nullptr},
        {"10.0.0.1/8", false, false, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        Mlpl::Record tag;
        tag.sysType = 4;
        bool lengthBad = false;
        EXPECT_EQ(tag.SetSubnetText(c.text, lengthBad), c.ok);
        if (c.ok)
            EXPECT_EQ(tag.SubnetText(), c.shown);
        else
            EXPECT_EQ(lengthBad, c.lengthBad);
    }
}

TEST(Mlpl, ReaderRefusesASubnetLongerThanIpv6) {
    Mlpl::Record tag;
    CRLFile file(Hex("04 00 81 00 00"));
    EXPECT_THROW(tag.Read(file), CDataException);
}

TEST(Mlpl, GridRowsRaiseTheMessageOfTheBadCell) {
    struct Case {
        std::vector<std::pair<int, std::string>> cells;
        unsigned message;
        int column;
    };
    const Case cases[] = {
        {{{0, "EUTRAN"}, {5, "1"}, {6, "31"}, {7, "01"}}, 61453, 6},
        {{{0, "EUTRAN"}, {5, "1"}, {6, "310"}, {7, "0x1"}}, 61458, 7},
        {{{0, "EUTRAN"}, {5, "256"}, {6, "310"}, {7, "01"}}, 139, 5},
        {{{0, "cdma2000-1x"}, {1, "32768"}, {2, "0"}, {3, "0"}}, 139, 1},
        {{{0, "cdma2000-1x"}, {1, "1"}, {3, "0"}}, 140, 2},
        {{{0, "cdma2000-HRPD"}, {4, "fe80::/200"}}, 61451, 4},
        {{{0, "cdma2000-HRPD"}, {4, "fe80:::/64"}}, 61450, 4},
        {{{0, "cdma2000-HRPD"}, {4, "BADVAL"}}, 140, 4},
    };
    for (const auto& c : cases) {
        MemoryGrid grid(Mlpl::Record::kTableName, 8, 1);
        for (const auto& [column, text] : c.cells) grid.SetCellText(column, 0, text);
        Mlpl::Record tag;
        try {
            tag.ReadFromGrid(grid, 0, {});
            ADD_FAILURE() << "accepted: " << c.cells.back().second;
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message);
            EXPECT_EQ(e.Column(), c.column);
            EXPECT_EQ(e.TableName(), "Mlpl Table");
        }
    }

    // A good row comes back as it went in.
    Mlpl::Record plmn;
    plmn.sysType = 6;
    plmn.mcc = {0, 0, 1};
    plmn.mnc = {0, 1, 15};
    plmn.plmnRange = 7;
    MemoryGrid grid(Mlpl::Record::kTableName, 8, 1);
    plmn.WriteToGrid(grid, 0);
    Mlpl::Record back;
    back.ReadFromGrid(grid, 0, {});
    EXPECT_EQ(back.ToText(), "UTRAN\t001\t01\t7\r\n");
}

TEST(Mlpl, TabChecksUseTheTabNumberAndTheirBounds) {
    struct Case {
        const char* mcc;
        const char* mnc;
        const char* index;
        const char* message;
    };
    const Case cases[] = {
        {"310", "26", "0", ""},
        {"", "FFF", "255", ""},
        {"999", "999", "1", ""},
        {"000", "00", "1", ""},
        {"1000", "", "1",
         "The value of MCC in Tab-2 is out of range.\nThe range for this input is 0 - 999"},
        {"31a", "", "1",
         "The value of MCC in Tab-2 is out of range.\nThe range for this input is 0 - 999"},
        {"31", "", "1", "Mcc value in Tab-2 is not in 3-digit format"},
        {"", "1000", "1",
         "The value of MNC in Tab-2 is out of range.\nThe range for this input is 0 - 999 or FFF"},
        {"", "1", "1", "Mnc value in Tab-2 is neither in 2-digit format nor in 3-digit format"},
        {"", "", "",
         "MsplIndex field in Tab-2 is out of range or empty.\nThe range for this input is 0 - 255"},
        {"", "", "256",
         "MsplIndex field in Tab-2 is out of range or empty.\nThe range for this input is 0 - 255"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.mcc) + "/" + c.mnc + "/" + c.index);
        Mlpl::Document doc;
        doc.header.SetValues({"1", "1", "1"});
        doc.data.records.resize(2);
        doc.data.records[0].msplIndex = "0";
        doc.data.records[1].mcc = c.mcc;
        doc.data.records[1].mnc = c.mnc;
        doc.data.records[1].msplIndex = c.index;
        const auto problems = doc.Check();
        EXPECT_EQ(problems.empty() ? std::string() : problems[0].message, c.message);
    }

    // Every problem is said, in the form's order, the missing record last.
    Mlpl::Document doc;
    std::vector<std::string> messages;
    for (const auto& p : doc.Check()) messages.push_back(p.message);
    EXPECT_EQ(messages,
              (std::vector<std::string>{"Mmss Revision Value is Missing",
                                        "Mlpl Version Value is Missing", "Mlpl Id Value is Missing",
                                        "A valid Roaming List needs at least one Mlpl record."}));
}

}  // namespace
}  // namespace Tarn
