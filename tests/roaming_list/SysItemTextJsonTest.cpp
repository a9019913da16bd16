#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "roaming_list/DataException.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using nlohmann::json;

std::vector<std::string> Tokens(const std::string& text) {
    std::vector<std::string> tokens(1);
    for (char c : text) {
        if (c == '\t') {
            tokens.emplace_back();
        } else {
            tokens.back() += c;
        }
    }
    return tokens;  // the closing tab leaves an empty last token, as a line splitter would
}

const SysSamples::Sample& Find(const std::string& name) {
    for (const auto& sample : SysSamples::All())
        if (name == sample.name) return sample;
    throw std::logic_error("no sample " + name);
}

constexpr const char* kOddMcc = "1x-MCC with NID not stored keeps its odd identifiers";

TEST(SysItemText, EveryRecordComesBackFromItsTextWithTheSameBytes) {
    for (const auto& sample : SysSamples::All()) {
        SCOPED_TRACE(sample.name);
        auto item = SysSamples::ReadSample(sample);
        auto back = CreateSysItem(item->GetSysType(), sample.version);
        ASSERT_NE(back, nullptr);
        back->FromText(Tokens(item->ToText()));
        EXPECT_EQ(back->ToText(), item->ToText());
        // The text names a 1x-MCC record by MCC and IMSI_11_12 alone, so unusual identifiers
        // behind them are stored the usual way.
        if (std::string(sample.name) == kOddMcc) continue;
        EXPECT_EQ(SysSamples::WriteOne(*back, sample.version), sample.bytes);
    }
}

TEST(SysItemText, FieldsAreTabTerminatedInTheirOrder) {
    struct Case {
        const char* sample;
        const char* text;
    };
    const std::vector<Case> cases = {
        {"short preferred, NID not stored", "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t"},
        {"MCC-MNC SID/NID with association",
         "Pref\tSame\tSame\t1\t3\tYes\t5\tYes\tNo\t2\t310\t26\t1\t100\t7\t"},
        {"PLMN multi LAC, negative",
         "Neg\tNew\tSame\t4\t0\tNo\t0\tNo\tNo\tPLMN+Multi LAC\t310\t410\tAutomatic\t2\t4660\t1\t"},
        {"PLMN select mode", "Pref\tNew\tSame\t0\t1\tNo\t0\tNo\tNo\tSelect Mode\tAllowed PLMNs\t"},
        {"IS-856 with common offset and a 7-bit subnet",
         "Pref\tSame\tSame\t1\t9\tNo\t0\tNo\tNo\ta00::/7\t2748\t"},
        {"1x-MCC in the short framing", "Pref\tNew\tSame\t0\t1\t532\t5\t"},
        {"undefined type 7 keeps its octets",
         "Pref\tNew\tSame\t18\t0\tNo\t0\tNo\tNo\t5\t81245670\t"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sample);
        EXPECT_EQ(SysSamples::ReadSample(Find(c.sample))->ToText(), c.text);
    }
}

TEST(SysItemText, MalformedLinesRaiseDataErrors) {
    struct Case {
        const char* name;
        int type;
        int version;
        const char* text;
        int code;
    };
    const std::vector<Case> cases = {
        {"too few fields", 0, 1, "Pref\tNew\t", 10},
        {"too many fields", 0, 1, "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t9\t", 10},
        {"association fields missing in IS-683C", 0, 3, "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t9\t",
         18},
        {"unknown neg/pref", 0, 1, "Maybe\tNew\tMore\t3\t1\t1\t65535\t0\t", 12},
        {"acquisition index beyond 9 bits", 0, 1, "Pref\tNew\tMore\t512\t1\t1\t65535\t0\t", 10},
        {"SID beyond 15 bits", 0, 1, "Pref\tNew\tMore\t3\t1\t40000\t65535\t0\t", 10},
        {"NID against its inclusion code", 0, 1, "Pref\tNew\tMore\t3\t1\t1\t5\t0\t", 10},
        {"MCC beyond three digits", 14, 1, "Pref\tNew\tMore\t3\t1\t1000\t5\t", 10},
        {"unknown PLMN type", 2, 4, "Neg\tNew\tSame\t4\t0\tNo\t0\tNo\tNo\tPLMN\t", 22},
        {"LAC count against its LACs", 2, 4,
         "Neg\tNew\tSame\t4\t0\tNo\t0\tNo\tNo\tPLMN+Multi LAC\t310\t410\tAutomatic\t3\t1\t2\t", 10},
        {"unknown network selection mode", 2, 4,
         "Neg\tNew\tSame\t4\t0\tNo\t0\tNo\tNo\tPLMN Only\t310\t410\tAuto\t", 24},
        {"bad IS-856 subnet", 1, 3, "Pref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\tzz/7\t", 21},
        {"bad MCC-MNC subnet", 3, 5, "Pref\tNew\tSame\t1\t9\tNo\t0\tNo\tNo\t3\t123\t45\t1\tzz\t",
         21},
        {"undefined record data of the wrong size", 7, 5,
         "Pref\tNew\tSame\t1\t0\tNo\t0\tNo\tNo\t4\tAB\t", 10},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto item = CreateSysItem(c.type, c.version);
        try {
            item->FromText(Tokens(c.text));
            ADD_FAILURE() << "accepted";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), c.code) << e.what();
        }
    }
}

TEST(SysItemJson, EveryRecordComesBackFromItsJsonWithTheSameBytes) {
    for (const auto& sample : SysSamples::All()) {
        SCOPED_TRACE(sample.name);
        auto item = SysSamples::ReadSample(sample);
        json out = json::object();
        item->ToJson(out);
        auto back = CreateSysItem(item->GetSysType(), sample.version);
        back->FromJson(json::parse(out.dump()));
        EXPECT_EQ(SysSamples::WriteOne(*back, sample.version), sample.bytes) << out.dump();
    }
}

TEST(SysItemIS2000, TheReservedNidInclusionCodeSurvivesTextAndJson) {
    // The first sample with NID_INCL 3, a reserved code the binary reader keeps: NID not stored.
    const SysSamples::Sample reserved{"NID_INCL 3", 1, {0x00, 0x03, 0xD0, 0x18, 0x08}, 37};
    auto item = SysSamples::ReadSample(reserved);
    const auto* is2000 = dynamic_cast<const CSysItemIS2000*>(item.get());
    ASSERT_NE(is2000, nullptr);
    ASSERT_EQ(is2000->GetNidIncl(), 3u);
    EXPECT_FALSE(item->IsValid());  // a check still names it

    auto viaText = CreateSysItem(0, 1);
    viaText->FromText(Tokens(item->ToText()));
    EXPECT_EQ(SysSamples::WriteOne(*viaText, 1), reserved.bytes);

    json out = json::object();
    item->ToJson(out);
    auto viaJson = CreateSysItem(0, 1);
    viaJson->FromJson(json::parse(out.dump()));
    EXPECT_EQ(SysSamples::WriteOne(*viaJson, 1), reserved.bytes) << out.dump();
}

TEST(SysItemJson, KeysAndNamesOfAShortRecord) {
    auto item = SysSamples::ReadSample(Find("short preferred, NID not stored"));
    json out = json::object();
    item->ToJson(out);
    const json expected = {
        {"negPref", 1},  {"negPrefName", "Pref"},  {"geography", 0}, {"geographyName", "New"},
        {"priority", 1}, {"priorityName", "More"}, {"acqIndex", 3},  {"roamInd", 1},
        {"sid", 1},      {"nidIncl", 0},           {"nid", 65535}};
    EXPECT_EQ(out, expected);
}

TEST(SysItemJson, BadFieldsRaiseTheSystemTableError) {
    const json is2000 = {{"negPref", 1}, {"acqIndex", 3}, {"sid", 7}};
    struct Case {
        const char* name;
        int type;
        json in;
        const char* field;  // named in the message
    };
    const std::vector<Case> cases = {
        {"not an object", 0, json::array(), "system record"},
        {"sid missing", 0, {{"negPref", 1}, {"acqIndex", 3}}, "sid"},
        {"neg/pref missing", 0, {{"acqIndex", 3}, {"sid", 7}}, "negPref"},
        {"sid as text", 0, {{"negPref", 1}, {"acqIndex", 3}, {"sid", "7"}}, "sid"},
        {"sid too large", 0, {{"negPref", 1}, {"acqIndex", 3}, {"sid", 40000}}, "sid"},
        {"negative index", 0, {{"negPref", 1}, {"acqIndex", -1}, {"sid", 7}}, "acqIndex"},
        {"flag beyond one bit", 0, {{"negPref", 2}, {"acqIndex", 3}, {"sid", 7}}, "negPref"},
        {"fractional roaming indicator",
         0,
         {{"negPref", 1}, {"acqIndex", 3}, {"sid", 7}, {"roamInd", 1.5}},
         "roamInd"},
        {"1x-MCC beyond three digits",
         14,
         {{"negPref", 1}, {"acqIndex", 3}, {"mcc", 1000}, {"imsi11_12", 1}},
         "mcc"},
        {"PLMN with 16 LACs",
         2,
         {{"negPref", 0},
          {"acqIndex", 3},
          {"plmnType", 3},
          {"mcc", "310"},
          {"mnc", "26"},
          {"lacs", std::vector<int>(16, 1)}},
         "lacs"},
        {"PLMN MNC of one digit",
         2,
         {{"negPref", 0}, {"acqIndex", 3}, {"plmnType", 1}, {"mcc", "310"}, {"mnc", "2"}},
         "mnc"},
        {"MCC-MNC with a bad subnet",
         3,
         {{"negPref", 0},
          {"acqIndex", 3},
          {"subtype", 3},
          {"mcc", "310"},
          {"mnc", "26"},
          {"subnets", {"x"}}},
         "subnets"},
        {"MCC-MNC with six pairs",
         3,
         {{"negPref", 0},
          {"acqIndex", 3},
          {"subtype", 2},
          {"mcc", "310"},
          {"mnc", "26"},
          {"sidNidPairs", std::vector<json>(6, {{"sid", 1}, {"nid", 1}})}},
         "sidNidPairs"},
        {"IS-856 subnet length beyond 7 bits",
         1,
         {{"negPref", 0}, {"acqIndex", 3}, {"subnet", "::/128"}},
         "subnet"},
        {"undefined record data of the wrong size",
         7,
         {{"negPref", 0}, {"acqIndex", 3}, {"length", 4}, {"data", "AB"}},
         "data"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto item = CreateSysItem(c.type, 5);
        try {
            item->FromJson(c.in);
            ADD_FAILURE() << "accepted";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), 10);
            EXPECT_NE(std::string(e.what()).find(c.field), std::string::npos) << e.what();
        }
    }
    // Names are for people; only the numbers are read.
    json named = is2000;
    named["negPrefName"] = "Neg";
    auto item = CreateSysItem(0, 5);
    item->FromJson(named);
    EXPECT_TRUE(item->IsPreferred());
}

}  // namespace
}  // namespace Tarn
