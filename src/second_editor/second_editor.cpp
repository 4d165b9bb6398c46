// The second editor's view, transport, fields and devices; its files and edits
// are in second_editor_files.cpp.

#include "second_editor/second_editor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ovd::second_editor {

namespace {

// How often the position is read while something moves.
constexpr int kPositionTickMs = 100;

constexpr std::array<std::pair<const char*, SecondEditor::Key>, 17> kKeyNames{{
    {"New", SecondEditor::Key::New},
    {"Open", SecondEditor::Key::Open},
    {"Save", SecondEditor::Key::Save},
    {"Delete", SecondEditor::Key::Delete},
    {"Copy", SecondEditor::Key::Copy},
    {"Cut", SecondEditor::Key::Cut},
    {"Paste", SecondEditor::Key::Paste},
    {"Undo", SecondEditor::Key::Undo},
    {"Redo", SecondEditor::Key::Redo},
    {"Zoomin", SecondEditor::Key::Zoomin},
    {"Zoomout", SecondEditor::Key::Zoomout},
    {"Forward", SecondEditor::Key::Forward},
    {"Stop", SecondEditor::Key::Stop},
    {"PlayToEnd", SecondEditor::Key::PlayToEnd},
    {"PlayLooped", SecondEditor::Key::PlayLooped},
    {"Pause", SecondEditor::Key::Pause},
    {"Properties", SecondEditor::Key::Properties},
}};

}  // namespace

std::optional<SecondEditor::Key> SecondEditor::keyNamed(const std::string& name) {
    for (const auto& [text, key] : kKeyNames)
        if (name == text) return key;
    return std::nullopt;
}

SecondEditor::SecondEditor(SecondEditorParts parts)
    : parts_(std::move(parts)), timCurPos(parts_.loop, "timCurPos", kPositionTickMs) {
    timCurPos.setOnTick([this] {
        watchPendingSave();
        refresh();
        const bool moving = parts_.editor.State() != static_cast<int>(engine::EditorState::Stopped);
        if (!moving && !pendingSave_ && !effectRunning_) timCurPos.setEnabled(false);
    });
    parts_.editor.onViewChange = [this] { refresh(); };
    parts_.editor.onBlockOperation = [this](const engine::BlockOperationEvent& event) {
        blockOperation(event);
    };
    refresh();
}

SecondEditor::~SecondEditor() {
    *alive_ = false;
    parts_.editor.onViewChange = nullptr;
    parts_.editor.onBlockOperation = nullptr;
}

void SecondEditor::toolbarButton(Key key) {
    switch (key) {
        case Key::New:
            newDocument();
            break;
        case Key::Open:
            open();
            break;
        case Key::Save:
            save();
            break;
        case Key::Delete:
            deleteSelection();
            break;
        case Key::Copy:
            copy();
            break;
        case Key::Cut:
            cut();
            break;
        case Key::Paste:
            paste();
            break;
        case Key::Undo:
            undo();
            break;
        case Key::Redo:
            redo();
            break;
        case Key::Zoomin:
            zoomIn();
            break;
        case Key::Zoomout:
            zoomOut();
            break;
        case Key::Forward:
            play(0);
            break;
        case Key::Stop:
            stop();
            break;
        case Key::PlayToEnd:
            play(engine::kPlayToEnd);
            break;
        case Key::PlayLooped:
            play(engine::kPlayLooped);
            break;
        case Key::Pause:
            pause();
            break;
        case Key::Properties:
            if (onProperties) onProperties();
            break;
    }
}

void SecondEditor::watchWhileBusy() { timCurPos.setEnabled(true); }

// ---- Transport ----

bool SecondEditor::refusedForLetter() {
    if (!parts_.letterTakeUnderWay || !parts_.letterTakeUnderWay()) return false;
    showStatus(kLetterRecordingText);
    return true;
}

bool SecondEditor::refusedWhileBusy() {
    if (!effectRunning_ && !parts_.editor.saving()) return false;
    showStatus("Wait until " + (status_.empty() ? std::string("the work") : status_) +
               " has finished.");
    return true;
}

void SecondEditor::record() {
    if (refusedForLetter() || refusedWhileBusy()) return;
    if (auto made = ensureDocument(parts_.newDocumentFormat ? parts_.newDocumentFormat()
                                                            : engine::PcmFormat{});
        !made) {
        tell("A new recording could not be made: " + made.error());
        return;
    }
    const auto started = parts_.editor.Record();
    if (!started) {
        showStatus("Recording could not start: " + started.error());
        return;
    }
    changed_ = true;
    markers_.clampTo(parts_.editor.Length());
    watchWhileBusy();
    showStatus("Recording");
}

void SecondEditor::play(int mode) {
    if (refusedForLetter() || refusedWhileBusy() || !parts_.editor.hasDocument()) return;
    const auto started = parts_.editor.Play(mode);
    if (!started) showStatus("Playing could not start: " + started.error());
    watchWhileBusy();
    refresh();
}

void SecondEditor::pause() {
    if (parts_.editor.State() == static_cast<int>(engine::EditorState::Paused)) {
        if (refusedForLetter()) return;
        parts_.editor.Continue();
        watchWhileBusy();
    } else {
        parts_.editor.Pause();
    }
    refresh();
}

void SecondEditor::stop() {
    parts_.editor.Stop();
    refresh();
}

void SecondEditor::stopForLetter() {
    if (parts_.editor.State() == static_cast<int>(engine::EditorState::Stopped)) return;
    parts_.editor.Stop();
    showStatus(kLetterRecordingText);
}

void SecondEditor::backToLetter() {
    // The letter may want the microphone at once: nothing here holds it.
    parts_.editor.Stop();
    refresh();
    if (onBackToLetter) onBackToLetter();
}

// ---- Selection and zoom ----

double SecondEditor::seconds(engine::SampleCount samples) const {
    const int rate = parts_.editor.SamplesPerSecond();
    return rate > 0 ? static_cast<double>(samples) / rate : 0.0;
}

engine::SampleCount SecondEditor::samples(double secondsValue) const {
    const int rate = parts_.editor.SamplesPerSecond();
    if (!std::isfinite(secondsValue) || secondsValue <= 0 || rate <= 0) return 0;
    const auto at = static_cast<engine::SampleCount>(std::llround(secondsValue * rate));
    return std::min(at, parts_.editor.Length());
}

void SecondEditor::setChSelect(bool on) {
    view_.chSelect = on;
    refresh();
}

void SecondEditor::setSelectionStart(double secondsValue) {
    engine::WaveEditor& e = parts_.editor;
    const engine::SampleCount start = samples(secondsValue);
    if (!e.SelectionActive()) e.setSelectionEnd(std::max(start, e.CursorPosition()));
    e.setSelectionStart(start);
    e.setSelectionActive(true);
    refresh();
}

void SecondEditor::setSelectionEnd(double secondsValue) {
    engine::WaveEditor& e = parts_.editor;
    const engine::SampleCount end = samples(secondsValue);
    if (!e.SelectionActive()) e.setSelectionStart(std::min(end, e.CursorPosition()));
    e.setSelectionEnd(end);
    e.setSelectionActive(true);
    refresh();
}

void SecondEditor::setCursorSeconds(double secondsValue) {
    parts_.editor.setSelectionActive(false);
    parts_.editor.setCursorPosition(samples(secondsValue));
    refresh();
}

void SecondEditor::setZoom(double startSeconds, double endSeconds) {
    const engine::SampleCount length = parts_.editor.Length();
    engine::SampleCount from = samples(std::min(startSeconds, endSeconds));
    engine::SampleCount to = samples(std::max(startSeconds, endSeconds));
    if (to <= from) to = std::min(length, from + 1);
    zoomWhole_ = from == 0 && to >= length;
    zoomStart_ = from;
    zoomEnd_ = to;
    refresh();
}

void SecondEditor::zoomIn() {
    const engine::SampleCount span = zoomEnd_ - zoomStart_;
    if (span < 4) return;
    // Closer in around the selection's start when there is one, else the middle.
    const engine::SampleCount centre =
        parts_.editor.SelectionActive() ? parts_.editor.SelectionStart() : zoomStart_ + span / 2;
    const engine::SampleCount half = span / 4;
    zoomStart_ = std::max<engine::SampleCount>(0, centre - half);
    zoomEnd_ = std::min(parts_.editor.Length(), zoomStart_ + 2 * half);
    zoomWhole_ = false;
    refresh();
}

void SecondEditor::zoomOut() {
    const engine::SampleCount length = parts_.editor.Length();
    const engine::SampleCount span = std::max<engine::SampleCount>(1, zoomEnd_ - zoomStart_);
    const engine::SampleCount centre = zoomStart_ + span / 2;
    zoomStart_ = std::max<engine::SampleCount>(0, centre - span);
    zoomEnd_ = std::min(length, zoomStart_ + 2 * span);
    zoomWhole_ = zoomStart_ == 0 && zoomEnd_ >= length;
    refresh();
}

void SecondEditor::setVerticalZoom(int percent) {
    view_.verticalZoom = std::clamp(percent, 10, 1000);
    refresh();
}

// ---- Devices ----

engine::DeviceList& SecondEditor::devices(Direction direction) {
    return direction == Direction::Input ? parts_.editor.RecordingDevices()
                                         : parts_.editor.PlaybackDevices();
}

void SecondEditor::chooseDevice(Direction direction, int index) {
    // The lists are the letter's too: a take under way keeps what it records from.
    if (refusedForLetter()) return;
    if (auto chosen = devices(direction).setCurrent(index); !chosen)
        showStatus("The device could not be chosen: " + chosen.error());
    refresh();
}

void SecondEditor::chooseLine(Direction direction, int index) {
    if (refusedForLetter()) return;
    if (auto chosen = devices(direction).setSourceCurrent(index); !chosen)
        showStatus("The line could not be chosen: " + chosen.error());
    refresh();
}

void SecondEditor::setVolume(Direction direction, int volume) {
    engine::DeviceList& list = devices(direction);
    const int line = list.SourceCurrent();
    if (line < 0 || !list.HasVolume(line)) return;
    (void)list.setVolume(line, std::clamp(volume, 0, 65535));
    refresh();
}

void SecondEditor::setBalance(Direction direction, int balance) {
    engine::DeviceList& list = devices(direction);
    const int line = list.SourceCurrent();
    if (line < 0) return;
    (void)list.setBalance(line, std::clamp(balance, -100, 100));
    refresh();
}

void SecondEditor::selectLine(Direction direction, bool selected) {
    if (refusedForLetter()) return;
    engine::DeviceList& list = devices(direction);
    const int line = list.SourceCurrent();
    if (line < 0) return;
    (void)list.setMute(line, !selected);
    refresh();
}

void SecondEditor::readDevices(Direction direction, DevicePanel& panel) {
    const engine::DeviceList& list = devices(direction);
    panel.devices.clear();
    for (int i = 0; i < list.Count(); ++i) panel.devices.push_back(list.Name(i));
    panel.device = list.Current();
    panel.lines.clear();
    for (int i = 0; i < list.SourceCount(); ++i) panel.lines.push_back(list.SourceName(i));
    panel.line = list.SourceCurrent();
    const bool line = panel.line >= 0;
    panel.volume = line && list.HasVolume(panel.line) ? list.Volume(panel.line) : 0;
    panel.balance = line ? list.Balance(panel.line) : 0;
    panel.selected = line ? !list.Mute(panel.line) : false;
}

// ---- The view ----

void SecondEditor::showStatus(const std::string& text) {
    status_ = text;
    refresh();
}

void SecondEditor::tell(const std::string& text) {
    showStatus(text);
    parts_.prompts.showMessage(text, kWindowTitle, platform::Severity::Warning);
}

void SecondEditor::blockOperation(const engine::BlockOperationEvent& event) {
    switch (event.phase) {
        case engine::BlockOperationEvent::Phase::Start:
            blockRunning_ = true;
            progress_ = 0;
            status_ = event.name;
            break;
        case engine::BlockOperationEvent::Phase::Progress:
            progress_ = event.range > 0 ? static_cast<int>(std::clamp<engine::SampleCount>(
                                              event.position * 100 / event.range, 0, 100))
                                        : 0;
            break;
        case engine::BlockOperationEvent::Phase::End:
            blockRunning_ = false;
            progress_ = 0;
            break;
    }
    refresh();
}

void SecondEditor::refresh() {
    engine::WaveEditor& e = parts_.editor;
    SecondEditorView v = view_;
    v.documentOpen = e.hasDocument();
    v.fileName = fileName_;
    const auto slash = fileName_.find_last_of('/');
    v.caption = fileName_.empty()
                    ? std::string(kWindowTitle)
                    : std::string(kWindowTitle) + " - " +
                          (slash == std::string::npos ? fileName_ : fileName_.substr(slash + 1));
    v.changed = changed_;
    v.revision = revision_;
    v.state = e.State();
    const engine::SampleCount length = e.Length();
    v.currentSeconds = seconds(e.CursorPosition());
    v.totalSeconds = seconds(length);
    v.selectionActive = e.SelectionActive();
    v.selectionStart = seconds(e.SelectionActive() ? std::min(e.SelectionStart(), e.SelectionEnd())
                                                   : e.CursorPosition());
    v.selectionEnd = seconds(e.SelectionActive() ? std::max(e.SelectionStart(), e.SelectionEnd())
                                                 : e.CursorPosition());
    if (zoomWhole_ || zoomEnd_ > length || zoomStart_ >= zoomEnd_) {
        zoomStart_ = 0;
        zoomEnd_ = length;
        zoomWhole_ = true;
    }
    v.zoomStart = seconds(zoomStart_);
    v.zoomEnd = seconds(zoomEnd_);
    v.busy = effectRunning_ || e.saving() || blockRunning_;
    v.progress = progress_;
    v.status = status_;
    readDevices(Direction::Input, v.input);
    readDevices(Direction::Output, v.output);
    if (v == view_) return;
    view_ = std::move(v);
    if (onViewChanged) onViewChanged();
}

}  // namespace ovd::second_editor
