#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "roaming_list/RLData.h"
#include "roaming_list/RLManager.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

// Whole lists of system records: the version that writes them is the first one that can read
// them back, and every record comes back with the same bytes.
TEST(SysItemList, ListsAreDetectedByTheRecordTypesTheyHold) {
    struct Case {
        int writtenAs;
        std::vector<const char*> samples;
        int detectedAs;
    };
    const std::vector<Case> cases = {
        {1,
         {"short preferred, NID not stored", "short negative, NID stored",
          "1x-MCC in the short framing"},
         1},
        {2, {"short negative, NID stored"}, 1},
        {3,
         {"long IS-2000, no association: length 6, no fill", "IS-856 subnet",
          "1x-MCC with NID not stored keeps its odd identifiers",
          "undefined type 15 of two octets"},
         3},
        {4,
         {"PLMN multi LAC, negative", "MCC-MNC SID/NID with association", "PLMN select mode"},
         4},
        {5, {"MCC-MNC subnet", "undefined type 7 keeps its octets"}, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.writtenAs);
        auto data = std::make_unique<CRLData>();
        std::vector<std::vector<uint8_t>> expected;
        for (const char* name : c.samples) {
            for (const auto& sample : SysSamples::All()) {
                if (name != std::string(sample.name)) continue;
                auto item = SysSamples::ReadSample(sample);
                expected.push_back(SysSamples::WriteOne(*item, c.writtenAs));
                data->GetSysTable().Items().Add(std::move(item));
            }
        }
        ASSERT_EQ(expected.size(), c.samples.size());
        auto writer = CreateClassFactory(c.writtenAs)->CreateManager();
        writer->AttachData(data);
        CRLFile file;
        ASSERT_TRUE(writer->WriteList(file));

        CRLFile reopened(file.Bytes());
        DetectResult result = DetectVersion(reopened);
        ASSERT_NE(result.manager, nullptr) << result.error;
        EXPECT_EQ(result.manager->GetVersion(), c.detectedAs);
        auto read = result.manager->DetachData();
        const CRLItemList& items = read->GetSysTable().Items();
        ASSERT_EQ(items.GetSize(), expected.size());
        for (size_t i = 0; i < items.GetSize(); ++i) {
            const auto& item = dynamic_cast<const CSysItem&>(*items.GetAt(i));
            EXPECT_EQ(SysSamples::WriteOne(item, c.writtenAs), expected[i]) << i;
        }
    }
}

}  // namespace
}  // namespace Tarn
