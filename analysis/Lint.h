// The checks run on a roaming list before it ships: named rules, each with a severity, that find
// what a valid list can still get wrong (a handset stranded between GEOs, a record nobody uses),
// plus the operator's own policy rules. The command line and the editor both run these.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "analysis/Providers.h"

namespace Tarn {
class CRLData;
}

namespace Tarn::Analysis {

class ListFacts;
struct Policy;

// Ordered from the least to the most serious, so that "at or above" is a comparison.
enum class Severity { Info = 0, Warning = 1, Error = 2 };
const char* SeverityName(Severity severity);  // "info", "warning", "error"
std::optional<Severity> ParseSeverity(const std::string& name);

// What a finding is reported on. Findings are ordered by this, then by index: the header first,
// then the tables in the order the file holds them.
enum class LintTable {
    Header,       // the list's or file's header; no index
    Acquisition,  // acquisition record
    System,       // system record
    Table,        // an MSPL priority table, by its position in the file
    Record,       // an MLPL or PLMN list record
};
const char* TableName(LintTable table);  // "header", "acquisition", "system", "table", "record"

struct Finding {
    std::string rule;
    Severity severity = Severity::Warning;
    LintTable table = LintTable::Header;
    std::optional<size_t> index;  // nothing for the header
    std::string message;
    // The system record the finding is about, when it names a system by SID, MCC/MNC or PLMN.
    std::optional<size_t> namedSystem;
    // The operators behind that system, when a provider directory was given.
    std::vector<Operator> operators;

    // "system #12", "acquisition #3", "header".
    std::string Where() const;
};

struct LintCounts {
    size_t info = 0, warning = 0, error = 0;
    size_t At(Severity s) const { return s == Severity::Info ? info : s == Severity::Warning ? warning : error; }
    // Findings at `level` or more serious.
    size_t AtOrAbove(Severity level) const;
};
LintCounts CountFindings(const std::vector<Finding>& findings);

// What a roaming list rule is given: the list, its facts, its size as written (0 when unknown),
// the operator policy and the provider directory naming operators (each nothing when not given).
struct LintInput {
    const CRLData& data;
    const ListFacts& facts;
    size_t listBytes = 0;
    const Policy* policy = nullptr;
    const ProviderDirectory* providers = nullptr;
};

// One rule over a roaming list. A rule reports everything it finds at its default severity; the
// runner applies the policy's re-grading afterwards.
class LintRule {
public:
    virtual ~LintRule() = default;
    virtual const char* Id() const = 0;
    virtual Severity DefaultSeverity() const = 0;
    virtual void Check(const LintInput& input, std::vector<Finding>& out) const = 0;

protected:
    Finding Make(LintTable table, std::optional<size_t> index, std::string message) const;
};

// Every roaming list rule, built-in first and the policy rules after them, in the order their
// findings are listed within one record.
const std::vector<const LintRule*>& RoamingListRules();

// Every rule id the tool knows (roaming list and MMSS rules), for the policy's "rules" key.
bool IsKnownRuleId(const std::string& id);
std::vector<std::string> KnownRuleIds();

// Runs every roaming list rule, applies the policy's re-grading and sorts the findings by table
// and index (rule order kept within one record). With `providers`, the messages name the operator
// beside each system and the findings carry the operators.
std::vector<Finding> LintRoamingList(const CRLData& data, size_t listBytes,
                                     const Policy* policy = nullptr,
                                     const ProviderDirectory* providers = nullptr);

// The bytes a list takes when written in `version` (what a size limit is held against), or 0 when
// it cannot be written as it stands.
size_t WrittenListSize(const CRLData& data, int version);

// Drops and re-grades findings as the policy's "rules" say, then sorts them by table and index.
void FinishFindings(std::vector<Finding>& findings, const Policy* policy);

// A system record described by what identifies it: "SID 4106 NID 65535", "MCC 310 IMSI_11_12 12",
// "subnet 2001:db8::/32", ...; with `providers`, followed by the operators it names:
// "SID 4106 NID 65535 (Verizon Wireless (United States))".
std::string DescribeSystem(const ListFacts& facts, size_t systemIndex,
                           const ProviderDirectory* providers = nullptr);

}  // namespace Tarn::Analysis
