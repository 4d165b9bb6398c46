#pragma once
// The USB foot pedal of the station: opening and closing it under the driver the
// settings choose (Use30VEC), the two 50 ms read timers, the step-back repeat
// while a pedal is held, and the two menu entries with their check marks.

#include <array>
#include <cstdint>
#include <functional>

#include "devices/pedal_events.h"
#include "devices/usb_pedal_decoder.h"
#include "devices/usb_pedal_reader.h"
#include "dictation/dictation_state.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/debug_trace.h"

namespace ovd::devices {

inline constexpr const char* kWaitingForReadMessage = "Waiting for read to complete";
inline constexpr const char* kCloseFileFirstMessage = "Please close file and try again.";
inline constexpr const char* kChangeDriverQuestion =
    "Changing this option requires the program to close. Do you want to continue?";
inline constexpr const char* kNoChangeMessage = "Ok no change.";
inline constexpr const char* kDriverMenuCaption = "Use 3.0 Infinity Foot Pedal Controller";

// The stream driver's device: product, usage page and usage of the pedal.
inline constexpr std::uint32_t kWatchProduct = 255;
inline constexpr std::uint32_t kWatchUsagePage = 12;
inline constexpr std::uint32_t kWatchUsage = 3;
// The single-report driver takes the consumer-control function of any product but this.
inline constexpr std::int32_t kPieUsagePage = 12;
inline constexpr std::int32_t kPieSkippedProduct = 37;
inline constexpr int kPedalPollMs = 50;
inline constexpr int kStepBackMs = 100;

// The check marks of the pedal menu entries, for the window to show.
struct PedalMenuChecks {
    bool usbChecked = false;
    bool gameChecked = false;
    bool vec30Checked = false;
};

class UsbPedals {
  public:
    UsbPedals(settings::ConfigFile& config, platform::Prompts& prompts, platform::EventLoop& loop,
              PedalEventSink& sink, PedalHits& hits, const dictation::DictationState& state,
              platform::Timer& timUSBStepBACK, HidrawRoots roots = {});

    // At start: check marks from the settings, and the pedal opened if chosen.
    void start();
    void OpenUSBPedals();
    void CloseUSBPedals();
    void ConnectHIDWatch();
    void ConnectPIE();
    // The ticks of TmrHIDRead and TmrHIDReadNew.
    void ReadHIDWatch();
    void ReadPIE();
    // When the station unloads.
    void unload();

    void toggleUsbPedals();   // mnuUSBFootPedals_Click
    void toggleVec30Pedal();  // mn30VEC_Click

    platform::Timer TmrHIDRead;
    platform::Timer TmrHIDReadNew;

    UsbPedalDecoder decoder;
    UsbPedalReader reader;
    PedalMenuChecks menu;

    // The last connect found no device.
    bool NoUSBPedalConnected = false;
    std::int32_t HIDHandle = 0;
    std::int32_t PIEHandle = 0;
    // True for the time of one read through either driver.
    bool HIDReading = false;
    bool PIEReading = false;

    // Set by the station. While the add-to-beginning operation runs, pedals are silent.
    std::function<bool()> PedalsBusy;
    // Shows the USB pedal assignment dialog modally.
    std::function<void()> showConfigDialog;
    // The serial pedals' menu entry loses its check mark.
    std::function<void()> uncheckSerialMenu;
    // Ends the program, as the exit does.
    std::function<void()> endProgram;
    // The support trace; a middle pedal press is noted there while it is switched on.
    settings::DebugTrace* trace = nullptr;

  private:
    void closeHIDWatch();
    void traceMiddleDown();
    [[nodiscard]] bool busy() const { return PedalsBusy && PedalsBusy(); }

    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
    platform::EventLoop& loop_;
    const dictation::DictationState& state_;
    std::array<std::uint8_t, kHIDBatchBytes> hidBuffer_{};
    std::array<std::uint8_t, kPIEReportBytes> pieBuffer_{};
};

}  // namespace ovd::devices
