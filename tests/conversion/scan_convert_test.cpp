// The recovery window on the virtual clock: work files left by a crash become
// recordings of the format in force, empty ones go, held ones stay, and the
// crash state is cleared once the work files are taken care of.

#include "conversion/scan_convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "../engine/test_signal.h"
#include "engine/codecs.h"
#include "engine/work_file.h"
#include "platform/files.h"
#include "recovery_fixture.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::conversion {
namespace {

using platform::Milliseconds;

class ScanConvertTest : public testing::RecoveryFixture {
  protected:
    ScanConvertTest() { useSettings(); }
};

TEST_F(ScanConvertTest, ACrashedTakeBecomesARecordingOfTheFormatInForceAndEmptyFilesGo) {
    workFile("ovd100-AudioEditor1-1.tmp", 3.4);
    fileOfBytes("ovd100-AudioEditor21-1.tmp", kMinimumFileBytes - 1);
    // Past the size test, yet shorter than a second: it goes without a word.
    workFile("ovd100-AudioEditor1-2.tmp", 0.5);

    recoverAtStart();

    const std::string made = recordings + "/ovd100-AudioEditor1-1-3.MP3";
    ASSERT_TRUE(platform::fileExists(made)) << log.text();
    const auto opened = engine::AudioFileReader::open(made);
    ASSERT_TRUE(opened) << opened.error();
    const auto& reader = *opened;
    EXPECT_EQ(reader->formatName(), "MP3");
    EXPECT_NEAR(static_cast<double>(engine::fileLengthMilliseconds(made)), 3400.0, 60.0);
    EXPECT_TRUE(platform::fileExists(recordings + "/BACK/ovd100-AudioEditor1-1-3.MP3"));
    EXPECT_TRUE(std::filesystem::is_empty(temp()));

    ASSERT_EQ(prompts.transcript().size(), 1u) << "one box, for the file with nothing in it";
    EXPECT_EQ(prompts.transcript()[0].text, kEmptyFileDeleted);
    EXPECT_TRUE(operationShown("Start ConvertToMP3"));
    EXPECT_TRUE(operationShown("Stop ConvertToMP3"));
    EXPECT_EQ(scan.view.caption, kRecoveryCaption);
    EXPECT_EQ(scan.view.recoveredNotice, kRecoveredText);
    EXPECT_EQ(scan.view.restoreButtonColour, kWorkingColour);
    EXPECT_FALSE(crashStateStored());
}

TEST_F(ScanConvertTest, AWaveTargetPassesThroughATemporaryMp3) {
    config.record.FormatType = "WAV";
    workFile("take.tmp", 2.2);

    recoverAtStart();

    EXPECT_TRUE(platform::fileExists(recordings + "/take-2.WAV")) << log.text();
    EXPECT_FALSE(platform::fileExists(recordings + "/take-2.MP3"))
        << "the intermediate stays behind";
    EXPECT_TRUE(operationShown("Start ConvertToMP3"));
    EXPECT_TRUE(operationShown("Start ConvertToPCM"));
    EXPECT_NEAR(static_cast<double>(engine::fileLengthMilliseconds(recordings + "/take-2.WAV")),
                2200.0, 80.0);
}

TEST_F(ScanConvertTest, TheConverterFormatFollowsTheGroupInForce) {
    struct Case {
        std::string formats, frequency, channel, bits;
        int rate, channels, bitrate;
    };
    const std::vector<Case> cases = {
        {"OPT2", "16000", "MONO", "32", 16000, 1, 32},
        {"OPT2", "17000", "STEREO", "", 8000, 2, 0},  // unknown rate; no bit rate: encoder default
        {"OPT2", "FQ_22_KHZ", "2", "33", 22050, 2, 0},
        {"OPT3", "44100", "MONO", "128", 44100, 1, 128},
    };
    config.record.Frequency2 = "44100";
    config.record.Channel2 = "MONO";
    config.record.FileBit2 = "128";
    config.record.FormatType2 = "MP2";
    for (const Case& c : cases) {
        config.record.RecordingFormats = c.formats;
        if (c.formats == "OPT2") {
            config.record.Frequency = c.frequency;
            config.record.Channel = c.channel;
            config.record.FileBit = c.bits;
        }
        scan.SetConverterFormat();
        EXPECT_EQ(scan.converterFormat().sampleRate, c.rate) << c.frequency;
        EXPECT_EQ(scan.converterFormat().channels, c.channels) << c.channel;
        EXPECT_EQ(scan.converterFormat().bitrateKbps, c.bitrate) << c.bits;
        EXPECT_EQ(scan.formatWord(), c.formats == "OPT3" ? "MP2" : "MP3");
    }
}

TEST_F(ScanConvertTest, AWorkFileStillHeldIsLeftAndNothingIsLost) {
    // A station still recording into its work file, its header all there is so far.
    const auto created = engine::WorkFile::create(temp() + "/a-live.tmp", {16000, 1});
    ASSERT_TRUE(created) << created.error();
    const auto& held = *created;
    workFile("b-crashed.tmp", 1.5);

    recoverAtStart();

    EXPECT_TRUE(platform::fileExists(held->path()));
    EXPECT_TRUE(platform::fileExists(temp() + "/b-crashed.tmp")) << "a held file ends the round";
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST_F(ScanConvertTest, ATakeThatCanNotBeReadIsKeptAsABackup) {
    fileOfBytes("garbled.tmp", 4000);

    recoverAtStart();

    EXPECT_TRUE(platform::fileExists(recordings + "/Save/BACKUP garbled.tmp.wav")) << log.text();
    EXPECT_TRUE(std::filesystem::is_empty(temp()));
}

TEST_F(ScanConvertTest, AfterAnOrderlyEndTheWindowWaitsForTheUser) {
    config.record.gNormalShutDown = true;
    workFile("take.tmp", 1.2);

    scan.Form_Load(ScanMode::ByHand);
    loop.advance(Milliseconds(500));
    EXPECT_TRUE(platform::fileExists(temp() + "/take.tmp"));
    EXPECT_TRUE(scan.view.restoreButtonVisible);
    EXPECT_EQ(scan.view.caption, kByHandCaption);
    EXPECT_EQ(scan.view.tempFiles, std::vector<std::string>{"take.tmp"});

    scan.restoreClicked();
    EXPECT_TRUE(platform::fileExists(recordings + "/take-1.MP3"));
    EXPECT_EQ(scan.view.tempFiles, std::vector<std::string>{});
    EXPECT_EQ(scan.view.recoveredNotice, kRecoveredText);

    // Opened again, the window tells nothing of the run before.
    scan.Form_Load(ScanMode::ByHand);
    EXPECT_EQ(scan.view.recoveredNotice, "");
    EXPECT_TRUE(scan.view.viewEvent.empty());
    EXPECT_EQ(scan.view.recordingFiles, std::vector<std::string>{"take-1.MP3"});
}

TEST_F(ScanConvertTest, AChosenFileIsConvertedAndKept) {
    config.record.gNormalShutDown = true;
    const std::string chosen = workFile("letter.tmp", 2.0);
    const std::string kept = folder.file("letter.wav");
    std::filesystem::rename(chosen, kept);
    prompts.answerNextText(kept);

    scan.Form_Load(ScanMode::ByHand);
    scan.ConvertChosenFile();

    EXPECT_TRUE(platform::fileExists(kept));
    EXPECT_TRUE(platform::fileExists(recordings + "/letter-2.MP3")) << log.text();
}

}  // namespace
}  // namespace ovd::conversion
