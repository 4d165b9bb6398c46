#pragma once
// The serial pedal's bytes into pedal edges. The pedal sends one byte at each
// press (which pedal) and one at each release (not saying which), so the decoder
// keeps the last press byte to tell whose release it is, and the ...Hit flags so
// that a pedal held down gives one edge however often its byte comes.
//
// Pure: the bytes come from a SerialByteSource (the port, or a test's list), the
// edges go to the PedalEventSink. Settings and dictation flags are read live at
// every test, since a command run from an edge can pump events and re-enter here.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "devices/pedal_events.h"
#include "dictation/dictation_state.h"
#include "settings/settings_record.h"

namespace ovd::devices {

// The pedal's whole vocabulary; any other byte is ignored.
inline constexpr std::int16_t kSerLeftPressed = 0x81;    // 129
inline constexpr std::int16_t kSerMiddlePressed = 0x85;  // 133
inline constexpr std::int16_t kSerRightPressed = 0x84;   // 132
inline constexpr std::int16_t kSerReleased = 0x87;       // 135
// What LastSerCode becomes after the middle pedal's release: no press byte, so a
// second release byte finds nobody to release.
inline constexpr std::int16_t kSerAfterMiddleRelease = 139;

// Where the handler reads from: the port's receive buffer and its modem lines.
class SerialByteSource {
  public:
    virtual ~SerialByteSource() = default;
    // One waiting byte, or nothing when none is there.
    virtual std::optional<std::uint8_t> readByte() = 0;
    [[nodiscard]] virtual bool CDHolding() = 0;
    [[nodiscard]] virtual bool DSRHolding() = 0;
    [[nodiscard]] virtual bool CTSHolding() = 0;
};

struct SerialPedalHooks {
    // FormLoading or PedalsBusy: the window still loading, or an add-to-beginning
    // running. Either silences the pedals. Unset reads as false.
    std::function<bool()> silenced;
    // Disables timSERStepBACK: a release ends the step-back repeat at once.
    std::function<void()> stopStepBack;
};

// Two switches no setting or dialog reaches. Their branches are kept, and only the
// tests switch them on.
struct SerialPedalOptions {
    // Left and right exchanged; kept false on purpose, the station never swaps.
    bool PedalSwap = false;
    // Pedals read from the CD, DSR and CTS lines; kept false on purpose, so that reading stands
    // idle.
    bool NOSMARTPEDAL = false;
};

class SerialPedalDecoder {
  public:
    static constexpr int kSlots = 10;

    SerialPedalDecoder(const settings::SettingsRecord& record,
                       const dictation::DictationState& dictation, PedalHits& hits,
                       PedalEventSink& sink, SerialPedalHooks hooks,
                       SerialPedalOptions options = {});

    // The port's receive event: reads up to ten bytes and acts on each slot, and
    // one more that is dropped. False when the handler was left early (the pedals
    // silenced, or a press refused during an insert): what still waits is for the
    // next arrival.
    bool OnComm(SerialByteSource& port);

    // A fresh start of the port forgets whose press came last.
    void clearLastSerCode() { LastSerCode = 0; }
    [[nodiscard]] std::int16_t lastSerCode() const { return LastSerCode; }
    [[nodiscard]] const std::array<std::int16_t, kSlots>& serCodes() const { return SerCode; }

  private:
    // A press that would break into a running insert or overwrite is lost; false
    // tells the handler to leave at once.
    [[nodiscard]] bool pressAllowed() const;
    [[nodiscard]] bool otherDevicePedalHeld() const;
    // Each returns false when the guard ends the handler.
    bool readModemLines(SerialByteSource& port);
    bool readLine(bool line, const char* pedal, bool& hit);
    bool actOn(std::int16_t code);
    void press(const char* pedal);
    void release(const char* pedal);

    const settings::SettingsRecord& record_;
    const dictation::DictationState& dictation_;
    PedalHits& hits_;
    PedalEventSink& sink_;
    SerialPedalHooks hooks_;
    const SerialPedalOptions options_;

    std::int16_t LastSerCode = 0;
    // Both survive from one event to the next: a slot nothing was read into keeps
    // its old code, and that code is tested again.
    std::array<std::string, kSlots> SerInput{};
    std::array<std::int16_t, kSlots> SerCode{};
};

}  // namespace ovd::devices
