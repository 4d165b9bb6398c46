#include "dictation/file_naming.h"

#include <ctime>
#include <limits>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::dictation {

namespace {

std::string localText(platform::WallClock::time_point when, const char* format) {
    const std::time_t seconds = platform::WallClock::to_time_t(when);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char buffer[40];
    const std::size_t length = std::strftime(buffer, sizeof buffer, format, &parts);
    return std::string(buffer, length);
}

// Where the extension starts in the file's own name (a dot in a folder name
// does not count); npos without one.
std::size_t extensionDot(const std::string& path) {
    const auto dot = path.find_last_of('.');
    const auto slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) {
        return std::string::npos;
    }
    return dot;
}

// A counter that does not read as a number counts from 0 rather than stopping
// the new file.
double numberIn(const settings::ConfigVariant& value) { return value.toNumber().value_or(0.0); }

}  // namespace

std::string withPriorityMarker(const std::string& filename) {
    const auto dot = extensionDot(filename);
    if (dot == std::string::npos) return filename + kPriorityMarker;
    return filename.substr(0, dot) + kPriorityMarker + filename.substr(dot + 1);
}

void addPriorityMarker(DictationState& state) {
    if (state.PriorityOn && !state.Filename.empty()) {
        state.Filename = withPriorityMarker(state.Filename);
    }
}

FileNaming::FileNaming(DictationState& state, AnnouncedView& view, settings::ConfigFile& config,
                       settings::EventLog& log, platform::Prompts& prompts,
                       const platform::EventLoop& clock, settings::SpeakersTable& speakers,
                       NamingHooks& hooks)
    : state_(state),
      view_(view),
      config_(config),
      log_(log),
      prompts_(prompts),
      clock_(clock),
      speakers_(speakers),
      hooks_(hooks) {}

void FileNaming::Newfile() {
    state_.JustOpened = false;
    state_.Response.clear();
    state_.flgNewToRecord = true;
    state_.flgfileOpen1 = true;
    state_.CheckedOnce = false;

    // The number is used up here, whether or not a word is ever recorded: a
    // refused or abandoned file does not give it back.
    if (config_.record.SequentialNumbering.toBool()) consumeNumber();

    CreateFileName();

    if (state_.Filename.empty() || state_.UserSelectedNo) {
        hooks_.CaseClose();
        hooks_.ResetRecorderState();
        state_.UserSelectedNo = true;
        return;
    }
    if (state_.Response.empty() || state_.Response == kResponseYes) {
        hooks_.prepareFormat(chosenFormatGroup(config_.record));
        state_.RecordingstatusPaused = true;
        hooks_.startSaveTimer();
    }
}

void FileNaming::consumeNumber() {
    settings::SettingsRecord& record = config_.record;
    if (record.AddNameToFile) {
        // Each speaker counts on their own; the row takes the number at once so
        // that a crash never hands it out twice.
        if (state_.DictatorSeqNo < std::numeric_limits<std::int32_t>::max()) {
            ++state_.DictatorSeqNo;
        }
        // Without a listed speaker there is no row, and the number lives in memory.
        speakers_.saveSpeakerNumber(record.CurrentSpeaker, state_.DictatorSeqNo);
        if (const auto index = listIndexOf(record.CurrentSpeaker)) {
            seqNos_[*index] = state_.DictatorSeqNo;
        }
        return;
    }
    // A blank last number means numbering starts at FileNameIncrement itself.
    if (record.FileNameIncrementStartingNum.isBlank()) {
        record.FileNameIncrementStartingNum = numberIn(record.FileNameIncrement) - 1.0;
    }
    const double next = numberIn(record.FileNameIncrementStartingNum) + 1.0;
    record.FileNameIncrement = next;
    record.FileNameIncrementStartingNum = next;
    config_.WriteConfig();
}

void FileNaming::CreateFileName() {
    settings::SettingsRecord& record = config_.record;

    std::string folder = record.CaptureFilePath.toText();
    // The root folder keeps its only separator.
    if (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
        record.CaptureFilePath = folder;
        config_.WriteConfig();
    }

    // The width of the plain counter is the width both numbered forms are
    // checked and padded against, the per-speaker one too.
    std::size_t numberLength = 0;
    if (record.SequentialNumbering.toBool() && state_.CommandFileName.empty()) {
        numberLength = record.FileNameIncrement.toText().size();
    }

    setCurrentFormatType();

    if (state_.CommandFileName.empty()) {
        if (!record.FileLabelActive) {
            state_.Filename = hooks_.ChooseFileName(kChooseForNew).value_or("");
            if (state_.Filename.empty()) state_.UserSelectedNo = true;
            return;
        }
        const auto name = composeName(numberLength);
        if (!name) {
            state_.Filename.clear();
            return;
        }
        showMadeName(folder, *name);
    }

    if (!state_.PRERECORDED) announce();
    askBeforeOverwriting();
}

void FileNaming::setCurrentFormatType() {
    std::string word = platform::toUpper(chosenFormatGroup(config_.record).FormatType);
    // The speech codec is kept in a wave file.
    if (word == "DSP") {
        word = "WAV";
        state_.TrueSpeech = true;
    }
    state_.CurrentFormatType = word;
}

std::optional<std::string> FileNaming::composeName(std::size_t numberLength) {
    const settings::SettingsRecord& record = config_.record;
    const auto now = clock_.now();
    const std::string label = record.FileLabelText.toText();
    const std::string labelPart = label.empty() ? "" : label + "_";
    const std::string speakerPart =
        record.CurrentSpeaker.empty() ? "" : record.CurrentSpeaker + "_";
    const std::string datePart = record.AddDateToName ? localText(now, "%Y%m%d") + "_" : "";

    // Asked for before the number is checked, and a cancelled box is an empty
    // bar code: the "_" in front of it stays.
    std::string barCodePart;
    if (record.PromptBarCode) {
        barCodePart = "_" + prompts_.input({kBarCodePrompt, kBarCodeTitle, ""}).value_or("");
    }

    if (!record.SequentialNumbering.toBool()) {
        // The "_" after the stamp is part of the name, so a bar code follows two.
        const std::string stamp = localText(now, "%Y%m%d_%H.%M.%S") + "_";
        const std::string front = record.AddNameToFile ? labelPart + speakerPart : label;
        return front + stamp + barCodePart;
    }

    const int places = record.Places;
    if (static_cast<long long>(numberLength) > places) {
        // No wrap-around: the user must widen the number or start it again.
        prompts_.showMessage(kSequenceTooLongMessage, settings::kProductTitle,
                             platform::Severity::Warning);
        return std::nullopt;
    }
    const std::string zeros(static_cast<std::size_t>(places) - numberLength, '0');
    if (record.AddNameToFile) {
        // Only this form carries the date.
        return labelPart + speakerPart + datePart + zeros + std::to_string(state_.DictatorSeqNo) +
               barCodePart;
    }
    // The label runs straight into the number, as names have always been made.
    return label + zeros + record.FileNameIncrement.toText() + barCodePart;
}

void FileNaming::showMadeName(const std::string& folder, const std::string& name) {
    const std::string fileName = name + "." + state_.CurrentFormatType;
    state_.Filename = platform::joinPath(folder, fileName);
    view_.edit().statusPanel1 = state_.Filename;
    view_.edit().lblReady = fileName;
    config_.record.LastFileOpened = fileName;
    config_.WriteConfig();
}

void FileNaming::announce() {
    if (!state_.CommandFileName.empty()) {
        state_.Filename = state_.CommandFileName + "." + state_.CurrentFormatType;
    }
    log_.trace("LOADED New File: " + state_.Filename + " Procedure - CREATEFILENAME");
    if (config_.record.TCP) {
        log_.trace(" -58 Sending Message in CreateFileName");
        view_.edit().statusLine = hooks_.sendLoaded(platform::withoutFolder(state_.Filename));
    }
    state_.FileSaveError = false;
    log_.trace(std::string("CaseNew-FileSaveError =: ") + platform::boolText(state_.FileSaveError));
    log_.trace("LOADED New File: " + state_.Filename + " Procedure - CreateFileName");
}

void FileNaming::askBeforeOverwriting() {
    // There is no search for a free name: the user overwrites or gives up.
    if (state_.Filename.empty() || !platform::fileExists(state_.Filename) ||
        config_.record.SuppressWarnings) {
        return;
    }
    const bool overwrite =
        prompts_.askYesNo(kOverwriteQuestion, settings::kProductTitle, platform::Answer::No);
    if (overwrite) {
        state_.Response = kResponseYes;
        state_.WhichBut = "New";
        state_.UserSelectedNo = false;
        return;
    }
    state_.Response = kResponseNo;
    state_.flgNewToRecord = false;
    state_.Filename.clear();
    state_.UserSelectedNo = true;
    state_.WhichBut.clear();
    if (config_.record.TCP) hooks_.tellPeerNewFileRefused();
    view_.edit().statusLine.clear();
    log_.trace("User Selected NO to overwrite file");
}

void FileNaming::ComboFill() {
    settings::SettingsRecord& record = config_.record;
    settings::SpeakerChoice choice = speakers_.loadSpeakers(record.CurrentSpeaker);
    names_ = std::move(choice.names);
    seqNos_ = std::move(choice.seqNos);
    state_.DictatorSeqNo = choice.DictatorSeqNo;
    view_.edit().cboName = choice.CurrentSpeaker;
    // A speaker removed or made inactive no longer names files.
    if (choice.CurrentSpeaker != record.CurrentSpeaker) {
        record.CurrentSpeaker = choice.CurrentSpeaker;
        config_.WriteConfig();
    }
}

bool FileNaming::pickDictator(const std::string& name) {
    const auto index = listIndexOf(name);
    if (!index) return false;
    config_.record.CurrentSpeaker = name;
    state_.DictatorSeqNo = seqNos_[*index];
    view_.edit().cboName = name;
    config_.WriteConfig();
    return true;
}

std::optional<std::size_t> FileNaming::listIndexOf(const std::string& name) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (platform::equalsIgnoreCase(names_[i], name)) return i;
    }
    return std::nullopt;
}

}  // namespace ovd::dictation
