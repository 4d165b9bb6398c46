// The device and source boxes' rules: which stored choice a list selects, the
// output left alone, the restart after the lines can't be found, and the volumes.

#include "station/device_choice.h"

#include <gtest/gtest.h>

#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::station {
namespace {

// A sound system's list whose lines can be made to fail.
class ListedDevices : public engine::DeviceList {
  public:
    std::vector<std::string> devices;
    std::vector<std::vector<std::string>> lines;  // per device
    int current = -1;
    int line = -1;
    bool linesFail = false;
    std::vector<int> volumes = std::vector<int>(8, 30000);

    int Count() const override { return static_cast<int>(devices.size()); }
    int Current() const override { return current; }
    platform::Result<void> setCurrent(int index) override {
        current = index;
        line = -1;
        return platform::Result<void>::success();
    }
    std::string Name(int index) const override {
        return devices.at(static_cast<std::size_t>(index));
    }
    int SourceCount() const override {
        return current < 0 ? 0
                           : static_cast<int>(lines.at(static_cast<std::size_t>(current)).size());
    }
    int SourceCurrent() const override { return line; }
    platform::Result<void> setSourceCurrent(int index) override {
        if (linesFail) return platform::failure("no such line");
        line = index;
        return platform::Result<void>::success();
    }
    std::string SourceName(int index) const override {
        return lines.at(static_cast<std::size_t>(current)).at(static_cast<std::size_t>(index));
    }
    bool HasVolume(int) const override { return true; }
    int Volume(int index) const override { return volumes.at(static_cast<std::size_t>(index)); }
    platform::Result<void> setVolume(int index, int volume) override {
        volumes.at(static_cast<std::size_t>(index)) = volume;
        return platform::Result<void>::success();
    }
    int Balance(int) const override { return 0; }
    platform::Result<void> setBalance(int, int) override {
        return platform::Result<void>::success();
    }
    bool Mute(int) const override { return false; }
    platform::Result<void> setMute(int, bool) override { return platform::Result<void>::success(); }
};

// The one rule of the recording device, the same at the load and in the device box.
TEST(PickRecordingDevice, NothingStoredTakesTheSystemsThenTheNameWinsThenTheIndexThenTheLast) {
    const std::vector<std::string> names = {"Built-in", "Headset", "Dock"};
    struct Case {
        const char* what;
        std::vector<std::string> names;
        int systemCurrent;
        const char* storedIndex;
        const char* storedName;
        int index;
        bool storeIt;
    };
    const Case cases[] = {
        {"nothing stored yet: the system's own", names, 2, "", "", 2, true},
        {"a name of \"0\" is nothing stored", names, 1, "0", "0", 1, true},
        {"no current device in the system: the first", names, -1, "", "", 0, true},
        {"moved in the list: found by name", names, 0, "0", "Headset", 1, true},
        {"where it was: nothing to store", names, 0, "1", "Headset", 1, false},
        {"the name wins over the system's current", names, 2, "1", "Headset", 1, false},
        {"name gone: the stored index", names, 0, "2", "Gone", 2, true},
        {"name gone, index out of the list: the last", names, 0, "7", "Gone", 2, true},
        {"name gone, index no number: the last", names, 0, "x1", "Gone", 2, true},
        {"no device at all", {}, -1, "0", "Headset", -1, false},
    };
    for (const Case& c : cases) {
        const StoredPick pick =
            pickRecordingDevice(c.names, c.systemCurrent, c.storedIndex, c.storedName);
        EXPECT_EQ(pick.index, c.index) << c.what;
        EXPECT_EQ(pick.storeIt, c.storeIt) << c.what;
    }
}

// The output side keeps no name: the stored index while it is in the list, else the last.
TEST(PickStored, WithoutANameTheIndexHoldsWhileItIsInTheList) {
    const std::vector<std::string> names = {"Speakers", "Headphones", "Dock"};
    EXPECT_EQ(pickStored(names, "1", "").index, 1);
    EXPECT_FALSE(pickStored(names, "1", "").storeIt);
    EXPECT_EQ(pickStored(names, "7", "").index, 2);
    EXPECT_TRUE(pickStored(names, "7", "").storeIt);
}

TEST(VolumeLabel, ShowsThePercentOfTheSlider) {
    EXPECT_EQ(volumeLabel("Recording Volume", 65535), "Recording Volume 100%");
    EXPECT_EQ(volumeLabel("Playing Volume", 49152), "Playing Volume 75%");
    EXPECT_EQ(volumeLabel("Playing Volume", 0), "Playing Volume 0%");
}

class DeviceChoiceTest : public ::testing::Test {
  protected:
    DeviceChoiceTest() {
        recording.devices = {"Built-in", "Headset"};
        recording.lines = {{"Internal Mic"}, {"Headset Mic", "Line In"}};
        recording.current = 0;
        playback.devices = {"Speakers", "Headphones"};
        playback.lines = {{"Speakers"}, {"Headphones"}};
        playback.current = 0;
    }

    ::ovd::testing::TempFolder folder;
    settings::ConfigFile config{folder.path()};
    ::ovd::testing::ScriptedPrompts prompts;
    ListedDevices recording;
    ListedDevices playback;
    DeviceChoice choice{recording, playback, config, prompts};
};

TEST_F(DeviceChoiceTest, NothingStoredTakesTheSystemsDeviceAndStoresIt) {
    ASSERT_TRUE(choice.load());
    EXPECT_EQ(config.record.InputDeviceName, "Built-in");
    EXPECT_EQ(config.record.kDeviceInput, "0");
    EXPECT_EQ(config.record.InputSourceName, "Internal Mic");
    EXPECT_EQ(recording.line, 0);
}

TEST_F(DeviceChoiceTest, TheStoredDeviceAndLineAreFoundByNameAndTheVolumeRestored) {
    config.record.kDeviceInput = "0";
    config.record.InputDeviceName = "Headset";
    config.record.kSrcInput = "0";
    config.record.InputSourceName = "Line In";
    config.record.sldrVolumeInpSelStart = 12000;
    ASSERT_TRUE(choice.load());
    EXPECT_EQ(recording.current, 1);
    EXPECT_EQ(recording.line, 1);
    EXPECT_EQ(config.record.kDeviceInput, "1") << "the index follows the name";
    EXPECT_EQ(recording.volumes[1], 12000) << "the level the author left";
    EXPECT_EQ(choice.sldrVolumeInp(), 12000);
}

TEST_F(DeviceChoiceTest, NoRecordingDeviceLeavesTheVolumesOff) {
    recording.devices.clear();
    recording.current = -1;
    EXPECT_FALSE(choice.load());
    EXPECT_FALSE(choice.inputVolumeAvailable());
}

TEST_F(DeviceChoiceTest, AStoredNullLeavesTheOutputAsItIs) {
    playback.current = 1;
    config.record.kDeviceOutput = "NULL";
    ASSERT_TRUE(choice.load());
    EXPECT_EQ(playback.current, 1);
    EXPECT_EQ(config.record.kDeviceOutput, "NULL");
}

TEST_F(DeviceChoiceTest, ThreeFailedLineFillsAreBorneTheFourthEndsTheProgram) {
    ASSERT_TRUE(choice.load());
    int ended = 0;
    choice.onRestartNeeded = [&ended] { ++ended; };
    recording.linesFail = true;
    for (int i = 0; i < 3; ++i) choice.cmbDevInput_Click(1);
    EXPECT_EQ(ended, 0);
    EXPECT_TRUE(prompts.texts().empty());
    // One that works starts the count again.
    recording.linesFail = false;
    choice.cmbDevInput_Click(0);
    recording.linesFail = true;
    for (int i = 0; i < 3; ++i) choice.cmbDevInput_Click(1);
    EXPECT_EQ(ended, 0);
    choice.cmbDevInput_Click(1);
    EXPECT_EQ(ended, 1);
    ASSERT_EQ(prompts.texts().size(), 1u);
    EXPECT_EQ(prompts.texts().front(), kLineInputMissing);
}

TEST_F(DeviceChoiceTest, PickingALineReadsItsVolumeAndStoresIt) {
    ASSERT_TRUE(choice.load());
    choice.cmbDevInput_Click(1);
    recording.volumes[1] = 5000;
    choice.cmbSrcInput_Click(1);
    EXPECT_EQ(choice.sldrVolumeInp(), 5000);
    EXPECT_EQ(config.record.kSrcInput, "1");
    EXPECT_EQ(config.record.InputSourceName, "Line In");
    EXPECT_EQ(config.record.InputDeviceName, "Headset");
}

TEST_F(DeviceChoiceTest, ASliderSetsTheLineAtOnceAndIsStoredWhenLetGo) {
    ASSERT_TRUE(choice.load());
    const int writes = config.writeCount();
    choice.sldrVolumeOut_Change(40000);
    EXPECT_EQ(playback.volumes[0], 40000);
    EXPECT_EQ(config.writeCount(), writes) << "nothing written while the slider moves";
    choice.sldrVolumeOut_MouseUp();
    EXPECT_EQ(config.record.sldrVolumeOutSelStart.toNumber().value_or(-1), 40000);
    choice.sldrVolumeInp_Change(70000);
    EXPECT_EQ(choice.sldrVolumeInp(), kVolumeMax);
}

}  // namespace
}  // namespace ovd::station
