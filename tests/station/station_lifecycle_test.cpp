// The station's start-up and end on the virtual clock: the load in its fixed
// order, the recovery of a crashed run before anything else loads, a file handed
// over by a second start, and the orderly end.

#include <gtest/gtest.h>

#include "dictation/dictation_fixture.h"
#include "dictation/hand_off.h"
#include "engine/codecs.h"
#include "station/device_choice.h"
#include "virtual_station.h"

namespace ovd::station {
namespace {

using testing::kMiddlePedal;
using testing::kRightPedal;
using testing::VirtualStation;

std::vector<std::string> filesEndingIn(const std::string& folder, const std::string& ending) {
    std::vector<std::string> found;
    for (const std::string& name : platform::filesInFolder(folder)) {
        if (name.size() > ending.size() && name.ends_with(ending)) found.push_back(name);
    }
    return found;
}

TEST(StationStartUpTest, LoadsInItsFixedOrderAndOpensTheFirstFileAMomentLater) {
    VirtualStation s;
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    EXPECT_EQ(s.loadsDone, 1);
    EXPECT_FALSE(s.logShows("Procedure - CASE NEW")) << "the first file waits for the loop";

    s.advance(2000);
    EXPECT_EQ(s.firstMissingInOrder(
                  {"Loading: program folder", "Loading: settings read from",
                   "Loading: recordings in " + s.recordings, "Loading: recording device",
                   "Loading: work files in", "Loading: pedals", "Loading: done",
                   " Calling Case New from tmCommand_Timer ", "Procedure - CASE NEW"}),
              "")
        << s.log.text();
    EXPECT_FALSE(s.logShows("recovering")) << s.log.text();
    EXPECT_TRUE(s.prompts.transcript().empty());
}

// A stored microphone that is gone: the load picks by the device box's rule, so
// the box, loading after it, finds nothing to change.
TEST(StationStartUpTest, TheLoadChoosesTheRecordingDeviceAsTheDeviceBoxDoes) {
    VirtualStation s;
    s.config.record.InputDeviceName = "Headset that was unplugged";
    s.config.record.kDeviceInput = "0";
    s.config.WriteConfig();
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    const std::string chosenByLoad = s.storedSettings().InputDeviceName;
    EXPECT_NE(chosenByLoad, "Headset that was unplugged");

    engine::DeviceList& recording = s.station->recordingEditor().RecordingDevices();
    const settings::SettingsRecord before = s.storedSettings();
    const StoredPick byBox = pickRecordingDevice({recording.Name(0)}, recording.Current(),
                                                 before.kDeviceInput, before.InputDeviceName);
    EXPECT_EQ(byBox.index, 0);
    EXPECT_FALSE(byBox.storeIt) << "the box would choose otherwise than the load did";
    EXPECT_TRUE(s.logShows("Loading: recording device " + chosenByLoad)) << s.log.text();
}

class StationRecoveryAtStartTest : public ::testing::Test {
  protected:
    StationRecoveryAtStartTest() {
        EXPECT_TRUE(platform::createFolder(s.recordings + "/Temp"));
        dictation::testing::writeRampWave(s.recordings + "/Temp/take7.tmp", 3);
        s.config.record.gNormalShutDown = false;  // the last run crashed
        s.config.WriteConfig();
        s.make();
    }
    // Lets the loop run until the load is over, in virtual time.
    void untilLoaded() {
        for (int i = 0; i < 60 && s.loadsDone == 0; ++i) s.advance(500);
    }
    VirtualStation s;
};

TEST_F(StationRecoveryAtStartTest, TheCrashsTakesAreRecoveredBeforeThePedalsAndTheFirstFile) {
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Recovering) << s.log.text();
    EXPECT_TRUE(s.logShows("Loading: recovering the work files")) << s.log.text();
    EXPECT_FALSE(s.logShows("Loading: pedals")) << "nothing loads on while the takes wait";
    EXPECT_EQ(s.loadsDone, 0);

    untilLoaded();
    ASSERT_EQ(s.loadsDone, 1) << s.log.text();
    s.advance(2000);
    EXPECT_EQ(
        s.firstMissingInOrder({"Loading: recovering the work files",
                               "Scan/Convert: Temporary Files RECOVERED", "Loading: recovery done",
                               "Loading: pedals", "Loading: done", "Procedure - CASE NEW"}),
        "")
        << s.log.text();
    const std::vector<std::string> recovered = filesEndingIn(s.recordings, ".WAV");
    ASSERT_FALSE(recovered.empty()) << s.log.text();
    EXPECT_GE(engine::fileLengthMilliseconds(s.recordings + "/" + recovered.front()), 2900);
    EXPECT_FALSE(platform::fileExists(s.recordings + "/Temp/take7.tmp"));
    EXPECT_TRUE(s.storedSettings().gNormalShutDown);
}

TEST_F(StationRecoveryAtStartTest, AnEndBeforeTheRecoveryIsOverLoadsNothingMoreAndEndsInOrder) {
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Recovering);
    s.station->TCPSaysExit();
    EXPECT_EQ(s.exitsAsked, 1);
    s.station->Form_Unload();
    s.advance(5000);
    EXPECT_EQ(s.loadsDone, 0);
    EXPECT_FALSE(s.logShows("Loading: pedals")) << s.log.text();
    EXPECT_FALSE(s.logShows("Procedure - CASE NEW")) << s.log.text();
    EXPECT_TRUE(s.logShows("Station ended in order")) << s.log.text();
    // The takes still wait, and the next start recovers them.
    EXPECT_TRUE(platform::fileExists(s.recordings + "/Temp/take7.tmp"));
    EXPECT_FALSE(s.storedSettings().gNormalShutDown);
}

TEST(StationHandOffTest, ANameHandedOverIsDictatedOnceTheLetterInHandIsFinished) {
    VirtualStation s;
    const std::string letters = s.folder.file("letters");
    s.make(letters + "/Smith");
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    s.advance(2000);
    ASSERT_TRUE(s.logShows("Received Command line File Name = " + letters + "/Smith"))
        << s.log.text();
    ASSERT_TRUE(s.logShows("LOADED New File: " + letters + "/Smith.WAV")) << s.log.text();
    s.press(kMiddlePedal, 2500);
    ASSERT_TRUE(s.logShows("File Stop: ")) << s.log.text();

    // A second start for another file, while the first letter is still open.
    ASSERT_TRUE(dictation::writeHandOff(s.folder.path(), {letters + "/Jones", "4242"}));
    s.advance(5000);
    EXPECT_FALSE(s.logShows("Jones")) << "the letter in hand was interrupted:\n" << s.log.text();

    const std::size_t beforeEnd = s.log.text().size();
    s.press(kRightPedal, 300);  // end of letter
    s.advance(3000);
    EXPECT_EQ(s.firstMissingInOrder({"Timer 28 Looking for ovtitemp.ini",
                                     "LOADED New File: " + letters + "/Jones.WAV"},
                                    beforeEnd),
              "")
        << s.log.text().substr(beforeEnd);
    EXPECT_GE(engine::fileLengthMilliseconds(letters + "/Smith.WAV"), 2400);
    EXPECT_FALSE(platform::fileExists(s.folder.file("ovtitemp.ini")));
}

TEST(StationEndTest, TheFileInHandIsSavedBeforeTheSettingsMarkTheRunAsEndedInOrder) {
    VirtualStation s;
    s.config.record.FileSaveAtStop = false;  // the take in hand is saved only by the end
    s.config.record.gNormalShutDown = false;
    s.config.WriteConfig();
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    s.advance(2000);
    s.press(kMiddlePedal, 3000);
    ASSERT_TRUE(s.logShows("File Record: ")) << s.log.text();
    ASSERT_EQ(s.workFiles().size(), 1u);
    ASSERT_TRUE(dictation::writeHandOff(s.folder.path(), {s.folder.file("Later"), "4242"}));
    const std::size_t beforeEnd = s.log.text().size();

    s.station->exitFromMenu();
    EXPECT_EQ(s.exitsAsked, 1);
    s.station->Form_Unload();

    EXPECT_EQ(s.firstMissingInOrder({" User selected File Menu Exit", " File Save Successfull",
                                     "Station ended in order"},
                                    beforeEnd),
              "")
        << s.log.text().substr(beforeEnd);
    const auto letters = filesEndingIn(s.recordings, ".WAV");
    ASSERT_EQ(letters.size(), 1u) << s.log.text();
    EXPECT_GE(engine::fileLengthMilliseconds(s.recordings + "/" + letters.front()), 2900);
    EXPECT_EQ(s.workFiles(), std::vector<std::string>{});
    EXPECT_TRUE(s.storedSettings().gNormalShutDown);
    EXPECT_FALSE(platform::fileExists(s.folder.file("ovtitemp.ini")));
    // The log is on disk: support reads how the run ended.
    EXPECT_NE(
        platform::readWholeFile(s.log.pathForToday()).valueOr("").find("Station ended in order"),
        std::string::npos);

    // The next start finds nothing to recover, and the letter stays the only copy.
    s.station.reset();
    const std::size_t beforeNext = s.log.text().size();
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text().substr(beforeNext);
    EXPECT_FALSE(s.logShows("work files of an earlier run", beforeNext));
    EXPECT_FALSE(s.logShows("recovering", beforeNext));
    EXPECT_EQ(filesEndingIn(s.recordings, ".WAV"), letters);
}

// Serial, USB and game port pedals exclude one another in the pedal menu: the
// kind chosen last is the only one ticked.
TEST(StationPedalMenuTest, ChoosingUsbOrGamePortPedalsTakesTheTickOffTheSerialEntry) {
    VirtualStation s;
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    devices::HandsFree& pedals = s.station->handsFree();

    pedals.serial.setSerialPedalsChecked(true);
    pedals.usb.toggleUsbPedals();
    EXPECT_TRUE(pedals.usb.menu.usbChecked);
    EXPECT_FALSE(pedals.serial.serialPedalsChecked());

    pedals.serial.setSerialPedalsChecked(true);
    pedals.game.toggleGamePedals();
    EXPECT_TRUE(pedals.usb.menu.gameChecked);
    EXPECT_FALSE(pedals.usb.menu.usbChecked);
    EXPECT_FALSE(pedals.serial.serialPedalsChecked());
}

// The second editor records beside a letter that waits for its next take, or was
// stopped after one; only a take under way keeps the microphone from it.
TEST(StationSecondEditorTest, ItRecordsBesideALetterThatIsNotRecording) {
    VirtualStation s;
    s.make();
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    s.advance(2000);
    ASSERT_TRUE(s.station->dictation().state().RecordingstatusPaused) << "a new letter is armed";
    second_editor::SecondEditor& second = s.station->secondEditor();
    const auto recording = static_cast<int>(engine::EditorState::Recording);

    second.record();
    EXPECT_EQ(second.editor().State(), recording) << second.view().status;
    second.stop();

    s.station->dictation().recordTake();
    s.advance(1000);
    second.record();
    EXPECT_NE(second.editor().State(), recording) << "the letter's take keeps the microphone";
    s.station->dictation().stop();
    second.record();
    EXPECT_EQ(second.editor().State(), recording) << second.view().status;
}

}  // namespace
}  // namespace ovd::station
