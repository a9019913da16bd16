// Black-box runs of the spreadsheet verbs (csv, xlsx, build DIR) and of the operator names that
// --providers brings to them and to info --systems.
#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
namespace fs = std::filesystem;

TEST(CliExchange, EveryListComesBackByteForByteThroughCsv) {
    std::vector<fs::path> lists;
    for (const auto& entry : fs::directory_iterator(fs::path(kData) / "roaming_list"))
        lists.push_back(entry.path() / "input.prl");
    for (const auto& entry : fs::directory_iterator(kExamples))
        if (entry.path().extension() == ".prl") lists.push_back(entry.path());
    TempDir dir;
    for (const auto& list : lists) {
        const std::string csv = dir.File(list.parent_path().filename().string() + "-" + list.stem().string());
        Expect({"csv", list.string(), "-o", csv}, 0);
        for (const char* name : {"header.csv", "acquisition.csv", "system.csv"})
            EXPECT_TRUE(fs::exists(fs::path(csv) / name)) << name;
        Expect({"build", csv, "-o", dir.File("rebuilt.prl")}, 0);
        EXPECT_EQ(SlurpBytes(dir / "rebuilt.prl"), SlurpBytes(list)) << list;
    }
    // The same tables can be written as another version.
    Expect({"build", dir.File("examples-example-is683a"), "-o", dir.File("c.prl"), "--version", "C"}, 0);
    Expect({"check", dir.File("c.prl")}, 0, {": IS-683C, size and CRC valid"});
}

TEST(CliExchange, BuildNamesTheBadCellAndWritesNothing) {
    TempDir dir;
    const fs::path csv = dir / "list";
    Expect({"csv", kListE, "-o", csv.string()}, 0);
    // Record 0 (row 2) of the system table points at an acquisition record the list does not have.
    std::string text = Slurp(csv / "system.csv");
    text.replace(text.find(",New,More,0,"), 12, ",New,More,600,");
    WriteText(csv / "system.csv", text);
    Expect({"build", csv.string(), "-o", dir.File("out.prl")}, 1,
           {"tarn-cli: build: " + (csv / "system.csv").string() +
                ":2:5: An invalid ACQ Index is entered column 4, row 0 of the System Record Table.\n"});
    fs::remove(csv / "header.csv");
    Expect({"build", csv.string(), "-o", dir.File("out.prl")}, 1, {"header.csv"});
    EXPECT_FALSE(fs::exists(dir / "out.prl"));
}

TEST(CliExchange, OperatorNamesComeFromTheGivenDatabase) {
    TempDir dir;
    // SID 4139 claimed by two providers, one PLMN.
    WriteText(dir / "providers.xml", R"(<?xml version="1.0"?><serviceproviders><country code="us">
        <provider><name>Alpha Wireless</name><cdma><sid value="4139"/></cdma></provider>
        <provider><name>Beta Mobile</name><cdma><sid value="4139"/></cdma>
        <gsm><network-id mcc="311" mnc="480"/></gsm></provider></country></serviceproviders>)");
    const std::string providers = dir.File("providers.xml");
    const CliResult info = Expect({"info", kListE, "--systems", "--providers", providers}, 0,
                                  {"GEO 0", "SID 4139 NID 65535\tacq 0\tAlpha Wireless / Beta Mobile (",
                                   "PLMN 311-480\tacq 5\tBeta Mobile ("});
    EXPECT_EQ(info.err, "");
    Expect({"csv", kListE, "-o", dir.File("csv"), "--providers", providers}, 0);
    EXPECT_TRUE(Has(Slurp(dir / "csv" / "system.csv"), ",Alpha Wireless / Beta Mobile,"));
    Expect({"select", kListE, "--sid", "4139", "--providers", providers}, 0,
           {"\t4139\t12\t1  (Alpha Wireless / Beta Mobile (United States))\n"});

    // A database that cannot be read leaves the names out with one warning.
    WriteText(dir / "broken.xml", "<serviceproviders><country");
    const CliResult r = Expect({"info", kListE, "--systems", "--providers", dir.File("broken.xml")}, 0, {"SID 4139"});
    EXPECT_FALSE(Has(r.out, "Alpha"));
    EXPECT_EQ(r.err.rfind("tarn-cli: info: warning: broken.xml: not a provider database (", 0), 0u) << r.err;
    EXPECT_EQ(Lines(r.err).size(), 1u) << r.err;
}

TEST(CliExchange, XlsxIsAWorkbookAndNothingIsWrittenFromAnUnreadableList) {
    TempDir dir;
    Expect({"xlsx", kListE, "-o", dir.File("list.xlsx")}, 0);
    const std::string book = Slurp(dir / "list.xlsx");
    EXPECT_EQ(book.substr(0, 2), "PK");  // an OOXML package is a zip archive
    for (const char* part : {"xl/worksheets/sheet1.xml", "xl/worksheets/sheet3.xml"})
        EXPECT_TRUE(Has(book, part)) << part;
    WriteText(dir / "junk.prl", "not a list");
    for (const std::string verb : {"xlsx", "csv"}) {
        const CliResult r =
            Expect({verb, dir.File("junk.prl"), "-o", dir.File("junk.out")}, 1, {"tarn-cli: " + verb + ": "});
        EXPECT_EQ(r.out, "");
        EXPECT_FALSE(fs::exists(dir / "junk.out"));
    }
}

}  // namespace
}  // namespace Tarn
