// The hot-key half of the end-of-letter options, and the keys of a terminal as
// the headless station reads them.

#include <gtest/gtest.h>

#include "devices/hot_key_options_form.h"
#include "devices/terminal_keys.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::devices {
namespace {

class HotKeyOptionsTest : public ::testing::Test {
  protected:
    testing::TempFolder folder;
    settings::ConfigFile config{folder.path()};
    testing::ScriptedPrompts prompts;
    int hookChanges = 0;

    HotKeyOptionsForm open(const std::string& systemUnavailable = {}) {
        HotKeyOptionsForm form(config, prompts, "Orvane Voice Desk", systemUnavailable);
        form.onHookChanged = [this] { ++hookChanges; };
        return form;
    }
    [[nodiscard]] settings::SettingsRecord written() const {
        settings::ConfigFile file(folder.path());
        file.ReadConfig();
        return file.record;
    }
};

TEST_F(HotKeyOptionsTest, ShowsTheStoredChoiceAndWritesWhatIsApplied) {
    config.record.EOLHotKeysOn = true;
    config.record.HotKeyMode = "System";
    config.record.EOLHotKey = "F9";
    config.record.EOLHotKeyShift = "Nothing";
    HotKeyOptionsForm form = open();
    EXPECT_EQ(form.keyNames().size(), 61U);
    EXPECT_EQ(form.modifierNames(),
              (std::vector<std::string>{"Nothing", "SHIFT", "ALT", "CONTROL"}));
    EXPECT_EQ(form.systemCaption(),
              "Capture KeyStrokes when Orvane Voice Desk is NOT the active program.");
    EXPECT_EQ(form.localCaption(),
              "Capture KeyStrokes only when Orvane Voice Desk is the active program.");
    EXPECT_TRUE(form.systemWide);
    EXPECT_FALSE(form.disableAll);
    EXPECT_FALSE(form.applyEnabled);

    form.key = "HOME";
    form.systemWide = false;
    form.changed();
    EXPECT_TRUE(form.applyEnabled);
    form.apply();
    EXPECT_EQ(written().EOLHotKey.toText(), "HOME");
    EXPECT_EQ(written().HotKeyMode, "Local");
    EXPECT_TRUE(written().EOLHotKeysOn);
    EXPECT_EQ(hookChanges, 1);
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST_F(HotKeyOptionsTest, DisablingAsksForARestartOnlyWhenItChanges) {
    config.record.EOLHotKeysOn = true;
    config.record.HotKeyMode = "Local";
    HotKeyOptionsForm form = open();
    form.disableAll = true;
    form.apply();
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{kRestartForDisabledKeysMessage});
    EXPECT_EQ(written().HotKeyMode, "Disabled");
    EXPECT_FALSE(written().EOLHotKeysOn);
    form.apply();
    EXPECT_EQ(prompts.texts().size(), 1U) << "already disabled: no second message";
}

TEST_F(HotKeyOptionsTest, WithoutAnXServerOnlyTheStationsOwnWindowsAreOffered) {
    config.record.EOLHotKeysOn = true;
    config.record.HotKeyMode = "System";
    HotKeyOptionsForm form = open("there is no X11 display");
    EXPECT_FALSE(form.systemAvailable());
    EXPECT_FALSE(form.systemWide) << "Local chosen";
    form.systemWide = true;  // whatever the window says
    form.apply();
    EXPECT_EQ(written().HotKeyMode, "Local");
}

TEST(TerminalKeyDecoder, TypedKeysAndEscapeSequencesCutAnywhere) {
    const std::string typed = "a\x1b[20~Q\r\x1b[A\x1bOP`~5\x1b[3~\x1b[99~z";
    const std::vector<TypedKey> expected = {
        {'A', 0},  {0x78, 0},         {'Q', kShiftBit}, {0x0D, 0}, {0x26, 0}, {0x70, 0},
        {0xC0, 0}, {0xC0, kShiftBit}, {'5', 0},         {0x2E, 0}, {'Z', 0}};
    for (std::size_t cut = 0; cut <= typed.size(); ++cut) {
        TerminalKeyDecoder decoder;
        std::vector<TypedKey> keys = decoder.feed(typed.substr(0, cut));
        const std::vector<TypedKey> rest = decoder.feed(typed.substr(cut));
        keys.insert(keys.end(), rest.begin(), rest.end());
        EXPECT_EQ(keys, expected) << "cut at " << cut << ": a key not in the list types nothing";
    }
}

}  // namespace
}  // namespace ovd::devices
