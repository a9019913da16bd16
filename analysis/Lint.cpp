#include "analysis/Lint.h"

#include <algorithm>
#include <cstdio>

#include "analysis/LintRules.h"
#include "analysis/ListFacts.h"
#include "analysis/MmssLint.h"
#include "analysis/Observation.h"
#include "analysis/Policy.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"

namespace Tarn::Analysis {

const char* SeverityName(Severity severity) {
    switch (severity) {
        case Severity::Info: return "info";
        case Severity::Warning: return "warning";
        case Severity::Error: return "error";
    }
    return "error";
}

std::optional<Severity> ParseSeverity(const std::string& name) {
    for (Severity s : {Severity::Info, Severity::Warning, Severity::Error})
        if (name == SeverityName(s)) return s;
    return std::nullopt;
}

const char* TableName(LintTable table) {
    switch (table) {
        case LintTable::Header: return "header";
        case LintTable::Acquisition: return "acquisition";
        case LintTable::System: return "system";
        case LintTable::Table: return "table";
        case LintTable::Record: return "record";
    }
    return "header";
}

std::string Finding::Where() const {
    if (!index) return TableName(table);
    return std::string(TableName(table)) + " #" + std::to_string(*index);
}

size_t LintCounts::AtOrAbove(Severity level) const {
    size_t n = 0;
    for (Severity s : {Severity::Info, Severity::Warning, Severity::Error})
        if (s >= level) n += At(s);
    return n;
}

LintCounts CountFindings(const std::vector<Finding>& findings) {
    LintCounts c;
    for (const auto& f : findings) {
        switch (f.severity) {
            case Severity::Info: ++c.info; break;
            case Severity::Warning: ++c.warning; break;
            case Severity::Error: ++c.error; break;
        }
    }
    return c;
}

Finding LintRule::Make(LintTable table, std::optional<size_t> index, std::string message) const {
    Finding f;
    f.rule = Id();
    f.severity = DefaultSeverity();
    f.table = table;
    f.index = index;
    f.message = std::move(message);
    return f;
}

const std::vector<const LintRule*>& RoamingListRules() {
    static const std::vector<const LintRule*> rules = [] {
        auto all = BuiltInRules();
        for (const LintRule* r : PolicyRules()) all.push_back(r);
        return all;
    }();
    return rules;
}

std::vector<std::string> KnownRuleIds() {
    std::vector<std::string> ids;
    for (const LintRule* r : RoamingListRules()) ids.push_back(r->Id());
    for (const auto& id : MmssRuleIds()) ids.push_back(id);
    return ids;
}

bool IsKnownRuleId(const std::string& id) {
    const auto ids = KnownRuleIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

void FinishFindings(std::vector<Finding>& findings, const Policy* policy) {
    if (policy && !policy->grades.empty()) {
        std::vector<Finding> kept;
        for (auto& f : findings) {
            auto it = policy->grades.find(f.rule);
            if (it == policy->grades.end()) {
                kept.push_back(std::move(f));
            } else if (it->second) {
                f.severity = *it->second;
                kept.push_back(std::move(f));
            }
        }
        findings = std::move(kept);
    }
    // Stable: within one record the findings keep the order the rules ran in.
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        if (a.table != b.table) return a.table < b.table;
        return a.index.value_or(0) < b.index.value_or(0);
    });
}

namespace {

std::string DescribeIdentity(const ListFacts& facts, size_t i) {
    return SystemIdentityText(facts.System(i));
}

}  // namespace

std::vector<Finding> LintRoamingList(const CRLData& data, size_t listBytes, const Policy* policy,
                                     const ProviderDirectory* providers) {
    ListFacts facts(data);
    LintInput input{data, facts, listBytes, policy, providers};
    std::vector<Finding> findings;
    for (const LintRule* rule : RoamingListRules()) {
        // A silenced rule need not run at all.
        if (policy) {
            auto it = policy->grades.find(rule->Id());
            if (it != policy->grades.end() && !it->second) continue;
        }
        rule->Check(input, findings);
    }
    if (providers)
        for (auto& f : findings)
            if (f.namedSystem) f.operators = OperatorsForRecord(*providers, facts.System(*f.namedSystem));
    FinishFindings(findings, policy);
    return findings;
}

size_t WrittenListSize(const CRLData& data, int version) {
    auto manager = CreateClassFactory(version)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    CRLFile file;
    try {
        if (manager->WriteList(file)) return file.Bytes().size();
    } catch (const std::exception&) {
        // A list the writer refuses has no size to judge.
    }
    return 0;
}

std::string DescribeSystem(const ListFacts& facts, size_t i, const ProviderDirectory* providers) {
    std::string text = DescribeIdentity(facts, i);
    if (providers) {
        const std::string label = OperatorLabel(OperatorsForRecord(*providers, facts.System(i)));
        if (!label.empty()) text += " (" + label + ")";
    }
    return text;
}

}  // namespace Tarn::Analysis
