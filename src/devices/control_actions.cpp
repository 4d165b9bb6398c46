#include "devices/control_actions.h"

#include <utility>

namespace ovd::devices {

namespace {

constexpr int kStepBackMs = 100;
constexpr const char* kStepBackStatus = "4 Position Switch STATUS: STEPBACK";

constexpr std::array<std::pair<std::string_view, std::string_view>, 29> kDisplayNames = {{
    {"Rewind", "Rewind"},
    {"FastForward", "F-FWD"},
    {"Play", "Play"},
    {"Pause", "Pause"},
    {"StepBack", "Step Back"},
    {"StepForward", "Step FWD"},
    {"Stop", "Stop"},
    {"Record", "Record"},
    {"New", "New"},
    {"Open", "Open"},
    {"Close", "Close"},
    {"Exit", "Exit"},
    {"3Seconds", "Play 3 LSecs"},
    {"AddBeg", "Insert Beg"},
    {"RenameFile", "Rename"},
    {"Previous", "Previous"},
    {"Next", "Next"},
    {"SendToOne", "Dest 1"},
    {"SendToTwo", "Dest 2"},
    {"SendToThree", "Dest 3"},
    {"ToggleEXTINTMic", "Mic:Int/Ext"},
    {"ToggleMic", "Mic:On/Off"},
    {"EraseFile", "Delete"},
    {"AudioSRC", "Audio Src"},
    {"Overwrite", "Overwrite"},
    {"Insert", "Insert Mid"},
    {"EOL", "EOL"},
    {"SENDEMAIL", "EMail"},
    {"SENDFTP", "FTP"},
}};

}  // namespace

std::string buttonDisplayName(std::string_view action) {
    for (const auto& [name, display] : kDisplayNames) {
        if (name == action) return std::string(display);
    }
    return std::string(action);  // "MSG1".."MSG20" and anything unknown
}

PedalDispatcher::PedalDispatcher(const settings::SettingsRecord& settings,
                                 dictation::Dictation& dictation, TransportCommands& commands,
                                 StepBackTimers timers)
    : settings_(settings),
      d_(dictation),
      state_(dictation.state()),
      view_(dictation.view()),
      hits_(dictation.pedalPresses()),
      commands_(commands),
      timers_(timers) {
    timers_.timSERStepBACK.setOnTick(
        [this] { stepBackTick(timers_.timSERStepBACK, [this] { return serialPedalHeld(); }); });
    timers_.timUSBStepBACK.setOnTick([this] {
        stepBackTick(timers_.timUSBStepBACK, [this] { return usbPedalHeld && usbPedalHeld(); });
    });
    // The game port's timer looks at no flags of its own: it stops at its first tick.
    timers_.timGAMEStepBACK.setOnTick(
        [this] { stepBackTick(timers_.timGAMEStepBACK, [] { return false; }); });
}

void PedalDispatcher::PedalEventSER(const std::string& pedal, const std::string& direction) {
    dispatch(PedalDevice::Serial, pedal, direction);
}
void PedalDispatcher::PedalEventUSB(const std::string& pedal, const std::string& direction) {
    dispatch(PedalDevice::Usb, pedal, direction);
}
void PedalDispatcher::PedalEventGAME(const std::string& pedal, const std::string& direction) {
    dispatch(PedalDevice::Game, pedal, direction);
}
void PedalDispatcher::PedalEventQDU(const std::string& pedal, const std::string& direction) {
    dispatch(PedalDevice::DeskUnit, pedal, direction);
}

const std::string* PedalDispatcher::assignment(PedalDevice device, const std::string& pedal) const {
    const auto pick = [&](const std::string& left, const std::string& middle,
                          const std::string& right) -> const std::string* {
        if (pedal == kLeft) return &left;
        if (pedal == kMiddle) return &middle;
        if (pedal == kRight) return &right;
        return nullptr;
    };
    const settings::SettingsRecord& s = settings_;
    switch (device) {
        case PedalDevice::Serial:
            return pick(s.LEFTSERPEDAL, s.MIDSERPEDAL, s.RIGHTSERPEDAL);
        case PedalDevice::Usb:
            return pick(s.LEFTUSBPEDAL, s.MIDUSBPEDAL, s.RIGHTUSBPEDAL);
        case PedalDevice::Game:
            return pick(s.LEFTGAMEPEDAL, s.MIDGAMEPEDAL, s.RIGHTGAMEPEDAL);
        case PedalDevice::DeskUnit:
            return pick(s.LEFTQDUPEDAL, s.MIDQDUPEDAL, s.RIGHTQDUPEDAL);
    }
    return nullptr;
}

void PedalDispatcher::dispatch(PedalDevice device, const std::string& pedal,
                               const std::string& direction) {
    const std::string* keyword = assignment(device, pedal);
    if (keyword == nullptr || keyword->empty()) return;
    const bool down = direction == kDown;
    const bool up = direction == kUp;
    // While one-tap recording runs only the record pedal and the end of letter
    // pedal are alive.
    const bool busy = settings_.OneTapRecPause && state_.Recordingstatus;
    const dictation::TransportBar& bar = view_.transportBar;

    if (*keyword == "STEPLIST") {
        if (busy) return;
        if (!state_.flgPlay) {
            if (down && bar.Back) startStepBack(device);
        } else if (down) {
            commands_.SwitchCommand("STOP");
        }
    } else if (*keyword == "RECSTOP" && settings_.OneTapRecPause) {
        UpdateEOLButton();
        // While the next file is made, the station counts as taking for a moment;
        // a tap then still asks for the take, which waits for the file.
        const bool taking = state_.Recordingstatus && !commands_.fileInTransition();
        if (!taking && down) {
            commands_.SwitchCommand("Record");
        } else if (state_.Recordingstatus && down && bar.Stop) {
            commands_.StopClick();
        }
    } else if (*keyword == "RECSTOP") {
        if (up) commands_.recordReleased();
        if (up && bar.Stop) commands_.StopClick();
        UpdateEOLButton();
        if (down) commands_.SwitchCommand("Record");
    } else if (*keyword == "EOLSTOP") {
        // The end of letter button is asked first, before the busy test.
        if (!view_.endOfLetterEnabled || busy) return;
        if (down) {
            hits_.HandSetHitNotHit = true;
            commands_.SwitchCommand("EOL");
        }
    } else if (*keyword == "INSAUDIO" || *keyword == "OVRAUDIO" || *keyword == "STEPFWD") {
        if (busy) return;
        if (up && bar.Stop) commands_.StopClick();
        UpdateEOLButton();
        if (down) {
            hits_.HandSetHitNotHit = true;
            commands_.SwitchCommand(*keyword == "INSAUDIO"   ? "Ins"
                                    : *keyword == "OVRAUDIO" ? "OVR"
                                                             : "STEPFOWARD");
        }
    }
    // Any other keyword is not one of ours: nothing happens.
}

void PedalDispatcher::UpdateEOLButton() { d_.refreshEndOfLetterButton(); }

void PedalDispatcher::startStepBack(PedalDevice device) {
    switch (device) {
        case PedalDevice::Serial:
        case PedalDevice::Game:  // the game port runs on the serial side
            StartStepBackSER();
            return;
        case PedalDevice::Usb:
            StartStepBackUSB();
            return;
        case PedalDevice::DeskUnit:
            return;  // the desk unit has no step-back timer of its own
    }
}

void PedalDispatcher::StartStepBackSER() {
    timers_.timSERStepBACK.setInterval(kStepBackMs);
    timers_.timSERStepBACK.setEnabled(true);
}
void PedalDispatcher::StartStepBackUSB() {
    timers_.timUSBStepBACK.setInterval(kStepBackMs);
    timers_.timUSBStepBACK.setEnabled(true);
}
void PedalDispatcher::StartStepBackGAME() {
    timers_.timGAMEStepBACK.setInterval(kStepBackMs);
    timers_.timGAMEStepBACK.setEnabled(true);
}

bool PedalDispatcher::serialPedalHeld() const {
    return hits_.LEFTSERPEDALHit || hits_.MIDSERPEDALHit || hits_.RIGHTSERPEDALHit;
}

void PedalDispatcher::stepBackTick(platform::Timer& timer, const std::function<bool()>& pedalHeld) {
    if (!pedalHeld()) {
        timer.setEnabled(false);
        return;
    }
    if (state_.Recordingstatus) {
        commands_.CaseStop();
        commands_.CaseEnd();
    }
    d_.showSwitchPosition(kStepBackStatus);
    d_.showMode("");
    d_.disarmInsertOverwrite();
    commands_.pushSwitchPosition(kStepBackStatus);
    commands_.SwitchAction("STEPBACK");
    d_.setStepBackUnderWay(false);
    // Asked again after the step: the step pumps events, and the pedal may be up by now.
    if (!pedalHeld()) timer.setEnabled(false);
}

}  // namespace ovd::devices
