// The desk unit's eight buttons: each carries an action of the button table,
// or a message for the peer when the buttons are set to send messages.

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "devices/switch_model.h"
#include "platform/files.h"

namespace ovd::devices {

namespace {

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

void SwitchModel::Switch1TO8ON(const std::string& action, int buttonNumber) {
    if (buttonNumber >= 1 && buttonNumber <= kButtons) {
        BUTHit_[static_cast<std::size_t>(buttonNumber - 1)] = true;
    }
    if (!settings().QDUDisconnected) {
        d_.showStatus("Last Button Pressed on QDU Unit was " + std::to_string(buttonNumber) +
                      " : " + buttonDisplayName(action));
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
    const dictation::TransportBar& bar = view_.transportBar;
    if (action == "Rewind") {
        if (!bar.Prev) return;
        hits_.HandSetHitNotHit = true;
        d_.goToBeginning();
    } else if (action == "FastForward") {
        if (!bar.Next) return;
        hits_.HandSetHitNotHit = true;
        d_.goToEnd();
    } else if (action == "EOL") {
        // The end of an insert is its own Stop; a letter never ends in the middle of one.
        if (state_.DoingInsertUpdate) return;
        hits_.HandSetHitNotHit = true;
        SwitchCommand("EOL");
    } else if (action == "New") {
        d_.newLetter();
    } else if (action == "Open") {
        d_.openLetter();
    } else if (action == "Close") {
        d_.closeFile();
    } else if (action == "Exit") {
        letters_.exitProgram();
    } else if (action == "AddBeg") {
        d_.showSwitchPosition(dictation::kSwitchDictate);
        d_.addToBeginning();
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
    d_.closeFile();
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
        d_.rememberRecentStep(before);
        return;
    }
    d_.rememberRecentStep(wanted);
    d_.openRecentFile(entries[static_cast<std::size_t>(wanted)]);
}

void SwitchModel::eraseFile() {
    if (state_.Filename.empty()) return;
    const std::string name = state_.Filename;
    stopAndClose();
    if (!platform::fileExists(name)) return;
    // A slip of the finger must lose nothing: the deleted letter goes to BACK,
    // where Scan/Convert can bring it back, rather than out of existence.
    const std::string kept = keepInBackFolder(name);
    if (kept.empty()) {
        trace("File Delete refused: " + name + " could not be kept in BACK");
        return;
    }
    trace("File Deleted from the Desk Unit: " + name + " (kept as " + kept + ")");
}

std::string SwitchModel::keepInBackFolder(const std::string& path) {
    const std::string back = platform::joinPath(settings().CaptureFilePath.toText(), "BACK");
    // A BACK that can't be made shows as the move's failure below.
    if (!platform::folderExists(back)) (void)platform::createFolder(back);
    const std::filesystem::path from(path);
    // An older letter of the same name in BACK stays: this one takes the next free name.
    std::filesystem::path to = std::filesystem::path(back) / from.filename();
    for (int n = 2; std::filesystem::exists(to); ++n) {
        to = std::filesystem::path(back) /
             (from.stem().string() + " (" + std::to_string(n) + ")" + from.extension().string());
    }
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (!error) return to.string();
    // Another disk: copy, and the letter goes only once the copy is whole.
    if (const platform::Result<void> copied = platform::copyFileOver(path, to.string()); !copied) {
        trace("Copy to BACK failed: " + copied.error());
        std::filesystem::remove(to, error);
        return {};
    }
    if (std::remove(path.c_str()) != 0) trace("File Delete failed: " + path);
    return to.string();
}

void SwitchModel::sendToDestination(int destination) {
    const settings::SettingsRecord& s = settings();
    const std::array<bool, 3> active = {s.AutoSend1, s.AutoSend2, s.AutoSend3};
    const std::array<const std::string*, 3> folders = {&s.SendToOne, &s.SendToTwo, &s.SendToThree};
    const auto index = static_cast<std::size_t>(destination - 1);
    const std::string& folder = *folders.at(index);
    const std::string word = kDestinationWords.at(index);
    const std::string target = platform::joinPath(folder, platform::withoutFolder(state_.Filename));
    const std::string notTried = "Destination " + folder + " Error: Not Sent";

    if (!active.at(index)) {
        d_.showStatus("Auto Send Destination " + word + " has not been activated");
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
        d_.showStatus("Auto Send " + kind + " has not been activated");
    } else if ((email ? s.AutoEmailName : s.AutoFTPName).empty()) {
        d_.showStatus("Auto Send " + kind + " Address is blank");
    } else if (state_.Filename.empty()) {
        d_.showStatus("There is not a file to Auto Send.");
    } else {
        const std::string path = state_.Filename;
        stopAndClose();
        letters_.stageForSending(staging, path);
        d_.newLetter();
        return;
    }
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
    d_.showStatus(kPeerConnectionError);
    trace("  MSG NOT SENT  ");
    trace(" * TCP CONNECTION ERROR* ");
}

}  // namespace ovd::devices
