#include "devices/hands_free.h"

#include <filesystem>

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
      game(parts.config, parts.loop, dispatcher, parts.dictation.state(), usb.menu,
           parts.inputFolder),
      serial(parts.config, parts.prompts, parts.loop, dispatcher, parts.dictation.pedalPresses(),
             parts.dictation.state(), timSERStepBACK, *this),
      otherMakers(parts.loop, parts.config.dataFolder(),
                  (std::filesystem::path(parts.buttonFile).parent_path() / "devices" /
                   kDictationDevicesFileName)
                      .string(),
                  parts.config.record, parts.dictation.state(), parts.dictation.pedalPresses(),
                  dispatcher, parts.hidraw),
      hotKeys(parts.config.record),
      dictation_(parts.dictation),
      config_(parts.config),
      log_(parts.log) {
    dispatcher.usbPedalHeld = [this] { return usb.decoder.pedalHeld() || otherMakers.pedalHeld(); };
    hotKeys.trigger = [this] { hotKeyTrigger(); };
    otherMakers.command = [this](const std::string& word) { deviceCommand(word); };
    otherMakers.note = [this](const std::string& text) { log_.trace(text); };
    otherMakers.stopStepBack = [this] { timUSBStepBACK.setEnabled(false); };
    otherMakers.usbPedalsInUse = [this] { return config_.record.UserSelectUSB; };
    usb.PedalsBusy = [this] { return dictation_.state().PedalsBusy; };
    usb.showConfigDialog = [this] {
        if (onShowUsbPedalSettings) onShowUsbPedalSettings();
    };
    usb.endProgram = [this] { endProgram(); };
    // Game port pedals run on the serial assignments: their edges go to the serial routine.
    game.PedalsBusy = [this] { return pedalInputSilenced(); };
    game.uncheckSerialMenu = [this] { serial.setSerialPedalsChecked(false); };
    usb.uncheckSerialMenu = game.uncheckSerialMenu;
    game.showConfigDialog = [this] {
        if (onShowGamePedalSettings) onShowGamePedalSettings();
    };
    game.note = [this](const std::string& text) { log_.trace(text); };
    dictation_.switchCommand = [this](const std::string& command) {
        switchModel.SwitchCommand(command);
    };
}

HandsFree::~HandsFree() { dictation_.switchCommand = nullptr; }

void HandsFree::start() {
    hotKeys.CalculateKeyCodes();
    usb.start();
    otherMakers.start();
    if (config_.record.UserSelectGame) game.OpenGamePedals();
    serial.setSerialPedalsChecked(config_.record.UserSelectSerial);
    if (config_.record.UserSelectSerial) serial.OpenSerialPedals();
}

void HandsFree::stop() {
    serial.CloseSerialPedals();
    game.CloseGamePedals();
    otherMakers.stop();
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

void HandsFree::hotKeyTrigger() {
    // With the button greyed the key does nothing at all, not even a beep.
    if (!dictation_.view().endOfLetterEnabled) return;
    // End of letter is refused while a take runs: the key stops the take first.
    if (dictation_.view().transportBar.Stop) dictation_.stop();
    dictation_.finishLetter();
}

void HandsFree::deviceCommand(const std::string& word) {
    if (word == "EOL" && !dictation_.view().endOfLetterEnabled) return;
    switchModel.SwitchCommand(word);
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
