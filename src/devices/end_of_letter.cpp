#include "devices/end_of_letter.h"

#include "platform/files.h"
#include "platform/system_queries.h"
#include "platform/text.h"

namespace ovd::devices {

EndOfLetter::EndOfLetter(dictation::Dictation& dictation, settings::ConfigFile& config,
                         settings::EventLog& log, platform::EventLoop& loop,
                         engine::PromptPlayer& voice, LetterDelivery& delivery)
    : TimClose(loop, "TimClose", 100),
      d_(dictation),
      config_(config),
      log_(log),
      loop_(loop),
      voice_(voice),
      delivery_(delivery) {
    TimClose.setOnTick([this] {
        TimClose.setEnabled(false);
        exitProgram();
    });
}

void EndOfLetter::beep() { voice_.PlayPrompt("ding.wav", true); }

void EndOfLetter::startEndOfLetter() {
    DoingEOL = false;
    endOfLetter();
    // The finished letter's mark in the window's title.
    d_.showTitlePicture(kFinishedLetterPicture);
}

void EndOfLetter::showReady() {
    const bool thin = config_.record.ScreenSize == "SuperThin";
    d_.showFileLabel(thin ? "" : dictation::kReadyAfterSave);
}

void EndOfLetter::endOfLetter() {
    const dictation::DictationState& state = d_.state();
    if (state.CheckingKey) return;
    d_.forgetDiscardedFile();
    d_.showStatus(kEOLExecuting);
    log_.trace("EOL is Executing - DoingEOL = " + platform::boolText(DoingEOL));
    if (DoingEOL) return;  // a second trigger while the letter is being finished
    d_.CaseEnd();
    if (!state.FileSaveAtStop && state.FileChanged) {
        d_.saveOnRequest();
        if (state.FileSaveError) {
            // The letter is not finished: it stays blocked until the next trigger.
            d_.clearSaveError();
            DoingEOL = true;
            return;
        }
    }
    if (d_.takeWaitsInTemp()) {
        // The Stop's own save found no room: the letter is not finished either,
        // and the open file keeps the take rather than a close sending nothing.
        d_.clearSaveError();
        DoingEOL = true;
        return;
    }
    const settings::SettingsRecord& record = config_.record;
    log_.trace(std::string("EOL has been executed.") + " Auto Send 1 = " + platform::boolText(record.AutoSend1) +
               " Auto Send 2 = " + platform::boolText(record.AutoSend2) + " Auto Send 3 = " + platform::boolText(record.AutoSend3));
    DoingEOL = true;
    d_.renameToHandedOffName("EOL");

    SaveFileNameForSending = state.Filename;
    const std::string commandFileName = state.CommandFileName;
    d_.closeFile();
    // A take too short to save leaves no letter on disk even when it counts as
    // recorded; waiting for that file would hold the station for ever, so it is
    // treated as a letter with nothing worth keeping.
    const bool nothingOnDisk =
        !SaveFileNameForSending.empty() && !platform::fileExists(SaveFileNameForSending);
    if (nothingOnDisk) log_.trace(SaveFileNameForSending + " was not saved: nothing to send");
    if (state.FileKilled || nothingOnDisk) {
        // Nothing was said worth keeping: nothing to send.
        SaveFileNameForSending.clear();
        showReady();
        if (commandFileName.empty()) {
            log_.trace(" Calling Image2_Click from HandSetSwitchs3");
            d_.newLetter();
        }
        d_.forgetCommandFileName();
        d_.forgetDiscardedFile();
    }
    if (SaveFileNameForSending.empty()) {
        DoingEOL = false;
        return;
    }
    waitForFile();
    if (!delivery_.deliver(SaveFileNameForSending)) {
        DoingEOL = false;
        return;
    }

    SaveFileNameForSending.clear();
    d_.markLetterFinished();
    d_.showStatus(dictation::kReadyAfterSave);
    showReady();
    const bool namedFromOutside = state.commandLine.DIDDOCOMMANDLINE;
    log_.trace(" DIDDOCOMMANDLINE " + platform::boolText(namedFromOutside) + " Procedure-HandSetSwitchs3");
    if (namedFromOutside) {
        // The letter was asked for from outside: the next one is too, so the station
        // waits for the next name rather than numbering a file of its own.
        d_.forgetCommandFileName();
        d_.ResetRecorderState();
        d_.lookForHandOff();
        DoingEOL = false;
        return;
    }
    log_.trace(" Calling Image2_Click from HandSetSwitchs3-1");
    if (!record.ExitAtEOL) {
        ExitRequested = false;
        d_.newLetter();
    } else {
        ExitRequested = true;
    }
    d_.forgetCommandFileName();
    DoingEOL = false;
}

void EndOfLetter::waitForFile() {
    // No time limit: the save may still hold the file, and nothing goes out half written.
    while (!SaveFileNameForSending.empty() && !platform::FileAvailable(SaveFileNameForSending)) {
        // Ending, the waits return at once: the letter waits for the next start.
        if (d_.state().Imclosing) {
            SaveFileNameForSending.clear();
            return;
        }
        const bool thin = config_.record.ScreenSize == "SuperThin";
        d_.showFileLabel(thin ? "" : delivery::kWaitingForFile);
        loop_.wait(platform::Milliseconds(100));
    }
}

void EndOfLetter::startTimClose() { TimClose.setEnabled(true); }

void EndOfLetter::exitProgram() {
    if (onExit) onExit();
}

void EndOfLetter::destinationNotTried(int destination, const std::string& notice) {
    delivery_.destinationNotTried(destination, notice);
}

void EndOfLetter::sendToDestination(int destination, const std::string& path,
                                    const SendWording& wording) {
    delivery_.sendToDestination(destination, path, wording);
    d_.showStatus(dictation::kReadyAfterSave);
    showReady();
    // A file named from outside waits for its next name; otherwise the next letter begins.
    if (!d_.state().commandLine.CommandLineLaunched) d_.newLetter();
}

void EndOfLetter::stageForSending(Staging staging, const std::string& path) {
    delivery_.stageForSending(staging, path);
}

}  // namespace ovd::devices
