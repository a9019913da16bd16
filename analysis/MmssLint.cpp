#include "analysis/MmssLint.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <map>
#include <unordered_map>

#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Plmn/PlmnDocument.h"

namespace Tarn::Analysis {
namespace {

constexpr const char* kMsplMoreAtEnd = "mspl-more-at-end";
constexpr const char* kMsplDuplicateId = "mspl-duplicate-id";
constexpr const char* kMlplUnknownMspl = "mlpl-unknown-mspl";
constexpr const char* kPlmnDuplicate = "plmn-duplicate";

Finding Make(const char* rule, Severity severity, LintTable table, size_t index, std::string message) {
    Finding f;
    f.rule = rule;
    f.severity = severity;
    f.table = table;
    f.index = index;
    f.message = std::move(message);
    return f;
}

// Identifiers are held as typed; "05" and "5" are the same byte in the file.
std::string IdKey(const std::string& text) {
    unsigned value = 0;
    auto [p, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!text.empty() && ec == std::errc() && p == text.data() + text.size()) return std::to_string(value);
    return text;
}

}  // namespace

const std::vector<std::string>& MmssRuleIds() {
    static const std::vector<std::string> ids = {kMsplMoreAtEnd, kMsplDuplicateId, kMlplUnknownMspl,
                                                 kPlmnDuplicate};
    return ids;
}

std::vector<Finding> LintMspl(const Mspl::Data& mspl) {
    std::vector<Finding> out;
    std::unordered_map<std::string, size_t> seen;
    for (size_t t = 0; t < mspl.lists.size(); ++t) {
        const std::string id = t < mspl.ids.size() ? mspl.ids[t] : "?";
        // Two tables under one identifier: an MLPL record naming it can only ever reach one.
        auto [it, inserted] = seen.emplace(IdKey(id), t);
        if (!inserted)
            out.push_back(Make(kMsplDuplicateId, Severity::Error, LintTable::Table, t,
                               "MSPL_ID " + id + " is also the identifier of table #" +
                                   std::to_string(it->second)));
        // "More" ranks the record above the next one; the last record has no next, so the table
        // was cut short or its order was changed.
        const CRLItemList& list = mspl.lists[t];
        if (list.IsEmpty()) continue;
        const auto* last = dynamic_cast<const Mspl::Record*>(list.GetAt(list.GetSize() - 1));
        if (last && last->sysPri == 1)
            out.push_back(Make(kMsplMoreAtEnd, Severity::Info, LintTable::Table, t,
                               "the last record (#" + std::to_string(list.GetSize() - 1) +
                                   ") of MSPL_ID " + id +
                                   " says \"More\" with no record after it to rank lower"));
    }
    return out;
}

std::vector<Finding> LintMlpl(const Mlpl::Data& mlpl, const Mspl::Data* mspl) {
    std::vector<Finding> out;
    if (!mspl) return out;
    // A location whose table is missing leaves the handset with no priorities there at all.
    std::map<std::string, bool> held;
    std::string heldText;
    for (const auto& id : mspl->ids) {
        if (held.emplace(IdKey(id), true).second) heldText += (heldText.empty() ? "" : ", ") + id;
    }
    for (size_t r = 0; r < mlpl.records.size(); ++r) {
        const std::string& index = mlpl.records[r].msplIndex;
        if (held.count(IdKey(index))) continue;
        out.push_back(Make(kMlplUnknownMspl, Severity::Error, LintTable::Record, r,
                           "MSPL_INDEX " + index + " names no MSPL table of the MSPL file (it holds " +
                               (heldText.empty() ? std::string("none") : "MSPL_ID " + heldText) + ")"));
    }
    return out;
}

std::vector<Finding> LintPlmn(const Plmn::Data& plmn, const ProviderDirectory* providers) {
    std::vector<Finding> out;
    const bool access = Plmn::HasAccessBytes(plmn.listKind);
    // A PLMN listed twice: the later entry can never be reached. In the lists with access
    // technologies the same PLMN may stand again for other technologies (that is how priorities
    // differ by technology), so only a technology named twice counts.
    // Per PLMN, the first record naming each technology (UMTS, LTE, GSM, none).
    std::unordered_map<std::string, std::array<std::optional<size_t>, 4>> seen;
    static const char* const kTech[] = {"UMTS", "LTE", "GSM"};
    for (size_t i = 0; i < plmn.records.GetSize(); ++i) {
        const auto* r = dynamic_cast<const Plmn::Record*>(plmn.records.GetAt(i));
        if (!r) continue;
        std::string key;
        for (uint8_t d : r->mcc) key += static_cast<char>('0' + d);
        for (uint8_t d : r->mnc) key += static_cast<char>('0' + d);
        auto& first = seen[key];
        const bool flags[] = {access && r->umts, access && r->lte, access && r->gsm};
        const bool none = !flags[0] && !flags[1] && !flags[2];
        std::optional<size_t> earlier;
        std::string techs;
        for (size_t t = 0; t < 3; ++t)
            if (flags[t] && first[t]) {
                earlier = earlier ? std::min(*earlier, *first[t]) : *first[t];
                techs += (techs.empty() ? "" : ", ") + std::string(kTech[t]);
            }
        if (none && first[3]) earlier = first[3];
        if (earlier) {
            std::vector<Operator> ops;
            if (providers) ops = providers->ForMccMnc(r->MccText(), r->MncText());
            const std::string label = OperatorLabel(ops);
            std::string message = "MCC " + r->MccText() + " MNC " + r->MncText() +
                                  (label.empty() ? "" : " (" + label + ")") + " is already listed" +
                                  (techs.empty() ? "" : " for " + techs) + " in record #" +
                                  std::to_string(*earlier);
            Finding f = Make(kPlmnDuplicate, Severity::Warning, LintTable::Record, i, message);
            f.operators = std::move(ops);
            out.push_back(std::move(f));
        }
        for (size_t t = 0; t < 3; ++t)
            if (flags[t] && !first[t]) first[t] = i;
        if (none && !first[3]) first[3] = i;
    }
    return out;
}

std::vector<Finding> LintMmssDocument(const FileDocument& doc, const Mspl::Data* mspl,
                                      const ProviderDirectory* providers) {
    if (const auto* d = dynamic_cast<const Mspl::Document*>(&doc)) return LintMspl(d->data);
    if (const auto* d = dynamic_cast<const Mlpl::Document*>(&doc)) return LintMlpl(d->data, mspl);
    if (const auto* d = dynamic_cast<const Plmn::Document*>(&doc)) return LintPlmn(d->data, providers);
    return {};
}

}  // namespace Tarn::Analysis
