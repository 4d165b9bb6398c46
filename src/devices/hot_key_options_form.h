#pragma once
// The hot-key half of the end-of-letter options (frmEOLOptions): the key and
// modifier lists, "Disable ALL Hot Keys", and whether the key is heard from every
// program or only from the station. The exit-after-EOL half lives with the other
// end-of-letter options; the window that shows both calls apply() from its OK
// after it has set ExitAtEOL, and apply() writes the settings for both.

#include <functional>
#include <string>
#include <vector>

#include "devices/hot_keys.h"
#include "platform/prompts.h"
#include "settings/config_file.h"

namespace ovd::devices {

inline constexpr const char* kDisableAllHotKeysCaption = "Disable ALL Hot Keys";
inline constexpr const char* kRestartForDisabledKeysMessage =
    "You must close and restart this program in order for the Disabled Keys to take effect.";

class HotKeyOptionsForm {
  public:
    // systemWideReason: empty where keys can be heard from every program; otherwise
    // why not (no X11 server), and "System" is greyed with Local chosen.
    HotKeyOptionsForm(settings::ConfigFile& config, platform::Prompts& prompts,
                      std::string programTitle, std::string systemWideReason);

    // Combo9 and Combo10.
    [[nodiscard]] std::vector<std::string> keyNames() const;
    [[nodiscard]] std::vector<std::string> modifierNames() const;
    // optHotkeys(1) and optHotkeys(2).
    [[nodiscard]] std::string systemCaption() const;
    [[nodiscard]] std::string localCaption() const;
    [[nodiscard]] bool systemAvailable() const { return systemWideReason_.empty(); }
    [[nodiscard]] const std::string& systemUnavailableReason() const { return systemWideReason_; }

    // What the controls show; every change enables Apply.
    std::string key;
    std::string modifier;
    bool disableAll = false;
    bool systemWide = false;
    bool applyEnabled = false;
    void changed() { applyEnabled = true; }

    // Command1: stores the choice, writes the settings, says when a restart is
    // needed, and tells the hook.
    void apply();

    // The hook takes the stored settings again.
    std::function<void()> onHookChanged;

  private:
    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
    std::string programTitle_;
    std::string systemWideReason_;
};

}  // namespace ovd::devices
