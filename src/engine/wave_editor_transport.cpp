// Recording and playing: the transport half of the wave editor.

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "engine/wave_editor.h"

namespace ovd::engine {

platform::Result<void> WaveEditor::Record() {
    if (!workFile_) return platform::failure("no document");
    if (state_ == EditorState::Recording) return platform::Result<void>::success();
    Stop();
    troubleTold_ = false;
    rememberForUndo();
    // Recording over a selection replaces it; at the cursor it goes in between.
    SampleCount at = cursor_;
    if (selectionActive_ && selectionStart_ != selectionEnd_) {
        at = std::min(selectionStart_, selectionEnd_);
        document_.remove(at, std::max(selectionStart_, selectionEnd_));
    }
    selectionActive_ = false;
    recordingPiece_ = document_.insert(at, {Piece{workFile_, workFile_->frames(), 0}});
    cursor_ = at;
    const std::shared_ptr<bool> alive = alive_;
    platform::Result<void> started = backend_.startCapture(
        document_.format(), [this, alive](const std::int16_t* frames, std::size_t frameCount) {
            if (*alive) onCaptured(frames, frameCount);
        });
    if (!started) {
        restore(undo_.back());
        undo_.pop_back();
        return started;
    }
    state_ = EditorState::Recording;
    viewChanged();
    return platform::Result<void>::success();
}

void WaveEditor::onCaptured(const std::int16_t* frames, std::size_t frameCount) {
    if (state_ != EditorState::Recording || frameCount == 0) return;
    workFile_->append(frames, frameCount);
    document_.growPiece(recordingPiece_, static_cast<SampleCount>(frameCount));
    cursor_ += static_cast<SampleCount>(frameCount);
    selectionStart_ = selectionEnd_ = cursor_;
    if (onLevel) {
        int peak = 0;
        const std::size_t samples =
            frameCount * static_cast<std::size_t>(document_.format().channels);
        for (std::size_t i = 0; i < samples; ++i)
            peak = std::max(peak, std::abs(static_cast<int>(frames[i])));
        onLevel(peak * 100 / 32768);
    }
}

void WaveEditor::stopRecording() {
    backend_.stopCapture();
    state_ = EditorState::Stopped;
    if (formatName_.empty() && document_.length() > 0) formatName_ = "PCM";
    syncTick();
    viewChanged();
}

platform::Result<void> WaveEditor::Play(int mode) {
    if (!workFile_) return platform::failure("no document");
    Stop();
    playMode_ = mode;
    const bool selection = selectionActive_ && selectionStart_ != selectionEnd_;
    playFrom_ =
        selection && mode != kPlayToEnd ? std::min(selectionStart_, selectionEnd_) : cursor_;
    playTo_ = selection && mode != kPlayToEnd ? std::max(selectionStart_, selectionEnd_)
                                              : document_.length();
    if (playFrom_ >= playTo_) {
        if (mode != kPlayLooped || document_.length() == 0)
            return platform::Result<void>::success();
        playFrom_ = 0;
        playTo_ = document_.length();
    }
    auto opened = backend_.openPlayback(document_.format());
    if (!opened) return opened.failed();
    stream_ = std::move(*opened);
    fed_ = 0;
    feedPosition_ = playFrom_;
    cursor_ = playFrom_;
    state_ = EditorState::Playing;
    feedTick();
    feedTimer_.setEnabled(true);
    return platform::Result<void>::success();
}

void WaveEditor::feedTick() {
    if (!stream_) return;
    const auto channels = static_cast<std::size_t>(document_.format().channels);
    std::size_t room = stream_->writable();
    std::vector<std::int16_t> block;
    while (room > 0) {
        if (feedPosition_ >= playTo_) {
            if (playMode_ != kPlayLooped) break;
            feedPosition_ = playFrom_;
        }
        const std::size_t want =
            std::min<std::size_t>(room, static_cast<std::size_t>(playTo_ - feedPosition_));
        block.resize(want * channels);
        const std::size_t got = document_.read(feedPosition_, block.data(), want);
        if (got == 0) break;
        stream_->write(block.data(), got);
        fed_ += static_cast<SampleCount>(got);
        feedPosition_ += static_cast<SampleCount>(got);
        room -= got;
    }
    const SampleCount played = stream_->played();
    const SampleCount span = playTo_ - playFrom_;
    cursor_ = playFrom_ + (playMode_ == kPlayLooped && span > 0 ? played % span : played);
    if (playMode_ != kPlayLooped && played >= fed_ && feedPosition_ >= playTo_) {
        cursor_ = playTo_;
        stopPlaying();
    }
}

void WaveEditor::stopPlaying() {
    feedTimer_.setEnabled(false);
    stream_.reset();
    state_ = EditorState::Stopped;
    viewChanged();
}

void WaveEditor::Stop() {
    if (state_ == EditorState::Recording) {
        stopRecording();
    } else if (state_ == EditorState::Playing || state_ == EditorState::Paused) {
        stopPlaying();
    }
}

void WaveEditor::Pause() {
    if (state_ != EditorState::Playing || !stream_) return;
    stream_->setPaused(true);
    feedTimer_.setEnabled(false);
    state_ = EditorState::Paused;
}

void WaveEditor::Continue() {
    if (state_ != EditorState::Paused || !stream_) return;
    stream_->setPaused(false);
    feedTimer_.setEnabled(true);
    state_ = EditorState::Playing;
}

}  // namespace ovd::engine
