// Effects: run on a thread of their own over a snapshot of the stretch, their
// result written to a scratch work file, and put into the document on the loop's
// thread as one undo step, if the document is still what the effect started from.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "engine/effects_run.h"
#include "engine/scratch_work_file.h"
#include "engine/wave_editor.h"

namespace ovd::engine {

namespace {
// The window's progress bar needs no more, and the loop has other work.
constexpr auto kProgressEvery = std::chrono::milliseconds(50);
}  // namespace

platform::Result<void> WaveEditor::ApplyEffect(Effect effect, SampleCount from, SampleCount to,
                                               std::function<void(platform::Result<void>)> done) {
    if (!workFile_) return platform::failure("there is no document for the effect");
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (saving_) return platform::failure("wait until the file is saved");
    if (effect_) return platform::failure("another effect is still running");
    from = clampToDocument(from);
    to = clampToDocument(to);
    if (from > to) std::swap(from, to);
    if (effect == Effect::InsertSilence) {
        to = from;
    } else if (document_.length() == 0) {
        return platform::failure(
            "the document is empty: there is nothing for the effect to work on");
    } else if (from == to) {
        return platform::failure(
            "the stretch is empty: there is nothing for the effect to work on");
    }
    const std::string folder = std::filesystem::path(workFile_->path()).parent_path().string();
    auto scratch = scratchWorkFile(folder, document_.format());
    if (!scratch) return scratch.failed();

    const std::string name(effectMenuText(effect));
    EffectJob job{effect, document_.format(), document_.slice(from, to), std::move(*scratch)};
    const SampleCount range = to - from;
    emitBlock(BlockOperationEvent::Phase::Start, name, 0, range);
    effect_ = std::make_unique<EffectWork>();
    EffectWork& work = *effect_;
    // What the effect's result is put into: if the document is anything else by
    // the time it ends (closed, recorded into, edited), the result is dropped.
    // Held weakly: a work file made after this one closed may take its address.
    auto started = std::make_shared<const std::pair<std::weak_ptr<WorkFile>, PieceList>>(
        workFile_, document_.pieces());
    work.thread = std::thread([this, alive = alive_, &work, job = std::move(job), name, started,
                               from, to, done = std::move(done)]() mutable {
        auto lastReport = std::chrono::steady_clock::now();
        const EffectProgress progress = [&](SampleCount doneFrames, SampleCount total) {
            const auto now = std::chrono::steady_clock::now();
            if (now - lastReport < kProgressEvery) return;
            lastReport = now;
            loop_.postFromAnyThread([this, alive, name, doneFrames, total] {
                if (*alive)
                    emitBlock(BlockOperationEvent::Phase::Progress, name, doneFrames, total);
            });
        };
        auto result =
            std::make_shared<platform::Result<PieceList>>(runEffect(job, work.cancelled, progress));
        loop_.postFromAnyThread([this, alive, result, name, started, from, to, done] {
            if (!*alive) return;
            // Posting this was the thread's last act: it is over or about to be.
            if (effect_ && effect_->thread.joinable()) effect_->thread.join();
            effect_.reset();
            platform::Result<void> outcome = platform::Result<void>::success();
            if (!*result) {
                outcome = result->failed();
            } else if (!workFile_ || started->first.lock() != workFile_ ||
                       !sameAudio(document_.pieces(), started->second)) {
                outcome = platform::failure(
                    "the document changed while the effect ran: the effect was not applied");
            }
            SampleCount made = 0;
            if (outcome) {
                for (const Piece& piece : **result) made += piece.length;
                rememberForUndo();
                document_.remove(from, to);
                document_.insert(from, **result);
                cursor_ = from;
                selectionStart_ = from;
                selectionEnd_ = from + made;
                viewChanged();
            }
            emitBlock(BlockOperationEvent::Phase::End, name, made, made);
            if (done) done(std::move(outcome));
        });
    });
    return platform::Result<void>::success();
}

}  // namespace ovd::engine
