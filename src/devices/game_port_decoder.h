#pragma once
// Game port pedals: the joystick's button value turned into pedal edges. The
// pedals are joystick buttons, so the value is a button mask (bit 0 the first
// button); a change of the value is a press of the pedal the button table names,
// and a value of 0 releases the pedal pressed last. The edges go to the serial
// pedal routine: game port pedals run on the serial assignments.
//
// Also here: the Linux joystick event stream (struct js_event, eight bytes each)
// folded into that button mask, so that bytes from the device node are all a
// test or a fuzzer has to give.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "devices/pedal_events.h"
#include "dictation/dictation_state.h"
#include "settings/settings_record.h"

namespace ovd::devices {

enum class GamePedal { None, Left, Middle, Right };

// Two layouts no setting reaches; only the first column of the button table acts.
// The others are kept as the table's alternatives, and only tests switch them on.
struct GamePortOptions {
    bool DVIPedal = false;
    bool AltPedalLayout = false;
    // Left and right exchanged; always false, as for the serial pedals.
    bool PedalSwap = false;
};

// The pedal a button value selects; None for a value the table does not hold.
[[nodiscard]] GamePedal gamePedalFor(std::uint32_t value, const GamePortOptions& options);
[[nodiscard]] const char* gamePedalName(GamePedal pedal);

class GamePortDecoder {
  public:
    GamePortDecoder(const settings::SettingsRecord& settings,
                    const dictation::DictationState& state, PedalEventSink& sink,
                    GamePortOptions options = {});

    // One tick of Timer48 with the value the joystick reports now. False when the
    // value was left unsettled (pedals busy, or a press refused during an insert
    // or overwrite): the same value is to be tried again at the next tick.
    bool tick(std::uint32_t ButtonNumber);

    [[nodiscard]] std::uint32_t lastButtonValue() const { return LastButtonValue; }
    [[nodiscard]] std::uint32_t lastGameCode() const { return LastGameCode; }
    // A fresh open of the joystick starts from nothing pressed.
    void reset() {
        LastButtonValue = 0;
        LastGameCode = 0;
    }

    // FormLoading or PedalsBusy; unset reads as false.
    std::function<bool()> PedalsBusy;

  private:
    const settings::SettingsRecord& settings_;
    const dictation::DictationState& state_;
    PedalEventSink& sink_;
    GamePortOptions options_;
    std::uint32_t LastButtonValue = 0;
    std::uint32_t LastGameCode = 0;
};

// The joystick's event records folded into a button mask. Records may arrive cut
// anywhere; the rest of a record waits for the next bytes.
class JoystickEventStream {
  public:
    static constexpr std::size_t kRecordBytes = 8;

    // Takes the bytes; true when the button mask changed. onChange, when given,
    // sees every new mask in turn, so that a tap read in one go with its release
    // still counts as a press.
    bool feed(std::span<const std::uint8_t> bytes,
              const std::function<void(std::uint32_t)>& onChange = {});
    [[nodiscard]] std::uint32_t buttons() const { return buttons_; }
    // Records seen for buttons beyond the mask's 32 bits; they are no pedal.
    [[nodiscard]] std::uint32_t ignoredRecords() const { return ignored_; }
    void clear() {
        buttons_ = 0;
        pending_ = 0;
    }

  private:
    bool take(const std::array<std::uint8_t, kRecordBytes>& record);

    std::array<std::uint8_t, kRecordBytes> partial_{};
    std::size_t pending_ = 0;
    std::uint32_t buttons_ = 0;
    std::uint32_t ignored_ = 0;
};

}  // namespace ovd::devices
