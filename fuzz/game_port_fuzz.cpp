// Any bytes as the joystick's event stream: the first byte chooses where the reads
// are cut and whether an insert holds presses back, the rest are js_event records.
// Only serial edges may come out, each naming a pedal; a release only ever follows
// a press; the last press code stays one of the table's values; and with nothing
// held back the decoder always ends on the value the joystick shows.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "devices/game_port_decoder.h"

namespace {

class CheckingSink : public ovd::devices::PedalEventSink {
  public:
    bool pressed = false;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        if (pedal != "LEFT" && pedal != "MIDDLE" && pedal != "RIGHT") __builtin_trap();
        if (direction == "DOWN") {
            pressed = true;
        } else if (direction != "UP" || !pressed) {
            __builtin_trap();
        }
    }
    void PedalEventUSB(const std::string&, const std::string&) override { __builtin_trap(); }
    void PedalEventGAME(const std::string&, const std::string&) override { __builtin_trap(); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovd::devices;
    const std::span<const std::uint8_t> input(data, size);
    if (input.empty()) return 0;
    const std::size_t cut = (input[0] & 0x0FU) + 1U;
    ovd::settings::SettingsRecord settings;
    ovd::dictation::DictationState state;
    state.DoingInsertUpdate = (input[0] & 0x10U) != 0;
    CheckingSink sink;
    GamePortDecoder decoder(settings, state, sink);
    JoystickEventStream stream;

    std::span<const std::uint8_t> rest = input.subspan(1);
    while (!rest.empty()) {
        const std::size_t take = std::min(cut, rest.size());
        stream.feed(rest.first(take), [&](std::uint32_t mask) {
            const bool taken = decoder.tick(mask);
            if (!state.DoingInsertUpdate && (!taken || decoder.lastButtonValue() != mask))
                __builtin_trap();
        });
        rest = rest.subspan(take);
        const std::uint32_t code = decoder.lastGameCode();
        if (code != 0 && code != 1 && code != 2 && code != 3 && code != 4 && code != 8)
            __builtin_trap();
    }
    return 0;
}
