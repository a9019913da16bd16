#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "roaming_list/DataException.h"
#include "tests/roaming_list/AcqItemTestSupport.h"

namespace Tarn {
namespace {

using namespace AcqTest;
using nlohmann::json;

// What the text view hands a record: the fields of its line split at tabs, the empty token the
// last tab leaves included.
std::vector<std::string> Tokens(const std::string& text) {
    std::vector<std::string> tokens;
    size_t start = 0;
    for (size_t tab; (tab = text.find('\t', start)) != std::string::npos; start = tab + 1)
        tokens.push_back(text.substr(start, tab - start));
    tokens.push_back(text.substr(start));
    return tokens;
}

const CAcqItem& Sample(const std::vector<std::unique_ptr<CAcqItem>>& samples, int code) {
    for (const auto& s : samples)
        if (s->GetAcqType() == code) return *s;
    throw std::runtime_error("no sample of type " + std::to_string(code));
}

TEST(AcqItemText, FieldsOfEveryType) {
    // clang-format off
    const std::vector<std::pair<int, std::string>> cases = {
        {1, "Both\t"},
        {7, "B\tSec\t"},
        {3, "25\t799\t1100\t"},
        {5, "A\tF\tAny\t"},
        {10, "1\t25\t3\t1600\t15\t2047\t"},
        {12, "0\t8\t3\t"},
        {13, "0\tUARFCN_INCL_YES\t10700\t11\tUARFCN_INCL_NO\t4\tUARFCN_INCL_YES\t0\t"},
        {14, "1\t9\t2\t249\tUARFCN_PRESENT\t65535\t45\tUARFCN_NOT_PRESENT\t5\t1\t0\tUARFCN_PRESENT\t10700\t"},
        {15, "3\t1\t8\tUARFCN_PRESENT\t512\t5\t1\t11\tUARFCN_NOT_PRESENT\t"
             "9\t2\t62\tUARFCN_PRESENT\t65000\t0\tUARFCN_PRESENT\t0\t"},
        {16, "13\t100\t5\t128\t4\t0\t0\t2047\t0\t1023\t0\t0\t"},
        {253, "3\t"},
    };
    // clang-format on
    const auto samples = SampleRecords();
    for (const auto& [code, text] : cases) {
        SCOPED_TRACE(code);
        EXPECT_EQ(Sample(samples, code).ToText(), text);
    }
}

TEST(AcqItemText, EveryTypeReadsBackItsOwnText) {
    std::vector<std::unique_ptr<CAcqItem>> records = SampleRecords();
    records.push_back(CreateAcqItem(15, 5));  // technologies without bands, as created
    records.push_back(CreateAcqItem(16, 5));  // no UMB entries
    auto umb = Make<CAcqItemGenericUmb>(16);
    umb->SetEntries({{1, 2, 3, 4, 5, 255}});  // the spare field travels in the text
    records.push_back(std::move(umb));
    for (const auto& item : records) {
        SCOPED_TRACE(item->ToText());
        auto fresh = CreateAcqItem(item->GetAcqType(), 5);
        fresh->FromText(Tokens(item->ToText()));
        EXPECT_EQ(Bytes(*fresh), Bytes(*item));
    }
}

TEST(AcqItemText, TokensThatDoNotFitAreDataErrors) {
    const std::vector<std::string> many(32, "1");
    // clang-format off
    const std::vector<std::tuple<const char*, int, std::vector<std::string>, int>> cases = {
        {"analog without a token", 1, {}, 4},
        {"analog with two", 4, {"A", "B"}, 4},
        {"analog system name", 1, {"C"}, 7},
        {"standard with one token", 2, {"A"}, 4},
        {"standard channel name", 7, {"A", "Fourth"}, 8},
        {"no channels", 3, {}, 4},
        {"32 channels", 8, many, 4},
        {"channel past 11 bits", 9, {"2048"}, 4},
        {"channel that is no number", 6, {"12a"}, 4},
        {"block 6 is no name", 5, {"A", "6"}, 9},
        {"odd pair tokens", 10, {"1", "25", "3"}, 4},
        {"band class past 5 bits", 10, {"32", "1"}, 15},
        {"HDR channel past 11 bits", 11, {"1", "2048"}, 16},
        {"GSM band past 5 bits", 12, {"32"}, 27},
        {"UMTS inclusion word", 13, {"0", "MAYBE"}, 28},
        {"UMTS UARFCN missing", 13, {"0", "UARFCN_INCL_YES"}, 4},
        {"UMTS UARFCN past 14 bits", 13, {"0", "UARFCN_INCL_YES", "16384"}, 28},
        {"UMB entry of five", 16, {"1", "2", "3", "4", "5"}, 4},
        {"GWL band without presence", 15, {"9", "1", "2"}, 4},
        {"GWL system mode past 4 bits", 15, {"16", "0"}, 30},
        {"GWL 67 bands", 15, {"9", "67"}, 4},
        {"GWL four technologies", 15, {"9", "0", "3", "0", "5", "0", "9", "0"}, 4},
        {"3GPP without tokens", 14, {}, 4},
        {"3GPP version past 8 bits", 14, {"256", "9", "0"}, 4},
        {"3GPP version only", 14, {"1"}, 4},
        {"undefined length past 255", 253, {"256"}, 4},
    };
    // clang-format on
    for (const auto& [name, code, tokens, error] : cases) {
        SCOPED_TRACE(name);
        auto item = CreateAcqItem(code, 5);
        try {
            item->FromText(tokens);
            ADD_FAILURE() << "text was taken";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), error) << e.what();
        }
    }
}

TEST(AcqItemJson, EveryTypeReadsBackItsOwnJson) {
    std::vector<std::unique_ptr<CAcqItem>> records = SampleRecords();
    records.push_back(CreateAcqItem(15, 5));
    records.push_back(CreateAcqItem(3, 5));  // an empty list survives too
    auto special = Make<CAcqItemSpecial>(253);
    special->SetData({0xAA, 0x00, 0x55});
    records.push_back(std::move(special));
    for (const auto& item : records) {
        json out = json::object();
        item->ToJson(out);
        SCOPED_TRACE(out.dump());
        auto fresh = CreateAcqItem(item->GetAcqType(), 5);
        fresh->FromJson(json::parse(out.dump()));
        EXPECT_EQ(Bytes(*fresh), Bytes(*item));
        json again = json::object();
        fresh->ToJson(again);
        EXPECT_EQ(again, out);
    }
}

TEST(AcqItemJson, FieldsAreNamedAndValuesCarryTheirNames) {
    const auto samples = SampleRecords();
    // clang-format off
    const std::vector<std::pair<int, json>> cases = {
        {2, {{"system", 1}, {"systemName", "B"}, {"channel", 2}, {"channelName", "Sec"}}},
        {13, {{"entries", {{{"band", 0}, {"bandName", "BC1-IMT2G"}, {"uarfcn", 10700}},
                           {{"band", 11}, {"bandName", "BC19-850M"}},
                           {{"band", 4}, {"bandName", "BC5-850M"}, {"uarfcn", 0}}}}}},
        {14, {{"version", 1},
              {"technologies", {{{"sysMode", 9}, {"sysModeName", "LTE"},
                                 {"bands", {{{"band", 249}, {"bandName", "EUTRAN-250"}, {"uarfcn", 65535}},
                                            {{"band", 45}, {"bandName", "EUTRAN-46"}}}}},
                                {{"sysMode", 5}, {"sysModeName", "WCDMA"},
                                 {"bands", {{{"band", 0}, {"bandName", "BC1-IMT2G"}, {"uarfcn", 10700}}}}}}}}},
        {253, {{"dataLength", 3}, {"data", {0, 0, 0}}}},
    };
    // clang-format on
    for (const auto& [code, expected] : cases) {
        SCOPED_TRACE(code);
        json out = json::object();
        Sample(samples, code).ToJson(out);
        EXPECT_EQ(out, expected) << out.dump();
    }
    // A value without a name is kept and named "Invalid".
    auto analog = Make<CAcqItemCellularAnalog>(1);
    analog->SetSystem(2);
    json out = json::object();
    analog->ToJson(out);
    EXPECT_EQ(out, (json{{"system", 2}, {"systemName", "Invalid"}}));
}

TEST(AcqItemJson, MissingWrongOrOversizedValuesAreDataErrors) {
    // clang-format off
    const std::vector<std::tuple<const char*, int, json, int>> cases = {
        {"analog without system", 1, json::object(), 7},
        {"system as a name", 1, {{"system", "A"}}, 7},
        {"system past 2 bits", 4, {{"system", 4}}, 7},
        {"negative system", 1, {{"system", -1}}, 7},
        {"fractional system", 1, {{"system", 1.5}}, 7},
        {"standard without channel", 2, {{"system", 0}}, 8},
        {"channels not a list", 3, {{"channels", "1"}}, 4},
        {"channel past 11 bits", 6, {{"channels", {2048}}}, 4},
        {"32 channels", 8, {{"channels", std::vector<int>(32, 1)}}, 4},
        {"block past 3 bits", 5, {{"blocks", {{{"block", 8}}}}}, 9},
        {"block not an object", 5, {{"blocks", {3}}}, 9},
        {"pair without channel", 10, {{"pairs", {{{"bandClass", 1}}}}}, 15},
        {"HDR pair band past 5 bits", 11, {{"pairs", {{{"bandClass", 32}, {"channel", 1}}}}}, 16},
        {"128 pairs", 10, {{"pairs", std::vector<json>(128, {{"bandClass", 1}, {"channel", 1}})}}, 15},
        {"GSM band past 5 bits", 12, {{"bands", {{{"band", 32}}}}}, 27},
        {"UARFCN past 14 bits", 13, {{"entries", {{{"band", 0}, {"uarfcn", 16384}}}}}, 28},
        {"UMB entry without cyclic prefix", 16, {{"entries", {{{"bandClass", 0}, {"channel", 1}, {"fftSize", 1}, {"numGuardCarriers", 1}}}}}, 4},
        {"GWL system mode past 4 bits", 15, {{"technologies", {{{"sysMode", 16}, {"bands", json::array()}}}}}, 30},
        {"GWL band past 6 bits", 15, {{"technologies", {{{"sysMode", 9}, {"bands", {{{"band", 64}}}}}}}}, 4},
        {"GWL four technologies", 15, {{"technologies", std::vector<json>(4, {{"sysMode", 9}, {"bands", json::array()}})}}, 4},
        {"3GPP without version", 14, {{"technologies", json::array()}}, 4},
        {"undefined data shorter than its length", 253, {{"dataLength", 2}, {"data", {1}}}, 4},
        {"undefined octet past 8 bits", 253, {{"dataLength", 1}, {"data", {256}}}, 4},
    };
    // clang-format on
    for (const auto& [name, code, in, error] : cases) {
        SCOPED_TRACE(name);
        auto item = CreateAcqItem(code, 5);
        const std::string before = Bytes(*item);
        try {
            item->FromJson(in);
            ADD_FAILURE() << "JSON was taken";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), error) << e.what();
        }
        EXPECT_EQ(Bytes(*item), before);
    }
}

}  // namespace
}  // namespace Tarn
