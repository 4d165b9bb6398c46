// The headless station's answers: defaults, the answers file, and nothing unseen.

#include "platform/headless_prompts.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ovd::platform {
namespace {

class HeadlessPromptsTest : public ::testing::Test {
  protected:
    std::vector<std::string> logged;
    std::ostringstream err;
    HeadlessPrompts prompts{[this](const std::string& line) { logged.push_back(line); }, err};
};

TEST_F(HeadlessPromptsTest, BoxesTakeTheirDefaultButtonAndAreLoggedAndPrinted) {
    const Answer answer =
        prompts.message({"File Needs to be Saved. Would you like to do this?", "Orvane Voice Desk",
                         Buttons::YesNo, Answer::No, Severity::Question});
    EXPECT_EQ(answer, Answer::No);
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(
        logged[0],
        "[message] Orvane Voice Desk: File Needs to be Saved. Would you like to do this? -> No");
    EXPECT_NE(err.str().find("Would you like to do this?"), std::string::npos);

    EXPECT_EQ(prompts.input({"Scan the bar code", "Bar Code", "12345"}), "12345");
    EXPECT_EQ(prompts.chooseFolder({"Choose a folder", "/tmp"}), std::nullopt);
}

TEST_F(HeadlessPromptsTest, TheFirstMatchingRuleDecidesWhenItsAnswerFitsTheBox) {
    prompts.loadRules(
        "# answers for the overnight run\n"
        "keep trying => No\r\n"
        "Would you like => Yes\n"
        "this line has no arrow\n"
        "Bar Code => <cancel>\n"
        "Save As => /srv/out/letter.mp3\n");
    EXPECT_NE(err.str().find("line 4"), std::string::npos);

    EXPECT_EQ(prompts.message({"Would you like to keep trying to send?", "", Buttons::YesNo,
                               Answer::Yes, Severity::Question}),
              Answer::No);
    EXPECT_EQ(prompts.message({"Would you like to do this?", "", Buttons::YesNo, Answer::No,
                               Severity::Question}),
              Answer::Yes);
    // "Yes" can't answer a box that has only OK.
    EXPECT_EQ(prompts.message({"Would you like a plain note?", "", Buttons::Ok, Answer::Ok,
                               Severity::Information}),
              Answer::Ok);
    EXPECT_EQ(prompts.input({"Scan", "Bar Code", "1"}), std::nullopt);
    EXPECT_EQ(prompts.chooseFile({FileRequest::Mode::Save, "Save As", "", "", {}}),
              "/srv/out/letter.mp3");
}

}  // namespace
}  // namespace ovd::platform
