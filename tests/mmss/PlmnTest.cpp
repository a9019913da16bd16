#include <gtest/gtest.h>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "mmss/MmssFrame.h"
#include "mmss/Plmn/PlmnDocument.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

const Plmn::Record& At(const Plmn::Document& doc, size_t i) {
    return static_cast<const Plmn::Record&>(*doc.data.records.GetAt(i));
}

// The nibble order of the packed-BCD coding is where PLMN tools go wrong: each row is checked
// both ways, bytes -> shown code and typed code -> bytes.
TEST(Plmn, CodesAndTheirBytes) {
    struct Case {
        const char* bytes;
        const char* mcc;
        const char* mnc;
    };
    const Case cases[] = {
        {"00 F1 10", "001", "01"},  {"13 F0 10", "310", "01"},  {"13 00 61", "310", "160"},
        {"13 01 84", "311", "480"}, {"13 35 21", "315", "123"}, {"42 F0 01", "240", "10"},
        {"13 F0 FF", "310", "FFF"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        auto doc = Mmss::FromBytes<Plmn::Document>(Hex(c.bytes), "x.ehplmn");
        ASSERT_EQ(doc->data.records.GetSize(), 1u);
        EXPECT_EQ(At(*doc, 0).MccText(), c.mcc);
        EXPECT_EQ(At(*doc, 0).MncText(), c.mnc);

        Plmn::Data typed;
        typed.listKind = Plmn::kEhplmn;
        Plmn::Record& r = typed.AddRecord();
        ASSERT_TRUE(Mmss::ParseMcc(c.mcc, r.mcc));
        ASSERT_TRUE(Mmss::ParseMnc(c.mnc, r.mnc));
        CRLFile file;
        typed.Write(file);
        EXPECT_EQ(file.Bytes(), Hex(c.bytes));
    }
}

TEST(Plmn, AllFFillerShowsAndWritesItsOneWayForm) {
    auto doc = Mmss::FromBytes<Plmn::Document>(Hex("FF FF FF"), "x.ehplmn");
    EXPECT_EQ(At(*doc, 0).MccText(), "151515");
    EXPECT_EQ(At(*doc, 0).MncText(), "FFF");
    EXPECT_EQ(At(*doc, 0).mccValue, 1665);
    CRLFile file;
    doc->data.Write(file);
    EXPECT_EQ(file.Bytes(), Hex("5F FF FF")) << "MCC digit 2 goes out modulo 10";
}

TEST(Plmn, RecordCountComesFromTheLengthAndTheKind) {
    const auto seven = Hex("13 F0 10 13 00 61 77");
    EXPECT_EQ(Mmss::FromBytes<Plmn::Document>(seven, "a.ehplmn")->data.records.GetSize(), 2u);
    EXPECT_EQ(Mmss::FromBytes<Plmn::Document>(seven, "a.uplmn")->data.records.GetSize(), 1u);
    EXPECT_THROW(Mmss::FromBytes<Plmn::Document>(seven, "a.plmn"), std::exception) << "no kind";
    EXPECT_THROW(Mmss::FromBytes<Plmn::Document>(Hex("13 F0 10 00"), "a.oplmn"), std::exception);

    // Bytes short of a record are said, not silently dropped.
    EXPECT_TRUE(Mmss::FromBytes<Plmn::Document>(Hex("13 F0 10"), "a.ehplmn")->Notices().empty());
    EXPECT_EQ(Mmss::FromBytes<Plmn::Document>(seven, "a.ehplmn")->Notices(),
              std::vector<std::string>{"The last 1 byte does not make a whole record and was "
                                       "ignored; a save does not write it."});
    EXPECT_EQ(Mmss::FromBytes<Plmn::Document>(seven, "a.uplmn")->Notices(),
              std::vector<std::string>{"The last 2 bytes do not make a whole record and were "
                                       "ignored; a save does not write them."});

    // The length is a 16-bit value: a longer file would wrap and lose its records.
    std::vector<uint8_t> whole(65535, 0x11);
    EXPECT_EQ(Mmss::FromBytes<Plmn::Document>(whole, "a.ehplmn")->data.records.GetSize(), 21845u);
    whole.resize(65538, 0x11);
    try {
        Mmss::FromBytes<Plmn::Document>(whole, "a.ehplmn");
        ADD_FAILURE() << "a file over 65,535 bytes opened";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "The file is 65,538 bytes; a PLMN list file holds at most 65,535.");
    }
}

TEST(Plmn, AccessTechnologyBytes) {
    struct Case {
        const char* access;
        uint8_t umts, lte, gsm;
        const char* written;
        const char* text;
    };
    const Case cases[] = {
        {"C0 80", 1, 1, 1, "C0 80", "310\t01\tYes\tYes\tYes\t\r\n"},
        {"3F 7F", 0, 0, 0, "00 00", "310\t01\tNo\tNo\tNo\t\r\n"},
        {"40 00", 0, 1, 0, "40 00", "310\t01\tNo\tYes\tNo\t\r\n"},
        {"00 FF", 0, 0, 1, "00 80", "310\t01\tNo\tNo\tYes\t\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.access);
        auto doc = Mmss::FromBytes<Plmn::Document>(Hex(std::string("13 F0 10 ") + c.access), "a.oplmn");
        const auto& r = At(*doc, 0);
        EXPECT_EQ(r.umts, c.umts);
        EXPECT_EQ(r.lte, c.lte);
        EXPECT_EQ(r.gsm, c.gsm);
        EXPECT_EQ(r.ToText(), c.text);
        CRLFile file;
        EXPECT_EQ(r.Write(file), 16u);
        EXPECT_EQ(file.Bytes(), Hex(std::string("13 F0 10 ") + c.written));
    }
    Plmn::Record ehplmn(Plmn::kEhplmn);
    CRLFile file;
    EXPECT_EQ(ehplmn.Write(file), 0u) << "EHPLMN records report no bits";
}

TEST(Plmn, GridCellsAreCheckedForTheirFormat) {
    struct Case {
        const char* mcc;
        const char* mnc;
        unsigned message;  // 0: accepted
        int column;
    };
    const Case cases[] = {
        {"310", "26", 0, 0},       {"310", "260", 0, 0},    {"310", "F1", 0, 0},
        {"310", "fff", 0, 0},      {"", "26", 140, 0},      {"310", "", 140, 1},
        {"31", "26", 61453, 0},    {"31F", "26", 61453, 0}, {"310", "2", 61458, 1},
        {"310", "2604", 61458, 1}, {"310", "2x", 61458, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.mcc) + "/" + c.mnc);
        MemoryGrid grid(Plmn::Record::kTableName, 5, 1);
        grid.SetCellText(0, 0, c.mcc);
        grid.SetCellText(1, 0, c.mnc);
        grid.SetCellText(3, 0, "1");
        Plmn::Record r(Plmn::kUplmn);
        try {
            r.ReadFromGrid(grid, 0, {});
            EXPECT_EQ(c.message, 0u);
            EXPECT_EQ(r.lte, 1);
            EXPECT_EQ(r.umts, 0);
        } catch (const GridError& e) {
            EXPECT_EQ(e.MessageId(), c.message) << e.Text();
            EXPECT_EQ(e.Column(), c.column);
        }
    }
    MemoryGrid grid(Plmn::Record::kTableName, 5, 1);
    grid.SetCellText(0, 0, "31");
    grid.SetCellText(1, 0, "26");
    try {
        Plmn::Record(Plmn::kEhplmn).ReadFromGrid(grid, 0, {});
    } catch (const GridError& e) {
        EXPECT_EQ(e.Text(),
                  "Invalid MCC in column 0, row 0 of the Plmn Table. The MCC format "
                  "should be three decimal digits.");
    }
}

TEST(Plmn, ListKindComesFromASubstringOfThePath) {
    struct Case {
        const char* path;
        int kind;
    };
    const Case cases[] = {
        {"list.ehplmn", 1},      {"list.EHPLMN.bak", 1}, {"list.Ehplmn", 0},
        {"C:\\sim\\a.oplmn", 2}, {"a.UPLMN", 3},         {"a.uplmn.oplmn", 3},
        {"x.oplmn/y.ehplmn", 1}, {"ehplmn", 0},          {"", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(Mmss::PlmnListKindFromPath(c.path), c.kind) << c.path;
}

TEST(Plmn, TextOfAnEmptyOrUnsetList) {
    Plmn::Document doc;
    doc.data.listKind = Plmn::kUplmn;
    EXPECT_EQ(doc.RenderText(),
              "\r\n\t\t*********** PLMN Table ***********\r\n\r\nFileType : UPLMN \r\n");
    EXPECT_EQ(doc.Check().at(0).message, "A valid Roaming List needs at least one Plmn record.");
    doc.data.listKind = 9;
    EXPECT_EQ(doc.RenderText(), "\r\n\t\t*********** PLMN Table ***********\r\n\r\n");
}

}  // namespace
}  // namespace Tarn
