// The "Local" hot key in the station's windows: heard while one of them is the
// active window, not otherwise; and the hot-key options window without an X
// server greys "System" and says why.

#include "ui/hot_key_hook.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>
#include <cstdlib>

#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/end_of_letter_options_window.h"
#include "ui/hot_key_options_window.h"
#include "ui/qt_event_loop.h"

namespace ovd::ui {
namespace {

void press(QWidget& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent down(QEvent::KeyPress, key, modifiers);
    QWidget* target =
        QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &window;
    QApplication::sendEvent(target, &down);
}

TEST(HotKeyHookTest, LocalKeyIsHeardOnlyWhileAStationWindowIsActive) {
    QtEventLoop loop;
    settings::SettingsRecord settings;
    settings.EOLHotKeysOn = true;
    settings.HotKeyMode = "Local";
    settings.EOLHotKey = "F9";
    settings.EOLHotKeyShift = "Nothing";
    devices::HotKeys keys(settings);
    int fired = 0;
    keys.trigger = [&fired] { ++fired; };
    HotKeyHook hook(keys, settings, loop, false);
    hook.apply();

    QWidget window;
    window.show();
    window.activateWindow();
    QApplication::setActiveWindow(&window);
    QApplication::processEvents();
    ASSERT_EQ(QApplication::activeWindow(), &window);
    press(window, Qt::Key_F9);
    EXPECT_EQ(fired, 1);
    press(window, Qt::Key_F9, Qt::ShiftModifier);
    press(window, Qt::Key_F8);
    EXPECT_EQ(fired, 1) << "another key, or the key with a modifier, is not the hot key";

    QApplication::setActiveWindow(nullptr);
    window.hide();
    QApplication::processEvents();
    press(window, Qt::Key_F9);
    EXPECT_EQ(fired, 1) << "another program is active";

    settings.HotKeyMode = "Disabled";
    hook.apply();
    window.show();
    QApplication::setActiveWindow(&window);
    QApplication::processEvents();
    press(window, Qt::Key_F9);
    EXPECT_EQ(fired, 1) << "the hook is off";

    std::vector<std::string> notes;
    hook.note = [&notes](const std::string& line) { notes.push_back(line); };
    settings.HotKeyMode = "Local";
    settings.EOLHotKey = "SCROLL LOCK";
    hook.apply();
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NE(notes[0].find("\"SCROLL LOCK\" is not a key of the hot key list"), std::string::npos);
    press(window, Qt::Key_F9);
    EXPECT_EQ(fired, 1) << "the hook is told of no key";
}

TEST(HotKeyHookTest, WithoutAnXServerSystemIsGreyedWithTheReason) {
    const char* saved = std::getenv("DISPLAY");
    const std::string display = saved != nullptr ? saved : "";
    ::unsetenv("DISPLAY");
    QtEventLoop loop;
    ovd::testing::TempFolder folder;
    settings::ConfigFile config(folder.path());
    ovd::testing::ScriptedPrompts prompts;
    config.record.HotKeyMode = "System";
    config.record.EOLHotKeysOn = true;
    devices::HotKeys keys(config.record);
    HotKeyHook hook(keys, config.record, loop, false);
    ASSERT_FALSE(hook.systemUnavailableReason().empty());
    devices::HotKeyOptionsForm hotKeys(config, prompts, "Orvane Voice Desk",
                                       hook.systemUnavailableReason());
    configuration::EndOfLetterOptions exitOption(config);
    EndOfLetterOptionsWindow window(exitOption, hotKeys, nullptr);
    EXPECT_FALSE(window.hotKeySection()->systemOption()->isEnabled());
    EXPECT_TRUE(window.hotKeySection()->localOption()->isChecked());
    EXPECT_EQ(window.hotKeySection()->systemReason()->text().toStdString(),
              hook.systemUnavailableReason());
    window.hotKeySection()->disableAll()->setChecked(true);
    EXPECT_TRUE(window.applyButton()->isEnabled()) << "any change enables Apply";
    if (!display.empty()) ::setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace
}  // namespace ovd::ui
