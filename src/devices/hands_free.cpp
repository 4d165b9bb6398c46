#include "devices/hands_free.h"

namespace ovd::devices {

HandsFree::HandsFree(HandsFreeParts parts)
    : messages(ReadButtonFile(parts.buttonFile)),
      timSERStepBACK(parts.loop, "timSERStepBACK"),
      timUSBStepBACK(parts.loop, "timUSBStepBACK"),
      timGAMEStepBACK(parts.loop, "timGAMEStepBACK"),
      switchModel({parts.dictation, parts.AudioEditor1, parts.config, parts.log, parts.prompts,
                   parts.peer, messages, parts.letters}),
      dispatcher(parts.config.record, parts.dictation, switchModel,
                 {timSERStepBACK, timUSBStepBACK, timGAMEStepBACK}),
      usb(parts.config, parts.prompts, parts.loop, dispatcher, parts.dictation.pedalPresses(),
          parts.dictation.state(), timUSBStepBACK, parts.hidraw),
      serial(parts.config, parts.prompts, parts.loop, dispatcher, parts.dictation.pedalPresses(),
             parts.dictation.state(), timSERStepBACK, *this),
      dictation_(parts.dictation),
      config_(parts.config),
      log_(parts.log) {
    dispatcher.usbPedalHeld = [this] { return usb.decoder.pedalHeld(); };
    usb.PedalsBusy = [this] { return dictation_.state().PedalsBusy; };
    usb.showConfigDialog = [this] {
        if (onShowUsbPedalSettings) onShowUsbPedalSettings();
    };
    usb.endProgram = [this] { endProgram(); };
    dictation_.switchCommand = [this](const std::string& command) {
        switchModel.SwitchCommand(command);
    };
}

HandsFree::~HandsFree() { dictation_.switchCommand = nullptr; }

void HandsFree::start() {
    usb.start();
    serial.setSerialPedalsChecked(config_.record.UserSelectSerial);
    if (config_.record.UserSelectSerial) serial.OpenSerialPedals();
}

void HandsFree::stop() {
    serial.CloseSerialPedals();
    usb.unload();
}

bool HandsFree::USBPedals() const { return config_.record.UserSelectUSB; }
bool HandsFree::GamePortPedals() const { return config_.record.UserSelectGame; }
bool HandsFree::pedalInputSilenced() const {
    const dictation::DictationState& state = dictation_.state();
    return state.PedalsBusy || state.OnLoad || state.Imclosing;
}

void HandsFree::uncheckOtherFootPedalMenus() {
    usb.menu.usbChecked = false;
    usb.menu.gameChecked = false;
}

void HandsFree::showConfigSERFootPedals() {
    if (onShowSerialPedalSettings) onShowSerialPedalSettings();
}

void HandsFree::endProgram() {
    if (onEndProgram) onEndProgram();
}

void HandsFree::showStatus(const std::string& text) { dictation_.showStatus(text); }

void HandsFree::tellSerialPortProblem(const std::string& text) {
    log_.trace(text);
    showStatus(text);
}

void HandsFree::tellSerialPortOpened(const std::string& text) {
    log_.trace(text);
    // The warning goes once the pedal works; a newer status stays.
    if (dictation_.view().statusLine.rfind(kFootPedalPortNotice, 0) == 0) showStatus(text);
}

}  // namespace ovd::devices
