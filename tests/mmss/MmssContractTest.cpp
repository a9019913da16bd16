// One contract over every MMSS kind: a fixed file (encoded by hand from the layouts) reads,
// writes back byte for byte, survives JSON, renders its golden text, and its damaged forms are
// refused with a message.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "mmss/MmssDocument.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;

enum class Damage { EveryPrefix, ShortOfOneRecord, NotText };

struct ContractCase {
    const char* file;
    FileKind kind;
    const char* kindName;
    Damage damage;
};

const ContractCase kCases[] = {
    {"sample.mspl", FileKind::Mspl, "MSPL", Damage::EveryPrefix},
    {"sample.Bst3Gpp", FileKind::Bst3Gpp, "3GPP BST", Damage::EveryPrefix},
    {"sample.mlpl", FileKind::Mlpl, "MLPL", Damage::EveryPrefix},
    {"sample.oplmn", FileKind::Plmn, "OPLMN", Damage::ShortOfOneRecord},
    {"sample.ehplmn", FileKind::Plmn, "EHPLMN", Damage::ShortOfOneRecord},
    {"sample.tot", FileKind::TechOrder, "TOT", Damage::EveryPrefix},
    {"sample.laf", FileKind::Laf, "LAF", Damage::NotText},
};

std::vector<std::vector<uint8_t>> Damaged(const std::vector<uint8_t>& good, Damage damage) {
    std::vector<std::vector<uint8_t>> bad;
    switch (damage) {
        case Damage::EveryPrefix:
            for (size_t n = 0; n < good.size(); ++n)
                bad.emplace_back(good.begin(), good.begin() + n);
            break;
        case Damage::ShortOfOneRecord:
            bad.push_back({});
            bad.emplace_back(good.begin(), good.begin() + 2);
            break;
        case Damage::NotText: {
            auto withNul = good;
            withNul.insert(withNul.begin() + 5, 0);
            bad.push_back(withNul);
            bad.push_back({0xFF, 0xFE, 'S'});
            break;
        }
    }
    return bad;
}

TEST(MmssContract, EveryKindRoundTripsRendersAndRefusesDamage) {
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.file);
        const std::string path = DataPath(c.file);
        const std::vector<uint8_t> original = SlurpBytes(path);
        ASSERT_FALSE(original.empty());
        const FileKindInfo& info = MmssKind(c.kind);

        std::string error;
        auto doc = info.read(original, path, error);
        ASSERT_TRUE(doc) << error;
        EXPECT_EQ(doc->Kind(), c.kind);
        EXPECT_EQ(doc->KindName(), c.kindName);
        EXPECT_TRUE(doc->Check().empty()) << doc->Check().front().message;

        std::vector<uint8_t> written;
        ASSERT_TRUE(doc->Write(written, error)) << error;
        EXPECT_EQ(written, original) << "the writer disagrees with the hand encoding";
        auto again = info.read(written, path, error);
        ASSERT_TRUE(again) << error;
        std::vector<uint8_t> rewritten;
        ASSERT_TRUE(again->Write(rewritten, error)) << error;
        EXPECT_EQ(rewritten, written);

        nlohmann::json json;
        doc->ToJson(json);
        auto fromJson = info.fromJson(nlohmann::json::parse(json.dump()), path, error);
        ASSERT_TRUE(fromJson) << error;
        std::vector<uint8_t> viaJson;
        ASSERT_TRUE(fromJson->Write(viaJson, error)) << error;
        EXPECT_EQ(viaJson, original);

        const std::string text = doc->RenderText();
        const std::string goldenPath = path + ".txt";
        if (std::getenv("TARN_UPDATE_GOLDEN")) std::ofstream(goldenPath, std::ios::binary) << text;
        const auto golden = SlurpBytes(goldenPath);
        EXPECT_EQ(text, std::string(golden.begin(), golden.end()));

        for (const auto& bad : Damaged(original, c.damage)) {
            SCOPED_TRACE("damaged input of " + std::to_string(bad.size()) + " bytes");
            std::string why;
            EXPECT_FALSE(info.read(bad, path, why));
            EXPECT_FALSE(why.empty());
        }
    }
}

// Every header field of every kind at its edges: the smallest and the largest value save and read
// back, one more is refused with the field's message, and an empty field is missing.
TEST(MmssContract, HeaderFieldsTakeTheirWholeRangeAndNoMore) {
    struct Field {
        FileKind kind;
        const char* largest;
        const char* onePast;
        const char* invalid;
        const char* missing;
    };
    const Field fields[] = {
        {FileKind::Mspl, "255", "256", "Invalid Mmss Revision Value. Range is 0 - 255",
         "Mmss Revision Value is Missing"},
        {FileKind::Mspl, "65535", "65536", "Invalid Mspl Version Value.Range is 0 - 65535",
         "Mspl Version Value is missing"},
        {FileKind::Mlpl, "255", "256", "Invalid Mmss Revision Value. Range is 0 - 255",
         "Mmss Revision Value is Missing"},
        {FileKind::Mlpl, "65535", "65536", "Invalid Mlpl Version Value. Range is 0 - 65535",
         "Mlpl Version Value is Missing"},
        {FileKind::Mlpl, "255", "256", "Invalid Mlpl Id Value. Range is 0 - 255",
         "Mlpl Id Value is Missing"},
        {FileKind::Bst3Gpp, "65535", "65536", "Invalid Bst3Gpp Version Value.Range is 0 - 65535",
         "Bst3Gpp Version Value is missing"},
        {FileKind::TechOrder, "65535", "65536", "Invalid Version Value.Range is 0 - 65535",
         "Version Value is missing"},
    };
    std::map<FileKind, size_t> next;  // which field of its kind a row is about
    for (const auto& f : fields) {
        const size_t field = next[f.kind]++;
        SCOPED_TRACE(MmssKind(f.kind).name + " field " + std::to_string(field));
        const std::string path = DataPath(std::string("sample.") +
                                          MmssKind(f.kind).extensions.front());
        std::string error;
        const auto bytes = SlurpBytes(path);
        for (const auto& [value, message] :
             std::vector<std::pair<std::string, std::string>>{
                 {"0", ""}, {f.largest, ""}, {f.onePast, f.invalid}, {"", f.missing}}) {
            auto doc = Mmss::TraitsOf(f.kind).make();
            doc->ReadBytes(bytes, path);
            auto header = doc->HeaderValues();
            ASSERT_LT(field, header.size());
            header[field] = value;
            doc->SetHeaderValues(header);
            std::vector<uint8_t> written;
            if (!message.empty()) {
                EXPECT_FALSE(doc->Write(written, error)) << value;
                EXPECT_EQ(error, message);
                continue;
            }
            ASSERT_TRUE(doc->Write(written, error)) << value << ": " << error;
            auto back = Mmss::TraitsOf(f.kind).make();
            back->ReadBytes(written, path);
            EXPECT_EQ(back->HeaderValues(), header);
        }
    }
}

TEST(MmssContract, JsonOfAnotherKindOrShapeIsRefused) {
    struct Case {
        FileKind kind;
        const char* json;
        const char* path;
        const char* expected;
    };
    const Case cases[] = {
        {FileKind::Mspl, R"({"fileType":"MLPL","msplIds":[]})", "", "not MSPL"},
        {FileKind::Mspl, R"([1,2])", "", "must be an object"},
        {FileKind::Mspl, R"({"msplIds":[{"msplId":1,"records":[{"sysType":1}]}]})", "",
         "priorityClass is missing"},
        {FileKind::TechOrder, R"({"records":[{"ratId":300}]})", "", "300 is outside 0 - 255"},
        {FileKind::Laf, R"({"records":[{"sid":"1","nid":0,"bid":0,"cnt":0}]})", "",
         "sid must be a whole number"},
        {FileKind::Plmn, R"({"records":[]})", "list.bin", "kind is not set"},
        {FileKind::Plmn, R"({"fileType":"UPLMN","records":[{"mcc":"31","mnc":"01"}]})", "",
         "mcc \"31\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.json);
        std::string error;
        EXPECT_FALSE(MmssKind(c.kind).fromJson(nlohmann::json::parse(c.json), c.path, error));
        EXPECT_NE(error.find(c.expected), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace Tarn
