#pragma once
// The end-of-letter hot key: one key, chosen by name, that ends the letter from
// within the station ("Local") or from any program on the desktop ("System").
// The key names and codes are the station's own table, slips included: "RIGHT
// ARROW" carries the code of "UP ARROW", and "~" that of "`". The hook reports a
// key code and the modifiers held; the rule below decides whether that is the key.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "settings/settings_record.h"

namespace ovd::devices {

inline constexpr std::size_t kHotKeyNameCount = 61;
inline constexpr std::array<std::string_view, 4> kHotKeyModifierNames = {"Nothing", "SHIFT", "ALT",
                                                                         "CONTROL"};
inline constexpr const char* kHotKeyModeDisabled = "Disabled";
inline constexpr const char* kHotKeyModeSystem = "System";
inline constexpr const char* kHotKeyModeLocal = "Local";

// The names in the order the lists show them.
[[nodiscard]] const std::array<std::string_view, kHotKeyNameCount>& hotKeyNames();
// The key code of a name; nothing for a name not in the table.
[[nodiscard]] std::optional<std::uint16_t> hotKeyCode(std::string_view name);

// The modifiers the hook reports with a key.
enum HotKeyShift : unsigned { kShiftBit = 1U, kControlBit = 2U, kAltBit = 4U };

// What the hook is told to report: the code from the hook's own shorter table
// (function keys and the named keys only; a letter or digit gives 0), plus the
// modifier. 0x10000 Shift, 0x20000 Control, 0x40000 Alt.
[[nodiscard]] std::uint32_t HotKeysDefined(std::string_view key, std::string_view modifier);

class HotKeys {
  public:
    explicit HotKeys(const settings::SettingsRecord& settings) : settings_(settings) {}

    // HotKeyCode for EOLHotKey; an unknown name leaves it as it was.
    void CalculateKeyCodes();
    [[nodiscard]] std::uint16_t HotKeyCode() const { return hotKeyCode_; }

    // The hook's key event. True when it was the hot key and the trigger ran.
    bool keyEvent(std::uint16_t keyCode, unsigned shiftMask);

    // Whether the hook is on and where it listens, from the settings.
    [[nodiscard]] bool hookOn() const;
    [[nodiscard]] bool systemWide() const;

    // The trigger: end of letter, as the EOL button would.
    std::function<void()> trigger;

  private:
    const settings::SettingsRecord& settings_;
    std::uint16_t hotKeyCode_ = 0;
};

}  // namespace ovd::devices
