// The rule objects behind the lint registry: the built-in roaming list rules and the rules an
// operator policy switches on.
#pragma once

#include <vector>

#include "analysis/Lint.h"

namespace Tarn::Analysis {

// unused-acquisition, duplicate-acquisition, channel-out-of-band, duplicate-system,
// conflicting-system, ambiguous-geo, geo-without-preferred, priority-at-geo-end,
// reserved-roaming-indicator, in that order.
std::vector<const LintRule*> BuiltInRules();
// policy-pref-only, policy-def-roam-ind, policy-list-size, policy-required-system,
// policy-forbidden-system, policy-roaming-indicator: each silent when its key is not in the policy.
std::vector<const LintRule*> PolicyRules();

}  // namespace Tarn::Analysis
