#include "engine/wave_editor.h"

#include <algorithm>

namespace ovd::engine {

namespace {
// A crash loses at most a quarter of a second of speech: the work file is
// written this often, and the capture hands its audio over within the rest.
constexpr int kSyncMs = 200;
constexpr int kFeedMs = 20;
constexpr std::size_t kUndoDepth = 100;
}  // namespace

WaveEditor::WaveEditor(platform::EventLoop& loop, AudioBackend& backend,
                       std::shared_ptr<Clipboard> clipboard, std::string name)
    : loop_(loop),
      backend_(backend),
      clipboard_(std::move(clipboard)),
      name_(std::move(name)),
      syncTimer_(loop, name_ + ".sync", kSyncMs),
      feedTimer_(loop, name_ + ".feed", kFeedMs) {
    syncTimer_.setOnTick([this] { syncTick(); });
    feedTimer_.setOnTick([this] { feedTick(); });
}

WaveEditor::~WaveEditor() {
    *alive_ = false;
    Stop();
    finishSaving();
    // A document nobody closed was neither saved nor given up: its work file stays
    // for the recovery at the next start.
    dropDocument(false);
}

SampleCount WaveEditor::clampToDocument(SampleCount position) const {
    return std::clamp<SampleCount>(position, 0, document_.length());
}

void WaveEditor::viewChanged() {
    if (onViewChange) onViewChange();
}

void WaveEditor::setCursorPosition(SampleCount position) {
    cursor_ = clampToDocument(position);
    viewChanged();
}

void WaveEditor::setSelectionActive(bool active) {
    selectionActive_ = active;
    viewChanged();
}

void WaveEditor::setSelectionStart(SampleCount position) {
    selectionStart_ = clampToDocument(position);
    viewChanged();
}

void WaveEditor::setSelectionEnd(SampleCount position) {
    selectionEnd_ = clampToDocument(position);
    viewChanged();
}

void WaveEditor::emitBlock(BlockOperationEvent::Phase phase, const std::string& operation,
                           SampleCount position, SampleCount range) {
    if (onBlockOperation) onBlockOperation({phase, operation, position, range});
}

void WaveEditor::rememberForUndo() {
    undo_.push_back({document_.pieces(), cursor_});
    if (undo_.size() > kUndoDepth) undo_.erase(undo_.begin());
    redo_.clear();
}

void WaveEditor::restore(const Snapshot& snapshot) {
    document_.replaceAll(snapshot.pieces);
    cursor_ = clampToDocument(snapshot.cursor);
    selectionActive_ = false;
    selectionStart_ = selectionEnd_ = cursor_;
    viewChanged();
}

platform::Result<void> WaveEditor::Undo() {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (undo_.empty()) return platform::failure("nothing to undo");
    redo_.push_back({document_.pieces(), cursor_});
    restore(undo_.back());
    undo_.pop_back();
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::Redo() {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (redo_.empty()) return platform::failure("nothing to redo");
    undo_.push_back({document_.pieces(), cursor_});
    restore(redo_.back());
    redo_.pop_back();
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::Copy() {
    if (!workFile_) return platform::failure("no document");
    const SampleCount from = std::min(selectionStart_, selectionEnd_);
    const SampleCount to = std::max(selectionStart_, selectionEnd_);
    if (!selectionActive_ || from == to) {
        // Nothing copied is what the clipboard holds now: a paste after it must not
        // bring back audio of an earlier letter.
        clipboard_->pieces.clear();
        return platform::failure("nothing is selected");
    }
    clipboard_->format = document_.format();
    clipboard_->pieces = document_.slice(from, to);
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::Cut() {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (platform::Result<void> copied = Copy(); !copied) return copied;
    rememberForUndo();
    const SampleCount from = std::min(selectionStart_, selectionEnd_);
    document_.remove(from, std::max(selectionStart_, selectionEnd_));
    cursor_ = from;
    selectionActive_ = false;
    selectionStart_ = selectionEnd_ = from;
    viewChanged();
    return platform::Result<void>::success();
}

void WaveEditor::insertPieces(SampleCount at, const PieceList& pieces) {
    SampleCount added = 0;
    for (const Piece& piece : pieces) added += piece.length;
    if (selectionActive_ && selectionStart_ != selectionEnd_) {
        at = std::min(selectionStart_, selectionEnd_);
        document_.remove(at, std::max(selectionStart_, selectionEnd_));
    }
    document_.insert(at, pieces);
    cursor_ = at + added;
    selectionActive_ = false;
    selectionStart_ = selectionEnd_ = cursor_;
    viewChanged();
}

platform::Result<void> WaveEditor::Paste() {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (!workFile_) return platform::failure("no document");
    if (clipboard_->empty()) return platform::failure("the clipboard is empty");
    PieceList pieces = clipboard_->pieces;
    if (!(clipboard_->format == document_.format())) {
        // Cut at another rate or channel count: converted into this document's work file.
        DocumentSource source(clipboard_->format, clipboard_->pieces);
        if (platform::Result<void> converted = appendSource(source, "Pasting", pieces); !converted)
            return converted;
    }
    SampleCount range = 0;
    for (const Piece& piece : pieces) range += piece.length;
    emitBlock(BlockOperationEvent::Phase::Start, "Pasting", 0, range);
    rememberForUndo();
    insertPieces(cursor_, pieces);
    if (formatName_.empty()) formatName_ = "PCM";
    emitBlock(BlockOperationEvent::Phase::End, "Pasting", range, range);
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::PasteFile(const std::string& path) {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (!workFile_) return platform::failure("no document");
    PieceList added;
    if (platform::Result<void> appended = appendFile(path, "Pasting File", added); !appended)
        return appended;
    rememberForUndo();
    selectionActive_ = false;
    insertPieces(cursor_, added);
    if (formatName_.empty()) formatName_ = "PCM";
    return platform::Result<void>::success();
}

void WaveEditor::syncTick() {
    if (!workFile_) return;
    const SampleCount frames = workFile_->frames();
    if (frames == syncedFrames_) return;
    if (platform::Result<void> flushed = workFile_->flush(); !flushed) {
        // What the disk refused stays in memory and goes on trying at each tick;
        // the take keeps everything, and the log says why the disk is behind.
        reportTrouble(flushed.error());
        return;
    }
    syncedFrames_ = frames;
}

void WaveEditor::reportTrouble(const std::string& text) {
    if (troubleTold_) return;
    troubleTold_ = true;
    if (onTrouble) onTrouble(name_ + ": " + text);
}

}  // namespace ovd::engine
