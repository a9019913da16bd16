// Reading a file by what it holds rather than by its name, the notices a read leaves for the
// user, the head of a file that decides its form, and what a roaming list document refuses.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/ContentSniff.h"
#include "formats/FileKinds.h"
#include "tests/support/Files.h"

namespace Tarn {
namespace {

using Test::SlurpBytes;

std::vector<uint8_t> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

const std::string kExamples = TARN_EXAMPLES_DIR;
const std::string kMmss = std::string(TARN_TEST_DATA_DIR) + "/mmss/";

TEST(ContentForms, JsonAndTextFormsAreReadWhateverTheFileIsCalled) {
    struct Case {
        std::string file;
        std::string readAs;  // the path the bytes are read under
        std::string kind;
        std::string notice;
    };
    const std::string json = "Read from the JSON form of ";
    const std::string text = "The file holds the text form of a roaming list and was read as such.";
    const Case cases[] = {
        {kExamples + "/example-is683e.json", "list.json", "IS-683E", json + "IS-683E."},
        {kExamples + "/example-is683a.json", "list.prl", "IS-683A", json + "IS-683A."},
        {kExamples + "/example-is683e.json", "list.txt", "IS-683E (text)",
         json + "IS-683E (text)."},
        {kExamples + "/example-is683e.txt", "list.prl", "IS-683E (text)", text},
        {kExamples + "/example-is683e.txt", "list.laf", "IS-683E (text)", text},
        {kExamples + "/example-is683e.txt", "list.txt", "IS-683E (text)", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file + " as " + c.readAs);
        std::string error;
        auto doc = ReadFileDocumentBytes(SlurpBytes(c.file), c.readAs, error);
        ASSERT_TRUE(doc) << error;
        EXPECT_EQ(doc->KindName(), c.kind);
        EXPECT_EQ(doc->Notices(), c.notice.empty() ? std::vector<std::string>{}
                                                   : std::vector<std::string>{c.notice});
    }
}

// The JSON's "fileType" decides the kind, whatever the file is called.
TEST(ContentForms, EveryMmssKindComesBackFromItsJsonUnderAnyName) {
    for (const char* name : {"sample.mspl", "sample.mlpl", "sample.Bst3Gpp", "sample.ehplmn", "sample.oplmn",
                             "sample.tot", "sample.laf"}) {
        SCOPED_TRACE(name);
        const std::vector<uint8_t> original = SlurpBytes(kMmss + name);
        std::string error;
        nlohmann::json json;
        ReadFileDocumentBytes(original, name, error)->ToJson(json);
        auto again = ReadFileDocumentBytes(Bytes(json.dump(1)), "exported.json", error);
        ASSERT_TRUE(again) << error;
        std::vector<uint8_t> written;
        ASSERT_TRUE(again->Write(written, error)) << error;
        EXPECT_EQ(written, original);
    }
}

// The form is told from the first 512 bytes, after a byte order mark and blanks; the banner of the
// text form must stand within the first 60 characters from there.
TEST(ContentForms, TheHeadOfTheFileDecidesItsForm) {
    const std::string bom = "\xEF\xBB\xBF", banner = "ROAMING LIST";
    const struct {
        std::string head;
        ContentForm form;
    } cases[] = {
        {"", ContentForm::Binary},
        {" \t\r\n", ContentForm::Binary},
        {std::string(511, ' ') + "{", ContentForm::Json},
        {std::string(512, ' ') + "{", ContentForm::Binary},
        {bom + std::string(508, ' ') + "[", ContentForm::Json},
        {bom + std::string(509, ' ') + "[", ContentForm::Binary},
        {std::string(48, '=') + banner, ContentForm::RoamingListText},
        {std::string(49, '=') + banner, ContentForm::Binary},
        {"\n  " + std::string(48, '=') + banner, ContentForm::RoamingListText},
    };
    for (const auto& c : cases) EXPECT_EQ(SniffContent(Bytes(c.head)), c.form) << c.head.size();

    // The text view of an MMSS file: its title between two banners of eleven stars.
    EXPECT_EQ(MmssTextTitle(Bytes(bom + "\t\t*********** MSPL Table ***********\r\n")), "MSPL Table");
    for (const char* other : {"*********** MSPL Table", "********** MSPL Table ***********",
                              "*********** MSPL List ***********", "*********** Table ***********",
                              "***********   ***********"})
        EXPECT_EQ(MmssTextTitle(Bytes(other)), "") << other;
}

TEST(ContentForms, WhatIsNotReadableSaysWhatItIs) {
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        std::string readAs;
        std::string error;  // the start of the message
    };
    const Case cases[] = {
        {"MMSS text view", SlurpBytes(kMmss + "sample.mspl.txt"), "sample.mspl.txt",
         "This is the text view of an MMSS file (MSPL Table), which Tarn writes but does not "
         "read back"},
        {"MMSS text view under a list name", SlurpBytes(kMmss + "sample.tot.txt"), "x.prl",
         "This is the text view of an MMSS file (Tech Order Table)"},
        {"broken JSON", Bytes("{\"kind\": \"roamingList\", "), "x.prl",
         "The file starts like JSON but is not valid JSON: "},
        {"unknown JSON kind", Bytes("{\"fileType\": \"XYZ\"}"), "x.json",
         "The JSON describes a XYZ file, a kind Tarn does not read."},
        {"JSON array", Bytes("[1, 2]"), "x.json",
         "The JSON holds no file description: a JSON object is expected."},
        {"kind not named by a text", Bytes("{\"fileType\": 7}"), "x.json", "\"fileType\" must be a text."},
        {"JSON of a kind, wrong inside", Bytes("{\"fileType\": \"MSPL\"}"), "x.json",
         "(msplIds is missing)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::string error;
        EXPECT_FALSE(ReadFileDocumentBytes(c.bytes, c.readAs, error));
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
}

// An IS-683A list of `systems` records of 37 bits each behind one acquisition record.
std::unique_ptr<FileDocument> ListOf(size_t systems, nlohmann::json acquisition = {{"type", 1}, {"system", 0}}) {
    nlohmann::json json = {{"kind", "roamingList"},
                           {"version", "IS-683A"},
                           {"header", {{"prefListId", 1}, {"prefOnly", false}, {"defRoamInd", 1}}},
                           {"acquisitionTable", nlohmann::json::array({acquisition})},
                           {"systemTable", nlohmann::json::array()}};
    for (size_t i = 0; i < systems; ++i)
        json["systemTable"].push_back({{"type", 0}, {"negPref", 1}, {"geography", 0}, {"priority", 1},
                                       {"acqIndex", 0}, {"roamInd", 1}, {"sid", 4139}, {"nidIncl", 0}});
    std::string error;
    auto doc = FindFileKind(FileKind::RoamingList)->fromJson(json, "x.prl", error);
    if (!doc) throw std::runtime_error(error);
    return doc;
}

TEST(ContentForms, AValueWithoutANameIsRefusedByTheTextFormNamingItsRecord) {
    // Found by fuzzing: a PCS block past F reads from JSON, and the text view used to fail with
    // no word of where.
    auto doc = ListOf(0, {{"type", 5}, {"blocks", {{{"block", 6}}}}});
    try {
        (void)doc->RenderText();
        ADD_FAILURE() << "rendered a value that has no name";
    } catch (const std::exception& e) {
        EXPECT_TRUE(std::string(e.what()).find("(acquisition record 0: field 1 has no name)") != std::string::npos)
            << e.what();
    }
}

// The writer's own refusal comes through whole, and nothing is written. (The roaming list writer
// pins where its size field ends; this is the document's way to it.)
TEST(ContentForms, AListPastItsSizeFieldIsRefusedWithTheWritersReason) {
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(ListOf(10)->Write(bytes, error)) << error;
    EXPECT_EQ((size_t{bytes[0]} << 8) | bytes[1], bytes.size());
    std::vector<uint8_t> none;
    EXPECT_FALSE(ListOf(16383)->Write(none, error));  // the most records a table holds, 37 bits each
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(error, "The list would be 75783 bytes; its 16-bit size field holds at most 65,535.");
}

}  // namespace
}  // namespace Tarn
