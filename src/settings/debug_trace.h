#pragma once
// The support trace: time-stamped lines for the trace window, shown when support
// has switched it on, and a dump of the station's globals on request.

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/settings_record.h"

namespace ovd::settings {

using NamedValue = std::pair<std::string, std::string>;

// What the dump covers: the arrays, the timers and every other global.
struct GlobalsSnapshot {
    std::vector<NamedValue> arrays;
    std::vector<NamedValue> timers;
    std::vector<NamedValue> globals;
};

// The dump's lines: "Arrays", its entries, "Timmers", its entries, then the globals,
// each part in alphabetical order of the name, and a blank line after each first letter.
std::vector<std::string> formatGlobalsDump(const GlobalsSnapshot& snapshot);

// Every field of the settings record as a named value.
std::vector<NamedValue> settingsGlobals(const SettingsRecord& record);
// "timName.Enabled" = "True" or "False" for each timer.
std::vector<NamedValue> timerStates(const std::vector<const platform::Timer*>& timers);

class DebugTrace {
  public:
    explicit DebugTrace(platform::EventLoop& loop, std::size_t keptLines = 5000);

    // One line "[" + time + "] " + text. While DebugOn is false the line is kept
    // silently; while it is true the trace window is asked to show.
    void DebugPrint(const std::string& text);
    // Switches the trace on and writes the dump.
    void DumpGlobals(const GlobalsSnapshot& snapshot);
    // The double click support staff use on the status caption: confirms, then dumps.
    void openForSupport(platform::Prompts& prompts, const GlobalsSnapshot& snapshot);

    bool DebugOn = false;
    // Called when the trace window should show itself with the new text.
    std::function<void()> onShow;

    [[nodiscard]] const std::deque<std::string>& lines() const { return lines_; }

  private:
    platform::EventLoop& loop_;
    std::size_t keptLines_;
    std::deque<std::string> lines_;
};

}  // namespace ovd::settings
