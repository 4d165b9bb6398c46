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
    if (state_.iTotalSecFile <= 0) return static_cast<double>(AudioEditor1.SamplesPerSecond());
    return static_cast<double>(AudioEditor1.Length()) / state_.iTotalSecFile;
}

void Dictation::totalSecondsFromEngine() {
    if (state_.DoingInsertUpdate || state_.OverWriteFile) {
        // The file as it will be once the take is pasted in: up to where the
        // take began, plus the take.
        const int rate21 = AudioEditor21.SamplesPerSecond();
        const std::int32_t take =
            rate21 > 0 ? static_cast<std::int32_t>(
                             std::nearbyint(static_cast<double>(AudioEditor21.Length()) / rate21))
                       : 0;
        state_.iTotalSecFile = secondsOf(state_.SaveCurrentPosition) + take;
    } else {
        state_.iTotalSecFile = secondsOf(AudioEditor1.Length());
    }
}

void Dictation::refreshSeconds() {
    state_.iCurSecond = secondsOf(AudioEditor1.CursorPosition());
    if (state_.iTotalSecFile > 0) {
        const std::int64_t percent =
            static_cast<std::int64_t>(state_.iCurSecond) * 100 / state_.iTotalSecFile;
        state_.percentrun = static_cast<std::int16_t>(std::min<std::int64_t>(percent, 100));
    } else {
        state_.percentrun = 0;  // an empty file: no division
    }
    if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Recording)) {
        screen().positionPercent = state_.percentrun;
    }
}

std::string Dictation::sizeText() const {
    // What is on disk once saved, and the work file while only that holds the take.
    std::optional<std::uint64_t> bytes;
    const auto sizeOf = [&bytes](const std::string& path) {
        if (auto size = platform::fileSize(path)) bytes = *size;
    };
    if (!state_.Filename.empty()) sizeOf(state_.Filename);
    if (!bytes && state_.flgfileOpen1) {
        const std::string work = AudioEditor1.TempFileName();
        if (!work.empty()) sizeOf(work);
    }
    if (!bytes) return "";
    char text[48];
    if (*bytes >= 1024 * 1024) {
        std::snprintf(text, sizeof text, "%.2f MB",
                      static_cast<double>(*bytes) / (1024.0 * 1024.0));
    } else {
        std::snprintf(text, sizeof text, "%.1f KB", static_cast<double>(*bytes) / 1024.0);
    }
    return text;
}

void Dictation::etprocess(const std::string& /*from*/) {
    screen().timeElapsed = clockText(state_.iCurSecond);
    screen().fileSizeText = sizeText();
    screen().timeRemaining = clockText(state_.iTotalSecFile - state_.iCurSecond);
    changed();
}

void Dictation::AdjustNCTTimeDisplay() {
    if (!state_.flgfileOpen1) {
        state_.iCurSecond = 0;
        state_.iTotalSecFile = 0;
        state_.percentrun = 0;
        screen().positionPercent = 0;
    } else if (!state_.Recordingstatus) {
        totalSecondsFromEngine();
        refreshSeconds();
    }
    etprocess("AdjustNCTTimeDisplay");
}

void Dictation::setFileLabels(const std::string& text) {
    screen().statusPanel1 = text;
    screen().lblReady = text;
}

void Dictation::showFileName() {
    screen().statusPanel1 = state_.Filename;
    screen().lblReady = platform::withoutFolder(state_.Filename);
}

void Dictation::showFileJustOpened() {
    // The slider was held only while the file loaded.
    const bool sliderFree = !screen().lblBusyVisible && !screen().positionSliderEnabled;
    // After a save the file label may offer to create or load a file; while the
    // file is still loaded it names the file.
    const bool named = view().statusPanel1 == state_.Filename &&
                       view().lblReady == platform::withoutFolder(state_.Filename);
    if (named && !sliderFree) return;
    if (sliderFree) screen().positionSliderEnabled = true;
    showFileName();
    changed();
}

void Dictation::showNoTakeRunning() {
    // The status line tells of a take only while one runs: a line left reading
    // "Recording" would show a take while nothing records.
    if (view().statusLine == "Recording") screen().statusLine.clear();
}

void Dictation::setLamps(bool on) {
    screen().onAirLamp1 = on;
    screen().onAirLamp2 = on;
}

void Dictation::SetParam(const std::string& action) {
    std::string word = action == kFromTimer ? state_.WhichBut : action;
    if ((word == "Play" || word == "Continue") &&
        AudioEditor1.State() == static_cast<int>(engine::EditorState::Stopped)) {
        // A playback that ended (or never began) before the screen was told is
        // shown as what it is: the screen never says the file plays while it doesn't.
        state_.flgPlay = false;
        state_.WhichBut = "Stop";
        word = state_.WhichBut;
    }
    const std::string title = applicationTitle(config_.record.HandsFreeEdition);
    const auto caption = [&](const char* text) { screen().caption = title + " - " + text; };

    if (word == "Continue" || word == "Pause") {
        const bool paused = word == "Pause";
        caption(paused ? "File is Paused" : "File is Playing");
        if (!paused) playbackWatch.setEnabled(true);
        screen().addToBeginningEnabled = screen().insertEnabled = screen().overwriteEnabled =
            paused;
        showFileName();
    } else if (word == "New") {
        caption("File Is Ready to be Recorded-Please hit the Record Icon");
        showFileName();
        screen().statusLine = "File Is Ready to be Recorded";
        screen().statusLineWarning = false;
        screen().lblOnAir = "STAND BY";
        screen().lblOnAirVisible = true;
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
        if (!state_.RecordingstatusPaused) {
            caption("File is Stopped");
            timLight.setEnabled(false);
            setLamps(false);
            screen().lblOnAirVisible = false;
            screen().lblOnAir = "STAND BY";
        } else {
            caption("File is in Recording Mode but is Stopped");
        }
    } else if (word == "load" || word == "Close") {
        caption(kReadyText);
        setFileLabels(kReadyText);
        if (word == "Close") state_.iTotalSecFile = 0;
    } else if (state_.flgfileOpen1) {
        showFileName();
    }

    screen().statusPanel2 = sizeText();
    if (!state_.RecordingstatusPaused && !state_.Recordingstatus) totalSecondsFromEngine();
    refreshSeconds();
    if (state_.Recordingstatus) {
        const auto take =
            std::chrono::duration_cast<std::chrono::seconds>(state_.EndTime - state_.StartTime);
        state_.iCurSecond = state_.iTotalSecFile = static_cast<std::int32_t>(take.count());
    }
    screen().timeElapsed = clockText(state_.iCurSecond);

    // The timers follow the take.
    timRecord.setInterval(25);
    if (!state_.Recordingstatus) {
        timRecord.setEnabled(false);
        timLight.setEnabled(false);
        setLamps(false);
        screen().lblOnAir = "STAND BY";
        screen().lblOnAirVisible = state_.RecordingstatusPaused;
        showNoTakeRunning();
    } else {
        timRecord.setEnabled(true);
        timLight.setEnabled(true);
        state_.EndTime = loop_.now();
    }
    changed();
}

void Dictation::setBar(BarAfter after) {
    const TransportBar bar = transportBarAfter(after);
    // The end-of-letter rule looks at the bar as set, before its last button.
    screen().endOfLetterEnabled =
        cmdEOLAfter(bar, state_.RecordedOnce, screen().endOfLetterEnabled);
    screen().transportBar = bar;
    changed();
}

void Dictation::applyEOLRule() {
    screen().endOfLetterEnabled =
        cmdEOLAfter(screen().transportBar, state_.RecordedOnce, screen().endOfLetterEnabled);
    changed();
}

void Dictation::setRecordButtons(bool enabled) {
    screen().addToBeginningEnabled = screen().insertEnabled = screen().overwriteEnabled = enabled;
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
    if (view().caption.find("File is Playing") == std::string::npos) return;
    state_.flgPlay = false;
    state_.WhichBut = "Stop";
    SetParam(state_.WhichBut);
    barByPosition();
    changed();
}

void Dictation::changed() {
    if (!state_.flgfileOpen1) {
        // With no file no transport button can act, so none looks as if it could,
        // whatever the last command left on the bar.
        screen().transportBar = transportBarAfter(BarAfter::ProgramStart);
        setRecordButtons(false);
        screen().positionSliderEnabled = false;
    }
}

}  // namespace ovd::dictation
