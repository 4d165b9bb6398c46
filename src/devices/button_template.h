#pragma once
// The label template of the desk unit's eight buttons (frmPrintButton): each
// button's action under the name it shows, laid out to be cut and stuck on the
// unit. Its own table of names lacks three actions, which therefore print as
// their action names; that is how the template has always read, and it stays.

#include <array>
#include <string>
#include <string_view>

#include "settings/settings_record.h"

namespace ovd::devices {

inline constexpr const char* kPrintButtonTitle = "Print QDU Button Template";
inline constexpr const char* kAffixTemplateText =
    "Afix QDU Template to above box on the printed sheet that should be in your printer.  "
    "Place sheet properly in your printer.";

// The name an action has on the printed template.
[[nodiscard]] std::string templateLabel(std::string_view action);
// BUT1 to BUT8 as the template prints them.
[[nodiscard]] std::array<std::string, 8> templateLabels(const settings::SettingsRecord& record);

}  // namespace ovd::devices
