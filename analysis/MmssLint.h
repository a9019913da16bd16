// Lint rules over the MMSS files: MLPL records that point at MSPL tables the MSPL does not hold,
// PLMNs listed twice, MSPL tables that end on "More" or share an identifier.
#pragma once

#include <string>
#include <vector>

#include "analysis/Lint.h"

namespace Tarn {
class FileDocument;
namespace Mspl {
class Data;
}
namespace Mlpl {
class Data;
}
namespace Plmn {
class Data;
}
}  // namespace Tarn

namespace Tarn::Analysis {

// The ids of the MMSS rules, for the policy's "rules" key.
const std::vector<std::string>& MmssRuleIds();

// mspl-more-at-end, mspl-duplicate-id.
std::vector<Finding> LintMspl(const Mspl::Data& mspl);
// mlpl-unknown-mspl when `mspl` is given.
std::vector<Finding> LintMlpl(const Mlpl::Data& mlpl, const Mspl::Data* mspl);
// plmn-duplicate; with `providers` the messages and findings name the PLMN's operators.
std::vector<Finding> LintPlmn(const Plmn::Data& plmn, const ProviderDirectory* providers = nullptr);

// The rules of whatever MMSS kind `doc` holds (nothing for kinds without rules); `mspl` serves an
// MLPL. Findings are not yet re-graded or sorted (see FinishFindings).
std::vector<Finding> LintMmssDocument(const FileDocument& doc, const Mspl::Data* mspl,
                                      const ProviderDirectory* providers = nullptr);

}  // namespace Tarn::Analysis
