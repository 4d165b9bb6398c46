#pragma once
// Opening the pedal assignment dialogs and the button template from the main
// window, and letting the pedal menus open them when a kind of pedal is chosen.

#include "devices/pedal_assignments_form.h"

class QWidget;

namespace ovd::devices {
class HandsFree;
}

namespace ovd::ui {

// The dialog of that device, modally.
void showPedalAssignments(devices::PedalDialog which, QWidget* parent, settings::ConfigFile& config,
                          platform::Prompts& prompts);
// frmPrintButton, modally.
void showPrintButtonTemplate(QWidget* parent, const settings::SettingsRecord& record);
// Choosing USB, serial or game port pedals in the menu shows their dialog first.
void showPedalDialogsFromMenus(devices::HandsFree& handsFree, QWidget* parent,
                               settings::ConfigFile& config, platform::Prompts& prompts);

}  // namespace ovd::ui
