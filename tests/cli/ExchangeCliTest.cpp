// Black-box runs of the spreadsheet verbs (csv, xlsx, build DIR) and of the operator names that
// --providers brings to them and to info --systems.
#include <gtest/gtest.h>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
namespace fs = std::filesystem;

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kListE = kExamples + "/example-is683e.prl";

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

void WriteText(const fs::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

// A small database of our own: SID 4139 claimed by two providers, one PLMN.
const char* const kProviders = R"(<?xml version="1.0"?>
<serviceproviders>
 <country code="us">
  <provider><name>Alpha Wireless</name><cdma><sid value="4139"/></cdma></provider>
  <provider><name>Beta Mobile</name><cdma><sid value="4139"/></cdma>
   <gsm><network-id mcc="311" mnc="480"/></gsm></provider>
 </country>
</serviceproviders>
)";

TEST(CliExchange, EveryListComesBackByteForByteThroughCsv) {
    std::vector<fs::path> lists;
    for (const auto& entry : fs::directory_iterator(fs::path(TARN_TEST_DATA_DIR) / "roaming_list"))
        lists.push_back(entry.path() / "input.prl");
    for (const auto& entry : fs::directory_iterator(kExamples))
        if (entry.path().extension() == ".prl") lists.push_back(entry.path());
    TempDir dir;
    for (const auto& list : lists) {
        SCOPED_TRACE(list.string());
        const fs::path csv = dir / list.parent_path().filename().string();
        CliResult out = RunCli({"csv", list.string(), "-o", csv.string()});
        ASSERT_EQ(out.status, 0) << out.err;
        for (const char* name : {"header.csv", "acquisition.csv", "system.csv"})
            EXPECT_TRUE(fs::exists(csv / name)) << name;
        const fs::path rebuilt = dir / "rebuilt.prl";
        CliResult in = RunCli({"build", csv.string(), "-o", rebuilt.string()});
        ASSERT_EQ(in.status, 0) << in.err;
        EXPECT_EQ(SlurpBytes(rebuilt), SlurpBytes(list));
    }
}

TEST(CliExchange, BuildNamesTheBadCellAndWritesNothing) {
    TempDir dir;
    const fs::path csv = dir / "list";
    ASSERT_EQ(RunCli({"csv", kListE, "-o", csv.string()}).status, 0);
    // Row 3 of system.csv is record 1; its fifth column is the acquisition index.
    std::string text = Slurp(csv / "system.csv");
    const size_t row3 = text.find("\r\n", text.find("\r\n") + 2) + 2;
    ASSERT_EQ(text.compare(row3, 13, "\"95(A,B)/1x\","), 0);  // the type's name holds a comma
    size_t cell = row3 + 13;
    for (int comma = 0; comma < 3; ++comma) cell = text.find(',', cell) + 1;
    text.replace(cell, text.find(',', cell) - cell, "600");
    WriteText(csv / "system.csv", text);

    CliResult r = RunCli({"build", csv.string(), "-o", (dir / "out.prl").string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "tarn-cli: build: " + (csv / "system.csv").string() + ":3:5: ")) << r.err;
    EXPECT_TRUE(Has(r.err, "An invalid ACQ Index is entered column 4, row 1")) << r.err;
    EXPECT_FALSE(fs::exists(dir / "out.prl"));

    fs::remove(csv / "header.csv");
    r = RunCli({"build", csv.string(), "-o", (dir / "out.prl").string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(Has(r.err, "header.csv")) << r.err;
}

TEST(CliExchange, BuildDirectoryTakesAnotherVersion) {
    TempDir dir;
    const fs::path csv = dir / "list";
    ASSERT_EQ(RunCli({"csv", kExamples + "/example-is683a.prl", "-o", csv.string()}).status, 0);
    CliResult r = RunCli({"build", csv.string(), "-o", (dir / "c.prl").string(), "--version", "C"});
    ASSERT_EQ(r.status, 0) << r.err;
    CliResult info = RunCli({"info", (dir / "c.prl").string()});
    EXPECT_TRUE(Has(info.out, "IS-683C")) << info.out;
}

TEST(CliExchange, OperatorNamesComeFromTheGivenDatabase) {
    TempDir dir;
    WriteText(dir / "providers.xml", kProviders);
    const std::string providers = (dir / "providers.xml").string();

    CliResult info = RunCli({"info", kListE, "--systems", "--providers", providers});
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_TRUE(info.err.empty()) << info.err;
    EXPECT_TRUE(Has(info.out, "GEO 0")) << info.out;
    EXPECT_TRUE(Has(info.out, "SID 4139 NID 65535\tacq 0\tAlpha Wireless / Beta Mobile (")) << info.out;
    EXPECT_TRUE(Has(info.out, "PLMN 311-480\tacq 5\tBeta Mobile (")) << info.out;

    CliResult csv = RunCli({"csv", kListE, "-o", (dir / "csv").string(), "--providers", providers});
    ASSERT_EQ(csv.status, 0) << csv.err;
    EXPECT_TRUE(Has(Slurp(dir / "csv" / "system.csv"), ",Alpha Wireless / Beta Mobile,"));

    // A database that is missing or broken leaves the names out with one warning.
    WriteText(dir / "broken.xml", "<serviceproviders><country");
    for (const std::string& bad : {(dir / "absent.xml").string(), (dir / "broken.xml").string()}) {
        SCOPED_TRACE(bad);
        CliResult r = RunCli({"info", kListE, "--systems", "--providers", bad});
        EXPECT_EQ(r.status, 0);
        EXPECT_FALSE(Has(r.out, "Alpha"));
        EXPECT_TRUE(Has(r.out, "SID 4139"));
        const size_t first = r.err.find("tarn-cli: info: warning: ");
        ASSERT_NE(first, std::string::npos) << r.err;
        EXPECT_EQ(r.err.find("warning", first + 30), std::string::npos) << r.err;
    }
}

TEST(CliExchange, XlsxIsAWorkbookAndRefusesAnUnreadableList) {
    TempDir dir;
    CliResult r = RunCli({"xlsx", kListE, "-o", (dir / "list.xlsx").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string book = Slurp(dir / "list.xlsx");
    ASSERT_GT(book.size(), 1000u);
    EXPECT_EQ(book.substr(0, 2), "PK");  // an OOXML package is a zip archive
    for (const char* part : {"xl/worksheets/sheet1.xml", "xl/worksheets/sheet3.xml"})
        EXPECT_TRUE(Has(book, part)) << part;

    WriteText(dir / "junk.prl", "not a list");
    for (const char* verb : {"xlsx", "csv"}) {
        SCOPED_TRACE(verb);
        CliResult bad = RunCli({verb, (dir / "junk.prl").string(), "-o", (dir / "junk.out").string()});
        EXPECT_EQ(bad.status, 1);
        EXPECT_TRUE(Has(bad.err, std::string("tarn-cli: ") + verb + ": ")) << bad.err;
        EXPECT_FALSE(fs::exists(dir / "junk.out"));
    }
}

}  // namespace
}  // namespace Tarn
