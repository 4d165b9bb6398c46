#pragma once
// The recording and playing devices and their source lines as the main window
// offers them, with the stored choices. The settings keep a list's index as text,
// and for the recording side the names beside it, so that a device keeps being
// chosen when the sound server lists it elsewhere. No widget here: the device box
// renders what this holds and calls it.

#include <functional>
#include <string>
#include <vector>

#include "engine/audio_editor.h"
#include "platform/prompts.h"
#include "settings/config_file.h"

namespace ovd::station {

inline constexpr const char* kLineInputMissing =
    "Can not find line input. OVQDUDR program needs to be restarted.";
// A stored output device or line of this text leaves the output as the sound
// system has it.
inline constexpr const char* kLeaveOutputAlone = "NULL";
inline constexpr int kVolumeMax = 65535;
// Failed fills of the source list in a row that are borne before the restart message.
inline constexpr int kSourceFillsBorne = 3;

// Which entry of a list a stored choice selects: the entry of the stored name;
// else the stored index when it is within the list; else the last entry, which is
// then stored. -1 for an empty list.
struct StoredPick {
    int index = -1;
    bool storeIt = false;  // the pick differs from what is stored
};
StoredPick pickStored(const std::vector<std::string>& names, const std::string& storedIndex,
                      const std::string& storedName);

// The recording device, by the one rule the load of the station and the device box
// share: with no name stored yet ("" or "0") the sound system's current device,
// which is then stored; otherwise the stored choice as pickStored finds it.
StoredPick pickRecordingDevice(const std::vector<std::string>& names, int systemCurrent,
                               const std::string& storedIndex, const std::string& storedName);
// Makes that device the current one and stores the choice when it changed. The
// index chosen, or -1 when the sound system lists no recording device.
int chooseRecordingDevice(engine::DeviceList& recording, settings::ConfigFile& config);

// "Recording Volume 75%": the label of a volume slider.
std::string volumeLabel(const char* what, int position);

class DeviceChoice {
  public:
    DeviceChoice(engine::DeviceList& recording, engine::DeviceList& playback,
                 settings::ConfigFile& config, platform::Prompts& prompts);

    // The start-up fill of both sides. False when there is no recording device:
    // then nothing can be recorded and the recording volume stays off.
    bool load();

    [[nodiscard]] std::vector<std::string> inputDevices() const;
    [[nodiscard]] std::vector<std::string> inputSources() const;
    [[nodiscard]] std::vector<std::string> outputDevices() const;
    [[nodiscard]] std::vector<std::string> outputSources() const;
    [[nodiscard]] int inputDevice() const { return recording_.Current(); }
    [[nodiscard]] int inputSource() const { return recording_.SourceCurrent(); }
    [[nodiscard]] int outputDevice() const { return playback_.Current(); }
    [[nodiscard]] int outputSource() const { return playback_.SourceCurrent(); }
    // Moves whenever either list changed under the station (a device plugged in or
    // taken away); the box reads the lists again when it does.
    [[nodiscard]] unsigned long listChanges() const {
        return recording_.Changes() + playback_.Changes();
    }
    // After such a change: the levels are read from the devices now in use. The
    // stored choices stay, so a microphone plugged back in is used again.
    void devicesChanged();
    // The volume controls work only on a line that has a volume.
    [[nodiscard]] bool inputVolumeAvailable() const;
    [[nodiscard]] bool outputVolumeAvailable() const;

    // cmbDevInput: the device, then its lines again with the stored one chosen.
    void cmbDevInput_Click(int index);
    // cmbSrcInput: the line, its volume, balance and mute read, and the line stored.
    void cmbSrcInput_Click(int index);
    void cmbDevOutput_Click(int index);
    void cmbSrcOutput_Click(int index);

    // The sliders: positions 0 to 65535, the volume the line gets.
    [[nodiscard]] int sldrVolumeInp() const { return inputVolume_; }
    [[nodiscard]] int sldrVolumeOut() const { return outputVolume_; }
    [[nodiscard]] int sldrVolBalanceInp() const { return inputBalance_; }
    [[nodiscard]] bool inputMuted() const { return inputMute_; }
    void sldrVolumeInp_Change(int position);
    void sldrVolumeOut_Change(int position);
    // The mouse let go of a slider: the position is stored.
    void sldrVolumeInp_MouseUp();
    void sldrVolumeOut_MouseUp();

    // The source list could not be filled too many times in a row: the message
    // has been shown and the program must end.
    std::function<void()> onRestartNeeded;

  private:
    void loadInput();
    void loadOutput();
    bool fillInputSources();
    void readInputLine();

    engine::DeviceList& recording_;
    engine::DeviceList& playback_;
    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
    int failedSourceFills_ = 0;
    int inputVolume_ = 0;
    int outputVolume_ = 0;
    int inputBalance_ = 0;
    bool inputMute_ = false;
    // While the lists are filled at start the pick handlers store nothing.
    bool loading_ = false;
};

}  // namespace ovd::station
