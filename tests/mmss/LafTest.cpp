#include <gtest/gtest.h>

#include "grid/GridError.h"
#include "grid/MemoryGrid.h"
#include "mmss/LAF/LafDocument.h"
#include "mmss/LAF/LafRecord.h"

namespace Tarn {
namespace {

std::vector<uint8_t> Bytes(const std::string& s) {
    return {s.begin(), s.end()};
}

TEST(Laf, LinesParseOrBecomeZeroRecords) {
    struct Case {
        const char* line;
        uint16_t sid, nid, bid;
        uint8_t cnt;
    };
    const Case cases[] = {
        {"SID=4096,NID=0,BID=23,CNT=1", 4096, 0, 23, 1},
        {"SID=1,NID=2", 0, 0, 0, 0},
        {"SID=1,NID=2,BID=3,CNT=300", 1, 2, 3, 44},
        {"SID=70000,NID=2,BID=3,CNT=4", 4464, 2, 3, 4},
        {"SID= 7,NID=+2,BID=3,CNT=4 trailing", 7, 2, 3, 4},
        {"SID=-1,NID=0,BID=0,CNT=0", 65535, 0, 0, 0},
        {"SID=99999999999,NID=0,BID=0,CNT=0", 65535, 0, 0, 0},
        {"sid=1,NID=2,BID=3,CNT=4", 0, 0, 0, 0},
        {"SID=1, NID=2,BID=3,CNT=4", 0, 0, 0, 0},
        {"SID=1,NID=2,BID=3,CNT=", 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const auto r = LAF::LafRecord::Parse(c.line);
        EXPECT_EQ(r.sid, c.sid);
        EXPECT_EQ(r.nid, c.nid);
        EXPECT_EQ(r.bid, c.bid);
        EXPECT_EQ(r.cnt, c.cnt);
    }
}

TEST(Laf, EmptyLinesAreSkippedWhateverTheLineEnds) {
    for (const char* text :
         {"SID=1,NID=2,BID=3,CNT=4\r\nSID=5,NID=6,BID=7,CNT=8\r\n",
          "SID=1,NID=2,BID=3,CNT=4\nSID=5,NID=6,BID=7,CNT=8",
          "\r\n\r\nSID=1,NID=2,BID=3,CNT=4\r\r  \r\nSID=5,NID=6,BID=7,CNT=8\n\n"}) {
        auto doc = Mmss::FromBytes<LAF::LafDocument>(Bytes(text));
        EXPECT_EQ(doc->RenderText(), "SID=1,NID=2,BID=3,CNT=4\r\nSID=5,NID=6,BID=7,CNT=8\r\n");
    }
    auto bad = Mmss::FromBytes<LAF::LafDocument>(Bytes("garbage\r\n"));
    EXPECT_EQ(bad->RenderText(), "SID=0,NID=0,BID=0,CNT=0\r\n");

    auto empty = Mmss::FromBytes<LAF::LafDocument>({});
    std::vector<uint8_t> out;
    std::string error;
    EXPECT_FALSE(empty->Write(out, error));
    EXPECT_EQ(error, "A valid Roaming List needs at least one LAF record.");
}

TEST(Laf, ByteOrderMarkAndEndOfFileBytesOpenWithANoticeOtherBytesAreRefused) {
    const std::string line = "SID=1,NID=2,BID=3,CNT=4\r\n";
    const std::string bom = "The file starts with a UTF-8 byte order mark (EF BB BF), which was "
                            "skipped; a save does not write it.";
    const std::string eof = "The file ends in an end-of-file byte (1A), which was skipped; a save "
                            "does not write it.";
    struct Case {
        const char* what;
        std::string bytes;
        std::vector<std::string> notices;
        std::string refusal;  // empty: the file opens, and writes `line` back when it has a record
    };
    const Case cases[] = {
        {"plain", line, {}, ""},
        {"BOM", "\xEF\xBB\xBF" + line, {bom}, ""},
        {"end-of-file byte", line + "\x1A", {eof}, ""},
        {"both, no final line end", "\xEF\xBB\xBF" + line.substr(0, line.size() - 2) + "\x1A",
         {bom, eof}, ""},
        {"three end-of-file bytes", line + "\x1A\x1A\x1A",
         {"The file ends in 3 end-of-file bytes (1A), which were skipped; a save does not write "
          "them."},
         ""},
        {"BOM alone", "\xEF\xBB\xBF", {bom}, ""},
        {"end-of-file byte inside", "\x1A" + line, {},
         "This is not an LTE available file: byte 0 (0x1A) is not text."},
        {"BOM not at the start", line + "\xEF\xBB\xBF",
         {}, "This is not an LTE available file: byte 25 (0xEF) is not text."},
        {"NUL after a BOM", "\xEF\xBB\xBF" + line + std::string(1, '\0'), {},
         "This is not an LTE available file: byte 28 (0x00) is not text."},
        {"DEL", "SID=1\x7F", {}, "This is not an LTE available file: byte 5 (0x7F) is not text."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::unique_ptr<LAF::LafDocument> doc;
        try {
            doc = Mmss::FromBytes<LAF::LafDocument>(Bytes(c.bytes));
        } catch (const std::exception& e) {
            EXPECT_EQ(e.what(), c.refusal);
            continue;
        }
        ASSERT_TRUE(c.refusal.empty()) << "opened a file it should refuse";
        EXPECT_EQ(doc->Notices(), c.notices);
        if (!doc->data.records.IsEmpty()) {
            std::vector<uint8_t> written;
            std::string error;
            ASSERT_TRUE(doc->Write(written, error)) << error;
            EXPECT_EQ(written, Bytes(line));
        }
    }
}

TEST(Laf, GridEntriesAreCheckedStrictly) {
    struct Case {
        int column;
        const char* text;
        unsigned message;  // 0: accepted
        unsigned hint;
    };
    const Case cases[] = {
        {0, "65535", 0, 0}, {0, "65536", 236, 235}, {1, "x1", 237, 235}, {2, "-1", 238, 235},
        {3, "255", 0, 0},   {3, "256", 239, 240},   {3, " 1", 239, 240},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        unsigned message = 0, hint = 0;
        EXPECT_EQ(LAF::LafRecord::CheckEntry(c.column, c.text, message, hint), c.message == 0);
        EXPECT_EQ(message, c.message);
        EXPECT_EQ(hint, c.hint);

        MemoryGrid grid(LAF::LafRecord::kTableName, 4, 1);
        LAF::LafRecord().WriteToGrid(grid, 0);
        grid.SetCellText(c.column, 0, c.text);
        LAF::LafRecord r;
        if (c.message == 0) {
            EXPECT_NO_THROW(r.ReadFromGrid(grid, 0, {}));
        } else {
            try {
                r.ReadFromGrid(grid, 0, {});
                ADD_FAILURE();
            } catch (const GridError& e) {
                EXPECT_EQ(e.MessageId(), c.message);
                EXPECT_EQ(e.Column(), c.column);
            }
        }
    }
}

}  // namespace
}  // namespace Tarn
