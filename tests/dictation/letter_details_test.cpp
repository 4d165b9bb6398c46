// The details of the letter in hand: given by the author while the letter is
// open, saved with it, brought back when it is opened again; a new letter starts
// without them, and with no letter open there is nothing to give them to.

#include <gtest/gtest.h>

#include "dictation/dictation_fixture.h"
#include "engine/file_tags.h"

namespace ovd::dictation::testing {
namespace {

const engine::LetterDetails kDetails = {{"Y-Author", "Ames"}, {"Y-TaskId", "T-19"}};

TEST_F(DictationTest, LetterDetailsAreSavedWithTheLetterAndComeBackWhenItIsOpened) {
    EXPECT_FALSE(d().setLetterDetails(kDetails)) << "no letter open";
    d().newLetter();
    EXPECT_FALSE(d().hasUnsavedTake()) << "a letter named but not spoken into";
    d().closeFile();

    dictate(2000);
    const std::string letter = state().Filename;
    ASSERT_TRUE(d().setLetterDetails(kDetails));
    EXPECT_TRUE(d().hasUnsavedTake());
    d().saveAndCloseLetter();
    EXPECT_FALSE(d().hasUnsavedTake());
    EXPECT_EQ(engine::readLetterDetails(letter), kDetails);

    d().newLetter();
    EXPECT_TRUE(d().letterDetails().empty());
    d().closeFile();

    d().openRecentFile(letter);
    ASSERT_EQ(state().Filename, letter);
    EXPECT_EQ(d().letterDetails(), kDetails);
}

TEST_F(DictationTest, DetailsEditedOnALetterOpenedToListenAreSavedWhenItCloses) {
    dictate(2000);
    const std::string letter = state().Filename;
    d().closeFile();
    d().openRecentFile(letter);
    ASSERT_EQ(state().Filename, letter);
    EXPECT_FALSE(d().hasUnsavedTake());

    ASSERT_TRUE(d().setLetterDetails({{"Y-Priority", "Urgent"}}));
    prompts.answerNext(platform::Answer::Yes);  // "File Needs to be Saved..."
    d().closeFile();
    EXPECT_EQ(engine::readLetterDetails(letter), (engine::LetterDetails{{"Y-Priority", "Urgent"}}));
}

}  // namespace
}  // namespace ovd::dictation::testing
