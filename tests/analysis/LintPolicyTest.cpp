// The operator policy: what its reader accepts and refuses (and how it says so) at every key's
// limits, the rules its keys switch on, and the re-grading and silencing of any rule.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "analysis/Lint.h"
#include "analysis/Policy.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::JsonList;
using Test::PcsChannels;
using Test::Sid;

Policy Parse(const std::string& text) {
    Policy p;
    std::string error;
    EXPECT_TRUE(ParsePolicy(text, p, error)) << text << ": " << error;
    return p;
}

TEST(LintPolicyTest, AcceptsEveryKeyToItsLimitsAndRefusesPastThemNamingTheKey) {
    const std::pair<const char*, const char*> cases[] = {  // policy, the error's text ("" reads)
        {R"({"prefOnly": true, "defRoamInd": 0, "maxListSize": 0, "roamIndAllowed": []})", ""},
        {R"({"defRoamInd": 255, "maxListSize": 4294967295, "roamIndAllowed": [0, 255]})", ""},
        {R"({"requiredSystems": [{"sid": 32767, "nid": 65535}], "forbiddenSystems": [{"sid": 0}]})", ""},
        {R"({"rules": {"mspl-more-at-end": "error", "plmn-duplicate": "off", "ambiguous-geo": "info"}})", ""},
        {"{", "the policy is not JSON"},
        {"[1]", "the policy must be a JSON object of policy keys"},
        {R"({"prefonly": true})", "policy key \"prefonly\": is not a policy key"},
        {R"({"prefOnly": "yes"})", "\"prefOnly\": must be true or false, not \"yes\""},
        {R"({"defRoamInd": 256})", "\"defRoamInd\": 256 is out of range (0 - 255)"},
        {R"({"defRoamInd": -1})", "\"defRoamInd\": must be a whole number from 0 to 255, not -1"},
        {R"({"maxListSize": 4294967296})", "\"maxListSize\": 4294967296 is out of range (0 - 4294967295)"},
        {R"({"maxListSize": "16k"})", "\"maxListSize\": must be a whole number"},
        {R"({"roamIndAllowed": [1, 256]})", "\"roamIndAllowed[1]\": 256 is out of range (0 - 255)"},
        {R"({"roamIndAllowed": [1, "2"]})", "\"roamIndAllowed[1]\": must be a whole number"},
        {R"({"roamIndAllowed": 1})", "\"roamIndAllowed\": must be a list"},
        {R"({"requiredSystems": {"sid": 1}})", "\"requiredSystems\": must be a list"},
        {R"({"requiredSystems": [4106]})", "\"requiredSystems[0]\": must be an object"},
        {R"({"requiredSystems": [{"sid": 32768}]})", "\"requiredSystems[0]\": SID 32768 is out of range (0 - 32767)"},
        {R"({"requiredSystems": [{"sid": 1, "nid": 65536}]})", "NID 65536 is out of range (0 - 65535)"},
        {R"({"forbiddenSystems": [{"sid": 1}, {"sid": "x"}]})", "\"forbiddenSystems[1]\": SID \"x\" is not a number"},
        {R"({"requiredSystems": [{"sid": 1, "mcc": "310", "mnc": "00"}]})", "needs exactly one of sid"},
        {R"({"requiredSystems": [{"nid": 1, "subnet": "2001:db8::/32"}]})", "nid needs sid"},
        {R"({"requiredSystems": [{"mcc": "310"}]})", "mcc and mnc go together"},
        {R"({"requiredSystems": [{"mcc": 310, "mnc": 1}]})", "MNC \"1\" must be two or three digits"},
        {R"({"requiredSystems": [{"sid": 1, "band": 1}]})", "\"requiredSystems[0].band\": is not a system field"},
        {R"({"requiredSystems": [{"sid": -1}]})", "\"requiredSystems[0].sid\": must be a number or a string"},
        {R"({"rules": ["unused-acquisition"]})", "\"rules\": must be an object"},
        {R"({"rules": {"unused-acquisitions": "off"}})", "\"rules.unused-acquisitions\": there is no rule"},
        {R"({"rules": {"ambiguous-geo": "fatal"}})", "\"rules.ambiguous-geo\": must be \"off\""},
    };
    for (const auto& [text, message] : cases) {
        Policy p;
        std::string error;
        EXPECT_EQ(ParsePolicy(text, p, error), !*message) << text << " -> " << error;
        EXPECT_NE(error.find(message), std::string::npos) << text << " -> " << error;
    }
    const Policy largest = Parse(R"({"defRoamInd": 255, "maxListSize": 4294967295, "roamIndAllowed": [255]})");
    EXPECT_EQ(largest.defRoamInd, 255u);
    EXPECT_EQ(largest.maxListSize, size_t{4294967295u});
    EXPECT_EQ(largest.roamIndAllowed, std::vector<unsigned>{255});
}

TEST(LintPolicyTest, FileOfAtMostOneMebibyte) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("tarn-policy-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    Policy p;
    std::string error;
    for (const size_t size : {size_t{1} << 20, (size_t{1} << 20) + 1}) {
        std::ofstream(path, std::ios::binary) << R"({"prefOnly": true})" << std::string(size - 18, ' ');
        EXPECT_EQ(LoadPolicy(path.string(), p, error), size == 1u << 20) << error;
    }
    EXPECT_EQ(error.rfind("File too large (1048577 bytes): " + path.string(), 0), 0u) << error;
    std::ofstream(path, std::ios::binary) << R"({"prefOnly": 1})";
    EXPECT_FALSE(LoadPolicy(path.string(), p, error));
    EXPECT_EQ(error, path.string() + ": policy key \"prefOnly\": must be true or false, not 1");
    std::filesystem::remove(path);
}

// "rule where" pairs of the findings whose rule starts with "policy-".
std::vector<std::string> PolicyFindings(const CRLData& list, const Policy& policy, size_t bytes = 0) {
    std::vector<std::string> out;
    for (const auto& f : LintRoamingList(list, bytes, &policy)) {
        if (f.rule.rfind("policy-", 0) != 0) continue;
        EXPECT_EQ(f.severity, Severity::Error) << f.rule;
        out.push_back(f.rule + " " + f.Where());
    }
    return out;
}

TEST(LintPolicyTest, PolicyKeysBecomeFindings) {
    // SID 1 preferred (indicator 1), SID 2 negative (indicator 2), SID 3 preferred (indicator 2),
    // an MCC-MNC record for 310-120 preferred.
    json mccMnc = Tarn::Test::SysCommon(3, true, false, false, 0);
    mccMnc.update({{"subtype", 0}, {"mcc", "310"}, {"mnc", "120"}});
    auto list = JsonList(json::array({PcsChannels({25})}),
                         json::array({Sid(1, 65535, true, true, false, 0, 1),
                                      Sid(2, 65535, false, false, false, 0, 2),
                                      Sid(3, 65535, true, false, false, 0, 2), mccMnc}),
                         5, false, 1);
    struct Case {
        const char* policy;
        std::vector<std::string> expected;
        size_t bytes = 0;
    };
    const Case cases[] = {
        {R"({})", {}},
        {R"({"prefOnly": false, "defRoamInd": 1})", {}},
        {R"({"prefOnly": true})", {"policy-pref-only header"}},
        {R"({"defRoamInd": 255})", {"policy-def-roam-ind header"}},
        {R"({"maxListSize": 100})", {"policy-list-size header"}, 101},
        {R"({"maxListSize": 100})", {}, 100},
        {R"({"maxListSize": 0})", {"policy-list-size header"}, 1},
        {R"({"maxListSize": 100})", {}, 0},  // size unknown: nothing to judge
        // SID 2 is only negative, SID 9 absent: both missing; MCC-MNC 310-120 is named.
        {R"({"requiredSystems": [{"sid": 1}, {"sid": 2}, {"sid": 9, "nid": 4}, {"mcc": "310", "mnc": "120"}]})",
         {"policy-required-system header", "policy-required-system header"}},
        // A negative record naming a forbidden system is what the policy wants.
        {R"({"forbiddenSystems": [{"sid": 2}, {"sid": 3}, {"mcc": "310", "mnc": "120"}]})",
         {"policy-forbidden-system system #2", "policy-forbidden-system system #3"}},
        {R"({"roamIndAllowed": [1]})", {"policy-roaming-indicator system #2"}},
        {R"({"roamIndAllowed": [1, 2]})", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PolicyFindings(*list, Parse(c.policy), c.bytes), c.expected) << c.policy;

    std::vector<std::string> messages;
    for (const char* policy : {R"({"requiredSystems": [{"sid": 9, "nid": 4}]})", R"({"maxListSize": 100})"}) {
        const Policy p = Parse(policy);
        for (const auto& f : LintRoamingList(*list, 101, &p))
            if (f.rule.rfind("policy-", 0) == 0) messages.push_back(f.message);
    }
    EXPECT_EQ(messages, (std::vector<std::string>{
                            "no preferred record names SID 9 NID 4, which the policy requires",
                            "the list is 101 bytes, above the policy's 100"}));
}

TEST(LintPolicyTest, RulesAreRegradedOrSilenced) {
    // Acquisition #1 is unused (warning); the default indicator 20 is reserved (warning).
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50})}),
                         json::array({Sid(1, 65535, true, true, false, 0)}), 3, false, 20);
    using V = std::vector<std::string>;
    const std::pair<const char*, V> cases[] = {
        {"{}", {"reserved-roaming-indicator=warning", "unused-acquisition=warning"}},
        {R"({"rules": {"unused-acquisition": "error", "reserved-roaming-indicator": "info"}})",
         {"reserved-roaming-indicator=info", "unused-acquisition=error"}},
        {R"({"rules": {"unused-acquisition": "off"}})", {"reserved-roaming-indicator=warning"}},
        {R"({"prefOnly": true, "rules": {"policy-pref-only": "info"}})",
         {"reserved-roaming-indicator=warning", "policy-pref-only=info", "unused-acquisition=warning"}},
    };
    for (const auto& [policy, expected] : cases) {
        V out;
        const Policy p = Parse(policy);
        for (const auto& f : LintRoamingList(*list, 0, &p)) out.push_back(f.rule + "=" + SeverityName(f.severity));
        EXPECT_EQ(out, expected) << policy;
    }
}

}  // namespace
}  // namespace Tarn::Analysis
