// The ways out of the station and the one unload they all end in.

#include "conversion/letter_notes.h"
#include "dictation/hand_off.h"
#include "platform/files.h"
#include "station/station.h"

namespace ovd::station {

void Station::exitFromMenu() {
    parts_.log.trace(" User selected File Menu Exit");
    // Unanswered, the link keeps the message for a later reconnection.
    if (peerLink_.linkOn()) {
        parts_.log.timlog.setEnabled(true);
        peerLink_.send({"UserExit_", " -69"});
    }
    parts_.config.WriteConfig();
    KillAllPedals();
    unloadForm();
}

void Station::TCPSaysExit() {
    parts_.config.WriteConfig();
    KillAllPedals();
    unloadForm();
}

void Station::TCPSaysClose() {
    parts_.log.trace("TCPSaysClose");
    parts_.config.WriteConfig();
    dictation::Dictation& d = *dictation_;
    d.closeForPeer();
}

void Station::KillAllPedals() { handsFree_->stop(); }

void Station::unloadForm() {
    // A routine still waiting further down the stack (a save without room, a
    // letter waiting for its file) sees the end coming and lets go.
    dictation_->beginShutdown();
    if (onExit) onExit();
}

void Station::Form_Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    // An end before the recovery at start began: the takes stay in Temp for the next
    // start, and the rest of the load never comes.
    loadOnAfterRecovery_.setEnabled(false);
    if (scanConvert_) {
        scanConvert_->recoveryDelay.setEnabled(false);
        scanConvert_->onRecovered = nullptr;
    }
    dictation::Dictation& d = *dictation_;
    d.stopForExit();
    closeSecondEditor();
    peerLink_.stop();
    autoSendMenu_.tmchkAutoSend.setEnabled(false);
    companion_.stop();
    if (d.state().FileChanged) d.closeFile();
    closeWorkFiles();
    KillAllPedals();
    settings::SettingsRecord& record = parts_.config.record;
    const std::string temp = platform::joinPath(record.CaptureFilePath.toText(), "Temp");
    // Takes that wait in Temp (a crash's, or one that could not be saved) keep the
    // crash state, so that the next start recovers them rather than letting them be.
    const bool takesWait = record.RecoveryModule && conversion::anyWorkFileIn(temp);
    record.gNormalShutDown = !takesWait;
    parts_.config.WriteConfig();
    dictation::deleteHandOff(parts_.dataFolder);
    parts_.log.trace(takesWait ? "Station ended in order; work files wait in " + temp +
                                     " for the recovery at the next start"
                               : std::string("Station ended in order"));
    parts_.log.SaveEventLog();
}

void Station::closeWorkFiles() {
    dictation::Dictation& d = *dictation_;
    d.TempFileNameFileLength();
    const bool unsavedTake = (d.state().FileSaveError || d.takeWaitsInTemp()) &&
                             d.state().NewTempFileLength &&
                             *d.state().NewTempFileLength >= dictation::kMinimumRecordedBytes;
    if (unsavedTake) {
        // The take could not be saved: its work file stays for the recovery.
        parts_.log.trace("The take of " + d.state().Filename + " was not saved; it stays in " +
                         d.state().NewTempFile + " for the recovery");
        return;
    }
    // Saved or never recorded on: an orderly end leaves no work file behind to be
    // recovered as a second copy of the letter.
    AudioEditor1.Close();
    AudioEditor21.Close();
    conversion::pruneLetterNotes(
        platform::joinPath(parts_.config.record.CaptureFilePath.toText(), "Temp"));
}

}  // namespace ovd::station
