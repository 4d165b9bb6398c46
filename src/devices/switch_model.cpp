#include "devices/switch_model.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/files.h"

namespace ovd::devices {

namespace {

using dictation::kSwitchDictate;
using dictation::kSwitchListen;
using dictation::kSwitchStepBack;
using dictation::kSwitchStop;

constexpr int kButtons = 8;

// Buttons that are nothing but a switch command.
struct CommandButton {
    std::string_view action;
    const char* command;
};
constexpr std::array<CommandButton, 9> kCommandButtons = {{
    {"Play", "LISTEN"},
    {"Pause", "STOP"},
    {"StepBack", "STEPBACK"},
    {"StepForward", "STEPFOWARD"},
    {"Stop", "STOP"},
    {"Record", "Record"},
    // No branch of the switch takes this word: the button only changes the
    // "Last Button Pressed" line, as it always has.
    {"3Seconds", "3Seconds"},
    {"Overwrite", "OVR"},
    {"Insert", "Ins"},
}};

constexpr std::array<const char*, 3> kDestinationWords = {"One", "Two", "Three"};

// "MSG1".."MSG20": the number of the Button.cfg message; anything else nothing.
std::optional<std::size_t> messageNumber(std::string_view action) {
    constexpr std::string_view prefix = "MSG";
    if (action.substr(0, prefix.size()) != prefix) return std::nullopt;
    const std::string_view digits = action.substr(prefix.size());
    std::size_t n = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    if (n < 1 || n > kButtonMessages) return std::nullopt;
    return n;
}

std::string fileNameOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

}  // namespace

SendWording sendActionWording(int destination, const std::string& folder,
                              const std::string& target) {
    const std::string word = kDestinationWords.at(static_cast<std::size_t>(destination - 1));
    // Destination one's question names Two; the unit has always asked it so.
    const std::string asked = destination == 1 ? "Two" : std::to_string(destination);
    return {"File has been sending to Destination " + asked +
                " for 10 Seconds. Would you like to keep trying to send?",
            "File may have not been sent to Destination " + word,
            "Destination " + folder + "  File not in deestination -Bypassing step: " + target,
            "Destination " + folder + ": File not in deestination"};
}

SwitchModel::SwitchModel(SwitchModelParts parts)
    : d_(parts.dictation),
      state_(parts.dictation.state),
      view_(parts.dictation.view),
      hits_(parts.dictation.hits),
      AudioEditor1(parts.AudioEditor1),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      peer_(parts.peer),
      messages_(parts.messages),
      letters_(parts.letters) {
    state_.FirstSwitchPosition = kFirstTime;
}

// ---- The switch ----

void SwitchModel::SwitchCommand(const std::string& command) {
    state_.RememberLastSwitchLabel = view_.Lbl4Pos;
    if (command == "Trigger") {
        // An empty hook: the action stores the word and does nothing with it.
        if (!state_.PausedRecording) SwitchAction("Trigger");
    } else if (command == "STEPBACK") {
        stepBack();
    } else if (command == "LISTEN") {
        listen();
    } else if (command == "STOP") {
        stop();
    } else if (command == "Record" || command == "RecordInsOVR") {
        // A take already running: leave at once, and the program does not close now.
        if (!record(command == "Record")) return;
    } else if (command == "STEPFOWARD") {
        stepForward();
    } else if (command == "Ins" || command == "OVR") {
        arm(command == "OVR");
    } else if (command == "EOL") {
        endOfLetterCommand();
    }
    // An exit asked for at the end of a letter waits for the command in hand.
    if (letters_.exitRequested()) letters_.startTimClose();
}

void SwitchModel::pushSwitchPosition(const std::string& status) {
    if (status == state_.FirstSwitchPosition) return;
    state_.FourthSwitchPosition = std::move(state_.ThirdSwitchPosition);
    state_.ThirdSwitchPosition = std::move(state_.SecondSwitchPosition);
    state_.SecondSwitchPosition = std::move(state_.FirstSwitchPosition);
    state_.FirstSwitchPosition = status;
}

void SwitchModel::stepBack() {
    if (state_.Recordingstatus) {
        d_.CaseStop();
        d_.CaseEnd();
    }
    view_.Lbl4Pos = kSwitchStepBack;
    view_.lblMode.clear();
    state_.HitOnce = false;
    state_.HitTwice = false;
    shown();
    pushSwitchPosition(kSwitchStepBack);
    SwitchAction("STEPBACK");
    d_.state.StepBackRequest = false;
}

void SwitchModel::listen() {
    if (state_.Recordingstatus) {
        d_.CaseStop();
        d_.CaseEnd();
    }
    state_.HitOnce = false;
    state_.HitTwice = false;
    view_.lblMode.clear();
    shown();
    if (state_.FirstSwitchPosition == kFirstTime || state_.Recordingstatus || !state_.flgfileOpen1)
        return;

    const bool alreadyListening = state_.FirstSwitchPosition == kSwitchListen;
    const bool atTheEnd = state_.iCurSecond == state_.iTotalSecFile;
    if (state_.SecondSwitchPosition == kSteppedForward && alreadyListening) {
        // Stepped forward while listening: at the end, the file is left at its end.
        if (atTheEnd) {
            if (!view_.MMControl1.Record) d_.CaseEnd();
            return;
        }
    } else if (alreadyListening) {
        if (!atTheEnd) return;
        // Listened to the end: the cursor waits at the end for the next take. The
        // record buttons stay as they are.
        AudioEditor1.Stop();
        AudioEditor1.setCursorPosition(AudioEditor1.Length());
        return;
    }

    view_.Lbl4Pos = kSwitchListen;
    shown();
    if (state_.SecondSwitchPosition == kLast3Secs || alreadyListening) return;
    pushSwitchPosition(kSwitchListen);

    if (state_.PausedRecording) {
        // Stopped during playback: listening goes on from where it paused.
        state_.JustOpened = true;
        state_.PausedRecording = false;
        rereadPosition();
        state_.JustOpened = false;
        d_.MMControl1_PlayClick();
        return;
    }
    state_.PausedRecording = false;

    // Coming from dictate, directly or through stop, replays the last three
    // seconds first; from anywhere else listening simply goes on.
    const std::string& second = state_.SecondSwitchPosition;
    if (second == kSwitchDictate ||
        (second == kSwitchStop && state_.ThirdSwitchPosition == kSwitchDictate)) {
        SwitchAction(kLast3Secs);
    } else if (second != kLast3Secs) {
        if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Playing)) {
            rereadPosition();
            SwitchAction("LISTEN");
        }
    }
}

void SwitchModel::stop() {
    view_.Lbl4Pos = kSwitchStop;
    // Stopping an insert or an overwrite forgets the position the take began
    // from, so the next listen does not take it for a dictation.
    if (state_.DoingInsertUpdate || state_.OverWriteFile) {
        state_.PausedRecording = false;
        state_.FirstSwitchPosition.clear();
    }
    state_.BackClickKeyFirstTime = false;
    if (state_.FirstSwitchPosition != kSwitchStop) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        view_.lblMode.clear();
        pushSwitchPosition(kSwitchStop);
    }
    shown();
    if (state_.PausedRecording) return;
    // The first position is always the stop text by now, so this never holds;
    // the switch has always asked it and it stays.
    if (state_.FourthSwitchPosition == kLast3Secs && state_.ThirdSwitchPosition == kSwitchListen &&
        state_.SecondSwitchPosition == kSwitchStop &&
        state_.FirstSwitchPosition == kSwitchStepBack) {
        return;
    }
    SwitchAction("STOP");
}

bool SwitchModel::record(bool plainRecord) {
    if (state_.Recordingstatus) return false;
    if (state_.FirstSwitchPosition != kSwitchStop) state_.FirstSwitchPosition = kSwitchStop;
    view_.lblMode.clear();
    view_.Lbl4Pos = kSwitchDictate;
    shown();
    pushSwitchPosition(kSwitchDictate);

    const settings::SettingsRecord& s = settings();
    if (plainRecord) {
        // With the automatic modes, the record command inserts or overwrites
        // wherever the buttons for it are on.
        if (view_.cmdOVR && s.AutoOverwrite) state_.HitTwice = true;
        if (state_.HitTwice) {
            state_.HitOnce = false;
            state_.HitTwice = false;
            HandSetSwitchs3("OVERWRITE");
        }
        if (view_.Command2 && s.AutoInsert) state_.HitOnce = true;
        if (state_.HitOnce) {
            state_.HitOnce = false;
            state_.HitTwice = false;
            HandSetSwitchs3("INSERT");
            return true;
        }
        if (!state_.Recordingstatus) {
            if (!state_.DoingInsertUpdate) d_.CaseEnd();
            state_.PausedRecording = false;
            SwitchAction("DICTATE");
        }
        return true;
    }
    // The armed mode decides.
    if (state_.HitTwice) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        HandSetSwitchs3("OVERWRITE");
    }
    if (state_.HitOnce) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        HandSetSwitchs3("INSERT");
    }
    return true;
}

void SwitchModel::stepForward() {
    if (state_.Recordingstatus) {
        d_.CaseStop();
        d_.CaseEnd();
    }
    state_.HitOnce = false;
    state_.HitTwice = false;
    view_.lblMode.clear();
    shown();
    d_.MMControl1_StepClick();
}

void SwitchModel::arm(bool overwrite) {
    // Arming needs both buttons: either one alone means the position or the
    // file allows no take in the middle.
    if (!view_.Command2 || !view_.cmdOVR) {
        hits_.HandSetHitNotHit = false;
        return;
    }
    state_.HitOnce = true;
    state_.HitTwice = overwrite;
    view_.lblMode = overwrite ? "Overwrite Mode" : "Insert Mode";
    d_.PlayPrompt("beep2.wav");
    view_.Lbl4Pos = kSwitchDictate;
    shown();
    if (overwrite) {
        d_.cmdOVR_Click();
    } else {
        d_.Command2_Click();
    }
}

void SwitchModel::endOfLetterCommand() {
    if (!settings().VoicePrompts) letters_.beep();
    // Refused without a word during a take: the hot key stops first.
    if (state_.Recordingstatus) return;
    state_.FirstSwitchPosition = kSwitchStop;
    d_.CaseStop();
    // After a finished letter the command only stops the transport.
    if (!state_.EOLHAPPENED) letters_.startEndOfLetter();
}

void SwitchModel::SwitchAction(const std::string& word) {
    state_.CurrentButtonSelected = word;
    if (state_.CheckingKey || word == "Trigger") return;
    const dictation::TransportBar& bar = view_.MMControl1;
    const bool scratchTake =
        state_.DoingAppending || state_.DoingInsertUpdate || state_.OverWriteFile;
    if (word == "STEPBACK") {
        if (!bar.Back) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        state_.StatusMessage.clear();
        d_.state.StepBackRequest = true;
        d_.StepBackward();
        // Playing starts where the step left the cursor: "Backs up N seconds/Listen".
        d_.CasePlay("StepBackwardKey");
    } else if (word == "LISTEN") {
        if (scratchTake || !engineIdle()) return;
        if (AudioEditor1.CursorPosition() >= AudioEditor1.Length()) d_.CaseBeginning();
        if (bar.Play) d_.MMControl1_PlayClick();
    } else if (word == "STOP") {
        // The stop that ends a step back only ends the step; playing goes on.
        if (!d_.state.StepBackRequest) {
            if (bar.Stop) StopClick();
        } else {
            d_.state.StepBackRequest = false;
        }
        UpdateEOLButton();
    } else if (word == "DICTATE") {
        if (bar.Record) d_.MMControl1_RecordClick();
    } else if (word == kLast3Secs) {
        if (!scratchTake && engineIdle()) d_.Command3_Click();
    }
}

void SwitchModel::HandSetSwitchs3(const std::string& word) {
    if (word == "EOL") {
        letters_.endOfLetter();
        return;
    }
    if (state_.CheckingKey) return;
    state_.FileKilled = false;
    const dictation::TransportBar& bar = view_.MMControl1;
    if (word == "INSERT") {
        if (!view_.Command2) return;
        if (view_.Lbl4Pos != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.Command2_Click();
    } else if (word == "OVERWRITE") {
        if (!view_.cmdOVR) {
            hits_.HandSetHitNotHit = false;
            state_.HitOnce = false;
            state_.HitTwice = false;
            return;
        }
        if (view_.Lbl4Pos != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.cmdOVR_Click();
    } else if (word == "GOTOEND") {
        if (view_.Lbl4Pos != kSwitchListen) askToMoveSwitch(kMoveSwitchToListen, "LISTEN");
        if (bar.Next) d_.MMControl1_NextClick();
    } else if (word == "STEPFOWARD") {
        if (!bar.Step) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        if (view_.Lbl4Pos != kSwitchStop && view_.Lbl4Pos != kSwitchListen) {
            askToMoveSwitch(kMoveSwitchToListenOrStop, kSteppedForward);
        }
        d_.CaseStepForward();
    }
}

void SwitchModel::askToMoveSwitch(const char* message, const char* waitingFor) {
    state_.StatusMessage = message;
    state_.WAITINGFORButtonSelected = waitingFor;
    state_.StatusMessage.clear();
}

void SwitchModel::UpdateEOLButton() {
    view_.cmdEOL = dictation::cmdEOLAfter(view_.MMControl1, state_.RecordedOnce, view_.cmdEOL);
    shown();
}

void SwitchModel::rereadPosition() {
    state_.iCurSecond = d_.secondsOf(AudioEditor1.CursorPosition());
}

bool SwitchModel::engineIdle() const {
    // A paused playback is as still as a stopped file: either may start playing.
    const int engineState = AudioEditor1.State();
    return engineState == static_cast<int>(engine::EditorState::Stopped) ||
           engineState == static_cast<int>(engine::EditorState::Paused);
}

void SwitchModel::StopClick() { d_.MMControl1_StopClick(); }
void SwitchModel::CaseStop() { d_.CaseStop(); }
void SwitchModel::CaseEnd() { d_.CaseEnd(); }

void SwitchModel::shown() {
    ++view_.revision;
    if (d_.onViewChanged) d_.onViewChanged();
}

// ---- The desk unit's buttons ----

void SwitchModel::Switch1TO8ON(const std::string& action, int buttonNumber) {
    if (buttonNumber >= 1 && buttonNumber <= kButtons) {
        BUTHit_[static_cast<std::size_t>(buttonNumber - 1)] = true;
    }
    if (!settings().QDUDisconnected) {
        view_.Label40 = "Last Button Pressed on QDU Unit was " + std::to_string(buttonNumber) +
                        " : " + buttonDisplayName(action);
        shown();
    }
    if (state_.CheckingKey && action != "ToggleEXTINTMic" && action != "Stop") return;
    if (settings().TCPButtonScreen) {
        sendButtonMessage(action, buttonNumber);
    } else {
        runButtonAction(action, buttonNumber);
    }
}

void SwitchModel::buttonReleased(int buttonNumber) {
    if (buttonNumber >= 1 && buttonNumber <= kButtons) {
        BUTHit_[static_cast<std::size_t>(buttonNumber - 1)] = false;
    }
}

bool SwitchModel::BUTHit(int buttonNumber) const {
    return buttonNumber >= 1 && buttonNumber <= kButtons &&
           BUTHit_[static_cast<std::size_t>(buttonNumber - 1)];
}

void SwitchModel::runButtonAction(const std::string& action, int buttonNumber) {
    for (const auto& [name, command] : kCommandButtons) {
        if (action != name) continue;
        hits_.HandSetHitNotHit = true;
        SwitchCommand(command);
        // A step back lets go of its button here; every other button waits for
        // the unit to report it up.
        if (name == "StepBack") buttonReleased(buttonNumber);
        return;
    }
    const dictation::TransportBar& bar = view_.MMControl1;
    if (action == "Rewind") {
        if (!bar.Prev) return;
        hits_.HandSetHitNotHit = true;
        d_.MMControl1_PrevClick();
    } else if (action == "FastForward") {
        if (!bar.Next) return;
        hits_.HandSetHitNotHit = true;
        d_.MMControl1_NextClick();
    } else if (action == "EOL") {
        // The end of an insert is its own Stop; a letter never ends in the middle of one.
        if (state_.DoingInsertUpdate) return;
        hits_.HandSetHitNotHit = true;
        SwitchCommand("EOL");
    } else if (action == "New") {
        d_.Image2_Click();
    } else if (action == "Open") {
        d_.Image3_Click();
    } else if (action == "Close") {
        d_.Image10_Click();
    } else if (action == "Exit") {
        letters_.exitProgram();
    } else if (action == "AddBeg") {
        view_.Lbl4Pos = kSwitchDictate;
        shown();
        d_.Command1_Click();
    } else if (action == "RenameFile") {
        renameFile();
    } else if (action == "Previous") {
        stepThroughRecentFiles(+1);
    } else if (action == "Next") {
        stepThroughRecentFiles(-1);
    } else if (action == "SendToOne") {
        sendToDestination(1);
    } else if (action == "SendToTwo") {
        sendToDestination(2);
    } else if (action == "SendToThree") {
        sendToDestination(3);
    } else if (action == "EraseFile") {
        eraseFile();
    } else if (action == "SENDEMAIL") {
        stageForSending(Staging::Email);
    } else if (action == "SENDFTP") {
        stageForSending(Staging::Ftp);
    }
    // "ToggleMic", "ToggleEXTINTMic", "AudioSRC" and the message buttons do
    // nothing on the standard set.
}

void SwitchModel::stopAndClose() {
    StopClick();
    d_.Image10_Click();
}

void SwitchModel::renameFile() {
    const std::string old = state_.Filename;
    stopAndClose();
    const auto answer = prompts_.input({kRenamePrompt, kRenameTitle, {}});
    if (!answer || answer->empty() || old.empty()) return;
    // The new name stays in the file's folder; without an extension of its own
    // the file keeps its format's.
    const std::filesystem::path from(old);
    std::filesystem::path to = from.parent_path() / std::filesystem::path(*answer).filename();
    if (!to.has_extension()) to += from.extension();
    std::error_code error;
    if (std::filesystem::exists(to, error)) {
        // Renaming over another letter would lose it.
        trace("File Rename refused: " + to.string() + " already exists");
        return;
    }
    std::filesystem::rename(from, to, error);
    trace(error ? "File Rename failed: " + old + " to " + to.string() + ": " + error.message()
                : "File Renamed: " + old + " to " + to.string());
}

void SwitchModel::stepThroughRecentFiles(int step) {
    // Closing resets the dictation's state, this counter with it: the unit's
    // place in the list is carried over the close.
    const int before = state_.PreviousNextFile;
    stopAndClose();
    const int wanted = std::max(before + step, 0);
    const std::vector<std::string> entries = d_.recent.DisplayMRU();
    if (wanted >= static_cast<int>(entries.size())) {
        state_.PreviousNextFile = before;
        return;
    }
    state_.PreviousNextFile = wanted;
    d_.OpenMyList(entries[static_cast<std::size_t>(wanted)]);
}

void SwitchModel::eraseFile() {
    if (state_.Filename.empty()) return;
    const std::string name = state_.Filename;
    stopAndClose();
    if (std::remove(name.c_str()) == 0) trace("File Deleted from the Desk Unit: " + name);
}

void SwitchModel::sendToDestination(int destination) {
    const settings::SettingsRecord& s = settings();
    const std::array<bool, 3> active = {s.AutoSend1, s.AutoSend2, s.AutoSend3};
    const std::array<const std::string*, 3> folders = {&s.SendToOne, &s.SendToTwo, &s.SendToThree};
    const auto index = static_cast<std::size_t>(destination - 1);
    const std::string& folder = *folders.at(index);
    const std::string word = kDestinationWords.at(index);
    const std::string target = platform::joinPath(folder, fileNameOf(state_.Filename));
    const std::string notTried = "Destination " + folder + " Error: Not Sent";

    if (!active.at(index)) {
        view_.Label40 = "Auto Send Destination " + word + " has not been activated";
        shown();
        // Destination one is named by its number, the others by their folder.
        trace((destination == 1 ? std::string("Auto Send One") : "Auto Send " + folder) +
              " has not been activated. -Bypassing step: " + target);
        letters_.destinationNotTried(destination, notTried);
        return;
    }
    if (folder.empty()) {
        trace("Destination " + word + " has not been defined-Bypassing step");
        letters_.destinationNotTried(destination, notTried);
        return;
    }
    if (!platform::folderExists(folder)) {
        trace("Destination " + folder +
              " Does NOT Exist or NOT Available-Bypassing step: " + target);
        letters_.destinationNotTried(destination, notTried);
        return;
    }
    const std::string path = state_.Filename;
    stopAndClose();
    letters_.sendToDestination(destination, path, sendActionWording(destination, folder, target));
}

void SwitchModel::stageForSending(Staging staging) {
    const settings::SettingsRecord& s = settings();
    const bool email = staging == Staging::Email;
    const std::string kind = email ? "Email" : "FTP";
    if (!(email ? s.AutoEmail : s.AutoFTP)) {
        view_.Label40 = "Auto Send " + kind + " has not been activated";
    } else if ((email ? s.AutoEmailName : s.AutoFTPName).empty()) {
        view_.Label40 = "Auto Send " + kind + " Address is blank";
    } else if (state_.Filename.empty()) {
        view_.Label40 = "There is not a file to Auto Send.";
    } else {
        const std::string path = state_.Filename;
        stopAndClose();
        letters_.stageForSending(staging, path);
        d_.Image2_Click();
        return;
    }
    shown();
}

void SwitchModel::sendButtonMessage(const std::string& action, int buttonNumber) {
    const auto n = messageNumber(action);
    if (!n) return;
    std::string line = buttonMessageLine(buttonNumber, state_.Filename, messages_.texts[*n - 1]);
    // The link ends the line itself.
    if (line.size() >= 2 && line.compare(line.size() - 2, 2, "\r\n") == 0)
        line.resize(line.size() - 2);
    trace("Sending TCP MSG " + line);
    // A message the link could not deliver is kept by the link for its
    // reconnection; here it only shows.
    if (peer_.linkOn() && peer_.send(line, " -BTN")) {
        trace(" * TCP MSG SuccessfulLY SENT* ");
        return;
    }
    view_.Label40 = kPeerConnectionError;
    shown();
    trace("  MSG NOT SENT  ");
    trace(" * TCP CONNECTION ERROR* ");
}

}  // namespace ovd::devices
