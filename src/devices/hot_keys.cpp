#include "devices/hot_keys.h"

#include <algorithm>

namespace ovd::devices {

namespace {

struct NamedKey {
    std::string_view name;
    std::uint16_t code;
};

// Between the function keys and the letters; RIGHT ARROW repeats UP ARROW's code,
// as the station's table always had it.
constexpr std::array<NamedKey, 10> kNamedRows = {{
    {"PAGE UP", 0x21},
    {"PAGE DOWN", 0x22},
    {"UP ARROW", 0x26},
    {"DOWN ARROW", 0x28},
    {"LEFT ARROW", 0x25},
    {"RIGHT ARROW", 0x26},
    {"HOME", 0x24},
    {"END", 0x23},
    {"INSERT", 0x2D},
    {"DELETE", 0x2E},
}};
// After the digits; "~" has the code of "`".
constexpr std::array<NamedKey, 3> kLastRows = {{
    {"`", 0xC0},
    {"Carriage Return", 0x0D},
    {"~", 0xC0},
}};
constexpr std::uint16_t kF1 = 0x70;

std::array<std::string_view, kHotKeyNameCount> buildNames() {
    static constexpr std::array<std::string_view, 12> kFunctionKeys = {
        "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12"};
    static constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    static constexpr std::string_view kDigits = "1234567890";
    std::array<std::string_view, kHotKeyNameCount> names{};
    std::size_t at = 0;
    for (const std::string_view name : kFunctionKeys) names[at++] = name;
    for (const NamedKey& key : kNamedRows) names[at++] = key.name;
    for (std::size_t i = 0; i < kLetters.size(); ++i) names[at++] = kLetters.substr(i, 1);
    for (std::size_t i = 0; i < kDigits.size(); ++i) names[at++] = kDigits.substr(i, 1);
    for (const NamedKey& key : kLastRows) names[at++] = key.name;
    return names;
}

// The hook's own table knows the function keys and the named keys only.
std::optional<std::uint16_t> hookTableCode(std::string_view name) {
    if (name.size() >= 2 && name.size() <= 3 && name.front() == 'F') {
        const auto code = hotKeyCode(name);
        if (code && *code >= kF1) return code;
    }
    for (const NamedKey& key : kNamedRows) {
        if (key.name == name) return key.code;
    }
    for (const NamedKey& key : kLastRows) {
        if (key.name == name) return key.code;
    }
    return std::nullopt;
}

}  // namespace

const std::array<std::string_view, kHotKeyNameCount>& hotKeyNames() {
    static const std::array<std::string_view, kHotKeyNameCount> names = buildNames();
    return names;
}

std::optional<std::uint16_t> hotKeyCode(std::string_view name) {
    const auto& names = hotKeyNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) return std::nullopt;
    const auto index = static_cast<std::size_t>(found - names.begin());
    if (index < 12) return static_cast<std::uint16_t>(kF1 + index);
    for (const NamedKey& key : kNamedRows) {
        if (key.name == name) return key.code;
    }
    for (const NamedKey& key : kLastRows) {
        if (key.name == name) return key.code;
    }
    // A letter or a digit: the character's own code.
    return static_cast<std::uint16_t>(static_cast<unsigned char>(name.front()));
}

std::uint32_t HotKeysDefined(std::string_view key, std::string_view modifier) {
    std::uint32_t value = hookTableCode(key).value_or(0);
    if (modifier == "SHIFT") value += 0x10000;
    if (modifier == "CONTROL") value += 0x20000;
    if (modifier == "ALT") value += 0x40000;
    return value;
}

void HotKeys::CalculateKeyCodes() {
    if (const auto code = hotKeyCode(settings_.EOLHotKey.toText())) hotKeyCode_ = *code;
}

bool HotKeys::hookOn() const {
    return settings_.EOLHotKeysOn && settings_.HotKeyMode != kHotKeyModeDisabled;
}

bool HotKeys::systemWide() const { return settings_.HotKeyMode == kHotKeyModeSystem; }

bool HotKeys::keyEvent(std::uint16_t keyCode, unsigned shiftMask) {
    CalculateKeyCodes();
    std::string held = "Nothing";
    if ((shiftMask & kShiftBit) != 0) held += "Shift ";
    if ((shiftMask & kControlBit) != 0) held += "Control ";
    if ((shiftMask & kAltBit) != 0) held += "Alt ";
    // A stored modifier never equals the text built here: only a key without a
    // modifier ever fires. That is how the hot key has always behaved, and it stays.
    if (keyCode != hotKeyCode_ || settings_.EOLHotKeyShift.toText() != held) return false;
    if (trigger) trigger();
    return true;
}

}  // namespace ovd::devices
