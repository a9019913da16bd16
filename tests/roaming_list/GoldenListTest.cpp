// Walks tests/data/roaming_list/<case>/: each case holds input.prl, its expected text and JSON,
// and expected.prl when the list is written back differently (a prefix dropped, say). The text
// form shows only the length of an undefined acquisition record's data, so a case holding one
// also has expected-from-text.prl: what the list becomes after a trip through its text.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "roaming_list/Conversion.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/support/Files.h"

namespace Tarn {
namespace {

namespace fs = std::filesystem;

using ListSamples::Binary;
using Test::Slurp;
using Test::SlurpBytes;

TEST(GoldenLists, EveryCaseReadsRendersAndRoundTrips) {
    const fs::path root = fs::path(TARN_TEST_DATA_DIR) / "roaming_list";
    int cases = 0;
    for (const auto& entry : fs::directory_iterator(root)) {
        if (!entry.is_directory()) continue;
        const fs::path dir = entry.path();
        SCOPED_TRACE(dir.filename().string());
        ++cases;
        CRLFile file(SlurpBytes(dir / "input.prl"));
        DetectResult detected = DetectVersion(file);
        ASSERT_TRUE(detected.manager) << detected.error;
        const int version = detected.manager->GetVersion();
        const CRLData& data = detected.manager->GetData();
        const std::vector<uint8_t> canonical = fs::exists(dir / "expected.prl")
                                                   ? SlurpBytes(dir / "expected.prl")
                                                   : SlurpBytes(dir / "input.prl");

        EXPECT_EQ(RenderRoamingListText(data, version), Slurp(dir / "expected.txt"));
        EXPECT_EQ(ListToJson(data, version, detected.manager->IsPrefixed()),
                  nlohmann::json::parse(Slurp(dir / "expected.json")));
        EXPECT_EQ(Binary(data, version), canonical);

        // binary -> text -> binary
        TextDetectResult fromText = DetectTextVersion(Slurp(dir / "expected.txt"));
        ASSERT_TRUE(fromText.data) << fromText.error;
        EXPECT_EQ(fromText.version, version);
        EXPECT_EQ(Binary(*fromText.data, version), fs::exists(dir / "expected-from-text.prl")
                                                      ? SlurpBytes(dir / "expected-from-text.prl")
                                                      : canonical);

        // binary -> JSON -> binary
        int jsonVersion = 0;
        auto fromJson = ListFromJson(nlohmann::json::parse(Slurp(dir / "expected.json")), jsonVersion);
        EXPECT_EQ(jsonVersion, version);
        EXPECT_EQ(Binary(*fromJson, version), canonical);

        // up to the newest version and back down loses nothing
        if (version < kMaxVersion) {
            ConversionResult up = ConvertRoamingList(data, version, kMaxVersion);
            ConversionResult down = ConvertRoamingList(*up.data, kMaxVersion, version);
            EXPECT_TRUE(up.changes.empty()) << up.changes.front();
            EXPECT_EQ(Binary(*down.data, version), canonical);
        }
    }
    EXPECT_GE(cases, 6);
}

}  // namespace
}  // namespace Tarn
