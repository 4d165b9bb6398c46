// The screen side of the dictation: the caption and labels an action word
// leaves, the seconds and percent the position shows, and the state the
// transport bar and lamps are put in.

#include <cmath>
#include <cstdio>

#include "dictation/dictation.h"
#include "platform/files.h"

namespace ovd::dictation {

namespace {

// No new action: only the position and labels are refreshed.
constexpr const char* kFromTimer = "From timCurPos Timer";


}  // namespace

std::string applicationTitle(bool handsFreeEdition) {
    return handsFreeEdition ? "Orvane Voice Desk" : "Orvane Station Recorder Desk";
}

std::string clockText(std::int32_t seconds) {
    if (seconds < 0) seconds = 0;
    const std::int32_t hours = seconds / 3600;
    const std::int32_t minutes = seconds / 60 % 60;
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(hours),
                  static_cast<int>(minutes), static_cast<int>(seconds % 60));
    return text;
}

std::int32_t Dictation::secondsOf(std::int64_t samples) const {
    const int rate = AudioEditor1.SamplesPerSecond();
    if (rate <= 0) return 0;
    // Whole seconds, rounded half to even as the number conversion of the
    // display always has.
    return static_cast<std::int32_t>(
        std::nearbyint(static_cast<double>(samples) / static_cast<double>(rate)));
}

double Dictation::samplesPerSecond() const {
    if (state.iTotalSecFile <= 0) return static_cast<double>(AudioEditor1.SamplesPerSecond());
    return static_cast<double>(AudioEditor1.Length()) / state.iTotalSecFile;
}

void Dictation::totalSecondsFromEngine() {
    if (state.DoingInsertUpdate || state.OverWriteFile) {
        // The file as it will be once the take is pasted in: up to where the
        // take began, plus the take.
        const int rate21 = AudioEditor21.SamplesPerSecond();
        const std::int32_t take =
            rate21 > 0 ? static_cast<std::int32_t>(std::nearbyint(
                             static_cast<double>(AudioEditor21.Length()) / rate21))
                       : 0;
        state.iTotalSecFile = secondsOf(state.SaveCurrentPosition) + take;
    } else {
        state.iTotalSecFile = secondsOf(AudioEditor1.Length());
    }
}

void Dictation::refreshSeconds() {
    state.iCurSecond = secondsOf(AudioEditor1.CursorPosition());
    if (state.iTotalSecFile > 0) {
        const std::int64_t percent =
            static_cast<std::int64_t>(state.iCurSecond) * 100 / state.iTotalSecFile;
        state.percentrun = static_cast<std::int16_t>(std::min<std::int64_t>(percent, 100));
    } else {
        state.percentrun = 0;  // an empty file: no division
    }
    if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Recording)) {
        view.ctSlide1 = state.percentrun;
    }
}

std::string Dictation::sizeText() const {
    // What is on disk once saved, and the work file while only that holds the take.
    std::optional<std::uint64_t> bytes;
    if (!state.Filename.empty()) bytes = platform::fileSize(state.Filename);
    if (!bytes && state.flgfileOpen1) {
        const std::string work = AudioEditor1.TempFileName();
        if (!work.empty()) bytes = platform::fileSize(work);
    }
    if (!bytes) return "";
    char text[48];
    if (*bytes >= 1024 * 1024) {
        std::snprintf(text, sizeof text, "%.2f MB", static_cast<double>(*bytes) / (1024.0 * 1024.0));
    } else {
        std::snprintf(text, sizeof text, "%.1f KB", static_cast<double>(*bytes) / 1024.0);
    }
    return text;
}

void Dictation::etprocess(const std::string& /*from*/) {
    view.timeElapsed = clockText(state.iCurSecond);
    view.Label43 = sizeText();
    view.Label24 = clockText(state.iTotalSecFile - state.iCurSecond);
    changed();
}

void Dictation::AdjustNCTTimeDisplay() {
    if (!state.flgfileOpen1) {
        state.iCurSecond = 0;
        state.iTotalSecFile = 0;
        state.percentrun = 0;
        view.ctSlide1 = 0;
    } else if (!state.Recordingstatus) {
        totalSecondsFromEngine();
        refreshSeconds();
    }
    etprocess("AdjustNCTTimeDisplay");
}

void Dictation::setFileLabels(const std::string& text) {
    view.statusPanel1 = text;
    view.lblReady = text;
}

void Dictation::showFileName() {
    view.statusPanel1 = state.Filename;
    view.lblReady = platform::withoutFolder(state.Filename);
}

void Dictation::showFileJustOpened() {
    // The slider was held only while the file loaded.
    const bool sliderFree = !view.lblBusyVisible && !view.ctSlide1Enabled;
    // After a save the file label may offer to create or load a file; while the
    // file is still loaded it names the file.
    const bool named = view.statusPanel1 == state.Filename &&
                       view.lblReady == platform::withoutFolder(state.Filename);
    if (named && !sliderFree) return;
    if (sliderFree) view.ctSlide1Enabled = true;
    showFileName();
    changed();
}

void Dictation::showNoTakeRunning() {
    // The status line tells of a take only while one runs: a line left reading
    // "Recording" would show a take while nothing records.
    if (view.Label40 == "Recording") view.Label40.clear();
}

void Dictation::setLamps(bool on) {
    view.Image5 = on;
    view.Image6 = on;
}

void Dictation::SetParam(const std::string& action) {
    std::string word = action == kFromTimer ? state.WhichBut : action;
    if ((word == "Play" || word == "Continue") &&
        AudioEditor1.State() == static_cast<int>(engine::EditorState::Stopped)) {
        // A playback that ended (or never began) before the screen was told is
        // shown as what it is: the screen never says the file plays while it doesn't.
        state.flgPlay = false;
        state.WhichBut = "Stop";
        word = state.WhichBut;
    }
    const std::string title = applicationTitle(config_.record.HandsFreeEdition);
    const auto caption = [&](const char* text) { view.caption = title + " - " + text; };

    if (word == "Continue" || word == "Pause") {
        const bool paused = word == "Pause";
        caption(paused ? "File is Paused" : "File is Playing");
        if (!paused) playbackWatch.setEnabled(true);
        view.Command1 = view.Command2 = view.cmdOVR = paused;
        showFileName();
    } else if (word == "New") {
        caption("File Is Ready to be Recorded-Please hit the Record Icon");
        showFileName();
        view.Label40 = "File Is Ready to be Recorded";
        view.Label40Warning = false;
        view.lblOnAir = "STAND BY";
        view.lblOnAirVisible = true;
    } else if (word == "Record") {
        caption("File is being Recorded");
        showFileName();
    } else if (word == "Play") {
        caption("File is Playing");
        playbackWatch.setEnabled(true);
        showFileName();
    } else if (word == "Open") {
        // The label names the file just opened, which Filename already holds.
        caption("File is Opened");
    } else if (word == "Stop") {
        if (!state.RecordingstatusPaused) {
            caption("File is Stopped");
            timLight.setEnabled(false);
            setLamps(false);
            view.lblOnAirVisible = false;
            view.lblOnAir = "STAND BY";
        } else {
            caption("File is in Recording Mode but is Stopped");
        }
    } else if (word == "load" || word == "Close") {
        caption(kReadyText);
        setFileLabels(kReadyText);
        if (word == "Close") state.iTotalSecFile = 0;
    } else if (state.flgfileOpen1) {
        showFileName();
    }

    view.statusPanel2 = sizeText();
    if (!state.RecordingstatusPaused && !state.Recordingstatus) totalSecondsFromEngine();
    refreshSeconds();
    if (state.Recordingstatus) {
        const auto take = std::chrono::duration_cast<std::chrono::seconds>(state.EndTime - state.StartTime);
        state.iCurSecond = state.iTotalSecFile = static_cast<std::int32_t>(take.count());
    }
    view.timeElapsed = clockText(state.iCurSecond);

    // The timers follow the take.
    timRecord.setInterval(25);
    if (!state.Recordingstatus) {
        timRecord.setEnabled(false);
        timLight.setEnabled(false);
        setLamps(false);
        view.lblOnAir = "STAND BY";
        view.lblOnAirVisible = state.RecordingstatusPaused;
        showNoTakeRunning();
    } else {
        timRecord.setEnabled(true);
        timLight.setEnabled(true);
        state.EndTime = loop_.now();
    }
    changed();
}

void Dictation::setBar(BarAfter after) {
    const TransportBar bar = transportBarAfter(after);
    // The end-of-letter rule looks at the bar as set, before its last button.
    view.cmdEOL = cmdEOLAfter(bar, state.RecordedOnce, view.cmdEOL);
    view.MMControl1 = bar;
    changed();
}

void Dictation::applyEOLRule() {
    view.cmdEOL = cmdEOLAfter(view.MMControl1, state.RecordedOnce, view.cmdEOL);
    changed();
}

void Dictation::setRecordButtons(bool enabled) {
    view.Command1 = view.Command2 = view.cmdOVR = enabled;
}

void Dictation::barByPosition() {
    const auto cursor = AudioEditor1.CursorPosition();
    if (cursor <= 0) {
        setBar(BarAfter::StepAtStart);
    } else if (cursor >= AudioEditor1.Length()) {
        setBar(BarAfter::StepAtEnd);
    } else {
        setBar(BarAfter::StepBetween);
    }
}

void Dictation::playbackWatch_Timer() {
    const int engineState = AudioEditor1.State();
    if (engineState == static_cast<int>(engine::EditorState::Playing) ||
        engineState == static_cast<int>(engine::EditorState::Paused)) {
        return;
    }
    playbackWatch.setEnabled(false);
    if (view.caption.find("File is Playing") == std::string::npos) return;
    state.flgPlay = false;
    state.WhichBut = "Stop";
    SetParam(state.WhichBut);
    barByPosition();
    changed();
}

void Dictation::changed() {
    if (!state.flgfileOpen1) {
        // With no file no transport button can act, so none looks as if it could,
        // whatever the last command left on the bar.
        view.MMControl1 = transportBarAfter(BarAfter::ProgramStart);
        setRecordButtons(false);
        view.ctSlide1Enabled = false;
    }
    ++view.revision;
    if (onViewChanged) onViewChanged();
}

}  // namespace ovd::dictation
