// Files named from outside: the name on the command line, quoted or not, and what
// the first tick of tmCommand makes of it.

#include "dictation/hand_off.h"
#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

TEST(CommandLineNameTest, AQuotedNameLosesBothQuotesAndAnUnquotedOneIsTakenWhole) {
    EXPECT_EQ(commandLineName("\"/home/ann/Letters/Smith 12\""), "/home/ann/Letters/Smith 12");
    EXPECT_EQ(commandLineName("/home/ann/Letters/Smith"), "/home/ann/Letters/Smith");
    EXPECT_EQ(commandLineName("\"Smith"), "\"Smith") << "only a closing quote marks a quoted name";
    EXPECT_EQ(commandLineName("\""), "");
}

TEST_F(DictationTest, ANamedFileThatExistsIsOpenedToListenAndNoNewFileIsMade) {
    const std::string letter = writeRampWave(folder.file("Smith.wav"), 3);
    const double number = config.record.FileNameIncrementStartingNum.toNumber().value_or(-1);
    arrangeState().CommandFileName = letter;

    d().tmCommand_Timer();

    EXPECT_EQ(state().Filename, letter);
    EXPECT_TRUE(state().flgfileOpen1);
    EXPECT_TRUE(state().PRERECORDED);
    EXPECT_TRUE(state().commandLine.DIDDOCOMMANDLINE);
    EXPECT_EQ(config.record.FileNameIncrementStartingNum.toNumber(), number)
        << "no number was used";
    EXPECT_NEAR(static_cast<double>(editor1.Length()), 3.0 * kRate, kRate * 0.01);
}

TEST_F(DictationTest, ANamedFileInANewFolderIsDictatedThereAndTheFolderIsKept) {
    const std::string letters = folder.file("Clients/Jones");
    arrangeState().CommandFileName = letters + "/Report";

    d().tmCommand_Timer();

    EXPECT_TRUE(platform::folderExists(letters));
    EXPECT_EQ(state().Filename, letters + "/Report.WAV");
    EXPECT_TRUE(state().commandLine.DIDDOCOMMANDLINE);
    settings::ConfigFile stored(folder.path());
    stored.ReadConfig();
    EXPECT_EQ(stored.record.CaptureFilePath.toText(), letters);
}

}  // namespace
}  // namespace ovd::dictation::testing
