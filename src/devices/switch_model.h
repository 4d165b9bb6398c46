#pragma once
// The desk unit's four-position switch as the station models it: every pedal
// and button ends in a command word, and the switch keeps the status label and
// the last four positions, and decides by them what a move means. From dictate
// to listen replays the last three seconds; from stop to listen goes on
// listening. The pedals use this model even when no desk unit is connected.
// The unit's eight buttons come in through Switch1TO8ON.

#include <array>
#include <string>

#include "devices/button_file.h"
#include "devices/control_actions.h"
#include "devices/letter_actions.h"
#include "dictation/dictation.h"
#include "dictation/peer_notices.h"
#include "engine/audio_editor.h"
#include "platform/prompts.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::devices {

// What the history holds besides the four position texts.
inline constexpr const char* kFirstTime = "FirstTime";  // a new file, before its first command
inline constexpr const char* kLast3Secs = "Last3Secs";  // the last three seconds were just replayed
inline constexpr const char* kSteppedForward = "STEPFORWARD";

inline constexpr const char* kMoveSwitchToListen =
    "Please move the 4 Position Switch on the Quadrant Desk Unit to the LISTEN position.";
inline constexpr const char* kMoveSwitchToListenOrStop =
    "Please move the 4 Position Switch on the Quadrant Desk Unit to the LISTEN or STOP position.";
inline constexpr const char* kRenamePrompt = "Enter the new file name for the file.";
inline constexpr const char* kRenameTitle = "Rename File";
inline constexpr const char* kPeerConnectionError = "TCP CONNECTION ERROR";

// The wording of the desk unit's send action for destination 1 to 3, whose
// folder is given; target is where the copy goes.
SendWording sendActionWording(int destination, const std::string& folder,
                              const std::string& target);

struct SwitchModelParts {
    dictation::Dictation& dictation;
    engine::AudioEditor& AudioEditor1;  // the file under dictation
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    dictation::PeerNotices& peer;
    const ButtonMessages& messages;  // Button.cfg, read at start
    LetterActions& letters;
};

class SwitchModel : public TransportCommands {
  public:
    explicit SwitchModel(SwitchModelParts parts);
    SwitchModel(const SwitchModel&) = delete;
    SwitchModel& operator=(const SwitchModel&) = delete;

    // "Trigger", "STEPBACK", "LISTEN", "STOP", "Record", "RecordInsOVR",
    // "STEPFOWARD", "Ins", "OVR", "EOL". Another word only notes the label.
    void SwitchCommand(const std::string& command) override;
    // "Trigger", "STEPBACK", "LISTEN", "STOP", "DICTATE", "Last3Secs".
    void SwitchAction(const std::string& word) override;
    // "INSERT", "OVERWRITE", "GOTOEND", "STEPFOWARD" and "EOL".
    void HandSetSwitchs3(const std::string& word);
    // A desk unit button went down: action from BUT1..BUT8, number 1 to 8.
    void Switch1TO8ON(const std::string& action, int buttonNumber);
    // The unit's link reports the button up again.
    void buttonReleased(int buttonNumber);
    // BUT1Hit to BUT8Hit: the button is held.
    [[nodiscard]] bool BUTHit(int buttonNumber) const;

    void StopClick() override;
    void CaseStop() override;
    void CaseEnd() override;
    void pushSwitchPosition(const std::string& status) override;
    // A letter is being finished or the next file opened: a record press now
    // waits for the file rather than acting on one half closed or half made.
    [[nodiscard]] bool fileInTransition() const override;
    // The hold-to-record pedal let go.
    void recordReleased() override;
    // The record press that came during a transition, if any, now the file is ready.
    void takePendingRecord();
    ~SwitchModel() override;

    // A step back is running. The dispatcher's step-back repeat clears its own
    // flag after each step; the station points this model at that flag so the
    // two agree.

  private:
    // The record command that waits for the file in transition ("Record" or
    // "RecordInsOVR"); empty when none waits.
    std::string pendingRecord_;
    // End of letter sequences under way, the outer one and any it runs inside.
    int lettersUnderWay_ = 0;

    // A running take ends first, and an armed insert or overwrite is dropped.
    void endTakeAndDisarm();
    void stepBack();
    void listen();
    void stop();
    // False for the early leave: a take is already running.
    bool record(bool plainRecord);
    void stepForward();
    void arm(bool overwrite);
    void endOfLetterCommand();

    // Puts the "move the switch" request up and takes it down again: the unit's
    // display shows it while the status message is set.
    void askToMoveSwitch(const char* message, const char* waitingFor);
    void UpdateEOLButton();
    void rereadPosition();
    [[nodiscard]] bool engineIdle() const;

    void runButtonAction(const std::string& action, int buttonNumber);
    void renameFile();
    void stepThroughRecentFiles(int step);
    void eraseFile();
    // Moves the file into the recordings' BACK folder under a free name; the new path, or empty.
    std::string keepInBackFolder(const std::string& path);
    void sendToDestination(int destination);
    void stageForSending(Staging staging);
    void sendButtonMessage(const std::string& action, int buttonNumber);

    // Closes the file in hand as the bar's Stop and the close icon do.
    void stopAndClose();
    [[nodiscard]] const settings::SettingsRecord& settings() const { return config_.record; }
    void trace(const std::string& line) { log_.trace(line); }

    dictation::Dictation& d_;
    const dictation::DictationState& state_;
    const dictation::MainView& view_;
    dictation::PedalHits& hits_;
    engine::AudioEditor& AudioEditor1;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    dictation::PeerNotices& peer_;
    const ButtonMessages& messages_;
    LetterActions& letters_;

    std::array<bool, 8> BUTHit_{};
};

}  // namespace ovd::devices
