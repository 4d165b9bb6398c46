#include "ui/pedal_windows.h"

#include "devices/hands_free.h"
#include "ui/pedal_assignments_dialog.h"
#include "ui/print_button_window.h"

namespace ovd::ui {

void showPedalAssignments(devices::PedalDialog which, QWidget* parent, settings::ConfigFile& config,
                          platform::Prompts& prompts) {
    PedalAssignmentsDialog dialog(which, config, prompts, parent);
    dialog.exec();
}

void showPrintButtonTemplate(QWidget* parent, const settings::SettingsRecord& record) {
    PrintButtonWindow window(record, parent);
    window.exec();
}

void showPedalDialogsFromMenus(devices::HandsFree& handsFree, QWidget* parent,
                               settings::ConfigFile& config, platform::Prompts& prompts) {
    const auto opener = [parent, &config, &prompts](devices::PedalDialog which) {
        return [parent, &config, &prompts, which] {
            showPedalAssignments(which, parent, config, prompts);
        };
    };
    handsFree.onShowUsbPedalSettings = opener(devices::PedalDialog::Usb);
    handsFree.onShowSerialPedalSettings = opener(devices::PedalDialog::Serial);
    handsFree.onShowGamePedalSettings = opener(devices::PedalDialog::Game);
}

}  // namespace ovd::ui
