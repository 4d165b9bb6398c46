#pragma once
// Everything that drives the dictation without the mouse, put together: the
// serial and USB pedal readers, the dispatcher that turns their edges into
// command words, and the switch model that turns words into transport calls.
// The station owns one; the window and the desk-unit panel call into it.

#include <functional>
#include <string>

#include "devices/button_file.h"
#include "devices/control_actions.h"
#include "devices/game_pedals.h"
#include "devices/hot_keys.h"
#include "devices/letter_actions.h"
#include "devices/other_maker_devices.h"
#include "devices/serial_pedals.h"
#include "devices/switch_model.h"
#include "devices/usb_pedals.h"
#include "dictation/dictation.h"
#include "platform/timer.h"

namespace ovd::devices {

struct HandsFreeParts {
    dictation::Dictation& dictation;
    engine::AudioEditor& AudioEditor1;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    platform::EventLoop& loop;
    dictation::PeerNotices& peer;
    LetterActions& letters;
    std::string buttonFile;  // Button.cfg in the program's folder
    HidrawRoots hidraw;
    // Where the joysticks of the game port pedals are looked for.
    std::string inputFolder = "/dev/input";
};

class HandsFree : private SerialPedalsHost {
  public:
    explicit HandsFree(HandsFreeParts parts);
    ~HandsFree() override;
    HandsFree(const HandsFree&) = delete;
    HandsFree& operator=(const HandsFree&) = delete;

    // Opens the chosen pedals: USB, then game port, then serial.
    void start();
    // Lets go of the ports before the program ends.
    void stop();

    // The window's pedal configuration dialog and the end of the program, when
    // a port change asks for a restart.
    std::function<void()> onShowSerialPedalSettings;
    std::function<void()> onShowUsbPedalSettings;
    std::function<void()> onShowGamePedalSettings;
    // The desktop's hot key hook takes the settings again after the hot key options changed.
    std::function<void()> onHotKeySettingsChanged;
    // Why keys can't be heard from other programs here; empty where they can.
    std::string hotKeySystemUnavailable;
    std::function<void()> onEndProgram;

    ButtonMessages messages;
    platform::Timer timSERStepBACK;
    platform::Timer timUSBStepBACK;
    platform::Timer timGAMEStepBACK;
    SwitchModel switchModel;
    PedalDispatcher dispatcher;
    UsbPedals usb;
    GamePedals game;
    SerialPedals serial;
    // Foot controls and microphones of other makers, when the user chose them.
    OtherMakerDevices otherMakers;
    // The end-of-letter hot key's rule; the desktop's hook feeds it keys.
    HotKeys hotKeys;

  private:
    [[nodiscard]] bool USBPedals() const override;
    [[nodiscard]] bool GamePortPedals() const override;
    [[nodiscard]] bool pedalInputSilenced() const override;
    void uncheckOtherFootPedalMenus() override;
    void showConfigSERFootPedals() override;
    void clearDeskUnitNotice() override {
    }  // clearLabel17: a label of the pedal settings window, redrawn when it opens
    void endProgram() override;
    void tellSerialPortProblem(const std::string& text) override;
    void tellSerialPortOpened(const std::string& text) override;
    void showStatus(const std::string& text);
    // The hot key: end of letter as the EOL button would, stopping a take first.
    void hotKeyTrigger();
    // A microphone button's word: end of letter only while its button could be clicked.
    void deviceCommand(const std::string& word);

    dictation::Dictation& dictation_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
};

}  // namespace ovd::devices
