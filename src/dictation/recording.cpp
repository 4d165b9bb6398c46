// The running half of a dictation: the timers that keep the screen in step
// with the engine, the checks made during a take, stepping, the position
// slider and the last three seconds.

#include <cstdio>

#include "conversion/letter_notes.h"
#include "dictation/dictation.h"
#include "platform/files.h"
#include "platform/system_queries.h"

namespace ovd::dictation {

namespace {

constexpr int kStopped = static_cast<int>(engine::EditorState::Stopped);
constexpr int kPlaying = static_cast<int>(engine::EditorState::Playing);
constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);
constexpr int kPaused = static_cast<int>(engine::EditorState::Paused);
// The wait of a notice to the peer: a disk warning that stays true is repeated
// no more often.
constexpr auto kDiskWarningPace = std::chrono::seconds(2);

}  // namespace

void Dictation::timCurPos_Timer() {
    if (!Reader.Enabled()) Reader.setEnabled(true);
    state_.SaveCurrentPosition = AudioEditor1.CursorPosition();
    // The engine stops by itself when playback reaches the end; that end still
    // counts as the end of the playback below.
    const bool playedToEnd = state_.flgPlay && state_.SaveCurrentPosition >= AudioEditor1.Length();
    const int engineState = AudioEditor1.State();
    // A playback the engine ended short of the end (its device went, say).
    const bool playbackBrokenOff = engineState == kStopped && state_.flgPlay && !playedToEnd;
    // A scratch take (insert, overwrite) records while the file stands still.
    if (engineState == kStopped && !scratchTakeRuns()) {
        state_.flgPlay = false;
        state_.Recordingstatus = false;
    }
    if (!state_.Recordingstatus) {
        if (state_.JustOpened && state_.iTotalSecFile > 0) {
            screen().lblBusyVisible = false;
            screen().audioFrameVisible = true;
        }
        screen().statusPanel2 = sizeText();
    }
    if (!state_.RecordingstatusPaused && !state_.Recordingstatus) totalSecondsFromEngine();
    refreshSeconds();
    if (engineState == kRecording)
        screen().positionPercent = state_.percentrun;  // the slider stays put
    if ((state_.flgPlay || playedToEnd) && AudioEditor1.CursorPosition() >= AudioEditor1.Length()) {
        state_.flgPlay = false;
        state_.PlayedOnce = false;
        // The playback is over: the caption CaseEnd writes must say stopped, not playing.
        state_.WhichBut = "Stop";
        CaseEnd();
    } else if (playbackBrokenOff) {
        // Nothing plays any more: the caption and the bar must not say it does.
        state_.WhichBut = "Stop";
        SetParam(state_.WhichBut);
        barByPosition();
    } else if (engineState == kStopped &&
               (state_.WhichBut == "Play" || state_.WhichBut == "Continue")) {
        SetParam(state_.WhichBut);  // a playback over before the screen heard of it
    }
    screen().timeElapsed = clockText(state_.iCurSecond);
    etprocess("timCurPos_Timer");

    timRecord.setInterval(49);
    if (!state_.Recordingstatus) {
        state_.Once = false;
        timRecord.setEnabled(false);
        timLight.setEnabled(false);
        setLamps(false);
        if (!state_.RecordingstatusPaused) screen().formatOptionsEnabled = true;
        screen().lblOnAirVisible = state_.RecordingstatusPaused;
        if (state_.RecordingstatusPaused) screen().lblOnAir = "STAND BY";
        showNoTakeRunning();
    } else {
        timRecord.setEnabled(true);
        timLight.setEnabled(true);
        if (!state_.Once) {
            state_.StartTime = loop_.now();
            state_.Once = true;
        }
        screen().lblOnAirVisible = true;
    }
    if (state_.flgfileOpen1 && state_.JustOpened && !state_.Recordingstatus) showFileJustOpened();
    if (!state_.flgfileOpen1) AdjustNCTTimeDisplay();
}

void Dictation::timRecord_Timer() {
    state_.EndTime = loop_.now();
    screen().audioFrameEnabled = false;
    screen().frameSpeakerEnabled = false;
    const bool scratchTake = state_.DoingInsertUpdate || state_.OverWriteFile;
    if (!scratchTake && state_.Recordingstatus) {
        const auto take =
            std::chrono::duration_cast<std::chrono::seconds>(state_.EndTime - state_.StartTime);
        state_.iCurSecond = state_.iTotalSecFile = static_cast<std::int32_t>(take.count());
    } else if (scratchTake) {
        totalSecondsFromEngine();
        state_.iCurSecond = state_.iTotalSecFile;
    } else {
        state_.iTotalSecFile = secondsOf(AudioEditor1.Length());
    }
    screen().timeElapsed = clockText(state_.iCurSecond);
    setRecordButtons(false);
    screen().positionSliderEnabled = false;
    etprocess("timRecord_Timer");

    // The disk check: the take must keep room for three times what the work
    // files already hold, so that the save at the end still fits.
    const std::string recordings = config_.record.CaptureFilePath.toText();
    const std::uint64_t free = platform::freeDiskBytes(recordings).value_or(0);
    const std::uint64_t workBytes = platform::folderBytes(temporaryFolder());
    if (workBytes * 3 < free) {
        screen().statusLine = "Recording";
        screen().statusLineWarning = false;
        lastDiskWarning_.reset();
        changed();
        return;
    }
    screen().statusLine = "Warning -- Number of Free Bytes : " + std::to_string(free);
    screen().statusLineWarning = true;
    changed();
    // The label follows every tick; the log and the peer hear a warning that
    // stays true once per wait of the link, as if each notice still held the
    // tick for it, however short the link's own wait is set.
    const auto now = loop_.now();
    if (lastDiskWarning_ && now - *lastDiskWarning_ < kDiskWarningPace) return;
    lastDiskWarning_ = now;
    trace(state_.Filename + " Disk Full Warning during Recording");
    const std::string name = state_.Filename;
    if (config_.record.DFStopRec) closeFile();
    notifyPeer("DiskErr_" + platform::withoutFolder(name), " -68");
}

void Dictation::timLight_Timer() {
    // The lamps take turns, so the take shows from across the room.
    const bool first = !screen().onAirLamp1;
    screen().onAirLamp1 = first;
    screen().onAirLamp2 = !first;
    screen().lblOnAir = "ON AIR";
    screen().lblOnAirVisible = true;
    changed();
}

void Dictation::timSave_Timer() {
    if (!state_.JustOpened) {
        // The first take of a new file lives in the work file until its first Stop.
        Manip_Files();
        return;
    }
    AudioEditor1.setComment("OVDESK");
    addPriorityMarker(state_);
    if (auto saved = AudioEditor1.SaveAs(state_.Filename); !saved) {
        trace("Periodic save of " + state_.Filename + " failed: " + saved.error());
    }
    Manip_Files();
}

void Dictation::timsync_Timer() {
    timsync.setEnabled(false);
    // A take stopped before this tick is over: lamps or its opening sound now would
    // show a take while nothing records.
    if (!state_.Recordingstatus) return;
    timLight_Timer();
    timLight.setEnabled(true);
    if (config_.record.VoicePrompts) {
        PlayPrompt("beep2.wav");
    } else {
        // A take opens with this sound even with prompts off; the setting is not touched.
        voice_.PlayPrompt("Speak.wav", true);
    }
}

void Dictation::rotateWorkFileNames() {
    const std::string current = AudioEditor1.TempFileName();
    if (current.empty()) return;
    auto& names = state_.LastThreeNCTTmps;
    if (!names[0].empty() && names[0] != current && names[1] != current && names[2] != current) {
        std::remove(names[0].c_str());
    }
    names[0] = names[1];
    names[1] = names[2];
    names[2] = current;
    // A crash's recovery then names the take after this letter.
    conversion::noteLetterOfWorkFile(current, state_.Filename);
}

void Dictation::positionSliderPressed() {
    if (state_.Recordingstatus) return;
    state_.JustOpened = true;
    timCurPos.setEnabled(false);
}

void Dictation::positionSliderMoved(int value) {
    screen().positionPercent = value;
    state_.iCurSecond = static_cast<std::int32_t>(value / 100.0 * state_.iTotalSecFile);
    state_.Positionfromslide = state_.iCurSecond;
    etprocess("ctSlide1_Change");
}

void Dictation::positionSliderReleased(int value) {
    if (state_.Recordingstatus) return;
    state_.ManuallyMovedctSlide = true;
    const int engineState = AudioEditor1.State();
    if (state_.JustOpened && state_.flgfileOpen1) {
        AudioEditor1.setCursorPosition(static_cast<engine::SampleCount>(
            static_cast<double>(AudioEditor1.Length()) / 100.0 * value));
        if (engineState == kPlaying) (void)AudioEditor1.Play();
        if (engineState == kPaused) AudioEditor1.Pause();
    }
    if (AudioEditor1.State() == kStopped && value == 100) {
        screen().insertEnabled = false;
        screen().overwriteEnabled = false;
        AudioEditor1.setCursorPosition(AudioEditor1.Length());
    }
    timCurPos.setEnabled(true);
    changed();
}

void Dictation::stepAmountChanged(const std::string& text) {
    if (text.empty()) {
        screen().txtStepAmt = std::to_string(config_.record.StepAmt);
        changed();
        return;
    }
    int seconds = 0;
    if (std::sscanf(text.c_str(), "%d", &seconds) != 1 || seconds < 0 || seconds > 32767) return;
    screen().txtStepAmt = text;
    config_.record.StepAmt = static_cast<std::int16_t>(seconds);
    config_.WriteConfig();
}

void Dictation::StepForward() {
    state_.SecondSwitchPosition = "STEPFORWARD";
    AudioEditor1.setSelectionActive(false);  // as a step back: a step is a move, not a selection
    state_.ManuallyMovedctSlide = true;
    AudioEditor1.Stop();
    totalSecondsFromEngine();
    const double step = config_.record.StepAmt * samplesPerSecond();
    const auto target = AudioEditor1.CursorPosition() + static_cast<engine::SampleCount>(step);
    AudioEditor1.setCursorPosition(target);
    AudioEditor1.setSelectionEnd(target);
    if (view().caption.find("File is Playing") != std::string::npos) CasePlay("StepForward");
}

void Dictation::StepBackward() {
    // A step moves the position: a stretch selected before it is no longer what
    // the author points at, and a cut after the step must not take it.
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(AudioEditor1.CursorPosition());
    state_.ManuallyMovedctSlide = true;
    AudioEditor1.Stop();
    totalSecondsFromEngine();
    const double step = config_.record.StepAmt * samplesPerSecond();
    const auto target = AudioEditor1.CursorPosition() - static_cast<engine::SampleCount>(step);
    AudioEditor1.setCursorPosition(target);
    AudioEditor1.setSelectionEnd(target);
}

void Dictation::CaseThreeSeconds() {
    if (!state_.flgfileOpen1) return;
    // A take still running ends as every take does, so that nothing shows ON AIR
    // while the engine plays.
    if (state_.Recordingstatus) CaseStop();
    state_.ManuallyMovedctSlide = true;
    AudioEditor1.Stop();
    totalSecondsFromEngine();
    state_.iCurSecond = state_.iTotalSecFile;
    screen().formatOptionsEnabled = true;
    timRecord.setEnabled(false);
    timSave.setEnabled(false);
    // Under three seconds the start falls before 0; the engine takes it as it comes.
    const auto start =
        static_cast<engine::SampleCount>((state_.iTotalSecFile - 3) * samplesPerSecond());
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(0);
    AudioEditor1.setCursorPosition(start);
    AudioEditor1.setSelectionEnd(start);
    CasePlay("CaseThreeSeconds");
}

void Dictation::CaseLastThreeSecondsCon() {
    trace("File Play Last Three Seconds: " + state_.Filename);
    CaseThreeSeconds();
    CaseEnd();
}

void Dictation::LastThreeSecondsContinue() {
    if (!state_.flgfileOpen1) return;
    // The take ends as every take does (saved as a Stop saves, lamps and times
    // back to stand-by) before its last words play; stopping only the engine
    // would leave the station ON AIR with nothing recording.
    if (state_.Recordingstatus) CaseStop();
    // A second request supersedes the continuation the first one still waits for.
    timLastThreeSecondsCon.setEnabled(false);
    timSave.setEnabled(false);
    state_.flgNewToRecord = false;
    state_.flgPlay = false;
    state_.WhichBut = "Stop";
    waitTraced(1, " -54");
    // A take begun while this waited ends as every take does before the playback.
    if (state_.Recordingstatus) CaseStop();
    AudioEditor1.Stop();
    Manip_Files();
    waitTraced(1, " -55");
    if (state_.flgfileOpen1) {
        totalSecondsFromEngine();
        const auto start =
            AudioEditor1.Length() - static_cast<engine::SampleCount>(3 * samplesPerSecond());
        AudioEditor1.setSelectionActive(false);
        AudioEditor1.setCursorPosition(start);
        AudioEditor1.Stop();
        if (auto playing = AudioEditor1.Play(); !playing) trace("Play: " + playing.error());
        state_.flgPlay = true;
        // The screen shows the playback, and its Stop is there to end it.
        timCurPos.setEnabled(true);
        state_.WhichBut = "Play";
        SetParam(state_.WhichBut);
        setBar(BarAfter::CasePlayOrOpen);
        changed();
    }
    timLastThreeSecondsCon.setInterval(50);
    timLastThreeSecondsCon.setEnabled(true);
}

void Dictation::timLastThreeSeconds_Timer() {
    // A paused playback waits for the author.
    if (AudioEditor1.State() == kPaused) return;
    state_.iCurSecond = secondsOf(AudioEditor1.CursorPosition());
    if (state_.iTotalSecFile - state_.iCurSecond != 1) {
        if (!state_.flgPlay && AudioEditor1.State() != kPlaying) {
            // The author stopped the playback short of its end: nothing goes on by itself.
            timLastThreeSecondsCon.setEnabled(false);
        }
        return;
    }
    waitTraced(1, " -52");
    state_.flgPlay = false;
    state_.flgNewToRecord = true;
    AudioEditor1.setCursorPosition(AudioEditor1.Length());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    timLastThreeSecondsCon.setEnabled(false);
    if (!config_.record.Last3SecsAR) {
        // A file shorter than the wait still plays: the position timer shows its end.
        if (AudioEditor1.State() == kPlaying) {
            state_.flgPlay = true;
            return;
        }
        // The last words were heard and nothing goes on by itself: the screen
        // says the file stands still rather than playing.
        state_.WhichBut = "Stop";
        SetParam(state_.WhichBut);
        changed();
        return;
    }
    waitTraced(1, " -53");
    if (refusedWhileRecording("timLastThreeSecondsCon")) return;
    if (state_.flgPlay || !state_.flgfileOpen1) return;
    // The author heard the last words; the take goes on at the end. It starts as
    // every take does, so that lamps, times and buttons follow the engine.
    AudioEditor1.Stop();
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(AudioEditor1.Length());
    CaseRecord();
}

}  // namespace ovd::dictation
