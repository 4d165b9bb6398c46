// Saving: the document written in the chosen format on a thread of its own, the
// target locked from the moment SaveAs returns until the file is complete, and
// the saved file kept open so that the next save of a take that only grew adds
// what is new instead of encoding the whole take again.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "engine/wave_editor.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;
// Frames copied straight into a wave file go in stretches of this many, so the
// progress moves on an hour-long take too.
constexpr SampleCount kCopyStretchFrames = 4 * 1024 * 1024;
constexpr const char* kSaving = "Saving";

SampleCount framesIn(const PieceList& pieces) {
    SampleCount frames = 0;
    for (const Piece& piece : pieces) frames += piece.length;
    return frames;
}

// The pieces at the end of the encoder's file: copied as they lie in the work
// files where the file takes the document's own frames, encoded otherwise.
EngineResult writePieces(StreamEncoder& encoder, const PcmFormat& format, const PieceList& pieces,
                         const std::function<void(SampleCount)>& progress) {
    SampleCount done = 0;
    if (encoder.copiesSourceFrames()) {
        for (const Piece& piece : pieces) {
            for (SampleCount offset = 0; offset < piece.length; offset += kCopyStretchFrames) {
                const SampleCount count = std::min(kCopyStretchFrames, piece.length - offset);
                EngineResult copied = encoder.appendCopied(count, [&](int fd) {
                    return piece.file->copyTo(fd, piece.start + offset, count);
                });
                if (!copied) return copied;
                done += count;
                progress(done);
            }
        }
        return EngineResult::success();
    }
    DocumentSource source(format, pieces);
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(format.channels));
    while (const std::size_t got = source.read(block.data(), kBlockFrames)) {
        if (EngineResult written = encoder.write(block.data(), got); !written) return written;
        done += static_cast<SampleCount>(got);
        progress(done);
    }
    return EngineResult::success();
}

}  // namespace

std::string WaveEditor::lastSaveError() const {
    const std::lock_guard lock(saveErrorMutex_);
    return lastSaveError_;
}

void WaveEditor::finishSaving() {
    if (saveThread_.joinable()) saveThread_.join();
}

void WaveEditor::finishSavedFile() {
    finishSaving();
    if (!session_) return;
    const std::unique_ptr<SaveSession> session = std::move(session_);
    const int fd = ::open(session->path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return;  // moved or deleted since: no longer ours to write
    // A file somebody else holds, or another file under that name, stays as the
    // last save left it: whole but for the encoder's last fraction of a second.
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && session->encoder->sameFileAs(fd)) {
        if (EngineResult finished = session->encoder->finish(); !finished) {
            session->encoder->rollBack();
            const std::lock_guard lock(saveErrorMutex_);
            lastSaveError_ = finished.error();
        }
    }
    ::close(fd);
}

EngineResult WaveEditor::SaveAs(const std::string& path) {
    if (!workFile_) return EngineResult::failure("no document to save");
    finishSaving();
    // The file is locked before this call returns, so whoever waits for it to be
    // free waits for this save, not for the one before it.
    const bool existedBefore = platform::fileExists(path);
    const int lockFd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (lockFd < 0)
        return EngineResult::failure("can't write " + path + ": " + std::strerror(errno));
    if (::flock(lockFd, LOCK_EX | LOCK_NB) != 0) {
        ::close(lockFd);
        return EngineResult::failure(path + " is in use");
    }
    syncTick();
    SaveJob job{path,         chosen_, comment_,     document_.format(), document_.pieces(),
                std::nullopt, lockFd,  existedBefore};
    if (session_) {
        const bool samePath = session_->path == path;
        if (samePath && session_->encoder->sameFileAs(lockFd) && session_->target == job.target &&
            session_->comment == job.comment && session_->format == job.format) {
            job.added = piecesAddedTo(session_->saved, job.pieces);
        }
        if (!job.added) {
            // Saved whole: over the session's own file, which is then replaced, or
            // elsewhere, and the session's file is completed first.
            if (samePath) {
                session_.reset();
            } else {
                finishSavedFile();
            }
        }
    }
    const SampleCount range = framesIn(job.added ? *job.added : job.pieces);
    emitBlock(BlockOperationEvent::Phase::Start, kSaving, 0, range);
    saving_ = true;
    {
        const std::lock_guard lock(saveErrorMutex_);
        lastSaveError_.clear();
    }
    saveThread_ = std::thread([this, alive = alive_, job = std::move(job), range] {
        const SaveProgress progress = [this, alive, range](SampleCount done) {
            loop_.postFromAnyThread([this, alive, done, range] {
                if (*alive) emitBlock(BlockOperationEvent::Phase::Progress, kSaving, done, range);
            });
        };
        EngineResult result = job.added ? addToSavedFile(job, progress) : saveWhole(job, progress);
        // A failed first save leaves no empty file behind to be mistaken for a dictation.
        if (!result && !job.existedBefore) std::remove(job.path.c_str());
        {
            // Known before the file is free: whoever waits for the file reads the outcome.
            const std::lock_guard lock(saveErrorMutex_);
            lastSaveError_ = result ? std::string() : result.error();
        }
        ::close(job.lockFd);
        loop_.postFromAnyThread([this, alive, range] {
            if (!*alive) return;
            emitBlock(BlockOperationEvent::Phase::End, kSaving, range, range);
        });
        saving_ = false;
    });
    return EngineResult::success();
}

EngineResult WaveEditor::addToSavedFile(const SaveJob& job, const SaveProgress& progress) {
    SaveSession& session = *session_;
    EngineResult result = writePieces(*session.encoder, job.format, *job.added, progress);
    if (result) result = session.encoder->sync();
    if (!result) {
        // The file goes back to what the last save left; the next save starts afresh.
        session.encoder->rollBack();
        session_.reset();
        return result;
    }
    session.saved = job.pieces;
    return result;
}

EngineResult WaveEditor::saveWhole(const SaveJob& job, const SaveProgress& progress) {
    // Written beside the target and moved over it at the end: until then the
    // locked old file stands, after it the complete new one.
    const std::string partial = job.path + ".partial";
    std::unique_ptr<StreamEncoder> encoder;
    if (StreamEncoder::supports(job.target)) {
        const int fd = ::open(partial.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        std::string error;
        // A file that can't be started to grow is written whole below, which says why if it fails
        // too.
        if (fd >= 0)
            encoder = StreamEncoder::open(fd, partial, job.target, job.format, job.comment, error);
    }
    EngineResult result = EngineResult::success();
    if (encoder) {
        result = writePieces(*encoder, job.format, job.pieces, progress);
        if (result) result = encoder->sync();
        if (!result) {
            encoder.reset();
            std::remove(partial.c_str());
        }
    } else {
        DocumentSource source(job.format, job.pieces);
        const SampleCount range = source.frames();
        result = encodeFile(source, partial, job.target, job.comment, [&](double fraction) {
            progress(static_cast<SampleCount>(fraction * static_cast<double>(range)));
            return true;
        });
    }
    if (result && std::rename(partial.c_str(), job.path.c_str()) != 0) {
        result = EngineResult::failure("can't replace " + job.path + ": " + std::strerror(errno));
        std::remove(partial.c_str());
    }
    if (result && encoder) {
        session_ = std::make_unique<SaveSession>(SaveSession{
            job.path, job.target, job.comment, job.format, job.pieces, std::move(encoder)});
    }
    return result;
}

}  // namespace ovd::engine
