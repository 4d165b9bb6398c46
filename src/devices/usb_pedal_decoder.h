#pragma once
// USB foot pedal reports turned into pedal edges. A report is byte 0 (always 0
// for the pedal; anything else is not a pedal report) and byte 1 with one bit per
// pedal: bit 0 left, bit 1 middle, bit 2 right. Both drivers end here: the stream
// driver hands a batch of reports whose size is learned from the first batch, the
// single-report driver hands one report at a time and shows it raw as well.
// Only one USB pedal counts at a time.

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "devices/pedal_events.h"
#include "dictation/dictation_state.h"
#include "settings/settings_record.h"

namespace ovd::devices {

// Bytes the stream driver hands over at most in one read.
inline constexpr int kHIDBatchBytes = 100;
// Bytes of one report under the single-report driver.
inline constexpr int kPIEReportBytes = 3;

inline constexpr const char* kRawButtonsPrefix = "Buttons: ";

// The value in upper-case hexadecimal, left-padded with "0" to the width.
[[nodiscard]] std::string HexPad(std::uint32_t value, int width);

// The diagnostic display of the single-report driver.
struct UsbRawView {
    enum class Indicator { ButtonFace, Green };
    // The last pedal state, three blanks and the report in hexadecimal.
    std::string rawReport;
    // "Buttons: " and the pedal bits in two hexadecimal digits.
    std::string buttonsText;
    // One lamp per pedal bit: green while the bit is set.
    std::array<Indicator, 3> indicators{Indicator::ButtonFace, Indicator::ButtonFace,
                                        Indicator::ButtonFace};
};

class UsbPedalDecoder {
  public:
    UsbPedalDecoder(PedalEventSink& sink, PedalHits& hits, const settings::SettingsRecord& settings,
                    const dictation::DictationState& state);

    // The stream driver: steps 3 to 5 of a read, given the read's buffer and count.
    // Learns the report size from the first batch that tells it, then decodes each
    // report of the batch in turn.
    void useHIDBatch(std::span<const std::uint8_t, kHIDBatchBytes> buffer, int count);

    // One report under the stream driver.
    void UseHIDData(std::span<const std::uint8_t> report);
    // One report under the single-report driver: the same, and the raw line shown.
    void UseHIDDataNew(std::span<const std::uint8_t> report);
    // The raw pedal bits on the diagnostic display.
    void ShowRawHIDButtons(std::span<const std::uint8_t> report);

    // A USB pedal counts as held for the step-back repeat.
    [[nodiscard]] bool pedalHeld() const { return MSLastUSB >= 1 && MSLastUSB <= 3; }

    // A USB pedal is open and polled; no report is decoded without it.
    bool USBPedals = false;
    // Bytes in one report of the stream, 0 until learned; it stays learned.
    std::uint8_t HIDReportSize = 0;
    // Guard against a decode starting inside another one: the edge calls can pump
    // events, and a timer tick that arrives then is dropped.
    bool HIDDecoding = false;
    // 0 nothing yet, 1/2/3 left/middle/right held, 4/5 left/middle released; a
    // released right pedal leaves 3.
    std::int16_t MSLastUSB = 0;

    UsbRawView view;

    // Called on every release: the step-back repeat stops with the pedal.
    std::function<void()> stopStepBack;
    // Called after an accepted middle pedal press, for the support trace.
    std::function<void()> onMiddleDown;

  private:
    void decode(std::span<const std::uint8_t> report, bool showRaw);
    [[nodiscard]] bool otherDeviceHeld() const;
    [[nodiscard]] bool anyUsbHit() const;

    PedalEventSink& sink_;
    PedalHits& hits_;
    const settings::SettingsRecord& settings_;
    const dictation::DictationState& state_;
};

}  // namespace ovd::devices
