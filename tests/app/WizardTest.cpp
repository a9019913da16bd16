// The join and split wizards: what each page refuses, in which order, and what its browse
// buttons ask (tests/app/RLDocTest.cpp walks both wizards end to end).
#include <gtest/gtest.h>

#include <QPushButton>

#include "app/wizards/ConcatPrlWizards.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

const QString kFirst = "Please enter a first path.";
const QString kSecond = "Please enter a second path.";
const QString kPath = "Please enter a path.";
const QString kTwo = "Two different files must be specified. Please change one of the paths.";

TEST(WizardChecks, JoinPagesInOrder) {
    struct Case {
        QString first, second, output;
        QString inputMessage, outputMessage;
    };
    const Case cases[] = {
        // Both empty: only the first-path message.
        {"", "", "o.prl", kFirst, ""},
        {"a.prl", "", "o.prl", kSecond, ""},
        {"a.prl", "a.prl", "o.prl", kTwo, ""},
        // Two spellings of one file are one file.
        {"a.prl", "./sub/../a.prl", "o.prl", kTwo, ""},
        {"a.prl", "A.prl", "", "", kPath},
        {"a.prl", "b.prl", "b.prl", "",
         "The output path must not be the same as either input path. Please enter a different path."},
        {"a.prl", "b.prl", "o.prl", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE((c.first + "|" + c.second + "|" + c.output).toStdString());
        EXPECT_EQ(CheckJoinInputPaths(c.first, c.second), c.inputMessage);
        if (c.inputMessage.isEmpty()) {
            EXPECT_EQ(CheckJoinOutputPath(c.output, c.first, c.second), c.outputMessage);
        }
    }
}

TEST(WizardChecks, SplitPagesInOrder) {
    EXPECT_EQ(CheckSplitInputPath(""), kPath);
    EXPECT_EQ(CheckSplitInputPath("c.prl"), "");
    struct Case {
        QString first, second, message;
    };
    const Case cases[] = {
        {"", "", kFirst},
        {"in.prl", "",
         "The output paths must not be the same as the input path. Please enter a different first path."},
        {"a.prl", "", kSecond},
        {"a.prl", "in.prl",
         "The output paths must not be the same as the input path. Please enter a different second path."},
        {"a.prl", "a.prl", kTwo},
        {"a.prl", "b.prl", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CheckSplitOutputPaths("in.prl", c.first, c.second), c.message);
}

TEST(Wizards, BrowseButtonsAskWithTheirTitlesAndFilters) {
    AppTest::FakePrompts prompts;
    ConcatPrlJoinWizard join;
    ConcatPrlSplitWizard split;
    for (QWizardPage* page : {static_cast<QWizardPage*>(join.InputPage()), static_cast<QWizardPage*>(join.OutputPage()),
                              static_cast<QWizardPage*>(split.InputPage()), static_cast<QWizardPage*>(split.OutputPage())})
        for (QPushButton* b : page->findChildren<QPushButton*>()) b->click();
    QStringList titles;
    for (const auto& d : prompts.openDialogs) titles << d.title;
    for (const auto& d : prompts.saveDialogs) titles << d.title;
    EXPECT_EQ(titles, (QStringList{"Select First Input File", "Select Second Input File", "Select Input File",
                                   "Specify Path for Output File", "Specify First Output File",
                                   "Specify Second Output File"}));
    ASSERT_EQ(prompts.openDialogs.size(), 3u);
    EXPECT_EQ(prompts.openDialogs[2].filter, "Concatenated Roaming Lists (*.prl)|*.prl|All Files (*.*)|*.*||");
    EXPECT_FALSE(prompts.openDialogs[2].fileMustExist);
    EXPECT_EQ(prompts.saveDialogs[0].filter, ConcatenatedListFilter());
    EXPECT_EQ(prompts.saveDialogs[2].filter, WizardRoamingListFilter());
    for (const auto& s : prompts.saveDialogs) {
        EXPECT_EQ(s.defaultSuffix, "prl");
        EXPECT_TRUE(s.overwritePrompt);
    }
}

}  // namespace
}  // namespace Tarn
