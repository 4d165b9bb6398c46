#include "devices/button_template.h"

#include "devices/control_actions.h"

namespace ovd::devices {

std::string templateLabel(std::string_view action) {
    // Missing from the template's table: they print as the action's own name.
    if (action == "SendToThree" || action == "SENDEMAIL" || action == "SENDFTP")
        return std::string(action);
    return buttonDisplayName(action);
}

std::array<std::string, 8> templateLabels(const settings::SettingsRecord& record) {
    return {templateLabel(record.BUT1), templateLabel(record.BUT2), templateLabel(record.BUT3),
            templateLabel(record.BUT4), templateLabel(record.BUT5), templateLabel(record.BUT6),
            templateLabel(record.BUT7), templateLabel(record.BUT8)};
}

}  // namespace ovd::devices
