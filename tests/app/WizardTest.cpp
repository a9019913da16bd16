// The join and split wizards: what each page refuses, in which order, and what the results page
// shows and opens.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
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
        {"", "b.prl", "o.prl", kFirst, ""},
        {"a.prl", "", "o.prl", kSecond, ""},
        {"a.prl", "a.prl", "o.prl", kTwo, ""},
        // Two spellings of one file are one file.
        {"a.prl", "./sub/../a.prl", "o.prl", kTwo, ""},
        {"a.prl", "A.prl", "", "", kPath},
        {"a.prl", "b.prl", "b.prl", "",
         "The output path must not be the same as either input path. Please enter a different "
         "path."},
        {"a.prl", "b.prl", "a.prl", "",
         "The output path must not be the same as either input path. Please enter a different "
         "path."},
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
         "The output paths must not be the same as the input path. Please enter a different first "
         "path."},
        {"a.prl", "", kSecond},
        {"a.prl", "in.prl",
         "The output paths must not be the same as the input path. Please enter a different second "
         "path."},
        {"a.prl", "a.prl", kTwo},
        {"a.prl", "b.prl", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CheckSplitOutputPaths("in.prl", c.first, c.second), c.message);
}

TEST(Wizards, NextStaysOnTheRefusedPageAndSaysWhy) {
    AppTest::FakePrompts prompts;
    ConcatPrlJoinWizard join;
    join.restart();
    join.next();
    EXPECT_EQ(join.currentId(), ConcatPrlJoinWizard::InputPageId);
    EXPECT_EQ(prompts.MessageTexts(), QStringList{kFirst});
    EXPECT_EQ(prompts.messages[0].icon, MsgIcon::Warning);
    join.InputPage()->FirstEdit()->setText("a.prl");
    join.InputPage()->SecondEdit()->setText("b.prl");
    join.next();
    EXPECT_EQ(join.currentId(), ConcatPrlJoinWizard::OutputPageId);
    EXPECT_EQ(join.firstPath, "a.prl");

    ConcatPrlSplitWizard split;
    split.SetInputPath("in.prl");
    split.restart();
    EXPECT_EQ(split.InputPage()->InputEdit()->text(), "in.prl");
    split.next();
    EXPECT_EQ(split.currentId(), ConcatPrlSplitWizard::OutputPageId);
    split.OutputPage()->FirstEdit()->setText("in.prl");
    prompts.Clear();
    split.next();
    EXPECT_EQ(split.currentId(), ConcatPrlSplitWizard::OutputPageId);
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_TRUE(prompts.messages[0].text.endsWith("different first path."));
}

TEST(Wizards, BrowseButtonsAskWithTheirTitlesAndFilters) {
    AppTest::FakePrompts prompts;
    ConcatPrlJoinWizard join;
    ConcatPrlSplitWizard split;
    std::vector<std::pair<QWizardPage*, int>> buttons;
    for (QWizardPage* page :
         {static_cast<QWizardPage*>(join.InputPage()), static_cast<QWizardPage*>(join.OutputPage()),
          static_cast<QWizardPage*>(split.InputPage()),
          static_cast<QWizardPage*>(split.OutputPage())})
        for (QPushButton* b : page->findChildren<QPushButton*>()) b->click();
    ASSERT_EQ(prompts.openDialogs.size(), 3u);
    ASSERT_EQ(prompts.saveDialogs.size(), 3u);
    EXPECT_EQ(prompts.openDialogs[0].title, "Select First Input File");
    EXPECT_EQ(prompts.openDialogs[1].title, "Select Second Input File");
    EXPECT_TRUE(prompts.openDialogs[1].fileMustExist);
    EXPECT_EQ(prompts.openDialogs[2].title, "Select Input File");
    EXPECT_EQ(prompts.openDialogs[2].filter,
              "Concatenated Roaming Lists (*.prl)|*.prl|All Files (*.*)|*.*||");
    EXPECT_FALSE(prompts.openDialogs[2].fileMustExist);
    EXPECT_EQ(prompts.saveDialogs[0].title, "Specify Path for Output File");
    EXPECT_EQ(prompts.saveDialogs[0].filter, ConcatenatedListFilter());
    EXPECT_EQ(prompts.saveDialogs[1].title, "Specify First Output File");
    EXPECT_EQ(prompts.saveDialogs[2].title, "Specify Second Output File");
    EXPECT_EQ(prompts.saveDialogs[2].filter, WizardRoamingListFilter());
    for (const auto& s : prompts.saveDialogs) {
        EXPECT_EQ(s.defaultSuffix, "prl");
        EXPECT_TRUE(s.overwritePrompt);
    }
}

TEST(Wizards, QtFilterFromDocumentFilter) {
    EXPECT_EQ(
        QtFilterFromDocFilter("Concatenated Roaming Lists (*.prl)|*.prl|All Files (*.*)|*.*||"),
        "Concatenated Roaming Lists (*.prl);;All Files (*)");
    EXPECT_EQ(QtFilterFromDocFilter(
                  "Plmn Files (*.ehplmn, *.oplmn, *.uplmn)|*.ehplmn; *.oplmn; *.uplmn||"),
              "Plmn Files (*.ehplmn *.oplmn *.uplmn)");
}

}  // namespace
}  // namespace Tarn
