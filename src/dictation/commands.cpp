// The commands the station's load and end, the switch model, the pedals and the
// end of letter give the dictation. Each one is the small change of state or
// screen the caller used to make by hand; made here, a change of the screen is
// always announced.

#include "dictation/dictation.h"

namespace ovd::dictation {

std::vector<const platform::Timer*> Dictation::timers() const {
    return {&timCurPos, &timRecord, &timLight,  &timSave,          &timLastThreeSecondsCon,
            &timsync,   &Reader,    &tmCommand, &handOffLookTimer, &handOffWaitTimer};
}

// ---- The station's load and end ----

void Dictation::beginLoad(const std::string& commandFileName) {
    handOffLookTimer.setInterval(50);
    handOffWaitTimer.setEnabled(false);
    state_.CommandFileName = commandFileName;
    if (!state_.CommandFileName.empty()) {
        trace("Received Command line File Name = " + state_.CommandFileName);
        state_.commandLine.CommandLineLaunched = true;
    }
    state_.OnLoad = true;
}

void Dictation::loadAbandoned() { state_.OnLoad = false; }

void Dictation::beforePedalsStart() {
    screen().mnuScanConvertEnabled = true;
    state_.OnLoad = true;
}

void Dictation::showDeskUnitMissing() {
    screen().statusLine = kDeskUnitMissing;
    tmCommand.setEnabled(true);
}

void Dictation::finishLoad(bool handsFreeEdition) {
    screen().endOfLetterEnabled = false;
    screen().caption = applicationTitle(handsFreeEdition);
    state_.OnLoad = false;
}

void Dictation::beginShutdown() { state_.Imclosing = true; }

void Dictation::stopForExit() {
    state_.Imclosing = true;
    tmCommand.setEnabled(false);
    handOffLookTimer.setEnabled(false);
    handOffWaitTimer.setEnabled(false);
}

void Dictation::closeForPeer() {
    state_.TCPClose = true;
    closeFile();
    state_.TCPClose = false;
    lookForHandOff();
}

void Dictation::lookForHandOff() { handOffLookTimer.setEnabled(true); }

void Dictation::holdTimers() {
    if (timersHeld_) return;
    timersHeld_ = true;
    platform::Timer* held[] = {&timCurPos, &timRecord, &timLight, &timSave,
                               &timLastThreeSecondsCon};
    for (std::size_t i = 0; i < heldTimersWere_.size(); ++i) {
        heldTimersWere_[i] = held[i]->Enabled();
        held[i]->setEnabled(false);
    }
}

void Dictation::releaseTimers() {
    if (!timersHeld_) return;
    timersHeld_ = false;
    platform::Timer* held[] = {&timCurPos, &timRecord, &timLight, &timSave,
                               &timLastThreeSecondsCon};
    for (std::size_t i = 0; i < heldTimersWere_.size(); ++i)
        held[i]->setEnabled(heldTimersWere_[i]);
}

// ---- The desk unit's switch and the pedals ----

void Dictation::pushSwitchPosition(const std::string& status) {
    if (status == state_.FirstSwitchPosition) return;
    state_.FourthSwitchPosition = std::move(state_.ThirdSwitchPosition);
    state_.ThirdSwitchPosition = std::move(state_.SecondSwitchPosition);
    state_.SecondSwitchPosition = std::move(state_.FirstSwitchPosition);
    state_.FirstSwitchPosition = status;
}

void Dictation::replaceNewestSwitchPosition(const std::string& status) {
    state_.FirstSwitchPosition = status;
}

void Dictation::showSwitchPosition(const std::string& label) { screen().switchPosition = label; }

void Dictation::rememberSwitchLabel() { state_.RememberLastSwitchLabel = view().switchPosition; }

void Dictation::showMode(const std::string& text) { screen().lblMode = text; }

void Dictation::armInsert() { state_.HitOnce = true; }

void Dictation::armOverwrite() { state_.HitTwice = true; }

void Dictation::disarmInsertOverwrite() {
    state_.HitOnce = false;
    state_.HitTwice = false;
}

void Dictation::setPausedRecording(bool paused) { state_.PausedRecording = paused; }

void Dictation::setJustOpened(bool justOpened) { state_.JustOpened = justOpened; }

void Dictation::setStepBackUnderWay(bool underWay) { state_.StepBackRequest = underWay; }

void Dictation::forgetFirstBackClick() { state_.BackClickKeyFirstTime = false; }

void Dictation::noteSwitchWord(const std::string& word) { state_.CurrentButtonSelected = word; }

void Dictation::askToMoveSwitch(const std::string& message, const std::string& waitingFor) {
    state_.StatusMessage = message;
    state_.WAITINGFORButtonSelected = waitingFor;
    state_.StatusMessage.clear();
}

void Dictation::withdrawSwitchRequest() { state_.StatusMessage.clear(); }

void Dictation::forgetDiscardedFile() { state_.FileKilled = false; }

void Dictation::rereadCursorSecond() {
    state_.iCurSecond = secondsOf(AudioEditor1.CursorPosition());
}

void Dictation::refreshEndOfLetterButton() {
    const bool on =
        cmdEOLAfter(view().transportBar, state_.RecordedOnce, view().endOfLetterEnabled);
    if (on != view().endOfLetterEnabled) screen().endOfLetterEnabled = on;
}

void Dictation::rememberRecentStep(int step) { state_.PreviousNextFile = step; }

// ---- What the end of letter and the devices show and ask ----

void Dictation::showStatus(const std::string& text) { screen().statusLine = text; }

void Dictation::showFileLabel(const std::string& text) { screen().lblReady = text; }

void Dictation::showTitlePicture(const std::string& path) { screen().titlePicture = path; }

void Dictation::saveOnRequest() {
    state_.SaveRequested = true;
    SaveFile();
}

void Dictation::clearSaveError() { state_.FileSaveError = false; }

void Dictation::forgetCommandFileName() { state_.CommandFileName.clear(); }

void Dictation::markLetterFinished() { state_.EOLHAPPENED = true; }

}  // namespace ovd::dictation
