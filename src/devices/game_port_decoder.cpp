#include "devices/game_port_decoder.h"

#include <algorithm>

namespace ovd::devices {

namespace {

// js_event: time (4 bytes), value (2), type (1), number (1).
constexpr std::size_t kValueOffset = 4;
constexpr std::size_t kTypeOffset = 6;
constexpr std::size_t kNumberOffset = 7;
constexpr std::uint8_t kButtonEvent = 0x01;
// The driver's first records after an open tell the state at that moment; for a
// button they count as a change like any other.
constexpr std::uint8_t kInitialState = 0x80;
constexpr unsigned kMaskBits = 32;

}  // namespace

GamePedal gamePedalFor(std::uint32_t value, const GamePortOptions& options) {
    GamePedal pedal = GamePedal::None;
    switch (value) {
        case 1:
            pedal = GamePedal::Right;
            break;
        case 2:
            pedal = GamePedal::Left;
            break;
        case 3:
            pedal = options.DVIPedal ? GamePedal::Right : GamePedal::Middle;
            break;
        case 4:
            pedal =
                options.AltPedalLayout && !options.DVIPedal ? GamePedal::Right : GamePedal::Middle;
            break;
        case 8:
            pedal =
                options.AltPedalLayout && !options.DVIPedal ? GamePedal::Middle : GamePedal::None;
            break;
        default:
            return GamePedal::None;
    }
    if (options.PedalSwap) {
        if (pedal == GamePedal::Left) return GamePedal::Right;
        if (pedal == GamePedal::Right) return GamePedal::Left;
    }
    return pedal;
}

const char* gamePedalName(GamePedal pedal) {
    switch (pedal) {
        case GamePedal::Left:
            return kLeft;
        case GamePedal::Middle:
            return kMiddle;
        case GamePedal::Right:
            return kRight;
        case GamePedal::None:
            return "";
    }
    return "";
}

GamePortDecoder::GamePortDecoder(const settings::SettingsRecord& settings,
                                 const dictation::DictationState& state, PedalEventSink& sink,
                                 GamePortOptions options)
    : settings_(settings), state_(state), sink_(sink), options_(options) {}

bool GamePortDecoder::tick(std::uint32_t ButtonNumber) {
    if (PedalsBusy && PedalsBusy()) return false;
    if (ButtonNumber == LastButtonValue) return true;
    if (ButtonNumber == 0) {
        // All pedals up: the release goes to whoever was pressed last.
        const GamePedal pedal = gamePedalFor(LastGameCode, options_);
        LastButtonValue = 0;
        if (pedal != GamePedal::None) sink_.PedalEventSER(gamePedalName(pedal), kUp);
        return true;
    }
    const GamePedal pedal = gamePedalFor(ButtonNumber, options_);
    if (pedal != GamePedal::None) {
        // A press would break into a running insert or overwrite: it is not taken
        // now, and the value is looked at again at the next tick.
        if (!settings_.OneTapRecPause && (state_.DoingInsertUpdate || state_.OverWriteFile))
            return false;
        // The value is settled before the edge runs: the command behind it may pump
        // events, and a read arriving then must not see the press as new again.
        LastButtonValue = ButtonNumber;
        LastGameCode = ButtonNumber;
        sink_.PedalEventSER(gamePedalName(pedal), kDown);
        return true;
    }
    LastButtonValue = ButtonNumber;
    return true;
}

bool JoystickEventStream::feed(std::span<const std::uint8_t> bytes,
                               const std::function<void(std::uint32_t)>& onChange) {
    bool changed = false;
    while (!bytes.empty()) {
        const std::size_t count = std::min(kRecordBytes - pending_, bytes.size());
        std::copy_n(bytes.begin(), count, partial_.begin() + static_cast<std::ptrdiff_t>(pending_));
        pending_ += count;
        bytes = bytes.subspan(count);
        if (pending_ < kRecordBytes) break;
        pending_ = 0;
        if (take(partial_)) {
            changed = true;
            if (onChange) onChange(buttons_);
        }
    }
    return changed;
}

bool JoystickEventStream::take(const std::array<std::uint8_t, kRecordBytes>& record) {
    const auto type = static_cast<std::uint8_t>(record[kTypeOffset] & ~kInitialState);
    if (type != kButtonEvent) return false;  // axes carry no pedal
    const unsigned number = record[kNumberOffset];
    if (number >= kMaskBits) {
        ++ignored_;
        return false;
    }
    const bool pressed = record[kValueOffset] != 0 || record[kValueOffset + 1] != 0;
    const std::uint32_t bit = 1U << number;
    const std::uint32_t before = buttons_;
    buttons_ = pressed ? (buttons_ | bit) : (buttons_ & ~bit);
    return buttons_ != before;
}

}  // namespace ovd::devices
