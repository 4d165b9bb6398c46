#pragma once
// From a pedal edge to a command word: each pedal of each device has an action
// keyword, and the dispatcher turns an edge on that pedal into a command for the
// switch model, with the step-back repeat for the listen pedal. The device layers
// only produce edges; this is the one place that decides what an edge means.

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "devices/pedal_events.h"
#include "dictation/dictation.h"
#include "platform/timer.h"
#include "settings/settings_record.h"

namespace ovd::devices {

// The six pedal keywords, in the order the pedal dialogs show them.
struct PedalKeyword {
    std::string_view keyword;
    std::string_view functionLabel;
    std::string_view descriptionLabel;
};
inline constexpr std::array<PedalKeyword, 6> kPedalKeywords = {{
    {"STEPLIST", "Stop-Listen", "Backs up N seconds/Listen"},
    {"RECSTOP", "Record-Stop", "Record/Stop"},
    {"EOLSTOP", "End-Of-Letter", "End Of Letter"},
    {"INSAUDIO", "Insert-Audio", "Insert Audio"},
    {"OVRAUDIO", "Overwrite-Audio", "Overwrite Audio File"},
    {"STEPFWD", "Step Fwd", "Steps Forward N seconds"},
}};

// The desk unit's button sets.
inline constexpr std::array<std::string_view, 8> kStandardButtons = {
    "New", "RenameFile", "Previous", "Next", "AudioSRC", "SendToOne", "SendToTwo", "EraseFile"};
inline constexpr std::array<std::string_view, 8> kMessageButtons = {"MSG1", "MSG2", "MSG3", "MSG4",
                                                                    "MSG5", "MSG6", "MSG7", "MSG8"};

// The name a button action shows on the printed template and in the status line;
// an action not in the table shows as itself.
std::string buttonDisplayName(std::string_view action);

// What the dispatcher calls in the transport and the switch model.
class TransportCommands {
  public:
    virtual ~TransportCommands() = default;
    virtual void SwitchCommand(const std::string& command) = 0;
    virtual void StopClick() = 0;  // the bar's Stop, as if clicked
    virtual void CaseStop() = 0;
    virtual void CaseEnd() = 0;
    // The position history takes the status text when it differs from the first entry.
    virtual void pushSwitchPosition(const std::string& status) = 0;
    virtual void SwitchAction(const std::string& action) = 0;
    // The file is being closed or the next one opened: no take can start yet.
    [[nodiscard]] virtual bool fileInTransition() const { return false; }
    // The hold-to-record pedal went up.
    virtual void recordReleased() {}
};

enum class PedalDevice { Serial, Usb, Game, DeskUnit };

class PedalDispatcher : public PedalEventSink {
  public:
    struct StepBackTimers {
        platform::Timer& timSERStepBACK;
        platform::Timer& timUSBStepBACK;
        platform::Timer& timGAMEStepBACK;
    };

    PedalDispatcher(const settings::SettingsRecord& settings, dictation::Dictation& dictation,
                    TransportCommands& commands, StepBackTimers timers);

    // The game port runs on the serial assignments and the serial step-back timer.
    void PedalEventSER(const std::string& pedal, const std::string& direction) override;
    void PedalEventUSB(const std::string& pedal, const std::string& direction) override;
    void PedalEventGAME(const std::string& pedal, const std::string& direction) override;
    void PedalEventQDU(const std::string& pedal, const std::string& direction);

    void UpdateEOLButton();
    void StartStepBackSER();
    void StartStepBackUSB();
    void StartStepBackGAME();

    // One tick of a step-back timer: while the device reports a pedal held, stop
    // a take, step back and play; otherwise the timer stops itself.
    void stepBackTick(platform::Timer& timer, const std::function<bool()>& pedalHeld);
    [[nodiscard]] bool serialPedalHeld() const;

    // The USB reader tells whether one of its pedals is down.
    std::function<bool()> usbPedalHeld;

  private:
    void dispatch(PedalDevice device, const std::string& pedal, const std::string& direction);
    [[nodiscard]] const std::string* assignment(PedalDevice device, const std::string& pedal) const;
    void startStepBack(PedalDevice device);

    const settings::SettingsRecord& settings_;
    dictation::Dictation& d_;
    const dictation::DictationState& state_;
    const dictation::MainView& view_;
    PedalHits& hits_;
    TransportCommands& commands_;
    StepBackTimers timers_;
};

}  // namespace ovd::devices
