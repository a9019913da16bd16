// Reading a file by what it holds rather than by its name, the notices a read leaves for the
// user, and the roaming list writer at the edge of its size field.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "formats/FileKinds.h"

namespace Tarn {
namespace {

std::vector<uint8_t> Load(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

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
        auto doc = ReadFileDocumentBytes(Load(c.file), c.readAs, error);
        ASSERT_TRUE(doc) << error;
        EXPECT_EQ(doc->KindName(), c.kind);
        EXPECT_EQ(doc->Notices(), c.notice.empty() ? std::vector<std::string>{}
                                                   : std::vector<std::string>{c.notice});
    }
}

TEST(ContentForms, EveryMmssKindComesBackFromItsJsonUnderAnyName) {
    for (const char* name : {"sample.mspl", "sample.mlpl", "sample.Bst3Gpp", "sample.ehplmn",
                             "sample.oplmn", "sample.tot", "sample.laf"}) {
        SCOPED_TRACE(name);
        const std::vector<uint8_t> original = Load(kMmss + name);
        std::string error;
        auto doc = ReadFileDocumentBytes(original, name, error);
        ASSERT_TRUE(doc) << error;
        nlohmann::json json;
        doc->ToJson(json);

        auto again = ReadFileDocumentBytes(Bytes(json.dump(1)), "exported.json", error);
        ASSERT_TRUE(again) << error;
        EXPECT_EQ(again->KindName(), doc->KindName());
        std::vector<uint8_t> written;
        ASSERT_TRUE(again->Write(written, error)) << error;
        EXPECT_EQ(written, original);
    }
}

TEST(ContentForms, WhatIsNotReadableSaysWhatItIs) {
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        std::string readAs;
        std::string error;  // the start of the message
    };
    const Case cases[] = {
        {"MMSS text view", Load(kMmss + "sample.mspl.txt"), "sample.mspl.txt",
         "This is the text view of an MMSS file (MSPL Table), which Tarn writes but does not "
         "read back"},
        {"MMSS text view under a list name", Load(kMmss + "sample.tot.txt"), "x.prl",
         "This is the text view of an MMSS file (Tech Order Table)"},
        {"broken JSON", Bytes("{\"kind\": \"roamingList\", "), "x.prl",
         "The file starts like JSON but is not valid JSON: "},
        {"unknown JSON kind", Bytes("{\"fileType\": \"XYZ\"}"), "x.json",
         "The JSON describes a XYZ file, a kind Tarn does not read."},
        {"JSON array", Bytes("[1, 2]"), "x.json",
         "The JSON holds no file description: a JSON object is expected."},
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

TEST(ContentForms, ARoamingListThatOpensEmptySaysSo) {
    std::string error;
    auto doc = ReadFileDocumentBytes(Bytes(R"({"kind": "roamingList", "version": "IS-683A",
                  "header": {"prefListId": 1, "prefOnly": false, "defRoamInd": 1},
                  "acquisitionTable": [], "systemTable": []})"),
                                     "x.json", error);
    ASSERT_TRUE(doc) << error;
    EXPECT_EQ(doc->Notices(),
              (std::vector<std::string>{"There are no acquisition records in the file.",
                                        "There are no system records in the file.",
                                        "Read from the JSON form of IS-683A."}));
}

TEST(ContentForms, AValueWithoutANameIsRefusedByTheTextFormNamingItsRecord) {
    // Found by fuzzing: a PCS block past F reads from JSON, and the text view used to fail with
    // no word of where.
    std::string error;
    auto doc = ReadFileDocumentBytes(Bytes(R"({"kind": "roamingList", "version": "IS-683A",
                  "header": {"prefListId": 1, "prefOnly": false, "defRoamInd": 1},
                  "acquisitionTable": [{"type": 5, "blocks": [{"block": 6}]}],
                  "systemTable": []})"),
                                     "x.json", error);
    ASSERT_TRUE(doc) << error;
    try {
        (void)doc->RenderText();
        ADD_FAILURE() << "rendered a value that has no name";
    } catch (const std::exception& e) {
        EXPECT_NE(std::string(e.what()).find("(acquisition record 0: field 1 has no name)"),
                  std::string::npos)
            << e.what();
    }
}

// An IS-683A list of `systems` records of 37 bits each.
std::unique_ptr<FileDocument> ListOf(size_t systems) {
    nlohmann::json json = {{"kind", "roamingList"},
                           {"version", "IS-683A"},
                           {"header", {{"prefListId", 1}, {"prefOnly", false}, {"defRoamInd", 1}}},
                           {"acquisitionTable", {{{"type", 1}, {"system", 0}}}}};
    nlohmann::json system = {{"type", 0},     {"negPref", 1}, {"geography", 0}, {"priority", 1},
                             {"acqIndex", 0}, {"roamInd", 1}, {"sid", 4139},    {"nidIncl", 0}};
    json["systemTable"] = nlohmann::json::array();
    for (size_t i = 0; i < systems; ++i) json["systemTable"].push_back(system);
    std::string error;
    auto doc = FindFileKind(FileKind::RoamingList)->fromJson(json, "x.prl", error);
    if (!doc) throw std::runtime_error(error);
    return doc;
}

TEST(ContentForms, RoamingListSizeFieldHoldsTheLargestListAndRefusesTheNextRecord) {
    // From the size of a list well below the limit, the record count near it (records are 37
    // bits), then record by record to the last one that fits.
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(ListOf(13000)->Write(bytes, error)) << error;
    size_t low = 13000 + (65535 - bytes.size()) * 8 / 37;
    while (ListOf(low + 1)->Write(bytes, error)) ++low;
    while (!ListOf(low)->Write(bytes, error)) --low;
    ASSERT_LT(low, 16383u);  // stopped by the size field, not the record count
    ASSERT_TRUE(ListOf(low)->Write(bytes, error)) << error;
    EXPECT_GT(bytes.size(), 65535u - 5);  // a record is under five bytes
    EXPECT_LE(bytes.size(), 65535u);
    EXPECT_EQ((size_t{bytes[0]} << 8) | bytes[1], bytes.size());

    std::vector<uint8_t> none;
    EXPECT_FALSE(ListOf(low + 1)->Write(none, error));
    EXPECT_TRUE(none.empty());
    EXPECT_NE(error.find("bytes; its 16-bit size field holds at most 65,535."), std::string::npos)
        << error;
    EXPECT_NE(error.find("The list would be 655"), std::string::npos) << error;
}

}  // namespace
}  // namespace Tarn
