#pragma once
// The end-of-letter options window as data: whether the station ends after an end
// of letter. The hot key of end of letter shares the window; its lists and mode
// are held by the hot-key options beside these.

#include <string>

#include "settings/config_file.h"

namespace ovd::configuration {

inline constexpr const char* kEndOfLetterOptionsTitle = "End Of Letter Options";
inline constexpr const char* kExitAtEOLCaption =
    "Check here to Exit the program after EOL function is triggered (by mouse click, Hotkey, or "
    "pedal action.)";

class EndOfLetterOptions {
  public:
    explicit EndOfLetterOptions(settings::ConfigFile& config);

    // On load: chkExitAtEOL shows ExitAtEOL.
    void load();
    [[nodiscard]] bool exitAtEndOfLetter() const { return exitAtEndOfLetter_; }
    void setExitAtEndOfLetter(bool on);  // chkExitAtEOL_Click
    // Any change of a control enables Apply.
    [[nodiscard]] bool applyEnabled() const { return applyEnabled_; }
    // Command1 (OK): the option stored and the settings written.
    void ok();

    // The hot key of end of letter (Combo9, Combo10, Check3 "Disable ALL Hot Keys",
    // optHotkeys) joins here: its load beside load(), its store in ok() before the
    // write, each change enabling Apply as setExitAtEndOfLetter() does.

  private:
    settings::ConfigFile& config_;
    bool exitAtEndOfLetter_ = false;
    bool applyEnabled_ = false;
};

}  // namespace ovd::configuration
