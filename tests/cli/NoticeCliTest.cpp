#include <gtest/gtest.h>

#include "tests/cli/CliRunner.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {

using namespace Test;

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kMmss = std::string(TARN_TEST_DATA_DIR) + "/mmss/";

std::vector<uint8_t> Text(const std::string& s) {
    return {s.begin(), s.end()};
}

// `check` prints what the editor would say on opening the file, and `check`, `info` and `text`
// read a JSON or text form by its content, whatever the file is called.
TEST(CliNotices, CheckInfoAndTextSayWhatAFileHoldsAndWhatOpeningItTells) {
    TempDir dir;
    WriteBytes(dir / "list.prl", SlurpBytes(kExamples + "/example-is683e.txt"));
    WriteBytes(dir / "bom.laf", Text("\xEF\xBB\xBFSID=1,NID=2,BID=3,CNT=4\r\n\x1A"));
    WriteBytes(dir / "bad.laf", Text(std::string("SID=1,NID=2\0,BID=3", 19)));
    // An IS-683C list with empty tables.
    WriteBytes(dir / "empty.prl",
               Seal(PackBits(
                   {{16, 0}, {16, 7}, {8, 3}, {1, 1}, {8, 0}, {9, 0}, {9, 0}, {14, 0}, {7, 0}})));
    struct Case {
        std::vector<std::string> args;
        int status;
        std::vector<std::string> lines;  // each must be in stdout, or in stderr when it fails
    };
    const std::string json = kExamples + "/example-is683e.json";
    const Case cases[] = {
        {{"check", json},
         0,
         {json + ": IS-683E, valid\n", json + ": notice: Read from the JSON form of IS-683E.\n"}},
        {{"check", (dir / "list.prl").string()},
         0,
         {"list.prl: IS-683E (text), valid\n",
          "list.prl: notice: The file holds the text form of a roaming list and was read as "
          "such.\n"}},
        {{"check", (dir / "bom.laf").string()},
         0,
         {"bom.laf: LAF, valid\n",
          "bom.laf: notice: The file starts with a UTF-8 byte order mark (EF BB BF), which was "
          "skipped; a save does not write it.\n",
          "bom.laf: notice: The file ends in an end-of-file byte (1A), which was skipped; a save "
          "does not write it.\n"}},
        {{"check", (dir / "bad.laf").string()},
         1,
         {"bad.laf: This is not an LTE available file: byte 11 (0x00) is not text.\n"}},
        {{"check", (dir / "empty.prl").string()},
         0,
         {"empty.prl: IS-683C, size and CRC valid",
          "empty.prl: notice: There are no acquisition records in the file.\n",
          "empty.prl: notice: There are no system records in the file.\n"}},
        {{"check", kMmss + "sample.mspl.txt"},
         1,
         {"sample.mspl.txt: This is the text view of an MMSS file (MSPL Table), which Tarn "
          "writes but does not read back: open the file itself or its JSON form.\n"}},
        {{"info", json},
         0,
         {json + ": IS-683E\n", "  notice: Read from the JSON form of IS-683E.\n"}},
        {{"text", json}, 0, {"=============== ROAMING LIST ==============="}},
        {{"text", kMmss + "sample.tot.txt"},
         1,
         {"tarn-cli: text: " + kMmss +
          "sample.tot.txt: This is the text view of an MMSS file "
          "(Tech Order Table)"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        const CliResult r = RunCli(c.args);
        EXPECT_EQ(r.status, c.status) << r.out << r.err;
        const std::string& where = c.status == 0 || c.args[0] == "check" ? r.out : r.err;
        for (const auto& line : c.lines) EXPECT_NE(where.find(line), std::string::npos) << where;
    }
}

}  // namespace
}  // namespace Tarn
