#include <gtest/gtest.h>

#include "formats/FileKinds.h"

namespace Tarn {
namespace {

TEST(FileKinds, ExtensionRuleAndOpenRuleOnQuirkyPaths) {
    struct Case {
        const char* path;
        FileKind byExtension;  // the rule start-up uses
        FileKind forOpen;      // the rule File Open, recent files and drops use
    } cases[] = {
        {"", FileKind::RoamingList, FileKind::RoamingList},
        {"list.prl", FileKind::RoamingList, FileKind::RoamingList},
        {"LIST.PRL", FileKind::RoamingList, FileKind::RoamingList},
        {"list.bin", FileKind::RoamingList, FileKind::RoamingList},
        {"list.rl7", FileKind::RoamingList, FileKind::RoamingList},
        {"list.RLX", FileKind::RoamingList, FileKind::RoamingList},
        {"list.hin", FileKind::None, FileKind::None},
        {"list.hrl", FileKind::None, FileKind::None},
        {"no_extension", FileKind::None, FileKind::None},
        {"dir.prl/no_extension", FileKind::None, FileKind::None},
        {"list.txt", FileKind::RoamingListText, FileKind::RoamingListText},
        {"a.mspl", FileKind::Mspl, FileKind::Mspl},
        {"a.MsPl", FileKind::Mspl, FileKind::Mspl},  // misses every substring, found by extension
        {"a.MSPL", FileKind::Mspl, FileKind::Mspl},
        {"a.mspl.bak", FileKind::None, FileKind::Mspl},
        {"a.mlpl", FileKind::Mlpl, FileKind::Mlpl},
        {"a.ehplmn", FileKind::Plmn, FileKind::Plmn},
        {"a.Oplmn", FileKind::Plmn, FileKind::Plmn},
        {"a.bst3gpp", FileKind::Bst3Gpp, FileKind::Bst3Gpp},
        {"a.Bst3Gpp", FileKind::Bst3Gpp, FileKind::Bst3Gpp},
        {"a.BST3GPP.old", FileKind::None, FileKind::None},
        {"a.tot", FileKind::TechOrder, FileKind::TechOrder},
        {"my.totals/list.prl", FileKind::RoamingList, FileKind::TechOrder},
        {"a.laf", FileKind::None, FileKind::Laf},
        {"a.LAF", FileKind::None, FileKind::Laf},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(KindByExtension(c.path), c.byExtension);
        EXPECT_EQ(KindForOpen(c.path), c.forOpen);
    }
}

}  // namespace
}  // namespace Tarn
