#pragma once
// The end-of-letter hot key on this desktop: where the settings say "System", a
// grab on the X server hears the key whatever program has the focus; "Local"
// hears it only while one of the station's windows is active, or, with no window,
// from the terminal the station runs in. The keys heard go to the hot key rule.

#include <QObject>
#include <memory>

#include "devices/hot_keys.h"
#include "devices/terminal_keys.h"
#include "ui/x11_hot_key.h"

namespace ovd::ui {

class HotKeyHook : public QObject {
  public:
    // headless: no window; "Local" keys come from the terminal on standard input.
    HotKeyHook(devices::HotKeys& keys, const settings::SettingsRecord& settings,
               platform::EventLoop& loop, bool headless);
    ~HotKeyHook() override;

    // Takes the hook's state from the settings: off, Local or System.
    void apply();

    // Empty where "System" can work; the reason otherwise.
    [[nodiscard]] const std::string& systemUnavailableReason() const;
    // A line for the event log.
    std::function<void(const std::string&)> note;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void heard(std::uint16_t code, unsigned mask);

    devices::HotKeys& keys_;
    const settings::SettingsRecord& settings_;
    platform::EventLoop& loop_;
    bool headless_;
    X11HotKey x11_;
    std::unique_ptr<devices::TerminalKeys> terminal_;
    bool localOn_ = false;
};

// The station's key code of a Qt key, 0 for a key not in the hot key list.
[[nodiscard]] std::uint16_t keyCodeForQtKey(int key);

}  // namespace ovd::ui
