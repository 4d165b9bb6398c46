#pragma once
// Foot controls and dictation microphones of other makers as the station uses
// them: their pedals become USB pedal edges (the USB pedal assignments decide what
// they do), their record, play, rewind, forward and end-of-letter buttons become
// command words of the switch model. Switched on in the foot pedal menu and kept
// in DictationDevices.ini of the data folder; off, the station reads its own
// pedals only.

#include <functional>
#include <optional>
#include <string>

#include "devices/hid_device_table.h"
#include "devices/hid_device_watch.h"
#include "devices/pedal_events.h"
#include "dictation/dictation_state.h"
#include "settings/settings_record.h"

namespace ovd::devices {

inline constexpr const char* kDictationDevicesIni = "DictationDevices.ini";
inline constexpr const char* kDictationDevicesSection = "Devices";
inline constexpr const char* kDictationDevicesEnabledKey = "Enabled";

class OtherMakerDevices {
  public:
    OtherMakerDevices(platform::EventLoop& loop, std::string dataFolder, std::string tablePath,
                      const settings::SettingsRecord& settings,
                      const dictation::DictationState& state, PedalHits& hits, PedalEventSink& sink,
                      HidrawRoots roots = {});

    // At start: reads the table and opens the devices when the user chose them.
    void start();
    void stop();
    // The menu entry: switches the devices on or off and keeps the choice.
    void toggle();
    [[nodiscard]] bool enabled() const;
    [[nodiscard]] bool running() const { return watch_.running(); }
    [[nodiscard]] const HidDeviceTable& table() const { return table_; }
    [[nodiscard]] HidDeviceWatch& watch() { return watch_; }
    // A pedal of these devices is down: the USB step-back repeat goes on.
    [[nodiscard]] bool pedalHeld() const { return heldPedal_.has_value(); }

    // SwitchCommand of the switch model.
    std::function<void(const std::string&)> command;
    // A line for the event log.
    std::function<void(const std::string&)> note;
    // A release ends the USB step-back repeat at once.
    std::function<void()> stopStepBack;
    // Whether the station's own USB pedal driver is in use: its pedal is then left to it.
    std::function<bool()> usbPedalsInUse;

  private:
    struct HeldPedal {
        int device;
        std::size_t control;
    };
    void change(const HidDeviceWatch::Device& device, const HidControlDecoder::Change& change);
    void pedal(const HidDeviceWatch::Device& device, const HidControlDecoder::Change& change);
    [[nodiscard]] bool* hitFlag(const std::string& pedal);
    [[nodiscard]] bool anotherPedalHeld() const;
    void setEnabled(bool on) const;
    void tell(const std::string& text) const;

    std::string dataFolder_;
    std::string tablePath_;
    const settings::SettingsRecord& settings_;
    const dictation::DictationState& state_;
    PedalHits& hits_;
    PedalEventSink& sink_;
    HidDeviceTable table_;
    bool tableRead_ = false;
    HidDeviceWatch watch_;
    std::optional<HeldPedal> heldPedal_;
};

}  // namespace ovd::devices
