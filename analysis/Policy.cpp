#include "analysis/Policy.h"

#include <nlohmann/json.hpp>

#include "foundation/AtomicFile.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;

// A policy is a handful of keys written by hand; anything this large is not one.
constexpr uint64_t kMaxPolicyBytes = 1u << 20;

// Thrown inside the reader with a message naming the key; caught once in ParsePolicy.
struct PolicyError {
    std::string message;
};

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw PolicyError{"policy key \"" + where + "\": " + what};
}

bool ReadBool(const json& value, const std::string& key) {
    if (!value.is_boolean()) Fail(key, "must be true or false, not " + value.dump());
    return value.get<bool>();
}

uint64_t ReadCount(const json& value, const std::string& key, uint64_t max) {
    if (!value.is_number_unsigned())
        Fail(key, "must be a whole number from 0 to " + std::to_string(max) + ", not " + value.dump());
    const uint64_t n = value.get<uint64_t>();
    if (n > max) Fail(key, std::to_string(n) + " is out of range (0 - " + std::to_string(max) + ")");
    return n;
}

// A field of a system entry: numbers and strings are both accepted, as users write SIDs as
// numbers and MCC/MNC as strings (where leading zeros matter).
std::string FieldText(const json& value, const std::string& key) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_unsigned()) return std::to_string(value.get<uint64_t>());
    Fail(key, "must be a number or a string, not " + value.dump());
}

PolicySystem ReadSystem(const json& entry, const std::string& key) {
    if (!entry.is_object())
        Fail(key, "must be an object such as {\"sid\": 4106} or {\"mcc\": \"310\", \"mnc\": \"120\"}");
    ObservationFields fields;
    for (const auto& [name, value] : entry.items()) {
        const std::string where = key + "." + name;
        if (name == "sid") fields.sid = FieldText(value, where);
        else if (name == "nid") fields.nid = FieldText(value, where);
        else if (name == "mcc") fields.mcc = FieldText(value, where);
        else if (name == "mnc") fields.mnc = FieldText(value, where);
        else if (name == "subnet") fields.subnet = FieldText(value, where);
        else Fail(where, "is not a system field (sid, nid, mcc, mnc, subnet)");
    }
    // Said here in the policy's own terms; the observation reader speaks of command line options.
    const int kinds = entry.contains("sid") + (entry.contains("mcc") || entry.contains("mnc")) +
                      entry.contains("subnet");
    if (kinds != 1) Fail(key, "needs exactly one of sid, mcc with mnc, or subnet");
    if (entry.contains("nid") && !entry.contains("sid")) Fail(key, "nid needs sid");
    if (entry.contains("mcc") != entry.contains("mnc")) Fail(key, "mcc and mnc go together");
    PolicySystem out;
    std::string error;
    if (!ParseObservation(fields, out.observation, error)) Fail(key, error);
    out.text = out.observation.Describe();
    return out;
}

std::vector<PolicySystem> ReadSystems(const json& value, const std::string& key) {
    if (!value.is_array()) Fail(key, "must be a list of systems");
    std::vector<PolicySystem> out;
    for (size_t i = 0; i < value.size(); ++i)
        out.push_back(ReadSystem(value[i], key + "[" + std::to_string(i) + "]"));
    return out;
}

void ReadPolicy(const json& root, Policy& out) {
    for (const auto& [key, value] : root.items()) {
        if (key == "prefOnly") {
            out.prefOnly = ReadBool(value, key);
        } else if (key == "defRoamInd") {
            out.defRoamInd = static_cast<unsigned>(ReadCount(value, key, 255));
        } else if (key == "maxListSize") {
            out.maxListSize = static_cast<size_t>(ReadCount(value, key, UINT32_MAX));
        } else if (key == "requiredSystems") {
            out.requiredSystems = ReadSystems(value, key);
        } else if (key == "forbiddenSystems") {
            out.forbiddenSystems = ReadSystems(value, key);
        } else if (key == "roamIndAllowed") {
            if (!value.is_array()) Fail(key, "must be a list of roaming indicators (0 - 255)");
            std::vector<unsigned> allowed;
            for (size_t i = 0; i < value.size(); ++i)
                allowed.push_back(static_cast<unsigned>(
                    ReadCount(value[i], key + "[" + std::to_string(i) + "]", 255)));
            out.roamIndAllowed = std::move(allowed);
        } else if (key == "rules") {
            if (!value.is_object())
                Fail(key, "must be an object such as {\"unused-acquisition\": \"off\"}");
            for (const auto& [id, grade] : value.items()) {
                const std::string where = key + "." + id;
                if (!IsKnownRuleId(id)) Fail(where, "there is no rule \"" + id + "\"");
                const std::string text = grade.is_string() ? grade.get<std::string>() : "";
                if (text == "off") {
                    out.grades[id] = std::nullopt;
                    continue;
                }
                auto severity = ParseSeverity(text);
                if (!severity) Fail(where, "must be \"off\", \"info\", \"warning\" or \"error\", not " + grade.dump());
                out.grades[id] = *severity;
            }
        } else {
            Fail(key, "is not a policy key (prefOnly, defRoamInd, maxListSize, requiredSystems, "
                      "forbiddenSystems, roamIndAllowed, rules)");
        }
    }
}

}  // namespace

bool ParsePolicy(const std::string& text, Policy& out, std::string& error) {
    out = Policy{};
    json root;
    try {
        root = json::parse(text);
    } catch (const json::exception& e) {
        error = std::string("the policy is not JSON: ") + e.what();
        return false;
    }
    if (!root.is_object()) {
        error = "the policy must be a JSON object of policy keys";
        return false;
    }
    try {
        ReadPolicy(root, out);
    } catch (const PolicyError& e) {
        out = Policy{};
        error = e.message;
        return false;
    }
    return true;
}

bool LoadPolicy(const std::string& path, Policy& out, std::string& error) {
    std::vector<uint8_t> bytes;
    // The file reader's messages already name the path.
    if (!ReadWholeFile(path, bytes, error, kMaxPolicyBytes)) return false;
    if (ParsePolicy(std::string(bytes.begin(), bytes.end()), out, error)) return true;
    error = path + ": " + error;
    return false;
}

}  // namespace Tarn::Analysis
