#pragma once
// The four pedal assignment dialogs (desk unit, USB, serial, game port) as data:
// six function rows by three pedal columns, each pedal taking one function and
// each function one pedal at most. A click changes the settings in memory at
// once, so Cancel leaves the clicked assignments in force until the next start;
// OK checks that every pedal has a function, in the order left, middle, right,
// and writes the settings. The windows draw this and hand their clicks back.

#include <array>
#include <string>

#include "devices/control_actions.h"
#include "platform/prompts.h"
#include "settings/config_file.h"

namespace ovd::devices {

enum class PedalDialog { DeskUnit, Usb, Serial, Game };

inline constexpr int kPedalRows = 6;
inline constexpr int kPedalColumns = 3;  // left, middle, right

inline constexpr const char* kFactoryDefaultsLine = "= Factory Default settings";
inline constexpr const char* kUsbStopSpeedCaption = "USB Pedal Stop Recording Speed";
inline constexpr const char* kTwoPedalCaption = "Check if unit is a 2-Pedal Unit";
inline constexpr std::array<const char*, 5> kPedalHeadings = {"Function", "Description", "Left",
                                                              "Middle", "Right"};
inline constexpr std::array<const char*, 3> kUsbStopSpeedLabels = {"0 Second", "1 Second",
                                                                   "2 Seconds"};

// What sets one dialog apart from the others.
struct PedalDialogSpec {
    const char* title;
    const char* heading;  // empty where the dialog has none
    const char* device;   // the device's word in the messages: "QDU", "USB", "SER", "GAME"
    std::string settings::SettingsRecord::*left;
    std::string settings::SettingsRecord::*middle;
    std::string settings::SettingsRecord::*right;
    bool twoPedalCheck;    // chkSER2Pedal
    bool stopSpeedSlider;  // sldUSBStopSpeed
};

[[nodiscard]] const PedalDialogSpec& pedalDialogSpec(PedalDialog dialog);

class PedalAssignmentsForm {
  public:
    PedalAssignmentsForm(PedalDialog dialog, settings::ConfigFile& config,
                         platform::Prompts& prompts);

    [[nodiscard]] const PedalDialogSpec& spec() const { return spec_; }

    // Option + row + column: whether that pedal has that function now.
    [[nodiscard]] bool option(int row, int column) const;
    // The function's mark in Label1 while one of its options is set (Timer2).
    [[nodiscard]] bool rowMarked(int row) const;
    // The mark beside the factory's choice for each pedal.
    [[nodiscard]] static bool factoryDefault(int row, int column);
    // Frame2 and Label20: hidden on a two-pedal unit.
    [[nodiscard]] bool middleColumnShown() const;
    [[nodiscard]] bool twoPedalChecked() const;

    // The pedal of the column takes the row's function; whoever had it loses it.
    void clickOption(int row, int column);
    // chkSER2Pedal: a two-pedal unit has no middle pedal.
    void clickTwoPedal(bool checked);

    // sldUSBStopSpeed: 0 to 2, shown and read at OK, and used by nothing.
    int usbStopSpeed = 0;

    // Command1. False when a pedal has no function: the message was shown and the
    // dialog stays open. True once the settings are written.
    bool ok();

  private:
    [[nodiscard]] std::string& assignment(int column) const;

    const PedalDialogSpec& spec_;
    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
};

}  // namespace ovd::devices
