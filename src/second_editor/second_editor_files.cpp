// The second editor's files, edits, effects and the desktop's clipboard.

#include <algorithm>
#include <cctype>
#include <chrono>

#include "platform/files.h"
#include "second_editor/second_editor.h"

namespace ovd::second_editor {

namespace {

const std::vector<platform::FileFilter> kOpenFilters{
    {"Wav Files", {"*.wav"}},
    {"MP3 Files", {"*.mp3"}},
};

const std::vector<platform::FileFilter> kSaveFilters{
    {"Wav Files", {"*.wav"}}, {"MP3 Files", {"*.mp3"}}, {"MP2 Files", {"*.mp2"}},
    {"WMA Files", {"*.wma"}}, {"VOX Files", {"*.vox"}}, {"RAW Files", {"*.raw"}},
    {"Ogg Files", {"*.ogg"}},
};

std::string lowerExtension(const std::string& path) {
    const auto slash = path.find_last_of('/');
    const auto dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {};
    std::string ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

// The format a name's extension asks for; a name without a known one is saved as WAV.
engine::FormatWord formatForName(std::string& path) {
    const std::string ext = lowerExtension(path);
    if (ext == "mp3") return engine::FormatWord::MP3;
    if (ext == "mp2") return engine::FormatWord::MP2;
    if (ext == "wma") return engine::FormatWord::WMA;
    if (ext == "vox") return engine::FormatWord::VOX;
    if (ext == "raw") return engine::FormatWord::RAW;
    if (ext == "ogg") return engine::FormatWord::OGG;
    if (ext != "wav") path += ".wav";
    return engine::FormatWord::WAV;
}

std::string baseName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

platform::Result<void> SecondEditor::ensureDocument(const engine::PcmFormat& format) {
    if (parts_.editor.hasDocument()) return platform::Result<void>::success();
    auto made = parts_.editor.New(format.sampleRate, format.channels);
    if (made) {
        fileName_.clear();
        changed_ = false;
        markers_.clear();
        ++revision_;
    }
    return made;
}

engine::TargetFormat SecondEditor::targetFor(std::string& path) const {
    engine::TargetFormat target;
    target.word = formatForName(path);
    // The Ogg Vorbis options choose the rate and channels too.
    if (target.word == engine::FormatWord::OGG && parts_.oggFormat) return parts_.oggFormat();
    target.sampleRate = parts_.editor.SamplesPerSecond();
    target.channels = parts_.editor.Channels();
    return target;
}

bool SecondEditor::settleChanges() {
    if (!changed_ || !parts_.editor.hasDocument()) return true;
    const std::string name = fileName_.empty() ? "the new recording" : baseName(fileName_);
    const platform::Answer answer = parts_.prompts.message(
        {"Save the changes to " + name + "?", kWindowTitle, platform::Buttons::YesNoCancel,
         platform::Answer::Yes, platform::Severity::Question});
    if (answer == platform::Answer::Cancel) return false;
    if (answer == platform::Answer::No) return true;
    save();
    return !changed_ || pendingSave_.has_value();
}

std::optional<std::string> SecondEditor::askForAudioFile(const std::string& title) {
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Open;
    request.title = title;
    request.initialFolder = parts_.recordingsFolder ? parts_.recordingsFolder() : std::string();
    request.filters = kOpenFilters;
    return parts_.prompts.chooseFile(request);
}

void SecondEditor::edited(const platform::Result<void>& result, const std::string& what) {
    if (!result) {
        showStatus(what + " failed: " + result.error());
        return;
    }
    changed_ = true;
    ++revision_;
    markers_.clampTo(parts_.editor.Length());
    showStatus(what);
}

// ---- Files ----

void SecondEditor::newDocument() {
    if (refusedWhileBusy() || !settleChanges()) return;
    parts_.editor.Close();
    const engine::PcmFormat format =
        parts_.newDocumentFormat ? parts_.newDocumentFormat() : engine::PcmFormat{};
    if (auto made = ensureDocument(format); !made) {
        tell("A new recording could not be made: " + made.error());
        return;
    }
    showStatus("New recording");
}

void SecondEditor::open() {
    if (refusedWhileBusy() || !settleChanges()) return;
    if (const auto path = askForAudioFile("Open ...")) openFile(*path);
}

bool SecondEditor::openFile(const std::string& path) {
    if (refusedWhileBusy()) return false;
    parts_.editor.Stop();
    const auto opened = parts_.editor.Open(path);
    if (!opened) {
        tell("The file could not be opened: " + opened.error());
        return false;
    }
    fileName_ = path;
    changed_ = false;
    ++revision_;
    markers_.clear();
    zoomWhole_ = true;
    showStatus("Opened " + baseName(path));
    return true;
}

void SecondEditor::save() {
    if (!parts_.editor.hasDocument() || refusedWhileBusy()) return;
    if (fileName_.empty()) {
        saveAs();
        return;
    }
    // A file opened to listen to, or saved and not changed since, stays as it is.
    if (!changed_) return;
    saveTo(fileName_);
}

void SecondEditor::saveAs() {
    if (!parts_.editor.hasDocument() || refusedWhileBusy()) return;
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Save;
    request.title = "Save As";
    request.initialFolder = parts_.recordingsFolder ? parts_.recordingsFolder() : std::string();
    request.initialName = fileName_.empty() ? std::string() : baseName(fileName_);
    request.filters = kSaveFilters;
    if (const auto path = parts_.prompts.chooseFile(request)) saveTo(*path);
}

bool SecondEditor::saveTo(const std::string& chosen) {
    if (!parts_.editor.hasDocument() || refusedWhileBusy()) return false;
    parts_.editor.Stop();
    std::string path = chosen;
    parts_.editor.chooseFormat(targetFor(path));
    auto outcome = parts_.editor.SaveAs(path);
    if (!outcome) {
        tell("The file could not be saved: " + outcome.error());
        return false;
    }
    pendingSave_ = PendingSave{*outcome, path, false};
    showStatus("Saving " + baseName(path));
    watchPendingSave();
    watchWhileBusy();
    return true;
}

void SecondEditor::watchPendingSave() {
    if (!pendingSave_ ||
        pendingSave_->outcome.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return;
    const PendingSave done = *pendingSave_;
    pendingSave_.reset();
    const platform::Result<void> saved = done.outcome.get();
    if (!saved) {
        tell(std::string(done.selectionOnly ? "The selection" : "The file") +
             " could not be saved: " + saved.error());
        return;
    }
    if (done.selectionOnly) {
        showStatus("Saved the selection in " + baseName(done.path));
        return;
    }
    fileName_ = done.path;
    changed_ = false;
    showStatus("Saved " + baseName(done.path));
}

void SecondEditor::saveSelection() {
    if (!parts_.editor.hasDocument() || refusedWhileBusy()) return;
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Save;
    request.title = "Save Selection As";
    request.initialFolder = parts_.recordingsFolder ? parts_.recordingsFolder() : std::string();
    request.filters = kSaveFilters;
    if (const auto path = parts_.prompts.chooseFile(request)) saveSelectionTo(*path);
}

bool SecondEditor::saveSelectionTo(const std::string& chosen) {
    engine::WaveEditor& e = parts_.editor;
    if (!e.hasDocument() || refusedWhileBusy()) return false;
    if (!e.SelectionActive() || e.SelectionStart() == e.SelectionEnd()) {
        tell("Select the part to save first.");
        return false;
    }
    std::string path = chosen;
    e.chooseFormat(targetFor(path));
    auto outcome = e.SaveSelectionAs(path);
    if (!outcome) {
        tell("The selection could not be saved: " + outcome.error());
        return false;
    }
    pendingSave_ = PendingSave{*outcome, path, true};
    showStatus("Saving the selection in " + baseName(path));
    watchPendingSave();
    watchWhileBusy();
    return true;
}

bool SecondEditor::close() {
    if (!settleChanges()) return false;
    parts_.editor.Stop();
    if (pendingSave_) parts_.editor.finishSaving();
    watchPendingSave();
    parts_.editor.Close();
    fileName_.clear();
    changed_ = false;
    ++revision_;
    markers_.clear();
    status_.clear();
    refresh();
    return true;
}

// ---- Edits ----

void SecondEditor::cut() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    edited(parts_.editor.Cut(), "Cut");
}

void SecondEditor::copy() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    const auto copied = parts_.editor.Copy();
    showStatus(copied ? "Copied" : "Copy failed: " + copied.error());
}

void SecondEditor::paste() {
    if (refusedWhileBusy()) return;
    if (!parts_.clipboard || parts_.clipboard->empty()) {
        showStatus(kNoAudioOnClipboardText);
        return;
    }
    if (auto made = ensureDocument(parts_.clipboard->format); !made) {
        tell("A new recording could not be made: " + made.error());
        return;
    }
    edited(parts_.editor.Paste(), "Paste");
}

void SecondEditor::deleteSelection() {
    engine::WaveEditor& e = parts_.editor;
    if (refusedWhileBusy() || !e.hasDocument()) return;
    if (!e.SelectionActive() || e.SelectionStart() == e.SelectionEnd()) return;
    // A delete is a cut the clipboard does not see: what it held stays for the letter.
    engine::Clipboard kept;
    if (parts_.clipboard) kept = *parts_.clipboard;
    const auto cut = e.Cut();
    if (parts_.clipboard) *parts_.clipboard = std::move(kept);
    edited(cut, "Delete");
}

void SecondEditor::undo() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    edited(parts_.editor.Undo(), "Undo");
}

void SecondEditor::convertSampleType(int samplesPerSecond, int channels) {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    edited(parts_.editor.ConvertSampleType(samplesPerSecond, channels), "Convert Sample Type");
}

void SecondEditor::redo() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    edited(parts_.editor.Redo(), "Redo");
}

void SecondEditor::pasteFile() {
    if (refusedWhileBusy()) return;
    if (const auto path = askForAudioFile("Open ...")) pasteFileFrom(*path);
}

bool SecondEditor::pasteFileFrom(const std::string& path) {
    if (refusedWhileBusy()) return false;
    if (auto made = ensureDocument(parts_.newDocumentFormat ? parts_.newDocumentFormat()
                                                            : engine::PcmFormat{});
        !made) {
        tell("A new recording could not be made: " + made.error());
        return false;
    }
    const auto pasted = parts_.editor.PasteFile(path);
    edited(pasted, "Paste from " + baseName(path));
    return pasted.ok();
}

void SecondEditor::mixClipboard() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    if (!parts_.clipboard || parts_.clipboard->empty()) {
        showStatus(kNoAudioOnClipboardText);
        return;
    }
    edited(parts_.editor.MixClipboard(), "Mix");
}

void SecondEditor::mixFile() {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    if (const auto path = askForAudioFile("Open ...")) mixFileFrom(*path);
}

bool SecondEditor::mixFileFrom(const std::string& path) {
    if (refusedWhileBusy() || !parts_.editor.hasDocument()) return false;
    const auto mixed = parts_.editor.MixFile(path);
    if (!mixed) tell("The file could not be mixed in: " + mixed.error());
    edited(mixed, "Mix from " + baseName(path));
    return mixed.ok();
}

void SecondEditor::copyToDesktop(DesktopClipboard& desktop) {
    engine::WaveEditor& e = parts_.editor;
    if (refusedWhileBusy() || !e.hasDocument()) return;
    // With nothing selected the whole recording goes: that is what another program wants.
    const bool selected = e.SelectionActive() && e.SelectionStart() != e.SelectionEnd();
    if (!selected) {
        e.setSelectionStart(0);
        e.setSelectionEnd(e.Length());
        e.setSelectionActive(true);
    }
    const auto copied = e.Copy();
    if (!selected) e.setSelectionActive(false);
    if (!copied) {
        showStatus("Copy failed: " + copied.error());
        return;
    }
    const std::string wav = e.ClipboardAsWav();
    if (wav.empty()) {
        showStatus(kNothingToWorkOnText);
        return;
    }
    desktop.setWavAudio(wav);
    showStatus("Copied to the desktop's clipboard");
}

void SecondEditor::pasteFromDesktop(DesktopClipboard& desktop) {
    if (refusedWhileBusy()) return;
    const std::optional<std::string> wav = desktop.wavAudio();
    if (!wav || wav->empty()) {
        tell(kNoAudioOnClipboardText);
        return;
    }
    if (auto taken = parts_.editor.setClipboardFromWav(*wav); !taken) {
        tell(std::string(kNoAudioOnClipboardText) + " (" + taken.error() + ")");
        return;
    }
    paste();
}

// ---- Effects ----

bool SecondEditor::applyEffect(engine::Effect effect) {
    engine::WaveEditor& e = parts_.editor;
    const std::string name(engine::effectMenuText(effect));
    if (refusedWhileBusy()) return false;
    if (!e.hasDocument() || e.Length() == 0) {
        tell(kNothingToWorkOnText);
        return false;
    }
    e.Stop();
    const bool selected =
        view_.chSelect && e.SelectionActive() && e.SelectionStart() != e.SelectionEnd();
    const engine::SampleCount from = selected ? std::min(e.SelectionStart(), e.SelectionEnd()) : 0;
    const engine::SampleCount to =
        selected ? std::max(e.SelectionStart(), e.SelectionEnd()) : e.Length();
    const std::shared_ptr<bool> alive = alive_;
    effectRunning_ = true;
    watchWhileBusy();
    const auto started =
        e.ApplyEffect(effect, from, to, [this, alive, name](platform::Result<void> done) {
            if (!*alive) return;
            effectRunning_ = false;
            if (!done) {
                tell(name + " failed: " + done.error());
                return;
            }
            edited(done, name);
        });
    if (!started) {
        effectRunning_ = false;
        tell(name + " failed: " + started.error());
        return false;
    }
    showStatus(name);
    return true;
}

}  // namespace ovd::second_editor
