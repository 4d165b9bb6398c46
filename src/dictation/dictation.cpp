#include "dictation/dictation.h"

#include <cmath>

#include "engine/format_selection.h"
#include "platform/files.h"
#include "platform/waiting.h"

namespace ovd::dictation {

std::optional<int> saveIntervalFor(std::int16_t SAVEEVERY) {
    // The value is not in seconds: it picks a share of the longest interval the
    // station's timers ever had, and it stays that way.
    constexpr double kLongest = 64767.0;
    switch (SAVEEVERY) {
        case 0:
            return 0;
        case 15:
            return static_cast<int>(std::lround(kLongest / 4));
        case 30:
            return static_cast<int>(std::lround(kLongest / 2));
        case 45:
            return static_cast<int>(std::lround(kLongest * 3 / 4));
        case 60:
            return static_cast<int>(kLongest);
        default:
            return std::nullopt;
    }
}

Dictation::Dictation(DictationParts parts)
    : view_(parts.loop),
      naming(state_, view_, parts.config, parts.log, parts.prompts, parts.loop, parts.speakers,
             *this),
      recent(parts.dataFolder),
      timCurPos(parts.loop, "timCurPos", 25),
      timRecord(parts.loop, "timRecord", 25),
      timLight(parts.loop, "timLight", 500),
      timSave(parts.loop, "timSave", 0),
      timLastThreeSecondsCon(parts.loop, "timLastThreeSecondsCon", 50),
      timsync(parts.loop, "timsync", 250),
      Reader(parts.loop, "Reader", 50),
      tmCommand(parts.loop, "tmCommand", 10),
      handOffLookTimer(parts.loop, "Timer28", 50),
      handOffWaitTimer(parts.loop, "Timer34", 50),
      playbackWatch(parts.loop, "playbackWatch", 25),
      loop_(parts.loop),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      AudioEditor1(parts.AudioEditor1),
      AudioEditor21(parts.AudioEditor21),
      voice_(parts.voice),
      peer_(parts.peer),
      dataFolder_(parts.dataFolder),
      startedAt_(parts.loop.now()) {
    timCurPos.setOnTick([this] { timCurPos_Timer(); });
    timRecord.setOnTick([this] { timRecord_Timer(); });
    timLight.setOnTick([this] { timLight_Timer(); });
    timSave.setOnTick([this] { timSave_Timer(); });
    timLastThreeSecondsCon.setOnTick([this] { timLastThreeSeconds_Timer(); });
    timsync.setOnTick([this] { timsync_Timer(); });
    tmCommand.setOnTick([this] { tmCommand_Timer(); });
    handOffLookTimer.setOnTick([this] { handOffLook_Timer(); });
    handOffWaitTimer.setOnTick([this] { handOffWait_Timer(); });
    playbackWatch.setOnTick([this] { playbackWatch_Timer(); });
    // A take the disk stopped taking is told in the event log.
    AudioEditor1.onTrouble = [this](const std::string& text) { trace(text); };
    AudioEditor21.onTrouble = [this](const std::string& text) { trace(text); };
    view_.onChanged = [this] {
        if (onViewChanged) onViewChanged();
    };
    screen().switchPosition = kSwitchPlain;
}

Dictation::~Dictation() {
    AudioEditor1.onTrouble = nullptr;
    AudioEditor21.onTrouble = nullptr;
}

void Dictation::start() {
    loadScreen();
    takeSettings();
    SetParam("load");
    naming.ComboFill();
}

void Dictation::loadScreen() {
    screen().Reopen = recent.DisplayMRU();
    timCurPos.setInterval(25);
    setLamps(false);
    screen().lblOnAir = "STAND BY";
    screen().lblOnAirVisible = false;
    setBar(BarAfter::ProgramStart);
    setRecordButtons(false);
    screen().endOfLetterEnabled = false;
    screen().positionSliderEnabled = false;
    changed();
}

void Dictation::takeSettings() {
    if (const auto interval = saveIntervalFor(config_.record.SAVEEVERY)) {
        timSave.setInterval(*interval);
    }
    state_.FileSaveAtStop = config_.record.FileSaveAtStop;
    if (auto made = platform::createFolder(temporaryFolder()); !made) trace(made.error());
    AudioEditor1.setTempFileName(temporaryFolder());
    AudioEditor21.setTempFileName(temporaryFolder());
    screen().txtStepAmt = std::to_string(config_.record.StepAmt);
    changed();
}

void Dictation::trace(const std::string& line) { log_.trace(line); }

void Dictation::waitTraced(double seconds, const std::string& tag) {
    platform::pauseWithTrace(
        loop_, [this](const std::string& line) { trace(line); }, seconds, tag);
}

bool Dictation::refusedWhileRecording(const std::string& tag) {
    if (!state_.Recordingstatus) return false;
    prompts_.showMessage(refusalText(tag), settings::kProductTitle,
                         platform::Severity::Information);
    return true;
}

void Dictation::notifyPeer(const std::string& message, const std::string& waitTag) {
    if (!peer_.linkOn()) return;
    trace(peer_.send(message, waitTag) ? " * TCP MSG SUCESSFULLY SENT* "
                                       : " * TCP CONNECTION ERROR* ");
}

void Dictation::PlayPrompt(const std::string& name) {
    voice_.PlayPrompt(name, config_.record.VoicePrompts);
}

std::string Dictation::temporaryFolder() const {
    return platform::joinPath(config_.record.CaptureFilePath.toText(), "Temp");
}

void Dictation::ResetRecorderState() {
    config_.ResetRecorderState([this] {
        // The flags of the dictation go; what belongs to the run (crash protection
        // as it stands, the speaker's counter, the engine's old work files that the
        // close still has to delete) stays.
        DictationState fresh;
        fresh.FileSaveAtStop = state_.FileSaveAtStop;
        fresh.DictatorSeqNo = state_.DictatorSeqNo;
        fresh.LastThreeNCTTmps = state_.LastThreeNCTTmps;
        fresh.PriorityOn = state_.PriorityOn;
        fresh.PreviousNextFile = state_.PreviousNextFile;
        fresh.CommandFileName = state_.CommandFileName;
        fresh.NextString = state_.NextString;
        fresh.commandLine = state_.commandLine;
        fresh.OnLoad = state_.OnLoad;
        fresh.Imclosing = state_.Imclosing;
        state_ = std::move(fresh);
        screen().lblReady.clear();
        screen().statusPanel1.clear();
        screen().statusPanel2.clear();
    });
    changed();
}

void Dictation::prepareFormat(const engine::FormatGroup& group) {
    const engine::FormatChoice choice =
        engine::FigureOutFileFormats(group, conversion::rawLayoutInForce(dataFolder_),
                                     conversion::mp3EncodingInForce(dataFolder_));
    state_.CurrentFormatType = choice.CurrentFormatType;
    state_.TrueSpeech = choice.TrueSpeech;
    AudioEditor1.setTempFileName(temporaryFolder());
    if (auto made = AudioEditor1.New(choice.recording.sampleRate, choice.recording.channels);
        !made) {
        trace("New file could not be prepared: " + made.error());
    }
    AudioEditor1.chooseFormat(choice.target);
    AudioEditor1.setComment("OVDESK");
}

void Dictation::startSaveTimer() { timSave.setEnabled(true); }

std::optional<std::string> Dictation::ChooseFileName(int mode) {
    platform::FileRequest request;
    request.mode =
        mode == 1 ? platform::FileRequest::Mode::Open : platform::FileRequest::Mode::Save;
    request.title = mode == 2 ? "Save as ..." : "New ... ";
    request.initialFolder = config_.record.CaptureFilePath.toText();
    // "Wav Files (*.wav)|*.wav": the description, then the pattern.
    const std::string filter = engine::fileFilterFor(state_.CurrentFormatType);
    if (const auto bar = filter.find('|'); bar != std::string::npos) {
        request.filters.push_back({filter.substr(0, bar), {filter.substr(bar + 1)}});
    }
    auto chosen = prompts_.chooseFile(request);
    if (!chosen || chosen->empty()) {
        trace("User Did not select file");
        state_.UserSelectedNo = true;
        return std::nullopt;
    }
    return chosen;
}

std::string Dictation::sendLoaded(const std::string& baseName) {
    if (!peer_.linkOn() || peer_.send("LOADED_" + baseName, " -73")) return "";
    return "TCP CONNECTION ERROR";
}

void Dictation::tellPeerNewFileRefused() { notifyPeer("UserClose_", " -74"); }

}  // namespace ovd::dictation
