#include "devices/hot_key_options_form.h"

namespace ovd::devices {

HotKeyOptionsForm::HotKeyOptionsForm(settings::ConfigFile& config, platform::Prompts& prompts,
                                     std::string programTitle, std::string systemWideReason)
    : config_(config),
      prompts_(prompts),
      programTitle_(std::move(programTitle)),
      systemWideReason_(std::move(systemWideReason)) {
    const settings::SettingsRecord& record = config_.record;
    key = record.EOLHotKey.toText();
    modifier = record.EOLHotKeyShift.toText();
    disableAll = !record.EOLHotKeysOn;
    systemWide = record.HotKeyMode == kHotKeyModeSystem;
    // Where keys can't be heard from other programs, only the station's own windows
    // are offered, as on the systems the station never could hook.
    if (!systemAvailable()) systemWide = false;
}

std::vector<std::string> HotKeyOptionsForm::keyNames() const {
    return {hotKeyNames().begin(), hotKeyNames().end()};
}

std::vector<std::string> HotKeyOptionsForm::modifierNames() const {
    return {kHotKeyModifierNames.begin(), kHotKeyModifierNames.end()};
}

std::string HotKeyOptionsForm::systemCaption() const {
    return "Capture KeyStrokes when " + programTitle_ + " is NOT the active program.";
}

std::string HotKeyOptionsForm::localCaption() const {
    return "Capture KeyStrokes only when " + programTitle_ + " is the active program.";
}

void HotKeyOptionsForm::apply() {
    settings::SettingsRecord& record = config_.record;
    const bool wasDisabled = record.HotKeyMode == kHotKeyModeDisabled;
    record.EOLHotKey = key;
    record.EOLHotKeyShift = modifier;
    if (disableAll) {
        record.EOLHotKeysOn = false;
        record.HotKeyMode = kHotKeyModeDisabled;
    } else {
        record.EOLHotKeysOn = true;
        record.HotKeyMode = systemWide && systemAvailable() ? kHotKeyModeSystem : kHotKeyModeLocal;
    }
    (void)config_.WriteConfig();
    if (!wasDisabled && record.HotKeyMode == kHotKeyModeDisabled)
        prompts_.showMessage(kRestartForDisabledKeysMessage);
    applyEnabled = false;
    if (onHookChanged) onHookChanged();
}

}  // namespace ovd::devices
