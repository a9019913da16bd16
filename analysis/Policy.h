// An operator's house policy for its roaming lists, read from a JSON file: required header
// values, a size limit, systems that must or must not be preferred, allowed roaming indicators,
// and the re-grading or silencing of any lint rule.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "analysis/Lint.h"
#include "analysis/Observation.h"

namespace Tarn::Analysis {

// A system the policy names, with the text it was written as for the messages.
struct PolicySystem {
    Observation observation;
    std::string text;  // "SID 4106", "MCC 310 MNC 120", ...
};

struct Policy {
    std::optional<bool> prefOnly;
    std::optional<unsigned> defRoamInd;
    std::optional<size_t> maxListSize;
    std::vector<PolicySystem> requiredSystems;
    std::vector<PolicySystem> forbiddenSystems;
    std::optional<std::vector<unsigned>> roamIndAllowed;
    // Rule id -> new severity; nothing silences the rule.
    std::map<std::string, std::optional<Severity>> grades;
};

// Reads a policy from JSON text. False with one clear line in `error` naming the key at fault:
// not JSON, not an object, an unknown key or rule id, a value of the wrong type or out of range.
bool ParsePolicy(const std::string& text, Policy& out, std::string& error);
// The same from a file (at most 1 MiB); the message starts with the path.
bool LoadPolicy(const std::string& path, Policy& out, std::string& error);

}  // namespace Tarn::Analysis
