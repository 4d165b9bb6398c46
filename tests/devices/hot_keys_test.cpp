// The end-of-letter hot key: the station's table of key names and codes with its
// kept slips, what the hook is told to report, and which reported keys fire.

#include "devices/hot_keys.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace ovd::devices {
namespace {

TEST(HotKeyTable, SixtyOneNamesInListOrderWithTheKeptSlips) {
    const auto& names = hotKeyNames();
    EXPECT_EQ(names.front(), "F1");
    EXPECT_EQ(names[12], "PAGE UP");
    EXPECT_EQ(names[22], "A");
    EXPECT_EQ(names[48], "1");
    EXPECT_EQ(names[57], "0");
    EXPECT_EQ(names.back(), "~");
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());

    struct Case {
        const char* name;
        std::uint16_t code;
    };
    for (const Case& c :
         {Case{"F1", 0x70}, Case{"F12", 0x7B}, Case{"A", 0x41}, Case{"Z", 0x5A}, Case{"1", 0x31},
          Case{"0", 0x30}, Case{"PAGE DOWN", 0x22}, Case{"RIGHT ARROW", 0x26},
          Case{"UP ARROW", 0x26}, Case{"LEFT ARROW", 0x25}, Case{"`", 0xC0}, Case{"~", 0xC0},
          Case{"Carriage Return", 0x0D}, Case{"DELETE", 0x2E}})
        EXPECT_EQ(hotKeyCode(c.name), c.code) << c.name;
    EXPECT_FALSE(hotKeyCode("F13"));
    EXPECT_FALSE(hotKeyCode("right arrow")) << "names are compared as written";
}

TEST(HotKeyTable, TheHookIsToldFunctionAndNamedKeysOnlyWithTheModifier) {
    EXPECT_EQ(HotKeysDefined("F9", "Nothing"), 0x78U);
    EXPECT_EQ(HotKeysDefined("F9", "SHIFT"), 0x10078U);
    EXPECT_EQ(HotKeysDefined("HOME", "CONTROL"), 0x20024U);
    EXPECT_EQ(HotKeysDefined("~", "ALT"), 0x400C0U);
    EXPECT_EQ(HotKeysDefined("Q", "Nothing"), 0U) << "letters are not in the hook's table";
    EXPECT_EQ(HotKeysDefined("7", "SHIFT"), 0x10000U);
}

TEST(HotKeys, OnlyTheKeyWithoutAModifierFiresAndTheSlipsFireToo) {
    settings::SettingsRecord settings;
    int fired = 0;
    HotKeys keys(settings);
    keys.trigger = [&fired] { ++fired; };

    settings.EOLHotKey = "RIGHT ARROW";
    settings.EOLHotKeyShift = "Nothing";
    EXPECT_TRUE(keys.keyEvent(0x26, 0)) << "the up arrow is the right arrow's code";
    EXPECT_FALSE(keys.keyEvent(0x27, 0)) << "and the real right arrow is not";
    EXPECT_FALSE(keys.keyEvent(0x26, kShiftBit)) << "a modifier held is not the key alone";

    settings.EOLHotKey = "~";
    EXPECT_TRUE(keys.keyEvent(0xC0, 0)) << "\"~\" and \"`\" are one key";

    settings.EOLHotKey = "F9";
    settings.EOLHotKeyShift = "SHIFT";
    EXPECT_FALSE(keys.keyEvent(0x78, kShiftBit)) << "with a modifier no key fires";
    EXPECT_FALSE(keys.keyEvent(0x78, 0));

    settings.EOLHotKey = "no such key";
    settings.EOLHotKeyShift = "Nothing";
    EXPECT_TRUE(keys.keyEvent(0x78, 0)) << "an unknown name leaves the last code";
    EXPECT_EQ(fired, 3);
}

}  // namespace
}  // namespace ovd::devices
