#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "roaming_list/DataException.h"
#include "roaming_list/SysItem.h"
#include "tests/roaming_list/SysItemSamples.h"

namespace Tarn {
namespace {

using nlohmann::json;

// The fields of a record line split at its tabs, empty ones included.
std::vector<std::string> Tokens(const std::string& text) {
    std::vector<std::string> tokens;
    std::istringstream in(text);
    for (std::string token; std::getline(in, token, '\t');) tokens.push_back(token);
    return tokens;
}

std::string Repeat(const std::string& field, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += field + "\t";
    return out;
}

// The common fields of a long-framing line: acquisition index, roaming indicator, association tag.
std::string Common(const char* index = "3", const char* roamInd = "1", const char* tag = "0") {
    return std::string("Pref\tNew\tMore\t") + index + "\t" + roamInd + "\tYes\t" + tag +
           "\tNo\tNo\t";
}

// Every number of a record line at its largest (taken) and one past it (refused, naming the
// field and its range), and the lines whose shape or names do not fit.
TEST(SysItemText, FieldsAtTheirEdgesAndMalformedLines) {
    struct Case {
        int type;
        int version;
        std::string text;
        int code;             // 0: taken
        const char* refusal;  // a part of the detail
    };
    const std::string c = Common();
    // clang-format off
    const std::vector<Case> cases = {
        {0, 5, Common("511") + "1\t65535\t0", 0, ""},
        {0, 5, Common("512") + "1\t65535\t0", 10, "acquisition index \"512\" is not a number from 0 to 511"},
        {0, 5, Common("0", "255", "255") + "0\t65535\t0", 0, ""},
        {0, 5, Common("0", "256") + "1\t65535\t0", 10, "roaming indicator \"256\" is not a number from 0 to 255"},
        {0, 5, Common("0", "0", "256") + "1\t65535\t0", 10, "association tag \"256\" is not a number from 0 to 255"},
        {0, 5, c + "32767\t65535\t1", 0, ""},
        {0, 5, c + "32768\t65535\t1", 10, "SID \"32768\" is not a number from 0 to 32767"},
        {0, 5, c + "-1\t65535\t1", 10, "SID \"-1\""},
        {0, 5, c + "\t65535\t1", 10, "SID \"\""},
        {0, 5, c + "1\t65536\t1", 10, "NID \"65536\" is not a number from 0 to 65535"},
        {0, 5, c + "1\t65535\t3", 0, ""},  // 3 is reserved, and kept
        {0, 5, c + "1\t65535\t4", 10, "NID_INCL \"4\" is not a number from 0 to 3"},
        {0, 5, c + "1\t5\t0", 10, "NID 5 is not the one NID_INCL 0 stands for"},
        {0, 1, "Pref\tNew\t", 10, "at least 5 fields"},
        {0, 1, "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t9\t", 10, "SID, NID and NID_INCL"},
        {0, 3, "Pref\tNew\tMore\t3\t1\t1\t65535\t0\t9\t", 18, ""},  // no association fields
        {0, 1, "Maybe\tNew\tMore\t3\t1\t1\t65535\t0\t", 12, ""},
        {14, 5, c + "999\t99", 0, ""},
        {14, 5, c + "1000\t99", 10, "MCC \"1000\" is not a number from 0 to 999"},
        {14, 5, c + "999\t100", 10, "IMSI_11_12 \"100\" is not a number from 0 to 99"},
        {1, 5, c + "::/127\t4095", 0, ""},
        {1, 5, c + "::/127\t4096", 10, "common subnet offset \"4096\" is not a number from 0 to 4095"},
        {1, 5, c + "::/128", 21, "\"::/128\""},
        {3, 5, c + "3\t310\t26\t16\t" + Repeat("::/0", 16), 0, ""},
        {3, 5, c + "3\t310\t26\t17\t" + Repeat("::/0", 17), 10, "MCC-MNC count \"17\" is not a number from 0 to 16"},
        {3, 5, c + "3\t310\t26\t1\tzz", 21, "\"zz\""},
        {3, 5, c + "4\t310\t26", 10, "MCC-MNC subtype \"4\" is not a number from 0 to 3"},
        {3, 5, c + "1\t310\t26\t5\t" + Repeat("32767", 5), 0, ""},
        {3, 5, c + "1\t310\t26\t6\t" + Repeat("1", 6), 10, "MCC-MNC count \"6\" is not a number from 0 to 5"},
        {3, 5, c + "2\t310\t26\t1\t32767\t65535", 0, ""},
        {3, 5, c + "2\t310\t26\t1\t32768\t65535", 10, "SID \"32768\""},
        {3, 5, c + "2\t310\t26\t1\t1\t65536", 10, "NID \"65536\""},
        {2, 5, c + "PLMN+Multi LAC\t310\t410\tAutomatic\t15\t" + Repeat("65535", 15), 0, ""},
        {2, 5, c + "PLMN+Multi LAC\t310\t410\tAutomatic\t16\t" + Repeat("1", 16), 10, "LAC count \"16\" is not a number from 0 to 15"},
        {2, 5, c + "PLMN+Multi LAC\t310\t410\tAutomatic\t3\t1\t2", 10, "takes 8 fields"},
        {2, 5, c + "PLMN+Single LAC\t310\t410\tManual\t65536", 10, "LAC \"65536\" is not a number from 0 to 65535"},
        {2, 5, c + "PLMN", 22, ""},
        {2, 5, c + "PLMN Only\t310\t410\tAuto", 24, ""},
        {7, 5, c + "31\tA03" + std::string(57, '0'), 0, ""},  // the data starts with the common fields
        {7, 5, c + "32\t" + std::string(62, '0'), 10, "record length \"32\" is not a number from 0 to 31"},
        {7, 5, c + "4\tAB", 10, "does not fill a record of 4 octets"},
    };
    // clang-format on
    for (const auto& k : cases) {
        SCOPED_TRACE(k.text);
        auto item = CreateSysItem(k.type, k.version);
        try {
            item->FromText(Tokens(k.text));
            EXPECT_EQ(k.code, 0) << "taken";
            EXPECT_EQ(item->ToText(), k.text.back() == '\t' ? k.text : k.text + "\t");  // kept
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), k.code) << e.what();
            EXPECT_NE(e.Detail().find(k.refusal), std::string::npos) << e.what();
        }
    }
}

// Every record comes back from its JSON with the same bytes, the first sample with the reserved
// NID_INCL 3 among them: a check names it, yet the binary reader keeps it, and so does JSON.
TEST(SysItemJson, EveryRecordComesBackFromItsJsonWithTheSameBytes) {
    std::vector<SysSamples::Sample> samples = SysSamples::All();
    samples.push_back({"NID_INCL 3", 1, {0x00, 0x03, 0xD0, 0x18, 0x08}, 37});
    for (const auto& sample : samples) {
        SCOPED_TRACE(sample.name);
        auto item = SysSamples::ReadSample(sample);
        EXPECT_EQ(item->IsValid(), std::string(sample.name) != "NID_INCL 3");
        json out = json::object();
        item->ToJson(out);
        auto back = CreateSysItem(item->GetSysType(), sample.version);
        back->FromJson(json::parse(out.dump()));
        EXPECT_EQ(SysSamples::WriteOne(*back, sample.version), sample.bytes) << out.dump();
    }
}

// Field values at their largest are taken; one past, a wrong JSON type or a missing field raise
// the system table's error naming the field.
TEST(SysItemJson, FieldsAtTheirEdgesAndBadFields) {
    const auto with = [](json extra) {
        json in = {{"negPref", 0}, {"acqIndex", 3}, {"mcc", "310"}, {"mnc", "26"}};
        in.update(extra);
        return in;
    };
    const json pair = {{"sid", 32767}, {"nid", 65535}};
    struct Case {
        int type;
        json in;
        const char* field;  // named in the message; empty: taken
    };
    // clang-format off
    const std::vector<Case> cases = {
        {0, json::array(), "system record"},
        {0, {{"negPref", 1}, {"acqIndex", 3}}, "sid"},
        {0, {{"acqIndex", 3}, {"sid", 7}}, "negPref"},
        {0, with({{"acqIndex", 511}, {"sid", 32767}, {"roamInd", 255}, {"assnTag", 255}}), ""},
        {0, with({{"sid", "7"}}), "sid"},
        {0, with({{"sid", 32768}}), "sid"},
        {0, with({{"acqIndex", 512}, {"sid", 7}}), "acqIndex"},
        {0, with({{"acqIndex", -1}, {"sid", 7}}), "acqIndex"},
        {0, with({{"negPref", 2}, {"sid", 7}}), "negPref"},
        {0, with({{"sid", 7}, {"roamInd", 1.5}}), "roamInd"},
        {0, with({{"sid", 7}, {"roamInd", 256}}), "roamInd"},
        {14, with({{"mcc", 999}, {"imsi11_12", 99}}), ""},
        {14, with({{"mcc", 1000}, {"imsi11_12", 1}}), "mcc"},
        {2, with({{"plmnType", 3}, {"lacs", std::vector<int>(15, 65535)}}), ""},
        {2, with({{"plmnType", 3}, {"lacs", std::vector<int>(16, 1)}}), "lacs"},
        {2, with({{"plmnType", 1}, {"mnc", "2"}}), "mnc"},
        {3, with({{"subtype", 3}, {"subnets", std::vector<std::string>(16, "::/127")}}), ""},
        {3, with({{"subtype", 3}, {"subnets", std::vector<std::string>(17, "::/0")}}), "subnets"},
        {3, with({{"subtype", 3}, {"subnets", {"x"}}}), "subnets"},
        {3, with({{"subtype", 2}, {"sidNidPairs", std::vector<json>(5, pair)}}), ""},
        {3, with({{"subtype", 2}, {"sidNidPairs", std::vector<json>(6, pair)}}), "sidNidPairs"},
        {1, with({{"subnet", "::/128"}}), "subnet"},
        {7, with({{"length", 4}, {"data", "AB"}}), "data"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in.dump());
        auto item = CreateSysItem(c.type, 5);
        try {
            item->FromJson(c.in);
            EXPECT_STREQ(c.field, "") << "taken";
        } catch (const CDataException& e) {
            EXPECT_EQ(e.Code(), 10);
            EXPECT_NE(*c.field, '\0') << e.what();
            EXPECT_NE(std::string(e.what()).find(c.field), std::string::npos) << e.what();
        }
    }
    // Names are for people; only the numbers are read.
    auto item = CreateSysItem(0, 5);
    item->FromJson({{"negPref", 1}, {"negPrefName", "Neg"}, {"acqIndex", 3}, {"sid", 7}});
    EXPECT_TRUE(item->IsPreferred());
}

}  // namespace
}  // namespace Tarn
