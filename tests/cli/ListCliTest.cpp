// The file verbs of tarn-cli on real files (text, json, build, convert, join, split, optimize):
// their output, their exit status, the bytes they write, and the size limits of what they read.
#include <map>
#include <nlohmann/json.hpp>

#include "tests/cli/CliRunner.h"

namespace Tarn {
namespace {

using namespace Test;
namespace fs = std::filesystem;

TEST(CliList, TextAndJsonGoToStdoutOrAFile) {
    TempDir dir;
    const CliResult text = Expect({"text", kListE}, 0);
    EXPECT_EQ(text.out, Slurp(kExamples + "/example-is683e.txt"));
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(Expect({"text", kListE, "-o", dir.File("out.txt")}, 0).out, "");
    EXPECT_EQ(Slurp(dir / "out.txt"), text.out);
    Expect({"json", kListA}, 0, {"\"version\": \"IS-683A\"", "\"typeName\": \"Analog Cellular\""});
}

// build takes the kind to write from the output's name and gives back the very bytes the JSON
// (and, for a roaming list, the text form) came from.
TEST(CliList, BuildGivesBackTheBytesOfEveryKind) {
    TempDir dir;
    for (const std::string& file : {kListA, kListE, kMmss + "sample.mspl", kMmss + "sample.mlpl",
                                    kMmss + "sample.ehplmn", kMmss + "sample.oplmn", kMmss + "sample.Bst3Gpp",
                                    kMmss + "sample.tot", kMmss + "sample.laf"}) {
        SCOPED_TRACE(file);
        const std::string name = fs::path(file).filename().string(), rebuilt = dir.File(name);
        Expect({"check", file}, 0, {"valid"});
        std::vector<std::string> forms = {"json"};
        if (file == kListA || file == kListE) forms.push_back("text");
        for (const auto& form : forms) {
            const std::string exported = dir.File(name + "." + (form == "json" ? "json" : "txt"));
            Expect({form, file, "-o", exported}, 0);
            fs::remove(rebuilt);
            Expect({"build", exported, "-o", rebuilt}, 0);
            EXPECT_EQ(SlurpBytes(rebuilt), SlurpBytes(file)) << form;
        }
    }
}

TEST(CliList, ConvertSaysWhatADownConversionDropped) {
    TempDir dir;
    const CliResult down = Expect({"convert", kListE, "--to", "IS-683B", "-o", dir.File("b.prl")}, 0,
                                  {"\n  acquisition record 3 (CDMA Generic) dropped: IS-683B cannot carry it\n"});
    EXPECT_EQ(down.err.rfind("tarn-cli: convert: IS-683E -> IS-683B: 9 change(s):\n", 0), 0u) << down.err;
    Expect({"check", dir.File("b.prl")}, 0,
           {": IS-683A, size and CRC valid, not prefixed, 3 acquisition and 3 system records"});
    EXPECT_EQ(Expect({"convert", kListA, "--to", "E", "-o", dir.File("e.prl")}, 0).err, "");
    // A binary list does not name its version: the lowest version that reads it wins.
    Expect({"check", dir.File("e.prl")}, 0, {": IS-683C, size and CRC valid"});
}

TEST(CliList, JoinAndSplitRoundTripAndAChangedByteIsRefused) {
    TempDir dir;
    const std::string joined = JoinedExamples(dir);
    const size_t a = SlurpBytes(kListA).size(), e = SlurpBytes(kListE).size();
    EXPECT_EQ(SlurpBytes(joined).size(), a + e + 2);
    EXPECT_EQ(Expect({"check", joined}, 0).out,
              joined + ": Concatenated PRL file, outer CRC valid, first list " + std::to_string(a) +
                  " bytes, second list " + std::to_string(e) + " bytes (split it to edit the lists)\n");
    Expect({"split", joined, "-o", dir.File("1.prl"), dir.File("2.prl")}, 0);
    EXPECT_EQ(SlurpBytes(dir / "1.prl"), SlurpBytes(kListA));
    EXPECT_EQ(SlurpBytes(dir / "2.prl"), SlurpBytes(kListE));

    std::vector<uint8_t> bytes = SlurpBytes(joined);
    bytes[bytes.size() / 2] ^= 0x10;
    WriteBytes(dir / "bad.prl", bytes);
    EXPECT_EQ(Expect({"split", dir.File("bad.prl"), "-o", dir.File("x.prl"), dir.File("y.prl")}, 1).err,
              "tarn-cli: split: Input file is not a valid Concatenated PRL file.\n");
}

TEST(CliList, OptimizeWritesAProvenSmallerListThatBehavesAsItsInput) {
    TempDir dir;
    // The example with a duplicate acquisition record in use besides its unused one.
    nlohmann::json list = nlohmann::json::parse(Slurp(kJsonE));
    list["acquisitionTable"].push_back(list["acquisitionTable"][3]);
    list["systemTable"][6]["acqIndex"] = 7;
    const std::string in = dir.File("in.json"), out = dir.File("out.prl");
    WriteText(in, list.dump());
    const CliResult r =
        Expect({"optimize", in, "-o", out, "--report"}, 0,
               {"unused-acquisition: 1 record, 8 bytes saved (acquisition records no system uses)\n",
                "duplicate-acquisition: 1 record, 6 bytes saved (acquisition records equal to an earlier one)\n",
                "  proof: every observation (21 classes) gets the same behaviour from both lists\n"});
    EXPECT_EQ(r.out.rfind(in + ": 130 -> 116 bytes (14 saved, 10.8%)\n", 0), 0u) << r.out;
    EXPECT_EQ(SlurpBytes(out).size(), 116u);
    Expect({"diff", "--behaviour", in, out}, 0, {"Same behaviour"});
}

// One line on stderr and the status of its class for each kind of failure, and nothing written.
TEST(CliList, FailuresAreOneLineWithTheirExitStatus) {
    TempDir dir;
    WriteBytes(dir / "garbage.prl", {1, 2, 3, 4, 5, 6});
    WriteText(dir / "text.txt", "hi");
    WriteText(dir / "junk.prl", "not a list");
    std::vector<uint8_t> mspl = SlurpBytes(kMmss + "sample.mspl");
    mspl.resize(3);
    WriteBytes(dir / "short.mspl", mspl);
    const std::string o = dir.File("o.prl"), joined = JoinedExamples(dir);
    const struct {
        std::vector<std::string> args;
        int status;
        std::string err;
    } cases[] = {
        {{"text", dir.File("missing.prl")}, 1, "No such file"},
        {{"text", dir.File("garbage.prl")}, 1, "The Roaming List file is not a recognized format."},
        {{"text", dir.File("short.mspl")}, 1, "tarn-cli: text: "},
        {{"text", joined}, 1, "Concatenated PRL file"},
        {{"build", dir.File("text.txt"), "-o", o}, 1, "The Roaming List file is not a recognized format."},
        {{"convert", kListA, "--to", "IS-683Z", "-o", o}, 2, "unknown version"},
        {{"join", kListA, kListA, "-o", o}, 2, "Two different files"},
        {{"join", kListA, dir.File("text.txt"), "-o", o}, 1, "Second input file is not a valid roaming list file."},
        {{"split", kListA, "-o", dir.File("1.prl"), dir.File("2.prl")}, 1,
         "Input file is not a valid Concatenated PRL file."},
        {{"optimize", dir.File("junk.prl"), "-o", o}, 2, "tarn-cli: optimize: "},
    };
    for (const auto& c : cases) {
        const CliResult r = Expect(c.args, c.status, {c.err});
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(Lines(r.err).size(), 1u) << r.err;
    }
    EXPECT_FALSE(fs::exists(o));
}

// Each reader takes a file of exactly its limit (a NUL-filled one fails later, for what it holds)
// and refuses one byte more before reading it, naming the size.
TEST(CliList, ReadersTakeFilesUpToTheirSizeLimitAndNoMore) {
    TempDir dir;
    const std::string policy = dir.File("policy.json"), json = dir.File("big.json"), xml = dir.File("big.xml");
    const std::string csv = dir.File("csv"), table = csv + "/system.csv", out = dir.File("o.prl");
    Expect({"csv", kListE, "-o", csv}, 0);
    const std::map<std::string, std::vector<std::string>> reader = {
        {policy, {"lint", kListE, "--policy", policy}},
        {json, {"build", json, "-o", out}},
        {table, {"build", csv, "-o", out}},
        {xml, {"info", kListE, "--systems", "--providers", xml}},
    };
    const uintmax_t kDefault = uintmax_t{64} << 20, kPolicy = uintmax_t{1} << 20, kXml = uintmax_t{8} << 20;
    const auto tooLarge = [](uintmax_t size, const std::string& path) {
        return "File too large (" + std::to_string(size) + " bytes): " + path + "\n";
    };
    const struct {
        std::string file;
        uintmax_t size;
        int status;
        std::string err;
    } cases[] = {
        {policy, kPolicy, 0, ""},
        {policy, kPolicy + 1, 2, "tarn-cli: lint: " + tooLarge(kPolicy + 1, policy)},
        {json, kDefault, 1, "tarn-cli: build: " + json + ": not valid JSON\n"},
        {json, kDefault + 1, 1, "tarn-cli: build: " + tooLarge(kDefault + 1, json)},
        {table, kDefault, 1, "system.csv:1:1: a cell longer than 65536 bytes\n"},
        {table, kDefault + 1, 1, "tarn-cli: build: " + tooLarge(kDefault + 1, table)},
        {xml, kXml, 0, "tarn-cli: info: warning: big.xml: not a provider database (Document is empty"},
        {xml, kXml + 1, 0, "tarn-cli: info: warning: " + tooLarge(kXml + 1, xml)},
    };
    for (const auto& c : cases) {
        if (c.file == policy) {
            WriteText(policy, R"({"prefOnly": true})" + std::string(c.size - 18, ' '));
        } else {
            WriteText(c.file, "");
            fs::resize_file(c.file, c.size);  // sparse: nothing is written to disk
        }
        const CliResult r = Expect(reader.at(c.file), c.status, {c.err});
        if (c.err.empty()) {
            EXPECT_EQ(r.err, "");
        }
        EXPECT_FALSE(fs::exists(out));
    }
}

}  // namespace
}  // namespace Tarn
