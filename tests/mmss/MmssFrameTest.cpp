#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"

namespace Tarn {
namespace {

TEST(MmssFrame, HeaderStringsParseLikeTheFormsDo) {
    struct Case {
        const char* text;
        long long value;
    };
    const Case cases[] = {
        {"17", 17}, {"  42", 42},  {"-3", -3},
        {"+8", 8},  {"12abc", 12}, {"abc", 0},
        {"", 0},    {"007", 7},    {"99999999999999999999999", 1'000'000'000'000'000LL},
    };
    for (const auto& c : cases) EXPECT_EQ(Mmss::ParseDecimal(c.text), c.value) << c.text;
}

TEST(MmssFrame, FormValuesKeepWhatWasTypedThroughJson) {
    for (const char* typed : {"7", "0", "007", "", "12a", "-1", "65535"}) {
        nlohmann::json json = nlohmann::json::object();
        Mmss::PutFormValue(json, "v", typed);
        const auto back = nlohmann::json::parse(json.dump());
        EXPECT_EQ(Mmss::GetFormValue(back, "v", DataError::InvalidSysTable), typed);
        EXPECT_EQ(json["v"].is_number(), std::string(typed) == "7" || std::string(typed) == "0" ||
                                             std::string(typed) == "65535");
    }
}

TEST(MmssFrame, RecordListOfZeroRecordsIsOneCountByte) {
    CRLFile file;
    CRLItemList list;
    EXPECT_EQ(Mmss::WriteRecordList(file, list), 8u);
    EXPECT_EQ(file.Bytes(), std::vector<uint8_t>{0});
    file.Seek(0);
    CRLItemList back;
    EXPECT_EQ(Mmss::ReadRecordList(file, back, [] { return std::make_unique<Mspl::Record>(); }),
              8u);
    EXPECT_TRUE(back.IsEmpty());

    // The count is one byte: 255 records are written, one more is refused.
    for (int i = 0; i < 255; ++i) list.Add(std::make_unique<Mspl::Record>());
    CRLFile full;
    EXPECT_EQ(Mmss::WriteRecordList(full, list), 8u + 255 * 17);
    EXPECT_EQ(full.Bytes().front(), 255);
    list.Add(std::make_unique<Mspl::Record>());
    EXPECT_THROW(Mmss::WriteRecordList(file, list), Mmss::FormatError);
}

}  // namespace
}  // namespace Tarn
