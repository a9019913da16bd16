// Walks tests/data/roaming_list/<case>/: each case holds input.prl, its expected text and JSON,
// and expected.prl when the list is written back differently (a prefix dropped, say). The text
// form shows only the length of an undefined acquisition record's data, so a case holding one
// also has expected-from-text.prl: what the list becomes after a trip through its text.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "roaming_list/Conversion.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"

namespace Tarn {
namespace {

namespace fs = std::filesystem;

std::string Slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::vector<uint8_t> Bytes(const fs::path& p) {
    std::string s = Slurp(p);
    return {s.begin(), s.end()};
}

std::vector<uint8_t> Write(const CRLData& data, int version) {
    auto manager = CreateClassFactory(version)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    CRLFile out;
    EXPECT_TRUE(manager->WriteList(out)) << manager->GetLastError();
    return out.Bytes();
}

TEST(GoldenLists, EveryCaseReadsRendersAndRoundTrips) {
    const fs::path root = fs::path(TARN_TEST_DATA_DIR) / "roaming_list";
    int cases = 0;
    for (const auto& entry : fs::directory_iterator(root)) {
        if (!entry.is_directory()) continue;
        const fs::path dir = entry.path();
        SCOPED_TRACE(dir.filename().string());
        ++cases;
        CRLFile file(Bytes(dir / "input.prl"));
        DetectResult detected = DetectVersion(file);
        ASSERT_TRUE(detected.manager) << detected.error;
        const int version = detected.manager->GetVersion();
        const CRLData& data = detected.manager->GetData();
        const std::vector<uint8_t> canonical = fs::exists(dir / "expected.prl")
                                                   ? Bytes(dir / "expected.prl")
                                                   : Bytes(dir / "input.prl");

        EXPECT_EQ(RenderRoamingListText(data, version), Slurp(dir / "expected.txt"));
        EXPECT_EQ(ListToJson(data, version, detected.manager->IsPrefixed()),
                  nlohmann::json::parse(Slurp(dir / "expected.json")));
        EXPECT_EQ(Write(data, version), canonical);

        // binary -> text -> binary
        TextDetectResult fromText = DetectTextVersion(Slurp(dir / "expected.txt"));
        ASSERT_TRUE(fromText.data) << fromText.error;
        EXPECT_EQ(fromText.version, version);
        EXPECT_EQ(Write(*fromText.data, version), fs::exists(dir / "expected-from-text.prl")
                                                      ? Bytes(dir / "expected-from-text.prl")
                                                      : canonical);

        // binary -> JSON -> binary
        int jsonVersion = 0;
        auto fromJson = ListFromJson(nlohmann::json::parse(Slurp(dir / "expected.json")), jsonVersion);
        EXPECT_EQ(jsonVersion, version);
        EXPECT_EQ(Write(*fromJson, version), canonical);

        // up to the newest version and back down loses nothing
        if (version < kMaxVersion) {
            ConversionResult up = ConvertRoamingList(data, version, kMaxVersion);
            ConversionResult down = ConvertRoamingList(*up.data, kMaxVersion, version);
            EXPECT_TRUE(up.changes.empty()) << up.changes.front();
            EXPECT_EQ(Write(*down.data, version), canonical);
        }
    }
    EXPECT_GE(cases, 6);
}

}  // namespace
}  // namespace Tarn
