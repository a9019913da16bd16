// The MMSS lint rules: MLPL records against the MSPL they point into, PLMNs listed twice, MSPL
// tables ending on "More" or sharing an identifier. A policy grades them as it grades every rule
// (LintPolicyTest).
#include <gtest/gtest.h>

#include "analysis/MmssLint.h"
#include "mmss/Mlpl/MlplData.h"
#include "mmss/Mspl/MsplData.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Plmn/PlmnData.h"

namespace Tarn::Analysis {
namespace {

std::vector<std::string> Where(const std::vector<Finding>& findings, const std::string& rule) {
    std::vector<std::string> out;
    for (const auto& f : findings)
        if (f.rule == rule) out.push_back(f.Where());
    return out;
}

// An MSPL with one table per (identifier, "More" flags of its records).
Mspl::Data MakeMspl(const std::vector<std::pair<std::string, std::vector<int>>>& tables) {
    Mspl::Data d;
    for (const auto& [id, pris] : tables) {
        CRLItemList& list = d.AddId(id);
        for (int pri : pris) {
            auto r = std::make_unique<Mspl::Record>();
            r->sysPri = static_cast<uint8_t>(pri);
            list.Add(std::move(r));
        }
    }
    return d;
}

TEST(LintMmssTest, MsplTables) {
    Mspl::Data mspl = MakeMspl({{"1", {1, 0}}, {"2", {0, 1}}, {"3", {}}, {"02", {1}}});
    auto findings = LintMspl(mspl);
    EXPECT_EQ(Where(findings, "mspl-more-at-end"), (std::vector<std::string>{"table #1", "table #3"}));
    // "02" and "2" are the same identifier byte.
    EXPECT_EQ(Where(findings, "mspl-duplicate-id"), std::vector<std::string>{"table #3"});
    EXPECT_TRUE(LintMspl(MakeMspl({{"1", {1, 1, 0}}, {"7", {0}}})).empty());
}

TEST(LintMmssTest, MlplIndexMustNameAnMsplTable) {
    Mspl::Data mspl = MakeMspl({{"1", {0}}, {"4", {0}}});
    Mlpl::Data mlpl;
    for (const char* index : {"1", "2", "4", "004", "9"}) {
        Mlpl::Location l;
        l.msplIndex = index;
        mlpl.records.push_back(std::move(l));
    }
    auto findings = LintMlpl(mlpl, &mspl);
    EXPECT_EQ(Where(findings, "mlpl-unknown-mspl"), (std::vector<std::string>{"record #1", "record #4"}));
    EXPECT_EQ(findings[0].message, "MSPL_INDEX 2 names no MSPL table of the MSPL file (it holds MSPL_ID 1, 4)");
    EXPECT_EQ(findings[0].severity, Severity::Error);
    // Without the MSPL there is nothing to hold the indices against.
    EXPECT_TRUE(LintMlpl(mlpl, nullptr).empty());
}

TEST(LintMmssTest, PlmnListedTwice) {
    struct Entry {
        Mmss::Digits mcc, mnc;
        int umts, lte, gsm;
    };
    const Mmss::Digits k310{3, 1, 0}, k260{2, 6, 0}, k26{2, 6, 15}, k120{1, 2, 0};
    auto run = [](uint8_t kind, const std::vector<Entry>& entries) {
        Plmn::Data d;
        d.listKind = kind;
        for (const auto& e : entries) {
            Plmn::Record& r = d.AddRecord();
            r.mcc = e.mcc;
            r.mnc = e.mnc;
            r.umts = static_cast<uint8_t>(e.umts);
            r.lte = static_cast<uint8_t>(e.lte);
            r.gsm = static_cast<uint8_t>(e.gsm);
            r.UpdateValues();
        }
        return Where(LintPlmn(d), "plmn-duplicate");
    };
    using W = std::vector<std::string>;
    // A two-digit MNC is not its three-digit neighbour.
    EXPECT_EQ(run(Plmn::kEhplmn, {{k310, k260, 0, 0, 0}, {k310, k26, 0, 0, 0}, {k310, k260, 0, 0, 0}}),
              W{"record #2"});
    // With access technologies the same PLMN may return for other technologies, not the same one.
    EXPECT_EQ(run(Plmn::kOplmn, {{k310, k260, 0, 1, 0}, {k310, k260, 1, 0, 1}, {k310, k120, 1, 1, 1}}), W{});
    EXPECT_EQ(run(Plmn::kUplmn, {{k310, k260, 0, 1, 0}, {k310, k260, 1, 1, 0}, {k310, k260, 0, 0, 0},
                                 {k310, k260, 0, 0, 0}}),
              (W{"record #1", "record #3"}));
}

}  // namespace
}  // namespace Tarn::Analysis
