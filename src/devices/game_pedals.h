#pragma once
// The game port pedals of the station: a joystick whose buttons are the pedals,
// read through the Linux joystick device (/dev/input/jsN). The device is named in
// GamePort.ini of the data folder (section "Joystick", key "Device"), or else the
// first joystick there is. Opened at start when the user chose game port pedals,
// switched on and off in the foot pedal menu, closed at exit.
//
// Timer48 keeps the joystick's 50 ms beat, but the station does not poll an idle
// device: each button event read from the node runs the tick at once, and the
// timer only runs while a value could not be taken yet (pedals busy, a press held
// back by an insert), to take it as soon as it can.

#include <cstdint>
#include <functional>
#include <string>

#include "devices/game_port_decoder.h"
#include "devices/pedal_events.h"
#include "devices/usb_pedals.h"
#include "dictation/dictation_state.h"
#include "platform/event_loop.h"
#include "platform/result.h"
#include "platform/timer.h"
#include "settings/config_file.h"

namespace ovd::devices {

inline constexpr const char* kGamePortFileName = "GamePort.ini";
inline constexpr const char* kGamePortSection = "Joystick";
inline constexpr const char* kGamePortKey = "Device";
inline constexpr int kGamePollMs = 50;
// The start of every word the station says about the joystick on its own.
inline constexpr const char* kGamePortNotice = "Game port pedals ";

// The joystick device of the game port pedals: the one GamePort.ini names, or the
// first jsN below inputFolder (js0 when there is none yet).
[[nodiscard]] std::string gamePortDevicePath(const std::string& dataFolder,
                                             const std::string& inputFolder = "/dev/input");

class GamePedals {
  public:
    GamePedals(settings::ConfigFile& config, platform::EventLoop& loop, PedalEventSink& sink,
               const dictation::DictationState& state, PedalMenuChecks& menu,
               std::string inputFolder = "/dev/input");
    ~GamePedals();
    GamePedals(const GamePedals&) = delete;
    GamePedals& operator=(const GamePedals&) = delete;

    void OpenGamePedals();
    void CloseGamePedals();
    void toggleGamePedals();  // mnuGAMEFootPedals

    [[nodiscard]] bool isOpen() const { return fd_ >= 0; }
    [[nodiscard]] const std::string& devicePath() const { return devicePath_; }
    [[nodiscard]] const GamePortDecoder& decoder() const { return decoder_; }

    platform::Timer Timer48;

    // Set by the station: the pedals are silenced while the window loads or an
    // add-to-beginning runs.
    std::function<bool()> PedalsBusy;
    // The serial pedals' menu entry loses its check mark.
    std::function<void()> uncheckSerialMenu;
    // frmConfigGAMEFootPedals, modally.
    std::function<void()> showConfigDialog;
    // A line for the event log.
    std::function<void(const std::string&)> note;

  private:
    platform::Result<void> openDevice();
    void closeDevice();
    void readReady();
    void deviceLost(const std::string& reason);
    // Runs the tick with the value the joystick shows now; the timer runs on only
    // while that value is not taken.
    void settle();
    void tell(const std::string& text) const;

    settings::ConfigFile& config_;
    platform::EventLoop& loop_;
    PedalMenuChecks& menu_;
    std::string inputFolder_;
    GamePortDecoder decoder_;
    JoystickEventStream stream_;
    std::string devicePath_;
    int fd_ = -1;
    platform::EventLoop::Handle watch_ = 0;
    bool settling_ = false;
};

}  // namespace ovd::devices
