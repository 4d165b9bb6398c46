// The save of the file-save settings: the formats with their fill-ins, the peer
// link's buttons, the take under way, the volumes, the two forms, and a settings
// file changed behind the window's back.

#include "configuration/file_saves_texts.h"
#include "file_saves_fixture.h"

namespace ovd::configuration::testing {
namespace {

TEST_F(FileSavesTest, FormatBoxesFollowTheFormatAndEmptyOnesAreFilledAtTheSave) {
    struct Case {
        const char* format;
        bool frequency, channels, bitRate;  // boxes that take a value
        const char* Frequency;              // stored after a save with every box left empty
        const char* Channel;
        const char* FileBit;
        const char* Channel2;
    };
    const Case cases[] = {
        {"DSP", false, false, false, "", "", "", ""},
        {"VOX", true, false, false, "44100", "", "", ""},
        {"RAW", false, false, false, "44100", "2", "128", "STEREO"},
        {"MP3", true, true, true, "44100", "2", "128", "STEREO"},
        {"WAV", true, true, true, "44100", "2", "128", "STEREO"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.format);
        FileSavesForm& f = open();
        for (const bool other : {false, true}) {
            f.setFormat(other, "DSP");  // empties every box
            f.setFormat(other, c.format);
            const FormatBoxes& b = other ? f.controls().other : f.controls().normal;
            EXPECT_EQ(b.frequencyEnabled, c.frequency);
            EXPECT_EQ(b.channelsEnabled, c.channels);
            EXPECT_EQ(b.bitRateEnabled, c.bitRate);
        }
        ASSERT_EQ(f.save(), SaveOutcome::Saved);
        const settings::SettingsRecord disk = stored();
        EXPECT_EQ(disk.FormatType, c.format);
        EXPECT_EQ(disk.Frequency, c.Frequency);
        EXPECT_EQ(disk.Channel, c.Channel);
        EXPECT_EQ(disk.FileBit, c.FileBit);
        EXPECT_EQ(disk.Frequency2, c.Frequency);
        // The second group's channels are filled in as a word, the first's as a digit.
        EXPECT_EQ(disk.Channel2, c.Channel2);
        EXPECT_EQ(disk.FileBit2, c.FileBit);
    }
}

TEST_F(FileSavesTest, MonoStaysMonoThroughLoadAndSave) {
    FileSavesForm& f = open();
    EXPECT_EQ(f.controls().normal.channels, "1");
    EXPECT_EQ(f.controls().other.channels, "2");
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(stored().Channel, "1");
    EXPECT_EQ(stored().Channel2, "2");
}

TEST_F(FileSavesTest, ResetDefaultsShowsTheFactoryFormats) {
    FileSavesForm& f = open();
    f.resetFormatDefaults();
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.FormatType, "MP3");
    EXPECT_EQ(disk.FormatType2, "MP3");
    EXPECT_EQ(disk.Frequency, "16000");
    EXPECT_EQ(disk.Frequency2, "32000");
    EXPECT_EQ(disk.Channel, "1");
    EXPECT_EQ(disk.Channel2, "1");
    EXPECT_EQ(disk.FileBit, "8");
    EXPECT_EQ(disk.FileBit2, "16");
}

TEST_F(FileSavesTest, TheDeskUnitButtonsFollowThePeerLink) {
    struct Case {
        bool tcp, buttonScreen;
        bool stored;
        const char* BUT1;
    };
    // In order: each save starts from what the one before left.
    const Case cases[] = {
        {false, true, false, "New"},
        {true, true, true, "MSG1"},
        {true, true, true, "MSG1"},
        {false, true, false, "New"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.tcp) + std::to_string(c.buttonScreen));
        FileSavesForm& f = open();
        f.setTcp(c.tcp);
        f.setButtonScreen(c.buttonScreen);
        f.setHostIp("10.0.0.9");
        ASSERT_EQ(f.save(), SaveOutcome::Saved);
        const settings::SettingsRecord disk = stored();
        EXPECT_EQ(disk.TCPButtonScreen, c.stored);
        EXPECT_EQ(disk.BUT1, c.BUT1);
        EXPECT_EQ(disk.BUT8, c.stored ? "MSG8" : "EraseFile");
        // The address is kept with the link off too.
        EXPECT_EQ(disk.TCPIP, "10.0.0.9");
    }
}

TEST_F(FileSavesTest, ATakeUnderWayIsSavedInTheSettingsItWasBegunWith) {
    recording = true;
    FileSavesForm& f = open();
    f.setFormat(false, "MP3");
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_TRUE(shown(kRecordingSavedNow));
    EXPECT_EQ(takesSaved, 1);
    EXPECT_EQ(formatWhenTakeSaved, "WAV");
    EXPECT_EQ(stored().FormatType, "MP3");
}

TEST_F(FileSavesTest, SavedValuesReachTheRecord) {
    FileSavesForm& f = open();
    f.setJumpBackSeconds("9");
    f.setTcpDelay(2);
    f.setNoLogging(true);
    f.setStopRecordingWhenDiskFull(true);
    f.setAutoDelete(true);
    f.setOverwriteToEnd(true);
    f.setSuppressWarnings(true);
    f.setLabelText("CD");
    f.setRecordingVolume(32768);
    f.setPlayingVolume(65535);
    f.setAutoRewind(true);
    f.setAutoOverwrite();
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.JumpBackSecs, 9);
    EXPECT_EQ(disk.TCPDelay, 2);
    EXPECT_TRUE(disk.NoLogging);
    EXPECT_TRUE(disk.DFStopRec);
    EXPECT_TRUE(disk.AutoFileDeltion);
    EXPECT_TRUE(disk.OverwriteToEnd);
    EXPECT_TRUE(disk.SuppressWarnings);
    EXPECT_EQ(disk.FileLabelText.toText(), "CD");
    EXPECT_EQ(disk.sldrVolumeInpSelStart.toText(), "32768");
    EXPECT_TRUE(disk.AutoRewind);
    EXPECT_TRUE(disk.AutoOverwrite);
    EXPECT_FALSE(disk.AutoInsert);
    EXPECT_EQ(volumes, std::make_pair(32768, 65535));
}

TEST_F(FileSavesTest, AJumpBackOutsideItsRangeIsToldAndNotStored) {
    for (const char* typed : {"0", "100", "ab", ""}) {
        SCOPED_TRACE(typed);
        prompts.clear();
        FileSavesForm& f = open();
        f.setJumpBackSeconds(typed);
        f.leaveJumpBackSeconds();
        EXPECT_EQ(prompts.texts(), std::vector<std::string>{kJumpBackRange});
        EXPECT_EQ(f.save(), SaveOutcome::StoppedAtStep);
        EXPECT_EQ(stored().JumpBackSecs, 3);
    }
}

TEST_F(FileSavesTest, TheTabbedFormKeepsWhatItCannotShow) {
    config.record.OneTapRecPause = true;
    config.record.AutoSend3 = true;
    config.record.SendToThree = folder.file("third");
    config.record.PromptBarCode = true;
    config.record.AddNameToFile = true;
    FileSavesForm& f = open(FormKind::Tabbed);
    EXPECT_FALSE(f.controls().addNameNoticeShown);
    f.setOneTapRecordPause(false);
    f.setPromptBarCode(false);
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    const settings::SettingsRecord disk = stored();
    EXPECT_TRUE(disk.OneTapRecPause);
    EXPECT_TRUE(disk.AutoSend3);
    EXPECT_TRUE(disk.PromptBarCode);
}

TEST_F(FileSavesTest, SettingsChangedOnDiskAreToldAndReplacedWhole) {
    FileSavesForm& f = open();
    settings::ConfigFile other(folder.path());
    other.ReadConfig();
    other.record.FileLabelText = "ZZ";
    ASSERT_TRUE(other.WriteConfig());
    f.setLabelText("XY");
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_TRUE(shown(kSettingsChangedOnDisk));
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.FileLabelText.toText(), "XY");
    EXPECT_EQ(disk.Frequency2, "32000");
}

TEST_F(FileSavesTest, OurOwnWritesAreNoChangeBehindOurBack) {
    prompts.answerNextText(folder.file("one"));
    FileSavesForm& f = open();
    f.setDestination(1, true);
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_FALSE(shown(kSettingsChangedOnDisk));
}

TEST_F(FileSavesTest, CancelKeepsOnlyWhatWasWrittenAtOnce) {
    prompts.answerNextText(folder.file("one"));
    FileSavesForm& f = open();
    f.setDestination(1, true);
    f.setLabelText("QQ");
    f.cancel();
    EXPECT_EQ(closes, 1);
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.SendToOne, folder.file("one"));
    EXPECT_FALSE(disk.AutoSend1);
    EXPECT_EQ(disk.FileLabelText.toText(), "AB");
}

}  // namespace
}  // namespace ovd::configuration::testing
