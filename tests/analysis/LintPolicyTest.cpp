// The operator policy: what its reader refuses (and how it says so), the rules its keys switch
// on, and the re-grading and silencing of any rule.
#include <gtest/gtest.h>

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

TEST(LintPolicyTest, RefusesBadPoliciesNamingTheKey) {
    struct Case {
        const char* text;
        const char* message;  // expected within the error
    };
    const Case cases[] = {
        {"{", "the policy is not JSON"},
        {"[1]", "must be a JSON object"},
        {R"({"prefonly": true})", "policy key \"prefonly\": is not a policy key"},
        {R"({"prefOnly": "yes"})", "\"prefOnly\": must be true or false"},
        {R"({"defRoamInd": 256})", "\"defRoamInd\": 256 is out of range (0 - 255)"},
        {R"({"maxListSize": "16k"})", "\"maxListSize\": must be a whole number"},
        {R"({"requiredSystems": {"sid": 1}})", "\"requiredSystems\": must be a list"},
        {R"({"requiredSystems": [4106]})", "\"requiredSystems[0]\": must be an object"},
        {R"({"requiredSystems": [{"sid": 40000}]})", "\"requiredSystems[0]\": SID 40000 is out of range"},
        {R"({"forbiddenSystems": [{"sid": 1}, {"sid": "x"}]})", "\"forbiddenSystems[1]\": SID \"x\" is not a number"},
        {R"({"requiredSystems": [{"sid": 1, "mcc": "310", "mnc": "00"}]})", "needs exactly one of sid"},
        {R"({"requiredSystems": [{"nid": 1, "subnet": "2001:db8::/32"}]})", "nid needs sid"},
        {R"({"requiredSystems": [{"mcc": "310"}]})", "mcc and mnc go together"},
        {R"({"requiredSystems": [{"mcc": 310, "mnc": 1}]})", "MNC \"1\" must be two or three digits"},
        {R"({"requiredSystems": [{"sid": 1, "band": 1}]})", "\"requiredSystems[0].band\": is not a system field"},
        {R"({"roamIndAllowed": 1})", "\"roamIndAllowed\": must be a list"},
        {R"({"roamIndAllowed": [1, "2"]})", "\"roamIndAllowed[1]\": must be a whole number"},
        {R"({"rules": ["unused-acquisition"]})", "\"rules\": must be an object"},
        {R"({"rules": {"unused-acquisitions": "off"}})", "\"rules.unused-acquisitions\": there is no rule"},
        {R"({"rules": {"ambiguous-geo": "fatal"}})", "\"rules.ambiguous-geo\": must be \"off\""},
    };
    for (const auto& c : cases) {
        Policy p;
        std::string error;
        EXPECT_FALSE(ParsePolicy(c.text, p, error)) << c.text;
        EXPECT_NE(error.find(c.message), std::string::npos) << c.text << " -> " << error;
    }
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
        {R"({"defRoamInd": 64})", {"policy-def-roam-ind header"}},
        {R"({"maxListSize": 100})", {"policy-list-size header"}, 101},
        {R"({"maxListSize": 100})", {}, 100},
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

    const Policy missing = Parse(R"({"requiredSystems": [{"sid": 9, "nid": 4}]})");
    for (const auto& f : LintRoamingList(*list, 0, &missing))
        if (f.rule == "policy-required-system") {
            EXPECT_EQ(f.message, "no preferred record names SID 9 NID 4, which the policy requires");
        }
}

TEST(LintPolicyTest, RulesAreRegradedOrSilenced) {
    // Acquisition #1 is unused (warning); the default indicator 20 is reserved (warning).
    auto list = JsonList(json::array({PcsChannels({25}), PcsChannels({50})}),
                         json::array({Sid(1, 65535, true, true, false, 0)}), 3, false, 20);
    auto severities = [&](const char* policy) {
        std::vector<std::string> out;
        Policy p = Parse(policy);
        for (const auto& f : LintRoamingList(*list, 0, &p))
            out.push_back(f.rule + "=" + SeverityName(f.severity));
        return out;
    };
    EXPECT_EQ(severities("{}"), (std::vector<std::string>{"reserved-roaming-indicator=warning",
                                                          "unused-acquisition=warning"}));
    EXPECT_EQ(severities(R"({"rules": {"unused-acquisition": "error", "reserved-roaming-indicator": "info"}})"),
              (std::vector<std::string>{"reserved-roaming-indicator=info", "unused-acquisition=error"}));
    EXPECT_EQ(severities(R"({"rules": {"unused-acquisition": "off"}})"),
              (std::vector<std::string>{"reserved-roaming-indicator=warning"}));
    EXPECT_EQ(severities(R"({"prefOnly": true, "rules": {"policy-pref-only": "info"}})"),
              (std::vector<std::string>{"reserved-roaming-indicator=warning", "policy-pref-only=info",
                                        "unused-acquisition=warning"}));
}

}  // namespace
}  // namespace Tarn::Analysis
