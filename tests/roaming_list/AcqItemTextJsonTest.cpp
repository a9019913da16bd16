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

using Tokenlist = std::vector<std::string>;

// `group` `times` over, after `head`.
Tokenlist Rep(const Tokenlist& group, int times, Tokenlist head = {}) {
    for (int i = 0; i < times; ++i) head.insert(head.end(), group.begin(), group.end());
    return head;
}

// Every count and number of a record's text at its largest is taken (and kept); one past it is
// refused with the field's message, as are tokens that do not make whole entries or names.
TEST(AcqItemText, FieldsAtTheirEdgesAndTokensThatDoNotFit) {
    const Tokenlist umbMax = {"31", "2047", "7", "1023", "7", "255"};
    const Tokenlist gwlBand = {"63", "UARFCN_PRESENT", "65535"};
    const Tokenlist gppBand = {"255", "UARFCN_NOT_PRESENT"};
    struct Case {
        int code;
        Tokenlist tokens;
        int error;            // 0: taken
        const char* refusal;  // a part of the detail
    };
    // clang-format off
    const std::vector<Case> cases = {
        {1, {}, 4, "0 fields where 1 are expected"},
        {4, {"A", "B"}, 4, ""},
        {1, {"C"}, 7, ""},
        {2, {"A"}, 4, ""},
        {7, {"A", "Fourth"}, 8, ""},
        {8, Rep({"2047"}, 31), 0, ""},
        {8, Rep({"1"}, 32), 4, "32 fields where 1 to 31 are expected"},
        {3, {}, 4, ""},
        {9, {"2048"}, 4, "channel \"2048\" is not a number from 0 to 2047"},
        {6, {"12a"}, 4, "channel \"12a\""},
        {5, {"A", "B", "C", "D", "E", "F"}, 0, ""},
        {5, Rep({"A"}, 7), 4, "7 fields where 1 to 6 are expected"},
        {5, {"A", "6"}, 9, ""},
        {10, Rep({"31", "2047"}, 127), 0, ""},
        {10, Rep({"1", "1"}, 128), 4, "256 fields where an even 2 to 254 are expected"},
        {10, {"1", "25", "3"}, 4, ""},
        {10, {"32", "1"}, 15, "band class \"32\" is not a number from 0 to 31"},
        {11, {"1", "2048"}, 16, "channel \"2048\" is not a number from 0 to 2047"},
        {12, Rep({"31"}, 31), 0, ""},
        {12, Rep({"1"}, 32), 4, "32 fields where 1 to 31 are expected"},
        {12, {"32"}, 27, "GSM band \"32\" is not a number from 0 to 31"},
        {13, Rep({"31", "UARFCN_INCL_YES", "16383"}, 31), 0, ""},
        {13, Rep({"1", "UARFCN_INCL_NO"}, 32), 4, "whole entries"},
        {13, {"0", "MAYBE"}, 28, ""},
        {13, {"0", "UARFCN_INCL_YES"}, 4, ""},
        {13, {"0", "UARFCN_INCL_YES", "16384"}, 28, "UARFCN \"16384\" is not a number from 0 to 16383"},
        {16, Rep(umbMax, 16), 0, ""},
        {16, Rep(umbMax, 17), 4, "102 fields where a multiple of 6 up to 96 are expected"},
        {16, {"32", "0", "0", "0", "0", "0"}, 4, "UMB band class \"32\""},
        {16, {"0", "2048", "0", "0", "0", "0"}, 4, "UMB channel \"2048\""},
        {16, {"0", "0", "8", "0", "0", "0"}, 4, "FFT size \"8\""},
        {16, {"0", "0", "0", "1024", "0", "0"}, 4, "guard carriers \"1024\""},
        {16, {"0", "0", "0", "0", "8", "0"}, 4, "cyclic prefix length \"8\""},
        {16, {"0", "0", "0", "0", "0", "256"}, 4, "UMB spare field \"256\""},
        {16, {"1", "2", "3", "4", "5"}, 4, ""},
        {15, Rep(Rep(gwlBand, 66, {"15", "66"}), 3), 0, ""},
        {15, Rep({"9", "1", "0", "UARFCN_NOT_PRESENT"}, 4), 4, "at most 3 technologies"},
        {15, {"16", "0"}, 30, "system mode \"16\" is not a number from 0 to 15"},
        {15, {"9", "67"}, 4, "number of bands \"67\" is not a number from 0 to 66"},
        {15, {"9", "1", "64", "UARFCN_NOT_PRESENT"}, 4, "band \"64\" is not a number from 0 to 63"},
        {15, {"9", "1", "0", "UARFCN_PRESENT", "65536"}, 4, "UARFCN \"65536\" is not a number from 0 to 65535"},
        {15, {"9", "1", "2"}, 4, ""},
        {14, Rep(gppBand, 255, {"255", "9", "255"}), 0, ""},
        {14, {"256", "9", "0"}, 4, "3GPP record version \"256\" is not a number from 0 to 255"},
        {14, {"1", "9", "256"}, 4, "number of bands \"256\" is not a number from 0 to 255"},
        {14, {"1", "9", "1", "256", "UARFCN_NOT_PRESENT"}, 4, "band \"256\" is not a number from 0 to 255"},
        {14, {}, 4, ""},
        {14, {"1"}, 4, ""},
        {253, {"255"}, 0, ""},
        {253, {"256"}, 4, "data length \"256\" is not a number from 0 to 255"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.code) + ": " + c.refusal);
        auto item = CreateAcqItem(c.code, 5);
        try {
            item->FromText(c.tokens);
            EXPECT_EQ(c.error, 0) << "text was taken";
            std::string text;
            for (const auto& token : c.tokens) text += token + "\t";
            EXPECT_EQ(item->ToText(), text);
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), c.error) << e.what();
            EXPECT_NE(e.Detail().find(c.refusal), std::string::npos) << e.what();
        }
    }
}

// Every type, edge records among them, reads back its own text and its own JSON to the same
// record.
TEST(AcqItemTextJson, EveryTypeReadsBackItsOwnTextAndJson) {
    std::vector<std::unique_ptr<CAcqItem>> records = SampleRecords();
    records.push_back(CreateAcqItem(15, 5));  // technologies without bands, as created
    records.push_back(CreateAcqItem(16, 5));  // no UMB entries
    records.push_back(CreateAcqItem(3, 5));   // an empty list
    auto umb = Make<CAcqItemGenericUmb>(16);
    umb->SetEntries({{1, 2, 3, 4, 5, 255}});  // the spare field travels in both
    records.push_back(std::move(umb));
    auto special = Make<CAcqItemSpecial>(253);
    special->SetData({0xAA, 0x00, 0x55});  // the text shows only the length
    records.push_back(std::move(special));
    for (const auto& item : records) {
        const std::string text = item->ToText();
        SCOPED_TRACE(text);
        if (!text.empty() || item->GetAcqType() != 3) {  // an empty channel list has no line
            auto viaText = CreateAcqItem(item->GetAcqType(), 5);
            viaText->FromText(Tokens(text));
            EXPECT_EQ(viaText->ToText(), text);
            if (item->GetAcqType() != 253) {
                EXPECT_EQ(Bytes(*viaText), Bytes(*item));
            }
        }
        json out = json::object();
        item->ToJson(out);
        auto viaJson = CreateAcqItem(item->GetAcqType(), 5);
        viaJson->FromJson(json::parse(out.dump()));
        EXPECT_EQ(Bytes(*viaJson), Bytes(*item)) << out.dump();
        json again = json::object();
        viaJson->ToJson(again);
        EXPECT_EQ(again, out);
    }
}

// A value without a name is kept and named "Invalid" (the golden lists pin the named ones).
TEST(AcqItemJson, AValueWithoutANameIsNamedInvalid) {
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
