// The help window builds its tree from Help.INI and shows each topic's page.

#include "ui/help_window.h"

#include <gtest/gtest.h>

#include <QTextBrowser>
#include <QTreeWidget>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::ui {
namespace {

class HelpWindowTest : public ::testing::Test {
  protected:
    ::ovd::testing::TempFolder folder;
    ::ovd::testing::ScriptedPrompts prompts;
};

TEST_F(HelpWindowTest, EntriesHangUnderTheKeyTheirRelativeNames) {
    EXPECT_TRUE(platform::writeWholeFile(
        folder.file("Help.INI"),
        "[General]\r\nEntries=3\r\nListWidth=180\r\nForm Title=Station Help\r\n"
        "[1]\r\nListItem=Dictating\r\nNode=True\r\nKey=dict\r\nListTarget=dictating.txt\r\n"
        "[2]\r\nListItem=Pedals\r\nRelative=dict\r\nKey=ped\r\nListTarget=Left steps back.\r\n"
        "[3]\r\nListItem=Faces\r\n"));
    EXPECT_TRUE(platform::writeWholeFile(folder.file("dictating.txt"), "Press Record and speak."));
    HelpWindow help(loadHelpIndex(folder.path(), "/nowhere", prompts), {folder.path()});
    EXPECT_EQ(help.windowTitle(), "Station Help");
    QTreeWidget* tree = help.tree();
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "Dictating");
    ASSERT_EQ(tree->topLevelItem(0)->childCount(), 1);
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(0), "Pedals");
    EXPECT_EQ(help.page()->toPlainText(), "Press Record and speak.") << "the first topic opens";
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    EXPECT_EQ(help.page()->toPlainText(), "Left steps back.")
        << "a target that is no file is the text";
    tree->setCurrentItem(tree->topLevelItem(1));
    EXPECT_EQ(help.page()->toPlainText(), "There is no help text for this topic.");
}

TEST_F(HelpWindowTest, WithoutHelpIniTheProgramsOwnIsRead) {
    const std::string program = folder.file("share");
    EXPECT_TRUE(platform::createFolder(program + "/help"));
    EXPECT_TRUE(
        platform::writeWholeFile(program + "/help/Help.INI",
                                 "[General]\r\nEntries=1\r\n[1]\r\nListItem=Getting started\r\n"));
    const settings::HelpIndex index = loadHelpIndex(folder.file("data"), program, prompts);
    ASSERT_EQ(index.items.size(), 1u);
    EXPECT_EQ(index.items[0].ListItem, "Getting started");
    EXPECT_EQ(index.items[0].ListTarget, "<UNKNOWN>");
}

TEST_F(HelpWindowTest, TheShippedHelpOpensOnAPage) {
    HelpWindow help(loadHelpIndex(folder.path(), OVD_TEST_ASSETS, prompts),
                    {OVD_TEST_ASSETS "/help"});
    ASSERT_GT(help.tree()->topLevelItemCount(), 0);
    EXPECT_FALSE(help.page()->toPlainText().isEmpty());
    EXPECT_EQ(help.page()->toPlainText().indexOf("There is no help text"), -1);
}

}  // namespace
}  // namespace ovd::ui
